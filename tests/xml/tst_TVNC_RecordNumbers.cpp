#include "platform/liblog.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <QtCore/QThread>

/// What this program's own system log does with each message while it is set: it uses the library itself.
static TVNC_XMLSetting* pc_logsOwn = nullptr;

int LIBF_WriteSystemLog(int, int, int, const char*, unsigned short*)
{
    if (!pc_logsOwn)
        return 0;
    TVNC_XMLSetting* const pc_own = pc_logsOwn;
    pc_logsOwn = nullptr;
    QString path = utf8("/nowhere/x.xml");
    QString id = utf8("id");
    pc_own->load(path);
    makeNode(pc_own->getXMLRootNode(), "own");
    pc_own->setIDforChildren(id);
    return 0;
}

/// What numbering and looking up cost, and that records which share an attribute set stay independent.
class tst_TVNC_RecordNumbers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void numberingAgainAllocatesNothing();
    void numbersReadFromAFileAreKeptWithoutAllocating();
    void lookingUpAllocatesNothing();
    void recordsShareTheirNumbers();
    void changingOneRecordLeavesTheOthers();
    void attributeNamesMayAlternate();
    void nearlyRightAttributesAreReplaced_data();
    void nearlyRightAttributesAreReplaced();
    void treesOfDifferentThreadsMayBeNumberedAtOnce();
    void theLogMayLoadAndNumber();

private:
    void fill(int si_count);
    TVNC_XMLNode* record(int i) { return setting_->getXMLRootNode()->getXMLNodeChildren().at(i); }

    Setting* setting_;
    QString id_;
};

void tst_TVNC_RecordNumbers::init()
{
    setting_ = new Setting;
    setting_->createXMLRootNode();
    id_ = utf8("id");
}

void tst_TVNC_RecordNumbers::cleanup()
{
    delete setting_;
    releaseDeferred();
}

void tst_TVNC_RecordNumbers::fill(int si_count)
{
    for (int i = 0; i < si_count; ++i)
        makeNode(setting_->getXMLRootNode(), "font");
}

void tst_TVNC_RecordNumbers::numberingAgainAllocatesNothing()
{
    if (!CAN_COUNT_ALLOCATIONS)
        QSKIP("allocations cannot be counted here", SkipAll);
    fill(999);
    setting_->setIDforChildren(id_);
    long before = allocationCount;
    setting_->setIDforChildren(id_);
    QVERIFY(allocationCount == before);

    // After an insertion at the front every record moves to a number that some record had already.
    new TVNC_XMLNode(setting_->getXMLRootNode(), 1);
    before = allocationCount;
    setting_->setIDforChildren(id_);
    QVERIFY(allocationCount == before);
    QCOMPARE(record(998)->getAttribute().value(id_).toString(), utf8("998"));
}

void tst_TVNC_RecordNumbers::numbersReadFromAFileAreKeptWithoutAllocating()
{
    if (!CAN_COUNT_ALLOCATIONS)
        QSKIP("allocations cannot be counted here", SkipAll);
    // Under a name that was never numbered in this process, so that no set is there to share yet.
    QString attribute = utf8("freshName");
    setting_->setIDforChildren(attribute);
    fill(100);
    for (int i = 0; i < 100; ++i)
        addAttribute(record(i), "freshName", QString::fromLatin1("%1").arg(i, 3, 10, QLatin1Char('0')));
    const long before = allocationCount;
    setting_->setIDforChildren(attribute);
    QVERIFY(allocationCount == before);
    QCOMPARE(record(42)->getAttribute().value(attribute).toString(), utf8("042"));
}

void tst_TVNC_RecordNumbers::lookingUpAllocatesNothing()
{
    if (!CAN_COUNT_ALLOCATIONS)
        QSKIP("allocations cannot be counted here", SkipAll);
    fill(999);
    setting_->setIDforChildren(id_);
    TVNC_XMLNode* pc_root = setting_->getXMLRootNode();
    const long before = allocationCount;
    TVNC_XMLNode* pc_last = pc_root->getXMLNodeChildByID(998, id_);
    TVNC_XMLNode* pc_absent = pc_root->getXMLNodeChildByID(999, id_);
    QVERIFY(allocationCount == before);
    QCOMPARE(pc_last, record(998));
    QVERIFY(!pc_absent);
}

void tst_TVNC_RecordNumbers::recordsShareTheirNumbers()
{
    fill(10);
    setting_->setIDforChildren(id_);
    TVNC_XMLSetting other;
    other.createXMLRootNode();
    for (int i = 0; i < 10; ++i)
        makeNode(other.getXMLRootNode(), "x");
    other.setIDforChildren(id_);
    for (int i = 0; i < 10; ++i) {
        const QXmlStreamAttributes& mine = record(i)->getAttribute();
        const QXmlStreamAttributes& theirs =
            other.getXMLRootNode()->getXMLNodeChildren().at(i)->getAttribute();
        QVERIFY(mine.constData() == theirs.constData());
    }
}

