#include "platform/liblog.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"

#include <QtCore/QThread>

/// What this program's own system log does with each message while it is set: it uses the library itself.
static TVNC_XMLSetting* pc_logsOwn = nullptr;

/// Where it notes the messages, while it is set.
static QStringList* pc_messages = nullptr;

int LIBF_WriteSystemLog(int, int, int, const char* pc_text, unsigned short*)
{
    if (pc_messages)
        pc_messages->append(utf8(pc_text));
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

namespace {

/// A change of a list of three records, and what becomes of its mark.
struct Change
{
    const char* pc_name;
    void (*make)(TVNC_XMLNode& list);
    bool b_marked;      ///< the mark stays
    bool b_markedAgain; ///< numbering gives it again
};

TVNC_XMLNode& second(TVNC_XMLNode& list)
{
    return *TVNC_NodeAccess::children(list).at(1);
}

void add(TVNC_XMLNode& list, TVNC_XMLNode* pc_child, char c_prepend)
{
    list.addXMLNode(pc_child, c_prepend);
}

const Change CHANGES[] = {
    {"none", [](TVNC_XMLNode&) {}, true, true},
    {"append", [](TVNC_XMLNode& list) { new TVNC_XMLNode(&list, 0); }, false, true},
    {"prepend", [](TVNC_XMLNode& list) { new TVNC_XMLNode(&list, 1); }, false, true},
    {"append a detached one", [](TVNC_XMLNode& list) { add(list, new TVNC_XMLNode(nullptr, 0), 0); }, false,
     true},
    {"move", [](TVNC_XMLNode& list) { add(list, &second(list), 1); }, false, true},
    {"remove",
     [](TVNC_XMLNode& list) {
         TVNC_XMLNode* const pc_removed = &second(list);
         list.removeXMLNode(pc_removed);
         delete pc_removed;
     },
     false, true},
    {"remove through another node",
     [](TVNC_XMLNode& list) {
         TVNC_XMLNode other(nullptr, 0);
         other.removeXMLNode(&second(list));
         delete TVNC_NodeAccess::children(list).takeAt(1); // of which the list heard no more
     },
     false, true},
    {"remove after another node did",
     [](TVNC_XMLNode& list) {
         TVNC_XMLNode* const pc_removed = &second(list);
         TVNC_XMLNode other(nullptr, 0);
         other.removeXMLNode(pc_removed);
         TVNC_RecordNumbers::number(list, utf8("id"));
         list.removeXMLNode(pc_removed);
         delete pc_removed;
     },
     false, true},
    {"to another list",
     [](TVNC_XMLNode& list) {
         TVNC_XMLNode other(nullptr, 0);
         add(other, &second(list), 0);
     },
     false, true},
    {"delete", [](TVNC_XMLNode& list) { delete &second(list); }, false, true},
    {"set attributes",
     [](TVNC_XMLNode& list) {
         QXmlStreamAttributes none;
         second(list).setAttribute(none);
     },
     false, true},
    {"list in foreign hands", [](TVNC_XMLNode& list) { list.getXMLNodeChildren(); }, false, false},
    {"attributes in foreign hands", [](TVNC_XMLNode& list) { second(list).getAttribute(); }, false, false},
    // A node has one state for both.
    {"attributes of the list's node", [](TVNC_XMLNode& list) { list.getAttribute(); }, false, false},
    {"list of a record", [](TVNC_XMLNode& list) { second(list).getXMLNodeChildren(); }, false, false},
    // What says nothing of numbers.
    {"name and text",
     [](TVNC_XMLNode& list) {
         QString x = utf8("x");
         second(list).setName(x);
         second(list).setText(x);
         second(list).getName() = x;
         second(list).getText() = x;
     },
     true, true},
    {"search",
     [](TVNC_XMLNode& list) {
         QString name = utf8("x");
         list.getXMLNodeChildByName(name);
         list.getXMLNodeChildByID(1, TVNC_RecordNumbers::attributeName());
     },
     true, true},
    {"below a record", [](TVNC_XMLNode& list) { new TVNC_XMLNode(&second(list), 0); }, true, true},
};
const int CHANGE_COUNT = sizeof CHANGES / sizeof *CHANGES;

/// In a list of nodes, what was not found.
TVNC_XMLNode* const NONE = nullptr;

QXmlStreamAttributes setOf(const QString& name, const QString& value)
{
    QXmlStreamAttributes set;
    set.append(name, value);
    return set;
}

} // namespace

/// Numbering and looking up, what they cost, and that records which share an attribute set stay independent.
/// Nothing here that has to do with the mark looks at a node through its interface, which would expose it.
class tst_TVNC_RecordNumbers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theUsualNameAndTheLimit();
    void numberIsThePositionInThreeDigits_data();
    void numberIsThePositionInThreeDigits();
    void first999ChildrenAreNumbered_data();
    void first999ChildrenAreNumbered();
    void numberIsTheOnlyAttribute_data();
    void numberIsTheOnlyAttribute();
    void numberThatStandsIsKept();
    void nullChildrenAreLogged();
    void oneSetServesAllDocuments();
    void oneSetIsGivenAndKept_data();
    void oneSetIsGivenAndKept();

    void valuesAreNumbersAsQtReadsThem_data();
    void valuesAreNumbersAsQtReadsThem();
    void firstBearerIsFound();
    void allBearersAreFound();
    void nothingIsFoundInAnEmptyList();

    void numberedListIsMarked_data();
    void numberedListIsMarked();
    void otherNameTakesTheMarkAway();
    void changesTakeTheMarkAway_data();
    void changesTakeTheMarkAway();
    void listThatARecordLeavesAndTheOneItEntersLoseTheirMarks();
    void exposedChildrenCountUpToTheLimit_data();
    void exposedChildrenCountUpToTheLimit();
    void nullChildrenCountUpToTheLimit_data();
    void nullChildrenCountUpToTheLimit();
    void markedListIsLookedUpByPosition();
    void childrenBehindTheLimitBearTheirOwnNumbers();
    void allOfAMarkedListAreItsChildren_data();
    void allOfAMarkedListAreItsChildren();
    void directLookUpsAllocateNothing();

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
    void addChildren(int si_count);
    void addChild(const char* pc_value);
    QList<TVNC_XMLNode*>& children() { return TVNC_NodeAccess::children(*list_); }
    QString attributesOf(int i);
    QXmlStreamAttributes& setAt(int i) { return TVNC_NodeAccess::attributes(*children().at(i)); }
    void number(const QString& name) { TVNC_RecordNumbers::number(*list_, name); }
    TVNC_XMLNode* find(int si_number) { return TVNC_RecordNumbers::find(*list_, si_number, id_); }
    QList<TVNC_XMLNode*> findAll(int si_count) { return TVNC_RecordNumbers::findAll(*list_, si_count, id_); }
    bool isMarked() { return TVNC_NodeAccess::isNumbered(*list_); }

    void fill(int si_count);
    TVNC_XMLNode* record(int i) { return setting_->getXMLRootNode()->getXMLNodeChildren().at(i); }

    QScopedPointer<TVNC_XMLNode> list_;
    Setting* setting_;
    QString id_;
};

