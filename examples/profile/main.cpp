/*
 * Fills a browser's profile through every store of the library, or loads one, and prints what the stores
 * answer. What one process has filled in, another one gets as answer.
 *
 *     profile fill DIR          a new profile in DIR
 *     profile show DIR
 *     profile change DIR        edits, deletions, switches
 *     profile forget DIR        deletes what the user has collected
 *     profile pack DIR FILE     the pictures of the bookmarks as one file
 *     profile unpack FILE DIR   and back, whoever made the file
 *     profile clear-cache
 */

#include "Profile.h"
#include "upkeep.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>

#include <cstdio>
#include <memory>

namespace {

struct Page
{
    const char* url;
    const char* title;
    QRgb colour;
};

const Page PAGES[] = {
    {"http://weather.example.com/today?city=T%C3%B8nder&units=C", "Weather today", qRgb(70, 130, 180)},
    {"http://news.example.org/", "News & views", qRgb(160, 60, 50)},
    {"http://www.example.jp/", "日本語のページ", qRgb(190, 140, 60)},
};

// --- Filling ----------------------------------------------------------------------------------------------

/// What a real browser takes from the page that it shows.
QImage pictureOf(const Page& page)
{
    QImage image(160, 120, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, image.height());
    sky.setColorAt(0, QColor(page.colour).lighter(170));
    sky.setColorAt(1, QColor(page.colour));
    painter.fillRect(image.rect(), sky);
    for (int line = 0; line < 5; ++line)
        painter.fillRect(12, 30 + 16 * line, 136 - 22 * (line % 3), 6, QColor(255, 255, 255, 200));
    return image;
}

void fillPreferences(Profile& profile)
{
    auto* common = TVNC_BrowserCommonSetting::getInstance();
    common->loadSetting(&profile.common); // fills in what is missing, here everything
    common->setUseProxyInfo(1);
    common->setProxyServerStr("proxy.example.net");
    common->setProxyHttpPortStr("3128");
    common->setNoProxyDomainStr("localhost,.example.jp");
    common->setUseProxyCertificationInfo(1);
    common->setProxyAccountStr("device-17");
    common->setProxyPasswordStr("sesame");
    common->setCacheDeleteTiming(1); // at log-out
    common->saveSetting(&profile.common);

    auto* user = TVNC_BrowserUserSetting::getInstance();
    user->loadSetting(&profile.user);
    user->setHomePage(PAGES[0].url);
    user->setStartUp(1); // the last page
    user->setLastPage(PAGES[2].url);
    user->setZoomInfo(8); // "1.2"
    user->setFontName("DejaVu Sans");
    user->saveSetting(&profile.user);
}

void fillFonts(Profile& profile)
{
    auto* fonts = TVNC_FontListSetting::getInstance();
    fonts->loadFontList(profile.common);
    fonts->addFont("DejaVu Sans");
    fonts->addFont("VL ゴシック");
    fonts->saveFontList(profile.common);
}

void fillBookmarks(Profile& profile)
{
    auto* bookmarks = TVNC_BookmarksSetting::getInstance();
    int lastNumber = 0;
    bookmarks->loadBookmark(&profile.user, BOOKMARK_MAX, lastNumber);
    for (const Page& page : PAGES) {
        QImage picture = pictureOf(page);
        TVNS_Bookmark bookmark{page.title, page.url, profile.thumbnails()};
        bookmarks->setThumbnail(&picture, &bookmark.thumbnail, lastNumber); // completes the path
        bookmarks->setBookmark(&bookmark);
    }
    bookmarks->saveBookmark(&profile.user, BOOKMARK_MAX);
}

void fillHistory(Profile& profile)
{
    auto* history = TVNC_HistorySetting::getInstance();
    history->loadHistory(&profile.user, HISTORY_MAX);
    const QDateTime start(QDate(2011, 4, 12), QTime(10, 15));
    const int visited[] = {0, 1, 2, 0}; // the first page once more
    for (int i = 0; i < 4; ++i) {
        const Page& page = PAGES[visited[i]];
        QString url = page.url;
        const int earlier = history->getHistoryIndex(url);
        if (earlier >= 0)
            history->deleteHistory(earlier);
        TVNS_History visit;
        visit.title = page.title;
        visit.url = url;
        visit.dateTime = start.addSecs(60 * 7 * i);
        history->updateHistory(&visit); // keeps to the maximum
    }
    history->saveHistory(&profile.user, HISTORY_MAX);
}

void fillLogins(Profile& profile)
{
    auto* logins = TVNC_AuthSetting::getInstance();
    logins->loadAuthInfo(&profile.user, AUTH_MAX);
    TVNS_AuthInfo intranet{"intranet.example.com", "443", 1, "alice", "s3cret"};
    TVNS_AuthInfo router{"192.168.0.1", "80", 0, "admin", QByteArray("zero\0byte", 9)};
    for (TVNS_AuthInfo* login : {&intranet, &router}) {
        // The browser bounds the list itself: when it is full, the oldest login goes.
        if (logins->getAuthInfoCnt() < AUTH_MAX)
            logins->setAuthInfo(login);
        else
            logins->updateAuthInfo(login);
    }
    logins->saveAuthInfo(&profile.user, AUTH_MAX);
}

void fillCookies(Profile& profile)
{
    // As they come from the network. The last one ends with the browser and is not kept.
    QList<QNetworkCookie> jar = QNetworkCookie::parseCookies(
        "SID=31d4d96e407aad42; secure; HttpOnly; expires=Tue, 06-May-2031 07:08:09 GMT; "
        "domain=.example.com; path=/\n"
        "city=T%C3%B8nder; expires=Wed, 28-Feb-2029 00:00:00 GMT; domain=weather.example.com; path=/today\n"
        "visit=1; domain=news.example.org; path=/");
    QList<QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : jar) {
        if (!cookie.isSessionCookie())
            kept.append(cookie);
    }
    auto* cookies = TVNC_CookieSetting::getInstance();
    cookies->saveCookieInfo(kept, &profile.user, COOKIE_MAX);
    cookies->convertCookieIniToXML(profile.cookieDir().data(), profile.cookieDocument().data());
}

