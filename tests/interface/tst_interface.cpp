#include "tests/interface/ElfFile.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/tlvlib.h>

#include <cxxabi.h>
#include <dlfcn.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

/*
 * The binary interface: what a browser that was built with an earlier version of the library relies on. When
 * one of these checks fails, the change breaks such browsers; the checks only ever grow.
 *
 * To add a class: its lines in symbols.txt, a SIGNATURE for each operation, and its records' mirrors.
 */

// --- Signatures -------------------------------------------------------------------------------------------
// Results are no part of a symbol's name, so they are checked here.

#define SIGNATURE(operation, ...)                                                                            \
    static_assert(std::is_same<decltype(&operation), __VA_ARGS__>::value, #operation " has changed")

typedef TVNC_XMLNode Node;
typedef TVNC_XMLReader Reader;
typedef TVNC_XMLWriter Writer;
typedef TVNC_XMLSetting Setting;
typedef TVNC_AuthSetting Auth;
typedef TVNC_BookmarksSetting Bookmarks;
typedef TVNC_BrowserCommonSetting CommonPreferences;
typedef TVNC_BrowserUserSetting UserPreferences;
typedef TVNC_CookieSetting Cookies;
typedef TVNC_FontListSetting FontList;
typedef TVNC_HistorySetting History;
typedef TVNC_NetworkDiskCache DiskCache;
typedef TVNC_ThumbnailConverter Converter;

static_assert(std::is_same<decltype(TVNG_DebugPrint(0ul, "x")), void>::value, "TVNG_DebugPrint has changed");
SIGNATURE(TVNG_DebugSetLogLevel, void (*)(unsigned long));
SIGNATURE(TVNG_SetSignalHandler01, void (*)());
SIGNATURE(TVNG_DebugAttachMemory, void (*)());
SIGNATURE(ul_outputLevel, quint32*);
SIGNATURE(g_uc_SystemLogLevel, unsigned char*);

SIGNATURE(TVNG_SetSafeSave, void (*)(char));
SIGNATURE(TVNG_GetSaveError, QString (*)());

SIGNATURE(QEXC_TextCodec::fromSJIS, QString (*)(const char*));
SIGNATURE(TVNC_IwsUrl::IsIwsContents, bool (*)(const QUrl&, char, char*, char*));

SIGNATURE(Node::getXMLNodeParent, Node* (Node::*)());
SIGNATURE(Node::getXMLNodeChildren, QList<Node*>& (Node::*)());
SIGNATURE(Node::getAttribute, QXmlStreamAttributes& (Node::*)());
SIGNATURE(Node::getName, QString& (Node::*)());
SIGNATURE(Node::getText, QString& (Node::*)());
SIGNATURE(Node::getTextType, char (Node::*)());
SIGNATURE(Node::setName, void (Node::*)(QString&));
SIGNATURE(Node::setText, void (Node::*)(QString&));
SIGNATURE(Node::setTextType, void (Node::*)(char));
SIGNATURE(Node::setAttribute, void (Node::*)(QXmlStreamAttributes&));
SIGNATURE(Node::addXMLNode, void (Node::*)(Node*, char&));
SIGNATURE(Node::removeXMLNode, void (Node::*)(Node*));
SIGNATURE(Node::getChildByName, Node* (Node::*)(QString&, int&));
SIGNATURE(Node::getXMLNodeChildByName, Node* (Node::*)(QString&));
SIGNATURE(Node::getXMLNodeChildrenByName, QList<Node*> (Node::*)(QString&));
SIGNATURE(Node::getXMLNodeChildByID, Node* (Node::*)(int, QString&));
static_assert(std::is_constructible<Node, Node*, char>::value, "the node's constructor has changed");
static_assert(std::is_base_of<QObject, Node>::value, "deleteLater() needs a QObject");

static_assert(std::is_same<decltype(static_cast<Node* (Reader::*)(QString&)>(&Reader::read)),
                           Node* (Reader::*)(QString&)>::value,
              "read has changed");
static_assert(std::is_same<decltype(static_cast<Node* (Reader::*)(QIODevice&)>(&Reader::read)),
                           Node* (Reader::*)(QIODevice&)>::value,
              "read has changed");
SIGNATURE(Reader::readXMLNode, Node* (Reader::*)(Node*));
SIGNATURE(Reader::readText, void (Reader::*)(Node*));
static_assert(std::is_base_of<QXmlStreamReader, Reader>::value, "the reader's base has changed");

static_assert(std::is_same<decltype(static_cast<bool (Writer::*)(QString&, Node*)>(&Writer::write)),
                           bool (Writer::*)(QString&, Node*)>::value,
              "write has changed");
static_assert(std::is_same<decltype(static_cast<bool (Writer::*)(QIODevice&, Node*)>(&Writer::write)),
                           bool (Writer::*)(QIODevice&, Node*)>::value,
              "write has changed");
SIGNATURE(Writer::writeXMLNode, bool (Writer::*)(Node*));
static_assert(std::is_base_of<QXmlStreamWriter, Writer>::value, "the writer's base has changed");

SIGNATURE(Setting::load, void (Setting::*)(QString&));
SIGNATURE(Setting::save, void (Setting::*)(QString&));
SIGNATURE(Setting::getXMLRootNodeChildCntByName, int (Setting::*)(QString&, QString&));
SIGNATURE(Setting::setIDforChildren, void (Setting::*)(QString&));
SIGNATURE(Setting::deleteXMLNodeByID, void (Setting::*)(int, QString&));
SIGNATURE(Setting::deleteAllXMLNode, void (Setting::*)());
SIGNATURE(Setting::deleteAllSetting, void (Setting::*)());
SIGNATURE(Setting::addXMLChild,
          Node* (Setting::*)(Node*, QString&, QString&, char&, QXmlStreamAttributes&, char));
SIGNATURE(Setting::getXMLRootNode, Node* (Setting::*)());
SIGNATURE(Setting::createXMLRootNode, void (Setting::*)());
SIGNATURE(Setting::getGrandchildNode, Node* (Setting::*)(QString, QString));
SIGNATURE(Setting::setElement, Node* (Setting::*)(Node*, QString, QString, QXmlStreamAttributes, char, char));
SIGNATURE(Setting::getXMLNodeCnt, int (Setting::*)());
static_assert(!std::has_virtual_destructor<Setting>::value, "the virtual table has changed");

SIGNATURE(Auth::getInstance, Auth* (*)());
SIGNATURE(Auth::loadAuthInfo, void (Auth::*)(QString*, int));
SIGNATURE(Auth::saveAuthInfo, void (Auth::*)(QString*, int));
SIGNATURE(Auth::setAuthInfo, int (Auth::*)(TVNS_AuthInfo*));
SIGNATURE(Auth::addAuthInfo, void (Auth::*)(TVNS_AuthInfo*));
SIGNATURE(Auth::updateAuthInfo, int (Auth::*)(TVNS_AuthInfo*));
SIGNATURE(Auth::getAuthInfo, int (Auth::*)(int, TVNS_AuthInfo*));
SIGNATURE(Auth::getAuthInfoCnt, int (Auth::*)());
SIGNATURE(Auth::deleteAuthInfo, void (Auth::*)(int));
static_assert(std::is_base_of<Setting, Auth>::value, "the store's base has changed");
static_assert(!std::is_default_constructible<Auth>::value, "there is one instance");

SIGNATURE(Bookmarks::getInstance, Bookmarks* (*)());
SIGNATURE(Bookmarks::loadBookmark, void (Bookmarks::*)(QString*, int, int&));
SIGNATURE(Bookmarks::saveBookmark, void (Bookmarks::*)(QString*, int));
SIGNATURE(Bookmarks::getBookmarkCnt, int (Bookmarks::*)());
SIGNATURE(Bookmarks::setBookmark, bool (Bookmarks::*)(TVNS_Bookmark*));
SIGNATURE(Bookmarks::getBookmark, bool (Bookmarks::*)(int, TVNS_Bookmark*));
SIGNATURE(Bookmarks::deleteBookmark, void (Bookmarks::*)(int));
SIGNATURE(Bookmarks::getBookmarkTitle, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::setBookmarkTitle, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::getBookmarkURL, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::setBookmarkURL, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::getBookmarkThumbnailFilePath, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::setBookmarkThumbnailFilePath, bool (Bookmarks::*)(int, QString*));
SIGNATURE(Bookmarks::getBookmarkChildNode, Node* (Bookmarks::*)(int, char));
SIGNATURE(Bookmarks::ClipString, QString (Bookmarks::*)(const QString&, int));
SIGNATURE(Bookmarks::setThumbnail, bool (Bookmarks::*)(QImage*, QString*, int&));
SIGNATURE(Bookmarks::getThumbnail, bool (Bookmarks::*)(QImage*, QString*));
SIGNATURE(Bookmarks::deleteThumbnail, bool (Bookmarks::*)(QString*));
SIGNATURE(Bookmarks::getThumbNode, Node* (Bookmarks::*)(int&));
SIGNATURE(Bookmarks::getThumbFilePath, QString (Bookmarks::*)(Node*));
SIGNATURE(Bookmarks::setThumbFilePath, bool (Bookmarks::*)(Node*, QString&));
SIGNATURE(Bookmarks::getLastNumber, int (Bookmarks::*)());
SIGNATURE(Bookmarks::changeThumbFilePath, void (Bookmarks::*)(QString&, QString (*)(QString&, QString&)));
SIGNATURE(Bookmarks::addThumbnailFilePath, void (Bookmarks::*)(QString*));
SIGNATURE(Bookmarks::removeThumbnailFilePath, void (Bookmarks::*)());
static_assert(std::is_base_of<Setting, Bookmarks>::value, "the store's base has changed");
static_assert(!std::is_default_constructible<Bookmarks>::value, "there is one instance");
static_assert(!std::is_destructible<Bookmarks>::value, "the instance lives as long as the process");

SIGNATURE(CommonPreferences::getInstance, CommonPreferences* (*)());
SIGNATURE(CommonPreferences::loadSetting, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::saveSetting, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::setKeyBoardTypeInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getKeyBoardTypeInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setRcvCookieInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getRcvCookieInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseCacheInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseCacheInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setCacheDeleteTiming, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getCacheDeleteTiming, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setSWKeyBoardTypeInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getSWKeyBoardTypeInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseJavaScriptInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseJavaScriptInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setPlayFlashInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getPlayFlashInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseProxyInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseProxyInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseProxyHttpInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseProxyHttpInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseProxyCertificationInfo, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseProxyCertificationInfo, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseSSL30, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseSSL30, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setUseTLS10, void (CommonPreferences::*)(char));
SIGNATURE(CommonPreferences::getUseTLS10, char (CommonPreferences::*)());
SIGNATURE(CommonPreferences::setProxyServerStr, bool (CommonPreferences::*)(QString));
SIGNATURE(CommonPreferences::getProxyServerStr, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::setProxyHttpPortStr, bool (CommonPreferences::*)(QString));
SIGNATURE(CommonPreferences::getProxyHttpPortStr, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::setProxyHttpsPortStr, bool (CommonPreferences::*)(QString));
SIGNATURE(CommonPreferences::getProxyHttpsPortStr, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::setNoProxyDomainStr, bool (CommonPreferences::*)(QString));
SIGNATURE(CommonPreferences::getNoProxyDomainStr, void (CommonPreferences::*)(QString*));
SIGNATURE(CommonPreferences::setProxyAccountStr, bool (CommonPreferences::*)(QByteArray));
SIGNATURE(CommonPreferences::getProxyAccountStr, void (CommonPreferences::*)(QByteArray*));
SIGNATURE(CommonPreferences::setProxyPasswordStr, bool (CommonPreferences::*)(QByteArray));
SIGNATURE(CommonPreferences::getProxyPasswordStr, void (CommonPreferences::*)(QByteArray*));
static_assert(std::is_base_of<Setting, CommonPreferences>::value, "the store's base has changed");
static_assert(!std::is_default_constructible<CommonPreferences>::value, "there is one instance");
static_assert(!std::is_destructible<CommonPreferences>::value, "the instance lives as long as the process");

SIGNATURE(UserPreferences::getInstance, UserPreferences* (*)());
SIGNATURE(UserPreferences::loadSetting, void (UserPreferences::*)(QString*));
SIGNATURE(UserPreferences::saveSetting, void (UserPreferences::*)(QString*));
SIGNATURE(UserPreferences::setStartUp, void (UserPreferences::*)(char));
SIGNATURE(UserPreferences::getStartUp, char (UserPreferences::*)());
SIGNATURE(UserPreferences::setCookieDeleteTiming, void (UserPreferences::*)(char));
SIGNATURE(UserPreferences::getCookieDeleteTiming, char (UserPreferences::*)());
SIGNATURE(UserPreferences::setCertificationDeleteTiming, void (UserPreferences::*)(char));
SIGNATURE(UserPreferences::getCertificationDeleteTiming, char (UserPreferences::*)());
SIGNATURE(UserPreferences::setHomePage, bool (UserPreferences::*)(QString));
SIGNATURE(UserPreferences::getHomePage, void (UserPreferences::*)(QString*));
SIGNATURE(UserPreferences::setLastPage, bool (UserPreferences::*)(QString));
SIGNATURE(UserPreferences::getLastPage, void (UserPreferences::*)(QString*));
SIGNATURE(UserPreferences::setFontName, bool (UserPreferences::*)(QString));
SIGNATURE(UserPreferences::getFontName, void (UserPreferences::*)(QString*));
SIGNATURE(UserPreferences::setZoomInfo, bool (UserPreferences::*)(short));
SIGNATURE(UserPreferences::getZoomInfo, short (UserPreferences::*)());
static_assert(std::is_base_of<Setting, UserPreferences>::value, "the store's base has changed");
static_assert(!std::is_default_constructible<UserPreferences>::value, "there is one instance");
static_assert(!std::is_destructible<UserPreferences>::value, "the instance lives as long as the process");

SIGNATURE(Cookies::getInstance, Cookies* (*)());
SIGNATURE(Cookies::addCookieInfo, void (Cookies::*)(QNetworkCookie&));
SIGNATURE(Cookies::getAllCookieInfo, QList<TVNS_CookieInfo> (Cookies::*)());
SIGNATURE(Cookies::isMuchCookieInfo, bool (Cookies::*)(QNetworkCookie&, TVNS_CookieInfo&));
SIGNATURE(Cookies::deleteCookieInfo, void (Cookies::*)(int));
SIGNATURE(Cookies::saveCookieInfo, void (Cookies::*)(QList<QNetworkCookie>, QString*, int));
SIGNATURE(Cookies::loadCookieInfo, QList<QNetworkCookie> (Cookies::*)(QString*, int));
SIGNATURE(Cookies::convertCookieXMLToIni, void (Cookies::*)(char*, char*));
SIGNATURE(Cookies::convertCookieIniToXML, void (Cookies::*)(char*, char*));
static_assert(std::is_base_of<Setting, Cookies>::value, "the store's base has changed");
static_assert(!std::is_default_constructible<Cookies>::value, "there is one instance");
static_assert(!std::is_destructible<Cookies>::value, "the instance lives as long as the process");

SIGNATURE(FontList::getInstance, FontList* (*)());
SIGNATURE(FontList::loadFontList, void (FontList::*)(QString));
SIGNATURE(FontList::saveFontList, void (FontList::*)(QString));
SIGNATURE(FontList::getCount, int (FontList::*)());
SIGNATURE(FontList::getFont, QString (FontList::*)(int));
SIGNATURE(FontList::addFont, void (FontList::*)(QString));
static_assert(!std::is_default_constructible<FontList>::value, "there is one instance");

SIGNATURE(History::getInstance, History* (*)());
SIGNATURE(History::loadHistory, void (History::*)(QString*, int));
SIGNATURE(History::saveHistory, void (History::*)(QString*, int));
SIGNATURE(History::getHistoryCnt, int (History::*)());
SIGNATURE(History::setHistory, void (History::*)(TVNS_History*));
SIGNATURE(History::updateHistory, void (History::*)(TVNS_History*));
SIGNATURE(History::getHistory, bool (History::*)(int, TVNS_History*));
SIGNATURE(History::getHistoryIndex, int (History::*)(QString&));
SIGNATURE(History::changeHistory, void (History::*)(int, TVNS_History&));
SIGNATURE(History::changeHistoryTitle, void (History::*)(int, QString&));
SIGNATURE(History::deleteHistory, void (History::*)(int));
SIGNATURE(History::sortHistory, void (History::*)());
SIGNATURE(TVNS_History::operator<, bool (TVNS_History::*)(const TVNS_History&) const);
static_assert(!std::is_default_constructible<History>::value, "there is one instance");
static_assert(!std::is_destructible<History>::value, "the instance lives as long as the process");

SIGNATURE(Converter::getInstance, Converter* (*)());
SIGNATURE(Converter::encode_base64, void (Converter::*)(QString&, QByteArray&));
SIGNATURE(Converter::decode_base64, bool (Converter::*)(QByteArray&, QString&));
SIGNATURE(Converter::setThumbnail, void (Converter::*)(QString&, QString&, Node*));
SIGNATURE(Converter::convertThumbnailPngToXML, void (Converter::*)(char*, char*));
SIGNATURE(Converter::convertThumbnailXMLToPng, void (Converter::*)(char*, char*));
SIGNATURE(Converter::getFileList,
          QStringList (Converter::*)(QString&, QStringList&, QFlags<QDir::Filter>, QFlags<QDir::SortFlag>));
static_assert(std::is_base_of<Setting, Converter>::value, "the converter's base has changed");
static_assert(!std::is_default_constructible<Converter>::value, "there is one instance");
static_assert(!std::is_destructible<Converter>::value, "the instance lives as long as the process");

SIGNATURE(DiskCache::getInstance, DiskCache* (*)());
SIGNATURE(DiskCache::clear, void (DiskCache::*)());
static_assert(!std::is_default_constructible<DiskCache>::value, "there is one instance");
static_assert(!std::is_destructible<DiskCache>::value, "the instance lives as long as the process");

// --- Layout -----------------------------------------------------------------------------------------------

/// Where in an object a part of it stands.
template <typename Object, typename Member>
static ptrdiff_t offsetIn(const Object& object, const Member& member)
{
    return static_cast<const char*>(static_cast<const void*>(&member)) -
           static_cast<const char*>(static_cast<const void*>(&object));
}

/// The members of a node, in their order.
struct NodeMirror : public QObject
{
    NodeMirror() : textType(0), parent(nullptr) {}
    char textType;
    TVNC_XMLNode* parent;
    QList<TVNC_XMLNode*> children;
    QXmlStreamAttributes attributes;
    QString name;
    QString text;
};
static_assert(sizeof(NodeMirror) == sizeof(TVNC_XMLNode), "the node's size has changed");

/// A setting document: the pointer to the virtual table, then the root.
struct SettingMirror
{
    void** slots_;
    TVNC_XMLNode* root;
};
static_assert(sizeof(SettingMirror) == sizeof(TVNC_XMLSetting), "the setting base's size has changed");

static SettingMirror mirrorOf(const TVNC_XMLSetting& setting)
{
    SettingMirror mirror;
    std::memcpy(&mirror, static_cast<const void*>(&setting), sizeof mirror);
    return mirror;
}

/// A store with a maximum count: the setting base, then the count.
struct BoundedMirror
{
    SettingMirror base;
    qint32 maxCount;
};
static_assert(sizeof(BoundedMirror) == sizeof(TVNC_AuthSetting),
              "the authentication store's size has changed");

/// The members of a login, in their order.
struct AuthInfoMirror
{
    QString hostName;
    QString portNum;
    quint8 authType;
    QByteArray user;
    QByteArray passwd;
};
static_assert(sizeof(AuthInfoMirror) == sizeof(TVNS_AuthInfo), "the login's size has changed");
#define SAME_MEMBER(mirror, record, member)                                                                  \
    static_assert(offsetof(mirror, member) == offsetof(record, member) &&                                    \
                      std::is_same<decltype(mirror::member), decltype(record::member)>::value,               \
                  #record "::" #member " has changed")
SAME_MEMBER(AuthInfoMirror, TVNS_AuthInfo, hostName);
SAME_MEMBER(AuthInfoMirror, TVNS_AuthInfo, portNum);
SAME_MEMBER(AuthInfoMirror, TVNS_AuthInfo, authType);
SAME_MEMBER(AuthInfoMirror, TVNS_AuthInfo, user);
SAME_MEMBER(AuthInfoMirror, TVNS_AuthInfo, passwd);

static_assert(sizeof(BoundedMirror) == sizeof(TVNC_BookmarksSetting),
              "the bookmark store's size has changed");

/// The members of a bookmark, in their order.
struct BookmarkMirror
{
    QString title;
    QString href;
    QString thumbnail;
};
static_assert(sizeof(BookmarkMirror) == sizeof(TVNS_Bookmark), "the bookmark's size has changed");
SAME_MEMBER(BookmarkMirror, TVNS_Bookmark, title);
SAME_MEMBER(BookmarkMirror, TVNS_Bookmark, href);
SAME_MEMBER(BookmarkMirror, TVNS_Bookmark, thumbnail);

/// The device's preferences: the setting base, then a code for the keyboard's type.
struct CommonPreferencesMirror
{
    SettingMirror base;
    char keyBoardType;
};
static_assert(sizeof(CommonPreferencesMirror) == sizeof(TVNC_BrowserCommonSetting),
              "the size of the device's preferences has changed");
static_assert(sizeof(TVNC_BrowserUserSetting) == sizeof(TVNC_XMLSetting),
              "the user's preferences have no member of their own");

static_assert(sizeof(BoundedMirror) == sizeof(TVNC_CookieSetting), "the cookie store's size has changed");

/// The members of a cookie, in their order.
struct CookieInfoMirror
{
    QString website;
    QString name;
    QString path;
    QString secure;
    QString expires;
    QString contents;
};
static_assert(sizeof(CookieInfoMirror) == sizeof(TVNS_CookieInfo), "the cookie's size has changed");
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, website);
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, name);
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, path);
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, secure);
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, expires);
SAME_MEMBER(CookieInfoMirror, TVNS_CookieInfo, contents);

