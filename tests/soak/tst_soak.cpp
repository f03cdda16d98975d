#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QTimer>

#include <ctime>

/**
 * A long run: mixed operations on all stores, as a browser's user causes them, with a plain list beside each
 * store that does what its rules say. Every answer must agree. An event loop runs around it, and frees what
 * the stores let go.
 *
 * TLVLIB_SOAK_OPERATIONS and TLVLIB_SOAK_SEED in the environment set another length and another course,
 * TLVLIB_SOAK_GROWTH how many kilobytes the process may grow after the first quarter.
 */
class tst_soak : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void answersAgree();

public slots:
    void turn();

private:
    void step();
    quint32 next(quint32 ul_below) { return random_->next(ul_below); }
    QString randomText(int si_maxUnits);

    void bookmarkStep();
    void historyStep();
    void loginStep();
    void fontStep();
    void preferenceStep();
    void cookieStep();
    void thumbnailStep();
    void compareBookmarks();
    void compareVisits();
    void compareLogins();
    void compareCookies();

    struct Visit
    {
        QString title;
        QString url;
        QDateTime dateTime;
    };

    QScopedPointer<TempDir> dir_;
    QString path_;
    QScopedPointer<Random> random_;
    int si_minutes; ///< of the clock, which only goes forward
    QList<TVNS_Bookmark> bookmarks_;
    QList<Visit> visits_;
    QList<TVNS_AuthInfo> logins_;
    QStringList fonts_;
    QString home_;
    short si_zoom;
    QByteArray proxyUser_;
    QList<TVNS_CookieInfo> cookieEntries_; ///< of the document
    QList<QNetworkCookie> cookies_;        ///< of cookie.ini
    QMap<QString, QByteArray> pictures_;

    QEventLoop loop_;
    int si_operations; ///< how many there are to be
    int si_done;
    int si_resident; ///< kilobytes, when a quarter was done
};

static const int MAX = 40;
static const QDateTime START(QDate(2011, 4, 12), QTime(0, 0), Qt::UTC);

static TVNC_BookmarksSetting& bookmarks()
{
    return *TVNC_BookmarksSetting::getInstance();
}

static TVNC_HistorySetting& history()
{
    return *TVNC_HistorySetting::getInstance();
}

static TVNC_AuthSetting& auth()
{
    return *TVNC_AuthSetting::getInstance();
}

static TVNC_FontListSetting& fonts()
{
    return *TVNC_FontListSetting::getInstance();
}

static TVNC_BrowserUserSetting& user()
{
    return *TVNC_BrowserUserSetting::getInstance();
}

static TVNC_BrowserCommonSetting& common()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

static TVNC_CookieSetting& cookies()
{
    return *TVNC_CookieSetting::getInstance();
}

static int environmentNumber(const char* pc_name, int si_usual)
{
    bool b_ok = false;
    const int si_number = qgetenv(pc_name).toInt(&b_ok);
    return b_ok ? si_number : si_usual;
}

/// Resident kilobytes; 0 where the system does not tell.
static int residentKilobytes()
{
    foreach (const QByteArray& line, readFile(QLatin1String("/proc/self/status")).split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toInt();
    }
    return 0;
}

/// Text that a document can hold as it is: no blanks alone, no carriage return.
QString tst_soak::randomText(int si_maxUnits)
{
    static const ushort UNITS[] = {'a', 'b', ' ', '<', '&', '"', ']', '>', '\n', 0xE9, 0x65E5, 0x8A9E};
    QString text(QLatin1Char('x'));
    for (quint32 i = next(static_cast<quint32>(si_maxUnits)); i > 0; --i)
        text.append(QChar(UNITS[next(sizeof UNITS / sizeof UNITS[0])]));
    return text;
}

void tst_soak::initTestCase()
{
    qputenv("TZ", "UTC"); // cookies' expiry is written in one zone and read in another
    tzset();
    dir_.reset(new TempDir);
    path_ = dir_->path();
    QVERIFY(QDir().mkpath(path_ + utf8("pictures")) && QDir().mkpath(path_ + utf8("unpacked")));
    random_.reset(new Random(static_cast<quint32>(environmentNumber("TLVLIB_SOAK_SEED", 20110412))));
    si_minutes = 0;
    si_zoom = 6;
    home_ = utf8("about:blank");
    int si_last = 0;
    bookmarks().loadBookmark(&path_, MAX, si_last);
    history().loadHistory(&path_, MAX);
    auth().loadAuthInfo(&path_, MAX);
    fonts().loadFontList(path_);
    user().loadSetting(&path_);
    common().loadSetting(&path_);
}

