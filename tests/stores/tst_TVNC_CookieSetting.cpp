#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <ctime>

static QDateTime utc(const char* pc_text)
{
    QDateTime dateTime = QDateTime::fromString(utf8(pc_text), utf8("yyyy/MM/dd hh:mm:ss"));
    dateTime.setTimeSpec(Qt::UTC);
    return dateTime;
}

static QNetworkCookie makeCookie(const char* pc_name, const char* pc_value,
                                 const QDateTime& expires = QDateTime())
{
    QNetworkCookie cookie(pc_name, pc_value);
    cookie.setDomain(utf8(".example.com"));
    cookie.setPath(utf8("/"));
    cookie.setExpirationDate(expires);
    return cookie;
}

static TVNS_CookieInfo makeInfo(const QString& website, const QString& name, const QString& path,
                                const QString& secure, const QString& expires, const QString& contents)
{
    TVNS_CookieInfo info;
    info.website = website;
    info.name = name;
    info.path = path;
    info.secure = secure;
    info.expires = expires;
    info.contents = contents;
    return info;
}

/// A record in one line: website|name|path|secure|expires|contents.
static QString describe(const TVNS_CookieInfo& info)
{
    return (QStringList() << info.website << info.name << info.path << info.secure << info.expires
                          << info.contents)
        .join(QLatin1String("|"));
}

class tst_TVNC_CookieSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void entryHoldsTheCookie();
    void entryIsWrittenExactly();
    void transientCookieHasNoExpiry();
    void expiryIsWrittenAsItStands_data();
    void expiryIsWrittenAsItStands();
    void bytesAreReadAsUtf8();
    void newestEntryIsFirstAndHasNoNumber();
    void sameCookieIsAddedTwice();
    void expiredCookieIsAdded();
    void entryThatCannotBeCreatedIsGivenUpSilently();
    void entryWithAnElementThatCannotBeCreatedIsKept();

    void entriesAreReadInTheOrderOfTheirNumbers();
    void entryWithoutElementsGivesAnEmptyRecord();
    void missingElementsAreEmpty();
    void gapsHideEntries();
    void firstOfEqualNumbersIsRead();
    void anyNumberedElementIsAnEntry();

    void sameCookieMatches();
    void everyDifferenceButTheExpiryCounts_data();
    void everyDifferenceButTheExpiryCounts();
    void onlyAsciiMatchesItsOwnEntry_data();
    void onlyAsciiMatchesItsOwnEntry();

    void deletedEntryLeavesNoGap();
    void deletingNumbersNewEntries();
    void deletingAnAbsentNumberOnlyRenumbers();
    void deletedEntryIsReleasedByTheEventLoop();
    void manyEntries();

private:
    void loadFrom(const QByteArray& document);
    void number();
    QStringList names();
    TVNC_XMLNode* root() { return cookies_->getXMLRootNode(); }

    TVNC_CookieSetting* cookies_;
    QScopedPointer<TempDir> dir_;
};

void tst_TVNC_CookieSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    cookies_ = TVNC_CookieSetting::getInstance();
    QVERIFY(!root());
    QCOMPARE(int(cookies_->getAllCookieInfo().size()), 0);
    QNetworkCookie cookie = makeCookie("lost", "value");
    cookies_->addCookieInfo(cookie);
    cookies_->deleteCookieInfo(0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:0\n"));
    QVERIFY(!root());
}

void tst_TVNC_CookieSetting::init()
{
    dir_.reset(new TempDir);
    cookies_->createXMLRootNode();
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_CookieSetting::loadFrom(const QByteArray& document)
{
    QString path = dir_->path() + utf8("cookies.xml");
    writeFile(path, document);
    cookies_->load(path);
    LogRecorder::clear();
}

void tst_TVNC_CookieSetting::number()
{
    QString id = utf8("id");
    cookies_->setIDforChildren(id);
}

/// The names of the cookies as they are handed out.
QStringList tst_TVNC_CookieSetting::names()
{
    QStringList list;
    foreach (const TVNS_CookieInfo& info, cookies_->getAllCookieInfo())
        list << info.name;
    return list;
}

// --- Adding -----------------------------------------------------------------------------------------------

void tst_TVNC_CookieSetting::entryHoldsTheCookie()
{
    QNetworkCookie cookie = makeCookie("SID", "31d4<&>", utc("2031/05/06 07:08:09"));
    cookie.setSecure(true);
    cookie.setHttpOnly(true);
    cookies_->addCookieInfo(cookie);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::addCookieInfo]\n"));
    QCOMPARE(describe(root()), utf8("(webSiteInfo(website'.example.com',name'SID',path'/',secure'true',"
                                    "expires'2031/05/06 07:08:09',contents cdata'31d4<&>'))"));
    number();
    QCOMPARE(int(cookies_->getAllCookieInfo().size()), 1);
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(0)),
             utf8(".example.com|SID|/|true|2031/05/06 07:08:09|31d4<&>"));
}

