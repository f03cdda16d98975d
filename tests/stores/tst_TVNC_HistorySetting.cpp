#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDir>

#include <cstdlib>
#include <ctime>

static const char START_LOAD[] = "3 [TVNC_HistorySetting::loadHistory] start";
static const char END_LOAD[] = "3 [TVNC_HistorySetting::loadHistory] end";
static const char START_SAVE[] = "3 [TVNC_HistorySetting::saveHistory] start";
static const char END_SAVE[] = "3 [TVNC_HistorySetting::saveHistory] end";
static const char SET[] = "3 [TVNC_HistorySetting::setHistory]";
static const char UPDATE[] = "3 [TVNC_HistorySetting::updateHistory]";
static const char GET[] = "3 [TVNC_HistorySetting::getHistory]";
static const char CHANGE[] = "3 [TVNC_HistorySetting::changeHistory]";
static const char CHANGE_TITLE[] = "3 [TVNC_HistorySetting::changeHistoryTitle]";
static const char SORT[] = "3 [TVNC_HistorySetting::sortHistory]";
static const char CLEARED[] = "3 [TVNC_XMLSetting::deleteRootChildren] 0x*";

/// Central Europe's rules for daylight saving, told in full, so that they hold without a time zone database.
static const char CENTRAL_EUROPE[] = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Sets the process's time zone for a while.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray& zone) : wasSet_(std::getenv("TZ")), before_(qgetenv("TZ"))
    {
        set(&zone);
    }
    ~TimeZone() { set(wasSet_ ? &before_ : nullptr); }

private:
    Q_DISABLE_COPY(TimeZone)
    static void set(const QByteArray* pc_zone)
    {
        if (pc_zone)
            setenv("TZ", pc_zone->constData(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    bool wasSet_;
    QByteArray before_;
};

static QDateTime at(int si_year, int si_month, int si_day, int si_hour, int si_minute, int si_second = 0)
{
    return QDateTime(QDate(si_year, si_month, si_day), QTime(si_hour, si_minute, si_second));
}

static TVNS_History visit(const QString& title, const QString& url, const QDateTime& dateTime)
{
    TVNS_History history;
    history.title = title;
    history.url = url;
    history.dateTime = dateTime;
    return history;
}

/// A visit on 12 April 2011, its title and address made from one letter.
static TVNS_History visit(const char* pc_name, int si_hour, int si_minute)
{
    return visit(utf8(pc_name), utf8("http://") + utf8(pc_name), at(2011, 4, 12, si_hour, si_minute));
}

static QStringList lines(const char* pc_line, int si_count)
{
    QStringList list;
    for (int i = 0; i < si_count; ++i)
        list << utf8(pc_line);
    return list;
}

/// A record as it may stand in a file.
static QByteArray pageInfo(const QByteArray& url, const QByteArray& dateTime, const QByteArray& id = "")
{
    return "<pageInfo" + (id.isEmpty() ? QByteArray() : " id='" + id + "'") + "><title>t</title><url>" + url +
           "</url><dateTime>" + dateTime + "</dateTime></pageInfo>";
}

class tst_TVNC_HistorySetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void thereIsOneInstance();

    void loadedListIsSortedAndNumbered();
    void missingFileGivesAnEmptyListThatCanBeSaved();
    void loadLogsItsSteps();
    void loadNeedsADirectory();
    void loadNeedsAMaximum();
    void loadReplacesTheList();
    void directoryIsUsedAsItIs();
    void moreVisitsThanTheMaximumAreKept();

    void listIsSavedExactly();
    void savedListIsLoadedBack();
    void saveNamesTheRootAndDropsItsAttributes();
    void saveDoesNotSortNumberOrCut();
    void saveLogsItsSteps();
    void saveNeedsADirectory();
    void saveNeedsAMaximum();

    void visitGoesToTheFront();
    void samePageIsRecordedTwice();
    void nullVisitIsNotRecorded();
    void visitIsNotRecordedWhenMemoryRanOut();
    void recordingSavesNothing();
    void textsHaveNoLimit();
    void awkwardTextsComeBack();
    void visitsFromThe1000thOnHaveNoNumberOfTheirOwn();

    void listBelowTheMaximumGrows();
    void fullListLosesItsOldestVisit();
    void tooLongListKeepsItsLength();
    void fullListLosesAVisitEvenForNull();
    void maximumOfOneKeepsTheNewest();
    void everyRootChildCountsForTheMaximum();
    void maximumAbove999BoundsNothing();
    void rejectedLoadKeepsTheMaximum();

    void visitIsReadByItsNumber();
    void missingElementLeavesItsField();
    void anyNumberedElementIsRead();
    void firstElementOfANameCounts();
    void countTellsNumberedVisitsOnly();

    void addressIsFoundExactly();
    void lookUpReadsUpToTheVisitFound();
    void visitWithoutAddressCountsWithThatBefore();
    void lookUpCoversTheCountOnly();

    void visitIsChangedInItsPlace();
    void changeTouchesExistingElementsOnly();
    void titleAloneIsChanged();
    void nothingIsChangedWithoutAVisit();
    void deletedVisitIsReleasedAndTheRestNumbered();
    void deletingAnUnknownNumberNumbersTheRest();

    void sortLogsItsSteps();
    void sortPutsTheNewestFirst();
    void sortDropsWhatHasNoNumber();
    void sortRebuildsEveryRecord();
    void sortReleasesTheOldRecords();
    void sortReadsEachVisitIntoAFreshRecord();
    void sortKeepsVisitsNumberedAbove998();
    void sortLosesAVisitWhenMemoryRanOut();
    void sortLogsNullRecordsAtEachNumbering();
    void equalMinutesComeInTheOrderOfTheDevice_data();
    void equalMinutesComeInTheOrderOfTheDevice();
    void secondsDoNotCountAfterAReload();
    void invalidTimesComeLast();
    void longListIsSortedAndSearched();

    void laterVisitIsLess();
    void timeIsReadAsQtReadsIt_data();
    void timeIsReadAsQtReadsIt();
    void timeIsWrittenAsQtWritesIt_data();
    void timeIsWrittenAsQtWritesIt();
    void timeIsStoredAsItStands();
    void skippedTimeKeepsItsTextAndPlace_data();
    void skippedTimeKeepsItsTextAndPlace();
    void repeatedHourIsOrderedByTheClock();

private:
    void loadFrom(const QByteArray& records, int si_max = 50);
    void record(const char* pc_name, int si_hour, int si_minute);
    QString path() { return dir_->path() + utf8("visit.xml"); }
    QString described() { return describe(history_->getXMLRootNode()); }
    QString urls();
    QString ids();
    QString dateTimeText(int si_position);
    void load(int si_max = 50);
    void save();

    TVNC_HistorySetting* history_;
    QScopedPointer<TempDir> dir_;
};

void tst_TVNC_HistorySetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    history_ = TVNC_HistorySetting::getInstance();
    TempDir dir;
    QString dirPath = dir.path();
    QVERIFY(!history_->getXMLRootNode());
    QCOMPARE(history_->getHistoryCnt(), 0);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), QStringList());

    TVNS_History lost = visit("a", 10, 15);
    TVNS_History out = visit("untouched", 1, 2);
    QVERIFY(!history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("untouched"));
    history_->setHistory(&lost);
    history_->changeHistory(0, lost);
    history_->changeHistoryTitle(0, lost.title);
    history_->deleteHistory(0);
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(),
             QStringList() << utf8(GET) << utf8(SET) << utf8(CHANGE) << utf8(CHANGE_TITLE)
                           << utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:0") << utf8(SORT));
    QVERIFY(!history_->getXMLRootNode());

    // The maximum is 0, so that an update always deletes number -1.
    history_->updateHistory(&lost);
    QCOMPARE(LogRecorder::take(),
             QStringList() << utf8(UPDATE) << utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:-1")
                           << utf8(SET));
    QVERIFY(!history_->getXMLRootNode());

    history_->saveHistory(&dirPath, 50);
    QVERIFY(!QFile::exists(dirPath + utf8("visit.xml")));
    writeFile(dirPath + utf8("visit.xml"), "as it was");
    history_->saveHistory(&dirPath, 50);
    QCOMPARE(readFile(dirPath + utf8("visit.xml")), QByteArray("as it was"));

    // With a document that was not loaded, the list grows without bound.
    history_->createXMLRootNode();
    LogRecorder::clear();
    for (int i = 0; i < 3; ++i)
        history_->updateHistory(&lost);
    QCOMPARE(history_->getHistoryCnt(), 3);
    QCOMPARE(LogRecorder::take().filter(utf8("si_nodeNum:-1")).size(), 3);
}

