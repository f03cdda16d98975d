#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QDir>
#include <QtCore/QPointer>

class tst_TVNC_XMLSetting : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startsWithoutARoot();
    void everyOperationCopesWithoutARoot();
    void destructionLogsAndDefersTheRoot();
    void destructionWithoutARootLogsZero();

    void loadReadsTheFile();
    void loadDefersTheOldRoot();
    void loadOfAMissingFileGivesAnEmptyRoot();
    void loadWithoutAPathKeepsTheDocument();
    void saveWritesTheFile();
    void saveWithoutARootLeavesTheFile();
    void saveWithoutAPathDoesNothing();
    void saveIntoAMissingDirectoryLogs();

    void numbersAreThreeDigits();
    void numberingStopsAt999();
    void numberingDropsOtherAttributes();
    void numberingSkipsNullRecords();
    void numberingFollowsTheOrder();

    void countIsOfReachableNumbers();
    void countAfterADeletion();
    void countTakesTheFirstBearer();
    void countOfRecordsBeyond999();
    void countIsLinear();

    void deletingByNumberRemovesTheRecord();
    void deletingAnAbsentNumberDoesNothing();
    void deletingAllNodesReplacesTheRoot();
    void deletingAllSettingsEmptiesTheRoot();
    void deletingAllSettingsIsLinear();
    void recordThatGoesBeforeItsTurnIsDeletedOnce();
    void recordThatIsPutElsewhereGoesAllTheSame();
    void recordLetGoGoesByItsOwnEvent();
    void recordLetGoMayBeRemovedAndDeleted();
    void recordListedTwiceIsReleasedOnce();
    void nothingIsThrownWhenMemoryIsShort_data();
    void nothingIsThrownWhenMemoryIsShort();
    void loadWithoutMemoryLeavesNoRoot();
    void saveWithoutMemoryIsLogged();
    void rootThatCannotBeCreatedIsNotSaved();

    void lookUpFindsTheFirstBearerOfANumber_data();
    void lookUpFindsTheFirstBearerOfANumber();
    void lookUpSeesChangesThroughEarlierReferences();
    void lookUpByAnotherNameIsIndependent();

    void rootIsCreatedAnew();
    void grandchildIsTheFirstOfTheFirst();
    void childrenAreAddedAtEitherEnd();
    void childWithoutAParentIsDetached();
    void childThatCannotBeCreatedIsLogged();
    void elementIsSetOrAdded();
    void setElementKeepsAttributes();
    void nodesAreCounted();

    void readerEndsWhereAnElementCannotBeCreated();

private:
    TVNC_XMLNode* root() { return setting_->getXMLRootNode(); }
    void fill(int si_count, const char* pc_name = "r");
    void fillNumbered(int si_count);

    Setting* setting_;
    QString id_;
};

void tst_TVNC_XMLSetting::init()
{
    setting_ = new Setting;
    id_ = utf8("id");
    LogRecorder::clear();
}

void tst_TVNC_XMLSetting::cleanup()
{
    delete setting_;
    releaseDeferred();
}

void tst_TVNC_XMLSetting::fill(int si_count, const char* pc_name)
{
    if (!root())
        setting_->createXMLRootNode();
    for (int i = 0; i < si_count; ++i)
        makeNode(root(), pc_name);
}

void tst_TVNC_XMLSetting::fillNumbered(int si_count)
{
    fill(si_count);
    setting_->setIDforChildren(id_);
    LogRecorder::clear();
}

void tst_TVNC_XMLSetting::startsWithoutARoot()
{
    QVERIFY(!root());
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLSetting::everyOperationCopesWithoutARoot()
{
    QString name = utf8("x");
    QString empty;
    QXmlStreamAttributes attributes;
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 0);
    setting_->setIDforChildren(id_);
    setting_->deleteXMLNodeByID(0, id_);
    QVERIFY(!setting_->getGrandchildNode(name, name));
    QVERIFY(!setting_->setElement(root(), name, name, attributes, 0, 0));
    QCOMPARE(LogRecorder::take(), QString());
    setting_->deleteAllSetting();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::deleteRootChildren] 0x0\n"));
    setting_->deleteAllXMLNode();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::deleteAllXMLNode] 0x0\n"));
    QVERIFY(!root());
}