// --- Showing ----------------------------------------------------------------------------------------------

void print(const char* what, const QString& text)
{
    std::printf("%-28s %s\n", what, text.toUtf8().constData());
}

void print(const char* what, int number)
{
    print(what, QString::number(number));
}

void showPreferences(Profile& profile)
{
    auto* common = TVNC_BrowserCommonSetting::getInstance();
    common->loadSetting(&profile.common);
    QString text;
    QByteArray bytes;
    print("cookies are accepted", common->getRcvCookieInfo());
    print("JavaScript, Flash",
          QString("%1, %2").arg(int(common->getUseJavaScriptInfo())).arg(int(common->getPlayFlashInfo())));
    print("keyboard on the screen", common->getSWKeyBoardTypeInfo());
    print("SSL 3.0, TLS 1.0",
          QString("%1, %2").arg(int(common->getUseSSL30())).arg(int(common->getUseTLS10())));
    print("cache is used, deleted",
          QString("%1, %2").arg(int(common->getUseCacheInfo())).arg(int(common->getCacheDeleteTiming())));
    common->getProxyServerStr(&text);
    print("proxy", QString("%1, %2").arg(int(common->getUseProxyInfo())).arg(text));
    common->getProxyHttpPortStr(&text);
    print("proxy's port", text);
    common->getProxyHttpsPortStr(&text);
    print("its port for HTTPS", text);
    print("HTTP/1.1 through it, login", QString("%1, %2")
                                            .arg(int(common->getUseProxyHttpInfo()))
                                            .arg(int(common->getUseProxyCertificationInfo())));
    common->getNoProxyDomainStr(&text);
    print("not for", text);
    common->getProxyAccountStr(&bytes);
    print("proxy's user", QString(bytes));

    auto* user = TVNC_BrowserUserSetting::getInstance();
    user->loadSetting(&profile.user);
    user->getHomePage(&text);
    print("home page", text);
    user->getLastPage(&text);
    print("last page", text);
    print("last page first", user->getStartUp());
    print("zoom", user->getZoomInfo());
    user->getFontName(&text);
    print("font", text);
    print("cookies, logins deleted", QString("%1, %2")
                                         .arg(int(user->getCookieDeleteTiming()))
                                         .arg(int(user->getCertificationDeleteTiming())));
    user->getHomePage(&text);
    print("home page is the device's", TVNC_IwsUrl::IsIwsContents(QUrl(text), 0, nullptr, nullptr));
}

