/*
 * Fills a browser's profile through every store of the library, or loads one, and prints what the stores
 * answer. What one process has filled in, another one gets as answer.
 *
 *     profile fill DIR     a new profile in DIR
 *     profile show DIR
 */

#include <tlvlib/tlvlib.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>

#include <cstdio>

namespace {

/// Directories end in "/": the stores append their file names to them as they are.
struct Profile
{
    explicit Profile(const QString& dir) : common(dir + "/common/"), user(dir + "/user/") {}

    QString common; ///< of the device
    QString user;   ///< of one user
    QString thumbnails() const { return user + "thumbnail/"; }

    /// The conversions of cookies take C strings.
    QByteArray cookieDocument() const { return (user + "cookies.xml").toLatin1(); }
    QByteArray cookieDir() const { return user.toLatin1(); }
};

/// How many records this browser keeps. The stores take it at load and at save.
const int BOOKMARK_MAX = 100;
const int HISTORY_MAX = 200;
const int AUTH_MAX = 50;
const int COOKIE_MAX = 20;

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
    print("cache is used, deleted",
          QString("%1, %2").arg(int(common->getUseCacheInfo())).arg(int(common->getCacheDeleteTiming())));
    common->getProxyServerStr(&text);
    print("proxy", QString("%1, %2").arg(int(common->getUseProxyInfo())).arg(text));
    common->getProxyHttpPortStr(&text);
    print("proxy's port", text);
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

int usage()
{
    std::fprintf(stderr, "usage: profile fill DIR    makes a new profile in the directory DIR\n"
                         "       profile show DIR    prints what a profile holds\n");
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3 || (arguments.at(1) != "fill" && arguments.at(1) != "show"))
        return usage();
    TVNG_SetSafeSave(1); // no save is torn by a power cut
    Profile profile(arguments.at(2));
    if (arguments.at(1) == "fill") {
        if (!QDir().mkpath(profile.common) || !QDir().mkpath(profile.thumbnails())) {
            std::fprintf(stderr, "profile: cannot make %s: name a directory that can be written\n",
                         qPrintable(profile.user));
            return 1;
        }
        fillPreferences(profile);
        fillFonts(profile);
        fillBookmarks(profile);
        fillHistory(profile);
        fillLogins(profile);
        fillCookies(profile);
    } else if (!QDir(profile.user).exists()) {
        std::fprintf(stderr, "profile: there is no profile in %s: make one with \"profile fill\"\n",
                     qPrintable(arguments.at(2)));
        return 1;
    }
    showPreferences(profile);
    showFonts(profile);
    showBookmarks(profile);
    showHistory(profile);
    showLogins(profile);
    showCookies(profile);
    // The stores let go of what they hold with deleteLater(). A browser's event loop frees it all the time.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
