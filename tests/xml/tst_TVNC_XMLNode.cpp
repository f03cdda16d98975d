#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

class tst_TVNC_XMLNode : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void constructorHangsItUnderTheParent();
    void settersReplace();
    void accessorsGiveTheNodesOwnValues();
    void anyTextTypeIsKept();

    void addingAppendsOrPrepends();
    void addingMovesFromAnotherParent();
    void addingToItsOwnParentMoves();
    void addingAndRemovingNullDoesNothing();
    void removingDetachesWithoutDeleting();
    void removingTakesAllOccurrences();
    void removingFromTheWrongParentForgetsTheParent();

    void searchByNameMovesTheIndex();
    void searchByNameIsExact();
    void searchPastTheEndLeavesTheIndex();
    void searchBeforeTheBeginningStartsThere();
    void searchSkipsNullChildren();
    void findsAllOfAName();
    void findsByNumber_data();
    void findsByNumber();
    void firstBearerOfANumberIsFound();
    void numberIsReadFromTheNamedAttribute();

    void deletingARootDeletesAll();
    void deletingAnInnerNodeKeepsItsSiblings();
    void deletionIsInDocumentOrder();
    void deletionCopesWithNullChildren();
    void childListedTwiceIsDeletedOnce();
    void deletionThroughTheBaseAndDeferred();
    void childListedUnderAStrangerLeavesItsParent();
    void deepTreesAreDeleted();
    void longListsAreBuiltAndDeleted();
};

void tst_TVNC_XMLNode::startsEmpty()
{
    TVNC_XMLNode node(nullptr, 1);
    QCOMPARE(int(node.getTextType()), 0);
    QVERIFY(!node.getXMLNodeParent());
    QVERIFY(node.getXMLNodeChildren().isEmpty());
    QVERIFY(node.getAttribute().isEmpty());
    QVERIFY(node.getName().isEmpty());
    QVERIFY(node.getText().isEmpty());
    QVERIFY(!node.parent());
}

void tst_TVNC_XMLNode::constructorHangsItUnderTheParent()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_first = new TVNC_XMLNode(&root, 0);
    TVNC_XMLNode* pc_last = new TVNC_XMLNode(&root, 0);
    TVNC_XMLNode* pc_front = new TVNC_XMLNode(&root, 1);
    TVNC_XMLNode* pc_newest = new TVNC_XMLNode(&root, -7);
    QCOMPARE(root.getXMLNodeChildren(), QList<TVNC_XMLNode*>()
                                            << pc_newest << pc_front << pc_first << pc_last);
    foreach (TVNC_XMLNode* pc_child, root.getXMLNodeChildren()) {
        QCOMPARE(pc_child->getXMLNodeParent(), &root);
        QVERIFY(!pc_child->parent()); // Qt's own tree is not used
    }
}

void tst_TVNC_XMLNode::settersReplace()
{
    TVNC_XMLNode node(nullptr, 0);
    QString name = utf8("name");
    QString text = utf8("text");
    node.setName(name);
    node.setText(text);
    QCOMPARE(node.getName(), utf8("name"));
    QCOMPARE(node.getText(), utf8("text"));

    QXmlStreamAttributes attributes;
    attributes.append(utf8("a"), utf8("1"));
    attributes.append(utf8("b"), utf8("2"));
    node.setAttribute(attributes);
    QCOMPARE(describe(&node), utf8("name{a=1 b=2}'text'"));
    QXmlStreamAttributes other;
    other.append(utf8("c"), utf8("3"));
    node.setAttribute(other);
    QCOMPARE(describe(&node), utf8("name{c=3}'text'"));
    other.append(utf8("d"), utf8("4")); // the node has a copy
    QCOMPARE(describe(&node), utf8("name{c=3}'text'"));
}

void tst_TVNC_XMLNode::accessorsGiveTheNodesOwnValues()
{
    TVNC_XMLNode node(nullptr, 0);
    node.getName() = utf8("n");
    node.getText() += utf8("t");
    node.getAttribute().append(utf8("a"), utf8("1"));
    QCOMPARE(describe(&node), utf8("n{a=1}'t'"));
}

