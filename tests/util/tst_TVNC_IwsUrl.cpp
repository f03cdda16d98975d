#include "tests/support/TestSupport.h"

#include <tlvlib/util/TVNC_IwsUrl.h>

class tst_TVNC_IwsUrl : public QObject
{
    Q_OBJECT

private slots:
    void recognisesLocalContent_data();
    void recognisesLocalContent();
    void givenHostsAreReadAsLatin1();
};

void tst_TVNC_IwsUrl::recognisesLocalContent_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<int>("useFirstHost");
    QTest::addColumn<QByteArray>("firstHost"); // a null array stands for a null pointer
    QTest::addColumn<QByteArray>("secondHost");
    QTest::addColumn<bool>("local");

    const QByteArray null;
    const QByteArray empty("");
    const QByteArray device("printer.example");

    QTest::newRow("loopback") << "http://127.0.0.1/" << 0 << null << null << true;
    QTest::newRow("loopback net, port, path") << "http://127.0.0.200:8080/a?b" << 0 << null << null << true;
    QTest::newRow("loopback prefix of a name") << "http://127.0.0.example/" << 0 << null << null << true;
    QTest::newRow("nothing behind the prefix") << "http://127.0.0./" << 0 << null << null << true;
    QTest::newRow("other loopback net") << "http://127.0.1.1/" << 0 << null << null << false;
    QTest::newRow("shorter than the prefix") << "http://127.0.a/x" << 0 << null << null << false;
    QTest::newRow("prefix not at the start") << "http://a127.0.0.1/" << 0 << null << null << false;
    QTest::newRow("localhost") << "http://localhost/" << 0 << null << null << true;
    QTest::newRow("localhost in capitals") << "http://LOCALHOST:80/" << 0 << null << null << true;
    QTest::newRow("localhost with a domain") << "http://localhost.example/" << 0 << null << null << false;
    QTest::newRow("localhost as a path") << "http://example.org/localhost" << 0 << null << null << false;
    QTest::newRow("other host") << "http://example.org/" << 1 << null << null << false;

    QTest::newRow("first host") << "http://printer.example/" << 1 << device << null << true;
    QTest::newRow("first host, other case") << "http://PRINTER.example/" << 1 << device << null << true;
    QTest::newRow("first host not in use") << "http://printer.example/" << 0 << device << null << false;
    QTest::newRow("first host, flag 2") << "http://printer.example/" << 2 << device << null << false;
    QTest::newRow("first host, flag 2, second matches")
        << "http://printer.example/" << 2 << device << device << true;
    QTest::newRow("first host, flag -1") << "http://printer.example/" << -1 << device << null << false;
    QTest::newRow("first host is no prefix") << "http://printer.example.org/" << 1 << device << null << false;
    QTest::newRow("first host empty") << "http://printer.example/" << 1 << empty << null << false;
    QTest::newRow("first differs, second matches")
        << "http://printer.example/" << 1 << QByteArray("other") << device << true;

    QTest::newRow("second host") << "http://printer.example/" << 0 << null << device << true;
    QTest::newRow("second host in capitals")
        << "http://printer.example/" << 0 << null << QByteArray("PRINTER.EXAMPLE") << true;
    QTest::newRow("second host, flag set") << "http://printer.example/" << 1 << null << device << true;
    QTest::newRow("second host empty") << "http://printer.example/" << 0 << null << empty << false;
    QTest::newRow("second host differs")
        << "http://printer.example/" << 0 << null << QByteArray("other") << false;

    QTest::newRow("no host") << "file:///tmp/x" << 1 << empty << empty << false;
    QTest::newRow("no host, hosts given") << "about:blank" << 1 << device << device << false;
    QTest::newRow("empty URL") << "" << 1 << device << device << false;
}

void tst_TVNC_IwsUrl::recognisesLocalContent()
{
    QFETCH(QString, url);
    QFETCH(int, useFirstHost);
    QFETCH(QByteArray, firstHost);
    QFETCH(QByteArray, secondHost);
    QFETCH(bool, local);

    char* const pc_first = firstHost.isNull() ? nullptr : firstHost.data();
    char* const pc_second = secondHost.isNull() ? nullptr : secondHost.data();
    QCOMPARE(TVNC_IwsUrl::IsIwsContents(QUrl(url), static_cast<char>(useFirstHost), pc_first, pc_second),
             local);
}

void tst_TVNC_IwsUrl::givenHostsAreReadAsLatin1()
{
    // host() decodes the international name to U+00E9; E9 is that letter in Latin-1, C3 A9 would be in UTF-8.
    QUrl url;
    url.setScheme(QLatin1String("http"));
    url.setHost(QString::fromLatin1("caf\xE9.de"));
    QByteArray latin1("caf\xE9.de");
    QByteArray inUtf8("caf\xC3\xA9.de");
    QCOMPARE(url.host(), QString::fromLatin1("caf\xE9.de"));
    QVERIFY(TVNC_IwsUrl::IsIwsContents(url, 1, latin1.data(), nullptr));
    QVERIFY(!TVNC_IwsUrl::IsIwsContents(url, 1, inUtf8.data(), nullptr));
}

TLVLIB_TEST_MAIN(tst_TVNC_IwsUrl)
#include "tst_TVNC_IwsUrl.moc"