void tst_TVNC_XMLSetting::destructionLogsAndDefersTheRoot()
{
    Setting* pc_setting = new Setting;
    pc_setting->createXMLRootNode();
    QPointer<TVNC_XMLNode> watched(pc_setting->getXMLRootNode());
    LogRecorder::clear();
    delete pc_setting;
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::~TVNC_XMLSetting] 0x*\n"));
    QVERIFY(!watched.isNull());
    releaseDeferred();
    QVERIFY(watched.isNull());
}

void tst_TVNC_XMLSetting::destructionWithoutARootLogsZero()
{
    delete new Setting;
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::~TVNC_XMLSetting] 0x0\n"));
}

void tst_TVNC_XMLSetting::loadReadsTheFile()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, "<list docInfo='1.0'><r id='7'>text</r></list>");
    setting_->load(path);
    QCOMPARE(describe(root()), utf8("list{docInfo=1.0}(r{id=7}'text')")); // not numbered yet
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"));
}

void tst_TVNC_XMLSetting::loadDefersTheOldRoot()
{
    setting_->createXMLRootNode();
    QPointer<TVNC_XMLNode> old(root());
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, "<list/>");
    setting_->load(path);
    QVERIFY(root() != old);
    QVERIFY(!old.isNull()); // still there for those who hold it
    releaseDeferred();
    QVERIFY(old.isNull());
    QCOMPARE(describe(root()), utf8("list"));
}

void tst_TVNC_XMLSetting::loadOfAMissingFileGivesAnEmptyRoot()
{
    TempDir dir;
    QString path = dir.path() + utf8("absent.xml");
    fill(3);
    setting_->load(path);
    QVERIFY(root());
    QCOMPARE(describe(root()), QString());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "2 TVNC_XMLReader::read file not exist!\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"));
}

void tst_TVNC_XMLSetting::loadWithoutAPathKeepsTheDocument()
{
    fill(2);
    TVNC_XMLNode* pc_root = root();
    QString path;
    setting_->load(path);
    QCOMPARE(root(), pc_root);
    QCOMPARE(setting_->getXMLNodeCnt(), 2);
    QCOMPARE(LogRecorder::take(), utf8("2 [TVNC_XMLSetting::load] Path is NULL or empty.\n"));
}

void tst_TVNC_XMLSetting::saveWritesTheFile()
{
    fillNumbered(2);
    QString name = utf8("list");
    root()->setName(name);
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    setting_->save(path);
    QCOMPARE(readFile(path), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<list>\n    <r id=\"000\"/>\n    <r id=\"001\"/>\n</list>\n"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"));
}

void tst_TVNC_XMLSetting::saveWithoutARootLeavesTheFile()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, "as it was");
    setting_->save(path);
    QCOMPARE(readFile(path), QByteArray("as it was"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"));
}

void tst_TVNC_XMLSetting::saveWithoutAPathDoesNothing()
{
    fill(1);
    QString path;
    setting_->save(path);
    QCOMPARE(LogRecorder::take(), utf8("2 [TVNC_XMLSetting::save] Path is NULL or empty.\n"));
}

void tst_TVNC_XMLSetting::saveIntoAMissingDirectoryLogs()
{
    fill(1);
    TempDir dir;
    QString path = dir.path() + utf8("absent/x.xml");
    setting_->save(path);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "2 TVNC_XMLWriter::write file open error!\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"));
}

static QString idOf(TVNC_XMLNode* pc_node)
{
    return pc_node->getAttribute().value(QLatin1String("id")).toString();
}

void tst_TVNC_XMLSetting::numbersAreThreeDigits()
{
    fillNumbered(101);
    const QList<TVNC_XMLNode*> records = root()->getXMLNodeChildren();
    QCOMPARE(idOf(records.at(0)), utf8("000"));
    QCOMPARE(idOf(records.at(9)), utf8("009"));
    QCOMPARE(idOf(records.at(10)), utf8("010"));
    QCOMPARE(idOf(records.at(99)), utf8("099"));
    QCOMPARE(idOf(records.at(100)), utf8("100"));
    QCOMPARE(setting_->getXMLNodeCnt(), 101);
    fill(0);
    QCOMPARE(LogRecorder::take(), QString()); // numbering logs nothing
}