void tst_TVNC_RecordNumbers::changingOneRecordLeavesTheOthers()
{
    fill(3);
    setting_->setIDforChildren(id_);
    TVNC_XMLSetting other;
    other.createXMLRootNode();
    TVNC_XMLNode* pc_theirs = makeNode(other.getXMLRootNode(), "x");
    other.setIDforChildren(id_);

    record(0)->getAttribute().append(utf8("extra"), utf8("1"));
    record(1)->getAttribute().clear();
    QCOMPARE(describe(pc_theirs), utf8("x{id=000}"));
    QCOMPARE(describe(setting_->getXMLRootNode()), utf8("(font{id=000 extra=1},font,font{id=002})"));
    setting_->setIDforChildren(id_);
    QCOMPARE(describe(setting_->getXMLRootNode()), utf8("(font{id=000},font{id=001},font{id=002})"));
}

void tst_TVNC_RecordNumbers::attributeNamesMayAlternate()
{
    fill(2);
    QString other = utf8("no");
    for (int i = 0; i < 3; ++i) {
        setting_->setIDforChildren(id_);
        QCOMPARE(describe(setting_->getXMLRootNode()), utf8("(font{id=000},font{id=001})"));
        setting_->setIDforChildren(other);
        QCOMPARE(describe(setting_->getXMLRootNode()), utf8("(font{no=000},font{no=001})"));
    }
}

void tst_TVNC_RecordNumbers::nearlyRightAttributesAreReplaced_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("one digit") << utf8("id") << utf8("0");
    QTest::newRow("two digits") << utf8("id") << utf8("00");
    QTest::newRow("four digits") << utf8("id") << utf8("0000");
    QTest::newRow("blank") << utf8("id") << utf8(" 00");
    QTest::newRow("other number") << utf8("id") << utf8("001");
    QTest::newRow("other case") << utf8("ID") << utf8("000");
    QTest::newRow("other digits") << utf8("id") << utf8("٠٠٠");
    QTest::newRow("empty") << utf8("id") << utf8("");
}

void tst_TVNC_RecordNumbers::nearlyRightAttributesAreReplaced()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    fill(1);
    record(0)->getAttribute().append(name, value);
    setting_->setIDforChildren(id_);
    QCOMPARE(describe(record(0)), utf8("font{id=000}"));
}

class Numberer : public QThread
{
public:
    Numberer() : wrong(0), si_step(0) {}
    void run() override
    {
        QString attribute = si_step % 2 ? utf8("id") : utf8("no");
        TVNC_XMLSetting setting;
        setting.createXMLRootNode();
        for (int i = 0; i < 200; ++i) {
            makeNode(setting.getXMLRootNode(), "x");
            setting.setIDforChildren(attribute);
            TVNC_XMLNode* pc_last = setting.getXMLRootNode()->getXMLNodeChildren().last();
            if (setting.getXMLRootNode()->getXMLNodeChildByID(i, attribute) != pc_last)
                ++wrong;
        }
    }
    int wrong;
    int si_step;
};

void tst_TVNC_RecordNumbers::treesOfDifferentThreadsMayBeNumberedAtOnce()
{
    Numberer numberers[4];
    for (int i = 0; i < 4; ++i) {
        numberers[i].si_step = i;
        numberers[i].start();
    }
    for (int i = 0; i < 4; ++i) {
        numberers[i].wait();
        QCOMPARE(numberers[i].wrong, 0);
    }
}

void tst_TVNC_RecordNumbers::theLogMayLoadAndNumber()
{
    Setting own;
    fill(2);
    setting_->getXMLRootNode()->getXMLNodeChildren().insert(1, nullptr); // its number is logged
    pc_logsOwn = &own;
    setting_->setIDforChildren(id_);
    QVERIFY(!pc_logsOwn);
    QCOMPARE(describe(own.getXMLRootNode()), utf8("(own{id=000})"));
    QCOMPARE(describe(setting_->getXMLRootNode()), utf8("(font{id=000},0,font{id=002})"));

    pc_logsOwn = &own;
    QString path = utf8("/nowhere/y.xml");
    setting_->load(path);
    QVERIFY(!pc_logsOwn);
    QCOMPARE(describe(own.getXMLRootNode()), utf8("(own{id=000})"));
}

TLVLIB_TEST_MAIN(tst_TVNC_RecordNumbers)
#include "tst_TVNC_RecordNumbers.moc"