void tst_TVNC_RecordNumbers::init()
{
    list_.reset(new TVNC_XMLNode(nullptr, 0));
    setting_ = new Setting;
    setting_->createXMLRootNode();
    id_ = utf8("id");
}

void tst_TVNC_RecordNumbers::cleanup()
{
    list_.reset();
    delete setting_;
    releaseDeferred();
}

void tst_TVNC_RecordNumbers::addChildren(int si_count)
{
    for (int i = 0; i < si_count; ++i)
        new TVNC_XMLNode(list_.data(), 0);
}

/// Adds a child with this attribute "id"; null adds none.
void tst_TVNC_RecordNumbers::addChild(const char* pc_value)
{
    QXmlStreamAttributes set;
    if (pc_value)
        set = setOf(id_, utf8(pc_value));
    (new TVNC_XMLNode(list_.data(), 0))->setAttribute(set);
}

/// The attributes of a child as "id=000 x=y", those in a namespace as "{urn:x}id=000".
QString tst_TVNC_RecordNumbers::attributesOf(int i)
{
    QStringList list;
    foreach (const QXmlStreamAttribute& attribute, setAt(i)) {
        const QString uri = attribute.namespaceUri().toString();
        list << (uri.isEmpty() ? QString() : utf8("{") + uri + utf8("}")) +
                    attribute.qualifiedName().toString() + utf8("=") + attribute.value().toString();
    }
    return list.join(utf8(" "));
}

