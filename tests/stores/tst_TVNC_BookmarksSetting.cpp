#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>

#include <QtCore/QDir>

static const char DECLARATION[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

static QString lastNumberLine(int si_number)
{
    return QString::fromLatin1("3 [TVNC_BookmarksSetting::getLastNumber] last number:%1\n").arg(si_number);
}

static TVNS_Bookmark makeBookmark(const QString& title, const QString& href, const QString& thumbnail)
{
    TVNS_Bookmark bookmark;
    bookmark.title = title;
    bookmark.href = href;
    bookmark.thumbnail = thumbnail;
    return bookmark;
}

/// What a caller has in a record before it is filled.
static TVNS_Bookmark untouched()
{
    return makeBookmark(utf8("before-title"), utf8("before-href"), utf8("before-thumbnail"));
}

static QString describe(const TVNS_Bookmark& bookmark)
{
    return bookmark.title + QLatin1Char('|') + bookmark.href + QLatin1Char('|') + bookmark.thumbnail;
}

static QString repeated(const char* pc_text, int si_count)
{
    return utf8(pc_text).repeated(si_count);
}

class tst_TVNC_BookmarksSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void bookmarksAreLoadedAndNumbered();
    void refusedLoadKeepsTheLastNumber();
    void loadKeepsBookmarksBeyondTheMaximum();
    void picturesLieInTheDirectoryAsItIs();

    void bookmarksAreSavedExactly();
    void saveWritesBareNamesAndKeepsThePathsInMemory();
    void saveKeepsThePathsWhenTheFileCannotBeWritten();
    void saveMovesThePicturesToItsDirectory();
    void bookmarkWithoutPictureGetsThePathOfADirectory();
    void longDirectoryEmptiesTheNames_data();
    void longDirectoryEmptiesTheNames();

    void newestBookmarkIsFirst();
    void elementsHaveTheirOrderAndTextTypes();
    void titlesAreCutAt100Bytes_data();
    void titlesAreCutAt100Bytes();
    void addressAndThumbnailAreLimited_data();
    void addressAndThumbnailAreLimited();
    void nullBookmarkIsRefused();
    void bookmarkThatCannotBeCreatedIsLogged();
    void bookmarkWithAnElementThatCannotBeCreatedIsKept();
    void bookmarksFromThe1000thOnHaveNoNumber();

    void bookmarkIsFoundByNumber();
    void absentBookmarkLeavesTheRecord();
    void missingElementsLeaveTheirMembers();
    void longTitleReadsAsEmptyInARecord();
    void titleIsHandedOutUpTo100Bytes_data();
    void titleIsHandedOutUpTo100Bytes();
    void titleIsSetAtAnyLength();
    void addressIsHandedOutUpTo256Bytes_data();
    void addressIsHandedOutUpTo256Bytes();
    void addressIsSetUpTo256Bytes();
    void thumbnailIsHandedOutAndSetUpTo256Bytes();
    void accessorsNeedAStringAndTheElement();
    void elementIsSelectedByItsCode();
    void elementNameIsOnlyTestedForTheCount();

    void deletedBookmarkLeavesNoGap();
    void deletingKeepsThePicture();
    void deletingAnAbsentNumberOnlyRenumbers();

    void clipping_data();
    void clipping();

    void pictureIsWrittenUnderTheNextNumber_data();
    void pictureIsWrittenUnderTheNextNumber();
    void pictureIsReadBack();
    void pictureMustBePng();
    void pictureThatCannotBeWrittenTakesItsNumber();
    void pictureOperationsNeedTheirArguments();
    void pictureIsDeleted();

    void nextThumbnailElementIsFoundFromAPosition();
    void thumbnailElementIsReadAndSet();
    void walkStopsAtABookmarkWithoutThumbnail();
    void walkSkipsWhatIsNoBookmark();
    void walkRewritesEveryThumbnail();
    void walkNeedsAFunctionAndRecords();
    void lastNumberIsTheHighest_data();
    void lastNumberIsTheHighest();
    void lastNumberIgnoresGaps();

    void manyBookmarks();
    void carriageReturnInAnAddressComesBackAsLineFeed();

private:
    void loadFrom(const QByteArray& document, int si_max = 100);
    void add(const char* pc_titles);
    void addThumbnails(const QStringList& paths);
    QString titles();
    QString file() const { return dirName_ + utf8("bookmark.xml"); }
    QString thumbnailDir() const { return dirName_ + utf8("thumbnail/"); }
    TVNC_XMLNode* root() { return bookmarks_->getXMLRootNode(); }
    TVNC_XMLNode* record(int i) { return root()->getXMLNodeChildren().at(i); }
    QString text(int si_id, char c_which);
    QStringList thumbnails();

    TVNC_BookmarksSetting* bookmarks_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
    int lastNumber_;
};

void tst_TVNC_BookmarksSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    bookmarks_ = TVNC_BookmarksSetting::getInstance();
    QVERIFY(!root());
    TVNS_Bookmark bookmark = makeBookmark(utf8("t"), utf8("h"), utf8("p"));
    TVNS_Bookmark out = untouched();
    QString string = utf8("string");
    int si_index = 5;
    QCOMPARE(bookmarks_->getBookmarkCnt(), 0);
    QVERIFY(!bookmarks_->getBookmark(0, &out));
    QCOMPARE(describe(out), describe(untouched()));
    QVERIFY(!bookmarks_->getBookmarkTitle(0, &string));
    QVERIFY(!bookmarks_->setBookmarkTitle(0, &string));
    QVERIFY(!bookmarks_->getBookmarkURL(0, &string));
    QVERIFY(!bookmarks_->setBookmarkURL(0, &string));
    QVERIFY(!bookmarks_->getBookmarkThumbnailFilePath(0, &string));
    QVERIFY(!bookmarks_->setBookmarkThumbnailFilePath(0, &string));
    QVERIFY(!bookmarks_->getBookmarkChildNode(0, 0));
    QCOMPARE(string, utf8("string"));
    QVERIFY(!bookmarks_->getThumbNode(si_index));
    QCOMPARE(si_index, 5);
    bookmarks_->addThumbnailFilePath(&string);
    bookmarks_->removeThumbnailFilePath();
    QCOMPARE(LogRecorder::take(), QString());
    QCOMPARE(bookmarks_->getLastNumber(), 0);
    bookmarks_->deleteBookmark(0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::getLastNumber] last number:0\n"
                                       "3 [TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:0\n"));

    // The bookmark is good, so it counts as added, but there is nothing to add it to.
    QVERIFY(bookmarks_->setBookmark(&bookmark));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"));
    QVERIFY(!root());
    QCOMPARE(bookmarks_->getBookmarkCnt(), 0);
}

