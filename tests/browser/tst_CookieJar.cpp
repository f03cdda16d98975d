#include "tests/browser/Network.h"
#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/CookieJar.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

#include <QtCore/QProcess>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QSslCertificate>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslKey>
#include <QtNetwork/QSslSocket>

using Tlv::CookieJar;

namespace {

const char LATER[] = "; expires=Wed, 06-May-2037 07:08:09 GMT; path=/";
const char EARLIER[] = "; expires=Wed, 06-May-2009 07:08:09 GMT; path=/";

TVNC_BrowserCommonSetting& preferences()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

} // namespace

class tst_CookieJar : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void secondProcessSendsWhatItMay();
    void refusedCookiesAreNeitherTakenNorSent();
    void expiredCookieGoes();
    void serverDeletesACookie();
    void sessionCookiesAreNotKept();
    void newestTwentyAreKept();
    void secureCookieGoesOverTlsAlone();
    void httpOnlyIsKeptInOneForm();
    void documentAloneIsTaken();
    void clearedJarLeavesEmptyFiles();
    void sentAgainOnceAcceptedAgain();

private:
    QString dir() const { return dir_->path(); }
    bool makeCertificate(QSslConfiguration& tls) const;
    /// Lets the site set a cookie.
    void take(const QByteArray& cookie)
    {
        QCOMPARE(get(*manager_, site_->address("/set?" + cookie.toPercentEncoding())), 200);
    }
    /// The cookies that the site is sent.
    QByteArray sent()
    {
        get(*manager_, site_->address("/whoami"));
        return site_->requests.last().headers.value("cookie");
    }
    QList<QNetworkCookie> inFile() const
    {
        QString directory = dir();
        return TVNC_CookieSetting::getInstance()->loadCookieInfo(&directory, 1);
    }

    std::unique_ptr<TempDir> dir_;
    std::unique_ptr<TestSite> site_;
    std::unique_ptr<QNetworkAccessManager> manager_;
    CookieJar* jar_ = nullptr; // of the manager
};

void tst_CookieJar::init()
{
    dir_ = std::make_unique<TempDir>();
    site_ = std::make_unique<TestSite>();
    QVERIFY(site_->listen());
    QString directory = dir();
    preferences().loadSetting(&directory);
    manager_ = std::make_unique<QNetworkAccessManager>();
    jar_ = new CookieJar;
    manager_->setCookieJar(jar_);
    jar_->load(dir());
}

void tst_CookieJar::secondProcessSendsWhatItMay()
{
    get(*manager_, site_->address("/cookies"));
    QCOMPARE(sent(), QByteArray("reader=4711; visit=now; sid=s1d"));
    QCOMPARE(jar_->save(dir()), QString());

    QProcess second;
    QEventLoop loop; // the site is served meanwhile
    connect(&second, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop, &QEventLoop::quit);
    second.start(QCoreApplication::applicationFilePath(), {"--send", dir(), site_->address("/whoami")});
    loop.exec();
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(site_->requests.last().headers.value("cookie"), QByteArray("reader=4711; sid=s1d"));
}

void tst_CookieJar::refusedCookiesAreNeitherTakenNorSent()
{
    preferences().setRcvCookieInfo(0);
    get(*manager_, site_->address("/cookies"));
    QCOMPARE(sent(), QByteArray());
    QVERIFY(jar_->cookies().isEmpty());
}

void tst_CookieJar::sentAgainOnceAcceptedAgain()
{
    take(QByteArray("a=1") + LATER);
    QCOMPARE(jar_->save(dir()), QString());
    preferences().setRcvCookieInfo(0);
    take(QByteArray("a=2") + LATER);
    take(QByteArray("a=2") + EARLIER); // nor is it deleted
    QCOMPARE(sent(), QByteArray());
    QCOMPARE(jar_->save(dir()), QString());
    QCOMPARE(inFile().size(), 1);
    preferences().setRcvCookieInfo(1);
    QCOMPARE(sent(), QByteArray("a=1"));
}

void tst_CookieJar::expiredCookieGoes()
{
    // One that expired while the browser was off, and one that does now.
    QList<QNetworkCookie> stored = QNetworkCookie::parseCookies(
        QByteArray("old=1; domain=127.0.0.1") + EARLIER + "\nnew=2; domain=127.0.0.1" + LATER);
    QString directory = dir();
    TVNC_CookieSetting::getInstance()->saveCookieInfo(stored, &directory, 20);
    QCOMPARE(inFile().size(), 2);
    jar_->load(dir());
    QCOMPARE(jar_->cookies().size(), 1);
    QCOMPARE(sent(), QByteArray("new=2"));

    QNetworkCookie soon = QNetworkCookie::parseCookies("soon=3; domain=127.0.0.1; path=/").first();
    soon.setExpirationDate(QDateTime::currentDateTimeUtc().addMSecs(1500));
    QVERIFY(jar_->insertCookie(soon));
    QTRY_COMPARE_WITH_TIMEOUT(sent(), QByteArray("new=2"), 20000);
    QSignalSpy removals(jar_, &CookieJar::cookiesRemoved);
    QCOMPARE(jar_->save(dir()), QString());
    QCOMPARE(removals.count(), 1);
    QCOMPARE(jar_->cookies().size(), 1);
    QCOMPARE(inFile().size(), 1);
}

void tst_CookieJar::serverDeletesACookie()
{
    take(QByteArray("a=1") + LATER);
    QCOMPARE(sent(), QByteArray("a=1"));
    take(QByteArray("a=") + EARLIER);
    QCOMPARE(sent(), QByteArray());
    QVERIFY(jar_->cookies().isEmpty());
}

