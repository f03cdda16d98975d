#include "tests/crash/Workload.h"

#include "tests/support/Random.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QBuffer>
#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtNetwork/QNetworkCookie>

#include <sys/time.h>

namespace {

const int MAX = 100;

/// Some text that differs from round to round, as long as it says.
QString text(int si_round, int si_size)
{
    Random random(static_cast<quint32>(si_round * 31 + si_size));
    QString text;
    for (int i = 0; i < si_size; ++i)
        text += QLatin1Char(static_cast<char>('a' + random.next(26)));
    return text;
}

QImage picture(int si_seed)
{
    Random random(static_cast<quint32>(si_seed));
    QImage image(64, 40, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, random.next(0x1000000) | 0xFF000000u);
    }
    return image;
}

/// A directory without any file.
QString nowhere(const QString& dir)
{
    return dir + utf8("nowhere/");
}

void saveFonts(const QString& dir, int si_round)
{
    TVNC_FontListSetting* pc_store = TVNC_FontListSetting::getInstance();
    pc_store->loadFontList(nowhere(dir));
    for (int i = 0; i < 100 + si_round; ++i)
        pc_store->addFont(text(si_round, 50 + i));
    pc_store->saveFontList(dir);
}

void savePicture(const QString& dir, int si_round)
{
    QImage image = picture(si_round);
    QString path = dir + utf8("thumbnail/");
    int si_number = 0;
    TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &path, si_number);
}

void saveBookmarks(const QString& dir, int si_round)
{
    TVNC_BookmarksSetting* pc_store = TVNC_BookmarksSetting::getInstance();
    QString from = nowhere(dir);
    QString to = dir;
    int si_last = 0;
    pc_store->loadBookmark(&from, MAX, si_last);
    for (int i = 0; i < 40 - si_round; ++i) {
        TVNS_Bookmark bookmark = {text(si_round, 30 + i), text(si_round, 60), utf8("000001.PNG")};
        pc_store->setBookmark(&bookmark);
    }
    pc_store->saveBookmark(&to, MAX);
}

void saveHistory(const QString& dir, int si_round)
{
    TVNC_HistorySetting* pc_store = TVNC_HistorySetting::getInstance();
    QString from = nowhere(dir);
    QString to = dir;
    pc_store->loadHistory(&from, MAX);
    for (int i = 0; i < 40 + si_round; ++i) {
        TVNS_History visit;
        visit.title = text(si_round, 20 + i);
        visit.url = text(si_round, 50 + i);
        visit.dateTime = QDateTime(QDate(2011, 4, 12), QTime(10, i % 60));
        pc_store->updateHistory(&visit);
    }
    pc_store->saveHistory(&to, MAX);
}

void saveAuth(const QString& dir, int si_round)
{
    TVNC_AuthSetting* pc_store = TVNC_AuthSetting::getInstance();
    QString from = nowhere(dir);
    QString to = dir;
    pc_store->loadAuthInfo(&from, MAX);
    for (int i = 0; i < 40 + si_round; ++i) {
        TVNS_AuthInfo info = {text(si_round, 30 + i), utf8("443"), 1, "user", text(si_round, 40).toLatin1()};
        pc_store->setAuthInfo(&info);
    }
    pc_store->saveAuthInfo(&to, MAX);
}

void saveCommon(const QString& dir, int si_round)
{
    TVNC_BrowserCommonSetting* pc_store = TVNC_BrowserCommonSetting::getInstance();
    QString from = nowhere(dir);
    QString to = dir;
    pc_store->loadSetting(&from);
    pc_store->setProxyServerStr(text(si_round, 200));
    pc_store->saveSetting(&to);
}

void saveUser(const QString& dir, int si_round)
{
    TVNC_BrowserUserSetting* pc_store = TVNC_BrowserUserSetting::getInstance();
    QString from = nowhere(dir);
    QString to = dir;
    pc_store->loadSetting(&from);
    pc_store->setHomePage(text(si_round, 250));
    pc_store->setLastPage(text(si_round, 240));
    pc_store->saveSetting(&to);
}

void fillTree(TVNC_XMLNode* pc_root, int si_round)
{
    for (int i = 0; i < 80 + si_round; ++i)
        makeNode(pc_root, "entry", text(si_round, i * 3).toLatin1().constData(), i % 2 == 0 ? 0 : 1);
}