// --- Bookmarks

void tst_soak::bookmarkStep()
{
    const int si_size = static_cast<int>(bookmarks_.size());
    const int si_id =
        static_cast<int>(next(static_cast<quint32>(si_size) + 2)); // now and then one that is none
    const bool b_known = si_id < si_size;
    QString text = randomText(120); // up to three bytes a unit, so that some are cut
    switch (next(6)) {
    case 0:
    case 1: {
        TVNS_Bookmark added = {text, utf8("http://") + randomText(90), QString()};
        const bool b_fits = added.href.toUtf8().size() <= 256;
        QCOMPARE(bookmarks().setBookmark(&added), b_fits);
        added.title = text.toUtf8().size() <= 100 ? text : bookmarks().ClipString(text, 100);
        QVERIFY(added.title.toUtf8().size() <= 100 && text.startsWith(added.title));
        if (b_fits)
            bookmarks_.prepend(added);
        if (bookmarks_.size() > MAX) { // the browser bounds the list
            bookmarks().deleteBookmark(MAX);
            bookmarks_.removeLast();
        }
        break;
    }
    case 2:
        bookmarks().deleteBookmark(si_id);
        if (b_known)
            bookmarks_.removeAt(si_id);
        break;
    case 3:
        text = bookmarks().ClipString(text, 100);
        QCOMPARE(bookmarks().setBookmarkTitle(si_id, &text), b_known);
        if (b_known)
            bookmarks_[si_id].title = text;
        break;
    case 4: {
        QString url = utf8("http://") + randomText(20);
        QCOMPARE(bookmarks().setBookmarkURL(si_id, &url), b_known);
        if (b_known)
            bookmarks_[si_id].href = url;
        break;
    }
    default: {
        int si_last = 0;
        bookmarks().saveBookmark(&path_, MAX);
        bookmarks().loadBookmark(&path_, MAX, si_last);
        break;
    }
    }
}

void tst_soak::compareBookmarks()
{
    QCOMPARE(bookmarks().getBookmarkCnt(), static_cast<int>(bookmarks_.size()));
    for (int i = 0; i < bookmarks_.size(); ++i) {
        TVNS_Bookmark bookmark;
        QVERIFY(bookmarks().getBookmark(i, &bookmark));
        QCOMPARE(bookmark.title, bookmarks_.at(i).title);
        QCOMPARE(bookmark.href, bookmarks_.at(i).href);
    }
    TVNS_Bookmark none;
    QVERIFY(!bookmarks().getBookmark(static_cast<int>(bookmarks_.size()), &none));
}

// --- History

void tst_soak::historyStep()
{
    const int si_size = static_cast<int>(visits_.size());
    const int si_id = static_cast<int>(next(static_cast<quint32>(si_size) + 2));
    QString text = randomText(40);
    switch (next(5)) {
    case 0:
    case 1: {
        si_minutes += 1 + static_cast<int>(next(90));
        const QDateTime now = START.addSecs(60 * si_minutes);
        TVNS_History visit;
        visit.title = text;
        visit.url = utf8("http://") + QString::number(next(60));
        visit.dateTime = QDateTime(now.date(), now.time());
        const int si_earlier = history().getHistoryIndex(visit.url);
        int si_expected = -1;
        for (int i = 0; i < si_size && si_expected < 0; ++i) {
            if (visits_.at(i).url == visit.url)
                si_expected = i;
        }
        QCOMPARE(si_earlier, si_expected);
        if (si_earlier >= 0) {
            history().deleteHistory(si_earlier);
            visits_.removeAt(si_earlier);
        }
        history().updateHistory(&visit);
        if (visits_.size() >= MAX)
            visits_.removeAt(MAX - 1);
        const Visit added = {visit.title, visit.url, visit.dateTime};
        visits_.prepend(added);
        break;
    }
    case 2:
        history().deleteHistory(si_id);
        if (si_id < si_size)
            visits_.removeAt(si_id);
        break;
    case 3:
        history().changeHistoryTitle(si_id, text);
        if (si_id < si_size)
            visits_[si_id].title = text;
        break;
    default:
        if (next(2) == 0)
            history().sortHistory(); // it is in order already
        history().saveHistory(&path_, MAX);
        history().loadHistory(&path_, MAX);
        break;
    }
}

