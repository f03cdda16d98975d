#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QSettings>

#include <ctime>

static const char ADD[] = "3 [TVNC_CookieSetting::addCookieInfo]";

/// An INI file without cookies, as bytes.
static const char NO_COOKIES[] = "[Cookie]\ncookies=@ByteArray(\\0\\0\\0\\0)\n";

static QNetworkCookie makeCookie(const char* pc_name, const char* pc_value,
                                 const QDateTime& expires = QDateTime())
{
    QNetworkCookie cookie(pc_name, pc_value);
    cookie.setDomain(utf8(".example.com"));
    cookie.setPath(utf8("/"));
    cookie.setExpirationDate(expires);
    return cookie;
}

/// An entry of a document without number, or with one.
static QByteArray entry(const char* pc_name, const char* pc_value, const char* pc_id = nullptr,
                        const char* pc_expires = "")
{
    return QByteArray("<webSiteInfo") + (pc_id ? QByteArray(" id='") + pc_id + "'" : QByteArray()) +
           "><website>.example.com</website><name>" + pc_name +
           "</name><path>/</path><secure>false</secure><expires>" + pc_expires +
           "</expires><contents><![CDATA[" + pc_value + "]]></contents></webSiteInfo>";
}

/// A document of numbered entries with the names prefix0, prefix1, ... and the value "v".
static QByteArray numberedEntries(const char* pc_prefix, int si_count)
{
    QByteArray document("<cookie docInfo='1.0'>");
    for (int i = 0; i < si_count; ++i)
        document +=
            entry((pc_prefix + QByteArray::number(i)).constData(), "v", QByteArray::number(i).constData());
    return document + "</cookie>";
}

static QList<QByteArray> rawForms(const QList<QNetworkCookie>& cookies)
{
    QList<QByteArray> list;
    foreach (const QNetworkCookie& cookie, cookies)
        list << cookie.toRawForm(QNetworkCookie::Full);
    return list;
}

static QString namesOf(const QList<QNetworkCookie>& cookies)
{
    QStringList list;
    foreach (const QNetworkCookie& cookie, cookies)
        list << QString::fromLatin1(cookie.name());
    return list.join(QLatin1String(" "));
}

static void setTimeZone(const char* pc_zone)
{
    qputenv("TZ", pc_zone);
    tzset();
}

class tst_TVNC_CookieSetting_ini : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void cookiesAreSavedAsTheDeviceDoes();
    void cookiesOfTheDeviceAreLoaded();
    void savedCookiesAreLoadedBack();
    void savingReplacesTheFile();
    void saveIntoAMissingOrUnwritableDirectoryDoesNotFail();
    void missingDirectoriesAreMade();
    void documentIsNotTouched();

    void expiredCookiesAreLoaded();
    void countMayLie_data();
    void countMayLie();
    void everyCookieOfAnEntryIsLoaded();
    void damagedDataGivesWhatIsReadable_data();
    void damagedDataGivesWhatIsReadable();
    void damagedFileGivesNoCookies_data();
    void damagedFileGivesNoCookies();
    void manyEmptyEntriesAreRead();

    void documentBecomesIni();
    void firstTwentyEntriesBecomeIni();
    void missingDocumentBecomesNoCookies();
    void entriesHiddenByGapsDoNotBecomeIni();
    void secureIsTheExactWord_data();
    void secureIsTheExactWord();
    void expiryIsReadAsLocalTime_data();
    void expiryIsReadAsLocalTime();
    void nullArgumentsAreLogged();
    void emptyPathsAreNotNull();
    void toIniLogsItsSteps();

    void cookiesBecomeADocument();
    void matchedEntriesStay();
    void changedValueReplacesTheEntry();
    void changedExpiryKeepsTheEntry();
    void vanishedCookiesAreDeleted();
    void withoutMemoryTheOtherFileStays();
    void newCookiesComeFirstInTheirOrder();
    void entriesBehindTheTwentiethStay();
    void eachEntryMatchesOneCookie();
    void otherThanAsciiIsReplacedEachTime();
    void positionsAreTakenForNumbers();
    void unnumberedEntriesStayAndAreNumbered();
    void missingIniDeletesTheFirstTwenty();
    void documentIsCreated();
    void toXmlLogsItsSteps();
    void transientCookieSurvivesBothWays();
    void httpOnlyIsLostInTheDocument();
    void expiryMovesByTheZoneOnce();
    void pathsAreReadAsLatin1();
    void cookiesNeverReachTheLog();

private:
    QString file() const { return dirName_ + utf8("cookie.ini"); }
    QString xml() const { return dirName_ + utf8("cookies.xml"); }
    void writeStream(const QByteArray& stream);
    QList<QNetworkCookie> load();
    void save(const QList<QNetworkCookie>& cookies);
    void toIni();
    void toXml();
    QString xmlNames();
    QString tree();

    TVNC_CookieSetting* cookies_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
};