void tst_TVNC_HistorySetting::init()
{
    dir_.reset(new TempDir);
    load();
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_HistorySetting::load(int si_max)
{
    QString dir = dir_->path();
    history_->loadHistory(&dir, si_max);
    QCOMPARE(dir, dir_->path());
}

void tst_TVNC_HistorySetting::save()
{
    QString dir = dir_->path();
    history_->saveHistory(&dir, 50);
    QCOMPARE(dir, dir_->path());
}

void tst_TVNC_HistorySetting::loadFrom(const QByteArray& records, int si_max)
{
    writeFile(path(), "<history docInfo='1.0'>" + records + "</history>");
    load(si_max);
    LogRecorder::clear();
}

void tst_TVNC_HistorySetting::record(const char* pc_name, int si_hour, int si_minute)
{
    TVNS_History history = visit(pc_name, si_hour, si_minute);
    history_->setHistory(&history);
    LogRecorder::clear();
}

/// The addresses in document order, as one string.
QString tst_TVNC_HistorySetting::urls()
{
    QString name = utf8("url");
    QStringList list;
    foreach (TVNC_XMLNode* pc_record, history_->getXMLRootNode()->getXMLNodeChildren()) {
        TVNC_XMLNode* pc_url = pc_record ? pc_record->getXMLNodeChildByName(name) : nullptr;
        list << (pc_url ? pc_url->getText() : utf8("-"));
    }
    return list.join(utf8(" "));
}

QString tst_TVNC_HistorySetting::ids()
{
    QStringList list;
    foreach (TVNC_XMLNode* pc_record, history_->getXMLRootNode()->getXMLNodeChildren())
        list << pc_record->getAttribute().value(utf8("id")).toString();
    return list.join(utf8(" "));
}

QString tst_TVNC_HistorySetting::dateTimeText(int si_position)
{
    QString name = utf8("dateTime");
    return history_->getXMLRootNode()
        ->getXMLNodeChildren()
        .at(si_position)
        ->getXMLNodeChildByName(name)
        ->getText();
}

void tst_TVNC_HistorySetting::thereIsOneInstance()
{
    QCOMPARE(TVNC_HistorySetting::getInstance(), history_);
}

// --- Loading ----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::loadedListIsSortedAndNumbered()
{
    loadFrom(pageInfo("old", "2010/01/01 00:00", "7") + pageInfo("new", "2012/01/01 00:00") +
             pageInfo("middle", "2011/12/31 23:59"));
    QCOMPARE(urls(), utf8("new middle old"));
    QCOMPARE(ids(), utf8("000 001 002"));
    QCOMPARE(history_->getHistoryCnt(), 3);
    TVNS_History out;
    QVERIFY(history_->getHistory(1, &out));
    QCOMPARE(out.title, utf8("t"));
    QCOMPARE(out.url, utf8("middle"));
    QCOMPARE(out.dateTime, at(2011, 12, 31, 23, 59));
}

void tst_TVNC_HistorySetting::missingFileGivesAnEmptyListThatCanBeSaved()
{
    QVERIFY(history_->getXMLRootNode());
    QCOMPARE(history_->getHistoryCnt(), 0);
    save();
    QCOMPARE(readFile(path()),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<history docInfo=\"1.0\"/>\n"));
}

void tst_TVNC_HistorySetting::loadLogsItsSteps()
{
    load();
    QCOMPARE(LogRecorder::take(), QStringList() << utf8(START_LOAD) << utf8(CLEARED)
                                                << utf8("3 [TVNC_XMLSetting::loadBookmark] start")
                                                << utf8("2 TVNC_XMLReader::read file not exist!")
                                                << utf8("3 [TVNC_XMLSetting::loadBookmark] end") << utf8(SORT)
                                                << utf8(CLEARED) << utf8(END_LOAD));
    writeFile(path(), "<h>" + pageInfo("a", "2010/01/01 00:00") + pageInfo("b", "") + "</h>");
    load();
    QCOMPARE(LogRecorder::take(), QStringList() << utf8(START_LOAD) << utf8(CLEARED)
                                                << utf8("3 [TVNC_XMLSetting::loadBookmark] start")
                                                << utf8("3 [TVNC_XMLSetting::loadBookmark] end") << utf8(SORT)
                                                << utf8(GET) << utf8(GET) << utf8(CLEARED) << utf8(SET)
                                                << utf8(SET) << utf8(END_LOAD));
}

void tst_TVNC_HistorySetting::loadNeedsADirectory()
{
    record("a", 10, 15);
    QString null;
    QString empty = utf8("");
    history_->loadHistory(nullptr, 50);
    history_->loadHistory(&null, 50);
    history_->loadHistory(&empty, 0);
    const QStringList rejection = QStringList()
                                  << utf8(START_LOAD)
                                  << utf8("2 [TVNC_HistorySetting::loadHistory] Path is NULL or empty.");
    QCOMPARE(LogRecorder::take(), rejection + rejection + rejection);
    QCOMPARE(urls(), utf8("http://a"));
}

void tst_TVNC_HistorySetting::loadNeedsAMaximum()
{
    record("a", 10, 15);
    QString dir = dir_->path();
    history_->loadHistory(&dir, 0);
    history_->loadHistory(&dir, -5);
    QCOMPARE(LogRecorder::take(), QStringList()
                                      << utf8(START_LOAD)
                                      << utf8("2 [TVNC_HistorySetting::loadHistory] Error load_max:0")
                                      << utf8(START_LOAD)
                                      << utf8("2 [TVNC_HistorySetting::loadHistory] Error load_max:-5"));
    QCOMPARE(urls(), utf8("http://a"));
    history_->loadHistory(&dir, 1);
    QCOMPARE(LogRecorder::take().last(), utf8(END_LOAD));
    QCOMPARE(history_->getXMLNodeCnt(), 0);
}