void tst_TVNC_CookieSetting::entryIsWrittenExactly()
{
    QNetworkCookie first = makeCookie("lang", "ja-JP");
    first.setDomain(utf8("www.example.jp"));
    first.setPath(utf8("/app"));
    QNetworkCookie second = makeCookie("SID", "a & b", utc("2031/05/06 07:08:09"));
    second.setSecure(true);
    QNetworkCookie third = makeCookie("empty", "");
    cookies_->addCookieInfo(first);
    cookies_->addCookieInfo(second);
    cookies_->addCookieInfo(third);
    number();
    QString name = utf8("cookie");
    root()->setName(name);
    QString path = dir_->path() + utf8("cookies.xml");
    cookies_->save(path);
    QCOMPARE(readFile(path), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<cookie>\n"
                                        "    <webSiteInfo id=\"000\">\n"
                                        "        <website>.example.com</website>\n"
                                        "        <name>empty</name>\n"
                                        "        <path>/</path>\n"
                                        "        <secure>false</secure>\n"
                                        "        <expires/>\n"
                                        "        <contents/>\n"
                                        "    </webSiteInfo>\n"
                                        "    <webSiteInfo id=\"001\">\n"
                                        "        <website>.example.com</website>\n"
                                        "        <name>SID</name>\n"
                                        "        <path>/</path>\n"
                                        "        <secure>true</secure>\n"
                                        "        <expires>2031/05/06 07:08:09</expires>\n"
                                        "        <contents><![CDATA[a & b]]></contents>\n"
                                        "    </webSiteInfo>\n"
                                        "    <webSiteInfo id=\"002\">\n"
                                        "        <website>www.example.jp</website>\n"
                                        "        <name>lang</name>\n"
                                        "        <path>/app</path>\n"
                                        "        <secure>false</secure>\n"
                                        "        <expires/>\n"
                                        "        <contents><![CDATA[ja-JP]]></contents>\n"
                                        "    </webSiteInfo>\n"
                                        "</cookie>\n"));
    cookies_->load(path);
    QCOMPARE(names(), QStringList() << utf8("empty") << utf8("SID") << utf8("lang"));
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(1)),
             utf8(".example.com|SID|/|true|2031/05/06 07:08:09|a & b"));
}

void tst_TVNC_CookieSetting::transientCookieHasNoExpiry()
{
    QNetworkCookie cookie = makeCookie("n", "v");
    cookies_->addCookieInfo(cookie);
    number();
    QCOMPARE(cookies_->getAllCookieInfo().at(0).expires, QString());
}

void tst_TVNC_CookieSetting::expiryIsWrittenAsItStands_data()
{
    QTest::addColumn<QDateTime>("expires");
    QTest::addColumn<QString>("text");
    const QDate date(2031, 5, 6);
    const QTime time(7, 8, 9);
    QTest::newRow("UTC") << QDateTime(date, time, Qt::UTC) << utf8("2031/05/06 07:08:09");
    QTest::newRow("local") << QDateTime(date, time, Qt::LocalTime) << utf8("2031/05/06 07:08:09");
    QTest::newRow("afternoon") << QDateTime(date, QTime(23, 59, 59), Qt::UTC) << utf8("2031/05/06 23:59:59");
    QTest::newRow("milliseconds") << QDateTime(date, QTime(0, 0, 0, 999), Qt::UTC)
                                  << utf8("2031/05/06 00:00:00");
    QTest::newRow("skipped by daylight saving")
        << QDateTime(QDate(2031, 3, 30), QTime(2, 30), Qt::LocalTime) << utf8("2031/03/30 02:30:00");
    QTest::newRow("none") << QDateTime() << QString();
    QTest::newRow("no date") << QDateTime(QDate(2031, 2, 30), time, Qt::UTC) << QString();
}