void tst_TVNC_XMLSetting::numberingStopsAt999()
{
    // A file with 1,200 records, the later ones with attributes of their own.
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    QByteArray document = "<list>";
    for (int i = 0; i < 1200; ++i)
        document += i < 1100 ? "<r/>" : "<r x='y'/>";
    writeFile(path, document + "</list>");
    setting_->load(path);
    setting_->setIDforChildren(id_);
    const QList<TVNC_XMLNode*> records = root()->getXMLNodeChildren();
    QCOMPARE(records.size(), 1200);
    QCOMPARE(describe(records.at(998)), utf8("r{id=998}"));
    QCOMPARE(describe(records.at(999)), utf8("r"));
    QCOMPARE(describe(records.at(1199)), utf8("r{x=y}"));
    QString name = utf8("r");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 999);
    QCOMPARE(root()->getXMLNodeChildByID(998, id_), records.at(998));
    QVERIFY(!root()->getXMLNodeChildByID(999, id_));
}

void tst_TVNC_XMLSetting::numberingDropsOtherAttributes()
{
    fill(2);
    addAttribute(root(), "docInfo", utf8("1.0"));
    addAttribute(root()->getXMLNodeChildren().at(0), "extra", utf8("1"));
    addAttribute(root()->getXMLNodeChildren().at(0), "id", utf8("000"));
    addAttribute(makeNode(root()->getXMLNodeChildren().at(1), "inner"), "keeps", utf8("2"));
    setting_->setIDforChildren(id_);
    QCOMPARE(describe(root()), utf8("{docInfo=1.0}(r{id=000},r{id=001}(inner{keeps=2}))"));
}

void tst_TVNC_XMLSetting::numberingSkipsNullRecords()
{
    fill(3);
    root()->getXMLNodeChildren().insert(1, nullptr);
    setting_->setIDforChildren(id_);
    QCOMPARE(describe(root()), utf8("(r{id=000},0,r{id=002},r{id=003})"));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLSetting::setIDforChildren] 0x* Why Pass??\n"));
}

void tst_TVNC_XMLSetting::numberingFollowsTheOrder()
{
    fill(1, "a");
    fill(1, "b");
    setting_->setIDforChildren(id_);
    TVNC_XMLNode* pc_first = root()->getXMLNodeChildren().at(0);
    char c_append = 0;
    root()->addXMLNode(pc_first, c_append);
    QCOMPARE(describe(root()), utf8("(b{id=001},a{id=000})"));
    setting_->setIDforChildren(id_);
    QCOMPARE(describe(root()), utf8("(b{id=000},a{id=001})"));
}

void tst_TVNC_XMLSetting::countIsOfReachableNumbers()
{
    fill(5);
    QString name = utf8("r");
    QString other = utf8("other");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 0); // no numbers yet
    setting_->setIDforChildren(id_);
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 5);
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, other), 0);
    root()->getXMLNodeChildren().at(2)->setName(other);
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 4); // the numbers behind a gap count
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, other), 1);
    QString no = utf8("no");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(no, name), 0);
}

void tst_TVNC_XMLSetting::countAfterADeletion()
{
    fillNumbered(10);
    QString name = utf8("r");
    setting_->deleteXMLNodeByID(5, id_);
    QCOMPARE(setting_->getXMLNodeCnt(), 9);
    // Number 9 is now at or above the number of records.
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 8);
    setting_->setIDforChildren(id_);
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 9);
}

void tst_TVNC_XMLSetting::countTakesTheFirstBearer()
{
    fill(1, "other");
    fill(2, "r");
    const QList<TVNC_XMLNode*> records = root()->getXMLNodeChildren();
    addAttribute(records.at(0), "id", utf8("1"));
    addAttribute(records.at(1), "id", utf8("001"));
    addAttribute(records.at(2), "id", utf8("-1"));
    QString name = utf8("r");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 0);
    QString other = utf8("other");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, other), 1);
}

void tst_TVNC_XMLSetting::countOfRecordsBeyond999()
{
    // Records from position 999 on keep the numbers of a file that has them.
    fill(1200);
    const QList<TVNC_XMLNode*> records = root()->getXMLNodeChildren();
    for (int i = 0; i < 1200; ++i)
        addAttribute(records.at(i), "id", QString::number(i));
    setting_->setIDforChildren(id_);
    QString name = utf8("r");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 1200);
    QCOMPARE(root()->getXMLNodeChildByID(1199, id_), records.at(1199));
}

void tst_TVNC_XMLSetting::countIsLinear()
{
    // Looking every number up would take hours.
    fill(300000);
    setting_->setIDforChildren(id_);
    QString name = utf8("r");
    QCOMPARE(setting_->getXMLRootNodeChildCntByName(id_, name), 999);
}