void tst_TVNC_CookieSetting_ini::init()
{
    setTimeZone("UTC0");
    cookies_ = TVNC_CookieSetting::getInstance();
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    cookies_->createXMLRootNode();
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_CookieSetting_ini::cleanup()
{
    setTimeZone("UTC0");
}

/// Writes a cookie.ini with these bytes as its value.
void tst_TVNC_CookieSetting_ini::writeStream(const QByteArray& stream)
{
    QSettings settings(file(), QSettings::IniFormat);
    settings.setValue(utf8("Cookie/cookies"), stream);
}

QList<QNetworkCookie> tst_TVNC_CookieSetting_ini::load()
{
    const QList<QNetworkCookie> cookies = cookies_->loadCookieInfo(&dirName_, 20);
    LogRecorder::clear();
    return cookies;
}

void tst_TVNC_CookieSetting_ini::save(const QList<QNetworkCookie>& cookies)
{
    cookies_->saveCookieInfo(cookies, &dirName_, 20);
    LogRecorder::clear();
}

void tst_TVNC_CookieSetting_ini::toIni()
{
    QByteArray source = xml().toLatin1();
    QByteArray destination = dirName_.toLatin1();
    cookies_->convertCookieXMLToIni(source.data(), destination.data());
}

void tst_TVNC_CookieSetting_ini::toXml()
{
    QByteArray source = dirName_.toLatin1();
    QByteArray destination = xml().toLatin1();
    cookies_->convertCookieIniToXML(source.data(), destination.data());
}

/// The document's tree as the file has it.
QString tst_TVNC_CookieSetting_ini::tree()
{
    QString path = xml();
    cookies_->load(path);
    const QString result = ::describe(cookies_->getXMLRootNode());
    cookies_->deleteAllSetting();
    LogRecorder::clear();
    return result;
}

/// The names of the document's entries, in document order, each with its number: "000:a 001:b".
QString tst_TVNC_CookieSetting_ini::xmlNames()
{
    QStringList list;
    QString path = xml();
    QString name = utf8("name");
    cookies_->load(path);
    foreach (TVNC_XMLNode* pc_entry, cookies_->getXMLRootNode()->getXMLNodeChildren()) {
        TVNC_XMLNode* pc_name = pc_entry->getXMLNodeChildByName(name);
        list << pc_entry->getAttribute().value(utf8("id")).toString() + QLatin1Char(':') +
                    (pc_name ? pc_name->getText() : utf8("-"));
    }
    cookies_->deleteAllSetting();
    LogRecorder::clear();
    return list.join(QLatin1String(" "));
}

/// The seven cookies of the device's file.
static QList<QNetworkCookie> deviceCookies()
{
    QList<QNetworkCookie> cookies;
    QNetworkCookie sid("SID", "31d4d96e407aad42");
    sid.setDomain(utf8(".example.com"));
    sid.setPath(utf8("/"));
    sid.setSecure(true);
    sid.setHttpOnly(true);
    sid.setExpirationDate(QDateTime(QDate(2031, 5, 6), QTime(7, 8, 9), Qt::UTC));
    QNetworkCookie lang("lang", "ja-JP");
    lang.setDomain(utf8("www.example.jp"));
    lang.setPath(utf8("/app"));
    QNetworkCookie prefs("prefs", "a=1&b=2,3:4|5");
    prefs.setDomain(utf8("shop.example.org"));
    prefs.setPath(utf8("/"));
    prefs.setExpirationDate(QDateTime(QDate(2030, 12, 31), QTime(23, 59, 59), Qt::UTC));
    QNetworkCookie empty("empty", "");
    empty.setDomain(utf8("example.net"));
    empty.setPath(utf8("/"));
    QNetworkCookie bytes("utf8", "caf\xC3\xA9");
    bytes.setDomain(utf8("example.net"));
    bytes.setPath(utf8("/"));
    bytes.setExpirationDate(QDateTime(QDate(2029, 2, 28), QTime(0, 0), Qt::UTC));
    QNetworkCookie spaced("spaced", "two words");
    spaced.setDomain(utf8("example.net"));
    spaced.setPath(utf8("/a/b"));
    spaced.setSecure(true);
    spaced.setExpirationDate(QDateTime(QDate(2029, 2, 28), QTime(0, 0), Qt::UTC));
    QNetworkCookie pct("pct", "%E3%81%82%2C%3B");
    pct.setDomain(utf8("127.0.0.1"));
    pct.setPath(utf8("/"));
    pct.setHttpOnly(true);
    return cookies << sid << lang << prefs << empty << bytes << spaced << pct;
}

// --- cookie.ini -------------------------------------------------------------------------------------------

void tst_TVNC_CookieSetting_ini::cookiesAreSavedAsTheDeviceDoes()
{
    save(deviceCookies());
    QCOMPARE(readFile(file()), readFile(testData(utf8("cookie.ini"))));
}

void tst_TVNC_CookieSetting_ini::cookiesOfTheDeviceAreLoaded()
{
    writeFile(file(), readFile(testData(utf8("cookie.ini"))));
    const QList<QNetworkCookie> cookies = load();
    QCOMPARE(int(cookies.size()), 7);
    for (int i = 0; i < 7; ++i)
        QVERIFY2(cookies.at(i) == deviceCookies().at(i), cookies.at(i).name().constData());
}

void tst_TVNC_CookieSetting_ini::savedCookiesAreLoadedBack()
{
    save(deviceCookies());
    QVERIFY(load() == deviceCookies());
}

void tst_TVNC_CookieSetting_ini::savingReplacesTheFile()
{
    {
        QSettings settings(file(), QSettings::IniFormat);
        settings.setValue(utf8("Cookie/other"), 1);
        settings.setValue(utf8("Elsewhere/cookies"), 2);
        settings.setValue(utf8("general"), 3);
    }
    save(QList<QNetworkCookie>());
    QCOMPARE(readFile(file()), QByteArray(NO_COOKIES));
}

void tst_TVNC_CookieSetting_ini::saveIntoAMissingOrUnwritableDirectoryDoesNotFail()
{
    writeFile(dirName_ + utf8("file"), "as it was");
    QString dir = dirName_ + utf8("file/");
    cookies_->saveCookieInfo(deviceCookies(), &dir, 20);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::saveCookieInfo] start\n"
                                       "3 [TVNC_CookieSetting::saveCookieInfo] end\n"));
    QCOMPARE(readFile(dirName_ + utf8("file")), QByteArray("as it was"));
}