static_assert(sizeof(TVNC_FontListSetting) == sizeof(TVNC_XMLSetting),
              "the font list has no member of its own");

static_assert(sizeof(BoundedMirror) == sizeof(TVNC_HistorySetting), "the history's size has changed");

/// The members of a visit, in their order.
struct VisitMirror
{
    QString title;
    QString url;
    QDateTime dateTime;
};
static_assert(sizeof(VisitMirror) == sizeof(TVNS_History), "the visit's size has changed");
SAME_MEMBER(VisitMirror, TVNS_History, title);
SAME_MEMBER(VisitMirror, TVNS_History, url);
SAME_MEMBER(VisitMirror, TVNS_History, dateTime);

static_assert(sizeof(TVNC_ThumbnailConverter) == sizeof(TVNC_XMLSetting),
              "the converter has no member of its own");
static_assert(std::is_empty<TVNC_NetworkDiskCache>::value, "clearing the cache needs no member");

static_assert(sizeof(TVNC_XMLReader) == sizeof(QXmlStreamReader), "the reader has no member of its own");
static_assert(sizeof(TVNC_XMLWriter) == sizeof(QXmlStreamWriter), "the writer has no member of its own");

class tst_interface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sonameIsThatOfTheDevice();
    void exportedSymbolsAreThoseOfTheList();
    void loadingRunsTwoInitialisers();
    void nodeMembersKeepTheirOrder();
    void settingBaseKeepsItsLayout();
    void maximumCountFollowsTheBase();
    void keyBoardTypeFollowsTheBase();
    void virtualOperationsKeepTheirOrder();
    void storesReachTheBasesOperations();
    void nodeHasNoMetaObjectOfItsOwn();

