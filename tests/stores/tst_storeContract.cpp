#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>
#include <tlvlib/stores/TVNC_AuthSetting.h>
#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDir>

#include <climits>

namespace {

/// A store, and in what it differs from the others where the contract has a blank.
struct Store
{
    const char* pc_class;
    const char* pc_load; ///< the operation, as the log names it
    const char* pc_save;
    const char* pc_saveMax; ///< the operation that a refused maximum of a save is logged for; "" without one
    const char* pc_noDirectory; ///< what the log calls a missing directory
    const char* pc_beforeRead;  ///< log lines of a load around those of the document; null: it reads none
    const char* pc_afterRead;
    const char* pc_file;
    QByteArray empty;   ///< the file that is saved after a load without one
    const char* pc_gap; ///< what stands there in place of the records
    const char* pc_before;
    const char* pc_record; ///< of which WORD is a part, and in a list NUMBER
    const char* pc_after;
    const char* pc_root; ///< what a save names the root of a list; "" for what is no list
    TVNC_XMLSetting* (*instance)();
    void (*load)(QString* dir, int si_max);
    void (*save)(QString* dir, int si_max);
    void (*change)();              ///< adds a record, or sets a preference; null: it holds none
    void (*remove)(int si_number); ///< null: it deletes none

    /// The file with a record for each word of "here item near". In place of a word, "-" leaves a number out.
    QByteArray fileWith(const char* pc_words) const
    {
        const QList<QByteArray> words = QByteArray(pc_words).split(' ');
        QByteArray records;
        for (int i = 0; i < words.size(); ++i) {
            if (words.at(i) != "-")
                records += QByteArray(pc_record)
                               .replace("WORD", words.at(i))
                               .replace("NUMBER", QByteArray::number(i).rightJustified(3, '0'));
        }
        QByteArray before(pc_before);
        before.replace("COUNT", QByteArray::number(static_cast<int>(words.size())));
        return QByteArray(empty).replace(pc_gap, before + records + pc_after);
    }
    QString line(int si_level, const char* pc_operation, const char* pc_text) const
    {
        return QString::fromLatin1("%1 [%2::%3] %4\n")
            .arg(QString::number(si_level), utf8(pc_class), utf8(pc_operation), utf8(pc_text));
    }
};

template <typename Setting>
TVNC_XMLSetting* instanceOf()
{
    return Setting::getInstance();
}

QByteArray emptyList(const char* pc_root)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<") + pc_root + " docInfo=\"1.0\"/>\n";
}

/// The store of the cookies hands them out and holds none; this is the browser that does.
QList<QNetworkCookie> cookies;

void loadCookies(QString* dir, int si_max)
{
    const QList<QNetworkCookie> loaded = TVNC_CookieSetting::getInstance()->loadCookieInfo(dir, si_max);
    if (dir && !dir->isEmpty() && si_max > 0)
        cookies = loaded;
    else
        QVERIFY(loaded.isEmpty());
}

const char EMPTIED[] = "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n";