void tst_TVNC_CookieSetting_ini::missingDirectoriesAreMade()
{
    if (qVersion()[0] == '4')
        QSKIP("what Qt 4 makes was not looked at", SkipAll);
    QString dir = dirName_ + utf8("not/yet/there/");
    cookies_->saveCookieInfo(deviceCookies(), &dir, 20);
    QCOMPARE(QDir(dir).entryList(QDir::Files), QStringList(utf8("cookie.ini"))); // no lock stays
    QCOMPARE(int(cookies_->loadCookieInfo(&dir, 20).size()), int(deviceCookies().size()));
}

void tst_TVNC_CookieSetting_ini::documentIsNotTouched()
{
    makeNode(cookies_->getXMLRootNode(), "webSiteInfo");
    save(deviceCookies());
    load();
    QCOMPARE(::describe(cookies_->getXMLRootNode()), utf8("(webSiteInfo)"));
}

void tst_TVNC_CookieSetting_ini::expiredCookiesAreLoaded()
{
    const QDateTime expired(QDate(1999, 1, 1), QTime(0, 0), Qt::UTC);
    save(QList<QNetworkCookie>() << makeCookie("n", "v", expired));
    QCOMPARE(int(load().size()), 1);
    QVERIFY(load().at(0).expirationDate() == expired);
}

void tst_TVNC_CookieSetting_ini::countMayLie_data()
{
    QTest::addColumn<int>("si_count");
    QTest::addColumn<QString>("names");
    QTest::newRow("none") << 0 << QString();
    QTest::newRow("too few") << 1 << utf8("a");
    QTest::newRow("right") << 2 << utf8("a b");
    QTest::newRow("too many") << 3 << utf8("a b");
    QTest::newRow("as many as there are") << -1 << utf8("a b");
    QTest::newRow("largest") << 0x7FFFFFFF << utf8("a b");
    QTest::newRow("smallest") << -0x7FFFFFFF - 1 << utf8("a b");
}

void tst_TVNC_CookieSetting_ini::countMayLie()
{
    QFETCH(int, si_count);
    QFETCH(QString, names);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint32(si_count) << QByteArray("a=1") << QByteArray("b=2");
    writeStream(bytes);
    QCOMPARE(namesOf(load()), names);
}

void tst_TVNC_CookieSetting_ini::everyCookieOfAnEntryIsLoaded()
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint32(4) << QByteArray("a=1; path=/x\nb=2; secure") << QByteArray() << QByteArray("=; ;")
           << QByteArray("c=3");
    writeStream(bytes);
    const QList<QNetworkCookie> cookies = load();
    QCOMPARE(namesOf(cookies), utf8("a b c"));
    QCOMPARE(cookies.at(0).path(), utf8("/x"));
    QVERIFY(cookies.at(1).isSecure());
}