void tst_TVNC_HistorySetting::loadReplacesTheList()
{
    record("a", 10, 15);
    QPointer<TVNC_XMLNode> oldRoot(history_->getXMLRootNode());
    QPointer<TVNC_XMLNode> oldVisit(history_->getXMLRootNode()->getXMLNodeChildren().at(0));
    loadFrom(pageInfo("new", "2012/01/01 00:00"));
    QCOMPARE(urls(), utf8("new"));
    // The visits leave the old root before it goes, and all are released by the event loop.
    QVERIFY(!oldRoot.isNull() && oldRoot->getXMLNodeChildren().isEmpty());
    QVERIFY(!oldVisit.isNull());
    releaseDeferred();
    QVERIFY(oldRoot.isNull());
    QVERIFY(oldVisit.isNull());
}

void tst_TVNC_HistorySetting::directoryIsUsedAsItIs()
{
    // Without its "/" the directory's name and the file's run together.
    QString dir = dir_->path() + utf8("data");
    QString dirWithSlash = dir + utf8("/");
    QVERIFY(QDir().mkdir(dir));
    writeFile(dirWithSlash + utf8("visit.xml"), "<h>" + pageInfo("inside", "2012/01/01 00:00") + "</h>");
    writeFile(dir + utf8("visit.xml"), "<h>" + pageInfo("beside", "2012/01/01 00:00") + "</h>");
    history_->loadHistory(&dir, 50);
    QCOMPARE(urls(), utf8("beside"));
    history_->loadHistory(&dirWithSlash, 50);
    QCOMPARE(urls(), utf8("inside"));
    record("new", 10, 15);
    history_->saveHistory(&dir, 50);
    QVERIFY(readFile(dir + utf8("visit.xml")).contains("new"));
    QVERIFY(!readFile(dirWithSlash + utf8("visit.xml")).contains("new"));
}

void tst_TVNC_HistorySetting::moreVisitsThanTheMaximumAreKept()
{
    loadFrom(pageInfo("a", "2012/01/03 00:00") + pageInfo("b", "2012/01/02 00:00") +
                 pageInfo("c", "2012/01/01 00:00"),
             2);
    QCOMPARE(urls(), utf8("a b c"));
}

// --- Saving -----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::listIsSavedExactly()
{
    TVNS_History older = visit(utf8("News"), utf8("http://example.com/?a&b"), at(2011, 4, 2, 9, 8, 59));
    TVNS_History newer = visit(QString(), QString(), QDateTime());
    history_->setHistory(&older);
    history_->setHistory(&newer);
    save();
    QCOMPARE(readFile(path()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<history docInfo=\"1.0\">\n"
                                          "    <pageInfo id=\"000\">\n"
                                          "        <title/>\n"
                                          "        <url/>\n"
                                          "        <dateTime/>\n"
                                          "    </pageInfo>\n"
                                          "    <pageInfo id=\"001\">\n"
                                          "        <title>News</title>\n"
                                          "        <url>http://example.com/?a&amp;b</url>\n"
                                          "        <dateTime>2011/04/02 09:08</dateTime>\n"
                                          "    </pageInfo>\n"
                                          "</history>\n"));
}

void tst_TVNC_HistorySetting::savedListIsLoadedBack()
{
    for (int i = 0; i < 999; ++i) {
        TVNS_History history = visit(QString::number(i), QString::number(i), at(2011, 1, 1, 0, 0));
        history.dateTime = history.dateTime.addDays(i);
        history_->setHistory(&history);
    }
    save();
    const QByteArray saved = readFile(path());
    load(999);
    QCOMPARE(history_->getHistoryCnt(), 999);
    for (int i = 0; i < 999; ++i) {
        TVNS_History out;
        QVERIFY(history_->getHistory(i, &out));
        QCOMPARE(out.title, QString::number(998 - i));
        QCOMPARE(out.url, QString::number(998 - i));
        QCOMPARE(out.dateTime.date(), QDate(2011, 1, 1).addDays(998 - i));
    }
    save();
    QVERIFY(readFile(path()) == saved);
}

void tst_TVNC_HistorySetting::saveNamesTheRootAndDropsItsAttributes()
{
    writeFile(path(), "<other version='2' docInfo='0.9'/>");
    load();
    save();
    QCOMPARE(described(), utf8("history{docInfo=1.0}"));
}

void tst_TVNC_HistorySetting::saveDoesNotSortNumberOrCut()
{
    record("a", 11, 0);
    record("b", 10, 0);
    record("c", 12, 0);
    QString id = utf8("id");
    history_->deleteXMLNodeByID(0, id);
    QString dir = dir_->path();
    history_->saveHistory(&dir, 1);
    QCOMPARE(urls(), utf8("http://b http://a"));
    QCOMPARE(ids(), utf8("001 002"));
    QVERIFY(readFile(path()).contains("<pageInfo id=\"002\">"));
    // Nor is the maximum of a save applied to later visits.
    TVNS_History next = visit("d", 13, 0);
    history_->updateHistory(&next);
    QCOMPARE(urls(), utf8("http://d http://b http://a"));
}

void tst_TVNC_HistorySetting::saveLogsItsSteps()
{
    save();
    QCOMPARE(LogRecorder::take(), QStringList()
                                      << utf8(START_SAVE) << utf8("3 [TVNC_XMLSetting::save] start")
                                      << utf8("3 [TVNC_XMLSetting::saveBookmark] end") << utf8(END_SAVE));
    QString absent = dir_->path() + utf8("absent/");
    history_->saveHistory(&absent, 50);
    QCOMPARE(LogRecorder::take(), QStringList()
                                      << utf8(START_SAVE) << utf8("3 [TVNC_XMLSetting::save] start")
                                      << utf8("2 TVNC_XMLWriter::write file open error!")
                                      << utf8("3 [TVNC_XMLSetting::saveBookmark] end") << utf8(END_SAVE));
}

void tst_TVNC_HistorySetting::saveNeedsADirectory()
{
    writeFile(path(), "<other/>");
    load();
    LogRecorder::clear();
    QString null;
    QString empty = utf8("");
    history_->saveHistory(nullptr, 50);
    history_->saveHistory(&null, 50);
    history_->saveHistory(&empty, 0);
    const QStringList rejection = QStringList()
                                  << utf8(START_SAVE)
                                  << utf8("2 [TVNC_HistorySetting::saveHistory] Path is NULL or empty.");
    QCOMPARE(LogRecorder::take(), rejection + rejection + rejection);
    QCOMPARE(described(), utf8("other")); // untouched
}

void tst_TVNC_HistorySetting::saveNeedsAMaximum()
{
    QString dir = dir_->path();
    history_->saveHistory(&dir, 0);
    history_->saveHistory(&dir, -7);
    QCOMPARE(LogRecorder::take(), QStringList()
                                      << utf8(START_SAVE)
                                      << utf8("2 [TVNC_HistorySetting::saveAuthInfo] Error save_max:0")
                                      << utf8(START_SAVE)
                                      << utf8("2 [TVNC_HistorySetting::saveAuthInfo] Error save_max:-7"));
    QVERIFY(!QFile::exists(path()));
    QCOMPARE(described(), QString()); // untouched
    history_->saveHistory(&dir, 1);
    QVERIFY(QFile::exists(path()));
}

