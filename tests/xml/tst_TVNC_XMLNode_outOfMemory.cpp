#include "tests/support/FailingAllocations.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

/// What a tree is like when there was no memory to change it.
class tst_TVNC_XMLNode_outOfMemory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { failingAllocation = 0; }

    void nodeThatCannotBeAddedStaysWhereItIs();
    void nodeThatCannotBeMovedStaysWhereItIs();
    void nodeThatCannotBeCreatedIsNotInTheList();
    void copiedListKeepsTheNodeThatCannotBeRemoved();
    void copiedListHasNullInThePlaceOfADeletedNode();
    void copiedListKeepsTheChildrenOfADeletedNode();
    void packedTextIsEmptyUntilThereIsMemory();
    void searchFindsNothing();
};

/// From now on there is no memory for anything.
static void takeMemory()
{
    b_forGood = true;
    failingAllocation = 1;
}

static void giveMemory()
{
    failingAllocation = 0;
}

void tst_TVNC_XMLNode_outOfMemory::initTestCase()
{
    if (qVersion()[0] == '6')
        QSKIP("the lists of Qt 6 themselves do not survive it", SkipAll);
    if (!CAN_FAIL_ALLOCATIONS)
        QSKIP("allocations cannot fail here", SkipAll);
}

void tst_TVNC_XMLNode_outOfMemory::nodeThatCannotBeAddedStaysWhereItIs()
{
    TVNC_XMLNode from(nullptr, 0);
    TVNC_XMLNode to(nullptr, 0);
    TVNC_XMLNode* pc_node = makeNode(&from, "n");
    char c_prepend = 0;
    takeMemory();
    to.addXMLNode(pc_node, c_prepend);
    giveMemory();
    QCOMPARE(pc_node->getXMLNodeParent(), &from);
    QCOMPARE(childNames(&from), utf8("n"));
    QCOMPARE(childNames(&to), QString());
    to.addXMLNode(pc_node, c_prepend);
    QCOMPARE(childNames(&from), QString());
    QCOMPARE(childNames(&to), utf8("n"));
}

void tst_TVNC_XMLNode_outOfMemory::nodeThatCannotBeMovedStaysWhereItIs()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_first = makeNode(&root, "a");
    makeNode(&root, "b");
    char c_prepend = 0;
    {
        const QList<TVNC_XMLNode*> copy = root.getXMLNodeChildren();
        takeMemory();
        root.addXMLNode(pc_first, c_prepend);
        giveMemory();
    }
    QCOMPARE(childNames(&root), utf8("a b"));
    QCOMPARE(pc_first->getXMLNodeParent(), &root);
    root.addXMLNode(pc_first, c_prepend);
    QCOMPARE(childNames(&root), utf8("b a"));
}

void tst_TVNC_XMLNode_outOfMemory::nodeThatCannotBeCreatedIsNotInTheList()
{
    Setting setting;
    setting.createXMLRootNode();
    QString name = utf8("n");
    QXmlStreamAttributes noAttributes;
    char c_textType = 0;
    b_forGood = false;
    int si_created = 0;
    for (int i = 1; si_created == 0; ++i) {
        failingAllocation = i;
        TVNC_XMLNode* pc_node =
            setting.addXMLChild(setting.getXMLRootNode(), name, name, c_textType, noAttributes, 0);
        giveMemory();
        si_created += pc_node ? 1 : 0;
        QCOMPARE(setting.getXMLNodeCnt(), si_created);
    }
}

void tst_TVNC_XMLNode_outOfMemory::copiedListKeepsTheNodeThatCannotBeRemoved()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_node = makeNode(&root, "n");
    const QList<TVNC_XMLNode*> copy = root.getXMLNodeChildren();
    takeMemory();
    root.removeXMLNode(pc_node);
    giveMemory();
    QCOMPARE(childNames(&root), utf8("n"));
    QCOMPARE(pc_node->getXMLNodeParent(), &root);
}

void tst_TVNC_XMLNode_outOfMemory::copiedListHasNullInThePlaceOfADeletedNode()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "a");
    TVNC_XMLNode* pc_node = makeNode(&root, "b");
    const QList<TVNC_XMLNode*> copy = root.getXMLNodeChildren();
    takeMemory();
    delete pc_node;
    giveMemory();
    QCOMPARE(childNames(&root), utf8("a 0"));
    QVERIFY(!copy.at(1));
}

void tst_TVNC_XMLNode_outOfMemory::copiedListKeepsTheChildrenOfADeletedNode()
{
    TVNC_XMLNode* pc_root = new TVNC_XMLNode(nullptr, 0);
    makeNode(pc_root, "a");
    makeNode(pc_root, "b");
    pc_root->getXMLNodeChildren().append(nullptr);
    const QList<TVNC_XMLNode*> copy = pc_root->getXMLNodeChildren();
    takeMemory();
    delete pc_root;
    giveMemory();
    QCOMPARE(copy.at(0)->getName(), utf8("a"));
    QVERIFY(!copy.at(0)->getXMLNodeParent());
    delete copy.at(0);
    delete copy.at(1);
}

void tst_TVNC_XMLNode_outOfMemory::packedTextIsEmptyUntilThereIsMemory()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    const QByteArray text(5000, 't');
    writeFile(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><b><![CDATA[" + text + "]]></b></a>");
    Setting setting;
    setting.load(path);
    TVNC_XMLNode* pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    takeMemory();
    QString& none = pc_node->getText();
    giveMemory();
    QCOMPARE(none, QString());
    none = utf8("nobody's");
    takeMemory();
    const bool b_empty = pc_node->getText().isEmpty();
    giveMemory();
    QVERIFY(b_empty);
    QCOMPARE(pc_node->getText(), QString::fromLatin1(text));
}

void tst_TVNC_XMLNode_outOfMemory::searchFindsNothing()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "n");
    QString name = utf8("n");
    takeMemory();
    const bool b_none = root.getXMLNodeChildrenByName(name).isEmpty();
    giveMemory();
    QVERIFY(b_none);
    QCOMPARE(static_cast<int>(root.getXMLNodeChildrenByName(name).size()), 1);
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLNode_outOfMemory)
#include "tst_TVNC_XMLNode_outOfMemory.moc"
