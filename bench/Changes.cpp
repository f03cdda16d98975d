#include "bench/Others.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/stores/TVNC_AuthSetting.h>
#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QUrl>

#include <memory>

namespace {

const int MAX = 999;
const char ABSENT[] = "http://www.example.com/absent/page?id=12&from=list";

const Format COOKIES{"cookies.xml", "cookie", "webSiteInfo", {"website", "name", "contents"}};

/// Everybody with the same 999 records.
struct Contest
{
    Contest(const Format& format, const QString& dir)
        : path(dir + format.file), dom(format, path), pugi(format, path), sqlite(format, path)
    {
        const Records records = sampleRecords(format, MAX);
        fillStore(format, dir, records);
        loadStore(format, dir);
        dom.load();
        pugi.load();
        sqlite.open();
        sqlite.replaceAll(records);
    }

    QString path;
    DomStore dom;
    PugiStore pugi;
    SqliteStore sqlite;
};

using SharedContest = std::shared_ptr<Contest>;

Work bareLoad(const SharedContest& c)
{
    return {[c] { bareTokenLoop(c->path); }, {}};
}

/// A record more in front, which the 999th makes room for.
Works additions(const SharedContest& c, const Record& record, const Work& own)
{
    return {{"bare", bareLoad(c)},
            {"tlvlib", own},
            {"QDom", {[c, record] { c->dom.prepend(record, MAX); }, {}}},
            {"pugixml", {[c, record] { c->pugi.prepend(record, MAX); }, {}}},
            {"SQLite", {[c, record] { c->sqlite.prepend(record, MAX); }, {}}}};
}

Works visits(const QString& dir)
{
    const Record visit{"The news of today", "http://www.example.com/new/page?id=1", "2011/05/06 07:08"};
    const auto record = [visit] {
        TVNS_History own;
        own.title = visit[0];
        own.url = visit[1];
        own.dateTime = QDateTime(QDate(2011, 5, 6), QTime(7, 8));
        TVNC_HistorySetting::getInstance()->updateHistory(&own);
    };
    return additions(std::make_shared<Contest>(HISTORY, dir), visit, {record, release});
}

Works bookmarks(const QString& dir)
{
    const Record bookmark{"http://www.example.com/new", "A new page", "001000.PNG"};
    const auto add = [bookmark] {
        TVNS_Bookmark own{bookmark[1], bookmark[0], "/data/thumbnail/" + bookmark[2]};
        TVNC_BookmarksSetting::getInstance()->setBookmark(&own);
    };
    const auto makeRoom = [] {
        TVNC_BookmarksSetting::getInstance()->deleteBookmark(MAX - 1);
        release();
    };
    return additions(std::make_shared<Contest>(BOOKMARKS, dir), bookmark, {add, makeRoom});
}

Works logins(QString dir)
{
    auto* auth = TVNC_AuthSetting::getInstance();
    auth->loadAuthInfo(&dir, MAX);
    for (int i = 0; i < MAX; ++i) {
        TVNS_AuthInfo info{QString("host%1").arg(i), "80", 0, "user", "password"};
        auth->setAuthInfo(&info);
    }
    const Record login{"www.example.com", "alice", "secret"};
    const auto add = [login, auth] {
        TVNS_AuthInfo info{login[0], "80", 1, login[1].toUtf8(), login[2].toUtf8()};
        auth->setAuthInfo(&info);
    };
    const auto makeRoom = [auth] {
        auth->deleteAuthInfo(MAX - 1);
        release();
    };
    return additions(std::make_shared<Contest>(BOOKMARKS, dir), login, {add, makeRoom});
}

Works searches(const QString& dir)
{
    const auto c = std::make_shared<Contest>(HISTORY, dir);
    const auto search = [] {
        QString url = ABSENT;
        TVNC_HistorySetting::getInstance()->getHistoryIndex(url);
    };
    return {{"bare", bareLoad(c)},
            {"tlvlib", {search, {}}},
            {"QDom", {[c] { c->dom.find(1, ABSENT); }, {}}},
            {"pugixml", {[c] { c->pugi.find(1, ABSENT); }, {}}},
            {"SQLite", {[c] { c->sqlite.find(1, ABSENT); }, {}}}};
}

/// A hundred readings in one, so that the clock does not count.
Works readings(const QString& dir)
{
    const auto c = std::make_shared<Contest>(BOOKMARKS, dir);
    const auto hundred = [](auto read) {
        return Work{[read] {
                        for (int i = 0; i < 100; ++i)
                            read();
                    },
                    {}};
    };
    const auto own = [] {
        TVNS_Bookmark bookmark;
        TVNC_BookmarksSetting::getInstance()->getBookmark(MAX - 1, &bookmark);
    };
    return {{"bare", bareLoad(c)},
            {"tlvlib", hundred(own)},
            {"QDom", hundred([c] { c->dom.at(MAX - 1); })},
            {"pugixml", hundred([c] { c->pugi.at(MAX - 1); })},
            {"SQLite", hundred([c] { c->sqlite.at(MAX - 1); })}};
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

Works conversions(QString dir)
{
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
    const auto convert = [dir, path] {
        QByteArray source = dir.toLatin1();
        QByteArray target = path.toLatin1();
        TVNC_CookieSetting::getInstance()->convertCookieIniToXML(source.data(), target.data());
    };
    const auto document = [dir, path](auto store) {
        const auto fill = [dir, store] {
            for (const Record& record : readCookies(dir))
                store->prepend(record, 20);
            store->save();
        };
        const auto empty = [path, store] {
            bareWriterCalls(path, COOKIES, {});
            store->load();
        };
        return Work{fill, empty};
    };
    const auto sqlite = std::make_shared<SqliteStore>(COOKIES, path);
    const auto insert = [sqlite, dir] {
        sqlite->open();
        sqlite->replaceAll(readCookies(dir));
        sqlite->close();
    };
    return {{"bare", {[dir, path] { bareWriterCalls(path, COOKIES, readCookies(dir)); }, begin}},
            {"tlvlib",
             {convert,
              [begin] {
                  begin();
                  release();
              }}},
            {"QDom", document(std::make_shared<DomStore>(COOKIES, path))},
            {"pugixml", document(std::make_shared<PugiStore>(COOKIES, path))},
            {"SQLite", {insert, {}}}};
}

} // namespace

void addChanges(const QString& dir)
{
    addRow("record a visit in 999", 1.0 / 60, [dir] { return visits(dir); });
    addRow("look up an absent address in 999 visits", 1.0 / 6, [dir] { return searches(dir); });
    addRow("add a bookmark to 998", NO_TARGET, [dir] { return bookmarks(dir); });
    addRow("read bookmark 998 of 999, 100 times", 100.0 / 500, [dir] { return readings(dir); });
    addRow("add a login to 998", NO_TARGET, [dir] { return logins(dir); });
    addRow("convert 20 cookies to a document", NO_TARGET, [dir] { return conversions(dir); });
}