void tst_TVNC_BookmarksSetting::init()
{
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    QVERIFY(QDir().mkdir(thumbnailDir()));
    bookmarks_->loadBookmark(&dirName_, 100, lastNumber_);
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_BookmarksSetting::loadFrom(const QByteArray& document, int si_max)
{
    writeFile(file(), document);
    bookmarks_->loadBookmark(&dirName_, si_max, lastNumber_);
    LogRecorder::clear();
}

/// Adds one bookmark for each title of "a b c", in this order.
void tst_TVNC_BookmarksSetting::add(const char* pc_titles)
{
    foreach (const QString& title, utf8(pc_titles).split(QLatin1Char(' '))) {
        TVNS_Bookmark bookmark = makeBookmark(title, utf8("http://") + title, QString());
        QVERIFY(bookmarks_->setBookmark(&bookmark));
    }
    LogRecorder::clear();
}

/// Adds bookmarks with these thumbnails, so that the first comes first.
void tst_TVNC_BookmarksSetting::addThumbnails(const QStringList& paths)
{
    for (int i = static_cast<int>(paths.size()) - 1; i >= 0; --i) {
        TVNS_Bookmark bookmark = makeBookmark(utf8("t"), utf8("h"), paths.at(i));
        QVERIFY(bookmarks_->setBookmark(&bookmark));
    }
    LogRecorder::clear();
}

/// The titles of all bookmarks, by number: "c b a".
QString tst_TVNC_BookmarksSetting::titles()
{
    QStringList list;
    QString title;
    for (int i = 0; bookmarks_->getBookmarkTitle(i, &title); ++i)
        list << title;
    return list.join(QLatin1String(" "));
}

/// The text of an element as it stands in the document.
QString tst_TVNC_BookmarksSetting::text(int si_id, char c_which)
{
    TVNC_XMLNode* pc_node = bookmarks_->getBookmarkChildNode(si_id, c_which);
    return pc_node ? pc_node->getText() : utf8("no element");
}

/// The thumbnail texts of all records, in document order; "-" without the element.
QStringList tst_TVNC_BookmarksSetting::thumbnails()
{
    QStringList list;
    QString name = utf8("thumbnail");
    foreach (TVNC_XMLNode* pc_record, root()->getXMLNodeChildren()) {
        TVNC_XMLNode* pc_thumbnail = pc_record->getXMLNodeChildByName(name);
        list << (pc_thumbnail ? pc_thumbnail->getText() : utf8("-"));
    }
    return list;
}

// --- Loading ----------------------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::bookmarksAreLoadedAndNumbered()
{
    loadFrom("<bookmarks docInfo='1.0'>"
             "<bookmark id='7' x='y'><href>http://a/</href><title>A</title>"
             "<thumbnail>000012.PNG</thumbnail></bookmark>"
             "<bookmark><href>http://b/</href><title>B</title>"
             "<thumbnail>000003.PNG</thumbnail></bookmark></bookmarks>");
    QCOMPARE(describe(root()), utf8("bookmarks{docInfo=1.0}("
                                    "bookmark{id=000}(href'http://a/',title'A',thumbnail'") +
                                   thumbnailDir() +
                                   utf8("000012.PNG'),"
                                        "bookmark{id=001}(href'http://b/',title'B',thumbnail'") +
                                   thumbnailDir() + utf8("000003.PNG'))"));
    QCOMPARE(lastNumber_, 12);
    QCOMPARE(bookmarks_->getBookmarkCnt(), 2);
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(1, &out));
    QCOMPARE(describe(out), utf8("B|http://b/|") + thumbnailDir() + utf8("000003.PNG"));
}

void tst_TVNC_BookmarksSetting::refusedLoadKeepsTheLastNumber()
{
    lastNumber_ = 77;
    bookmarks_->loadBookmark(nullptr, 5, lastNumber_);
    bookmarks_->loadBookmark(&dirName_, 0, lastNumber_);
    QCOMPARE(lastNumber_, 77);
    bookmarks_->loadBookmark(&dirName_, 1, lastNumber_);
    QCOMPARE(lastNumber_, 0);
}

void tst_TVNC_BookmarksSetting::loadKeepsBookmarksBeyondTheMaximum()
{
    add("c b a");
    bookmarks_->saveBookmark(&dirName_, 100);
    bookmarks_->loadBookmark(&dirName_, 2, lastNumber_);
    QCOMPARE(titles(), utf8("a b c"));
    add("d");
    QCOMPARE(titles(), utf8("d a b c")); // nor does adding look at it
}

void tst_TVNC_BookmarksSetting::picturesLieInTheDirectoryAsItIs()
{
    // Without its "/" the directory's name runs together with that of the pictures' directory.
    QString dir = dirName_ + utf8("data");
    writeFile(dir + utf8("bookmark.xml"), "<b><bookmark><thumbnail>1.PNG</thumbnail></bookmark></b>");
    bookmarks_->loadBookmark(&dir, 1, lastNumber_);
    QCOMPARE(text(0, 2), dir + utf8("thumbnail/1.PNG"));
}