void showFonts(Profile& profile)
{
    auto* fonts = TVNC_FontListSetting::getInstance();
    fonts->loadFontList(profile.common);
    for (int i = 0; i < fonts->getCount(); ++i)
        print("font in the list", fonts->getFont(i));
}

void showBookmarks(Profile& profile)
{
    auto* bookmarks = TVNC_BookmarksSetting::getInstance();
    int lastNumber = 0;
    bookmarks->loadBookmark(&profile.user, BOOKMARK_MAX, lastNumber);
    print("bookmarks, last picture",
          QString("%1, %2").arg(bookmarks->getBookmarkCnt()).arg(lastNumber, 6, 10, QChar('0')));
    for (int i = 0; i < bookmarks->getBookmarkCnt(); ++i) {
        TVNS_Bookmark bookmark;
        bookmarks->getBookmark(i, &bookmark);
        QImage picture;
        bookmarks->getThumbnail(&picture, &bookmark.thumbnail);
        const QString size = QString("%1 x %2").arg(picture.width()).arg(picture.height());
        print("bookmark", bookmark.title + ", " + bookmark.href);
        print("its picture", size + ", first pixel " + QColor(picture.pixel(0, 0)).name());
    }
}

void showHistory(Profile& profile)
{
    auto* history = TVNC_HistorySetting::getInstance();
    history->loadHistory(&profile.user, HISTORY_MAX);
    for (int i = 0; i < history->getHistoryCnt(); ++i) {
        TVNS_History visit;
        history->getHistory(i, &visit);
        print("visit",
              QString("%1, %2, %3").arg(visit.dateTime.toString("yyyy/MM/dd hh:mm"), visit.title, visit.url));
    }
}

void showLogins(Profile& profile)
{
    auto* logins = TVNC_AuthSetting::getInstance();
    logins->loadAuthInfo(&profile.user, AUTH_MAX);
    for (int i = 0; i < logins->getAuthInfoCnt(); ++i) {
        TVNS_AuthInfo login;
        logins->getAuthInfo(i, &login);
        const QString server = login.hostName + ":" + login.portNum;
        print("login", server + QString(", type %1, ").arg(login.authType) + login.user +
                           QString(", password of %1 bytes").arg(login.passwd.size()));
    }
}

void showCookies(Profile& profile)
{
    auto* cookies = TVNC_CookieSetting::getInstance();
    for (const QNetworkCookie& cookie : cookies->loadCookieInfo(&profile.user, COOKIE_MAX))
        print("cookie in cookie.ini", QString("%1 of %2%3%4")
                                          .arg(QString(cookie.name()), cookie.domain(), cookie.path(),
                                               cookie.isHttpOnly() ? ", HttpOnly" : ""));
    QString document = profile.cookieDocument();
    cookies->load(document);
    for (const TVNS_CookieInfo& cookie : cookies->getAllCookieInfo())
        print("cookie in its document",
              QString("%1 of %2%3, until %4").arg(cookie.name, cookie.website, cookie.path, cookie.expires));
}

// --- Start and end ----------------------------------------------------------------------------------------