void tst_TVNC_CookieSetting_ini::damagedDataGivesWhatIsReadable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("names");
    const QByteArray a("\0\0\0\3a=1", 7);
    const QByteArray two("\0\0\0\2", 4);
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("part of the count") << QByteArray("\0\0\1", 3) << QString();
    QTest::newRow("count alone") << two << QString();
    QTest::newRow("part of a length") << two + a + QByteArray("\0\0", 2) << utf8("a");
    QTest::newRow("length beyond the end") << two + a + QByteArray("\0\0\0\7b=2", 7) << utf8("a");
    QTest::newRow("length of 2 GB") << two + a + "\x7F\xFF\xFF\xFF" + "b=2" << utf8("a");
    QTest::newRow("length of 4 GB") << two + a + "\xFF\xFF\xFF\xFE" + "b=2" << utf8("a");
    // All bits set is how a stream writes a null byte array.
    QTest::newRow("null entry") << two + "\xFF\xFF\xFF\xFF" + a << utf8("a");
    QTest::newRow("data behind the last") << two + a + a + "rest" << utf8("a a");
}

void tst_TVNC_CookieSetting_ini::damagedDataGivesWhatIsReadable()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, names);
    writeStream(bytes);
    QCOMPARE(namesOf(load()), names);
}

void tst_TVNC_CookieSetting_ini::damagedFileGivesNoCookies_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no section") << QByteArray("cookies=@ByteArray(\\0\\0\\0\\x1\\0\\0\\0\\x3)a=1\n");
    QTest::newRow("other section") << QByteArray("[Cookies]\ncookies=@ByteArray(\\0\\0\\0\\0)\n");
    QTest::newRow("text") << QByteArray("[Cookie]\ncookies=@Invalid()\n");
    QTest::newRow("zero bytes") << QByteArray(1000, '\0');
    QTest::newRow("noise") << QByteArray("\xFF\xFE[Cookie\n]=%%%\\x\n\"\"\"", 21);
}

void tst_TVNC_CookieSetting_ini::damagedFileGivesNoCookies()
{
    QFETCH(QByteArray, bytes);
    writeFile(file(), bytes);
    QCOMPARE(namesOf(load()), QString());
    QCOMPARE(readFile(file()), bytes);
}

void tst_TVNC_CookieSetting_ini::manyEmptyEntriesAreRead()
{
    QByteArray bytes("\xFF\xFF\xFF\xFF");
    bytes += QByteArray(400000, '\0'); // entries of no bytes
    bytes += QByteArray("\0\0\0\3a=1", 7);
    writeStream(bytes);
    QCOMPARE(namesOf(load()), utf8("a"));
}

// --- From the document to cookie.ini ----------------------------------------------------------------------

void tst_TVNC_CookieSetting_ini::documentBecomesIni()
{
    const QByteArray document = "<cookie docInfo='1.0'>"
                                "<webSiteInfo id='000'><website>.example.com</website><name>né</name>"
                                "<path>/a</path><secure>true</secure>"
                                "<expires>2031/05/06 07:08:09</expires>"
                                "<contents><![CDATA[café & co]]></contents></webSiteInfo>"
                                "<webSiteInfo id='001'><name>bare</name></webSiteInfo></cookie>";
    writeFile(xml(), document);
    toIni();
    QCOMPARE(rawForms(load()), QList<QByteArray>()
                                   << "n\xC3\xA9=caf\xC3\xA9 & co; secure; "
                                      "expires=Tue, 06-May-2031 07:08:09 GMT; domain=.example.com; path=/a"
                                   << "bare=");
    QCOMPARE(readFile(xml()), document);
    QVERIFY(cookies_->getXMLRootNode());
    QCOMPARE(cookies_->getXMLNodeCnt(), 0);
}

void tst_TVNC_CookieSetting_ini::firstTwentyEntriesBecomeIni()
{
    writeFile(xml(), numberedEntries("n", 25));
    toIni();
    const QList<QNetworkCookie> cookies = load();
    QCOMPARE(int(cookies.size()), 20);
    QCOMPARE(cookies.at(0).name(), QByteArray("n0"));
    QCOMPARE(cookies.at(19).name(), QByteArray("n19"));
    QVERIFY(readFile(file()).contains("@ByteArray(\\0\\0\\0\\x14\\0\\0\\0"));

    writeFile(xml(), numberedEntries("n", 20));
    toIni();
    QCOMPARE(int(load().size()), 20);
}

void tst_TVNC_CookieSetting_ini::missingDocumentBecomesNoCookies()
{
    save(deviceCookies());
    toIni();
    QCOMPARE(readFile(file()), QByteArray(NO_COOKIES));
    save(deviceCookies());
    writeFile(xml(), "<cookie docInfo='1.0'/>");
    toIni();
    QCOMPARE(readFile(file()), QByteArray(NO_COOKIES));
}