// --- Saving -----------------------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::bookmarksAreSavedExactly()
{
    TVNS_Bookmark first = makeBookmark(utf8("Café <日本> & \"co\" 😀"), utf8("http://a/?x=1&y='2'"),
                                       thumbnailDir() + utf8("000001.PNG"));
    TVNS_Bookmark second = makeBookmark(QString(), QString(), thumbnailDir() + utf8("000002.PNG"));
    QVERIFY(bookmarks_->setBookmark(&first));
    QVERIFY(bookmarks_->setBookmark(&second));
    bookmarks_->saveBookmark(&dirName_, 100);
    QCOMPARE(readFile(file()), DECLARATION + QByteArray("<bookmarks docInfo=\"1.0\">\n"
                                                        "    <bookmark id=\"000\">\n"
                                                        "        <href/>\n"
                                                        "        <title/>\n"
                                                        "        <thumbnail>000002.PNG</thumbnail>\n"
                                                        "    </bookmark>\n"
                                                        "    <bookmark id=\"001\">\n"
                                                        "        <href>http://a/?x=1&amp;y='2'</href>\n"
                                                        "        <title>Café &lt;日本&gt; &amp; "
                                                        "&quot;co&quot; 😀</title>\n"
                                                        "        <thumbnail>000001.PNG</thumbnail>\n"
                                                        "    </bookmark>\n"
                                                        "</bookmarks>\n"));
    bookmarks_->loadBookmark(&dirName_, 100, lastNumber_);
    QCOMPARE(lastNumber_, 2);
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(1, &out));
    QCOMPARE(describe(out), describe(first));
    QVERIFY(bookmarks_->getBookmark(0, &out));
    QCOMPARE(describe(out), describe(second));
}

void tst_TVNC_BookmarksSetting::saveWritesBareNamesAndKeepsThePathsInMemory()
{
    addThumbnails(QStringList() << thumbnailDir() + utf8("000001.PNG") << utf8("/elsewhere/1234567890.PNG")
                                << utf8("1.PNG"));
    bookmarks_->saveBookmark(&dirName_, 1);
    const QByteArray bytes = readFile(file());
    QVERIFY(bytes.contains("<thumbnail>000001.PNG</thumbnail>"));
    QVERIFY(bytes.contains("<thumbnail>567890.PNG</thumbnail>"));
    QVERIFY(bytes.contains("<thumbnail>1.PNG</thumbnail>"));
    QCOMPARE(thumbnails(), QStringList()
                               << thumbnailDir() + utf8("000001.PNG") << thumbnailDir() + utf8("567890.PNG")
                               << thumbnailDir() + utf8("1.PNG"));
}

void tst_TVNC_BookmarksSetting::saveKeepsThePathsWhenTheFileCannotBeWritten()
{
    addThumbnails(QStringList() << thumbnailDir() + utf8("000001.PNG"));
    QVERIFY(QDir().mkdir(file()));
    bookmarks_->saveBookmark(&dirName_, 1);
    QCOMPARE(thumbnails(), QStringList() << thumbnailDir() + utf8("000001.PNG"));
}

void tst_TVNC_BookmarksSetting::saveMovesThePicturesToItsDirectory()
{
    addThumbnails(QStringList() << thumbnailDir() + utf8("000001.PNG"));
    TempDir other;
    QString otherName = other.path();
    bookmarks_->saveBookmark(&otherName, 1);
    QCOMPARE(thumbnails(), QStringList() << otherName + utf8("thumbnail/000001.PNG"));
    QVERIFY(QFile::exists(otherName + utf8("bookmark.xml")));
    QVERIFY(!QFile::exists(file()));
}

void tst_TVNC_BookmarksSetting::bookmarkWithoutPictureGetsThePathOfADirectory()
{
    loadFrom("<b><bookmark><thumbnail/></bookmark></b>");
    QCOMPARE(text(0, 2), thumbnailDir());
    bookmarks_->saveBookmark(&dirName_, 1);
    QVERIFY(readFile(file()).contains("<thumbnail>thumbnail/</thumbnail>"));
    QCOMPARE(text(0, 2), thumbnailDir() + utf8("thumbnail/"));
}

void tst_TVNC_BookmarksSetting::longDirectoryEmptiesTheNames_data()
{
    QTest::addColumn<int>("si_bytes");
    QTest::addColumn<QByteArray>("saved");
    QTest::newRow("236 bytes are safe") << 236 << QByteArray("<thumbnail>000001.PNG</thumbnail>");
    QTest::newRow("237 bytes are not") << 237 << QByteArray("<thumbnail/>");
}

void tst_TVNC_BookmarksSetting::longDirectoryEmptiesTheNames()
{
    QFETCH(int, si_bytes);
    QFETCH(QByteArray, saved);
    QString dir = dirName_ + QString(si_bytes - dirName_.toUtf8().size() - 1, QLatin1Char('d'));
    QVERIFY(QDir().mkdir(dir));
    dir += QLatin1Char('/');
    QCOMPARE(int(dir.toUtf8().size()), si_bytes);
    writeFile(dir + utf8("bookmark.xml"), "<b><bookmark><thumbnail>000001.PNG</thumbnail></bookmark></b>");
    bookmarks_->loadBookmark(&dir, 1, lastNumber_);
    bookmarks_->saveBookmark(&dir, 1);
    QVERIFY(readFile(dir + utf8("bookmark.xml")).contains(saved));
}

// --- Adding -----------------------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::newestBookmarkIsFirst()
{
    add("a b");
    TVNS_Bookmark bookmark = makeBookmark(utf8("c"), utf8("h"), utf8("p"));
    QVERIFY(bookmarks_->setBookmark(&bookmark));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"));
    QCOMPARE(titles(), utf8("c b a"));
    QCOMPARE(bookmarks_->getBookmarkCnt(), 3);
    QVERIFY(bookmarks_->setBookmark(&bookmark)); // twice is allowed
    QCOMPARE(titles(), utf8("c c b a"));
    QCOMPARE(describe(bookmark), utf8("c|h|p"));
}

void tst_TVNC_BookmarksSetting::elementsHaveTheirOrderAndTextTypes()
{
    TVNS_Bookmark bookmark = makeBookmark(utf8("T"), utf8("H"), utf8("P"));
    QVERIFY(bookmarks_->setBookmark(&bookmark));
    QCOMPARE(describe(root()), utf8("(bookmark{id=000}(href'H',title'T',thumbnail'P'))"));
}

