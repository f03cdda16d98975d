#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>

/**
 * Every document that the library writes is written, and read again, in the fast way. This program takes the
 * place of the general reader and writer, as any program can, and counts who asks for them.
 */
class tst_fastWays : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void otherDocumentsGoToTheGeneralReader();
    void bookmarks();
    void visits();
    void logins();
    void cookies();
    void fonts();
    void commonPreferences();
    void userPreferences();
    void thumbnails();

private:
    QScopedPointer<TempDir> dir_;
    QString path_;
};

static int generalReads = 0;
static int generalWrites = 0;

TVNC_XMLNode* TVNC_XMLReader::read(QIODevice&)
{
    ++generalReads;
    return nullptr;
}

bool TVNC_XMLWriter::write(QIODevice&, TVNC_XMLNode*)
{
    ++generalWrites;
    return false;
}

/// A text with all that the library's own documents escape and encode.
static QString text(const char* pc_start)
{
    return utf8(pc_start) + utf8(" <&> \"'\n\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80");
}

void tst_fastWays::init()
{
    dir_.reset(new TempDir);
    path_ = dir_->path();
    generalReads = 0;
    generalWrites = 0;
}

void tst_fastWays::cleanup()
{
    releaseDeferred();
    QCOMPARE(generalReads, 0);
    QCOMPARE(generalWrites, 0);
}

void tst_fastWays::otherDocumentsGoToTheGeneralReader()
{
    writeFile(path_ + utf8("fontlist.xml"), "<fontlist><!-- a comment --></fontlist>");
    TVNC_FontListSetting* const pc_fonts = TVNC_FontListSetting::getInstance();
    pc_fonts->loadFontList(path_);
    QCOMPARE(generalReads, 1);
    QString name = utf8("\xC3\xA9");
    pc_fonts->getXMLRootNode()->setName(name);
    makeNode(pc_fonts->getXMLRootNode(), "\xC3\xA9");
    pc_fonts->saveFontList(path_);
    QCOMPARE(generalWrites, 1);
    pc_fonts->deleteAllSetting();
    generalReads = 0;
    generalWrites = 0;
}

void tst_fastWays::bookmarks()
{
    TVNC_BookmarksSetting* const pc_store = TVNC_BookmarksSetting::getInstance();
    int si_highest = 0;
    pc_store->loadBookmark(&path_, 100, si_highest);
    for (int i = 0; i < 3; ++i) {
        TVNS_Bookmark bookmark;
        bookmark.title = text("title");
        bookmark.href = text("http://www.example.com/");
        bookmark.thumbnail = path_ + utf8("thumbnail/000001.PNG");
        pc_store->setBookmark(&bookmark);
    }
    pc_store->saveBookmark(&path_, 100);
    pc_store->loadBookmark(&path_, 100, si_highest);
    QCOMPARE(pc_store->getBookmarkCnt(), 3);
}

void tst_fastWays::visits()
{
    TVNC_HistorySetting* const pc_store = TVNC_HistorySetting::getInstance();
    pc_store->loadHistory(&path_, 100);
    for (int i = 0; i < 3; ++i) {
        TVNS_History visit;
        visit.title = text("title");
        visit.url = text("http://www.example.com/") + QString::number(i);
        visit.dateTime = QDateTime(QDate(2011, 5, 6), QTime(7, 8 + i));
        pc_store->updateHistory(&visit);
    }
    pc_store->saveHistory(&path_, 100);
    pc_store->loadHistory(&path_, 100);
    QCOMPARE(pc_store->getHistoryCnt(), 3);
}

void tst_fastWays::logins()
{
    TVNC_AuthSetting* const pc_store = TVNC_AuthSetting::getInstance();
    pc_store->loadAuthInfo(&path_, 100);
    TVNS_AuthInfo login;
    login.hostName = text("www.example.com");
    login.portNum = utf8("443");
    login.authType = 1;
    login.user = "alice";
    login.passwd = QByteArray(256, '\xFF');
    pc_store->setAuthInfo(&login);
    pc_store->saveAuthInfo(&path_, 100);
    pc_store->loadAuthInfo(&path_, 100);
    QCOMPARE(pc_store->getXMLNodeCnt(), 1);
}

void tst_fastWays::cookies()
{
    TVNC_CookieSetting* const pc_store = TVNC_CookieSetting::getInstance();
    QNetworkCookie cookie("name", "a value; \xC3\xA9");
    cookie.setDomain(utf8(".example.com"));
    cookie.setPath(utf8("/"));
    cookie.setExpirationDate(QDateTime(QDate(2099, 5, 6), QTime(7, 8), Qt::UTC));
    pc_store->saveCookieInfo(QList<QNetworkCookie>() << cookie << cookie, &path_, 100);
    QByteArray ini = path_.toLatin1();
    QByteArray document = (path_ + utf8("cookies.xml")).toLatin1();
    for (int i = 0; i < 2; ++i) { // made, and compared with what was made
        pc_store->convertCookieIniToXML(ini.data(), document.data());
        QCOMPARE(static_cast<int>(readFile(path_ + utf8("cookies.xml")).count("</webSiteInfo>")), 2);
    }
}

void tst_fastWays::fonts()
{
    TVNC_FontListSetting* const pc_store = TVNC_FontListSetting::getInstance();
    pc_store->loadFontList(path_);
    for (int i = 0; i < 3; ++i) {
        QString name = text("font") + QString::number(i);
        pc_store->addFont(name);
    }
    pc_store->saveFontList(path_);
    pc_store->loadFontList(path_);
    QCOMPARE(pc_store->getCount(), 3);
}

void tst_fastWays::commonPreferences()
{
    TVNC_BrowserCommonSetting* const pc_store = TVNC_BrowserCommonSetting::getInstance();
    pc_store->loadSetting(&path_);
    pc_store->saveSetting(&path_);
    pc_store->loadSetting(&path_);
    QVERIFY(pc_store->getXMLNodeCnt() > 0);
}

void tst_fastWays::userPreferences()
{
    TVNC_BrowserUserSetting* const pc_store = TVNC_BrowserUserSetting::getInstance();
    pc_store->loadSetting(&path_);
    pc_store->saveSetting(&path_);
    pc_store->loadSetting(&path_);
    QVERIFY(pc_store->getXMLNodeCnt() > 0);
}

void tst_fastWays::thumbnails()
{
    QVERIFY(QDir().mkpath(path_ + utf8("in")) && QDir().mkpath(path_ + utf8("out")));
    writeFile(path_ + utf8("in/000001.png"), QByteArray(5000, '\xA5'));
    writeFile(path_ + utf8("in/000002.png"), QByteArray(5, '\xA5'));
    TVNC_ThumbnailConverter* const pc_converter = TVNC_ThumbnailConverter::getInstance();
    QByteArray in = (path_ + utf8("in/")).toLatin1();
    QByteArray out = (path_ + utf8("out/")).toLatin1();
    QByteArray pack = (path_ + utf8("pack.xml")).toLatin1();
    pc_converter->convertThumbnailPngToXML(in.data(), pack.data());
    pc_converter->convertThumbnailXMLToPng(pack.data(), out.data());
    QCOMPARE(readFile(path_ + utf8("out/000001.png")), QByteArray(5000, '\xA5'));
    QCOMPARE(readFile(path_ + utf8("out/000002.png")), QByteArray(5, '\xA5'));
}

TLVLIB_TEST_MAIN(tst_fastWays)
#include "tst_fastWays.moc"