void tst_TVNC_CookieSetting::expiryIsWrittenAsItStands()
{
    QFETCH(QDateTime, expires);
    QFETCH(QString, text);
    const char* const zones[] = {"UTC0", "JST-9", "CET-1CEST,M3.5.0,M10.5.0/3"};
    for (int i = 0; i < 3; ++i) {
        qputenv("TZ", zones[i]);
        tzset();
        cookies_->createXMLRootNode();
        QNetworkCookie cookie = makeCookie("n", "v", expires);
        cookies_->addCookieInfo(cookie);
        number();
        QCOMPARE(cookies_->getAllCookieInfo().at(0).expires, text);
    }
    qputenv("TZ", "UTC0");
    tzset();
}

void tst_TVNC_CookieSetting::bytesAreReadAsUtf8()
{
    QNetworkCookie cookie = makeCookie("n\xC3\xA9", "caf\xC3\xA9");
    cookies_->addCookieInfo(cookie);
    number();
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(0)), utf8(".example.com|né|/|false||café"));
}

void tst_TVNC_CookieSetting::newestEntryIsFirstAndHasNoNumber()
{
    QNetworkCookie first = makeCookie("first", "v");
    QNetworkCookie second = makeCookie("second", "v");
    cookies_->addCookieInfo(first);
    number();
    cookies_->addCookieInfo(second);
    QVERIFY(describe(root()).startsWith(utf8("(webSiteInfo(website'.example.com',name'second'")));
    QCOMPARE(names(), QStringList() << utf8("first"));
    number();
    QCOMPARE(names(), QStringList() << utf8("second") << utf8("first"));
}

void tst_TVNC_CookieSetting::sameCookieIsAddedTwice()
{
    QNetworkCookie cookie = makeCookie("n", "v");
    cookies_->addCookieInfo(cookie);
    cookies_->addCookieInfo(cookie);
    number();
    QCOMPARE(names(), QStringList() << utf8("n") << utf8("n"));
}

void tst_TVNC_CookieSetting::expiredCookieIsAdded()
{
    QNetworkCookie cookie = makeCookie("n", "v", utc("1999/01/01 00:00:00"));
    cookies_->addCookieInfo(cookie);
    number();
    QCOMPARE(cookies_->getAllCookieInfo().at(0).expires, utf8("1999/01/01 00:00:00"));
}

void tst_TVNC_CookieSetting::entryThatCannotBeCreatedIsGivenUpSilently()
{
    QNetworkCookie cookie = makeCookie("n", "v");
    failingObject = 1; // and all others, so that nothing more is tried
    cookies_->addCookieInfo(cookie);
    failingObject = 0;
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
    QCOMPARE(cookies_->getXMLNodeCnt(), 0);
}

void tst_TVNC_CookieSetting::entryWithAnElementThatCannotBeCreatedIsKept()
{
    QNetworkCookie cookie = makeCookie("n", "v");
    failingNode = 4;
    cookies_->addCookieInfo(cookie);
    failingNode = 0;
    QCOMPARE(describe(root()), utf8("(webSiteInfo(website'.example.com',name'n',secure'false',expires,"
                                    "contents cdata'v'))"));
}

// --- Reading ----------------------------------------------------------------------------------------------

void tst_TVNC_CookieSetting::entriesAreReadInTheOrderOfTheirNumbers()
{
    loadFrom("<cookie><webSiteInfo id='002'><name>c</name></webSiteInfo>"
             "<webSiteInfo id='000'><name>a</name></webSiteInfo>"
             "<webSiteInfo id='001'><name>b</name></webSiteInfo></cookie>");
    QCOMPARE(names(), QStringList() << utf8("a") << utf8("b") << utf8("c"));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_CookieSetting::entryWithoutElementsGivesAnEmptyRecord()
{
    loadFrom("<cookie><webSiteInfo id='000'/></cookie>");
    QCOMPARE(int(cookies_->getAllCookieInfo().size()), 1);
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(0)), utf8("|||||"));
}

void tst_TVNC_CookieSetting::missingElementsAreEmpty()
{
    loadFrom("<cookie><webSiteInfo id='0'><contents>v</contents><website>w</website></webSiteInfo>"
             "<webSiteInfo id='1'><name>n</name><name>other</name><secure>x</secure>"
             "<expires>never</expires></webSiteInfo></cookie>");
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(0)), utf8("w|||||v"));
    QCOMPARE(describe(cookies_->getAllCookieInfo().at(1)), utf8("|n||x|never|"));
}