void tst_TVNC_BookmarksSetting::titlesAreCutAt100Bytes_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("stored");
    QTest::newRow("100 letters") << repeated("x", 100) << repeated("x", 100);
    QTest::newRow("101 letters") << repeated("x", 101) << repeated("x", 100);
    QTest::newRow("99 bytes of three") << repeated("あ", 33) << repeated("あ", 33);
    QTest::newRow("102 bytes of three") << repeated("あ", 34) << repeated("あ", 33);
    QTest::newRow("100 bytes of four") << repeated("😀", 25) << repeated("😀", 25);
    QTest::newRow("104 bytes of four") << repeated("😀", 26) << repeated("😀", 25);
    QTest::newRow("three bytes of four left")
        << utf8("x") + repeated("😀", 25) << utf8("x") + repeated("😀", 24);
    QTest::newRow("one byte of two left") << utf8("x") + repeated("é", 50) << utf8("x") + repeated("é", 49);
}

void tst_TVNC_BookmarksSetting::titlesAreCutAt100Bytes()
{
    QFETCH(QString, title);
    QFETCH(QString, stored);
    TVNS_Bookmark bookmark = makeBookmark(title, utf8("h"), utf8("p"));
    QVERIFY(bookmarks_->setBookmark(&bookmark));
    QCOMPARE(text(0, 0), stored);
    QCOMPARE(bookmark.title, title);
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(0, &out));
    QCOMPARE(out.title, stored);
}

void tst_TVNC_BookmarksSetting::addressAndThumbnailAreLimited_data()
{
    QTest::addColumn<QString>("href");
    QTest::addColumn<QString>("thumbnail");
    QTest::addColumn<bool>("accepted");
    const QString is256 = repeated("x", 1) + repeated("あ", 85);
    QTest::newRow("address of 256 bytes") << repeated("x", 256) << QString() << true;
    QTest::newRow("address of 257 bytes") << repeated("x", 257) << QString() << false;
    QTest::newRow("thumbnail of 256 bytes") << QString() << repeated("x", 256) << true;
    QTest::newRow("thumbnail of 257 bytes") << QString() << repeated("x", 257) << false;
    QTest::newRow("both of 256 bytes in 86 characters") << is256 << is256 << true;
    QTest::newRow("address of 257 bytes in 87 characters") << is256 + utf8("x") << QString() << false;
    QTest::newRow("thumbnail of 257 bytes in 87 characters") << QString() << is256 + utf8("x") << false;
}

void tst_TVNC_BookmarksSetting::addressAndThumbnailAreLimited()
{
    QFETCH(QString, href);
    QFETCH(QString, thumbnail);
    QFETCH(bool, accepted);
    TVNS_Bookmark bookmark = makeBookmark(utf8("t"), href, thumbnail);
    QCOMPARE(bookmarks_->setBookmark(&bookmark), accepted);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"));
    QCOMPARE(bookmarks_->getBookmarkCnt(), accepted ? 1 : 0);
    QCOMPARE(bookmarks_->getXMLNodeCnt(), accepted ? 1 : 0);
    TVNS_Bookmark out = untouched();
    QCOMPARE(bookmarks_->getBookmark(0, &out), accepted);
    QCOMPARE(describe(out), describe(accepted ? bookmark : untouched()));
}

void tst_TVNC_BookmarksSetting::nullBookmarkIsRefused()
{
    QVERIFY(!bookmarks_->setBookmark(nullptr));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"));
    QCOMPARE(bookmarks_->getXMLNodeCnt(), 0);
}

void tst_TVNC_BookmarksSetting::bookmarkThatCannotBeCreatedIsLogged()
{
    TVNS_Bookmark bookmark = makeBookmark(utf8("t"), utf8("h"), utf8("p"));
    failingNode = 1;
    const bool b_added = bookmarks_->setBookmark(&bookmark);
    failingNode = 0;
    QVERIFY(!b_added);
    QCOMPARE(LogRecorder::take(),
             utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"
                  "1 [TVNC_XMLSetting::addXMLChild] Fail\n"
                  "1 [TVNC_BookmarksSetting::setBookmark] Failed to new TVNC_XMLNode.\n"));
    QCOMPARE(bookmarks_->getXMLNodeCnt(), 0);
}

void tst_TVNC_BookmarksSetting::bookmarkWithAnElementThatCannotBeCreatedIsKept()
{
    TVNS_Bookmark bookmark = makeBookmark(utf8("t"), utf8("h"), utf8("p"));
    failingNode = 3;
    const bool b_added = bookmarks_->setBookmark(&bookmark);
    failingNode = 0;
    QVERIFY(b_added);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::setBookmark]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
    QCOMPARE(describe(root()), utf8("(bookmark{id=000}(href'h',thumbnail'p'))"));
}

void tst_TVNC_BookmarksSetting::bookmarksFromThe1000thOnHaveNoNumber()
{
    for (int i = 0; i < 1001; ++i)
        add(QByteArray::number(i).constData());
    QCOMPARE(bookmarks_->getXMLNodeCnt(), 1001);
    QCOMPARE(bookmarks_->getBookmarkCnt(), 999);
    QString title;
    QVERIFY(bookmarks_->getBookmarkTitle(0, &title));
    QCOMPARE(title, utf8("1000"));
    QVERIFY(bookmarks_->getBookmarkTitle(998, &title));
    QCOMPARE(title, utf8("2"));
    QVERIFY(!bookmarks_->getBookmarkTitle(999, &title));
}

// --- Reading and changing ---------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::bookmarkIsFoundByNumber()
{
    addThumbnails(QStringList() << utf8("p0") << utf8("p1"));
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(1, &out));
    QCOMPARE(describe(out), utf8("t|h|p1"));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BookmarksSetting::absentBookmarkLeavesTheRecord()
{
    add("a");
    TVNS_Bookmark out = untouched();
    QVERIFY(!bookmarks_->getBookmark(1, &out));
    QVERIFY(!bookmarks_->getBookmark(-1, &out));
    QVERIFY(!bookmarks_->getBookmark(0, nullptr));
    QCOMPARE(describe(out), describe(untouched()));
}

