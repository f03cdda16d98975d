/*
 * A document of any bytes in every store that might be handed it, by its first byte: all that can be asked is
 * asked, something is changed, and what was saved is loaded again with the same records.
 */

#include "fuzz/Fuzz.h"

#include <tlvlib/tlvlib.h>

namespace {

const int MAX = 999;

// Before something is compared with what was saved, the document is saved and loaded twice: carriage returns,
// ends of CDATA sections and pictures' names of more than ten characters change once, as told in
// docs/files.md.
template <typename Load, typename Save>
void settle(Load load, Save save)
{
    load();
    for (int i = 0; i < 2; ++i) {
        save();
        load();
    }
}

/// A record as text, for comparison.
using Answers = QList<QStringList>;

Answers bookmarks()
{
    auto* store = TVNC_BookmarksSetting::getInstance();
    Answers answers;
    const int count = store->getBookmarkCnt();
    MUST(count <= MAX);
    for (int i = -1; i <= count; ++i) {
        TVNS_Bookmark bookmark;
        store->getBookmark(i, &bookmark);
        MUST(bookmark.title.toUtf8().size() <= 100);
        MUST(bookmark.href.toUtf8().size() <= 256);
        answers.append({bookmark.title, bookmark.href, bookmark.thumbnail});
    }
    return answers;
}

Answers withoutPaths(Answers bookmarks)
{
    for (QStringList& bookmark : bookmarks)
        bookmark.removeLast();
    return bookmarks;
}

void fuzzBookmarks(QString dir)
{
    auto* store = TVNC_BookmarksSetting::getInstance();
    int last = 0;
    store->loadBookmark(&dir, MAX, last);
    bookmarks();
    settle([&] { store->loadBookmark(&dir, MAX, last); }, [&] { store->saveBookmark(&dir, MAX); });
    const auto reload = [&] {
        store->saveBookmark(&dir, MAX);
        store->loadBookmark(&dir, MAX, last);
        return bookmarks();
    };
    TVNS_Bookmark added{"A title", "http://example.org/", dir + "thumbnail/000001.PNG"};
    MUST(store->setBookmark(&added));
    Answers before = bookmarks();
    MUST(reload() == before);
    // Loading completes no path behind a bookmark without the element. When that one goes, it completes more.
    const bool hasElement = store->getBookmarkChildNode(2, 2);
    store->deleteBookmark(2);
    before = bookmarks();
    const Answers after = reload();
    MUST(withoutPaths(after) == withoutPaths(before));
    MUST(after == before || !hasElement);
}

Answers visits()
{
    auto* store = TVNC_HistorySetting::getInstance();
    Answers answers;
    const int count = store->getHistoryCnt();
    for (int i = -1; i <= count; ++i) {
        TVNS_History visit;
        store->getHistory(i, &visit);
        answers.append({visit.title, visit.url, visit.dateTime.date().toString(Qt::ISODate),
                        visit.dateTime.time().toString(Qt::ISODate)});
    }
    return answers;
}

void fuzzHistory(QString dir)
{
    auto* store = TVNC_HistorySetting::getInstance();
    store->loadHistory(&dir, MAX);
    visits();
    QString url = "http://example.org/";
    store->getHistoryIndex(url);
    TVNS_History added;
    added.title = "A title";
    added.url = url;
    added.dateTime = QDateTime(QDate(2011, 4, 12), QTime(10, 15));
    store->updateHistory(&added);
    store->changeHistoryTitle(1, url);
    store->sortHistory();
    store->saveHistory(&dir, MAX);
    store->loadHistory(&dir, MAX); // sorts once more: equal minutes change places
    const int count = store->getHistoryCnt();
    store->saveHistory(&dir, MAX);
    store->loadHistory(&dir, MAX);
    MUST(store->getHistoryCnt() == count);
    visits();
}

Answers logins()
{
    auto* store = TVNC_AuthSetting::getInstance();
    Answers answers;
    const int count = store->getAuthInfoCnt();
    for (int i = -1; i <= count; ++i) {
        TVNS_AuthInfo login{QString(), QString(), 0, QByteArray(), QByteArray()};
        store->getAuthInfo(i, &login);
        MUST(login.user.size() <= 272 && login.passwd.size() <= 272);
        answers.append({login.hostName, login.portNum, QString::number(login.authType),
                        QString::fromLatin1(login.user.toHex()), QString::fromLatin1(login.passwd.toHex())});
    }
    return answers;
}

void fuzzLogins(QString dir)
{
    auto* store = TVNC_AuthSetting::getInstance();
    store->loadAuthInfo(&dir, MAX);
    logins();
    settle([&] { store->loadAuthInfo(&dir, MAX); }, [&] { store->saveAuthInfo(&dir, MAX); });
    TVNS_AuthInfo added{"example.org", "80", 1, QByteArray("u\0ser", 5), "password"};
    MUST(store->setAuthInfo(&added));
    store->deleteAuthInfo(3);
    const Answers before = logins();
    store->saveAuthInfo(&dir, MAX);
    store->loadAuthInfo(&dir, MAX);
    MUST(logins() == before);
}

void fuzzFonts(QString dir)
{
    auto* store = TVNC_FontListSetting::getInstance();
    const auto names = [store] {
        QStringList names;
        for (int i = -1; i <= store->getCount(); ++i)
            names.append(store->getFont(i));
        return names;
    };
    store->loadFontList(dir);
    names();
    settle([&] { store->loadFontList(dir); }, [&] { store->saveFontList(dir); });
    store->addFont("Sans");
    const QStringList before = names();
    store->saveFontList(dir);
    store->loadFontList(dir);
    MUST(names() == before);
}

void fuzzCookies(const QString& dir)
{
    auto* store = TVNC_CookieSetting::getInstance();
    QByteArray document = (dir + "cookies.xml").toLatin1();
    QByteArray iniDir = dir.toLatin1();
    store->convertCookieXMLToIni(document.data(), iniDir.data());
    store->convertCookieIniToXML(iniDir.data(), document.data());
    QString path = dir + "cookies.xml";
    store->load(path);
    for (TVNS_CookieInfo& info : store->getAllCookieInfo()) {
        QNetworkCookie cookie(info.name.toUtf8(), info.contents.toUtf8());
        store->isMuchCookieInfo(cookie, info);
    }
}

QStringList commonPreferences()
{
    auto* store = TVNC_BrowserCommonSetting::getInstance();
    QStringList answers;
    QString text;
    QByteArray bytes;
    for (const auto get :
         {&TVNC_BrowserCommonSetting::getProxyServerStr, &TVNC_BrowserCommonSetting::getProxyHttpPortStr,
          &TVNC_BrowserCommonSetting::getProxyHttpsPortStr,
          &TVNC_BrowserCommonSetting::getNoProxyDomainStr}) {
        (store->*get)(&text);
        MUST(text.toUtf8().size() <= 253);
        answers.append(text);
    }
    for (const auto get :
         {&TVNC_BrowserCommonSetting::getProxyAccountStr, &TVNC_BrowserCommonSetting::getProxyPasswordStr}) {
        (store->*get)(&bytes);
        MUST(bytes.size() <= 80);
        answers.append(QString::fromLatin1(bytes.toHex()));
    }
    for (const auto get :
         {&TVNC_BrowserCommonSetting::getRcvCookieInfo, &TVNC_BrowserCommonSetting::getUseCacheInfo,
          &TVNC_BrowserCommonSetting::getCacheDeleteTiming, &TVNC_BrowserCommonSetting::getSWKeyBoardTypeInfo,
          &TVNC_BrowserCommonSetting::getUseProxyInfo, &TVNC_BrowserCommonSetting::getUseSSL30}) {
        const char code = (store->*get)();
        MUST(code >= 0 && code <= 2);
        answers.append(QString::number(code));
    }
    return answers;
}

void fuzzCommonPreferences(QString dir)
{
    auto* store = TVNC_BrowserCommonSetting::getInstance();
    store->loadSetting(&dir);
    commonPreferences();
    settle([&] { store->loadSetting(&dir); }, [&] { store->saveSetting(&dir); });
    MUST(store->setProxyServerStr("proxy.example.net"));
    store->setUseProxyInfo(1);
    const QStringList before = commonPreferences();
    store->saveSetting(&dir);
    store->loadSetting(&dir);
    MUST(commonPreferences() == before);
}

void fuzzUserPreferences(QString dir)
{
    auto* store = TVNC_BrowserUserSetting::getInstance();
    const auto answers = [store] {
        QString home;
        QString last;
        QString font;
        store->getHomePage(&home);
        store->getLastPage(&last);
        store->getFontName(&font);
        const short zoom = store->getZoomInfo();
        MUST(zoom >= 1 && zoom <= 11);
        MUST(home.toUtf8().size() <= 256 && last.toUtf8().size() <= 256 && font.toUtf8().size() <= 256);
        return QStringList{home,
                           last,
                           font,
                           QString::number(zoom),
                           QString::number(store->getStartUp()),
                           QString::number(store->getCookieDeleteTiming())};
    };
    store->loadSetting(&dir);
    answers();
    settle([&] { store->loadSetting(&dir); }, [&] { store->saveSetting(&dir); });
    MUST(store->setHomePage("http://example.org/"));
    MUST(store->setZoomInfo(8));
    const QStringList before = answers();
    store->saveSetting(&dir);
    store->loadSetting(&dir);
    MUST(answers() == before);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const struct
    {
        const char* file;
        void (*fuzz)(QString dir);
    } STORES[] = {{"bookmark.xml", fuzzBookmarks},
                  {"visit.xml", fuzzHistory},
                  {"authinfo.xml", fuzzLogins},
                  {"fontlist.xml", fuzzFonts},
                  {"cookies.xml", [](QString dir) { fuzzCookies(dir); }},
                  {"repostry.xml", fuzzCommonPreferences},
                  {"repostry_private.xml", fuzzUserPreferences}};
    if (size == 0)
        return 0;
    const auto& store = STORES[data[0] % (sizeof STORES / sizeof STORES[0])];
    writeFile(scratchDir() + store.file,
              QByteArray(reinterpret_cast<const char*>(data) + 1, static_cast<int>(size) - 1));
    store.fuzz(scratchDir());
    release();
    return 0;
}