// --- Numbering --------------------------------------------------------------------------------------------

void tst_TVNC_RecordNumbers::theUsualNameAndTheLimit()
{
    QCOMPARE(TVNC_RecordNumbers::attributeName(), utf8("id"));
    QCOMPARE(TVNC_RecordNumbers::LIMIT, 999);
}

static void nameRows()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the usual name") << utf8("id");
    QTest::newRow("another name") << utf8("no");
}

void tst_TVNC_RecordNumbers::numberIsThePositionInThreeDigits_data()
{
    nameRows();
}

void tst_TVNC_RecordNumbers::numberIsThePositionInThreeDigits()
{
    QFETCH(QString, name);
    addChildren(101);
    number(name);
    QCOMPARE(attributesOf(0), name + utf8("=000"));
    QCOMPARE(attributesOf(9), name + utf8("=009"));
    QCOMPARE(attributesOf(10), name + utf8("=010"));
    QCOMPARE(attributesOf(99), name + utf8("=099"));
    QCOMPARE(attributesOf(100), name + utf8("=100"));
}

void tst_TVNC_RecordNumbers::first999ChildrenAreNumbered_data()
{
    nameRows();
}

void tst_TVNC_RecordNumbers::first999ChildrenAreNumbered()
{
    QFETCH(QString, name);
    addChildren(1001);
    for (int i = 997; i <= 1000; ++i)
        setAt(i) = setOf(utf8("x"), utf8("y"));
    number(name);
    QCOMPARE(attributesOf(997), name + utf8("=997"));
    QCOMPARE(attributesOf(998), name + utf8("=998"));
    QCOMPARE(attributesOf(999), utf8("x=y"));
    QCOMPARE(attributesOf(1000), utf8("x=y"));
}

void tst_TVNC_RecordNumbers::numberIsTheOnlyAttribute_data()
{
    nameRows();
}

void tst_TVNC_RecordNumbers::numberIsTheOnlyAttribute()
{
    QFETCH(QString, name);
    addChildren(7);
    setAt(1) = setOf(name, utf8("001"));
    setAt(1).append(utf8("x"), utf8("y"));
    setAt(2) = setOf(utf8("x"), utf8("y"));
    setAt(2).append(name, utf8("002"));
    setAt(3).append(utf8("urn:x"), name, utf8("003"));
    setAt(4) = setOf(name, utf8("4"));
    setAt(5) = setOf(name, utf8("004"));
    setAt(6) = setOf(name.toUpper(), utf8("006"));
    number(name);
    for (int i = 0; i < 7; ++i)
        QCOMPARE(attributesOf(i), name + utf8("=00") + QString::number(i));
}

void tst_TVNC_RecordNumbers::numberThatStandsIsKept()
{
    addChildren(2);
    foreach (const QString& name, QStringList() << utf8("id") << utf8("no")) {
        setAt(1) = setOf(name, utf8("001"));
        const QXmlStreamAttribute* const pc_own = setAt(1).constData();
        number(name);
        QVERIFY(setAt(1).constData() == pc_own);
    }
}