private:
    QString libraryPath_;
};

void tst_interface::initTestCase()
{
    Dl_info info;
    QVERIFY(dladdr(dlsym(RTLD_DEFAULT, "_Z21TVNG_DebugSetLogLevelm"), &info));
    libraryPath_ = QFile::decodeName(info.dli_fname);
    QVERIFY(ElfFile(libraryPath_).isValid());
}

void tst_interface::sonameIsThatOfTheDevice()
{
    QCOMPARE(ElfFile(libraryPath_).soname(), QByteArray("libtlvlib.so.1"));
}

static QString demangled(const QByteArray& symbol)
{
    int si_status = 0;
    char* pc_name = abi::__cxa_demangle(symbol.constData(), nullptr, nullptr, &si_status);
    QString name = QString::fromLatin1(si_status == 0 ? pc_name : symbol.constData());
    std::free(pc_name);
    // From Qt 6 on QStringList is only another name for it.
    return name.replace(QLatin1String("QList<QString>"), QLatin1String("QStringList"));
}

void tst_interface::exportedSymbolsAreThoseOfTheList()
{
    QSet<QString> exported;
    foreach (const QByteArray& symbol, ElfFile(libraryPath_).exported())
        exported.insert(demangled(symbol));

    QSet<QString> listed;
    foreach (const QByteArray& line, readFile(testData(QLatin1String("symbols.txt"))).split('\n')) {
        if (!line.isEmpty() && !line.startsWith('#'))
            listed.insert(QString::fromLatin1(line));
    }
    QVERIFY(!listed.isEmpty());
    const QStringList missing = (QSet<QString>(listed) - exported).values();
    QStringList surplus = (QSet<QString>(exported) - listed).values();
    // Some linkers export the bounds of the sections.
    surplus.removeAll(QLatin1String("_init"));
    surplus.removeAll(QLatin1String("_fini"));
    surplus.removeAll(QLatin1String("_edata"));
    surplus.removeAll(QLatin1String("_end"));
    surplus.removeAll(QLatin1String("__bss_start"));
    QCOMPARE(missing, QStringList());
    QCOMPARE(surplus, QStringList());
}