void tst_TVNC_XMLSetting::deletingByNumberRemovesTheRecord()
{
    fillNumbered(3);
    QPointer<TVNC_XMLNode> second(root()->getXMLNodeChildren().at(1));
    makeNode(second, "inner");
    setting_->deleteXMLNodeByID(1, id_);
    QCOMPARE(describe(root()), utf8("(r{id=000},r{id=002})")); // not renumbered
    QVERIFY(!second.isNull());
    QVERIFY(!second->getXMLNodeParent());
    releaseDeferred();
    QVERIFY(second.isNull());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLSetting::deletingAnAbsentNumberDoesNothing()
{
    fillNumbered(2);
    setting_->deleteXMLNodeByID(2, id_);
    setting_->deleteXMLNodeByID(-1, id_);
    QString no = utf8("no");
    setting_->deleteXMLNodeByID(0, no);
    QCOMPARE(setting_->getXMLNodeCnt(), 2);
}

void tst_TVNC_XMLSetting::deletingAllNodesReplacesTheRoot()
{
    fillNumbered(2);
    QString name = utf8("list");
    root()->setName(name);
    QPointer<TVNC_XMLNode> old(root());
    setting_->deleteAllXMLNode();
    QVERIFY(root());
    QVERIFY(root() != old);
    QCOMPARE(describe(root()), QString());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
    QVERIFY(!old.isNull());
    releaseDeferred();
    QVERIFY(old.isNull());
}

void tst_TVNC_XMLSetting::deletingAllSettingsEmptiesTheRoot()
{
    fillNumbered(3);
    QString name = utf8("list");
    root()->setName(name);
    addAttribute(root(), "docInfo", utf8("1.0"));
    root()->getXMLNodeChildren().insert(1, nullptr);
    TVNC_XMLNode* pc_root = root();
    QList<QPointer<TVNC_XMLNode>> records;
    foreach (TVNC_XMLNode* pc_record, root()->getXMLNodeChildren()) {
        if (pc_record)
            records << QPointer<TVNC_XMLNode>(pc_record);
    }
    setting_->deleteAllSetting();
    QCOMPARE(root(), pc_root);
    QCOMPARE(describe(root()), utf8("list{docInfo=1.0}(0)")); // a null record stays
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "1 [TVNC_XMLSetting::deleteRootChildren] 0x* Why Pass??\n"));
    QCOMPARE(records.size(), 3);
    foreach (const QPointer<TVNC_XMLNode>& record, records) {
        QVERIFY(!record.isNull());
        QVERIFY(!record->getXMLNodeParent());
    }
    releaseDeferred();
    foreach (const QPointer<TVNC_XMLNode>& record, records)
        QVERIFY(record.isNull());
}

void tst_TVNC_XMLSetting::deletingAllSettingsIsLinear()
{
    fill(300000);
    setting_->deleteAllSetting();
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
}

void tst_TVNC_XMLSetting::recordThatGoesBeforeItsTurnIsDeletedOnce()
{
    fillNumbered(3);
    QPointer<TVNC_XMLNode> first = root()->getXMLNodeChildByID(0, id_);
    QPointer<TVNC_XMLNode> second = root()->getXMLNodeChildByID(1, id_);
    setting_->deleteAllSetting();
    delete second.data();
    QVERIFY(!first.isNull());
    releaseDeferred();
    QVERIFY(first.isNull());
}

void tst_TVNC_XMLSetting::recordThatIsPutElsewhereGoesAllTheSame()
{
    fillNumbered(3);
    QPointer<TVNC_XMLNode> record = root()->getXMLNodeChildByID(1, id_);
    setting_->deleteAllSetting();
    TVNC_XMLNode other(nullptr, 0);
    char c_last = 0;
    other.addXMLNode(record.data(), c_last);
    QCOMPARE(record->getXMLNodeParent(), &other);
    releaseDeferred();
    QVERIFY(record.isNull());
    QCOMPARE(describe(&other), QString());
}