void tst_TVNC_BookmarksSetting::missingElementsLeaveTheirMembers()
{
    loadFrom("<b><bookmark><title>T</title></bookmark><bookmark><href>H</href></bookmark><bookmark/></b>");
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(0, &out));
    QCOMPARE(describe(out), utf8("T|before-href|before-thumbnail"));
    out = untouched();
    QVERIFY(bookmarks_->getBookmark(1, &out));
    QCOMPARE(describe(out), utf8("before-title|H|before-thumbnail"));
    out = untouched();
    QVERIFY(bookmarks_->getBookmark(2, &out));
    QCOMPARE(describe(out), describe(untouched()));
}

void tst_TVNC_BookmarksSetting::longTitleReadsAsEmptyInARecord()
{
    addThumbnails(QStringList() << repeated("p", 256));
    QString title = repeated("t", 101);
    QVERIFY(bookmarks_->setBookmarkTitle(0, &title));
    TVNS_Bookmark out = untouched();
    QVERIFY(bookmarks_->getBookmark(0, &out));
    QCOMPARE(describe(out), utf8("|h|") + repeated("p", 256));
}

void tst_TVNC_BookmarksSetting::titleIsHandedOutUpTo100Bytes_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<bool>("fits");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("100 letters") << repeated("x", 100) << true;
    QTest::newRow("101 letters") << repeated("x", 101) << false;
    QTest::newRow("100 bytes of two") << repeated("é", 50) << true;
    QTest::newRow("102 bytes of two") << repeated("é", 51) << false;
}

void tst_TVNC_BookmarksSetting::titleIsHandedOutUpTo100Bytes()
{
    QFETCH(QString, title);
    QFETCH(bool, fits);
    add("a");
    QVERIFY(bookmarks_->setBookmarkTitle(0, &title));
    QString out = utf8("before");
    QVERIFY(bookmarks_->getBookmarkTitle(0, &out));
    QCOMPARE(out, fits ? title : utf8("before"));
}

void tst_TVNC_BookmarksSetting::titleIsSetAtAnyLength()
{
    add("a");
    QString title = repeated("あ", 2000);
    QVERIFY(bookmarks_->setBookmarkTitle(0, &title));
    QCOMPARE(text(0, 0), title);
    bookmarks_->saveBookmark(&dirName_, 1);
    QVERIFY(readFile(file()).contains(title.toUtf8()));
}

void tst_TVNC_BookmarksSetting::addressIsHandedOutUpTo256Bytes_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("answer");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("256 letters") << repeated("x", 256) << repeated("x", 256);
    QTest::newRow("257 letters") << repeated("x", 257) << utf8("about:blank");
    QTest::newRow("256 bytes of two") << repeated("é", 128) << repeated("é", 128);
    QTest::newRow("258 bytes of two") << repeated("é", 129) << utf8("about:blank");
}

void tst_TVNC_BookmarksSetting::addressIsHandedOutUpTo256Bytes()
{
    QFETCH(QString, stored);
    QFETCH(QString, answer);
    loadFrom("<b><bookmark><href>" + stored.toUtf8() + "</href></bookmark></b>");
    QString out = utf8("before");
    QVERIFY(bookmarks_->getBookmarkURL(0, &out));
    QCOMPARE(out, answer);
    TVNS_Bookmark bookmark = untouched();
    QVERIFY(bookmarks_->getBookmark(0, &bookmark));
    QCOMPARE(bookmark.href, answer);
    bookmarks_->saveBookmark(&dirName_, 1); // what the file holds is not repaired
    QVERIFY(readFile(file()).contains(stored.isEmpty() ? "<href/>" : "<href>" + stored.toUtf8() + "</href>"));
}

void tst_TVNC_BookmarksSetting::addressIsSetUpTo256Bytes()
{
    add("a");
    QString fits = repeated("é", 128);
    QString tooLong = fits + utf8("x");
    QVERIFY(bookmarks_->setBookmarkURL(0, &fits));
    QVERIFY(!bookmarks_->setBookmarkURL(0, &tooLong));
    QCOMPARE(text(0, 1), fits);
}

void tst_TVNC_BookmarksSetting::thumbnailIsHandedOutAndSetUpTo256Bytes()
{
    add("a");
    QString fits = repeated("é", 128);
    QString tooLong = fits + utf8("x");
    QVERIFY(bookmarks_->setBookmarkThumbnailFilePath(0, &fits));
    QVERIFY(!bookmarks_->setBookmarkThumbnailFilePath(0, &tooLong));
    QString out = utf8("before");
    QVERIFY(bookmarks_->getBookmarkThumbnailFilePath(0, &out));
    QCOMPARE(out, fits);
    QVERIFY(bookmarks_->setThumbFilePath(bookmarks_->getBookmarkChildNode(0, 2), tooLong));
    QVERIFY(bookmarks_->getBookmarkThumbnailFilePath(0, &out));
    QCOMPARE(out, QString());
}

void tst_TVNC_BookmarksSetting::accessorsNeedAStringAndTheElement()
{
    loadFrom("<b><bookmark><other/></bookmark></b>");
    QString string = utf8("before");
    for (int i = -1; i < 2; ++i) {
        QVERIFY(!bookmarks_->getBookmarkTitle(i, &string));
        QVERIFY(!bookmarks_->setBookmarkTitle(i, &string));
        QVERIFY(!bookmarks_->getBookmarkURL(i, &string));
        QVERIFY(!bookmarks_->setBookmarkURL(i, &string));
        QVERIFY(!bookmarks_->getBookmarkThumbnailFilePath(i, &string));
        QVERIFY(!bookmarks_->setBookmarkThumbnailFilePath(i, &string));
    }
    QCOMPARE(string, utf8("before"));
    add("a");
    QVERIFY(!bookmarks_->getBookmarkTitle(0, nullptr));
    QVERIFY(!bookmarks_->setBookmarkTitle(0, nullptr));
    QVERIFY(!bookmarks_->getBookmarkURL(0, nullptr));
    QVERIFY(!bookmarks_->setBookmarkURL(0, nullptr));
    QVERIFY(!bookmarks_->getBookmarkThumbnailFilePath(0, nullptr));
    QVERIFY(!bookmarks_->setBookmarkThumbnailFilePath(0, nullptr));
    QCOMPARE(describe(record(0)), utf8("bookmark{id=000}(href'http://a',title'a',thumbnail)"));
}