void tst_interface::loadingRunsTwoInitialisers()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the sanitizer adds initialisers of its own", SkipAll);
#endif
    // The codec, the semaphore, and the one that most compilers put into every shared object.
    const int si_initialisers = ElfFile(libraryPath_).initialisers();
    QVERIFY2(si_initialisers == 2 || si_initialisers == 3, qPrintable(QString::number(si_initialisers)));
}

void tst_interface::nodeMembersKeepTheirOrder()
{
    TVNC_XMLNode parent(nullptr, 0);
    TVNC_XMLNode* pc_node = new TVNC_XMLNode(&parent, 0);
    pc_node->setTextType(77);
    const char* const pc_bytes = static_cast<const char*>(static_cast<const void*>(pc_node));

    const NodeMirror mirror;
    QCOMPARE(int(pc_bytes[offsetIn(mirror, mirror.textType)]), 77);
    TVNC_XMLNode* pc_parent = nullptr;
    std::memcpy(&pc_parent, pc_bytes + offsetIn(mirror, mirror.parent), sizeof pc_parent);
    QCOMPARE(pc_parent, &parent);
    QCOMPARE(offsetIn(*pc_node, pc_node->getXMLNodeChildren()), offsetIn(mirror, mirror.children));
    QCOMPARE(offsetIn(*pc_node, pc_node->getAttribute()), offsetIn(mirror, mirror.attributes));
    QCOMPARE(offsetIn(*pc_node, pc_node->getName()), offsetIn(mirror, mirror.name));
    QCOMPARE(offsetIn(*pc_node, pc_node->getText()), offsetIn(mirror, mirror.text));
}