void tst_soak::compareVisits()
{
    QCOMPARE(history().getHistoryCnt(), static_cast<int>(visits_.size()));
    for (int i = 0; i < visits_.size(); ++i) {
        TVNS_History visit;
        QVERIFY(history().getHistory(i, &visit));
        QCOMPARE(visit.title, visits_.at(i).title);
        QCOMPARE(visit.url, visits_.at(i).url);
        QCOMPARE(visit.dateTime.date(), visits_.at(i).dateTime.date());
        QCOMPARE(visit.dateTime.time(), visits_.at(i).dateTime.time());
    }
}

// --- Credentials, fonts, preferences

void tst_soak::loginStep()
{
    const int si_size = static_cast<int>(logins_.size());
    const int si_id = static_cast<int>(next(static_cast<quint32>(si_size) + 2));
    switch (next(4)) {
    case 0:
    case 1: {
        QByteArray bytes;
        for (quint32 i = next(280); i > 0; --i)
            bytes.append(static_cast<char>(next(256)));
        TVNS_AuthInfo login = {randomText(20), QString::number(next(70000)),
                               static_cast<unsigned char>(next(3)), bytes, bytes.left(10)};
        const bool b_fits = bytes.size() <= 272;
        if (logins_.size() < MAX) {
            QCOMPARE(auth().setAuthInfo(&login), b_fits ? 1 : 0);
        } else {
            QCOMPARE(auth().updateAuthInfo(&login), b_fits ? 1 : 0);
            logins_.removeLast(); // also for one that is refused
        }
        if (b_fits)
            logins_.prepend(login);
        break;
    }
    case 2:
        auth().deleteAuthInfo(si_id);
        if (si_id < si_size)
            logins_.removeAt(si_id);
        break;
    default:
        auth().saveAuthInfo(&path_, MAX);
        auth().loadAuthInfo(&path_, MAX);
        break;
    }
}

void tst_soak::compareLogins()
{
    QCOMPARE(auth().getAuthInfoCnt(), static_cast<int>(logins_.size()));
    for (int i = 0; i < logins_.size(); ++i) {
        TVNS_AuthInfo login = {QString(), QString(), 9, QByteArray(), QByteArray()};
        QCOMPARE(auth().getAuthInfo(i, &login), 1);
        QCOMPARE(login.hostName, logins_.at(i).hostName);
        QCOMPARE(login.portNum, logins_.at(i).portNum);
        QCOMPARE(login.authType, logins_.at(i).authType);
        QCOMPARE(login.user, logins_.at(i).user);
        QCOMPARE(login.passwd, logins_.at(i).passwd);
    }
}

void tst_soak::fontStep()
{
    if (fonts_.size() == 300) {
        fonts().deleteAllSetting();
        fonts_.clear();
    }
    const QString name = randomText(30);
    fonts().addFont(name);
    fonts_.append(name);
    if (next(3) == 0) {
        fonts().saveFontList(path_);
        fonts().loadFontList(path_);
    }
    QCOMPARE(fonts().getCount(), static_cast<int>(fonts_.size()));
    const int si_id = static_cast<int>(next(static_cast<quint32>(fonts_.size())));
    QCOMPARE(fonts().getFont(si_id), fonts_.at(si_id));
}

