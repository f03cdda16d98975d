#include "tests/support/TestSupport.h"

#include <tlvlib/browser/ProxyFactory.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

class tst_ProxyFactory : public QObject
{
    Q_OBJECT

private slots:
    void proxyFor_data();
    void proxyFor();
    void ports_data();
    void ports();
    void bypassList_data();
    void bypassList();
    void managersAskByQuery();

private:
    static TVNC_BrowserCommonSetting& preferences() { return *TVNC_BrowserCommonSetting::getInstance(); }
    /// The preferences with a proxy "proxy.test", 8080 and 8443.
    static void useProxy();

    /// "none", or the proxy's type, host and port.
    static QString described(const QNetworkProxy& proxy);
};

void tst_ProxyFactory::useProxy()
{
    const TempDir empty;
    QString dir = empty.path();
    preferences().loadSetting(&dir);
    preferences().setUseProxyInfo(1);
    QVERIFY(preferences().setProxyServerStr("proxy.test"));
    QVERIFY(preferences().setProxyHttpPortStr("8080"));
    QVERIFY(preferences().setProxyHttpsPortStr("8443"));
}

QString tst_ProxyFactory::described(const QNetworkProxy& proxy)
{
    if (proxy.type() == QNetworkProxy::NoProxy)
        return "none";
    return QString("%1 %2:%3")
        .arg(proxy.type() == QNetworkProxy::HttpCachingProxy ? "plain" : "tunnel", proxy.hostName())
        .arg(proxy.port());
}

void tst_ProxyFactory::proxyFor_data()
{
    QTest::addColumn<bool>("isOn");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("proxy");
    QTest::newRow("http") << true << "proxy.test"
                          << "http://example.org/"
                          << "plain proxy.test:8080";
    QTest::newRow("https") << true << "proxy.test"
                           << "https://example.org/"
                           << "tunnel proxy.test:8443";
    QTest::newRow("port") << true << "proxy.test"
                          << "http://example.org:81/"
                          << "plain proxy.test:8080";
    QTest::newRow("off") << false << "proxy.test"
                         << "http://example.org/"
                         << "none";
    QTest::newRow("no host") << true << ""
                             << "http://example.org/"
                             << "none";
    QTest::newRow("device") << true << "proxy.test"
                            << "http://127.0.0.1/"
                            << "none";
    QTest::newRow("device by name") << true << "proxy.test"
                                    << "http://localhost:8000/"
                                    << "none";
}

void tst_ProxyFactory::proxyFor()
{
    QFETCH(bool, isOn);
    QFETCH(QString, host);
    QFETCH(QString, url);
    QFETCH(QString, proxy);
    useProxy();
    preferences().setUseProxyInfo(isOn ? 1 : 0);
    QVERIFY(preferences().setProxyServerStr(host));
    QCOMPARE(described(Tlv::ProxyFactory::proxyFor(QUrl(url))), proxy);
}

void tst_ProxyFactory::ports_data()
{
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("proxy");
    QTest::newRow("lowest") << "1"
                            << "plain proxy.test:1";
    QTest::newRow("highest") << "65535"
                             << "plain proxy.test:65535";
    QTest::newRow("too high") << "65536"
                              << "none";
    QTest::newRow("zero") << "0"
                          << "none";
    QTest::newRow("negative") << "-1"
                              << "none";
    QTest::newRow("word") << "http"
                          << "none";
    QTest::newRow("with a letter") << "80a"
                                   << "none";
    QTest::newRow("empty") << ""
                           << "none";
}

void tst_ProxyFactory::ports()
{
    QFETCH(QString, port);
    QFETCH(QString, proxy);
    useProxy();
    QVERIFY(preferences().setProxyHttpPortStr(port));
    QCOMPARE(described(Tlv::ProxyFactory::proxyFor(QUrl("http://example.org/"))), proxy);
}

void tst_ProxyFactory::bypassList_data()
{
    QTest::addColumn<QString>("domains");
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("isBypassed");
    QTest::newRow("itself") << "example.org"
                            << "example.org" << true;
    QTest::newRow("below it") << "example.org"
                              << "www.example.org" << true;
    QTest::newRow("only its end") << "example.org"
                                  << "myexample.org" << false;
    QTest::newRow("dot, itself") << ".example.org"
                                 << "example.org" << true;
    QTest::newRow("dot, below it") << ".example.org"
                                   << "a.b.example.org" << true;
    QTest::newRow("letter case") << "Example.ORG"
                                 << "www.exAmple.org" << true;
    QTest::newRow("above it") << "www.example.org"
                              << "example.org" << false;
    QTest::newRow("wildcard") << "*.example.org"
                              << "www.example.org" << false;
    QTest::newRow("commas") << "a.test,b.test,c.test"
                            << "b.test" << true;
    QTest::newRow("semicolons") << "a.test;b.test"
                                << "b.test" << true;
    QTest::newRow("blanks") << "a.test b.test\tc.test"
                            << "c.test" << true;
    QTest::newRow("all of them") << " a.test ,; b.test ;"
                                 << "b.test" << true;
    QTest::newRow("other separators") << "a.test|b.test"
                                      << "b.test" << false;
    QTest::newRow("empty") << ""
                           << "example.org" << false;
    QTest::newRow("a dot alone") << "."
                                 << "example.org" << false;
    QTest::newRow("separators alone") << ",; ,"
                                      << "example.org" << false;
    QTest::newRow("address") << "192.168.0.1"
                             << "192.168.0.1" << true;
}

void tst_ProxyFactory::bypassList()
{
    QFETCH(QString, domains);
    QFETCH(QString, host);
    QFETCH(bool, isBypassed);
    useProxy();
    QVERIFY(preferences().setNoProxyDomainStr(domains));
    QCOMPARE(described(Tlv::ProxyFactory::proxyFor(QUrl("http://" + host + "/"))),
             QString(isBypassed ? "none" : "plain proxy.test:8080"));
}

void tst_ProxyFactory::managersAskByQuery()
{
    useProxy();
    Tlv::ProxyFactory factory;
    const QList<QNetworkProxy> proxies = factory.queryProxy(QNetworkProxyQuery(QUrl("https://example.org/")));
    QCOMPARE(proxies.size(), 1);
    QCOMPARE(described(proxies.first()), QString("tunnel proxy.test:8443"));
}

TLVLIB_TEST_MAIN(tst_ProxyFactory)
#include "tst_ProxyFactory.moc"
