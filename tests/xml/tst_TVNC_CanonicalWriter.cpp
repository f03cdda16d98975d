#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLWriter.h>

/**
 * Saving a setting writes most trees in a faster way than the writer does. Both must write the same bytes.
 */
class tst_TVNC_CanonicalWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void sameBytesAsTheWriter_data();
    void sameBytesAsTheWriter();
    void sameBytesOfUnusualAttributes();
    void sameBytesOfDeepTrees();
    void sameBytesOfLongTexts_data();
    void sameBytesOfLongTexts();
    void sameBytesOfRandomTrees();
    void sameLogForNullNodes();

private:
    TVNC_XMLNode* root() { return setting_->getXMLRootNode(); }
    QByteArray saved();
    QByteArray written();
    QString randomText();

    QScopedPointer<TempDir> dir_;
    Setting* setting_;
    QScopedPointer<Random> random_;
};

void tst_TVNC_CanonicalWriter::init()
{
    dir_.reset(new TempDir);
    setting_ = new Setting;
    setting_->createXMLRootNode();
    random_.reset(new Random(20110412));
}

void tst_TVNC_CanonicalWriter::cleanup()
{
    delete setting_;
    releaseDeferred();
    LogRecorder::clear();
    dir_.reset();
}

QByteArray tst_TVNC_CanonicalWriter::saved()
{
    QString path = dir_->path() + utf8("saved.xml");
    setting_->save(path);
    return readFile(path);
}

QByteArray tst_TVNC_CanonicalWriter::written()
{
    QString path = dir_->path() + utf8("written.xml");
    TVNC_XMLWriter writer;
    writer.write(path, root());
    return readFile(path);
}

void tst_TVNC_CanonicalWriter::sameBytesAsTheWriter_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("element"); // with the text as character data
    const auto row = [](const char* pc_name, const QString& text, const char* pc_element) {
        QTest::newRow(pc_name) << utf8("a") << text << QByteArray(pc_element);
    };
    row("plain", utf8("x y"), "<a b=\"x y\">x y</a>");
    row("empty", QString(), "<a b=\"\"/>");
    row("markup", utf8("<&>\"'"), "<a b=\"&lt;&amp;&gt;&quot;'\">&lt;&amp;&gt;&quot;'</a>");
    row("blanks", utf8("x\ty\nz\rw"), "<a b=\"x&#9;y&#10;z&#13;w\">x\ty\nz\rw</a>");
    row("controls", utf8("x\x01\x0B\x0C\x1Fy"), "<a b=\"xy\">xy</a>");
    row("controls alone", utf8("\x01"), "<a b=\"\"/>");
    row("delete and C1", QString(QChar(0x7F)) + QChar(0x85), "<a b=\"\x7F\xC2\x85\">\x7F\xC2\x85</a>");
    row("first of C1", QString(QChar(0x80)), "<a b=\"\xC2\x80\">\xC2\x80</a>");
    row("all planes", utf8("\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80z"),
        "<a b=\"\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80z\">\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80z</a>");
    row("lone surrogates", QString(QChar(0xD800)) + utf8("x") + QChar(0xDC00), "<a b=\"x\">x</a>");
    row("U+FFFE", QString(QChar(0xFFFE)) + utf8("x"), "<a b=\"x\">x</a>");
    row("byte order mark", QString(QChar(0xFEFF)) + utf8("x"), "<a b=\"\xEF\xBB\xBFx\">\xEF\xBB\xBFx</a>");
    row("zero", utf8("x") + QChar(0) + utf8("y"), "<a b=\"xy\">xy</a>");
    row("end of CDATA", utf8("]]>x]]]>"), "<a b=\"]]&gt;x]]]&gt;\">]]&gt;x]]]&gt;</a>");
    QTest::newRow("name") << utf8("a-b.c_1") << utf8("x") << QByteArray("<a-b.c_1 b=\"x\">x</a-b.c_1>");
    const QString longest(1024, QLatin1Char('a'));
    QTest::newRow("long name") << longest << utf8("x")
                               << "<" + longest.toLatin1() + " b=\"x\">x</" + longest.toLatin1() + '>';
    QTest::newRow("longer name") << longest + utf8("a") << utf8("x")
                                 << "<a" + longest.toLatin1() + " b=\"x\">x</a" + longest.toLatin1() + '>';
    QTest::newRow("no name") << QString() << utf8("x") << QByteArray("< b=\"x\">x</>");
    QTest::newRow("name with a character that no name has")
        << utf8("a b") << utf8("x") << QByteArray("<a b b=\"x\">x</a b>");
    QTest::newRow("name that begins like no name")
        << utf8("1a") << utf8("x") << QByteArray("<1a b=\"x\">x</1a>");
    QTest::newRow("name of two bytes")
        << utf8("\xC3\xA9") << utf8("x") << QByteArray("<\xC3\xA9 b=\"x\">x</\xC3\xA9>");
}