void tst_TVNC_BookmarksSetting::elementIsSelectedByItsCode()
{
    add("a");
    QCOMPARE(bookmarks_->getBookmarkChildNode(0, 0)->getName(), utf8("title"));
    QCOMPARE(bookmarks_->getBookmarkChildNode(0, 1)->getName(), utf8("href"));
    QCOMPARE(bookmarks_->getBookmarkChildNode(0, 2)->getName(), utf8("thumbnail"));
    QVERIFY(!bookmarks_->getBookmarkChildNode(0, 3));
    QVERIFY(!bookmarks_->getBookmarkChildNode(0, static_cast<char>(-1)));
    QVERIFY(!bookmarks_->getBookmarkChildNode(1, 0));
}

void tst_TVNC_BookmarksSetting::elementNameIsOnlyTestedForTheCount()
{
    loadFrom("<b><bookmark><title>a</title></bookmark><folder><title>b</title></folder></b>");
    QCOMPARE(bookmarks_->getBookmarkCnt(), 1);
    QCOMPARE(titles(), utf8("a b"));
    bookmarks_->saveBookmark(&dirName_, 1);
    QCOMPARE(readFile(file()), DECLARATION + QByteArray("<bookmarks docInfo=\"1.0\">\n"
                                                        "    <bookmark id=\"000\">\n"
                                                        "        <title>a</title>\n"
                                                        "    </bookmark>\n"
                                                        "    <folder id=\"001\">\n"
                                                        "        <title>b</title>\n"
                                                        "    </folder>\n"
                                                        "</bookmarks>\n"));
}

// --- Deleting ---------------------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::deletedBookmarkLeavesNoGap()
{
    add("c b a");
    bookmarks_->deleteBookmark(1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:1\n"));
    QCOMPARE(titles(), utf8("a c"));
    QCOMPARE(bookmarks_->getBookmarkCnt(), 2);
    bookmarks_->deleteBookmark(1);
    bookmarks_->deleteBookmark(0);
    QCOMPARE(bookmarks_->getBookmarkCnt(), 0);
}

void tst_TVNC_BookmarksSetting::deletingKeepsThePicture()
{
    const QString picture = thumbnailDir() + utf8("000001.PNG");
    writeFile(picture, "x");
    addThumbnails(QStringList() << picture);
    bookmarks_->deleteBookmark(0);
    QVERIFY(QFile::exists(picture));
}

void tst_TVNC_BookmarksSetting::deletingAnAbsentNumberOnlyRenumbers()
{
    add("b a");
    addAttribute(record(1), "x", utf8("y"));
    bookmarks_->deleteBookmark(2);
    bookmarks_->deleteBookmark(-1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:2\n"
                                       "3 [TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:-1\n"));
    QCOMPARE(titles(), utf8("a b"));
    QVERIFY(describe(record(1)).startsWith(utf8("bookmark{id=001}(")));
}

// --- Clipping ---------------------------------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::clipping_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("si_max");
    QTest::addColumn<QString>("clipped");
    QTest::newRow("0 keeps all") << utf8("text") << 0 << utf8("text");
    QTest::newRow("below 0 keeps all") << utf8("text") << -1 << utf8("text");
    QTest::newRow("empty") << QString() << 5 << QString();
    QTest::newRow("shorter") << utf8("text") << 5 << utf8("text");
    QTest::newRow("as long") << utf8("text") << 4 << utf8("text");
    QTest::newRow("longer") << utf8("text") << 3 << utf8("tex");
    QTest::newRow("first of all") << utf8("text") << 1 << utf8("t");
    QTest::newRow("one of three bytes") << utf8("日本語") << 7 << utf8("日本");
    QTest::newRow("two of three bytes") << utf8("日本語") << 8 << utf8("日本");
    QTest::newRow("three of three bytes") << utf8("日本語") << 9 << utf8("日本語");
    QTest::newRow("not even the first") << utf8("日本語") << 2 << QString();
    QTest::newRow("one of four bytes") << utf8("a😀b") << 2 << utf8("a");
    QTest::newRow("three of four bytes") << utf8("a😀b") << 4 << utf8("a");
    QTest::newRow("four of four bytes") << utf8("a😀b") << 5 << utf8("a😀");
    QTest::newRow("a replacement character of its own")
        << utf8("a\xEF\xBF\xBD") << 4 << utf8("a\xEF\xBF\xBD");
    QTest::newRow("largest maximum") << utf8("日本語") << 0x7FFFFFFF << utf8("日本語");
}

void tst_TVNC_BookmarksSetting::clipping()
{
    QFETCH(QString, text);
    QFETCH(int, si_max);
    QFETCH(QString, clipped);
    QCOMPARE(bookmarks_->ClipString(text, si_max), clipped);
}

// --- Pictures ---------------------------------------------------------------------------------------------

static QImage picture()
{
    QImage image(16, 12, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 16, y * 20, 255 - x * y));
    }
    return image;
}

void tst_TVNC_BookmarksSetting::pictureIsWrittenUnderTheNextNumber_data()
{
    QTest::addColumn<int>("si_number");
    QTest::addColumn<QString>("name");
    QTest::newRow("first") << 0 << utf8("000001.PNG");
    QTest::newRow("two digits") << 41 << utf8("000042.PNG");
    QTest::newRow("six digits") << 999998 << utf8("999999.PNG");
    QTest::newRow("seven digits") << 999999 << utf8("1000000.PNG");
    QTest::newRow("below zero") << -6 << utf8("-00005.PNG");
}