QList<Store> stores()
{
    QList<Store> list;
    list << Store{
        "TVNC_AuthSetting",
        "loadAuthInfo",
        "saveAuthInfo",
        "saveAuthInfo",
        "Path is empty.",
        EMPTIED,
        "",
        "authinfo.xml",
        emptyList("authentication"),
        "/>\n",
        ">\n",
        "    <authInfo id=\"NUMBER\">\n        <hostName>WORD</hostName>\n    </authInfo>\n",
        "</authentication>\n",
        "authentication",
        instanceOf<TVNC_AuthSetting>,
        [](QString* dir, int si_max) { TVNC_AuthSetting::getInstance()->loadAuthInfo(dir, si_max); },
        [](QString* dir, int si_max) { TVNC_AuthSetting::getInstance()->saveAuthInfo(dir, si_max); },
        [] {
            TVNS_AuthInfo info = TVNS_AuthInfo();
            TVNC_AuthSetting::getInstance()->setAuthInfo(&info);
        },
        [](int si_number) { TVNC_AuthSetting::getInstance()->deleteAuthInfo(si_number); }};
    list << Store{
        "TVNC_BookmarksSetting",
        "loadBookmark",
        "saveBookmark",
        "saveBookmark",
        "Path is NULL or empty.",
        EMPTIED,
        "3 [TVNC_BookmarksSetting::getLastNumber] last number:0\n",
        "bookmark.xml",
        emptyList("bookmarks"),
        "/>\n",
        ">\n",
        "    <bookmark id=\"NUMBER\">\n        <title>WORD</title>\n"
        "        <thumbnail>000001.PNG</thumbnail>\n    </bookmark>\n",
        "</bookmarks>\n",
        "bookmarks",
        instanceOf<TVNC_BookmarksSetting>,
        [](QString* dir, int si_max) {
            int si_last = 0;
            TVNC_BookmarksSetting::getInstance()->loadBookmark(dir, si_max, si_last);
        },
        [](QString* dir, int si_max) { TVNC_BookmarksSetting::getInstance()->saveBookmark(dir, si_max); },
        [] {
            TVNS_Bookmark bookmark;
            TVNC_BookmarksSetting::getInstance()->setBookmark(&bookmark);
        },
        [](int si_number) { TVNC_BookmarksSetting::getInstance()->deleteBookmark(si_number); }};
    list << Store{"TVNC_CookieSetting",
                  "loadCookieInfo",
                  "saveCookieInfo",
                  "saveCookieInfo",
                  "Path is NULL or empty.",
                  nullptr,
                  nullptr,
                  "cookie.ini",
                  "[Cookie]\ncookies=@ByteArray(\\0\\0\\0\\0)\n",
                  "@ByteArray(\\0\\0\\0\\0)",
                  "\"@ByteArray(\\0\\0\\0\\xCOUNT",
                  "\\0\\0\\0\\x1cWORD=v; domain=.a.jp; path=/",
                  ")\"",
                  "",
                  instanceOf<TVNC_CookieSetting>,
                  loadCookies,
                  [](QString* dir, int si_max) {
                      TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, dir, si_max);
                  },
                  nullptr,
                  nullptr};
    list << Store{
        "TVNC_FontListSetting",
        "loadFontList",
        "saveFontList",
        "",
        "Path is empty.",
        EMPTIED,
        "",
        "fontlist.xml",
        emptyList("fontlist"),
        "/>\n",
        ">\n",
        "    <font id=\"NUMBER\">WORD</font>\n",
        "</fontlist>\n",
        "fontlist",
        instanceOf<TVNC_FontListSetting>,
        [](QString* dir, int) { TVNC_FontListSetting::getInstance()->loadFontList(dir ? *dir : QString()); },
        [](QString* dir, int) { TVNC_FontListSetting::getInstance()->saveFontList(dir ? *dir : QString()); },
        [] { TVNC_FontListSetting::getInstance()->addFont(utf8("x")); },
        nullptr};
    list << Store{
        "TVNC_HistorySetting",
        "loadHistory",
        "saveHistory",
        "saveAuthInfo",
        "Path is NULL or empty.",
        EMPTIED,
        "3 [TVNC_HistorySetting::sortHistory]\n"
        "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n",
        "visit.xml",
        emptyList("history"),
        "/>\n",
        ">\n",
        "    <pageInfo id=\"NUMBER\">\n        <title>WORD</title>\n        <url/>\n"
        "        <dateTime/>\n    </pageInfo>\n",
        "</history>\n",
        "history",
        instanceOf<TVNC_HistorySetting>,
        [](QString* dir, int si_max) { TVNC_HistorySetting::getInstance()->loadHistory(dir, si_max); },
        [](QString* dir, int si_max) { TVNC_HistorySetting::getInstance()->saveHistory(dir, si_max); },
        [] {
            TVNS_History history;
            TVNC_HistorySetting::getInstance()->updateHistory(&history);
        },
        [](int si_number) { TVNC_HistorySetting::getInstance()->deleteHistory(si_number); }};
    list << Store{"TVNC_BrowserCommonSetting",
                  "loadSetting",
                  "saveSetting",
                  "",
                  "Common Path is NULL or empty.",
                  "",
                  "",
                  "repostry.xml",
                  readFile(testData(utf8("repostry.xml"))),
                  "<hostName/>",
                  "<hostName>",
                  "WORD",
                  "</hostName>",
                  "",
                  instanceOf<TVNC_BrowserCommonSetting>,
                  [](QString* dir, int) { TVNC_BrowserCommonSetting::getInstance()->loadSetting(dir); },
                  [](QString* dir, int) { TVNC_BrowserCommonSetting::getInstance()->saveSetting(dir); },
                  [] { TVNC_BrowserCommonSetting::getInstance()->setRcvCookieInfo(0); },
                  nullptr};
    list << Store{"TVNC_BrowserUserSetting",
                  "loadSetting",
                  "saveSetting",
                  "",
                  "User Path is NULL or empty.",
                  "",
                  "",
                  "repostry_private.xml",
                  readFile(testData(utf8("repostry_private.xml"))),
                  "<fontName/>",
                  "<fontName>",
                  "WORD",
                  "</fontName>",
                  "",
                  instanceOf<TVNC_BrowserUserSetting>,
                  [](QString* dir, int) { TVNC_BrowserUserSetting::getInstance()->loadSetting(dir); },
                  [](QString* dir, int) { TVNC_BrowserUserSetting::getInstance()->saveSetting(dir); },
                  [] { TVNC_BrowserUserSetting::getInstance()->setFontName(utf8("x")); },
                  nullptr};
    return list;
}