// That each goes by itself is promised. This is the one test that knows the event.
void tst_TVNC_XMLSetting::recordLetGoGoesByItsOwnEvent()
{
    fillNumbered(3);
    QPointer<TVNC_XMLNode> first = root()->getXMLNodeChildByID(0, id_);
    QPointer<TVNC_XMLNode> second = root()->getXMLNodeChildByID(1, id_);
    QPointer<TVNC_XMLNode> third = root()->getXMLNodeChildByID(2, id_);
    setting_->deleteAllSetting();
    QCoreApplication::sendPostedEvents(second, QEvent::DeferredDelete);
    QVERIFY(!first.isNull() && second.isNull() && !third.isNull());
    QCoreApplication::sendPostedEvents(third, QEvent::DeferredDelete);
    QVERIFY(!first.isNull() && third.isNull());
    releaseDeferred();
    QVERIFY(first.isNull());
}

void tst_TVNC_XMLSetting::recordLetGoMayBeRemovedAndDeleted()
{
    fillNumbered(4);
    TVNC_XMLNode* records[4];
    for (int i = 0; i < 4; ++i)
        records[i] = root()->getXMLNodeChildByID(i, id_);
    setting_->deleteAllSetting();
    TVNC_XMLNode stranger(nullptr, 0);
    TVNC_XMLNode* const pc_stranger = new TVNC_XMLNode(nullptr, 0);
    char c_last = 0;
    stranger.removeXMLNode(records[0]);
    root()->removeXMLNode(records[1]);
    pc_stranger->addXMLNode(records[2], c_last);
    stranger.addXMLNode(records[3], c_last);
    delete records[0];
    delete records[1];
    delete pc_stranger;
    stranger.removeXMLNode(records[3]);
    releaseDeferred();
    QCOMPARE(describe(&stranger), QString());
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
}

/// A record that counts how often the event loop tells it to go, and stays.
struct CountingRecord : TVNC_XMLNode
{
    explicit CountingRecord(TVNC_XMLNode* pc_parent) : TVNC_XMLNode(pc_parent, 0), si_releases(0) {}
    bool event(QEvent* pc_event) override
    {
        if (pc_event->type() != QEvent::DeferredDelete)
            return TVNC_XMLNode::event(pc_event);
        ++si_releases;
        return true;
    }

    int si_releases;
};

void tst_TVNC_XMLSetting::recordListedTwiceIsReleasedOnce()
{
    setting_->createXMLRootNode();
    QScopedPointer<CountingRecord> twice(new CountingRecord(root()));
    QScopedPointer<CountingRecord> once(new CountingRecord(root()));
    root()->getXMLNodeChildren().append(twice.data());
    setting_->deleteAllSetting();
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
    QVERIFY(!twice->getXMLNodeParent() && !once->getXMLNodeParent());
    QCOMPARE(twice->si_releases, 0);
    QCOMPARE(once->si_releases, 0);
    releaseDeferred();
    QCOMPARE(twice->si_releases, 1);
    QCOMPARE(once->si_releases, 1);
}

void tst_TVNC_XMLSetting::nothingIsThrownWhenMemoryIsShort_data()
{
    QTest::addColumn<QString>("operation");
#ifndef __SANITIZE_ADDRESS__ // Qt's stream reader leaks memory of its own when it can only be made in part
    QTest::newRow("load") << utf8("load");
#endif
    QTest::newRow("save") << utf8("save");
    QTest::newRow("create the root") << utf8("create");
    QTest::newRow("delete all nodes") << utf8("nodes");
    QTest::newRow("delete all settings") << utf8("settings");
    QTest::newRow("delete by number") << utf8("number");
    QTest::newRow("set an element") << utf8("element");
}