void tst_TVNC_CanonicalWriter::sameBytesAsTheWriter()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QByteArray, element);
    const QByteArray declaration("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    root()->setName(name);
    root()->setText(text);
    addAttribute(root(), "b", text);
    QCOMPARE(saved(), declaration + element + '\n');
    QCOMPARE(written(), declaration + element + '\n');
    // In every other form of an element, too.
    for (char c_type = 0; c_type <= 2; ++c_type) {
        root()->setTextType(c_type);
        QCOMPARE(saved(), written());
        makeNode(root(), "c", "text", c_type);
        QCOMPARE(saved(), written());
        makeNode(root(), "d")->setName(name);
        QCOMPARE(saved(), written());
        makeNode(root()->getXMLNodeChildren().at(1), "e")->setText(text);
        QCOMPARE(saved(), written());
    }
}

void tst_TVNC_CanonicalWriter::sameBytesOfUnusualAttributes()
{
    const QByteArray declaration("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    QString name = utf8("a");
    root()->setName(name);
    addAttribute(root(), "b c", utf8("x"));
    QCOMPARE(saved(), declaration + "<a b c=\"x\"/>\n");
    QCOMPARE(written(), saved());
    root()->getAttribute().clear();
    root()->getAttribute().append(QXmlStreamAttribute(utf8("urn:u"), utf8("b"), utf8("x")));
    QCOMPARE(saved(), written());
    QVERIFY(saved().contains("urn:u"));
}

void tst_TVNC_CanonicalWriter::sameBytesOfDeepTrees()
{
    QString name = utf8("a");
    root()->setName(name);
    TVNC_XMLNode* pc_node = root();
    for (int si_depth = 2; si_depth <= 103; ++si_depth) {
        pc_node = makeNode(pc_node, "b", si_depth % 3 == 0 ? "text" : "");
        if (si_depth > 97)
            QCOMPARE(saved(), written());
    }
}

void tst_TVNC_CanonicalWriter::sameBytesOfLongTexts_data()
{
    QTest::addColumn<QString>("unit");
    QTest::newRow("ASCII") << utf8("x");
    QTest::newRow("markup") << utf8("<&x");
    QTest::newRow("Japanese") << utf8("\xE6\x97\xA5");
    QTest::newRow("beyond the first plane") << utf8("x\xF0\x9F\x98\x80");
    QTest::newRow("end of CDATA") << utf8("]]>");
    QTest::newRow("brackets") << utf8("]");
}

void tst_TVNC_CanonicalWriter::sameBytesOfLongTexts()
{
    QFETCH(QString, unit);
    QString name = utf8("a");
    root()->setName(name);
    // Around the sizes at which pieces are written.
    const int si_sizes[] = {1, 8191, 16385, 65535, 65536, 65537, 70001, 200003};
    for (size_t i = 0; i < sizeof si_sizes / sizeof si_sizes[0]; ++i) {
        QString text = unit.repeated(si_sizes[i] / static_cast<int>(unit.size()) + 1).left(si_sizes[i]);
        for (char c_type = 0; c_type <= 1; ++c_type) {
            root()->setText(text);
            root()->setTextType(c_type);
            QVERIFY(saved() == written());
        }
    }
}

QString tst_TVNC_CanonicalWriter::randomText()
{
    static const ushort UNITS[] = {'x',    ' ',    '\n',   '\t',   '\r',   '<',    '>',   '&',  '"',
                                   '\'',   ']',    ']',    0,      1,      0x1F,   0x7F,  0xE9, 0x65E5,
                                   0xD83D, 0xDE00, 0xFDD0, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF};
    QString text;
    for (quint32 i = random_->next(12); i > 0; --i)
        text.append(QChar(UNITS[random_->next(sizeof UNITS / sizeof UNITS[0])]));
    return text;
}

void tst_TVNC_CanonicalWriter::sameBytesOfRandomTrees()
{
    const char* const pc_names[] = {"a", "pageInfo", "x-1", "_y", "title"};
    for (int i = 0; i < 2000; ++i) {
        setting_->createXMLRootNode();
        QString name = utf8("root");
        root()->setName(name);
        QList<TVNC_XMLNode*> nodes;
        nodes.append(root());
        for (quint32 j = random_->next(20); j > 0; --j) {
            TVNC_XMLNode* pc_parent =
                nodes.at(static_cast<int>(random_->next(static_cast<quint32>(nodes.size()))));
            TVNC_XMLNode* pc_node =
                makeNode(pc_parent, pc_names[random_->next(5)], "", static_cast<char>(random_->next(3)));
            QString text = randomText();
            pc_node->setText(text);
            for (quint32 k = random_->next(3); k > 0; --k)
                addAttribute(pc_node, pc_names[k], randomText());
            nodes.append(pc_node);
        }
        QCOMPARE(saved(), written());
        if (i % 100 == 0)
            releaseDeferred();
    }
}

void tst_TVNC_CanonicalWriter::sameLogForNullNodes()
{
    makeNode(root(), "a", "x");
    root()->getXMLNodeChildren().append(nullptr);
    makeNode(root(), "b", "y");
    LogRecorder::clear();
    const QByteArray bytes = saved();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "1 [TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"));
    QCOMPARE(bytes, written());
}

TLVLIB_TEST_MAIN(tst_TVNC_CanonicalWriter)
#include "tst_TVNC_CanonicalWriter.moc"