bool every(const Store&)
{
    return true;
}
bool hasAMaximum(const Store& store)
{
    return *store.pc_saveMax;
}
bool holdsItsDocument(const Store& store)
{
    return store.pc_beforeRead;
}
bool isList(const Store& store)
{
    return *store.pc_root;
}
bool deletesRecords(const Store& store)
{
    return store.remove;
}

} // namespace

/// What stores do alike. Each test runs for the stores that its rows name.
class tst_storeContract : public QObject
{
    Q_OBJECT

public:
    tst_storeContract() : stores_(stores()) {}

private slots:
    void initTestCase();
    void init();

    void thereIsOneInstance_data() { rows(every); }
    void thereIsOneInstance();
    void fileComesBack_data() { rows(every); }
    void fileComesBack();
    void missingFileGivesWhatCanBeSaved_data() { rows(every); }
    void missingFileGivesWhatCanBeSaved();
    void directoryIsUsedAsItIs_data() { rows(every); }
    void directoryIsUsedAsItIs();
    void loadNeedsADirectory_data() { rows(every); }
    void loadNeedsADirectory();
    void saveNeedsADirectory_data() { rows(every); }
    void saveNeedsADirectory();
    void loadLogsItsSteps_data() { rows(every); }
    void loadLogsItsSteps();
    void saveLogsItsSteps_data() { rows(every); }
    void saveLogsItsSteps();
    void maximumIsAboveZero_data() { rows(hasAMaximum); }
    void maximumIsAboveZero();
    void maximumCutsNeitherLoadNorSave_data() { rows(hasAMaximum); }
    void maximumCutsNeitherLoadNorSave();
    void loadReplacesTheDocument_data() { rows(holdsItsDocument); }
    void loadReplacesTheDocument();
    void changeSavesNothing_data() { rows(holdsItsDocument); }
    void changeSavesNothing();
    void saveNamesTheRoot_data() { rows(isList); }
    void saveNamesTheRoot();
    void saveDoesNotRenumber_data() { rows(isList); }
    void saveDoesNotRenumber();
    void deletedRecordGoesWithTheEventLoop_data() { rows(deletesRecords); }
    void deletedRecordGoesWithTheEventLoop();

private:
    void rows(bool (*isWanted)(const Store&));
    void loadFrom(const QByteArray& document);
    QString path(const QString& dir) const { return dir + utf8(store_.pc_file); }
    QByteArray saved();
    QString document() { return describe(store_.instance()->getXMLRootNode()); }

    const QList<Store> stores_;
    Store store_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
};

void tst_storeContract::rows(bool (*isWanted)(const Store&))
{
    QTest::addColumn<int>("si_store");
    for (int i = 0; i < stores_.size(); ++i) {
        if (isWanted(stores_.at(i)))
            QTest::newRow(stores_.at(i).pc_class) << i;
    }
}

void tst_storeContract::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    foreach (const Store& store, stores_) {
        if (!holdsItsDocument(store))
            continue;
        TempDir dir;
        QString dirName = dir.path();
        const QString path = dirName + utf8(store.pc_file);
        store.save(&dirName, 1);
        QVERIFY2(!QFile::exists(path), store.pc_class);
        writeFile(path, "as it was");
        store.save(&dirName, 1);
        QCOMPARE(readFile(path), QByteArray("as it was"));
    }
}