void tst_TVNC_XMLSetting::nothingIsThrownWhenMemoryIsShort()
{
    QFETCH(QString, operation);
    if (qVersion()[0] == '6')
        QSKIP("the codecs of Qt 6 themselves do not survive it", SkipAll);
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    QString other = dir.path() + utf8("y.xml");
    QString name = utf8("r");
    writeFile(path, "<list><r id='000'>&lt;</r><r id='001'/></list>"); // not in the library's own form
    bool b_done = false;
    int si_failing = 0;
    while (!b_done) {
        setting_->load(path);
        setting_->setIDforChildren(id_);
        const QPointer<TVNC_XMLNode> oldRoot(root());
        const QPointer<TVNC_XMLNode> records[] = {root()->getXMLNodeChildByID(0, id_),
                                                  root()->getXMLNodeChildByID(1, id_)};
        failingObject = ++si_failing;
        if (operation == utf8("load"))
            setting_->load(path);
        else if (operation == utf8("save"))
            setting_->save(other);
        else if (operation == utf8("create"))
            setting_->createXMLRootNode();
        else if (operation == utf8("nodes"))
            setting_->deleteAllXMLNode();
        else if (operation == utf8("settings"))
            setting_->deleteAllSetting();
        else if (operation == utf8("number"))
            setting_->deleteXMLNodeByID(1, id_);
        else
            setting_->setElement(root(), name, operation, QXmlStreamAttributes(), 0, 0);
        b_done = failingObject > 1; // there was enough
        failingObject = 0;
        // What is there can be used, and what went can go.
        setting_->setIDforChildren(id_);
        setting_->deleteXMLNodeByID(0, id_);
        setting_->getXMLRootNodeChildCntByName(id_, name);
        freeLetGo(records[0], root());
        freeLetGo(records[1], root());
        freeLetGo(oldRoot, root());
        QVERIFY(si_failing < 1000);
    }
    QVERIFY(operation == utf8("element") || si_failing > 1);
}

void tst_TVNC_XMLSetting::loadWithoutMemoryLeavesNoRoot()
{
    fillNumbered(1);
    const QPointer<TVNC_XMLNode> old(root());
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, "<list><r/></list>");
    failingObject = 1;
    setting_->load(path);
    failingObject = 0;
    QVERIFY(!root());
    freeLetGo(old, root());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "1 [TVNC_XMLSetting::load] Fail\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"));
    setting_->save(path); // so that nothing takes the file's place
    QCOMPARE(readFile(path), QByteArray("<list><r/></list>"));
}

// A document that only the general reader takes: an empty root in the place of its own would be saved over
// it.
void tst_TVNC_XMLSetting::saveWithoutMemoryIsLogged()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    setting_->createXMLRootNode();
    failingObject = 1;
    setting_->save(path);
    failingObject = 0;
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "1 [TVNC_XMLSetting::save] Fail\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"));
    QVERIFY(!QFile::exists(path));
}

void tst_TVNC_XMLSetting::rootThatCannotBeCreatedIsNotSaved()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    const QByteArray document("<list><!-- a comment --><r/></list>");
    writeFile(path, document);
    failingNode = 1;
    setting_->load(path);
    QCOMPARE(failingNode, 0);
    QVERIFY(!root());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "1 [TVNC_XMLSetting::load] Fail\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"));
    setting_->save(path);
    QCOMPARE(readFile(path), document);

    failingNode = 1;
    {
        TVNC_XMLReader reader;
        QVERIFY(!reader.read(path));
        QCOMPARE(failingNode, 0);
        QCOMPARE(reader.error(), QXmlStreamReader::CustomError);
    }
    setting_->load(path);
    QCOMPARE(describe(root()), utf8("list(r)"));
}

// Numbered lists are looked up by position. Whatever changes the numbers behind the setting's back must still
// be seen: every row does so to three records, after which number 2 is where the row says; -1 is nowhere.
void tst_TVNC_XMLSetting::lookUpFindsTheFirstBearerOfANumber_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("position");
    QTest::newRow("none") << utf8("none") << 2;
    QTest::newRow("attributes of a record") << utf8("attributes") << 0;
    QTest::newRow("set of a record") << utf8("set") << 0;
    QTest::newRow("record in front") << utf8("front") << 0;
    QTest::newRow("record behind") << utf8("behind") << 2;
    QTest::newRow("record gone") << utf8("gone") << 1;
    QTest::newRow("this record gone") << utf8("this gone") << -1;
    QTest::newRow("order") << utf8("order") << 1;
    QTest::newRow("list") << utf8("list") << -1;
}