void tst_TVNC_RecordNumbers::nullChildrenAreLogged()
{
    addChildren(1000);
    children().insert(1, nullptr);
    children().insert(998, nullptr);
    children().insert(999, nullptr); // has no number to miss
    QStringList messages;
    pc_messages = &messages;
    number(id_);
    pc_messages = nullptr;
    const QString address =
        QString::number(static_cast<quint32>(reinterpret_cast<quintptr>(list_.data())), 16).toUpper();
    const QString line = utf8("[TVNC_XMLSetting::setIDforChildren] 0x") + address + utf8(" Why Pass??");
    QCOMPARE(messages, QStringList() << line << line);
    QCOMPARE(attributesOf(0), utf8("id=000"));
    QCOMPARE(attributesOf(2), utf8("id=002"));
    QCOMPARE(attributesOf(997), utf8("id=997"));
    QCOMPARE(attributesOf(1000), QString());
}

void tst_TVNC_RecordNumbers::oneSetServesAllDocuments()
{
    addChildren(999);
    TVNC_XMLNode other(nullptr, 0);
    for (int i = 0; i < 999; ++i)
        new TVNC_XMLNode(&other, 0);
    number(id_);
    TVNC_RecordNumbers::number(other, utf8("id"));
    for (int i = 0; i < 999; ++i) {
        const QXmlStreamAttribute* const pc_shared = TVNC_RecordNumbers::attributes(i).constData();
        QVERIFY(setAt(i).constData() == pc_shared);
        QVERIFY(TVNC_NodeAccess::attributes(*TVNC_NodeAccess::children(other).at(i)).constData() ==
                pc_shared);
    }
    // Whoever changes his own leaves the others'.
    children().at(0)->getAttribute().append(utf8("x"), utf8("y"));
    setAt(1).clear();
    QCOMPARE(attributesOf(0), utf8("id=000 x=y"));
    addChildren(1);
    TVNC_RecordNumbers::give(*children().at(999), 0);
    QCOMPARE(attributesOf(999), utf8("id=000"));
    TVNC_RecordNumbers::give(*children().at(999), 1);
    QCOMPARE(attributesOf(999), utf8("id=001"));
}

void tst_TVNC_RecordNumbers::oneSetIsGivenAndKept_data()
{
    QTest::addColumn<int>("si_number");
    QTest::addColumn<QString>("value");
    QTest::newRow("first") << 0 << utf8("000");
    QTest::newRow("two digits") << 42 << utf8("042");
    QTest::newRow("last") << 998 << utf8("998");
}

void tst_TVNC_RecordNumbers::oneSetIsGivenAndKept()
{
    QFETCH(int, si_number);
    QFETCH(QString, value);
    addChildren(2);
    setAt(0) = setOf(utf8("x"), utf8("y"));
    TVNC_RecordNumbers::give(*children().at(0), si_number);
    QCOMPARE(attributesOf(0), utf8("id=") + value);
    QVERIFY(setAt(0).constData() == TVNC_RecordNumbers::attributes(si_number).constData());
    setAt(1) = setOf(id_, value);
    const QXmlStreamAttribute* const pc_own = setAt(1).constData();
    TVNC_RecordNumbers::give(*children().at(1), si_number);
    QVERIFY(setAt(1).constData() == pc_own);
    QVERIFY(!isMarked());
}

// --- Finding ----------------------------------------------------------------------------------------------