void tst_TVNC_XMLNode::anyTextTypeIsKept()
{
    TVNC_XMLNode node(nullptr, 0);
    for (int i = -128; i < 128; ++i) {
        node.setTextType(static_cast<char>(i));
        QCOMPARE(node.getTextType(), static_cast<char>(i));
    }
}

void tst_TVNC_XMLNode::addingAppendsOrPrepends()
{
    TVNC_XMLNode root(nullptr, 0);
    char c_append = 0;
    char c_prepend = 1;
    root.addXMLNode(makeNode(nullptr, "b"), c_append);
    root.addXMLNode(makeNode(nullptr, "c"), c_append);
    root.addXMLNode(makeNode(nullptr, "a"), c_prepend);
    QCOMPARE(childNames(&root), utf8("a b c"));
    QCOMPARE(root.getXMLNodeChildren().at(0)->getXMLNodeParent(), &root);
}

void tst_TVNC_XMLNode::addingMovesFromAnotherParent()
{
    TVNC_XMLNode one(nullptr, 0);
    TVNC_XMLNode two(nullptr, 0);
    makeNode(&one, "a");
    TVNC_XMLNode* pc_moved = makeNode(&one, "b");
    makeNode(&one, "c");
    makeNode(&two, "x");
    char c_append = 0;
    two.addXMLNode(pc_moved, c_append);
    QCOMPARE(childNames(&one), utf8("a c"));
    QCOMPARE(childNames(&two), utf8("x b"));
    QCOMPARE(pc_moved->getXMLNodeParent(), &two);
}

void tst_TVNC_XMLNode::addingToItsOwnParentMoves()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "a");
    TVNC_XMLNode* pc_moved = makeNode(&root, "b");
    makeNode(&root, "c");
    char c_prepend = 1;
    root.addXMLNode(pc_moved, c_prepend);
    QCOMPARE(childNames(&root), utf8("b a c"));
    char c_append = 0;
    root.addXMLNode(pc_moved, c_append);
    QCOMPARE(childNames(&root), utf8("a c b"));
    QCOMPARE(pc_moved->getXMLNodeParent(), &root);
}

void tst_TVNC_XMLNode::addingAndRemovingNullDoesNothing()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "a");
    char c_append = 0;
    root.addXMLNode(nullptr, c_append);
    root.removeXMLNode(nullptr);
    QCOMPARE(childNames(&root), utf8("a"));
    // Not even the null children that a caller put into the list.
    root.getXMLNodeChildren().append(nullptr);
    root.removeXMLNode(nullptr);
    QCOMPARE(childNames(&root), utf8("a 0"));
}

void tst_TVNC_XMLNode::removingDetachesWithoutDeleting()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "a");
    TVNC_XMLNode* pc_removed = makeNode(&root, "b");
    makeNode(pc_removed, "inner");
    makeNode(&root, "c");
    root.removeXMLNode(pc_removed);
    QCOMPARE(childNames(&root), utf8("a c"));
    QVERIFY(!pc_removed->getXMLNodeParent());
    QCOMPARE(describe(pc_removed), utf8("b(inner)"));
    delete pc_removed;
    QCOMPARE(childNames(&root), utf8("a c"));
}

void tst_TVNC_XMLNode::removingTakesAllOccurrences()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_twice = makeNode(&root, "x");
    makeNode(&root, "a");
    root.getXMLNodeChildren().append(pc_twice);
    makeNode(&root, "b");
    QCOMPARE(childNames(&root), utf8("x a x b"));
    root.removeXMLNode(pc_twice);
    QCOMPARE(childNames(&root), utf8("a b"));
    delete pc_twice;
}

void tst_TVNC_XMLNode::removingFromTheWrongParentForgetsTheParent()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode stranger(nullptr, 0);
    TVNC_XMLNode* pc_child = makeNode(&root, "a");
    stranger.removeXMLNode(pc_child);
    QVERIFY(!pc_child->getXMLNodeParent());
    QCOMPARE(childNames(&root), utf8("a")); // but the list that holds it is not the one that was asked
}