// --- Recording --------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitGoesToTheFront()
{
    TVNS_History first = visit("a", 10, 15);
    TVNS_History second = visit("b", 9, 5); // its time does not matter here
    history_->setHistory(&first);
    history_->setHistory(&second);
    QCOMPARE(LogRecorder::take(), lines(SET, 2));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',url'http://b',dateTime'2011/04/12 09:05'),"
                               "pageInfo{id=001}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting::samePageIsRecordedTwice()
{
    record("a", 10, 15);
    record("a", 10, 15);
    QCOMPARE(urls(), utf8("http://a http://a"));
}

void tst_TVNC_HistorySetting::nullVisitIsNotRecorded()
{
    history_->setHistory(nullptr);
    QCOMPARE(history_->getXMLNodeCnt(), 0);
    QCOMPARE(LogRecorder::take(), lines(SET, 1));
}

void tst_TVNC_HistorySetting::visitIsNotRecordedWhenMemoryRanOut()
{
    record("a", 10, 15);
    TVNS_History history = visit("b", 10, 16);
    failingNode = 1; // the record
    history_->setHistory(&history);
    QCOMPARE(failingNode, 0);
    QCOMPARE(urls(), utf8("http://a"));
    failingNode = 3; // the address
    history_->setHistory(&history);
    QCOMPARE(failingNode, 0);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',dateTime'2011/04/12 10:16'),"
                               "pageInfo{id=001}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
    QCOMPARE(LogRecorder::take(), QStringList()
                                      << utf8(SET) << utf8("1 [TVNC_XMLSetting::addXMLChild] Fail")
                                      << utf8(SET) << utf8("1 [TVNC_XMLSetting::addXMLChild] Fail"));
}

void tst_TVNC_HistorySetting::recordingSavesNothing()
{
    TVNS_History history = visit("a", 10, 15);
    history_->updateHistory(&history);
    QVERIFY(!QFile::exists(path()));
}

void tst_TVNC_HistorySetting::textsHaveNoLimit()
{
    const QString title(100000, QChar(0x3042));
    const QString url(100000, QLatin1Char('u'));
    TVNS_History history = visit(title, url, at(2011, 4, 12, 10, 15));
    history_->setHistory(&history);
    save();
    load();
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QVERIFY(out.title == title);
    QVERIFY(out.url == url);
    QString wanted = url;
    QCOMPARE(history_->getHistoryIndex(wanted), 0);
}

void tst_TVNC_HistorySetting::awkwardTextsComeBack()
{
    const QString text = utf8("<Café> & \"日本\" 😀 ]]> '\t");
    TVNS_History bad = visit(utf8("bad\x01") + QChar(0xD800) + utf8("title"), text, at(2011, 4, 12, 10, 16));
    TVNS_History good = visit(text, text, at(2011, 4, 12, 10, 15));
    history_->setHistory(&good);
    history_->setHistory(&bad);
    save();
    load();
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("badtitle"));
    QVERIFY(history_->getHistory(1, &out));
    QCOMPARE(out.title, text);
    QCOMPARE(out.url, text);
}

void tst_TVNC_HistorySetting::visitsFromThe1000thOnHaveNoNumberOfTheirOwn()
{
    for (int i = 0; i < 1002; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, 15));
        history_->setHistory(&history);
        QCOMPARE(history_->getHistoryCnt(), qMin(i + 1, 999));
    }
    TVNS_History out;
    QVERIFY(history_->getHistory(998, &out));
    QCOMPARE(out.url, QString::number(1001 - 998));
    QVERIFY(!history_->getHistory(999, &out));
    // They were number 998 when the next visit pushed them on, and nobody took that from them.
    QVERIFY(ids().endsWith(utf8(" 997 998 998 998 998")));
    QString url = utf8("0");
    QCOMPARE(history_->getHistoryIndex(url), -1);
}

// --- Recording with the maximum ---------------------------------------------------------------------------

void tst_TVNC_HistorySetting::listBelowTheMaximumGrows()
{
    load(3);
    LogRecorder::clear();
    for (int i = 0; i < 3; ++i) {
        TVNS_History history = visit("a", 10, i);
        history_->updateHistory(&history);
    }
    QCOMPARE(history_->getHistoryCnt(), 3);
    QCOMPARE(LogRecorder::take(), QStringList() << utf8(UPDATE) << utf8(SET) << utf8(UPDATE) << utf8(SET)
                                                << utf8(UPDATE) << utf8(SET));
}

void tst_TVNC_HistorySetting::fullListLosesItsOldestVisit()
{
    for (int i = 0; i < 50; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, i));
        history_->updateHistory(&history);
    }
    QCOMPARE(history_->getHistoryCnt(), 50);
    LogRecorder::clear();
    QPointer<TVNC_XMLNode> oldest(history_->getXMLRootNode()->getXMLNodeChildren().at(49));
    TVNS_History history = visit(QString(), utf8("51st"), at(2011, 4, 12, 10, 51));
    history_->updateHistory(&history);
    QCOMPARE(LogRecorder::take(),
             QStringList() << utf8(UPDATE) << utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:49")
                           << utf8(SET));
    QCOMPARE(history_->getHistoryCnt(), 50);
    QVERIFY(urls().startsWith(utf8("51st 49 48 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1")));
    QVERIFY(ids().endsWith(utf8(" 048 049")));
    QVERIFY(!oldest.isNull());
    releaseDeferred();
    QVERIFY(oldest.isNull());
}

void tst_TVNC_HistorySetting::tooLongListKeepsItsLength()
{
    QByteArray records;
    for (int i = 0; i < 52; ++i)
        records += pageInfo(QByteArray::number(i),
                            "2011/04/12 10:" + QByteArray::number(59 - i / 2).rightJustified(2, '0'));
    loadFrom(records);
    QStringList expected = urls().split(utf8(" "));
    QCOMPARE(expected.size(), 52);
    TVNS_History history = visit(QString(), utf8("new"), at(2011, 4, 12, 11, 0));
    history_->updateHistory(&history);
    QCOMPARE(history_->getHistoryCnt(), 52);
    expected.removeAt(49);
    expected.prepend(utf8("new"));
    QCOMPARE(urls(), expected.join(utf8(" ")));
}

void tst_TVNC_HistorySetting::fullListLosesAVisitEvenForNull()
{
    loadFrom(pageInfo("a", "2012/01/03 00:00") + pageInfo("b", "2012/01/02 00:00"), 2);
    history_->updateHistory(nullptr);
    QCOMPARE(urls(), utf8("a"));
    QCOMPARE(LogRecorder::take(), QStringList() << utf8(UPDATE)
                                                << utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:1")
                                                << utf8(SET));
}

void tst_TVNC_HistorySetting::maximumOfOneKeepsTheNewest()
{
    load(1);
    for (int i = 0; i < 3; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, i));
        history_->updateHistory(&history);
        QCOMPARE(urls(), QString::number(i));
    }
}

void tst_TVNC_HistorySetting::everyRootChildCountsForTheMaximum()
{
    load(2);
    record("a", 10, 15);
    makeNode(history_->getXMLRootNode(), "stray");
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history); // deletes number 1, which the stray element does not have
    QCOMPARE(urls(), utf8("http://b http://a -"));
    history_->updateHistory(&history); // deletes number 1, the visit of a
    QCOMPARE(urls(), utf8("http://b http://b -"));
}

void tst_TVNC_HistorySetting::maximumAbove999BoundsNothing()
{
    QByteArray records;
    for (int i = 0; i < 1000; ++i)
        records += pageInfo("x", "2011/04/12 10:15", QByteArray::number(i));
    loadFrom(records, 1000);
    QCOMPARE(history_->getXMLNodeCnt(), 1000);
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history);
    QCOMPARE(LogRecorder::take(),
             QStringList() << utf8(UPDATE) << utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:999")
                           << utf8(SET));
    QCOMPARE(history_->getXMLNodeCnt(), 1001);
}