void tst_TVNC_RecordNumbers::valuesAreNumbersAsQtReadsThem_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("b_number");
    QTest::addColumn<int>("si_number");
    QTest::newRow("one digit") << utf8("7") << true << 7;
    QTest::newRow("three digits") << utf8("007") << true << 7;
    QTest::newRow("zero") << utf8("0") << true << 0;
    QTest::newRow("nine digits") << utf8("999999999") << true << 999999999;
    QTest::newRow("ten digits") << utf8("1000000000") << true << 1000000000;
    QTest::newRow("ten digits of a small one") << utf8("0000000007") << true << 7;
    QTest::newRow("thirty digits of a small one")
        << utf8("7").rightJustified(30, QLatin1Char('0')) << true << 7;
    QTest::newRow("largest") << utf8("2147483647") << true << 2147483647;
    QTest::newRow("too large") << utf8("2147483648") << false << 0;
    QTest::newRow("7 in its low 32 bits") << utf8("4294967303") << false << 0;
    QTest::newRow("below zero") << utf8("-7") << true << -7;
    QTest::newRow("smallest") << utf8("-2147483648") << true << -2147483647 - 1;
    QTest::newRow("too small") << utf8("-2147483649") << false << 0;
    QTest::newRow("plus") << utf8("+7") << true << 7;
    QTest::newRow("blanks around") << utf8(" 7 ") << true << 7;
    QTest::newRow("blank inside") << utf8("0 7") << false << 0;
    QTest::newRow("empty") << utf8("") << false << 0;
    QTest::newRow("blank") << utf8(" ") << false << 0;
    QTest::newRow("fraction") << utf8("7.0") << false << 0;
    QTest::newRow("hexadecimal") << utf8("0x7") << false << 0;
    QTest::newRow("letter behind") << utf8("7a") << false << 0;
    QTest::newRow("other digits") << utf8("٧") << false << 0;
    QTest::newRow("wide digits") << utf8("７") << false << 0;
}

void tst_TVNC_RecordNumbers::valuesAreNumbersAsQtReadsThem()
{
    QFETCH(QString, value);
    QFETCH(bool, b_number);
    QFETCH(int, si_number);
    addChildren(1);
    setAt(0) = setOf(id_, value);
    TVNC_XMLNode* const pc_expected = b_number ? children().at(0) : nullptr;
    QCOMPARE(find(si_number), pc_expected);
    QCOMPARE(find(7), si_number == 7 ? pc_expected : nullptr);
    QCOMPARE(find(0), b_number && si_number == 0 ? pc_expected : nullptr);
    QCOMPARE(static_cast<int>(findAll(8).count(NONE)), b_number && si_number >= 0 && si_number < 8 ? 7 : 8);
    // The name is compared exactly, with its prefix.
    setAt(0) = setOf(utf8("x:id"), value);
    QVERIFY(!find(si_number));
    setAt(0) = setOf(utf8("ID"), value);
    QVERIFY(!find(si_number));
}

void tst_TVNC_RecordNumbers::firstBearerIsFound()
{
    addChild(nullptr);
    addChild("x");
    addChild("1");
    addChild("001");
    addChild("0");
    children().insert(0, nullptr);
    QCOMPARE(find(1), children().at(3));
    QCOMPARE(find(0), children().at(5));
    QVERIFY(!find(2));
    QVERIFY(!find(-1));
    QVERIFY(!TVNC_RecordNumbers::find(*list_, 1, utf8("no")));
    setAt(4) = setOf(utf8("no"), utf8("1"));
    QCOMPARE(TVNC_RecordNumbers::find(*list_, 1, utf8("no")), children().at(4));
}

void tst_TVNC_RecordNumbers::allBearersAreFound()
{
    addChild("2");
    addChild("0");
    addChild(nullptr);
    addChild("002");
    addChild("5");
    addChild("-1");
    children().insert(3, nullptr);
    TVNC_XMLNode* const pc_zero = children().at(1);
    TVNC_XMLNode* const pc_two = children().at(0);
    TVNC_XMLNode* const pc_five = children().at(5);
    typedef QList<TVNC_XMLNode*> Nodes;
    QVERIFY(findAll(0) == Nodes());
    QVERIFY(findAll(1) == Nodes() << pc_zero);
    QVERIFY(findAll(2) == (Nodes() << pc_zero << NONE));
    QVERIFY(findAll(3) == (Nodes() << pc_zero << NONE << pc_two));
    QVERIFY(findAll(5) == (Nodes() << pc_zero << NONE << pc_two << NONE << NONE));
    QVERIFY(findAll(7) == (Nodes() << pc_zero << NONE << pc_two << NONE << NONE << pc_five << NONE));
    QVERIFY(TVNC_RecordNumbers::findAll(*list_, 2, utf8("no")) == (Nodes() << NONE << NONE));
}

