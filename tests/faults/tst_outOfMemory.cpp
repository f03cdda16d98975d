#include "tests/support/FailingAllocations.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QMap>

#include <fcntl.h>
#include <new>
#include <sys/wait.h>
#include <unistd.h>

/// Every operation of the interface, while each of its allocations fails.
class tst_outOfMemory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void operation_data();
    void operation();
};

// --- What the operations work with -----------------------------------------------------------------------

static TVNC_FontListSetting& fonts()
{
    return *TVNC_FontListSetting::getInstance();
}
static TVNC_BookmarksSetting& marks()
{
    return *TVNC_BookmarksSetting::getInstance();
}
static TVNC_HistorySetting& visits()
{
    return *TVNC_HistorySetting::getInstance();
}
static TVNC_AuthSetting& logins()
{
    return *TVNC_AuthSetting::getInstance();
}
static TVNC_CookieSetting& cookies()
{
    return *TVNC_CookieSetting::getInstance();
}
static TVNC_BrowserCommonSetting& common()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}
static TVNC_BrowserUserSetting& user()
{
    return *TVNC_BrowserUserSetting::getInstance();
}
static TVNC_ThumbnailConverter& converter()
{
    return *TVNC_ThumbnailConverter::getInstance();
}
static Setting& setting()
{
    static Setting setting;
    return setting;
}

/// Arguments, made while there is memory. All of a row's processes begin with the same ones.
struct Arguments
{
    Arguments() : number(0), zeroNumber(0), zero(0), one(1), image(4, 4, QImage::Format_RGB32)
    {
        dir = root.path() + utf8("d/");
        file = dir + utf8("bookmark.xml");
        picture = dir + utf8("thumbnail/000001.PNG");
        pictures = dir + utf8("thumbnail/");
        pack = dir + utf8("pack.xml");
        cookieFile = dir + utf8("cookie.xml");
        packedFile = dir + utf8("packed.xml");
        c_dir = dir.toLatin1();
        c_pictures = pictures.toLatin1();
        c_pack = pack.toLatin1();
        c_cookieFile = cookieFile.toLatin1();
        host = "www.example.com";
        text = utf8("\xE6\x97\xA5 text");
        bytes = "bytes";
        base64 = "eHl6";
        id = utf8("id");
        name = utf8("bookmark");
        title = utf8("title");
        port = utf8("80");
        document = "<a x='y'><b id='000'>x</b><!-- --><c><![CDATA[y]]></c></a>";
        mark.title = QString(60, QChar(0x3042)); // to be clipped
        mark.href = utf8("http://example.com/");
        mark.thumbnail = picture;
        visit.title = text;
        visit.url = utf8("http://example.com/visit");
        visit.dateTime = QDateTime(QDate(2011, 4, 12), QTime(10, 15));
        login.hostName = utf8("example.com");
        login.portNum = utf8("80");
        login.authType = 1;
        earlierLogin.authType = 0;
        login.user = login.passwd = "secret";
        cookie = QNetworkCookie("name", "value");
        cookie.setDomain(utf8(".example.com"));
        cookie.setPath(utf8("/"));
        cookieList << cookie << QNetworkCookie("other", "v");
        cookieInfo.website = utf8(".example.com");
        cookieInfo.name = utf8("name");
        cookieInfo.path = utf8("/");
        cookieInfo.secure = utf8("false");
        cookieInfo.contents = utf8("value");
        url = QUrl(utf8("http://www.example.com/"));
        image.fill(0);
        attributes.append(id, utf8("000"));
    }

    TempDir root;
    QString dir, file, picture, pictures, pack, cookieFile, packedFile, text, port, id, name, title, out;
    QByteArray c_dir, c_pictures, c_pack, c_cookieFile, host, bytes, base64, outBytes, document;
    QMap<QString, QByteArray> files;
    TVNS_Bookmark mark, earlierMark;
    TVNS_History visit, earlier;
    TVNS_AuthInfo login, earlierLogin;
    QNetworkCookie cookie;
    QList<QNetworkCookie> cookieList;
    TVNS_CookieInfo cookieInfo;
    QUrl url;
    QStringList filters; ///< none: Qt does not tell when there is no memory for one
    QXmlStreamAttributes attributes;
    int number, zeroNumber;
    char zero, one;
    QImage image;
};
static Arguments* a = nullptr;

/// The store that a row is about, whose document is compared.
static TVNC_XMLSetting* pc_store = nullptr;

/// A node of its document, and a copy of a list.
static TVNC_XMLNode* pc_node = nullptr;
static TVNC_XMLNode* pc_other = nullptr;
static QList<TVNC_XMLNode*> copiedList;
static QBuffer* pc_buffer = nullptr;
static TVNC_XMLReader* pc_reader = nullptr;
/// One for each document.
static TVNC_XMLWriter* pc_writer = nullptr;
static TVNC_XMLWriter* pc_nextWriter = nullptr;