void tst_storeContract::init()
{
    QFETCH(int, si_store);
    store_ = stores_.at(si_store);
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    store_.load(&dirName_, 100);
    releaseDeferred();
    LogRecorder::clear();
}

/// Loads with a maximum of 1.
void tst_storeContract::loadFrom(const QByteArray& document)
{
    writeFile(path(dirName_), document);
    store_.load(&dirName_, 1);
    LogRecorder::clear();
}

/// What the store holds, as the file that it writes, with a maximum of 1.
QByteArray tst_storeContract::saved()
{
    TempDir dir;
    QString dirName = dir.path();
    store_.save(&dirName, 1);
    return readFile(path(dirName));
}

void tst_storeContract::thereIsOneInstance()
{
    QVERIFY(store_.instance() && store_.instance() == store_.instance());
}

void tst_storeContract::fileComesBack()
{
    loadFrom(store_.fileWith("here"));
    QCOMPARE(readFile(path(dirName_)), store_.fileWith("here"));
    QCOMPARE(saved(), store_.fileWith("here"));
    loadFrom(store_.empty);
    QCOMPARE(saved(), store_.empty);
}

void tst_storeContract::missingFileGivesWhatCanBeSaved()
{
    QVERIFY(!QFile::exists(path(dirName_))); // a load writes nothing
    QCOMPARE(saved(), store_.empty);
}

void tst_storeContract::directoryIsUsedAsItIs()
{
    // Without its "/" the directory's name and the file's run together.
    QString dir = dirName_ + utf8("data");
    QString slashed = dir + utf8("/");
    QVERIFY(QDir().mkdir(dir));
    writeFile(path(slashed), store_.fileWith("item"));
    writeFile(path(dir), store_.fileWith("near"));
    store_.load(&dir, 1);
    QCOMPARE(saved(), store_.fileWith("near"));
    store_.save(&slashed, 1);
    QCOMPARE(readFile(path(slashed)), store_.fileWith("near"));
    QVERIFY(QFile::remove(path(dir)));
    store_.save(&dir, 1);
    QCOMPARE(readFile(path(dir)), store_.fileWith("near"));
    QCOMPARE(dir, dirName_ + utf8("data"));
}

void tst_storeContract::loadNeedsADirectory()
{
    loadFrom(store_.fileWith("here"));
    QString null;
    QString empty = utf8("");
    store_.load(nullptr, 1);
    store_.load(&null, 1);
    store_.load(&empty, 0); // the directory is tested first
    const QString refusal =
        store_.line(3, store_.pc_load, "start") + store_.line(2, store_.pc_load, store_.pc_noDirectory);
    QCOMPARE(LogRecorder::take(), refusal.repeated(3));
    QCOMPARE(saved(), store_.fileWith("here"));
}

void tst_storeContract::saveNeedsADirectory()
{
    loadFrom("<other/>");
    const QString before = document();
    QString null;
    QString empty = utf8("");
    store_.save(nullptr, 1);
    store_.save(&null, 1);
    store_.save(&empty, 0);
    const QString refusal =
        store_.line(3, store_.pc_save, "start") + store_.line(2, store_.pc_save, store_.pc_noDirectory);
    QCOMPARE(LogRecorder::take(), refusal.repeated(3));
    QCOMPARE(document(), before);
}

void tst_storeContract::loadLogsItsSteps()
{
    store_.load(&dirName_, 1);
    QString reading;
    if (store_.pc_beforeRead)
        reading = utf8(store_.pc_beforeRead) +
                  utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                       "2 TVNC_XMLReader::read file not exist!\n"
                       "3 [TVNC_XMLSetting::loadBookmark] end\n") +
                  utf8(store_.pc_afterRead);
    QCOMPARE(LogRecorder::take(),
             store_.line(3, store_.pc_load, "start") + reading + store_.line(3, store_.pc_load, "end"));
}