void tst_CookieJar::sessionCookiesAreNotKept()
{
    take("a=1; path=/");
    QCOMPARE(sent(), QByteArray("a=1"));
    QVERIFY(jar_->keptCookies().isEmpty());
    QCOMPARE(jar_->save(dir()), QString());
    QVERIFY(inFile().isEmpty());
    QCOMPARE(sent(), QByteArray("a=1")); // as long as the browser runs
}

void tst_CookieJar::newestTwentyAreKept()
{
    for (int i = 0; i < 25; ++i)
        take("c" + QByteArray::number(i) + "=1" + LATER);
    take(QByteArray("c6=2") + LATER);     // changed, and so the newest
    QCOMPARE(jar_->cookies().size(), 25); // of this process's use
    QCOMPARE(jar_->save(dir()), QString());
    QList<QByteArray> names;
    for (const QNetworkCookie& cookie : inFile())
        names.append(cookie.name());
    QCOMPARE(names.size(), 20);
    QCOMPARE(names.first(), QByteArray("c5"));
    QCOMPARE(names.at(1), QByteArray("c7"));
    QCOMPARE(names.last(), QByteArray("c6"));
    QCOMPARE(readFile(dir() + "cookies.xml").count("<webSiteInfo "), 20);
    // The document keeps up with the file, run after run.
    take(QByteArray("c99=1") + LATER);
    QCOMPARE(jar_->save(dir()), QString());
    const QByteArray document = readFile(dir() + "cookies.xml");
    QCOMPARE(document.count("<webSiteInfo "), 20);
    QVERIFY(document.contains("<name>c99</name>"));
    QVERIFY(!document.contains("<name>c5</name>"));
}

void tst_CookieJar::secureCookieGoesOverTlsAlone()
{
    if (!QSslSocket::supportsSsl())
        QSKIP("Qt has no TLS here");
    QSslConfiguration tls;
    if (!makeCertificate(tls))
        QSKIP("there is no openssl to make a certificate with");
    TestSite secure;
    QVERIFY(secure.listenWithTls(tls));
    // This one certificate is trusted, and all others are not.
    const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
    QSslConfiguration client = before;
    client.setCaCertificates({tls.localCertificate()});
    QSslConfiguration::setDefaultConfiguration(client);
    const auto sentOverTls = [&] {
        get(*manager_, secure.address("/whoami"));
        return secure.requests.last().headers.value("cookie");
    };
    const QByteArray cookie = QByteArray("key=1; Secure") + LATER;
    QCOMPARE(get(*manager_, secure.address("/set?" + cookie.toPercentEncoding())), 200);
    QCOMPARE(sentOverTls(), QByteArray("key=1"));
    QCOMPARE(sent(), QByteArray()); // the same host, and any port of it

    QCOMPARE(jar_->save(dir()), QString());
    jar_->clear();
    QCOMPARE(sentOverTls(), QByteArray());
    jar_->load(dir());
    QCOMPARE(sentOverTls(), QByteArray("key=1"));
    QCOMPARE(sent(), QByteArray());
    QSslConfiguration::setDefaultConfiguration(before);
}

/// @return false when there is no program for it
bool tst_CookieJar::makeCertificate(QSslConfiguration& tls) const
{
    QProcess openssl;
    openssl.start("openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                              "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                              dir() + "key.pem", "-out", dir() + "certificate.pem"});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        return false;
    tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate(readFile(dir() + "certificate.pem")));
    tls.setPrivateKey(QSslKey(readFile(dir() + "key.pem"), QSsl::Rsa));
    return true;
}

void tst_CookieJar::httpOnlyIsKeptInOneForm()
{
    take(QByteArray("sid=1") + LATER + "; HttpOnly");
    QCOMPARE(jar_->save(dir()), QString());
    QVERIFY(inFile().first().isHttpOnly());
    jar_->load(dir());
    QVERIFY(jar_->cookies().first().isHttpOnly());
    QVERIFY(!readFile(dir() + "cookies.xml").toLower().contains("httponly"));
}

void tst_CookieJar::documentAloneIsTaken()
{
    take(QByteArray("a=1") + LATER);
    QCOMPARE(jar_->save(dir()), QString());
    QVERIFY(QFile::remove(dir() + "cookie.ini"));
    QSignalSpy loads(jar_, &CookieJar::loaded);
    jar_->load(dir());
    QCOMPARE(loads.count(), 1);
    QCOMPARE(sent(), QByteArray("a=1"));
    QVERIFY(QFile::exists(dir() + "cookie.ini"));
}

void tst_CookieJar::clearedJarLeavesEmptyFiles()
{
    take(QByteArray("a=1") + LATER);
    QCOMPARE(jar_->save(dir()), QString());
    jar_->clear();
    QCOMPARE(jar_->save(dir()), QString());
    QVERIFY(inFile().isEmpty());
    QVERIFY(!readFile(dir() + "cookies.xml").contains("<webSiteInfo"));
    QSignalSpy changes(jar_, &CookieJar::changed);
    jar_->clear();
    QCOMPARE(changes.count(), 0);
}

/// The second process: gets an address with the cookies of a directory.
static int send(const QString& dir, const QString& address)
{
    QString directory = dir;
    preferences().loadSetting(&directory);
    QNetworkAccessManager manager;
    auto* jar = new CookieJar(&manager);
    manager.setCookieJar(jar);
    jar->load(dir);
    return get(manager, address) == 200 ? 0 : 1;
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--send")
        return send(arguments.value(2), arguments.value(3));
    tst_CookieJar test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_CookieJar.moc"