void tst_TVNC_BookmarksSetting::pictureIsWrittenUnderTheNextNumber()
{
    QFETCH(int, si_number);
    QFETCH(QString, name);
    QImage image = picture();
    QString path = thumbnailDir();
    int si_next = si_number;
    QVERIFY(bookmarks_->setThumbnail(&image, &path, si_next));
    QCOMPARE(si_next, si_number + 1);
    QCOMPARE(path, thumbnailDir() + name);
    QCOMPARE(QDir(thumbnailDir()).entryList(QDir::Files), QStringList() << name);
    QVERIFY(readFile(path).startsWith("\x89PNG\r\n\x1a\n"));
    // With the quality that Qt takes by itself.
    const QString other = thumbnailDir() + utf8("other");
    QVERIFY(image.save(other, "PNG", -1));
    QCOMPARE(readFile(path), readFile(other));
}

void tst_TVNC_BookmarksSetting::pictureIsReadBack()
{
    QImage image = picture();
    QString path = thumbnailDir();
    int si_number = 0;
    QVERIFY(bookmarks_->setThumbnail(&image, &path, si_number));
    QImage read;
    QVERIFY(bookmarks_->getThumbnail(&read, &path));
    QCOMPARE(read.convertToFormat(QImage::Format_RGB32), image);
}

void tst_TVNC_BookmarksSetting::pictureMustBePng()
{
    QString path = thumbnailDir() + utf8("000001.PNG");
    QImage read;
    QVERIFY(!bookmarks_->getThumbnail(&read, &path)); // there is no file
    QVERIFY(picture().save(path, "BMP"));
    QVERIFY(!bookmarks_->getThumbnail(&read, &path));
}

void tst_TVNC_BookmarksSetting::pictureThatCannotBeWrittenTakesItsNumber()
{
    QImage image = picture();
    QString path = dirName_ + utf8("missing/");
    int si_number = 6;
    QVERIFY(!bookmarks_->setThumbnail(&image, &path, si_number));
    QCOMPARE(si_number, 7);
    QCOMPARE(path, dirName_ + utf8("missing/000007.PNG"));

    QImage empty;
    path = thumbnailDir();
    QVERIFY(!bookmarks_->setThumbnail(&empty, &path, si_number));
    QCOMPARE(si_number, 8);
}