void tst_interface::settingBaseKeepsItsLayout()
{
    TVNC_XMLSetting setting;
    QVERIFY(!mirrorOf(setting).root);
    setting.createXMLRootNode();
    QCOMPARE(mirrorOf(setting).root, setting.getXMLRootNode());
}

template <typename Store>
static int maxCountOf(const Store* pc_store)
{
    BoundedMirror mirror;
    std::memcpy(&mirror, static_cast<const void*>(pc_store), sizeof mirror);
    return mirror.maxCount;
}

void tst_interface::maximumCountFollowsTheBase()
{
    TempDir dir;
    QString path = dir.path();
    QCOMPARE(maxCountOf(TVNC_AuthSetting::getInstance()), 0);
    TVNC_AuthSetting::getInstance()->loadAuthInfo(&path, 0x1234567);
    QCOMPARE(maxCountOf(TVNC_AuthSetting::getInstance()), 0x1234567);

    int si_lastNumber = 0;
    QCOMPARE(maxCountOf(TVNC_BookmarksSetting::getInstance()), 0);
    TVNC_BookmarksSetting::getInstance()->loadBookmark(&path, 0x2345678, si_lastNumber);
    QCOMPARE(maxCountOf(TVNC_BookmarksSetting::getInstance()), 0x2345678);
    TVNC_BookmarksSetting::getInstance()->saveBookmark(&path, 7); // only checked
    QCOMPARE(maxCountOf(TVNC_BookmarksSetting::getInstance()), 0x2345678);

    QCOMPARE(maxCountOf(TVNC_CookieSetting::getInstance()), 0);
    TVNC_CookieSetting::getInstance()->loadCookieInfo(&path, 0x3456789);
    QCOMPARE(maxCountOf(TVNC_CookieSetting::getInstance()), 0x3456789);
    TVNC_CookieSetting::getInstance()->saveCookieInfo(QList<QNetworkCookie>(), &path, 7); // only checked
    QCOMPARE(maxCountOf(TVNC_CookieSetting::getInstance()), 0x3456789);

    QCOMPARE(maxCountOf(TVNC_HistorySetting::getInstance()), 0);
    TVNC_HistorySetting::getInstance()->loadHistory(&path, 0x7654321);
    QCOMPARE(maxCountOf(TVNC_HistorySetting::getInstance()), 0x7654321);
}