void tst_soak::preferenceStep()
{
    QString text = randomText(110);
    if (user().setHomePage(text)) {
        QVERIFY(text.toUtf8().size() <= 256);
        home_ = text;
    } else {
        QVERIFY(text.toUtf8().size() > 256);
    }
    const short si_code = static_cast<short>(next(14));
    const bool b_valid = si_code >= 1 && si_code <= 11;
    QCOMPARE(user().setZoomInfo(si_code), b_valid);
    if (b_valid)
        si_zoom = si_code;
    QByteArray account;
    for (quint32 i = next(90); i > 0; --i)
        account.append(static_cast<char>(next(256)));
    QCOMPARE(common().setProxyAccountStr(account), account.size() <= 80);
    if (account.size() <= 80)
        proxyUser_ = account;
    if (next(2) == 0) {
        user().saveSetting(&path_);
        user().loadSetting(&path_);
        common().saveSetting(&path_);
        common().loadSetting(&path_);
    }
    user().getHomePage(&text);
    QCOMPARE(text, home_);
    QCOMPARE(user().getZoomInfo(), si_zoom);
    common().getProxyAccountStr(&account);
    QCOMPARE(account, proxyUser_);
}

// --- Cookies, thumbnails

static QString lineOf(const TVNS_CookieInfo& entry)
{
    return (QStringList() << entry.website << entry.name << entry.path << entry.secure << entry.expires
                          << entry.contents)
        .join(utf8("|"));
}

static TVNS_CookieInfo entryOf(const QNetworkCookie& cookie)
{
    TVNS_CookieInfo entry;
    entry.website = cookie.domain();
    entry.name = QString::fromUtf8(cookie.name());
    entry.path = cookie.path();
    entry.secure = utf8(cookie.isSecure() ? "true" : "false");
    entry.expires = cookie.expirationDate().toString(utf8("yyyy/MM/dd hh:mm:ss"));
    entry.contents = QString::fromUtf8(cookie.value());
    return entry;
}

/// All but the expiry.
static bool isSame(const TVNS_CookieInfo& one, const TVNS_CookieInfo& other)
{
    return one.website == other.website && one.name == other.name && one.path == other.path &&
           one.secure == other.secure && one.contents == other.contents;
}

void tst_soak::cookieStep()
{
    const int si_converted = 20;
    QByteArray dir = path_.toLatin1();
    QByteArray document = dir + "cookies.xml";
    switch (next(6)) {
    case 0:
    case 1:
    case 2: { // the network takes a cookie or lets one go
        const quint32 ul_name = next(30);
        QNetworkCookie cookie('n' + QByteArray::number(ul_name), QByteArray::number(next(4)));
        cookie.setDomain(utf8(ul_name % 2 == 0 ? ".example.com" : "example.org"));
        cookie.setPath(utf8("/p"));
        cookie.setSecure(ul_name % 3 == 0);
        if (next(2) == 0)
            cookie.setExpirationDate(START.addDays(9000).addSecs(static_cast<int>(next(100000))));
        for (int i = static_cast<int>(cookies_.size()) - 1; i >= 0; --i) {
            if (cookies_.at(i).name() == cookie.name())
                cookies_.removeAt(i);
        }
        if (next(6) != 0)
            cookies_.append(cookie);
        cookies().saveCookieInfo(cookies_, &path_, 1);
        QCOMPARE(cookies().loadCookieInfo(&path_, 1), cookies_);
        break;
    }
    case 3: { // the user removes one from the document
        const int si_id = static_cast<int>(next(static_cast<quint32>(cookieEntries_.size()) + 2));
        QString path = QString::fromLatin1(document);
        cookies().load(path);
        cookies().deleteCookieInfo(si_id);
        cookies().save(path);
        if (si_id < cookieEntries_.size())
            cookieEntries_.removeAt(si_id);
        break;
    }
    case 4: {
        cookies().convertCookieXMLToIni(document.data(), dir.data());
        cookies_ = cookies().loadCookieInfo(&path_, 1);
        QCOMPARE(static_cast<int>(cookies_.size()),
                 qMin(static_cast<int>(cookieEntries_.size()), si_converted));
        for (int i = 0; i < cookies_.size(); ++i)
            QCOMPARE(lineOf(entryOf(cookies_.at(i))), lineOf(cookieEntries_.at(i)));
        break;
    }
    default: {
        cookies().convertCookieIniToXML(dir.data(), document.data());
        QList<TVNS_CookieInfo> entries;
        QList<TVNS_CookieInfo> kept = cookieEntries_.mid(0, si_converted);
        QList<bool> isKept;
        for (int i = 0; i < kept.size(); ++i)
            isKept.append(false);
        for (int i = 0; i < cookies_.size(); ++i) {
            const TVNS_CookieInfo entry = entryOf(cookies_.at(i));
            int si_found = 0;
            while (si_found < kept.size() && !(isSame(kept.at(si_found), entry) && !isKept.at(si_found)))
                ++si_found;
            if (si_found < kept.size())
                isKept[si_found] = true;
            else
                entries.append(entry);
        }
        for (int i = 0; i < cookieEntries_.size(); ++i) {
            if (i >= si_converted || isKept.at(i))
                entries.append(cookieEntries_.at(i));
        }
        cookieEntries_ = entries;
        break;
    }
    }
}