void tst_storeContract::saveLogsItsSteps()
{
    const QString start = store_.line(3, store_.pc_save, "start");
    const QString end = store_.line(3, store_.pc_save, "end");
    store_.save(&dirName_, 1);
    if (!holdsItsDocument(store_)) {
        QCOMPARE(LogRecorder::take(), start + end);
        return;
    }
    QCOMPARE(LogRecorder::take(), start +
                                      utf8("3 [TVNC_XMLSetting::save] start\n"
                                           "3 [TVNC_XMLSetting::saveBookmark] end\n") +
                                      end);
    QString absent = dirName_ + utf8("absent/");
    store_.save(&absent, 1);
    QCOMPARE(LogRecorder::take(), start +
                                      utf8("3 [TVNC_XMLSetting::save] start\n"
                                           "2 TVNC_XMLWriter::write file open error!\n"
                                           "3 [TVNC_XMLSetting::saveBookmark] end\n") +
                                      end);
}

void tst_storeContract::maximumIsAboveZero()
{
    const QByteArray maximums[] = {"0", "-2147483648"};
    loadFrom("<other/>");
    const QString before = document();
    writeFile(path(dirName_), store_.fileWith("here"));
    for (int i = 0; i < 2; ++i) {
        LogRecorder::clear();
        store_.load(&dirName_, maximums[i].toInt());
        QCOMPARE(LogRecorder::take(), store_.line(3, store_.pc_load, "start") +
                                          store_.line(2, store_.pc_load, "Error load_max:" + maximums[i]));
        store_.save(&dirName_, maximums[i].toInt());
        QCOMPARE(LogRecorder::take(), store_.line(3, store_.pc_save, "start") +
                                          store_.line(2, store_.pc_saveMax, "Error save_max:" + maximums[i]));
    }
    QCOMPARE(document(), before);
    QCOMPARE(readFile(path(dirName_)), store_.fileWith("here"));
    store_.load(&dirName_, 1);
    QCOMPARE(saved(), store_.fileWith("here"));
}

void tst_storeContract::maximumCutsNeitherLoadNorSave()
{
    loadFrom(store_.fileWith("here item near"));
    const QString before = document();
    store_.save(&dirName_, 1);
    QCOMPARE(document(), before);
    QCOMPARE(readFile(path(dirName_)), store_.fileWith("here item near"));
}

void tst_storeContract::loadReplacesTheDocument()
{
    loadFrom(store_.fileWith("here"));
    QPointer<TVNC_XMLNode> root(store_.instance()->getXMLRootNode());
    QPointer<TVNC_XMLNode> record(root->getXMLNodeChildren().at(0));
    loadFrom(store_.fileWith("then"));
    QCOMPARE(saved(), store_.fileWith("then"));
    // Who holds the old one may use it until the event loop runs.
    QVERIFY(root && record);
    releaseDeferred();
    QVERIFY(!root && !record);
}

void tst_storeContract::changeSavesNothing()
{
    store_.change();
    QVERIFY(!QFile::exists(path(dirName_)));
    QVERIFY(saved() != store_.empty);
}

void tst_storeContract::saveNamesTheRoot()
{
    const QByteArray root = store_.pc_root;
    const QByteArray named = store_.fileWith("here");
    loadFrom(named);
    const QString expected = document();
    loadFrom(QByteArray(named)
                 .replace(root + " docInfo=\"1.0\"", "other version='2' docInfo='0.9'")
                 .replace("</" + root, "</other")
                 .replace("id=\"000\"", "id=\"4\""));
    store_.save(&dirName_, 1);
    QCOMPARE(readFile(path(dirName_)), named);
    QCOMPARE(document(), expected);
}

void tst_storeContract::saveDoesNotRenumber()
{
    loadFrom(store_.fileWith("here item near"));
    QString id = utf8("id");
    store_.instance()->deleteXMLNodeByID(1, id);
    QCOMPARE(saved(), store_.fileWith("here - near"));
}

void tst_storeContract::deletedRecordGoesWithTheEventLoop()
{
    loadFrom(store_.fileWith("here item near"));
    QPointer<TVNC_XMLNode> record(store_.instance()->getXMLRootNode()->getXMLNodeChildren().at(1));
    store_.remove(1);
    QCOMPARE(saved(), store_.fileWith("here near"));
    QVERIFY(record);
    releaseDeferred();
    QVERIFY(!record);
}

TLVLIB_TEST_MAIN(tst_storeContract)
#include "tst_storeContract.moc"