/// Before the first store: the log is on from the start.
void startLog()
{
    TVNG_DebugAttachMemory();
    TVNG_SetSignalHandler01(); // these handlers may use that memory
    // The system log would get every trace, thousands of lines a load: it knows no levels. A log file of what
    // was refused and what failed is enough for a product. Without its directory, both logs would lose every
    // message.
    g_uc_SystemLogLevel = 0;
    TVNG_DebugSetLogLevel(QFileInfo("/ata07/Talvenor/tmp").isDir() ? 2 : 0);
}

/// While the application object lives: afterwards nothing frees what the stores have let go of. A browser
/// saves here what it has not saved yet.
void end()
{
    // A browser's event loop does this all the time, but not for what is removed after exec().
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A load takes what stands in front of the damage, without a word, and the next save makes that the whole
/// file.
bool isSound(QString path)
{
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> root(reader.read(path));
    if (reader.error() == QXmlStreamReader::NoError)
        return true;
    std::fprintf(stderr, "profile: %s is damaged in line %lld: %s\n", qPrintable(path), reader.lineNumber(),
                 qPrintable(reader.errorString()));
    return false;
}

bool areSound(const Profile& profile)
{
    bool isAll = true;
    for (const QString& path :
         {profile.common + "repostry.xml", profile.common + "fontlist.xml",
          profile.user + "repostry_private.xml", profile.user + "bookmark.xml", profile.user + "visit.xml",
          profile.user + "authinfo.xml", QString(profile.cookieDocument())})
        isAll = isSound(path) && isAll;
    return isAll;
}

int complain(const QString& problem)
{
    std::fprintf(stderr, "profile: %s\n", qPrintable(problem));
    return 1;
}

int usage()
{
    std::fprintf(stderr, "usage: profile fill DIR          makes a new profile in the directory DIR\n"
                         "       profile show DIR          prints what a profile holds\n"
                         "       profile change DIR        edits and deletes some of it\n"
                         "       profile forget DIR        deletes what its user has collected\n"
                         "       profile pack DIR FILE     packs the bookmarks' pictures into FILE\n"
                         "       profile unpack FILE DIR   unpacks them into the new directory DIR\n"
                         "       profile clear-cache       empties the disk cache of the device\n");
    return 2;
}

void show(Profile& profile)
{
    // The preferences first: they tell a browser whether to use the rest, and what to open.
    showPreferences(profile);
    showFonts(profile);
    showBookmarks(profile);
    showHistory(profile);
    showLogins(profile);
    showCookies(profile);
}

int fill(Profile& profile)
{
    if (!QDir().mkpath(profile.common) || !QDir().mkpath(profile.thumbnails()))
        return complain("cannot make " + profile.user + ": name a directory that can be written");
    fillPreferences(profile);
    fillFonts(profile);
    fillBookmarks(profile);
    fillHistory(profile);
    fillLogins(profile);
    fillCookies(profile);
    show(profile);
    return 0;
}

/// For the commands that need a profile: makes sure of it before they run.
template <typename Command>
int withProfile(Profile& profile, const Command& command)
{
    if (!QDir(profile.user).exists())
        return complain("there is no profile in " + QFileInfo(profile.user).path() +
                        ": make one with \"profile fill\"");
    if (!areSound(profile))
        return 1;
    command(profile);
    show(profile);
    return 0;
}

int run(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    const QString first = arguments.value(2);
    const QString second = arguments.value(3);
    QString problem;
    if (command == "pack" && arguments.size() == 4)
        packPictures(Profile(first), second);
    else if (command == "unpack" && arguments.size() == 4)
        problem = unpackPictures(first, second);
    else if (command == "clear-cache" && arguments.size() == 2)
        problem = clearCache();
    else {
        if (arguments.size() != 3)
            return usage();
        Profile profile(first);
        if (command == "fill")
            return fill(profile);
        if (command == "show")
            return withProfile(profile, [](Profile&) {});
        if (command == "change")
            return withProfile(profile, changeProfile);
        return command == "forget" ? withProfile(profile, forgetUser) : usage();
    }
    return problem.isEmpty() ? 0 : complain(problem);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    startLog();
    const int exitCode = run(application.arguments());
    end();
    return exitCode;
}