void tst_TVNC_XMLSetting::lookUpFindsTheFirstBearerOfANumber()
{
    QFETCH(QString, change);
    QFETCH(int, position);
    fillNumbered(3);
    QXmlStreamAttributes two;
    two.append(id_, utf8("2"));
    TVNC_XMLNode* const pc_first = root()->getXMLNodeChildByID(0, id_);
    if (change == utf8("attributes"))
        pc_first->getAttribute() = two;
    else if (change == utf8("set"))
        pc_first->setAttribute(two);
    else if (change == utf8("front") || change == utf8("behind"))
        (new TVNC_XMLNode(root(), change == utf8("front") ? 1 : 0))->setAttribute(two);
    else if (change == utf8("gone"))
        delete pc_first;
    else if (change == utf8("this gone"))
        delete root()->getXMLNodeChildByID(2, id_);
    else if (change == utf8("order"))
        root()->getXMLNodeChildren().move(2, 1);
    else if (change == utf8("list"))
        delete root()->getXMLNodeChildren().takeLast();
    TVNC_XMLNode* const pc_found = root()->getXMLNodeChildByID(2, id_);
    QCOMPARE(pc_found ? static_cast<int>(root()->getXMLNodeChildren().indexOf(pc_found)) : -1, position);
    // Numbered again, they are in order.
    setting_->setIDforChildren(id_);
    QCOMPARE(root()->getXMLNodeChildByID(1, id_), root()->getXMLNodeChildren().at(1));
    QString name = utf8("r");
    QVERIFY(setting_->getXMLRootNodeChildCntByName(id_, name) >= 2);
}

void tst_TVNC_XMLSetting::lookUpSeesChangesThroughEarlierReferences()
{
    fill(3);
    QXmlStreamAttributes& attributes = root()->getXMLNodeChildren().at(0)->getAttribute();
    setting_->setIDforChildren(id_);
    TVNC_XMLNode* const pc_first = root()->getXMLNodeChildByID(0, id_);
    QVERIFY(root()->getXMLNodeChildByID(2, id_) != pc_first);
    attributes.clear();
    attributes.append(id_, utf8("002"));
    QCOMPARE(root()->getXMLNodeChildByID(2, id_), pc_first);

    setting_->createXMLRootNode();
    fill(3);
    QList<TVNC_XMLNode*>& children = root()->getXMLNodeChildren();
    setting_->setIDforChildren(id_);
    TVNC_XMLNode* const pc_third = root()->getXMLNodeChildByID(2, id_);
    children.move(2, 0);
    QCOMPARE(root()->getXMLNodeChildByID(2, id_), pc_third);
    QCOMPARE(root()->getXMLNodeChildByID(0, id_), children.at(1));
}

void tst_TVNC_XMLSetting::lookUpByAnotherNameIsIndependent()
{
    fillNumbered(3);
    QString other = utf8("no");
    QVERIFY(!root()->getXMLNodeChildByID(1, other));
    setting_->setIDforChildren(other);
    QVERIFY(!root()->getXMLNodeChildByID(1, id_));
    QCOMPARE(root()->getXMLNodeChildByID(1, other), root()->getXMLNodeChildren().at(1));
}