void tst_TVNC_CookieSetting::gapsHideEntries()
{
    loadFrom("<cookie><webSiteInfo id='000'><name>a</name></webSiteInfo>"
             "<webSiteInfo id='002'><name>b</name></webSiteInfo>"
             "<webSiteInfo id='004'><name>hidden</name></webSiteInfo>"
             "<webSiteInfo id='-1'><name>hidden</name></webSiteInfo>"
             "<webSiteInfo><name>hidden</name></webSiteInfo></cookie>");
    // Five records, so the numbers from 0 to 4.
    QCOMPARE(names(), QStringList() << utf8("a") << utf8("b") << utf8("hidden"));
    loadFrom("<cookie><webSiteInfo id='000'><name>a</name></webSiteInfo>"
             "<webSiteInfo id='002'><name>hidden</name></webSiteInfo></cookie>");
    QCOMPARE(names(), QStringList() << utf8("a"));
}

void tst_TVNC_CookieSetting::firstOfEqualNumbersIsRead()
{
    loadFrom("<cookie><webSiteInfo id='1'><name>a</name></webSiteInfo>"
             "<webSiteInfo id='001'><name>b</name></webSiteInfo></cookie>");
    QCOMPARE(names(), QStringList() << utf8("a"));
}

void tst_TVNC_CookieSetting::anyNumberedElementIsAnEntry()
{
    loadFrom("<cookie><other id='0'><name>a</name></other></cookie>");
    QCOMPARE(names(), QStringList() << utf8("a"));
}

// --- Comparing --------------------------------------------------------------------------------------------

void tst_TVNC_CookieSetting::sameCookieMatches()
{
    QNetworkCookie cookie = makeCookie("n", "v", utc("2031/05/06 07:08:09"));
    TVNS_CookieInfo info = makeInfo(utf8(".example.com"), utf8("n"), utf8("/"), utf8("false"),
                                    utf8("2031/05/06 07:08:09"), utf8("v"));
    QVERIFY(cookies_->isMuchCookieInfo(cookie, info));
    cookie.setHttpOnly(true); // which the document does not have
    QVERIFY(cookies_->isMuchCookieInfo(cookie, info));
    cookie.setSecure(true);
    info.secure = utf8("true");
    QVERIFY(cookies_->isMuchCookieInfo(cookie, info));
    QCOMPARE(LogRecorder::take(), QString());

    QNetworkCookie empty;
    TVNS_CookieInfo emptyInfo = makeInfo(utf8(""), utf8(""), utf8(""), utf8("false"), utf8(""), utf8(""));
    QVERIFY(cookies_->isMuchCookieInfo(empty, emptyInfo));
    QVERIFY(!cookies_->isMuchCookieInfo(empty, info));
}

void tst_TVNC_CookieSetting::everyDifferenceButTheExpiryCounts_data()
{
    QTest::addColumn<QString>("website");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("secure");
    QTest::addColumn<QString>("expires");
    QTest::addColumn<QString>("contents");
    QTest::addColumn<bool>("matches");
    const QString website = utf8(".example.com"), name = utf8("n"), path = utf8("/"), secure = utf8("false"),
                  expires = utf8("2031/05/06 07:08:09"), contents = utf8("v");
    QTest::newRow("nothing") << website << name << path << secure << expires << contents << true;
    QTest::newRow("expiry") << website << name << path << secure << utf8("2032/05/06 07:08:09") << contents
                            << true;
    QTest::newRow("no expiry") << website << name << path << secure << QString() << contents << true;
    QTest::newRow("domain without dot")
        << utf8("example.com") << name << path << secure << expires << contents << false;
    QTest::newRow("case of the domain")
        << utf8(".Example.com") << name << path << secure << expires << contents << false;
    QTest::newRow("name") << website << utf8("N") << path << secure << expires << contents << false;
    QTest::newRow("path") << website << name << utf8("/a") << secure << expires << contents << false;
    QTest::newRow("secure") << website << name << path << utf8("true") << expires << contents << false;
    QTest::newRow("case of secure") << website << name << path << utf8("False") << expires << contents
                                    << false;
    QTest::newRow("no secure") << website << name << path << QString() << expires << contents << false;
    QTest::newRow("value") << website << name << path << secure << expires << utf8("v ") << false;
    QTest::newRow("no value") << website << name << path << secure << expires << QString() << false;
}

void tst_TVNC_CookieSetting::everyDifferenceButTheExpiryCounts()
{
    QFETCH(QString, website);
    QFETCH(QString, name);
    QFETCH(QString, path);
    QFETCH(QString, secure);
    QFETCH(QString, expires);
    QFETCH(QString, contents);
    QFETCH(bool, matches);
    QNetworkCookie cookie = makeCookie("n", "v", utc("2031/05/06 07:08:09"));
    TVNS_CookieInfo info = makeInfo(website, name, path, secure, expires, contents);
    QCOMPARE(cookies_->isMuchCookieInfo(cookie, info), matches);
}