void tst_TVNC_XMLNode::searchByNameMovesTheIndex()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_first = makeNode(&root, "x");
    makeNode(&root, "y");
    TVNC_XMLNode* pc_second = makeNode(&root, "x");
    makeNode(&root, "y");

    QString name = utf8("x");
    int si_index = 0;
    QCOMPARE(root.getChildByName(name, si_index), pc_first);
    QCOMPARE(si_index, 0);
    QCOMPARE(root.getChildByName(name, si_index), pc_first); // the caller moves on
    si_index = 1;
    QCOMPARE(root.getChildByName(name, si_index), pc_second);
    QCOMPARE(si_index, 2);
    si_index = 3;
    QVERIFY(!root.getChildByName(name, si_index));
    QCOMPARE(si_index, 4);

    QCOMPARE(root.getXMLNodeChildByName(name), pc_first);
}

void tst_TVNC_XMLNode::searchByNameIsExact()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "Font");
    makeNode(&root, "fonts");
    makeNode(makeNode(&root, "inner"), "font"); // grandchildren do not count
    QString name = utf8("font");
    int si_index = 0;
    QVERIFY(!root.getChildByName(name, si_index));
    QCOMPARE(si_index, 3);
    QVERIFY(!root.getXMLNodeChildByName(name));
    QVERIFY(root.getXMLNodeChildrenByName(name).isEmpty());
}

void tst_TVNC_XMLNode::searchPastTheEndLeavesTheIndex()
{
    TVNC_XMLNode root(nullptr, 0);
    QString name = utf8("x");
    int si_index = 0;
    QVERIFY(!root.getChildByName(name, si_index));
    QCOMPARE(si_index, 0);
    makeNode(&root, "x");
    si_index = 1;
    QVERIFY(!root.getChildByName(name, si_index));
    QCOMPARE(si_index, 1);
    si_index = 17;
    QVERIFY(!root.getChildByName(name, si_index));
    QCOMPARE(si_index, 17);
}

void tst_TVNC_XMLNode::searchBeforeTheBeginningStartsThere()
{
    TVNC_XMLNode root(nullptr, 0);
    QString name = utf8("x");
    int si_index = -2147483647 - 1;
    TVNC_XMLNode* pc_child = makeNode(&root, "x");
    QCOMPARE(root.getChildByName(name, si_index), pc_child);
    QCOMPARE(si_index, 0);
}

void tst_TVNC_XMLNode::searchSkipsNullChildren()
{
    TVNC_XMLNode root(nullptr, 0);
    root.getXMLNodeChildren().append(nullptr);
    TVNC_XMLNode* pc_child = makeNode(&root, "x");
    addAttribute(pc_child, "id", utf8("000"));
    QString name = utf8("x");
    QString id = utf8("id");
    QCOMPARE(root.getXMLNodeChildByName(name), pc_child);
    QCOMPARE(root.getXMLNodeChildrenByName(name).size(), 1);
    QCOMPARE(root.getXMLNodeChildByID(0, id), pc_child);
}

void tst_TVNC_XMLNode::findsAllOfAName()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_first = makeNode(&root, "x");
    makeNode(&root, "y");
    TVNC_XMLNode* pc_second = makeNode(&root, "x");
    QString name = utf8("x");
    QCOMPARE(root.getXMLNodeChildrenByName(name), QList<TVNC_XMLNode*>() << pc_first << pc_second);
    QCOMPARE(root.getXMLNodeChildren().size(), 3);
}

void tst_TVNC_XMLNode::findsByNumber_data()
{
    QTest::addColumn<QString>("value"); // a null string stands for no attribute at all
    QTest::addColumn<int>("id");
    QTest::addColumn<bool>("found");

    QTest::newRow("three digits") << utf8("000") << 0 << true;
    QTest::newRow("leading zeros") << utf8("007") << 7 << true;
    QTest::newRow("one digit") << utf8("7") << 7 << true;
    QTest::newRow("other number") << utf8("007") << 8 << false;
    QTest::newRow("absent is not 0") << QString() << 0 << false;
    QTest::newRow("empty is not 0") << utf8("") << 0 << false;
    QTest::newRow("word is not 0") << utf8("zero") << 0 << false;
    QTest::newRow("digits, then a letter") << utf8("7a") << 7 << false;
    // Measured on both versions of Qt.
    QTest::newRow("blanks around") << utf8(" 7 ") << 7 << true;
    QTest::newRow("plus sign") << utf8("+7") << 7 << true;
    QTest::newRow("decimal point") << utf8("7.0") << 7 << false;
    QTest::newRow("hexadecimal") << utf8("0x7") << 7 << false;
    QTest::newRow("negative") << utf8("-7") << -7 << true;
    QTest::newRow("negative, other") << utf8("-7") << 7 << false;
    QTest::newRow("many zeros") << utf8("00000000000000000007") << 7 << true;
    QTest::newRow("largest") << utf8("2147483647") << 2147483647 << true;
    QTest::newRow("too large") << utf8("2147483648") << 2147483647 << false;
    QTest::newRow("far too large is not 0") << utf8("4294967296") << 0 << false;
    QTest::newRow("nine digits") << utf8("123456789") << 123456789 << true;
    QTest::newRow("ten digits") << utf8("1234567890") << 1234567890 << true;
}