void tst_TVNC_RecordNumbers::nothingIsFoundInAnEmptyList()
{
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!find(0));
        QVERIFY(!find(-1));
        QVERIFY(findAll(0).isEmpty());
        QVERIFY(findAll(1) == QList<TVNC_XMLNode*>() << NONE);
        number(id_); // once more with a mark
    }
}

// --- The mark ---------------------------------------------------------------------------------------------

void tst_TVNC_RecordNumbers::numberedListIsMarked_data()
{
    QTest::addColumn<int>("si_count");
    QTest::newRow("none") << 0;
    QTest::newRow("one") << 1;
    QTest::newRow("as many as have a number") << 999;
    QTest::newRow("one more") << 1000;
}

void tst_TVNC_RecordNumbers::numberedListIsMarked()
{
    QFETCH(int, si_count);
    addChildren(si_count);
    QVERIFY(!isMarked());
    number(id_);
    QVERIFY(isMarked());
}

void tst_TVNC_RecordNumbers::otherNameTakesTheMarkAway()
{
    addChildren(2);
    number(id_);
    number(utf8("no"));
    QVERIFY(!isMarked());
    QVERIFY(!find(1));
    QCOMPARE(TVNC_RecordNumbers::find(*list_, 1, utf8("no")), children().at(1));
    number(id_);
    QVERIFY(isMarked());
    QVERIFY(!TVNC_RecordNumbers::find(*list_, 1, utf8("no")));
    QCOMPARE(static_cast<int>(TVNC_RecordNumbers::findAll(*list_, 2, utf8("no")).count(NONE)), 2);
}

void tst_TVNC_RecordNumbers::changesTakeTheMarkAway_data()
{
    QTest::addColumn<int>("si_change");
    for (int i = 0; i < CHANGE_COUNT; ++i)
        QTest::newRow(CHANGES[i].pc_name) << i;
}

void tst_TVNC_RecordNumbers::changesTakeTheMarkAway()
{
    QFETCH(int, si_change);
    addChildren(3);
    number(id_);
    CHANGES[si_change].make(*list_);
    QCOMPARE(isMarked(), CHANGES[si_change].b_marked);
    number(id_);
    QCOMPARE(isMarked(), CHANGES[si_change].b_markedAgain);
    for (int i = 0; i < children().size(); ++i)
        QCOMPARE(find(i), children().at(i));
}

void tst_TVNC_RecordNumbers::listThatARecordLeavesAndTheOneItEntersLoseTheirMarks()
{
    addChildren(2);
    number(id_);
    TVNC_XMLNode other(nullptr, 0);
    TVNC_RecordNumbers::number(other, id_);
    QVERIFY(TVNC_NodeAccess::isNumbered(other));
    add(other, children().at(0), 0);
    QVERIFY(!isMarked());
    QVERIFY(!TVNC_NodeAccess::isNumbered(other));
}

static void limitRows()
{
    QTest::addColumn<int>("si_position");
    QTest::addColumn<bool>("b_marked");
    QTest::newRow("first") << 0 << false;
    QTest::newRow("last with a number") << 998 << false;
    QTest::newRow("first without") << 999 << true;
}

void tst_TVNC_RecordNumbers::exposedChildrenCountUpToTheLimit_data()
{
    limitRows();
}

void tst_TVNC_RecordNumbers::exposedChildrenCountUpToTheLimit()
{
    QFETCH(int, si_position);
    QFETCH(bool, b_marked);
    addChildren(1000);
    children().at(si_position)->getAttribute();
    number(id_);
    QCOMPARE(isMarked(), b_marked);
    delete children().at(si_position);
    number(id_);
    QVERIFY(isMarked());
}