void tst_interface::keyBoardTypeFollowsTheBase()
{
    TVNC_BrowserCommonSetting* const pc_preferences = TVNC_BrowserCommonSetting::getInstance();
    pc_preferences->setKeyBoardTypeInfo(77);
    CommonPreferencesMirror mirror;
    std::memcpy(&mirror, static_cast<const void*>(pc_preferences), sizeof mirror);
    QCOMPARE(int(mirror.keyBoardType), 77);
}

static const char* const SETTING_SLOTS[] = {
    "_ZN15TVNC_XMLSetting4loadER7QString",
    "_ZN15TVNC_XMLSetting4saveER7QString",
    "_ZN15TVNC_XMLSetting28getXMLRootNodeChildCntByNameER7QStringS1_",
    "_ZN15TVNC_XMLSetting16setIDforChildrenER7QString",
    "_ZN15TVNC_XMLSetting17deleteXMLNodeByIDEiR7QString",
    "_ZN15TVNC_XMLSetting16deleteAllXMLNodeEv",
    "_ZN15TVNC_XMLSetting16deleteAllSettingEv",
    "_ZN15TVNC_XMLSetting11addXMLChildEP12TVNC_XMLNodeR7QStringS3_RcR20QXmlStreamAttributesc",
};
static const int SETTING_SLOT_COUNT = sizeof SETTING_SLOTS / sizeof *SETTING_SLOTS;