static TVNC_XMLWriter& writer()
{
    TVNC_XMLWriter& now = *pc_writer;
    pc_writer = pc_nextWriter;
    return now;
}

// --- Preparations, each with what was there before ------------------------------------------------------

static void none() {}
static void useFonts()
{
    pc_store = &fonts();
    fonts().loadFontList(a->dir);
}
static void useMarks()
{
    pc_store = &marks();
    marks().loadBookmark(&a->dir, 99, a->number);
}
static void useVisits()
{
    pc_store = &visits();
    visits().loadHistory(&a->dir, 99);
}
static void useFullVisits()
{
    pc_store = &visits();
    visits().loadHistory(&a->dir, 3);
}
static void useUnsortedVisits()
{
    useVisits();
    TVNS_History changed = a->visit;
    changed.dateTime = QDateTime(QDate(2000, 1, 1), QTime(1, 2));
    visits().changeHistory(0, changed);
}
static void useLogins()
{
    pc_store = &logins();
    logins().loadAuthInfo(&a->dir, 99);
    a->login.hostName = utf8("new.example.com"); // not that of the entry that is there
}
static void useCookies()
{
    pc_store = &cookies();
    cookies().load(a->cookieFile);
}
static void useCommon()
{
    pc_store = &common();
    common().loadSetting(&a->dir);
}
static void useUser()
{
    pc_store = &user();
    user().loadSetting(&a->dir);
}
static void useConverter()
{
    pc_store = &converter();
    converter().createXMLRootNode();
}
static void useSetting()
{
    pc_store = &setting();
    setting().load(a->file);
    pc_node = setting().getXMLRootNode();
    pc_other = pc_node->getXMLNodeChildByID(1, a->id);
}
static void useSharedLists()
{
    useSetting();
    copiedList = pc_node->getXMLNodeChildren();
}
static void usePackedText()
{
    pc_store = &setting();
    setting().load(a->packedFile);
    pc_node = setting().getXMLRootNode()->getXMLNodeChildByName(a->title);
}
static void useReader()
{
    pc_buffer = new QBuffer(&a->document);
    pc_buffer->open(QIODevice::ReadOnly);
    pc_reader = new TVNC_XMLReader;
}
static void useReaderOnText()
{
    useReader();
    pc_reader->addData(a->document);
    while (!pc_reader->isStartElement())
        pc_reader->readNext();
}
static void useWriter()
{
    useSetting();
    pc_buffer = new QBuffer;
    pc_buffer->open(QIODevice::WriteOnly);
    pc_writer = new TVNC_XMLWriter;
    pc_nextWriter = new TVNC_XMLWriter;
    pc_writer->setDevice(pc_buffer);
    pc_nextWriter->setDevice(pc_buffer);
}

// --- The operations ---------------------------------------------------------------------------------------

/// What may be there after an allocation has failed. Numbers of records do not count: the next change makes
/// them good.
enum Kind {
    READS,    ///< no file changes, and a second call answers as ever
    WRITES,   ///< a second call writes the files as ever; with safe saves each is old or new
    SAFELY,   ///< the same, and only with safe saves: otherwise Qt itself writes, and ends the program
    RESAVES,  ///< the same, but what could not be loaded is not saved, without an error
    CHANGES,  ///< the document is as before, or as afterwards
    ADDS,     ///< all old records are there, perhaps with a new one, which may lack elements
    EXCHANGES ///< what was to go may have gone without what was to come, and nothing else
};

struct Row
{
    const char* pc_name;
    Kind kind;
    void (*pc_prepare)();
    int (*pc_operate)();
};

#define DO(call)                                                                                             \
    [] {                                                                                                     \
        call;                                                                                                \
        return 0;                                                                                            \
    }
#define GIVES(value) [] { return static_cast<int>(value); }
#define GIVES_OUT(out, call)                                                                                 \
    [] {                                                                                                     \
        a->out.clear();                                                                                      \
        call;                                                                                                \
        return static_cast<int>(a->out.size());                                                              \
    }