void tst_TVNC_XMLNode::findsByNumber()
{
    QFETCH(QString, value);
    QFETCH(int, id);
    QFETCH(bool, found);
    TVNC_XMLNode root(nullptr, 0);
    QString attribute = utf8("id");
    QVERIFY(!root.getXMLNodeChildByID(id, attribute)); // no children
    TVNC_XMLNode* pc_child = makeNode(&root, "x");
    if (!value.isNull())
        addAttribute(pc_child, "id", value);
    TVNC_XMLNode* const pc_expected = found ? pc_child : nullptr;
    QCOMPARE(root.getXMLNodeChildByID(id, attribute), pc_expected);
}

void tst_TVNC_XMLNode::firstBearerOfANumberIsFound()
{
    TVNC_XMLNode root(nullptr, 0);
    addAttribute(makeNode(&root, "a"), "id", utf8("005"));
    TVNC_XMLNode* pc_first = makeNode(&root, "b");
    addAttribute(pc_first, "id", utf8("7"));
    addAttribute(makeNode(&root, "c"), "id", utf8("007"));
    QString attribute = utf8("id");
    QCOMPARE(root.getXMLNodeChildByID(7, attribute), pc_first);
}

void tst_TVNC_XMLNode::numberIsReadFromTheNamedAttribute()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_child = makeNode(&root, "a");
    addAttribute(pc_child, "no", utf8("1"));
    addAttribute(pc_child, "id", utf8("2"));
    QString id = utf8("id");
    QString no = utf8("no");
    QString other = utf8("ID");
    QCOMPARE(root.getXMLNodeChildByID(2, id), pc_child);
    QCOMPARE(root.getXMLNodeChildByID(1, no), pc_child);
    QVERIFY(!root.getXMLNodeChildByID(1, id));
    QVERIFY(!root.getXMLNodeChildByID(2, other));
}

/// Writes down the names of nodes in the order in which they are destroyed.
class DeathList : public QObject
{
    Q_OBJECT

public:
    void watch(TVNC_XMLNode* pc_node)
    {
        names_.insert(pc_node, pc_node->getName());
        connect(pc_node, SIGNAL(destroyed(QObject*)), this, SLOT(add(QObject*)));
        foreach (TVNC_XMLNode* pc_child, pc_node->getXMLNodeChildren())
            watch(pc_child);
    }
    QString dead() const { return dead_.join(QLatin1String(" ")); }

private slots:
    void add(QObject* pc_object) { dead_ << names_.value(pc_object); }

private:
    QHash<QObject*, QString> names_;
    QStringList dead_;
};

void tst_TVNC_XMLNode::deletingARootDeletesAll()
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    TVNC_XMLNode* pc_a = makeNode(pc_root, "a");
    makeNode(pc_a, "b");
    makeNode(pc_root, "c");
    DeathList deaths;
    deaths.watch(pc_root);
    delete pc_root;
    QCOMPARE(deaths.dead().split(QLatin1Char(' ')).size(), 4);
}

void tst_TVNC_XMLNode::deletingAnInnerNodeKeepsItsSiblings()
{
    TVNC_XMLNode root(nullptr, 0);
    makeNode(&root, "a");
    TVNC_XMLNode* pc_inner = makeNode(&root, "b");
    makeNode(pc_inner, "inner");
    makeNode(&root, "c");
    DeathList deaths;
    deaths.watch(pc_inner);
    delete pc_inner;
    QCOMPARE(childNames(&root), utf8("a c"));
    QCOMPARE(deaths.dead(), utf8("inner b"));
}