void tst_interface::virtualOperationsKeepTheirOrder()
{
    TVNC_XMLSetting setting;
    void** const pc_slots = mirrorOf(setting).slots_;
    for (int i = 0; i < SETTING_SLOT_COUNT; ++i) {
        void* const pc_function = dlsym(RTLD_DEFAULT, SETTING_SLOTS[i]);
        QVERIFY2(pc_function, SETTING_SLOTS[i]);
        QVERIFY2(pc_slots[i] == pc_function, SETTING_SLOTS[i]);
    }
}

void tst_interface::storesReachTheBasesOperations()
{
    QList<TVNC_XMLSetting*> stores;
    stores << TVNC_AuthSetting::getInstance() << TVNC_BookmarksSetting::getInstance()
           << TVNC_BrowserCommonSetting::getInstance() << TVNC_BrowserUserSetting::getInstance()
           << TVNC_CookieSetting::getInstance() << TVNC_FontListSetting::getInstance()
           << TVNC_HistorySetting::getInstance() << TVNC_ThumbnailConverter::getInstance();
    foreach (TVNC_XMLSetting* pc_store, stores) {
        void** const pc_slots = mirrorOf(*pc_store).slots_;
        for (int i = 0; i < SETTING_SLOT_COUNT; ++i)
            QVERIFY2(pc_slots[i] == dlsym(RTLD_DEFAULT, SETTING_SLOTS[i]), SETTING_SLOTS[i]);
    }
}

void tst_interface::nodeHasNoMetaObjectOfItsOwn()
{
    TVNC_XMLNode node(nullptr, 0);
    QCOMPARE(node.metaObject(), &QObject::staticMetaObject);
}

TLVLIB_TEST_MAIN(tst_interface)
#include "tst_interface.moc"