void tst_TVNC_CookieSetting_ini::entriesHiddenByGapsDoNotBecomeIni()
{
    writeFile(xml(), "<cookie>" + entry("a", "v", "1") + entry("hidden", "v", "2") + "</cookie>");
    toIni();
    QCOMPARE(namesOf(load()), utf8("a"));
}

void tst_TVNC_CookieSetting_ini::secureIsTheExactWord_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<bool>("secure");
    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("false") << QByteArray("false") << false;
    QTest::newRow("upper case") << QByteArray("TRUE") << false;
    QTest::newRow("blank") << QByteArray("true ") << false;
    QTest::newRow("number") << QByteArray("1") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void tst_TVNC_CookieSetting_ini::secureIsTheExactWord()
{
    QFETCH(QByteArray, word);
    QFETCH(bool, secure);
    writeFile(xml(), "<c><w id='0'><name>n</name><secure>" + word + "</secure></w></c>");
    toIni();
    QCOMPARE(int(load().size()), 1);
    QCOMPARE(load().at(0).isSecure(), secure);
}

void tst_TVNC_CookieSetting_ini::expiryIsReadAsLocalTime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("raw");
    const QByteArray none;
    const QByteArray cet("CET-1CEST,M3.5.0,M10.5.0/3");
    QTest::newRow("UTC") << QByteArray("UTC0") << QByteArray("2031/05/06 07:08:09")
                         << QByteArray("; expires=Tue, 06-May-2031 07:08:09 GMT");
    QTest::newRow("Japan") << QByteArray("JST-9") << QByteArray("2031/05/06 07:08:09")
                           << QByteArray("; expires=Mon, 05-May-2031 22:08:09 GMT");
    QTest::newRow("west") << QByteArray("EST5") << QByteArray("2031/05/06 07:08:09")
                          << QByteArray("; expires=Tue, 06-May-2031 12:08:09 GMT");
    QTest::newRow("summer") << cet << QByteArray("2031/07/01 12:00:00")
                            << QByteArray("; expires=Tue, 01-Jul-2031 10:00:00 GMT");
    QTest::newRow("hours after a change of the clock")
        << cet << QByteArray("2031/03/30 12:00:00") << QByteArray("; expires=Sun, 30-Mar-2031 10:00:00 GMT");
    QTest::newRow("skipped by daylight saving")
        << cet << QByteArray("2031/03/30 02:30:00") << QByteArray("; expires=Sun, 30-Mar-2031 01:30:00 GMT");
    QTest::newRow("empty") << QByteArray("UTC0") << QByteArray() << none;
    QTest::newRow("without seconds") << QByteArray("UTC0") << QByteArray("2031/05/06 07:08") << none;
    QTest::newRow("other separators") << QByteArray("UTC0") << QByteArray("2031-05-06 07:08:09") << none;
    QTest::newRow("no such day") << QByteArray("UTC0") << QByteArray("2031/02/29 07:08:09") << none;
    QTest::newRow("no such time") << QByteArray("UTC0") << QByteArray("2031/02/28 24:00:00") << none;
    QTest::newRow("word") << QByteArray("UTC0") << QByteArray("never") << none;
}

void tst_TVNC_CookieSetting_ini::expiryIsReadAsLocalTime()
{
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, raw);
    setTimeZone(zone.constData());
    writeFile(xml(), "<c>" + entry("n", "v", "0", text.constData()) + "</c>");
    toIni();
    QCOMPARE(rawForms(load()), QList<QByteArray>() << "n=v" + raw + "; domain=.example.com; path=/");
}

void tst_TVNC_CookieSetting_ini::nullArgumentsAreLogged()
{
    writeFile(xml(), numberedEntries("n", 1));
    QByteArray document = xml().toLatin1();
    QByteArray dir = dirName_.toLatin1();
    makeNode(cookies_->getXMLRootNode(), "webSiteInfo");
    cookies_->convertCookieXMLToIni(nullptr, dir.data());
    cookies_->convertCookieXMLToIni(document.data(), nullptr);
    cookies_->convertCookieXMLToIni(nullptr, nullptr);
    // Both conversions log the same text.
    cookies_->convertCookieIniToXML(nullptr, document.data());
    cookies_->convertCookieIniToXML(dir.data(), nullptr);
    cookies_->convertCookieIniToXML(nullptr, nullptr);
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"
                                       "1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"
                                       "1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"
                                       "1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"
                                       "1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"
                                       "1 [TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.\n"));
    QVERIFY(!QFile::exists(file()));
    QCOMPARE(readFile(xml()), numberedEntries("n", 1));
    QCOMPARE(cookies_->getXMLNodeCnt(), 1);
}

