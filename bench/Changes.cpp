#include "bench/Others.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/stores/TVNC_AuthSetting.h>
#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QUrl>

#include <memory>

namespace {

const int MAX = 999;
const Record VISIT{"The news of today", "http://www.example.com/new/page?id=1", "2011/05/06 07:08"};
const char ABSENT[] = "http://www.example.com/absent/page?id=12&from=list";

const Format COOKIES{"cookies.xml", "cookie", "webSiteInfo", {"website", "name", "contents"}};

/// Everybody with the same 999 records.
struct Contest
{
    Contest(const Format& format_, const QString& dir_)
        : format(format_)
        , dir(dir_ + "change" + format_.root + '/')
        , path((QDir().mkpath(dir), dir + format_.file))
        , dom(format, path)
        , pugi(format, path)
        , sqlite(format, path)
    {
        const Records records = sampleRecords(format, MAX);
        fillStore(format, dir, records);
        dom.load();
        pugi.load();
        sqlite.open();
        sqlite.replaceAll(records);
    }

    /// Has the library's store hold these records: it is one for all rows.
    void hold() const
    {
        holdStore(format, dir);
        release();
    }

    const Format& format;
    QString dir;
    QString path;
    DomStore dom;
    PugiStore pugi;
    SqliteStore sqlite;
};

using SharedContest = std::shared_ptr<Contest>;

void addBare(const std::string& row, const SharedContest& c)
{
    addWork(row, "bare", {[c] { bareTokenLoop(c->path); }, {}});
}

void addVisit(const SharedContest& c)
{
    const std::string row = "record a visit in 999";
    addBare(row, c);
    addWork(row, "tlvlib",
            {[] {
                 TVNS_History visit;
                 visit.title = VISIT[0];
                 visit.url = VISIT[1];
                 visit.dateTime = QDateTime(QDate(2011, 5, 6), QTime(7, 8));
                 TVNC_HistorySetting::getInstance()->updateHistory(&visit);
             },
             [c] { c->hold(); }});
    addWork(row, "QDom", {[c] { c->dom.prepend(VISIT, MAX); }, {}});
    addWork(row, "pugixml", {[c] { c->pugi.prepend(VISIT, MAX); }, {}});
    addWork(row, "SQLite", {[c] { c->sqlite.prepend(VISIT, MAX); }, {}});
    addTarget(row, 1.0 / 60);
}

void addSearch(const SharedContest& c)
{
    const std::string row = "look up an absent address in 999 visits";
    addBare(row, c);
    addWork(row, "tlvlib",
            {[] {
                 QString url = ABSENT;
                 TVNC_HistorySetting::getInstance()->getHistoryIndex(url);
             },
             [c] { c->hold(); }});
    addWork(row, "QDom", {[c] { c->dom.find(1, ABSENT); }, {}});
    addWork(row, "pugixml", {[c] { c->pugi.find(1, ABSENT); }, {}});
    addWork(row, "SQLite", {[c] { c->sqlite.find(1, ABSENT); }, {}});
    addTarget(row, 1.0 / 6);
}

void addBookmark(const SharedContest& c)
{
    const Record bookmark{"http://www.example.com/new", "A new page", "001000.PNG"};
    const std::string row = "add a bookmark to 998";
    addBare(row, c);
    addWork(row, "tlvlib",
            {[bookmark] {
                 TVNS_Bookmark added{bookmark[1], bookmark[0], "/data/thumbnail/" + bookmark[2]};
                 TVNC_BookmarksSetting::getInstance()->setBookmark(&added);
             },
             [c] {
                 c->hold();
                 TVNC_BookmarksSetting::getInstance()->deleteBookmark(MAX - 1);
                 release();
             }});
    addWork(row, "QDom", {[c, bookmark] { c->dom.prepend(bookmark, MAX); }, {}});
    addWork(row, "pugixml", {[c, bookmark] { c->pugi.prepend(bookmark, MAX); }, {}});
    addWork(row, "SQLite", {[c, bookmark] { c->sqlite.prepend(bookmark, MAX); }, {}});
}

void addReading(const SharedContest& c)
{
    // A hundred times in one, so that the clock does not count.
    const std::string row = "read bookmark 998 of 999, 100 times";
    const auto hundred = [](auto read) {
        for (int i = 0; i < 100; ++i)
            read();
    };
    addBare(row, c);
    addWork(row, "tlvlib",
            {[hundred] {
                 hundred([] {
                     TVNS_Bookmark bookmark;
                     TVNC_BookmarksSetting::getInstance()->getBookmark(MAX - 1, &bookmark);
                 });
             },
             [c] { c->hold(); }});
    addWork(row, "QDom", {[hundred, c] { hundred([c] { c->dom.at(MAX - 1); }); }, {}});
    addWork(row, "pugixml", {[hundred, c] { hundred([c] { c->pugi.at(MAX - 1); }); }, {}});
    addWork(row, "SQLite", {[hundred, c] { hundred([c] { c->sqlite.at(MAX - 1); }); }, {}});
    addTarget(row, 100.0 / 500);
}

void addLogin(const SharedContest& c)
{
    const Record login{"www.example.com", "alice", "secret"};
    const std::string row = "add a login to 998";
    QString dir = c->dir;
    auto* auth = TVNC_AuthSetting::getInstance();
    auth->loadAuthInfo(&dir, MAX);
    for (int i = 0; i < MAX - 1; ++i) {
        TVNS_AuthInfo info{QString("host%1").arg(i), "80", 0, "user", "password"};
        auth->setAuthInfo(&info);
    }
    addBare(row, c);
    addWork(row, "tlvlib",
            {[login, auth] {
                 TVNS_AuthInfo info{login[0], "80", 1, login[1].toUtf8(), login[2].toUtf8()};
                 auth->setAuthInfo(&info);
             },
             [auth] {
                 auth->deleteAuthInfo(MAX - 1);
                 release();
             }});
    addWork(row, "QDom", {[c, login] { c->dom.prepend(login, MAX); }, {}});
    addWork(row, "pugixml", {[c, login] { c->pugi.prepend(login, MAX); }, {}});
    addWork(row, "SQLite", {[c, login] { c->sqlite.prepend(login, MAX); }, {}});
}

/// The cookies of cookie.ini as records.
Records readCookies(const QString& dir)
{
    QSettings settings(dir + "cookie.ini", QSettings::IniFormat);
    QByteArray bytes = settings.value("Cookie/cookies").toByteArray();
    QDataStream stream(&bytes, QIODevice::ReadOnly);
    qint32 count = 0;
    stream >> count;
    Records records;
    for (int i = 0; i < count; ++i) {
        QByteArray raw;
        stream >> raw;
        for (const QNetworkCookie& cookie : QNetworkCookie::parseCookies(raw))
            records.push_back(
                {cookie.domain(), QString::fromUtf8(cookie.name()), QString::fromUtf8(cookie.value())});
    }
    return records;
}

void addCookies(const QString& parent)
{
    const std::string row = "convert 20 cookies to a document";
    QString dir = parent + "cookies/";
    QDir().mkpath(dir);
    QList<QNetworkCookie> cookies;
    for (int i = 0; i < 20; ++i) {
        QNetworkCookie cookie("name" + QByteArray::number(i), QByteArray(40, 'v'));
        cookie.setDomain(QString(".example%1.com").arg(i));
        cookie.setPath("/");
        cookie.setExpirationDate(QDateTime(QDate(2031, 5, 6), QTime(7, 8), Qt::UTC));
        cookies.append(cookie);
    }
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &dir, 20);