void tst_TVNC_HistorySetting::rejectedLoadKeepsTheMaximum()
{
    load(1);
    QString dir = dir_->path();
    QString empty;
    history_->loadHistory(&dir, 0);
    history_->loadHistory(&empty, 20);
    record("a", 10, 15);
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history);
    QCOMPARE(urls(), utf8("http://b"));
}

// --- Reading ----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitIsReadByItsNumber()
{
    record("a", 10, 15);
    record("b", 10, 16);
    TVNS_History out;
    QCOMPARE(history_->getHistory(1, &out), true);
    QCOMPARE(out.title, utf8("a"));
    QCOMPARE(out.url, utf8("http://a"));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
    QCOMPARE(history_->getHistory(2, &out), false);
    QCOMPARE(history_->getHistory(-1, &out), false);
    QCOMPARE(history_->getHistory(2147483647, &out), false);
    QCOMPARE(history_->getHistory(0, nullptr), false);
    QCOMPARE(out.title, utf8("a")); // untouched
    QCOMPARE(LogRecorder::take(), lines(GET, 5));
}

void tst_TVNC_HistorySetting::missingElementLeavesItsField()
{
    record("a", 10, 15);
    TVNC_XMLNode* pc_record = history_->getXMLRootNode()->getXMLNodeChildren().at(0);
    TVNS_History out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("before"));
    QCOMPARE(out.url, utf8("http://a"));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.url, utf8("http://before"));
    out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 1, 2));
    // An element without text is there, and empties its field.
    makeNode(pc_record, "dateTime");
    makeNode(pc_record, "title");
    QVERIFY(history_->getHistory(0, &out));
    QVERIFY(!out.dateTime.isValid());
    QCOMPARE(out.title, QString());
}

void tst_TVNC_HistorySetting::anyNumberedElementIsRead()
{
    TVNC_XMLNode* pc_other = makeNode(history_->getXMLRootNode(), "other");
    addAttribute(pc_other, "id", utf8("000"));
    makeNode(pc_other, "title", "Other");
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("Other"));
    QCOMPARE(history_->getHistoryCnt(), 0);
}

void tst_TVNC_HistorySetting::firstElementOfANameCounts()
{
    TVNC_XMLNode* pc_record = makeNode(history_->getXMLRootNode(), "pageInfo");
    addAttribute(pc_record, "id", utf8("000"));
    makeNode(pc_record, "url", "first");
    makeNode(pc_record, "url", "second");
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.url, utf8("first"));
    TVNS_History change = visit("changed", 10, 15);
    history_->changeHistory(0, change);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(url'http://changed',url'second'))"));
}

void tst_TVNC_HistorySetting::countTellsNumberedVisitsOnly()
{
    record("a", 10, 15);
    record("b", 10, 16);
    makeNode(history_->getXMLRootNode(), "pageInfo");
    QCOMPARE(history_->getHistoryCnt(), 2);
    QString id = utf8("id");
    history_->deleteXMLNodeByID(0, id);
    QCOMPARE(history_->getHistoryCnt(), 1); // the number 1 of two children
    QCOMPARE(LogRecorder::take(), QStringList());
}

// --- Looking up -------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::addressIsFoundExactly()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("a", 10, 17);
    record("c", 10, 18);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), 1); // the newer one
    url = utf8("http://c");
    QCOMPARE(history_->getHistoryIndex(url), 0);
    url = utf8("http://A");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    url = utf8("http://a/");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    url = QString();
    QCOMPARE(history_->getHistoryIndex(url), -1);
}

void tst_TVNC_HistorySetting::lookUpReadsUpToTheVisitFound()
{
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), QStringList());
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    url = utf8("http://b");
    QCOMPARE(history_->getHistoryIndex(url), 1);
    QCOMPARE(LogRecorder::take(), lines(GET, 2));
    url = utf8("absent");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), lines(GET, 3));
}

void tst_TVNC_HistorySetting::visitWithoutAddressCountsWithThatBefore()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    const QList<TVNC_XMLNode*> records = history_->getXMLRootNode()->getXMLNodeChildren();
    delete records.at(1)->getXMLNodeChildren().at(1);
    delete records.at(0)->getXMLNodeChildren().at(1);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), 2);
    url = utf8("");
    QCOMPARE(history_->getHistoryIndex(url), 0); // nothing before it
    makeNode(records.at(0), "url", "http://c");
    url = utf8("http://c");
    QCOMPARE(history_->getHistoryIndex(url), 0);
    delete records.at(0); // a gap at number 0 is passed over
    LogRecorder::clear();
    url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1); // number 2 is at the count of 1 or above
    QCOMPARE(LogRecorder::take(), lines(GET, 1));
}

void tst_TVNC_HistorySetting::lookUpCoversTheCountOnly()
{
    // The element of another name takes a number, but does not count, so the last visit is not tried.
    TVNC_XMLNode* pc_root = history_->getXMLRootNode();
    makeNode(pc_root, "other");
    makeNode(makeNode(pc_root, "pageInfo"), "url", "a");
    makeNode(makeNode(pc_root, "pageInfo"), "url", "b");
    QString id = utf8("id");
    history_->setIDforChildren(id);
    QCOMPARE(history_->getHistoryCnt(), 2);
    QString url = utf8("a");
    QCOMPARE(history_->getHistoryIndex(url), 1);
    url = utf8("b");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), lines(GET, 4));
}

// --- Changing and deleting --------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitIsChangedInItsPlace()
{
    record("a", 10, 15);
    record("b", 10, 16);
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(1, change);
    QCOMPARE(LogRecorder::take(), lines(CHANGE, 1));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',url'http://b',dateTime'2011/04/12 10:16'),"
                               "pageInfo{id=001}(title'new',url'http://new',dateTime'2011/04/12 23:59'))"));
    save();
    QCOMPARE(urls(), utf8("http://b http://new"));
    load();
    QCOMPARE(urls(), utf8("http://new http://b"));
    change.dateTime = QDateTime();
    history_->changeHistory(0, change);
    QCOMPARE(dateTimeText(0), QString());
}

void tst_TVNC_HistorySetting::changeTouchesExistingElementsOnly()
{
    TVNC_XMLNode* pc_record = makeNode(history_->getXMLRootNode(), "pageInfo");
    addAttribute(pc_record, "id", utf8("000"));
    addAttribute(makeNode(pc_record, "title", "t", 1), "lang", utf8("en"));
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(0, change);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title{lang=en} cdata'new'))"));
    delete pc_record->getXMLNodeChildren().at(0);
    makeNode(pc_record, "dateTime");
    makeNode(pc_record, "url");
    history_->changeHistory(0, change);
    history_->changeHistoryTitle(0, change.title);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(dateTime'2011/04/12 23:59',url'http://new'))"));
}