void tst_TVNC_RecordNumbers::nullChildrenCountUpToTheLimit_data()
{
    limitRows();
}

void tst_TVNC_RecordNumbers::nullChildrenCountUpToTheLimit()
{
    QFETCH(int, si_position);
    QFETCH(bool, b_marked);
    addChildren(999);
    children().insert(si_position, nullptr);
    number(id_);
    QCOMPARE(isMarked(), b_marked);
}

void tst_TVNC_RecordNumbers::markedListIsLookedUpByPosition()
{
    addChildren(3);
    number(id_);
    setAt(0) = TVNC_RecordNumbers::attributes(2); // the mark stays, although it should not
    QCOMPARE(find(0), children().at(0));
    QCOMPARE(find(2), children().at(2));
    QVERIFY(!find(3));
    QVERIFY(!find(998));
    QVERIFY(!find(-1));
    QVERIFY(findAll(3) == children());
    TVNC_NodeAccess::unmark(*list_);
    QVERIFY(!find(0));
    QCOMPARE(find(2), children().at(0));
}

void tst_TVNC_RecordNumbers::childrenBehindTheLimitBearTheirOwnNumbers()
{
    addChildren(999);
    addChild("-1");
    addChild("999");
    addChild("5");
    addChild("1000");
    number(id_);
    QVERIFY(isMarked());
    QCOMPARE(find(-1), children().at(999));
    QCOMPARE(find(998), children().at(998));
    QCOMPARE(find(999), children().at(1000));
    QCOMPARE(find(5), children().at(5));
    QCOMPARE(find(1000), children().at(1002));
    QVERIFY(!find(1001));
    const QList<TVNC_XMLNode*> all = findAll(1003);
    QVERIFY(all.mid(0, 999) == children().mid(0, 999));
    QVERIFY(all.mid(999) == QList<TVNC_XMLNode*>()
                                << children().at(1000) << children().at(1002) << NONE << NONE);
}

void tst_TVNC_RecordNumbers::allOfAMarkedListAreItsChildren_data()
{
    QTest::addColumn<int>("si_children");
    QTest::addColumn<int>("si_count");
    QTest::newRow("all") << 3 << 3;
    QTest::newRow("fewer") << 3 << 2;
    QTest::newRow("more") << 3 << 4;
    QTest::newRow("as many as have a number") << 999 << 999;
    QTest::newRow("one more") << 1000 << 1000;
}

void tst_TVNC_RecordNumbers::allOfAMarkedListAreItsChildren()
{
    QFETCH(int, si_children);
    QFETCH(int, si_count);
    addChildren(si_children);
    number(id_);
    QVERIFY(isMarked());
    const QList<TVNC_XMLNode*> all = findAll(si_count);
    QCOMPARE(static_cast<int>(all.size()), si_count);
    for (int i = 0; i < si_count; ++i)
        QCOMPARE(all.at(i), i < qMin(si_children, 999) ? children().at(i) : nullptr);
}

void tst_TVNC_RecordNumbers::directLookUpsAllocateNothing()
{
    if (!CAN_COUNT_ALLOCATIONS)
        QSKIP("allocations cannot be counted here", SkipAll);
    addChildren(999);
    number(id_);
    QVERIFY(isMarked());
    long before = allocationCount;
    const bool b_all = findAll(999) == children();
    bool b_found = find(998) == children().at(998) && !find(999);
    QVERIFY(allocationCount == before);
    QVERIFY(b_all && b_found);
    TVNC_NodeAccess::unmark(*list_);
    before = allocationCount;
    b_found = find(998) == children().at(998) && !find(999);
    QVERIFY(allocationCount == before);
    QVERIFY(b_found);
}

// --- Through a setting ------------------------------------------------------------------------------------

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
            // From the other end, so that threads make the shared sets of the same numbers.
            if (TVNC_RecordNumbers::attributes(998 - i).value(utf8("id")).toString() !=
                QString::number(998 - i))
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