/// True only with what the operation hands out.
#define GIVES_WITH(out, answer) [] { return (answer) ? 1 + static_cast<int>((out).size()) : 0; }
#define SWITCH(store, use, Name)                                                                             \
    {"set" #Name, CHANGES, use, DO(store().set##Name(0))},                                                   \
    {                                                                                                        \
        "get" #Name, READS, use, GIVES(store().get##Name())                                                  \
    }
#define TEXT(store, use, Name, in, out)                                                                      \
    {"set" #Name, CHANGES, use, GIVES(store().set##Name(a->in))},                                            \
    {                                                                                                        \
        "get" #Name, READS, use, GIVES_OUT(out, store().get##Name(&a->out))                                  \
    }

static const Row ROWS[] = {
    {"fromSJIS", READS, none, GIVES(QEXC_TextCodec::fromSJIS("x").size())},
    {"IsIwsContents", READS, none, GIVES(TVNC_IwsUrl::IsIwsContents(a->url, 1, a->host.data(), a->host.data()))},
    {"GetSaveError", READS, none, GIVES(TVNG_GetSaveError().size())},
    {"SetSafeSave", READS, none, DO(TVNG_SetSafeSave(0))},
    {"DebugSetLogLevel", READS, none, DO(TVNG_DebugSetLogLevel(0))},
    {"DebugPrint", READS, none, DO(TVNG_DebugPrint(1, "%d", 7))},
    {"SetSignalHandler01", READS, none, DO(TVNG_SetSignalHandler01())},
    {"DebugAttachMemory", READS, none, DO(TVNG_DebugAttachMemory())},
    // Left out, since Qt's own classes end the program or wait for ever then: TVNC_NetworkDiskCache::clear(),
    // the load of cookie.ini (QSettings) with its conversion, setThumbnail() and getThumbnail() (QImage).
    {"TVNS_History::operator<", READS, none, GIVES(a->visit < a->earlier)},

    {"node: addXMLNode", CHANGES, useSetting, DO(pc_other->addXMLNode(pc_node->getXMLNodeChildByName(a->name), a->zero))},
    {"node: addXMLNode, moved", CHANGES, useSetting, DO(pc_node->addXMLNode(pc_other, a->one))},
    {"node: addXMLNode, shared", CHANGES, useSharedLists, DO(pc_node->addXMLNode(pc_other, a->one))},
    {"node: removeXMLNode", CHANGES, useSetting, DO(pc_node->removeXMLNode(pc_other))},
    {"node: removeXMLNode, shared", CHANGES, useSharedLists, DO(pc_node->removeXMLNode(pc_other))},
    {"node: deletion", EXCHANGES, useSetting, DO(delete pc_other)},
    {"node: deletion, shared", EXCHANGES, useSharedLists, DO(delete pc_other)},
    {"node: deletion of all, shared", EXCHANGES, useSharedLists, [] { setting().createXMLRootNode(); delete pc_node; return 0; }},
    {"node: getXMLNodeParent", READS, useSetting, GIVES(pc_other->getXMLNodeParent() == pc_node)},
    {"node: getXMLNodeChildren", READS, useSetting, GIVES(pc_node->getXMLNodeChildren().size())},
    {"node: getAttribute", READS, useSetting, GIVES(pc_node->getAttribute().size())},
    {"node: getName", READS, useSetting, GIVES(pc_node->getName().size())},
    {"node: getText", READS, usePackedText, GIVES(pc_node->getText().size())},
    {"node: getTextType", READS, useSetting, GIVES(pc_node->getTextType())},
    {"node: setName", CHANGES, useSetting, DO(pc_node->setName(a->text))},
    {"node: setText", CHANGES, useSetting, DO(pc_node->setText(a->text))},
    {"node: setTextType", CHANGES, useSetting, DO(pc_node->setTextType(1))},
    {"node: setAttribute", CHANGES, useSetting, DO(pc_node->setAttribute(a->attributes))},
    {"node: getChildByName", READS, useSetting, GIVES(pc_node->getChildByName(a->name, a->number) != nullptr)},
    {"node: getXMLNodeChildByName", READS, useSetting, GIVES(pc_node->getXMLNodeChildByName(a->name) != nullptr)},
    {"node: getXMLNodeChildrenByName", READS, useSetting, GIVES(pc_node->getXMLNodeChildrenByName(a->name).size())},
    {"node: getXMLNodeChildByID", READS, useSetting, GIVES(pc_node->getXMLNodeChildByID(7, a->id) != nullptr)},

    {"reader: read", READS, useReader, [] { TVNC_XMLNode* pc_root = pc_reader->read(a->file); delete pc_root; return 0; }},
    {"reader: read of a device", READS, useReader, [] { TVNC_XMLNode* pc_root = pc_reader->read(*pc_buffer); delete pc_root; return 0; }},
    {"reader: readXMLNode", READS, useReaderOnText, [] { TVNC_XMLNode* pc_root = pc_reader->readXMLNode(nullptr); delete pc_root; return 0; }},
    {"reader: readText", READS, useReaderOnText, DO(pc_reader->readText(nullptr))},
    {"writer: write", WRITES, useWriter, GIVES(writer().write(a->file, pc_node))},
    {"writer: write to a device", READS, useWriter, GIVES_WITH(pc_buffer->data(), writer().write(*pc_buffer, pc_node))},
    {"writer: writeXMLNode", READS, useWriter, GIVES_WITH(pc_buffer->data(), writer().writeXMLNode(pc_node))},

    {"setting: load", READS, useSetting, DO(setting().load(a->file))},
    {"setting: save", WRITES, useSetting, DO(setting().save(a->file))},
    {"setting: save of packed texts", WRITES, usePackedText, DO(setting().save(a->file))},
    {"setting: getXMLRootNodeChildCntByName", READS, useSetting, GIVES(setting().getXMLRootNodeChildCntByName(a->id, a->name))},
    {"setting: setIDforChildren", CHANGES, useSetting, DO(setting().setIDforChildren(a->id))},
    {"setting: deleteXMLNodeByID", CHANGES, useSetting, DO(setting().deleteXMLNodeByID(7, a->id))},
    {"setting: deleteXMLNodeByID, shared", CHANGES, useSharedLists, DO(setting().deleteXMLNodeByID(7, a->id))},
    {"setting: deleteAllXMLNode", EXCHANGES, useSetting, DO(setting().deleteAllXMLNode())},
    {"setting: deleteAllSetting", CHANGES, useSharedLists, DO(setting().deleteAllSetting())},
    {"setting: addXMLChild", CHANGES, useSetting, DO(setting().addXMLChild(pc_node, a->name, a->text, a->zero, a->attributes, 1))},
    {"setting: getXMLRootNode", READS, useSetting, GIVES(setting().getXMLRootNode() == pc_node)},
    {"setting: createXMLRootNode", EXCHANGES, useSetting, DO(setting().createXMLRootNode())},
    {"setting: getGrandchildNode", READS, useSetting, GIVES(setting().getGrandchildNode(a->name, a->title) != nullptr)},
    {"setting: setElement", CHANGES, useSetting, DO(setting().setElement(pc_node, a->text, a->text, a->attributes, 0, 0))},
    {"setting: getXMLNodeCnt", READS, useSetting, GIVES(setting().getXMLNodeCnt())},

    {"loadFontList", READS, none, DO(fonts().loadFontList(a->dir))},
    {"loadFontList again", READS, useFonts, DO(fonts().loadFontList(a->dir))},
    {"saveFontList", WRITES, useFonts, DO(fonts().saveFontList(a->dir))},
    {"loadFontList, saveFontList", RESAVES, none, DO(fonts().loadFontList(a->dir); fonts().saveFontList(a->dir))},
    {"saveFontList first", WRITES, none, DO(fonts().saveFontList(a->dir))},
    {"getCount", READS, useFonts, GIVES(fonts().getCount())},
    {"getFont", READS, useFonts, GIVES(fonts().getFont(0).size())},
    {"addFont", CHANGES, useFonts, DO(fonts().addFont(a->text))},
    {"addFont first", CHANGES, none, DO(fonts().addFont(a->text))},

    {"loadBookmark", READS, none, DO(marks().loadBookmark(&a->dir, 9, a->number))},
    {"loadBookmark again", READS, useMarks, DO(marks().loadBookmark(&a->dir, 9, a->number))},
    {"saveBookmark", WRITES, useMarks, DO(marks().saveBookmark(&a->dir, 9))},
    {"loadBookmark, saveBookmark", RESAVES, none,
     DO(marks().loadBookmark(&a->dir, 9, a->number); marks().saveBookmark(&a->dir, 9))},
    {"getBookmarkCnt", READS, useMarks, GIVES(marks().getBookmarkCnt())},
    {"setBookmark", ADDS, useMarks, GIVES(marks().setBookmark(&a->mark))},
    {"setBookmark first", ADDS, none, GIVES(marks().setBookmark(&a->mark))},
    {"getBookmark", READS, useMarks, GIVES_WITH(a->earlierMark.title, marks().getBookmark(0, &a->earlierMark))},
    {"deleteBookmark", CHANGES, useMarks, DO(marks().deleteBookmark(1))},
    {"getBookmarkTitle", READS, useMarks, GIVES_WITH(a->out, marks().getBookmarkTitle(0, &a->out))},
    {"setBookmarkTitle", CHANGES, useMarks, GIVES(marks().setBookmarkTitle(0, &a->text))},
    {"getBookmarkURL", READS, useMarks, GIVES_WITH(a->out, marks().getBookmarkURL(0, &a->out))},
    {"setBookmarkURL", CHANGES, useMarks, GIVES(marks().setBookmarkURL(0, &a->text))},
    {"getBookmarkThumbnailFilePath", READS, useMarks, GIVES_WITH(a->out, marks().getBookmarkThumbnailFilePath(0, &a->out))},
    {"setBookmarkThumbnailFilePath", CHANGES, useMarks, GIVES(marks().setBookmarkThumbnailFilePath(0, &a->text))},
    {"getBookmarkChildNode", READS, none, GIVES(marks().getBookmarkChildNode(0, 0) != nullptr)},
    {"ClipString", READS, none, GIVES(marks().ClipString(a->mark.title, 100).size())},
    {"deleteThumbnail", EXCHANGES, none, DO(marks().deleteThumbnail(&a->picture))},
    {"getThumbNode", READS, useMarks, GIVES(marks().getThumbNode(a->zeroNumber) != nullptr)},
    {"getThumbFilePath", READS, useMarks, GIVES(marks().getThumbFilePath(marks().getBookmarkChildNode(0, 2)).size())},
    {"setThumbFilePath", CHANGES, useMarks, DO(marks().setThumbFilePath(marks().getBookmarkChildNode(0, 2), a->text))},
    {"getLastNumber", READS, useMarks, GIVES(marks().getLastNumber())},
    {"changeThumbFilePath", EXCHANGES, useMarks, DO(marks().changeThumbFilePath(a->dir, [](QString& path, QString& dir) { return QString(path + dir); }))},
    {"addThumbnailFilePath", EXCHANGES, useMarks, DO(marks().addThumbnailFilePath(&a->dir))},
    {"removeThumbnailFilePath", EXCHANGES, useMarks, DO(marks().removeThumbnailFilePath())},

    {"loadHistory", READS, none, DO(visits().loadHistory(&a->dir, 9))},
    {"loadHistory again", READS, useVisits, DO(visits().loadHistory(&a->dir, 9))},
    {"saveHistory", WRITES, useVisits, DO(visits().saveHistory(&a->dir, 9))},
    {"loadHistory, saveHistory", RESAVES, none,
     DO(visits().loadHistory(&a->dir, 9); visits().saveHistory(&a->dir, 9))},
    {"getHistoryCnt", READS, useVisits, GIVES(visits().getHistoryCnt())},
    {"setHistory", ADDS, useVisits, DO(visits().setHistory(&a->visit))},
    {"updateHistory", EXCHANGES, useFullVisits, DO(visits().updateHistory(&a->visit))},
    {"getHistory", READS, useVisits, GIVES_WITH(a->earlier.url, visits().getHistory(0, &a->earlier))},
    {"getHistoryIndex", READS, useVisits, GIVES(1 + visits().getHistoryIndex(a->visit.url))},
    {"changeHistory", CHANGES, useVisits, DO(visits().changeHistory(1, a->visit))},
    {"changeHistoryTitle", CHANGES, useVisits, DO(visits().changeHistoryTitle(1, a->text))},
    {"deleteHistory", CHANGES, useVisits, DO(visits().deleteHistory(1))},
    {"sortHistory", CHANGES, useUnsortedVisits, DO(visits().sortHistory())},

    {"loadAuthInfo", READS, none, DO(logins().loadAuthInfo(&a->dir, 9))},
    {"loadAuthInfo again", READS, useLogins, DO(logins().loadAuthInfo(&a->dir, 9))},
    {"saveAuthInfo", WRITES, useLogins, DO(logins().saveAuthInfo(&a->dir, 9))},
    {"loadAuthInfo, saveAuthInfo", RESAVES, none,
     DO(logins().loadAuthInfo(&a->dir, 9); logins().saveAuthInfo(&a->dir, 9))},
    {"setAuthInfo", ADDS, useLogins, GIVES(logins().setAuthInfo(&a->login))},
    {"addAuthInfo", ADDS, useLogins, DO(logins().addAuthInfo(&a->login))},
    {"updateAuthInfo", EXCHANGES, useLogins, GIVES(logins().updateAuthInfo(&a->login))},
    {"getAuthInfo", READS, useLogins, GIVES_WITH(a->earlierLogin.user, logins().getAuthInfo(0, &a->earlierLogin))},
    {"getAuthInfoCnt", READS, useLogins, GIVES(logins().getAuthInfoCnt())},
    {"deleteAuthInfo", CHANGES, useLogins, DO(logins().deleteAuthInfo(0))},

    {"addCookieInfo", ADDS, useCookies, DO(cookies().addCookieInfo(a->cookie))},
    {"getAllCookieInfo", READS, useCookies, GIVES(cookies().getAllCookieInfo().size())},
    {"isMuchCookieInfo", READS, none, GIVES(cookies().isMuchCookieInfo(a->cookie, a->cookieInfo))},
    {"isMuchCookieInfo, another", READS, none, GIVES(cookies().isMuchCookieInfo(a->cookieList[1], a->cookieInfo))},
    {"deleteCookieInfo", CHANGES, useCookies, DO(cookies().deleteCookieInfo(0))},
    {"convertCookieXMLToIni", SAFELY, none,
     DO(cookies().convertCookieXMLToIni(a->c_cookieFile.data(), a->c_dir.data()))},
    {"saveCookieInfo", SAFELY, none, DO(cookies().saveCookieInfo(a->cookieList, &a->dir, 9))},

    {"encode_base64", READS, none, GIVES_OUT(outBytes, converter().encode_base64(a->picture, a->outBytes))},
    {"decode_base64", WRITES, none, GIVES(converter().decode_base64(a->base64, a->picture))},
    {"ThumbnailConverter::setThumbnail", CHANGES, useConverter, DO(converter().setThumbnail(a->text, a->name, converter().getXMLRootNode()))},
    {"convertThumbnailPngToXML", WRITES, none, DO(converter().convertThumbnailPngToXML(a->c_pictures.data(), a->c_pack.data()))},
    {"convertThumbnailXMLToPng", WRITES, none, DO(converter().convertThumbnailXMLToPng(a->c_pack.data(), a->c_pictures.data()))},
    {"getFileList", READS, none, GIVES(converter().getFileList(a->pictures, a->filters, QDir::Files, QDir::Name).size())},

    {"common: loadSetting", READS, none, DO(common().loadSetting(&a->dir))},
    {"common: loadSetting again", READS, useCommon, DO(common().loadSetting(&a->dir))},
    {"common: saveSetting", WRITES, useCommon, DO(common().saveSetting(&a->dir))},
    {"common: loadSetting, saveSetting", RESAVES, none,
     DO(common().loadSetting(&a->dir); common().saveSetting(&a->dir))},
    SWITCH(common, useCommon, KeyBoardTypeInfo),
    SWITCH(common, useCommon, RcvCookieInfo),
    SWITCH(common, useCommon, UseCacheInfo),
    SWITCH(common, useCommon, SWKeyBoardTypeInfo),
    SWITCH(common, useCommon, UseJavaScriptInfo),
    SWITCH(common, useCommon, PlayFlashInfo),
    SWITCH(common, useCommon, UseProxyHttpInfo),
    SWITCH(common, useCommon, UseSSL30),
    SWITCH(common, useCommon, UseTLS10),
    SWITCH(common, useCommon, UseProxyInfo),
    SWITCH(common, useCommon, UseProxyCertificationInfo),
    SWITCH(common, useCommon, CacheDeleteTiming),
    TEXT(common, useCommon, ProxyServerStr, text, out),
    TEXT(common, useCommon, ProxyHttpPortStr, port, out),
    TEXT(common, useCommon, ProxyHttpsPortStr, port, out),
    TEXT(common, useCommon, NoProxyDomainStr, text, out),
    TEXT(common, useCommon, ProxyAccountStr, bytes, outBytes),
    TEXT(common, useCommon, ProxyPasswordStr, bytes, outBytes),
    {"user: loadSetting", READS, none, DO(user().loadSetting(&a->dir))},
    {"user: loadSetting again", READS, useUser, DO(user().loadSetting(&a->dir))},
    {"user: saveSetting", WRITES, useUser, DO(user().saveSetting(&a->dir))},
    {"user: loadSetting, saveSetting", RESAVES, none,
     DO(user().loadSetting(&a->dir); user().saveSetting(&a->dir))},
    SWITCH(user, useUser, StartUp),
    SWITCH(user, useUser, CookieDeleteTiming),
    SWITCH(user, useUser, CertificationDeleteTiming),
    SWITCH(user, useUser, ZoomInfo),
    {"setZoomInfo, taken", CHANGES, useUser, GIVES(user().setZoomInfo(8))},
    TEXT(user, useUser, HomePage, text, out),
    TEXT(user, useUser, LastPage, text, out),
    TEXT(user, useUser, FontName, text, out),
};

// --- One operation in a process of its own ----------------------------------------------------------------

/// What a program sees: the document of the row's store, and every file.
struct State
{
    QString document;
    QStringList records;
    QMap<QString, QByteArray> files;
    int si_result;
};

/// A document's text without the numbers of its records.
static QByteArray withoutNumbers(QByteArray text)
{
    const QByteArray attribute(" id=\"");
    while (text.contains(attribute)) {
        const int si_from = static_cast<int>(text.indexOf(attribute));
        const int si_end = static_cast<int>(text.indexOf('"', si_from + static_cast<int>(attribute.size())));
        text.remove(si_from, si_end < 0 ? text.size() : si_end + 1 - si_from);
    }
    return text;
}

/// The same of a tree.
static QString described(TVNC_XMLNode* pc_tree)
{
    QString text = describe(pc_tree);
    for (int i = 0; i < 10; ++i)
        text.remove(QString::fromLatin1("{id=00%1}").arg(i));
    return text;
}

static QMap<QString, QByteArray> filesNow()
{
    QMap<QString, QByteArray> files;
    const QString dirs[] = {a->dir, a->pictures};
    for (int i = 0; i < 2; ++i) {
        foreach (const QString& name, QDir(dirs[i]).entryList(QDir::Files | QDir::Hidden))
            files.insert(name, readFile(dirs[i] + name));
    }
    return files;
}

static State stateNow()
{
    State state = {QString(), QStringList(), filesNow(), 0};
    foreach (const QString& name, state.files.keys())
        state.files[name] = withoutNumbers(state.files[name]);
    TVNC_XMLNode* pc_root = pc_store ? pc_store->getXMLRootNode() : nullptr;
    state.document = described(pc_root);
    if (pc_root) {
        foreach (TVNC_XMLNode* pc_record, pc_root->getXMLNodeChildren())
            state.records << described(pc_record);
    }
    return state;
}

/// The directory as every process finds it, with all files of a user.
static void makeFiles()
{
    const QString dirs[] = {a->dir, a->pictures};
    for (int i = 0; i < 2; ++i) {
        foreach (const QString& name, QDir(dirs[i]).entryList(QDir::Files | QDir::Hidden))
            QFile::remove(dirs[i] + name);
    }
    for (QMap<QString, QByteArray>::const_iterator i = a->files.constBegin(); i != a->files.constEnd(); ++i)
        writeFile((i.key().endsWith(utf8(".PNG")) ? a->pictures : a->dir) + i.key(), i.value());
}

/// Runs in a process of its own; the result is its exit code, or a signal that ended it, below 0.
template <typename Work>
static int inAnotherProcess(Work work)
{
    const pid_t si_process = fork();
    if (si_process == 0) {
        alarm(60); // what hangs is no better than what dies
        const int si_nothing = ::open("/dev/null", O_WRONLY);
        dup2(si_nothing, STDERR_FILENO); // Qt's messages about it
        _exit(work());
    }
    int si_waited = 0;
    waitpid(si_process, &si_waited, 0);
    return WIFEXITED(si_waited) ? WEXITSTATUS(si_waited) : -WTERMSIG(si_waited);
}

/// What a row leaves behind when nothing fails, with or without its operation.
static State stateOf(const Row& row, bool b_operate, char c_safe)
{
    const QString path = a->root.path() + utf8("state");
    inAnotherProcess([&] {
        makeFiles();
        row.pc_prepare();
        TVNG_SetSafeSave(c_safe);
        const int si_result = b_operate ? row.pc_operate() : 0;
        const State state = stateNow();
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << state.document << state.records << state.files << si_result;
        writeFile(path, bytes);
        return 0;
    });
    State state = {QString(), QStringList(), QMap<QString, QByteArray>(), 0};
    QDataStream stream(readFile(path));
    stream >> state.document >> state.records >> state.files >> state.si_result;
    return state;
}

/// Exit codes of a process in which an allocation failed.
enum Outcome {
    AS_PROMISED,
    ENOUGH_MEMORY,
    THROWN,
    FILE_CHANGED,
    DOCUMENT_TORN,
    WRONG_RESULT,
    NOT_REPEATABLE,
    ERROR_NOT_TOLD
};

/// Whether all records are there that an operation leaves alone.
static bool hasOldRecords(const State& state, const State& before, const State& after)
{
    foreach (const QString& record, before.records) {
        if (after.records.contains(record) && !state.records.contains(record))
            return false;
    }
    return true;
}

static Outcome judge(const Row& row, const State& before, const State& after, char c_safe, long si_failing)
{
    makeFiles();
    row.pc_prepare();
    TVNG_SetSafeSave(c_safe);
    int si_result = 0;
    try {
        failingAllocation = si_failing;
        si_result = row.pc_operate();
    } catch (const std::bad_alloc&) {
        return THROWN;
    }
    const bool b_enough = failingAllocation > 1;
    failingAllocation = 0;
    if (b_enough)
        return ENOUGH_MEMORY;

    const State state = stateNow();
    if (row.kind == READS && state.files != before.files)
        return FILE_CHANGED;
    foreach (const QString& name, before.files.keys() + state.files.keys()) {
        if (c_safe && state.files[name] != before.files[name] && state.files[name] != after.files[name])
            return FILE_CHANGED;
    }
    if (c_safe && row.kind != RESAVES && state.files != after.files && TVNG_GetSaveError().isEmpty())
        return ERROR_NOT_TOLD;
    if (row.kind == CHANGES && state.document != before.document && state.document != after.document)
        return DOCUMENT_TORN;
    const bool b_refused = after.si_result != 0 && si_result == 0;
    if (row.kind == ADDS && b_refused && state.document != before.document)
        return DOCUMENT_TORN;
    if ((row.kind == ADDS || row.kind == EXCHANGES) && !hasOldRecords(state, before, after))
        return DOCUMENT_TORN;
    if (si_result != 0 && si_result != after.si_result)
        return WRONG_RESULT;
    const bool b_changed = row.kind != CHANGES || state.document == after.document;
    // That of a login only tells that the login was acceptable.
    const bool b_added =
        row.kind != ADDS || pc_store == &logins() || state.records.size() == after.records.size();
    const bool b_written = row.kind != WRITES || state.files == after.files;
    if (si_result != 0 && !(b_changed && b_added && b_written))
        return WRONG_RESULT;
    if (row.kind == READS || row.kind == WRITES || row.kind == SAFELY || row.kind == RESAVES) {
        row.pc_operate();
        const State repeated = stateNow();
        if (repeated.document != after.document || repeated.files != after.files)
            return NOT_REPEATABLE;
    }
    return AS_PROMISED;
}

void tst_outOfMemory::initTestCase()
{
    if (qVersion()[0] == '6')
        QSKIP("the codecs of Qt 6 themselves do not survive it", SkipAll);
    if (!CAN_FAIL_ALLOCATIONS)
        QSKIP("allocations cannot fail here", SkipAll);
    a = new Arguments;
    QVERIFY(QDir().mkpath(a->pictures));
    // No name may have been made in this process.
    inAnotherProcess([] {
        useFonts();
        fonts().addFont(a->text);
        fonts().saveFontList(a->dir);
        int si_number = 0;
        QString path = a->pictures;
        useMarks();
        for (int i = 0; i < 3; ++i) {
            marks().setBookmark(&a->mark);
            path = a->pictures;
            marks().setThumbnail(&a->image, &path, si_number);
        }
        marks().saveBookmark(&a->dir, 9);
        useVisits();
        for (int i = 0; i < 3; ++i) {
            a->visit.dateTime = a->visit.dateTime.addDays(i % 2 ? 5 : -2);
            visits().setHistory(&a->visit);
        }
        visits().saveHistory(&a->dir, 9);
        useLogins();
        a->login.hostName = utf8("example.com");
        logins().addAuthInfo(&a->login);
        logins().saveAuthInfo(&a->dir, 9);
        cookies().saveCookieInfo(a->cookieList, &a->dir, 9);
        cookies().convertCookieIniToXML(a->c_dir.data(), a->c_cookieFile.data());
        useCommon();
        common().saveSetting(&a->dir);
        useUser();
        user().saveSetting(&a->dir);
        converter().convertThumbnailPngToXML(a->c_pictures.data(), a->c_pack.data());
        return 0;
    });
    a->files = filesNow();
    QCOMPARE(static_cast<int>(a->files.size()), 12);
    // Texts that are stored packed; the second is unpacked to be saved.
    const QByteArray packed(3000, 't');
    a->files[utf8("packed.xml")] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n    <title><![CDATA[" +
                                   packed + "]]></title>\n    <name><![CDATA[" + packed +
                                   ">]]></name>\n</a>\n";
    // Of a form that takes the general reader, without numbers.
    a->files[utf8("fontlist.xml")] = "<fontlist><font>x</font><!-- --><font id=' 1 '>y</font></fontlist>";
}

void tst_outOfMemory::operation_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("safe");
    for (int i = 0; i < static_cast<int>(sizeof ROWS / sizeof ROWS[0]); ++i) {
        if (ROWS[i].kind != SAFELY && ROWS[i].kind != RESAVES)
            QTest::newRow(ROWS[i].pc_name) << i << 0;
        if (ROWS[i].kind == WRITES || ROWS[i].kind == SAFELY || ROWS[i].kind == RESAVES)
            QTest::newRow((QByteArray(ROWS[i].pc_name) + ", safe").constData()) << i << 1;
    }
}

// Each allocation fails once, and for good: nothing is thrown, no process dies, and what is left can be used.
void tst_outOfMemory::operation()
{
    QFETCH(int, index);
    QFETCH(int, safe);
    const Row& row = ROWS[index];
    const char c_safe = static_cast<char>(safe);
    const State before = stateOf(row, false, c_safe);
    const State after = stateOf(row, true, c_safe);
    for (int i = 0; i < 2; ++i) {
        int si_outcome = AS_PROMISED;
        for (long n = 1; si_outcome != ENOUGH_MEMORY; n += n < 60 ? 1 : 7) {
            si_outcome = inAnotherProcess([&] {
                b_forGood = i == 1;
                return judge(row, before, after, c_safe, n);
            });
            const QByteArray where = QByteArray::number(static_cast<int>(n)) + (i ? " for good: " : ": ") +
                                     QByteArray::number(si_outcome);
            QVERIFY2(si_outcome == AS_PROMISED || si_outcome == ENOUGH_MEMORY, where.constData());
        }
    }
}

TLVLIB_TEST_MAIN(tst_outOfMemory)
#include "tst_outOfMemory.moc"