void tst_TVNC_CookieSetting_ini::emptyPathsAreNotNull()
{
    char c_empty[] = "";
    QByteArray dir = dirName_.toLatin1();
    QByteArray document = xml().toLatin1();
    QNetworkCookie cookie = makeCookie("held", "v");
    QString id = utf8("id");

    // Without a document path the document that the store holds is converted, and emptied.
    cookies_->addCookieInfo(cookie);
    cookies_->setIDforChildren(id);
    cookies_->convertCookieXMLToIni(c_empty, dir.data());
    QCOMPARE(namesOf(load()), utf8("held"));
    QCOMPARE(cookies_->getXMLNodeCnt(), 0);

    // Without a directory nothing is written.
    writeFile(xml(), numberedEntries("n", 1));
    LogRecorder::clear();
    cookies_->convertCookieXMLToIni(document.data(), c_empty);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_CookieSetting::saveCookieInfo] start\n"
                                       "2 [TVNC_CookieSetting::saveCookieInfo] Path is NULL or empty.\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
    QCOMPARE(namesOf(load()), utf8("held"));

    // Without a directory there are no cookies, so the entries go.
    cookies_->convertCookieIniToXML(c_empty, document.data());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::loadCookieInfo] start\n"
                                       "2 [TVNC_CookieSetting::loadCookieInfo] Path is NULL or empty.\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:0\n"
                                       "3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
    QCOMPARE(tree(), utf8("cookie{docInfo=1.0}"));

    // Without a document path nothing is read or written.
    cookies_->convertCookieIniToXML(dir.data(), c_empty);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::loadCookieInfo] start\n"
                                       "3 [TVNC_CookieSetting::loadCookieInfo] end\n"
                                       "2 [TVNC_XMLSetting::load] Path is NULL or empty.\n"
                                       "3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "2 [TVNC_XMLSetting::save] Path is NULL or empty.\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
}

void tst_TVNC_CookieSetting_ini::toIniLogsItsSteps()
{
    writeFile(xml(), numberedEntries("n", 2));
    toIni();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_CookieSetting::saveCookieInfo] start\n"
                                       "3 [TVNC_CookieSetting::saveCookieInfo] end\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
}

// --- From cookie.ini to the document ----------------------------------------------------------------------

void tst_TVNC_CookieSetting_ini::cookiesBecomeADocument()
{
    QNetworkCookie first = makeCookie("first", "1", QDateTime(QDate(2031, 5, 6), QTime(7, 8, 9), Qt::UTC));
    QNetworkCookie second = makeCookie("second", "a & b");
    second.setSecure(true);
    save(QList<QNetworkCookie>() << first << second);
    toXml();
    QCOMPARE(readFile(xml()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                         "<cookie docInfo=\"1.0\">\n"
                                         "    <webSiteInfo id=\"000\">\n"
                                         "        <website>.example.com</website>\n"
                                         "        <name>first</name>\n"
                                         "        <path>/</path>\n"
                                         "        <secure>false</secure>\n"
                                         "        <expires>2031/05/06 07:08:09</expires>\n"
                                         "        <contents><![CDATA[1]]></contents>\n"
                                         "    </webSiteInfo>\n"
                                         "    <webSiteInfo id=\"001\">\n"
                                         "        <website>.example.com</website>\n"
                                         "        <name>second</name>\n"
                                         "        <path>/</path>\n"
                                         "        <secure>true</secure>\n"
                                         "        <expires/>\n"
                                         "        <contents><![CDATA[a & b]]></contents>\n"
                                         "    </webSiteInfo>\n"
                                         "</cookie>\n"));
    QCOMPARE(cookies_->getXMLNodeCnt(), 0);
    QCOMPARE(namesOf(load()), utf8("first second")); // cookie.ini stays
}

