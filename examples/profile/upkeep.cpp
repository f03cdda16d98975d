#include "upkeep.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <memory>

namespace {

// --- Bookmarks --------------------------------------------------------------------------------------------

void editBookmark(TVNC_BookmarksSetting& bookmarks, int position)
{
    QString url;
    if (!bookmarks.getBookmarkURL(position, &url))
        return;
    url.replace("http:", "https:");
    bookmarks.setBookmarkURL(position, &url); // false when it has got too long

    // A title that is too long is taken, but never handed out again.
    QString title;
    bookmarks.getBookmarkTitle(position, &title);
    title = bookmarks.ClipString(title + ", with everything that the page's author had to say about it", 100);
    bookmarks.setBookmarkTitle(position, &title);
}

/// The picture goes last: were the process to end between the two, a picture without a bookmark would be
/// left, which costs some bytes, and not a bookmark without its picture.
void removeBookmark(TVNC_BookmarksSetting& bookmarks, Profile& profile, int position)
{
    QString picture;
    bookmarks.getBookmarkThumbnailFilePath(position, &picture);
    bookmarks.deleteBookmark(position); // all behind it move up
    bookmarks.saveBookmark(&profile.user, BOOKMARK_MAX);
    if (!picture.isEmpty())
        bookmarks.deleteThumbnail(&picture);
}

/// A picture that the browser takes anew goes into a new file, and the bookmark is told.
void replacePicture(TVNC_BookmarksSetting& bookmarks, Profile& profile, int position)
{
    QString earlier;
    QImage picture;
    if (!bookmarks.getBookmarkThumbnailFilePath(position, &earlier) ||
        !bookmarks.getThumbnail(&picture, &earlier))
        return;
    picture = picture.mirrored();
    QString path = profile.thumbnails();
    int lastNumber = bookmarks.getLastNumber();
    if (!bookmarks.setThumbnail(&picture, &path, lastNumber))
        return;
    bookmarks.setBookmarkThumbnailFilePath(position, &path);
    bookmarks.saveBookmark(&profile.user, BOOKMARK_MAX);
    bookmarks.deleteThumbnail(&earlier);
}

void changeBookmarks(Profile& profile)
{
    auto& bookmarks = *TVNC_BookmarksSetting::getInstance();
    int lastNumber = 0;
    bookmarks.loadBookmark(&profile.user, BOOKMARK_MAX, lastNumber);
    editBookmark(bookmarks, 0);
    removeBookmark(bookmarks, profile, 1);
    replacePicture(bookmarks, profile, 0);
}

// --- History ----------------------------------------------------------------------------------------------

void changeHistory(Profile& profile)
{
    auto& history = *TVNC_HistorySetting::getInstance();
    history.loadHistory(&profile.user, HISTORY_MAX);
    // A page tells its title late.
    QString title = "News, at last";
    QString url = "http://news.example.org/";
    history.changeHistoryTitle(history.getHistoryIndex(url), title);
    // The first page moved. Its visit keeps its place until the list is sorted.
    TVNS_History visit;
    if (history.getHistory(0, &visit)) {
        visit.url.replace("http:", "https:");
        visit.dateTime = visit.dateTime.addSecs(-3600);
        history.changeHistory(0, visit);
        history.sortHistory();
    }
    // From the back, so that the numbers in front stay.
    for (int i = history.getHistoryCnt() - 1; i >= 0; --i) {
        TVNS_History old; // a new one each time: what a record lacks stays as it was
        history.getHistory(i, &old);
        if (old.url.contains("example.jp"))
            history.deleteHistory(i);
    }
    history.saveHistory(&profile.user, HISTORY_MAX);
}

// --- Logins, cookies, fonts -------------------------------------------------------------------------------

void removeLogin(Profile& profile, const QString& host)
{
    auto& logins = *TVNC_AuthSetting::getInstance();
    logins.loadAuthInfo(&profile.user, AUTH_MAX);
    for (int i = logins.getAuthInfoCnt() - 1; i >= 0; --i) {
        TVNS_AuthInfo login{};
        logins.getAuthInfo(i, &login);
        if (login.hostName == host)
            logins.deleteAuthInfo(i);
    }
    logins.saveAuthInfo(&profile.user, AUTH_MAX);
}

/// The user removes a cookie from the document that shows them, and the browser's own file follows. What the
/// document does not know, HttpOnly, would be lost on the way back: so the browser's file is changed, not
/// made from the document.
void removeCookie(Profile& profile, int position)
{
    auto& cookies = *TVNC_CookieSetting::getInstance();
    QString document = profile.cookieDocument();
    cookies.load(document);
    const QList<TVNS_CookieInfo> shown = cookies.getAllCookieInfo();
    if (position >= shown.size())
        return;
    const TVNS_CookieInfo& gone = shown.at(position);
    QList<QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : cookies.loadCookieInfo(&profile.user, COOKIE_MAX)) {
        // Not isMuchCookieInfo(), to which a cookie with other than ASCII characters is never the same.
        if (cookie.domain() != gone.website || cookie.path() != gone.path ||
            QString::fromUtf8(cookie.name()) != gone.name)
            kept.append(cookie);
    }
    cookies.saveCookieInfo(kept, &profile.user, COOKIE_MAX);
    cookies.deleteCookieInfo(position);
    cookies.save(document);
}