void tst_TVNC_BookmarksSetting::pictureOperationsNeedTheirArguments()
{
    QImage image = picture();
    QString path = thumbnailDir();
    int si_number = 6;
    QVERIFY(!bookmarks_->setThumbnail(nullptr, &path, si_number));
    QVERIFY(!bookmarks_->setThumbnail(&image, nullptr, si_number));
    QCOMPARE(si_number, 6);
    QCOMPARE(path, thumbnailDir());
    QVERIFY(!bookmarks_->getThumbnail(nullptr, &path));
    QVERIFY(!bookmarks_->getThumbnail(&image, nullptr));
    QVERIFY(!bookmarks_->deleteThumbnail(nullptr));
    QCOMPARE(image, picture());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BookmarksSetting::pictureIsDeleted()
{
    QString path = thumbnailDir() + utf8("000001.PNG");
    writeFile(path, "x");
    QVERIFY(bookmarks_->deleteThumbnail(&path));
    QVERIFY(!QFile::exists(path));
    QVERIFY(!bookmarks_->deleteThumbnail(&path));
}

// --- The walk over the pictures' paths --------------------------------------------------------------------

void tst_TVNC_BookmarksSetting::nextThumbnailElementIsFoundFromAPosition()
{
    loadFrom("<b><folder/><bookmark><thumbnail>a</thumbnail></bookmark><bookmark/><folder/>"
             "<bookmark><thumbnail>b</thumbnail></bookmark><folder/></b>");
    int si_index = 0;
    QCOMPARE(bookmarks_->getThumbNode(si_index), record(1)->getXMLNodeChildren().at(0));
    QCOMPARE(si_index, 1);
    QCOMPARE(bookmarks_->getThumbNode(si_index), record(1)->getXMLNodeChildren().at(0));
    ++si_index;
    QVERIFY(!bookmarks_->getThumbNode(si_index)); // a bookmark without thumbnail
    QCOMPARE(si_index, 2);
    ++si_index;
    QCOMPARE(bookmarks_->getThumbNode(si_index), record(4)->getXMLNodeChildren().at(0));
    QCOMPARE(si_index, 4);
    ++si_index;
    QVERIFY(!bookmarks_->getThumbNode(si_index));
    QCOMPARE(si_index, 6);
}

void tst_TVNC_BookmarksSetting::thumbnailElementIsReadAndSet()
{
    QScopedPointer<TVNC_XMLNode> node(makeNode(nullptr, "thumbnail", "x"));
    QString path = repeated("é", 128);
    QCOMPARE(bookmarks_->getThumbFilePath(node.data()), utf8("x"));
    QVERIFY(bookmarks_->setThumbFilePath(node.data(), path));
    QCOMPARE(bookmarks_->getThumbFilePath(node.data()), path);
    path += utf8("x");
    QVERIFY(bookmarks_->setThumbFilePath(node.data(), path));
    QCOMPARE(node->getText(), path);
    QCOMPARE(bookmarks_->getThumbFilePath(node.data()), QString());
    QCOMPARE(bookmarks_->getThumbFilePath(nullptr), QString());
    QVERIFY(!bookmarks_->setThumbFilePath(nullptr, path));
}

void tst_TVNC_BookmarksSetting::walkStopsAtABookmarkWithoutThumbnail()
{
    loadFrom("<b><bookmark><thumbnail>000001.PNG</thumbnail></bookmark><bookmark/>"
             "<bookmark><thumbnail>000009.PNG</thumbnail></bookmark></b>");
    QCOMPARE(lastNumber_, 1);
    QCOMPARE(bookmarks_->getLastNumber(), 1);
    QCOMPARE(thumbnails(), QStringList()
                               << thumbnailDir() + utf8("000001.PNG") << utf8("-") << utf8("000009.PNG"));
    bookmarks_->removeThumbnailFilePath();
    QCOMPARE(thumbnails(), QStringList() << utf8("000001.PNG") << utf8("-") << utf8("000009.PNG"));
    QString longPath = utf8("/long/enough/to/be/cut.PNG");
    QVERIFY(bookmarks_->setBookmarkThumbnailFilePath(2, &longPath));
    bookmarks_->removeThumbnailFilePath();
    QCOMPARE(thumbnails().at(2), longPath);
}

void tst_TVNC_BookmarksSetting::walkSkipsWhatIsNoBookmark()
{
    loadFrom("<b><folder/><bookmark><thumbnail>000001.PNG</thumbnail></bookmark>"
             "<folder><thumbnail>000100.PNG</thumbnail></folder><folder/>"
             "<bookmark><thumbnail>000002.PNG</thumbnail></bookmark><folder/></b>");
    QCOMPARE(lastNumber_, 2);
    QCOMPARE(thumbnails(), QStringList()
                               << utf8("-") << thumbnailDir() + utf8("000001.PNG") << utf8("000100.PNG")
                               << utf8("-") << thumbnailDir() + utf8("000002.PNG") << utf8("-"));
}

static QStringList rewritten;

static QString rewrite(QString& path, QString& dir)
{
    rewritten << path + QLatin1Char('+') + dir;
    return QString::number(rewritten.size());
}

void tst_TVNC_BookmarksSetting::walkRewritesEveryThumbnail()
{
    addThumbnails(QStringList() << utf8("a") << utf8("b"));
    QString tooLong = repeated("x", 257);
    bookmarks_->setThumbFilePath(bookmarks_->getBookmarkChildNode(1, 2), tooLong);
    rewritten.clear();
    QString dir = utf8("dir");
    bookmarks_->changeThumbFilePath(dir, rewrite);
    QCOMPARE(rewritten, QStringList() << utf8("a+dir") << utf8("+dir")); // too long reads as empty
    QCOMPARE(thumbnails(), QStringList() << utf8("1") << utf8("2"));
}

void tst_TVNC_BookmarksSetting::walkNeedsAFunctionAndRecords()
{
    QString dir = utf8("dir");
    rewritten.clear();
    bookmarks_->changeThumbFilePath(dir, rewrite);
    QCOMPARE(rewritten, QStringList());
    addThumbnails(QStringList() << utf8("a"));
    bookmarks_->changeThumbFilePath(dir, nullptr);
    bookmarks_->addThumbnailFilePath(nullptr);
    QCOMPARE(thumbnails(), QStringList() << utf8("a"));
    bookmarks_->addThumbnailFilePath(&dir);
    QCOMPARE(thumbnails(), QStringList() << utf8("dirthumbnail/a"));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BookmarksSetting::lastNumberIsTheHighest_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<int>("si_last");
    QTest::newRow("none") << QStringList() << 0;
    QTest::newRow("highest in the middle")
        << (QStringList() << utf8("/d/000001.PNG") << utf8("/d/000012.PNG") << utf8("/d/000003.PNG")) << 12;
    QTest::newRow("six digits") << (QStringList() << utf8("/d/999999.PNG")) << 999999;
    QTest::newRow("last six of seven digits") << (QStringList() << utf8("/d/1000002.PNG")) << 2;
    QTest::newRow("any extension") << (QStringList() << utf8("000005.xyz")) << 5;
    QTest::newRow("short name") << (QStringList() << utf8("7.PNG")) << 7;
    QTest::newRow("shorter than an extension") << (QStringList() << utf8("77")) << 0;
    QTest::newRow("no number") << (QStringList() << utf8("/d/abcdef.PNG") << utf8("")) << 0;
    QTest::newRow("not hexadecimal") << (QStringList() << utf8("/d/0x0010.PNG")) << 0;
    QTest::newRow("below zero") << (QStringList() << utf8("/d/-00005.PNG")) << 0;
}

void tst_TVNC_BookmarksSetting::lastNumberIsTheHighest()
{
    QFETCH(QStringList, paths);
    QFETCH(int, si_last);
    addThumbnails(paths);
    QCOMPARE(bookmarks_->getLastNumber(), si_last);
    QCOMPARE(LogRecorder::take(), lastNumberLine(si_last));
}

void tst_TVNC_BookmarksSetting::lastNumberIgnoresGaps()
{
    addThumbnails(QStringList() << utf8("000007.PNG") << utf8("000009.PNG") << utf8("000001.PNG"));
    bookmarks_->deleteBookmark(0);
    QCOMPARE(bookmarks_->getLastNumber(), 9);
}

void tst_TVNC_BookmarksSetting::manyBookmarks()
{
    // Work that grows with the square of their number would not end.
    const int si_count = 200000;
    QByteArray document("<bookmarks>");
    for (int i = 0; i < si_count; ++i)
        document += "<bookmark><href>h</href><title>t</title><thumbnail>000001.PNG</thumbnail></bookmark>";
    document += "<folder/></bookmarks>";
    loadFrom(document);
    QCOMPARE(bookmarks_->getXMLNodeCnt(), si_count + 1);
    QCOMPARE(bookmarks_->getBookmarkCnt(), 999);
    QCOMPARE(lastNumber_, 1);
    QCOMPARE(thumbnails().at(si_count - 1), thumbnailDir() + utf8("000001.PNG"));
    bookmarks_->saveBookmark(&dirName_, 1);
    QVERIFY(readFile(file()).size() > si_count * 100);
}

void tst_TVNC_BookmarksSetting::carriageReturnInAnAddressComesBackAsLineFeed()
{
    TVNS_Bookmark bookmark = makeBookmark(utf8("t"), utf8("http://example.com/\ra"), utf8("p"));
    QVERIFY(bookmarks_->setBookmark(&bookmark));
    bookmarks_->saveBookmark(&dirName_, 100);
    bookmarks_->loadBookmark(&dirName_, 100, lastNumber_);
    QString url;
    QVERIFY(bookmarks_->getBookmarkURL(0, &url));
    QCOMPARE(url, utf8("http://example.com/\na"));
}

TLVLIB_TEST_MAIN(tst_TVNC_BookmarksSetting)
#include "tst_TVNC_BookmarksSetting.moc"