void tst_soak::compareCookies()
{
    QString path = path_ + utf8("cookies.xml");
    cookies().load(path);
    const QList<TVNS_CookieInfo> entries = cookies().getAllCookieInfo();
    QCOMPARE(static_cast<int>(entries.size()), static_cast<int>(cookieEntries_.size()));
    for (int i = 0; i < entries.size(); ++i)
        QCOMPARE(lineOf(entries.at(i)), lineOf(cookieEntries_.at(i)));
}

void tst_soak::thumbnailStep()
{
    QString from = path_ + utf8("pictures/");
    const QString to = path_ + utf8("unpacked/");
    const QString name = QString::number(next(12)) + utf8(next(2) == 0 ? ".png" : ".PNG");
    if (next(4) == 0) {
        QFile::remove(from + name);
        pictures_.remove(name);
        return;
    }
    QByteArray bytes("P");
    for (quint32 i = next(3000); i > 0; --i)
        bytes.append(static_cast<char>(next(256)));
    writeFile(from + name, bytes);
    pictures_.insert(name, bytes);

    QByteArray source = from.toLatin1();
    QByteArray pack = path_.toLatin1() + "pack.xml";
    QByteArray target = to.toLatin1();
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(source.data(), pack.data());
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailXMLToPng(pack.data(), target.data());
    const QStringList unpacked = QDir(to).entryList(QDir::Files);
    QCOMPARE(static_cast<int>(unpacked.size()), static_cast<int>(pictures_.size()));
    foreach (const QString& file, unpacked) {
        QVERIFY(readFile(to + file) == pictures_.value(file));
        QVERIFY(QFile::remove(to + file));
    }
}

// --- The run

void tst_soak::step()
{
    switch (next(16)) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
        bookmarkStep();
        break;
    case 5:
    case 6:
    case 7:
    case 8:
        historyStep();
        break;
    case 9:
    case 10:
    case 11:
        loginStep();
        break;
    case 12:
        fontStep();
        break;
    case 13:
        preferenceStep();
        break;
    case 14:
        cookieStep();
        break;
    default:
        thumbnailStep();
        break;
    }
}

/// Some operations and a comparison, between two turns of the event loop.
void tst_soak::turn()
{
    for (int i = 0; i < 16 && si_done < si_operations && !QTest::currentTestFailed(); ++i) {
        step();
        ++si_done;
        if (si_done == si_operations / 4)
            si_resident = residentKilobytes();
    }
    compareBookmarks();
    compareVisits();
    compareLogins();
    compareCookies();
    LogRecorder::clear();
    if (QTest::currentTestFailed())
        qWarning("after operation %d", si_done);
    if (QTest::currentTestFailed() || si_done == si_operations)
        loop_.quit();
}

void tst_soak::answersAgree()
{
    si_operations = environmentNumber("TLVLIB_SOAK_OPERATIONS", 20000);
    si_done = 0;
    QTimer timer;
    connect(&timer, SIGNAL(timeout()), SLOT(turn()));
    timer.start(0);
    loop_.exec();
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which keep freed memory for a while
    const int si_growth = residentKilobytes() - si_resident;
    QVERIFY2(si_growth < environmentNumber("TLVLIB_SOAK_GROWTH", 2048),
             qPrintable(QString::number(si_growth)));
#endif
}

int main(int argc, char** argv)
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "86400000"); // instead of five minutes
    QCoreApplication application(argc, argv);
    tst_soak test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_soak.moc"