void tst_TVNC_HistorySetting::titleAloneIsChanged()
{
    record("a", 10, 15);
    QString title = utf8("new");
    history_->changeHistoryTitle(0, title);
    QCOMPARE(LogRecorder::take(), lines(CHANGE_TITLE, 1));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'new',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting::nothingIsChangedWithoutAVisit()
{
    record("a", 10, 15);
    const QString before = described();
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(1, change);
    history_->changeHistory(-1, change);
    history_->changeHistoryTitle(1, change.title);
    QCOMPARE(described(), before);
    QCOMPARE(LogRecorder::take(), lines(CHANGE, 2) + lines(CHANGE_TITLE, 1));
}

void tst_TVNC_HistorySetting::deletedVisitIsReleasedAndTheRestNumbered()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    QPointer<TVNC_XMLNode> deleted(history_->getXMLRootNode()->getXMLNodeChildren().at(1));
    history_->deleteHistory(1);
    QCOMPARE(LogRecorder::take(), QStringList(utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:1")));
    QCOMPARE(urls(), utf8("http://c http://a"));
    QCOMPARE(ids(), utf8("000 001"));
    QVERIFY(!deleted.isNull());
    releaseDeferred();
    QVERIFY(deleted.isNull());
}

void tst_TVNC_HistorySetting::deletingAnUnknownNumberNumbersTheRest()
{
    record("a", 10, 15);
    makeNode(history_->getXMLRootNode(), "pageInfo");
    history_->deleteHistory(7);
    QCOMPARE(ids(), utf8("000 001"));
    QCOMPARE(LogRecorder::take(), QStringList(utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:7")));
}

// --- Sorting ----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::sortLogsItsSteps()
{
    record("a", 10, 15);
    record("b", 10, 16);
    makeNode(history_->getXMLRootNode(), "pageInfo"); // no number: tried, but not put back
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(),
             QStringList(utf8(SORT)) + lines(GET, 3) + QStringList(utf8(CLEARED)) + lines(SET, 2));
    history_->deleteAllSetting();
    LogRecorder::clear();
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(), QStringList() << utf8(SORT) << utf8(CLEARED));
}

void tst_TVNC_HistorySetting::sortPutsTheNewestFirst()
{
    foreach (int si_minute, QList<int>() << 30 << 10 << 50 << 20 << 0 << 40 << 59 << 1) {
        TVNS_History history = visit(QString(), QString::number(si_minute), at(2011, 4, 12, 10, si_minute));
        history_->setHistory(&history);
    }
    QCOMPARE(urls(), utf8("1 59 40 0 20 50 10 30"));
    history_->sortHistory();
    QCOMPARE(urls(), utf8("59 50 40 30 20 10 1 0"));
    QCOMPARE(ids(), utf8("000 001 002 003 004 005 006 007"));
}

void tst_TVNC_HistorySetting::sortDropsWhatHasNoNumber()
{
    TVNC_XMLNode* pc_root = history_->getXMLRootNode();
    const char* const pc_ids[] = {"5", "001", "x", "1", "-1", "6", "0"};
    for (size_t i = 0; i < sizeof pc_ids / sizeof *pc_ids; ++i) {
        TVNC_XMLNode* pc_record = makeNode(pc_root, "pageInfo");
        addAttribute(pc_record, "id", utf8(pc_ids[i]));
        makeNode(pc_record, "url", pc_ids[i]);
        makeNode(pc_record, "dateTime",
                 QByteArray("2011/04/12 10:5" + QByteArray::number(9 - int(i))).constData());
    }
    makeNode(makeNode(pc_root, "pageInfo"), "url", "none");
    TVNC_XMLNode* pc_far = makeNode(pc_root, "pageInfo");
    addAttribute(pc_far, "id", utf8("9")); // at the number of children or above
    history_->sortHistory();
    QCOMPARE(urls(), utf8("5 001 6 0"));
    QCOMPARE(LogRecorder::take(),
             QStringList(utf8(SORT)) + lines(GET, 9) + QStringList(utf8(CLEARED)) + lines(SET, 4));
}

void tst_TVNC_HistorySetting::sortRebuildsEveryRecord()
{
    loadFrom("\n <other a='b'>text<dateTime>no time</dateTime><more><deep/></more>"
             "<url x='y'><![CDATA[u]]></url><url>second</url></other>"
             "<pageInfo><![CDATA[text]]><title><sub/>T</title></pageInfo>");
    QCOMPARE(described(), utf8("history{docInfo=1.0}("
                               "pageInfo{id=000}(title,url'u',dateTime),"
                               "pageInfo{id=001}(title'T',url,dateTime))"));
}

void tst_TVNC_HistorySetting::sortReleasesTheOldRecords()
{
    record("a", 10, 15);
    QPointer<TVNC_XMLNode> root(history_->getXMLRootNode());
    QPointer<TVNC_XMLNode> old(root->getXMLNodeChildren().at(0));
    history_->sortHistory();
    QVERIFY(!old.isNull() && !old->getXMLNodeParent());
    QVERIFY(root->getXMLNodeChildren().at(0) != old);
    releaseDeferred();
    QVERIFY(old.isNull());
    QVERIFY(!root.isNull());
    QCOMPARE(history_->getXMLRootNode(), root.data());
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting::sortReadsEachVisitIntoAFreshRecord()
{
    loadFrom(pageInfo("a", "2011/04/12 10:15") + "<pageInfo><title>bare</title></pageInfo>");
    QCOMPARE(described(), utf8("history{docInfo=1.0}("
                               "pageInfo{id=000}(title't',url'a',dateTime'2011/04/12 10:15'),"
                               "pageInfo{id=001}(title'bare',url,dateTime))"));
}

void tst_TVNC_HistorySetting::sortKeepsVisitsNumberedAbove998()
{
    QByteArray numbered;
    QByteArray unnumbered;
    for (int i = 0; i < 1002; ++i) {
        const QByteArray url = QByteArray::number(i);
        const QByteArray day = QByteArray::number(2000 + i) + "/04/12 10:15";
        numbered += pageInfo(url, day, url);
        unnumbered += pageInfo(url, day);
    }
    // A number that the file gives to a record past the 999th stands. Their last number on the way back
    // stays.
    loadFrom(numbered);
    QCOMPARE(history_->getXMLNodeCnt(), 1002);
    QVERIFY(urls().startsWith(utf8("1001 1000 999 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1 0")));
    QVERIFY(ids().endsWith(utf8(" 996 997 998 998 998 998")));
    // Those without are lost, and so are those that this library wrote, being all number 998.
    save();
    load();
    QCOMPARE(history_->getXMLNodeCnt(), 999);
    QVERIFY(urls().endsWith(utf8(" 5 4 3")));
    loadFrom(unnumbered);
    QCOMPARE(history_->getXMLNodeCnt(), 999);
    QVERIFY(urls().startsWith(utf8("998 997 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1 0")));
}

void tst_TVNC_HistorySetting::sortLosesAVisitWhenMemoryRanOut()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    failingNode = 5; // four nodes a visit: the second that is put back
    history_->sortHistory();
    QCOMPARE(failingNode, 0);
    QCOMPARE(urls(), utf8("http://c http://a"));
    QCOMPARE(ids(), utf8("000 001"));
    QCOMPARE(LogRecorder::take(),
             QStringList(utf8(SORT)) + lines(GET, 3) + QStringList(utf8(CLEARED)) + lines(SET, 2) +
                 QStringList(utf8("1 [TVNC_XMLSetting::addXMLChild] Fail")) + lines(SET, 1));
}

void tst_TVNC_HistorySetting::sortLogsNullRecordsAtEachNumbering()
{
    record("a", 10, 15);
    record("b", 10, 16);
    history_->getXMLRootNode()->getXMLNodeChildren().prepend(nullptr);
    history_->sortHistory();
    const QStringList null(utf8("1 [TVNC_XMLSetting::setIDforChildren] 0x* Why Pass??"));
    QCOMPARE(LogRecorder::take(),
             QStringList(utf8(SORT)) + lines(GET, 3) + QStringList(utf8(CLEARED)) +
                 QStringList(utf8("1 [TVNC_XMLSetting::deleteRootChildren] 0x* Why Pass??")) + lines(SET, 1) +
                 null + lines(SET, 1) + null + null);
    QCOMPARE(urls(), utf8("http://b http://a -"));
    history_->getXMLRootNode()->getXMLNodeChildren().removeAll(nullptr);
}

void tst_TVNC_HistorySetting::equalMinutesComeInTheOrderOfTheDevice_data()
{
    QTest::addColumn<QStringList>("minutes");
    QTest::addColumn<QString>("order");
    // A line: count, number of distinct minutes, "in:", the minutes, "out:", the order. Measured on a device.
    int si_lines = 0;
    foreach (const QByteArray& line, readFile(testData(utf8("tie-order.txt"))).split('\n')) {
        if (line.isEmpty())
            continue;
        const QStringList fields = QString::fromLatin1(line).simplified().split(utf8(" "));
        const int si_count = fields.at(0).toInt();
        QCOMPARE(static_cast<int>(fields.size()), 4 + 2 * si_count);
        QTest::newRow((fields.at(0) + utf8(" visits, up to ") + fields.at(1) + utf8(" minutes")).toLatin1())
            << QStringList(fields.mid(3, si_count)) << QStringList(fields.mid(4 + si_count)).join(utf8(" "));
        ++si_lines;
    }
    QCOMPARE(si_lines, 48);
}

void tst_TVNC_HistorySetting::equalMinutesComeInTheOrderOfTheDevice()
{
    QFETCH(QStringList, minutes);
    QFETCH(QString, order);
    QByteArray records;
    for (int i = 0; i < minutes.size(); ++i) {
        const QString text = QDateTime(QDate(2011, 4, 12), QTime(0, 0), Qt::UTC)
                                 .addSecs(60 * minutes.at(i).toInt())
                                 .toString(utf8("yyyy/MM/dd hh:mm"));
        records += pageInfo(QByteArray::number(i), text.toLatin1());
    }
    loadFrom(records);
    QCOMPARE(urls(), order);
}

void tst_TVNC_HistorySetting::secondsDoNotCountAfterAReload()
{
    TVNS_History older = visit(utf8("older"), utf8("older"), at(2011, 4, 12, 10, 15, 5));
    TVNS_History newer = visit(utf8("newer"), utf8("newer"), at(2011, 4, 12, 10, 15, 40));
    TVNS_History newest = visit(utf8("newest"), utf8("newest"), at(2011, 4, 12, 10, 15, 50));
    TVNS_History latest = visit(utf8("latest"), utf8("latest"), at(2011, 4, 12, 10, 15, 59));
    history_->setHistory(&older);
    history_->setHistory(&newer);
    QCOMPARE(dateTimeText(0), utf8("2011/04/12 10:15"));
    QCOMPARE(dateTimeText(1), utf8("2011/04/12 10:15"));
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15, 0));
    save();
    load();
    QCOMPARE(urls(), utf8("newer older"));
    // Two stay as they are; four of one minute do not ("4 1" in the measured orders).
    history_->setHistory(&newest);
    history_->setHistory(&latest);
    save();
    load();
    QCOMPARE(urls(), utf8("older newer latest newest"));
}