/// The list of fonts has no operation for it; its base, which numbers the records, has.
void removeFont(Profile& profile, int position)
{
    auto& fonts = *TVNC_FontListSetting::getInstance();
    fonts.loadFontList(profile.common);
    QString number = "id";
    fonts.deleteXMLNodeByID(position, number);
    fonts.setIDforChildren(number);
    fonts.saveFontList(profile.common);
}

// --- Preferences ------------------------------------------------------------------------------------------

void changePreferences(Profile& profile)
{
    auto& common = *TVNC_BrowserCommonSetting::getInstance();
    common.loadSetting(&profile.common);
    common.setRcvCookieInfo(0);
    common.setUseCacheInfo(0);
    common.setUseJavaScriptInfo(0);
    common.setPlayFlashInfo(0);
    common.setSWKeyBoardTypeInfo(0); // the keyboard at USB has priority
    common.setUseProxyHttpInfo(0);
    common.setUseSSL30(0);
    common.setUseTLS10(0);
    if (!common.setProxyHttpsPortStr("3129")) // refused when it has more than five bytes
        qFatal("the port is too long");
    common.saveSetting(&profile.common);

    auto& user = *TVNC_BrowserUserSetting::getInstance();
    user.loadSetting(&profile.user);
    user.setCookieDeleteTiming(1);        // at log-out
    user.setCertificationDeleteTiming(2); // when nobody has been here for a while
    user.saveSetting(&profile.user);
}

// --- Packs ------------------------------------------------------------------------------------------------

/// Whether all names in a pack are those of files in the directory. The library joins them to it as they are:
/// "../bookmark.xml" would replace the bookmarks, and "pack.xml" the pack that is being read.
bool namesStay(QString pack)
{
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> root(reader.read(pack));
    if (!root) // no memory
        return false;
    for (TVNC_XMLNode* image : root->getXMLNodeChildren()) {
        const QString name = image->getAttribute().value("src").toString();
        if (name.isEmpty() || name.contains('/') || !name.endsWith(".png", Qt::CaseInsensitive))
            return false;
    }
    return true;
}

} // namespace

void changeProfile(Profile& profile)
{
    changePreferences(profile);
    changeBookmarks(profile);
    changeHistory(profile);
    removeLogin(profile, "192.168.0.1");
    removeCookie(profile, 1);
    removeFont(profile, 0);
}

void forgetUser(Profile& profile)
{
    auto& bookmarks = *TVNC_BookmarksSetting::getInstance();
    int lastNumber = 0;
    bookmarks.loadBookmark(&profile.user, BOOKMARK_MAX, lastNumber);
    while (bookmarks.getBookmarkCnt() > 0)
        removeBookmark(bookmarks, profile, 0);

    // All records at once.
    auto& history = *TVNC_HistorySetting::getInstance();
    history.loadHistory(&profile.user, HISTORY_MAX);
    history.deleteAllSetting();
    history.saveHistory(&profile.user, HISTORY_MAX);
    auto& logins = *TVNC_AuthSetting::getInstance();
    logins.loadAuthInfo(&profile.user, AUTH_MAX);
    logins.deleteAllSetting();
    logins.saveAuthInfo(&profile.user, AUTH_MAX);

    auto& cookies = *TVNC_CookieSetting::getInstance();
    cookies.saveCookieInfo(QList<QNetworkCookie>(), &profile.user, COOKIE_MAX);
    cookies.convertCookieIniToXML(profile.cookieDir().data(), profile.cookieDocument().data());
}

void packPictures(const Profile& profile, const QString& pack)
{
    QByteArray dir = profile.thumbnails().toLatin1();
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(dir.data(), pack.toLatin1().data());
}

QString unpackPictures(const QString& pack, const QString& dir)
{
    // A new directory has no symbolic links that a name could follow, and nobody changes a copy between the
    // look at it and the unpacking.
    QString path = dir + "/pack.xml";
    if (QFileInfo::exists(dir) || !QDir().mkpath(dir) || !QFile::copy(pack, path))
        return "cannot copy the pack into a new directory";
    const bool isGood = namesStay(path);
    if (isGood) {
        QByteArray target = (dir + '/').toLatin1();
        TVNC_ThumbnailConverter::getInstance()->convertThumbnailXMLToPng(path.toLatin1().data(),
                                                                         target.data());
    }
    QFile::remove(path);
    return isGood ? QString() : "a name leads elsewhere: nothing was unpacked";
}

QString clearCache()
{
    // Without the directory the library would try to make it.
    if (!QFileInfo("/ata07/Talvenor/cache/").isDir())
        return "there is no disk cache on this machine";
    TVNC_NetworkDiskCache::getInstance()->clear();
    return QString();
}