void saveWithWriter(const QString& dir, int si_round)
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "written"));
    fillTree(root.data(), si_round);
    QString path = dir + utf8("written.xml");
    TVNC_XMLWriter writer;
    writer.write(path, root.data());
}

void saveSetting(const QString& dir, int si_round)
{
    Setting setting;
    QString path = dir + utf8("setting.xml");
    setting.createXMLRootNode();
    QString name = utf8("setting");
    setting.getXMLRootNode()->setName(name);
    fillTree(setting.getXMLRootNode(), si_round + 7);
    setting.save(path);
}

void saveCookies(const QString& dir, int si_round)
{
    QList<QNetworkCookie> cookies;
    for (int i = 0; i < 15 + si_round; ++i) {
        QNetworkCookie cookie(text(si_round, 5 + i).toLatin1(), text(si_round, 100 + i).toLatin1());
        cookie.setDomain(utf8(".example.com"));
        cookie.setPath(utf8("/"));
        cookie.setHttpOnly(true);
        cookies << cookie;
    }
    QString to = dir;
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &to, 20);
}

void convertToDocument(const QString& dir, int)
{
    QByteArray from = QFile::encodeName(dir);
    QByteArray to = from + "cookies.xml";
    TVNC_CookieSetting::getInstance()->convertCookieIniToXML(from.data(), to.data());
}

void convertToIni(const QString& dir, int)
{
    QByteArray from = QFile::encodeName(dir) + "cookies.xml";
    QByteArray to = QFile::encodeName(dir) + "back/";
    TVNC_CookieSetting::getInstance()->convertCookieXMLToIni(from.data(), to.data());
}

void pack(const QString& dir, int)
{
    QByteArray from = QFile::encodeName(dir) + "thumbnail/";
    QByteArray to = QFile::encodeName(dir) + "pack.xml";
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(from.data(), to.data());
}

void unpack(const QString& dir, int)
{
    QByteArray from = QFile::encodeName(dir) + "pack.xml";
    QByteArray to = QFile::encodeName(dir) + "unpacked/";
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailXMLToPng(from.data(), to.data());
}

QByteArray loadedDocument(const QString& path)
{
    Setting setting;
    QString name = path;
    setting.load(name);
    return describe(setting.getXMLRootNode()).toUtf8();
}

QByteArray loadedCookies(const QString& path)
{
    // QSettings takes a file of the same size and time for the one that it has read: time goes on.
    static time_t seconds = 1300000000;
    struct timeval times[2];
    times[0].tv_sec = times[1].tv_sec = ++seconds;
    times[0].tv_usec = times[1].tv_usec = 0;
    utimes(QFile::encodeName(path).constData(), times);
    QString dir = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    QByteArray all = "cookies";
    foreach (const QNetworkCookie& cookie, TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20))
        all += '\n' + cookie.toRawForm();
    return all;
}

QByteArray loadedPicture(const QString& path)
{
    QImage image;
    QString name = path;
    if (!TVNC_BookmarksSetting::getInstance()->getThumbnail(&image, &name))
        return "no picture";
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    image.save(&bytes, "BMP");
    return "picture " + QCryptographicHash::hash(bytes.data(), QCryptographicHash::Md5).toHex();
}

} // namespace

const Save SAVES[] = {{"font list", saveFonts},
                      {"picture", savePicture},
                      {"bookmarks", saveBookmarks},
                      {"history", saveHistory},
                      {"credentials", saveAuth},
                      {"preferences of the device", saveCommon},
                      {"preferences of the user", saveUser},
                      {"writer", saveWithWriter},
                      {"setting base", saveSetting},
                      {"cookie.ini", saveCookies},
                      {"conversion to the document", convertToDocument},
                      {"conversion to cookie.ini", convertToIni},
                      {"pack", pack},
                      {"unpack", unpack}};
const int SAVE_COUNT = sizeof SAVES / sizeof *SAVES;

void prepareDirectory(const QString& dir)
{
    QDir().mkpath(dir + utf8("thumbnail"));
    QDir().mkpath(dir + utf8("unpacked"));
    QDir().mkpath(dir + utf8("back"));
    picture(100).save(dir + utf8("thumbnail/000002.PNG"), "PNG", -1);
}

QByteArray loaded(const QString& dir, const QByteArray& name)
{
    const QString path = dir + QFile::decodeName(name);
    if (!QFile::exists(path))
        return QByteArray();
    if (name.endsWith(".xml"))
        return loadedDocument(path);
    return name.endsWith(".ini") ? loadedCookies(path) : loadedPicture(path);
}