    const QString path = dir + COOKIES.file;
    const auto begin = [path] { QFile::remove(path); };
    addWork(row, "bare", {[dir, path] { bareWriterCalls(path, COOKIES, readCookies(dir)); }, begin});
    addWork(row, "tlvlib",
            {[dir, path] {
                 QByteArray source = dir.toLatin1();
                 QByteArray target = path.toLatin1();
                 TVNC_CookieSetting::getInstance()->convertCookieIniToXML(source.data(), target.data());
             },
             [begin] {
                 begin();
                 release();
             }});
    const auto document = [path, dir](auto& store) {
        for (const Record& record : readCookies(dir))
            store.prepend(record, 20);
        store.save();
    };
    const auto empty = [path] { bareWriterCalls(path, COOKIES, {}); };
    auto dom = std::make_shared<DomStore>(COOKIES, path);
    auto pugi = std::make_shared<PugiStore>(COOKIES, path);
    addWork(row, "QDom",
            {[dom, document] { document(*dom); },
             [dom, empty] {
                 empty();
                 dom->load();
             }});
    addWork(row, "pugixml",
            {[pugi, document] { document(*pugi); },
             [pugi, empty] {
                 empty();
                 pugi->load();
             }});
    auto sqlite = std::make_shared<SqliteStore>(COOKIES, path);
    addWork(row, "SQLite",
            {[sqlite, dir] {
                 sqlite->open();
                 sqlite->replaceAll(readCookies(dir));
                 sqlite->close();
             },
             {}});
}

} // namespace

void addChanges(const QString& dir)
{
    const auto history = std::make_shared<Contest>(HISTORY, dir);
    addVisit(history);
    addSearch(history);
    const auto bookmarks = std::make_shared<Contest>(BOOKMARKS, dir);
    addBookmark(bookmarks);
    addReading(bookmarks);
    addLogin(bookmarks);
    addCookies(dir);
}