void tst_TVNC_CookieSetting::onlyAsciiMatchesItsOwnEntry_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("matches");
    QTest::newRow("ASCII") << QByteArray("n") << QByteArray("v") << true;
    QTest::newRow("empty value") << QByteArray("n") << QByteArray() << true;
    QTest::newRow("name") << QByteArray("n\xC3\xA9") << QByteArray("v") << false;
    QTest::newRow("value") << QByteArray("n") << QByteArray("caf\xC3\xA9") << false;
    QTest::newRow("Latin-1 value") << QByteArray("n") << QByteArray("caf\xE9") << false;
    QTest::newRow("zero byte in the value") << QByteArray("n") << QByteArray("a\0b", 3) << true;
}

void tst_TVNC_CookieSetting::onlyAsciiMatchesItsOwnEntry()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(bool, matches);
    QNetworkCookie cookie = makeCookie("", "");
    cookie.setName(name);
    cookie.setValue(value);
    cookies_->addCookieInfo(cookie);
    number();
    TVNS_CookieInfo own = cookies_->getAllCookieInfo().at(0);
    QCOMPARE(cookies_->isMuchCookieInfo(cookie, own), matches);
    if (value.contains('\0'))
        QCOMPARE(own.contents, utf8("a")); // of bytes behind a zero byte the document knows nothing
    // What does match: the bytes before the first zero, as Latin-1.
    own.name = QString::fromLatin1(name.constData());
    own.contents = QString::fromLatin1(value.constData());
    QVERIFY(cookies_->isMuchCookieInfo(cookie, own));
}

// --- Deleting ---------------------------------------------------------------------------------------------

void tst_TVNC_CookieSetting::deletedEntryLeavesNoGap()
{
    loadFrom("<cookie><webSiteInfo id='000'><name>a</name></webSiteInfo>"
             "<webSiteInfo id='001'><name>b</name></webSiteInfo>"
             "<webSiteInfo id='002'><name>c</name></webSiteInfo></cookie>");
    cookies_->deleteCookieInfo(1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:1\n"));
    QCOMPARE(names(), QStringList() << utf8("a") << utf8("c"));
    QCOMPARE(describe(root()), utf8("cookie(webSiteInfo{id=000}(name'a'),webSiteInfo{id=001}(name'c'))"));
}

void tst_TVNC_CookieSetting::deletingNumbersNewEntries()
{
    loadFrom("<cookie><webSiteInfo id='000'><name>a</name></webSiteInfo></cookie>");
    QNetworkCookie cookie = makeCookie("new", "v");
    cookies_->addCookieInfo(cookie);
    cookies_->deleteCookieInfo(0);
    QCOMPARE(names(), QStringList() << utf8("new"));
}

void tst_TVNC_CookieSetting::deletingAnAbsentNumberOnlyRenumbers()
{
    loadFrom("<cookie><webSiteInfo id='7'><name>a</name></webSiteInfo></cookie>");
    cookies_->deleteCookieInfo(0);
    cookies_->deleteCookieInfo(-1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:0\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:-1\n"));
    QCOMPARE(names(), QStringList() << utf8("a"));
}

void tst_TVNC_CookieSetting::deletedEntryIsReleasedByTheEventLoop()
{
    loadFrom("<cookie><webSiteInfo id='0'/></cookie>");
    QPointer<TVNC_XMLNode> entry(root()->getXMLNodeChildren().at(0));
    cookies_->deleteCookieInfo(0);
    QVERIFY(!entry.isNull());
    releaseDeferred();
    QVERIFY(entry.isNull());
}

void tst_TVNC_CookieSetting::manyEntries()
{
    // Work that grows with the square of their number would not end.
    const int si_count = 200000;
    QByteArray document("<cookie>");
    for (int i = 0; i < si_count; ++i)
        document += "<webSiteInfo id='" + QByteArray::number(si_count - 1 - i) + "'><name>n" +
                    QByteArray::number(si_count - 1 - i) + "</name></webSiteInfo>";
    document += "</cookie>";
    loadFrom(document);
    const QList<TVNS_CookieInfo> infos = cookies_->getAllCookieInfo();
    QCOMPARE(int(infos.size()), si_count);
    for (int i = 0; i < si_count; i += 997)
        QCOMPARE(infos.at(i).name, QString::fromLatin1("n%1").arg(i));
}

TLVLIB_TEST_MAIN(tst_TVNC_CookieSetting)
#include "tst_TVNC_CookieSetting.moc"