void tst_TVNC_HistorySetting::invalidTimesComeLast()
{
    loadFrom(pageInfo("bad", "yesterday") + pageInfo("new", "2011/04/12 10:15") +
             pageInfo("old", "1950/01/01 00:00"));
    QCOMPARE(urls(), utf8("new old bad"));
    QCOMPARE(dateTimeText(2), QString()); // the unreadable text is gone
    TVNS_History out;
    QVERIFY(history_->getHistory(2, &out));
    QVERIFY(!out.dateTime.isValid());
}

void tst_TVNC_HistorySetting::longListIsSortedAndSearched()
{
    // Steps that go through the whole list for each visit would take minutes here.
    const int si_count = 60000;
    QByteArray records;
    for (int i = 0; i < si_count; ++i) {
        const int si_minute = static_cast<int>((i * 7919LL) % si_count);
        const QDateTime dateTime = QDateTime(QDate(2011, 1, 1), QTime(0, 0), Qt::UTC).addSecs(60 * si_minute);
        records += pageInfo(QByteArray::number(si_minute),
                            dateTime.toString(utf8("yyyy/MM/dd hh:mm")).toLatin1(), QByteArray::number(i));
    }
    loadFrom(records);
    QStringList expected;
    for (int i = si_count - 1; i >= 0; --i)
        expected << QString::number(i);
    QVERIFY(urls() == expected.join(utf8(" ")));
    QCOMPARE(history_->getHistoryCnt(), 999);
    QString url = QString::number(si_count - 1 - 998);
    for (int i = 0; i < 100; ++i)
        QCOMPARE(history_->getHistoryIndex(url), 998);
    LogRecorder::clear();
    releaseDeferred();
}

// --- Times ------------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::laterVisitIsLess()
{
    const TVNS_History earlier = visit("z", 10, 15);
    const TVNS_History later = visit("a", 10, 16);
    QVERIFY(later < earlier);
    QVERIFY(!(earlier < later));
    QVERIFY(!(later < later));
    const TVNS_History tomorrow = visit(QString(), QString(), at(2011, 4, 13, 0, 0));
    QVERIFY(tomorrow < later);
    QVERIFY(!(later < tomorrow));
    // Seconds count as long as they are there.
    const TVNS_History second = visit(QString(), QString(), at(2011, 4, 12, 10, 15, 1));
    QVERIFY(second < earlier);
    // Times of different kinds are compared as points in time.
    const TimeZone zone(CENTRAL_EUROPE);
    const TVNS_History local = visit(QString(), QString(), at(2011, 4, 12, 10, 15));
    const TVNS_History utc =
        visit(QString(), QString(), QDateTime(QDate(2011, 4, 12), QTime(8, 16), Qt::UTC));
    QVERIFY(utc < local);
    QVERIFY(!(local < utc));
    // No time at all is earlier than any.
    const TVNS_History never;
    const TVNS_History longAgo = visit(QString(), QString(), at(1901, 1, 1, 0, 0));
    QVERIFY(longAgo < never);
    QVERIFY(!(never < longAgo));
    QVERIFY(!(never < never));
}