void tst_TVNC_CookieSetting_ini::matchedEntriesStay()
{
    // In another order in the two files; the extra element shows that the entries are the same.
    writeFile(xml(), "<other x='y'>" + entry("a", "1", "000") + entry("b", "2", "001") +
                         "<webSiteInfo id='002'><kept/><website>.example.com</website><name>c</name>"
                         "<path>/</path><secure>false</secure><contents>3</contents></webSiteInfo></other>");
    save(QList<QNetworkCookie>() << makeCookie("c", "3") << makeCookie("b", "2") << makeCookie("a", "1"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:a 001:b 002:c"));
    QVERIFY(tree().startsWith(utf8("cookie{docInfo=1.0}(webSiteInfo{id=000}(")));
    QVERIFY(tree().contains(utf8("webSiteInfo{id=002}(kept,")));

    const QByteArray before = readFile(xml());
    toXml();
    QCOMPARE(readFile(xml()), before);
}

void tst_TVNC_CookieSetting_ini::changedValueReplacesTheEntry()
{
    writeFile(xml(), "<c>" + entry("a", "1", "000") + entry("b", "2", "001") + "</c>");
    save(QList<QNetworkCookie>() << makeCookie("a", "1") << makeCookie("b", "new"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:b 001:a"));
    QVERIFY(tree().contains(utf8("contents cdata'new'")));
    QVERIFY(!tree().contains(utf8("contents cdata'2'")));
}

void tst_TVNC_CookieSetting_ini::changedExpiryKeepsTheEntry()
{
    writeFile(xml(), "<c>" + entry("a", "1", "000", "2020/01/01 00:00:00") + "</c>");
    save(QList<QNetworkCookie>() << makeCookie("a", "1",
                                               QDateTime(QDate(2031, 5, 6), QTime(7, 8, 9), Qt::UTC)));
    toXml();
    QVERIFY(tree().contains(utf8("expires'2020/01/01 00:00:00'")));
}

void tst_TVNC_CookieSetting_ini::vanishedCookiesAreDeleted()
{
    writeFile(xml(), numberedEntries("n", 5));
    save(QList<QNetworkCookie>() << makeCookie("n3", "v") << makeCookie("n1", "v"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:n1 001:n3"));
}

// Neither an empty document for want of memory nor a part of one replaces what is in the other file.
void tst_TVNC_CookieSetting_ini::withoutMemoryTheOtherFileStays()
{
    writeFile(xml(), numberedEntries("n", 2));
    save(QList<QNetworkCookie>() << makeCookie("x", "v") << makeCookie("y", "v"));
    const QByteArray document = readFile(xml());
    const QByteArray ini = readFile(file());
    // A root and two entries of seven elements are read, and two such entries are added.
    for (int i = 1; i <= 29; ++i) {
        failingNode = i;
        toXml();
        QCOMPARE(failingNode, 0);
        QCOMPARE(readFile(xml()), document);
        QCOMPARE(cookies_->getXMLNodeCnt(), 0); // emptied as always
        QVERIFY(LogRecorder::take().contains(utf8("1 [TVNG_ifMemory] Fail\n")));
    }
    for (int i = 1; i <= 15; ++i) {
        failingNode = i;
        toIni();
        QCOMPARE(failingNode, 0);
        QCOMPARE(readFile(file()), ini);
        QCOMPARE(cookies_->getXMLNodeCnt(), 0);
        QVERIFY(LogRecorder::take().contains(utf8("1 [TVNG_ifMemory] Fail\n")));
    }
    toXml();
    QCOMPARE(xmlNames(), utf8("000:x 001:y"));
    writeFile(xml(), document);
    toIni();
    QCOMPARE(namesOf(load()), utf8("n0 n1"));
}

void tst_TVNC_CookieSetting_ini::newCookiesComeFirstInTheirOrder()
{
    writeFile(xml(), numberedEntries("n", 2));
    save(QList<QNetworkCookie>() << makeCookie("x", "v") << makeCookie("n1", "v") << makeCookie("y", "v")
                                 << makeCookie("n0", "v") << makeCookie("z", "v"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:x 001:y 002:z 003:n0 004:n1"));
}

void tst_TVNC_CookieSetting_ini::entriesBehindTheTwentiethStay()
{
    writeFile(xml(), numberedEntries("n", 22));
    save(QList<QNetworkCookie>() << makeCookie("n19", "v") << makeCookie("n20", "v"));
    toXml();
    // The 21st is not compared, so its cookie is added once more.
    QCOMPARE(xmlNames(), utf8("000:n20 001:n19 002:n20 003:n21"));
}

void tst_TVNC_CookieSetting_ini::eachEntryMatchesOneCookie()
{
    writeFile(xml(), "<c>" + entry("a", "1", "000") + entry("a", "1", "001") + "</c>");
    save(QList<QNetworkCookie>() << makeCookie("a", "1") << makeCookie("a", "1") << makeCookie("a", "1"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:a 001:a 002:a"));
    save(QList<QNetworkCookie>() << makeCookie("a", "1"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:a"));
}

void tst_TVNC_CookieSetting_ini::otherThanAsciiIsReplacedEachTime()
{
    save(QList<QNetworkCookie>() << makeCookie("a", "1") << makeCookie("b", "caf\xC3\xA9"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:a 001:b"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:b 001:a"));
    LogRecorder::clear();
    toXml();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::loadCookieInfo] start\n"
                                       "3 [TVNC_CookieSetting::loadCookieInfo] end\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:0\n"
                                       "3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
}

void tst_TVNC_CookieSetting_ini::positionsAreTakenForNumbers()
{
    // By number: b is 0, a is 2, c is 3. Positions in the list: b 0, a 1, c 2 (d has no number below 4).
    writeFile(xml(), "<c>" + entry("a", "1", "2") + entry("b", "1", "0") + entry("c", "1", "3") +
                         entry("d", "1", "9") + "</c>");
    save(QList<QNetworkCookie>() << makeCookie("b", "1") << makeCookie("a", "1"));
    toXml();
    // c, at position 2, was not matched, but the entry numbered 2 is a.
    QCOMPARE(xmlNames(), utf8("000:b 001:c 002:d"));
}

void tst_TVNC_CookieSetting_ini::unnumberedEntriesStayAndAreNumbered()
{
    writeFile(xml(), "<c>" + entry("a", "1") + entry("b", "1") + "</c>");
    save(QList<QNetworkCookie>() << makeCookie("a", "1"));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:a 001:a 002:b"));
}

void tst_TVNC_CookieSetting_ini::missingIniDeletesTheFirstTwenty()
{
    writeFile(xml(), numberedEntries("n", 22));
    toXml();
    QCOMPARE(xmlNames(), utf8("000:n20 001:n21"));
    QVERIFY(!QFile::exists(file()));
}

void tst_TVNC_CookieSetting_ini::documentIsCreated()
{
    toXml();
    QCOMPARE(readFile(xml()),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<cookie docInfo=\"1.0\"/>\n"));
}

void tst_TVNC_CookieSetting_ini::toXmlLogsItsSteps()
{
    writeFile(xml(), numberedEntries("n", 3));
    save(QList<QNetworkCookie>() << makeCookie("x", "v") << makeCookie("n1", "v") << makeCookie("y", "v"));
    toXml();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_CookieSetting::loadCookieInfo] start\n"
                                       "3 [TVNC_CookieSetting::loadCookieInfo] end\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:2\n"
                                       "3 [TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:0\n"
                                       "3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "3 [TVNC_CookieSetting::addCookieInfo]\n"
                                       "3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
}

void tst_TVNC_CookieSetting_ini::transientCookieSurvivesBothWays()
{
    save(QList<QNetworkCookie>() << makeCookie("n", "v"));
    toXml();
    QVERIFY(tree().contains(utf8("name'n',path'/',secure'false',expires,contents")));
    toIni();
    QCOMPARE(int(load().size()), 1);
    QVERIFY(load().at(0).isSessionCookie());
}

void tst_TVNC_CookieSetting_ini::httpOnlyIsLostInTheDocument()
{
    QNetworkCookie cookie = makeCookie("n", "v");
    cookie.setHttpOnly(true);
    save(QList<QNetworkCookie>() << cookie);
    QVERIFY(load().at(0).isHttpOnly());
    toXml();
    toIni();
    QVERIFY(!load().at(0).isHttpOnly());
}

void tst_TVNC_CookieSetting_ini::expiryMovesByTheZoneOnce()
{
    setTimeZone("JST-9");
    save(QList<QNetworkCookie>() << makeCookie("n", "v",
                                               QDateTime(QDate(2031, 5, 6), QTime(7, 8, 9), Qt::UTC)));
    toXml();
    QVERIFY(tree().contains(utf8("expires'2031/05/06 07:08:09'")));
    toIni();
    QVERIFY(load().at(0).expirationDate() == QDateTime(QDate(2031, 5, 5), QTime(22, 8, 9), Qt::UTC));
    toXml(); // the entry matches and keeps its text
    QVERIFY(tree().contains(utf8("expires'2031/05/06 07:08:09'")));
}

void tst_TVNC_CookieSetting_ini::pathsAreReadAsLatin1()
{
    const QString dir = dirName_ + QString::fromLatin1("d\xE9") + QLatin1Char('/');
    QVERIFY(QDir().mkdir(dir));
    QByteArray destination = dir.toLatin1();
    QByteArray source = xml().toLatin1();
    writeFile(xml(), numberedEntries("n", 1));
    cookies_->convertCookieXMLToIni(source.data(), destination.data());
    QVERIFY(QFile::exists(dir + utf8("cookie.ini")));
}

void tst_TVNC_CookieSetting_ini::cookiesNeverReachTheLog()
{
    QNetworkCookie cookie = makeCookie("secretname", "secretvalue");
    cookie.setDomain(utf8("secret.example.com"));
    cookie.setPath(utf8("/secretpath"));
    cookies_->saveCookieInfo(QList<QNetworkCookie>() << cookie, &dirName_, 20);
    toXml();
    cookie.setValue("secretother");
    cookies_->saveCookieInfo(QList<QNetworkCookie>() << cookie, &dirName_, 20);
    toXml();
    toIni();
    const QString log = LogRecorder::take();
    QVERIFY(log.contains(utf8(ADD)));
    QVERIFY(!log.contains(utf8("secret")));
}

TLVLIB_TEST_MAIN(tst_TVNC_CookieSetting_ini)
#include "tst_TVNC_CookieSetting_ini.moc"