void tst_TVNC_XMLSetting::rootIsCreatedAnew()
{
    setting_->createXMLRootNode();
    QPointer<TVNC_XMLNode> old(root());
    QVERIFY(!old.isNull());
    fill(1);
    setting_->createXMLRootNode();
    QVERIFY(root() != old);
    QCOMPARE(describe(root()), QString());
    releaseDeferred();
    QVERIFY(old.isNull());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLSetting::grandchildIsTheFirstOfTheFirst()
{
    setting_->createXMLRootNode();
    makeNode(makeNode(root(), "group"), "other");
    TVNC_XMLNode* pc_second = makeNode(root(), "group");
    makeNode(pc_second, "leaf");
    TVNC_XMLNode* pc_cookie = makeNode(root(), "cookie");
    TVNC_XMLNode* pc_leaf = makeNode(pc_cookie, "leaf");
    makeNode(pc_cookie, "leaf");
    QCOMPARE(setting_->getGrandchildNode(utf8("cookie"), utf8("leaf")), pc_leaf);
    // Only the first group of a name is looked into.
    QVERIFY(!setting_->getGrandchildNode(utf8("group"), utf8("leaf")));
    QVERIFY(!setting_->getGrandchildNode(utf8("absent"), utf8("leaf")));
}

void tst_TVNC_XMLSetting::childrenAreAddedAtEitherEnd()
{
    setting_->createXMLRootNode();
    QString name = utf8("r");
    QString one = utf8("one");
    QString two = utf8("two");
    QString three = utf8("three");
    char c_text = 0;
    char c_cdata = 1;
    QXmlStreamAttributes none;
    QXmlStreamAttributes some;
    some.append(utf8("a"), utf8("1"));
    TVNC_XMLNode* pc_one = setting_->addXMLChild(root(), name, one, c_text, none, 0);
    setting_->addXMLChild(root(), name, two, c_cdata, some, 0);
    setting_->addXMLChild(root(), name, three, c_text, none, 1);
    QCOMPARE(describe(root()), utf8("(r'three',r'one',r{a=1} cdata'two')"));
    QCOMPARE(pc_one->getXMLNodeParent(), root());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLSetting::childWithoutAParentIsDetached()
{
    setting_->createXMLRootNode();
    QString name = utf8("r");
    QString text = utf8("x");
    char c_text = 0;
    QXmlStreamAttributes none;
    QScopedPointer<TVNC_XMLNode> node(setting_->addXMLChild(nullptr, name, text, c_text, none, 1));
    QCOMPARE(describe(node.data()), utf8("r'x'"));
    QVERIFY(!node->getXMLNodeParent());
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
}

void tst_TVNC_XMLSetting::childThatCannotBeCreatedIsLogged()
{
    setting_->createXMLRootNode();
    QString name = utf8("r");
    QString text = utf8("x");
    char c_text = 0;
    QXmlStreamAttributes none;
    failingNode = 1;
    QVERIFY(!setting_->addXMLChild(root(), name, text, c_text, none, 0));
    failingNode = 1;
    QVERIFY(!setting_->setElement(root(), name, text, none, 0, 0));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLSetting::addXMLChild] Fail\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
    QCOMPARE(setting_->getXMLNodeCnt(), 0);
}

void tst_TVNC_XMLSetting::elementIsSetOrAdded()
{
    setting_->createXMLRootNode();
    QXmlStreamAttributes some;
    some.append(utf8("a"), utf8("1"));
    TVNC_XMLNode* pc_first = setting_->setElement(root(), utf8("x"), utf8("one"), some, 0, 0);
    QCOMPARE(describe(root()), utf8("(x{a=1}'one')"));
    setting_->setElement(root(), utf8("y"), utf8("front"), some, 1, 1);
    QCOMPARE(describe(root()), utf8("(y{a=1} cdata'front',x{a=1}'one')"));
    makeNode(root(), "x", "second");
    QCOMPARE(setting_->setElement(root(), utf8("x"), utf8("two"), some, 1, 1), pc_first);
    QCOMPARE(describe(root()), utf8("(y{a=1} cdata'front',x{a=1} cdata'two',x'second')"));
    QVERIFY(!setting_->setElement(nullptr, utf8("x"), utf8("z"), some, 0, 0));
}

void tst_TVNC_XMLSetting::setElementKeepsAttributes()
{
    setting_->createXMLRootNode();
    addAttribute(makeNode(root(), "x", "old"), "a", utf8("1"));
    QXmlStreamAttributes other;
    other.append(utf8("b"), utf8("2"));
    setting_->setElement(root(), utf8("x"), utf8("new"), other, 0, 0);
    QCOMPARE(describe(root()), utf8("(x{a=1}'new')"));
}

void tst_TVNC_XMLSetting::nodesAreCounted()
{
    fill(1005);
    QCOMPARE(setting_->getXMLNodeCnt(), 1005);
    root()->getXMLNodeChildren().append(nullptr);
    QCOMPARE(setting_->getXMLNodeCnt(), 1006);
}

void tst_TVNC_XMLSetting::readerEndsWhereAnElementCannotBeCreated()
{
    const QByteArray document("<a><b><c/></b><d/></a>");
    {
        TVNC_XMLReader reader;
        reader.addData(document);
        reader.readNextStartElement();
        failingNode = 1;
        QVERIFY(!reader.readXMLNode(nullptr));
        QCOMPARE(reader.error(), QXmlStreamReader::CustomError);
    }
    {
        TVNC_XMLReader reader;
        reader.addData(document);
        reader.readNextStartElement();
        failingNode = 3;
        QScopedPointer<TVNC_XMLNode> node(reader.readXMLNode(nullptr));
        QCOMPARE(describe(node.data()), utf8("a(b)"));
        QCOMPARE(reader.error(), QXmlStreamReader::CustomError);
    }
    {
        TVNC_XMLReader reader;
        reader.addData(document);
        reader.readNextStartElement();
        failingNode = 2;
        QScopedPointer<TVNC_XMLNode> node(reader.readXMLNode(nullptr));
        QCOMPARE(describe(node.data()), utf8("a"));
        QCOMPARE(reader.error(), QXmlStreamReader::CustomError);
    }
    failingNode = 0;
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLSetting)
#include "tst_TVNC_XMLSetting.moc"