void tst_TVNC_HistorySetting::timeIsReadAsQtReadsIt_data()
{
    QTest::addColumn<QString>("text");
    const char* const pc_texts[] = {"2011/04/12 10:15",
                                    "1000/01/01 00:00",
                                    "0999/12/31 23:59",
                                    "0100/01/01 00:00",
                                    "0099/01/01 00:00",
                                    "0000/01/01 00:00",
                                    "7999/12/31 23:59",
                                    "8000/01/01 00:00",
                                    "9999/12/31 23:59",
                                    "10000/01/01 00:00",
                                    "2012/02/29 12:00",
                                    "2011/02/29 12:00",
                                    "2011/13/01 12:00",
                                    "2011/00/01 12:00",
                                    "2011/01/00 12:00",
                                    "2011/04/12 23:59",
                                    "2011/04/12 24:00",
                                    "2011/04/12 10:60",
                                    "2011/04/12 1O:15",
                                    "2011-04-12 10:15",
                                    "2011/04-12 10:15",
                                    "2011/04/12T10:15",
                                    "2011/04/12 10.15",
                                    "2011/4/12 10:15",
                                    "2011/04/12 9:15",
                                    "2011/04/12 10:15:30",
                                    "2011/04/12",
                                    " 2011/04/12 10:15",
                                    "2011/04/12 10:15 ",
                                    "+011/04/12 10:15",
                                    "-011/04/12 10:15",
                                    "2011/+4/12 10:15",
                                    "2011/ 4/12 10:15",
                                    "1582/10/10 10:10",
                                    "２０11/04/12 10:15",
                                    "yesterday at noon",
                                    ""};
    for (size_t i = 0; i < sizeof pc_texts / sizeof *pc_texts; ++i)
        QTest::newRow(*pc_texts[i] ? pc_texts[i] : "empty") << utf8(pc_texts[i]);
}

void tst_TVNC_HistorySetting::timeIsReadAsQtReadsIt()
{
    QFETCH(QString, text);
    const TimeZone zone("UTC0"); // where no time is skipped
    record("a", 10, 15);
    QString name = utf8("dateTime");
    history_->getXMLRootNode()->getXMLNodeChildren().at(0)->getXMLNodeChildByName(name)->setText(text);
    const QDateTime expected = QDateTime::fromString(text, utf8("yyyy/MM/dd hh:mm"));
    TVNS_History out = visit("before", 1, 2);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime.isValid(), expected.isValid());
    QCOMPARE(out.dateTime.date(), expected.date());
    QCOMPARE(out.dateTime.time(), expected.time());
    QCOMPARE(out.dateTime.timeSpec(), expected.timeSpec());
}

void tst_TVNC_HistorySetting::timeIsWrittenAsQtWritesIt_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QTime>("time");
    QTest::newRow("usual") << QDate(2011, 4, 2) << QTime(3, 4);
    QTest::newRow("seconds") << QDate(2011, 4, 12) << QTime(23, 59, 59, 999);
    QTest::newRow("year 999") << QDate(999, 12, 31) << QTime(1, 2);
    QTest::newRow("year 1000") << QDate(1000, 1, 1) << QTime(1, 2);
    QTest::newRow("year 1") << QDate(1, 1, 1) << QTime(1, 2);
    QTest::newRow("year 9999") << QDate(9999, 12, 31) << QTime(1, 2);
    QTest::newRow("year 10000") << QDate(10000, 1, 1) << QTime(1, 2);
    QTest::newRow("before our era") << QDate(-44, 3, 15) << QTime(1, 2);
    QTest::newRow("no date") << QDate() << QTime(1, 2);
    QTest::newRow("no time") << QDate(2011, 4, 12) << QTime(); // midnight for Qt
    QTest::newRow("neither") << QDate() << QTime();
}

void tst_TVNC_HistorySetting::timeIsWrittenAsQtWritesIt()
{
    QFETCH(QDate, date);
    QFETCH(QTime, time);
    const TimeZone zone("UTC0");
    const QDateTime dateTime(date, time);
    TVNS_History history = visit(QString(), QString(), dateTime);
    history_->setHistory(&history);
    QCOMPARE(dateTimeText(0), dateTime.toString(utf8("yyyy/MM/dd hh:mm")));
}

void tst_TVNC_HistorySetting::timeIsStoredAsItStands()
{
    // Also one that is told in UTC: it comes back as the local time of the same figures.
    const TimeZone zone(CENTRAL_EUROPE);
    TVNS_History history = visit(QString(), QString(), QDateTime(QDate(2011, 4, 12), QTime(10, 15), Qt::UTC));
    history_->setHistory(&history);
    QCOMPARE(dateTimeText(0), utf8("2011/04/12 10:15"));
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
}

void tst_TVNC_HistorySetting::skippedTimeKeepsItsTextAndPlace_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("Berlin") << QByteArray("Europe/Berlin");
    QTest::newRow("Central Europe") << QByteArray(CENTRAL_EUROPE);
    QTest::newRow("none skipped") << QByteArray("UTC0");
}

void tst_TVNC_HistorySetting::skippedTimeKeepsItsTextAndPlace()
{
    QFETCH(QByteArray, zone);
    const TimeZone changed(zone);
    // In the night of the change, the clock goes from 01:59 to 03:00.
    loadFrom(pageInfo("a", "2026/03/29 02:30") + pageInfo("b", "2026/03/29 03:20") +
             pageInfo("c", "2026/03/29 01:50") + pageInfo("d", "2026/03/29 02:00") +
             pageInfo("e", "2026/03/29 03:00") + pageInfo("f", "2026/03/29 02:59") +
             pageInfo("g", "2026/03/29 01:20"));
    QCOMPARE(urls(), utf8("b e f a d c g"));
    QCOMPARE(dateTimeText(2), utf8("2026/03/29 02:59"));
    QCOMPARE(dateTimeText(3), utf8("2026/03/29 02:30"));
    QCOMPARE(dateTimeText(4), utf8("2026/03/29 02:00"));

    // The record carries it to the browser and back.
    TVNS_History out;
    QVERIFY(history_->getHistory(3, &out));
    QCOMPARE(out.dateTime.date(), QDate(2026, 3, 29));
    QCOMPARE(out.dateTime.time(), QTime(2, 30));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
    history_->changeHistory(6, out);
    QCOMPARE(dateTimeText(6), utf8("2026/03/29 02:30"));
    TVNS_History copy = out;
    history_->setHistory(&copy);
    QCOMPARE(dateTimeText(0), utf8("2026/03/29 02:30"));
    save();
    QCOMPARE(readFile(path()).count("<dateTime>2026/03/29 02:30</dateTime>"), 3);

    const TVNS_History before = visit(QString(), QString(), at(2026, 3, 29, 1, 59));
    const TVNS_History after = visit(QString(), QString(), at(2026, 3, 29, 3, 0));
    QVERIFY(after < out && !(out < after));
    QVERIFY(out < before && !(before < out));
    QVERIFY(!(out < copy) && !(copy < out));
}

void tst_TVNC_HistorySetting::repeatedHourIsOrderedByTheClock()
{
    // In this night the clock shows 02:00 to 02:59 twice; the file does not tell which one was meant.
    const TimeZone zone(CENTRAL_EUROPE);
    QByteArray records;
    QStringList expected;
    for (int i = 0; i < 60; ++i) {
        const QByteArray minute = QByteArray::number((i * 7) % 60).rightJustified(2, '0');
        // Dates in summer and winter between them, so that conversions would not always guess the same.
        records += pageInfo(minute, "2026/10/25 02:" + minute) +
                   pageInfo("x", i % 2 ? "2025/01/01 12:00" : "2025/07/01 12:00");
        expected.prepend(QString::number(i).rightJustified(2, QLatin1Char('0')));
    }
    loadFrom(records);
    const QStringList sorted = urls().split(utf8(" "));
    QVERIFY(QStringList(sorted.mid(0, 60)) == expected);
}

TLVLIB_TEST_MAIN(tst_TVNC_HistorySetting)
#include "tst_TVNC_HistorySetting.moc"