void tst_TVNC_XMLNode::deletionIsInDocumentOrder()
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    TVNC_XMLNode* pc_a = makeNode(pc_root, "a");
    makeNode(pc_a, "a1");
    TVNC_XMLNode* pc_a2 = makeNode(pc_a, "a2");
    makeNode(pc_a2, "a2x");
    makeNode(pc_root, "b");
    TVNC_XMLNode* pc_c = makeNode(pc_root, "c");
    makeNode(pc_c, "c1");
    DeathList deaths;
    deaths.watch(pc_root);
    delete pc_root;
    QCOMPARE(deaths.dead(), utf8("a1 a2x a2 a b c1 c root"));
}

void tst_TVNC_XMLNode::deletionCopesWithNullChildren()
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    pc_root->getXMLNodeChildren().append(nullptr);
    TVNC_XMLNode* pc_a = makeNode(pc_root, "a");
    pc_root->getXMLNodeChildren().append(nullptr);
    DeathList deaths;
    deaths.watch(pc_a);
    pc_a->getXMLNodeChildren().append(nullptr);
    delete pc_root;
    QCOMPARE(deaths.dead(), utf8("a"));
}

void tst_TVNC_XMLNode::childListedTwiceIsDeletedOnce()
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    QPointer<TVNC_XMLNode> inner(makeNode(pc_root, "inner"));
    QPointer<TVNC_XMLNode> leaf(makeNode(inner, "leaf"));
    pc_root->getXMLNodeChildren().append(inner);
    inner->getXMLNodeChildren().prepend(leaf);
    delete pc_root;
    QVERIFY(inner.isNull() && leaf.isNull());
}

void tst_TVNC_XMLNode::deletionThroughTheBaseAndDeferred()
{
    TVNC_XMLNode root(nullptr, 0);
    TVNC_XMLNode* pc_a = makeNode(&root, "a");
    makeNode(pc_a, "a1");
    TVNC_XMLNode* pc_b = makeNode(&root, "b");
    DeathList deaths;
    deaths.watch(pc_a);
    deaths.watch(pc_b);
    pc_a->deleteLater();
    QCOMPARE(childNames(&root), utf8("a b"));
    QCOMPARE(deaths.dead(), QString());
    releaseDeferred();
    QCOMPARE(childNames(&root), utf8("b"));
    QCOMPARE(deaths.dead(), utf8("a1 a"));
    QObject* pc_object = pc_b;
    delete pc_object;
    QCOMPARE(childNames(&root), QString());
}

void tst_TVNC_XMLNode::childListedUnderAStrangerLeavesItsParent()
{
    TVNC_XMLNode owner(nullptr, 0);
    TVNC_XMLNode* pc_child = makeNode(&owner, "a");
    makeNode(&owner, "b");
    TVNC_XMLNode* pc_stranger = makeNode(nullptr, "stranger");
    pc_stranger->getXMLNodeChildren().append(pc_child);
    delete pc_stranger; // deletes what it lists
    QCOMPARE(childNames(&owner), utf8("b"));
}

void tst_TVNC_XMLNode::deepTreesAreDeleted()
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    TVNC_XMLNode* pc_node = pc_root;
    for (int i = 0; i < 1000000; ++i)
        pc_node = new TVNC_XMLNode(pc_node, 0);
    QPointer<TVNC_XMLNode> deepest(pc_node);
    delete pc_root;
    QVERIFY(deepest.isNull());
}

void tst_TVNC_XMLNode::longListsAreBuiltAndDeleted()
{
    // With a search in the list for each addition or deletion this would run for hours.
    TVNC_XMLNode* pc_root = makeNode(nullptr, "root");
    for (int i = 0; i < 500000; ++i)
        new TVNC_XMLNode(pc_root, static_cast<char>(i % 2));
    QCOMPARE(pc_root->getXMLNodeChildren().size(), 500000);
    QPointer<TVNC_XMLNode> last(pc_root->getXMLNodeChildren().last());
    delete pc_root;
    QVERIFY(last.isNull());
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLNode)
#include "tst_TVNC_XMLNode.moc"
