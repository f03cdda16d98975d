#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>

static const char DECLARATION[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

class tst_TVNC_XMLWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void fontListIsWrittenExactly();
    void awkwardCharactersAreWrittenAsOnTheDevice();
    void textTypeTellsTheForm_data();
    void textTypeTellsTheForm();
    void textStandsBeforeChildren();
    void attributesKeepTheirOrder();
    void prefixesAreDeclaredWhereTheyAreNeeded_data();
    void prefixesAreDeclaredWhereTheyAreNeeded();
    void namespacesWithoutAPrefixGetOneOfQts();

    void charactersThatXMLCannotHoldAreLeftOut_data();
    void charactersThatXMLCannotHoldAreLeftOut();
    void nothingButThatCharacterIsLost();
    void allOtherCharactersComeBack();
    void carriageReturnsComeBackAsLineFeeds();
    void cdataEndInsideCdataIsSplit();

    void formattingEndsAtADepthOf100_data();
    void formattingEndsAtADepthOf100();
    void formattingResumesBehindADeepElement();
    void aMillionNestedElementsAreWritten();

    void nullRootLeavesTheFile();
    void unopenableFileIsLogged();
    void writeErrorsAreNotDetected();
    void fileIsReplaced();
    void nullNodeStopsTheWriting_data();
    void nullNodeStopsTheWriting();
    void nullNodeDeepDownLeavesAReadableDocument();
    void elementIsWrittenIntoAnOpenDocument();
    void writerCanBeUsedAgain();
    void formattingCanBeSwitchedOff();
};

static QByteArray written(TVNC_XMLNode* pc_root)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    TVNC_XMLWriter writer;
    if (!writer.write(buffer, pc_root))
        return "(failed)";
    return bytes;
}

static QString readBack(const QByteArray& document)
{
    QByteArray bytes = document;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    return describe(root.data()) + (reader.hasError() ? utf8(" ERROR") : QString());
}

void tst_TVNC_XMLWriter::init()
{
    LogRecorder::clear();
}

void tst_TVNC_XMLWriter::fontListIsWrittenExactly()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "fontlist"));
    addAttribute(root.data(), "docInfo", utf8("1.0"));
    addAttribute(makeNode(root.data(), "font", "Sans"), "id", utf8("000"));
    addAttribute(makeNode(root.data(), "font", "Serif"), "id", utf8("001"));
    TempDir dir;
    QString path = dir.path() + utf8("fontlist.xml");
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(path, root.data()));
    QCOMPARE(readFile(path), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<fontlist docInfo=\"1.0\">\n"
                                        "    <font id=\"000\">Sans</font>\n"
                                        "    <font id=\"001\">Serif</font>\n"
                                        "</fontlist>\n"));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLWriter::awkwardCharactersAreWrittenAsOnTheDevice()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "bookmarks"));
    addAttribute(root.data(), "docInfo", utf8("1.0"));
    TVNC_XMLNode* pc_first = makeNode(root.data(), "bookmark");
    addAttribute(pc_first, "id", utf8("000"));
    makeNode(pc_first, "href", "http://example.com/?a=1&b=<2>\"'");
    makeNode(pc_first, "title", "Café 日本 😀 tab\there ]]> end");
    makeNode(pc_first, "thumbnail", "000001.PNG");
    TVNC_XMLNode* pc_second = makeNode(root.data(), "bookmark");
    addAttribute(pc_second, "id", utf8("001"));
    makeNode(pc_second, "href");
    makeNode(makeNode(pc_second, "mixed", "text"), "child", "<raw> & ]]> split", 1);
    addAttribute(makeNode(pc_second, "attrs"), "q", utf8("<a> & \"b\" 'c' \t \n ü"));
    QCOMPARE(written(root.data()), readFile(testData(utf8("bookmark.xml"))));
}

void tst_TVNC_XMLWriter::textTypeTellsTheForm_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("character data") << 0 << QByteArray("<p> & x") << QByteArray("<a>&lt;p&gt; &amp; x</a>");
    QTest::newRow("CDATA") << 1 << QByteArray("<p> & x") << QByteArray("<a><![CDATA[<p> & x]]></a>");
    QTest::newRow("2") << 2 << QByteArray("text") << QByteArray("<a/>");
    QTest::newRow("-1") << -1 << QByteArray("text") << QByteArray("<a/>");
    QTest::newRow("127") << 127 << QByteArray("text") << QByteArray("<a/>");
    QTest::newRow("no text") << 0 << QByteArray("") << QByteArray("<a/>");
    QTest::newRow("no CDATA") << 1 << QByteArray("") << QByteArray("<a/>");
    QTest::newRow("blank text") << 0 << QByteArray(" ") << QByteArray("<a> </a>");
}

void tst_TVNC_XMLWriter::textTypeTellsTheForm()
{
    QFETCH(int, type);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, element);
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", text.constData(), static_cast<char>(type)));
    QCOMPARE(written(root.data()), DECLARATION + element + '\n');
}

void tst_TVNC_XMLWriter::textStandsBeforeChildren()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", "text"));
    makeNode(root.data(), "b");
    QCOMPARE(written(root.data()), DECLARATION + QByteArray("<a>text<b/>\n</a>\n"));
    root->setTextType(2);
    QCOMPARE(written(root.data()), DECLARATION + QByteArray("<a>\n    <b/>\n</a>\n"));
}

void tst_TVNC_XMLWriter::attributesKeepTheirOrder()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
    addAttribute(root.data(), "z", utf8("1"));
    addAttribute(root.data(), "b", utf8(""));
    addAttribute(root.data(), "q", utf8("<\"'&>"));
    QCOMPARE(written(root.data()),
             DECLARATION + QByteArray("<a z=\"1\" b=\"\" q=\"&lt;&quot;'&amp;&gt;\"/>\n"));
}

void tst_TVNC_XMLWriter::prefixesAreDeclaredWhereTheyAreNeeded_data()
{
    QTest::addColumn<QByteArray>("read");
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char* pc_name, const char* pc_read, const char* pc_body) {
        QTest::newRow(pc_name) << QByteArray(pc_read) << QByteArray(pc_body);
    };
    row("language", "<a xml:lang='ja'/>", "<a xml:lang=\"ja\"/>\n");
    row("on the element", "<a xmlns:x='urn:u' x:b='1' b='2'/>", "<a xmlns:x=\"urn:u\" x:b=\"1\" b=\"2\"/>\n");
    row("around it", "<r xmlns:x='urn:u'><a x:b='1'/><a x:b='2'/></r>",
        "<r>\n    <a xmlns:x=\"urn:u\" x:b=\"1\"/>\n    <a xmlns:x=\"urn:u\" x:b=\"2\"/>\n</r>\n");
    row("once for all inside", "<a xmlns:x='urn:u' x:b='1'><c x:b='2'><d x:b='3'/></c></a>",
        "<a xmlns:x=\"urn:u\" x:b=\"1\">\n    <c x:b=\"2\">\n        <d x:b=\"3\"/>\n    </c>\n</a>\n");
    row("another meaning inside", "<a xmlns:x='urn:u' x:b='1'><c xmlns:x='urn:v' x:b='2'/><d x:b='3'/></a>",
        "<a xmlns:x=\"urn:u\" x:b=\"1\">\n    <c xmlns:x=\"urn:v\" x:b=\"2\"/>\n    <d x:b=\"3\"/>\n</a>\n");
    row("two prefixes of a namespace", "<a xmlns:x='urn:u' xmlns:y='urn:u' x:b='1' y:c='2'/>",
        "<a xmlns:x=\"urn:u\" xmlns:y=\"urn:u\" x:b=\"1\" y:c=\"2\"/>\n");
    row("as Qt would name one", "<a xmlns:n1='urn:u' xmlns:n2='urn:v' n2:b='1' n1:b='2'/>",
        "<a xmlns:n2=\"urn:v\" xmlns:n1=\"urn:u\" n2:b=\"1\" n1:b=\"2\"/>\n");
    row("markup in the namespace", "<a xmlns:x='u&amp;&quot;&lt;' x:b='1'/>",
        "<a xmlns:x=\"u&amp;&quot;&lt;\" x:b=\"1\"/>\n");
}

void tst_TVNC_XMLWriter::prefixesAreDeclaredWhereTheyAreNeeded()
{
    QFETCH(QByteArray, read);
    QFETCH(QByteArray, body);
    for (int i = 0; i < 2; ++i) { // what was written is read as it was
        QBuffer buffer(&read);
        buffer.open(QIODevice::ReadOnly);
        TVNC_XMLReader reader;
        QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
        QVERIFY(!reader.hasError());
        QCOMPARE(written(root.data()), DECLARATION + body);
        read = body;
    }
}

// As an application may make them, since Qt has no way to give an attribute both.
void tst_TVNC_XMLWriter::namespacesWithoutAPrefixGetOneOfQts()
{
    QByteArray document("<a xmlns:n1='urn:u' n1:b='1'/>");
    QBuffer buffer(&document);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    root->getAttribute().append(utf8("urn:v"), utf8("c"), utf8("2"));
    root->getAttribute().append(utf8("http://www.w3.org/XML/1998/namespace"), utf8("lang"), utf8("ja"));
    QCOMPARE(written(root.data()),
             DECLARATION + QByteArray("<a xmlns:n1=\"urn:u\" n1:b=\"1\""
                                      " xmlns:n2=\"urn:v\" n2:c=\"2\" xml:lang=\"ja\"/>\n"));
    // One prefix with two meanings, taken from two elements.
    QByteArray other("<a xmlns:n1='urn:w' n1:d='3'/>");
    QBuffer otherBuffer(&other);
    otherBuffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader otherReader;
    QScopedPointer<TVNC_XMLNode> otherRoot(otherReader.read(otherBuffer));
    QXmlStreamAttributes both = otherRoot->getAttribute();
    both.append(root->getAttribute().at(0));
    root->setAttribute(both);
    QCOMPARE(written(root.data()),
             DECLARATION + QByteArray("<a xmlns:n1=\"urn:w\" n1:d=\"3\" xmlns:n2=\"urn:u\" n2:b=\"1\"/>\n"));
}

void tst_TVNC_XMLWriter::charactersThatXMLCannotHoldAreLeftOut_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");

    const QString high = QString(QChar(0xD83D));
    const QString low = QString(QChar(0xDE00));
    const QString pair = high + low;
    for (int i = 0; i < 0x20; ++i) {
        if (i != '\t' && i != '\n' && i != '\r')
            QTest::newRow(qPrintable(QString::fromLatin1("U+%1").arg(i, 4, 16, QLatin1Char('0'))))
                << utf8("x") + QChar(i) + utf8("y") << utf8("xy");
    }
    QTest::newRow("U+FFFE") << utf8("x") + QChar(0xFFFE) + utf8("y") << utf8("xy");
    QTest::newRow("U+FFFF") << utf8("x") + QChar(0xFFFF) + utf8("y") << utf8("xy");
    QTest::newRow("high surrogate alone") << utf8("x") + high + utf8("y") << utf8("xy");
    QTest::newRow("low surrogate alone") << utf8("x") + low + utf8("y") << utf8("xy");
    QTest::newRow("high surrogate at the end") << utf8("xy") + high << utf8("xy");
    QTest::newRow("low surrogate at the start") << low + utf8("xy") << utf8("xy");
    QTest::newRow("pair") << utf8("x") + pair + utf8("y") << utf8("x😀y");
    QTest::newRow("two highs, one low") << utf8("x") + high + pair + utf8("y") << utf8("x😀y");
    QTest::newRow("low, high") << utf8("x") + low + high + utf8("y") << utf8("xy");
    QTest::newRow("pair, low") << utf8("x") + pair + low + utf8("y") << utf8("x😀y");
    QTest::newRow("at both ends and twice within")
        << QString(QChar(1)) + utf8("x") + QChar(2) + QChar(3) + utf8("y") + QChar(4) << utf8("xy");
    QTest::newRow("nothing else") << QString(QChar(1)) + QChar(0xFFFF) << QString();
}

void tst_TVNC_XMLWriter::charactersThatXMLCannotHoldAreLeftOut()
{
    QFETCH(QString, text);
    QFETCH(QString, kept);
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
    TVNC_XMLNode* pc_text = makeNode(root.data(), "t");
    pc_text->setText(text);
    TVNC_XMLNode* pc_cdata = makeNode(root.data(), "c", "", 1);
    pc_cdata->setText(text);
    addAttribute(makeNode(root.data(), "q"), "r", text);
    makeNode(root.data(), "last", "record");

    const QByteArray bytes = kept.toUtf8();
    const QByteArray document = written(root.data());
    QCOMPARE(document, DECLARATION + QByteArray("<a>\n    ") +
                           (bytes.isEmpty() ? "<t/>\n    <c/>"
                                            : "<t>" + bytes + "</t>\n    <c><![CDATA[" + bytes + "]]></c>") +
                           "\n    <q r=\"" + bytes + "\"/>\n    <last>record</last>\n</a>\n");
    // And the tree in memory keeps what it had.
    QCOMPARE(pc_text->getText(), text);
}

void tst_TVNC_XMLWriter::nothingButThatCharacterIsLost()
{
    // A title with a control character, as a web page can set it, among a hundred records.
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "history"));
    for (int i = 0; i < 100; ++i) {
        TVNC_XMLNode* pc_page = makeNode(root.data(), "pageInfo");
        makeNode(pc_page, "title", i == 50 ? "bad \x01 title" : "title");
        makeNode(pc_page, "url", "http://example.org/");
    }
    QString expected = describe(root.data());
    expected.remove(QChar(1));
    QCOMPARE(readBack(written(root.data())), expected);
}

void tst_TVNC_XMLWriter::allOtherCharactersComeBack()
{
    // All that XML 1.0 has, in pieces of 256, but the noncharacters, which Qt 4 cannot encode.
    for (uint base = 0x20; base < 0x110000; base += base < 0x10000 ? 0x100 : 0x1100) {
        QString text;
        for (uint c = base; c < base + 0x100; ++c) {
            const bool noncharacter = (c & 0xFFFE) == 0xFFFE || (c >= 0xFDD0 && c <= 0xFDEF);
            const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
            if (!noncharacter && !surrogate)
                text += c < 0x10000 ? QString(QChar(c))
                                    : QString(QChar(QChar::highSurrogate(c))) + QChar(QChar::lowSurrogate(c));
        }
        if (text.isEmpty())
            continue;
        QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
        root->setText(text);
        TVNC_XMLNode* pc_cdata = makeNode(root.data(), "c", "", 1);
        QString cdata = text;
        cdata.remove(QLatin1String("]]>"));
        pc_cdata->setText(cdata);
        addAttribute(root.data(), "q", text);
        QCOMPARE(readBack(written(root.data())), describe(root.data()));
    }
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", "tab\tline\nend"));
    addAttribute(root.data(), "q", utf8("tab\tline\nreturn\rend"));
    QCOMPARE(readBack(written(root.data())), describe(root.data()));
}

void tst_TVNC_XMLWriter::carriageReturnsComeBackAsLineFeeds()
{
    // A limit of the format: XML readers turn the ends of lines in texts into line feeds.
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", "x\ry\r\nz"));
    QCOMPARE(readBack(written(root.data())), utf8("a'x\ny\nz'"));
}

void tst_TVNC_XMLWriter::cdataEndInsideCdataIsSplit()
{
    // Two sections, of which the first is read back: a limit of the format.
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", "x]]>y", 1));
    const QByteArray document = written(root.data());
    QCOMPARE(document, DECLARATION + QByteArray("<a><![CDATA[x]]]]><![CDATA[>y]]></a>\n"));
    QCOMPARE(readBack(document), utf8("a cdata'x]]'"));
}

/// A chain of elements <e>, the root being at depth 1.
static TVNC_XMLNode* chain(int si_depth)
{
    TVNC_XMLNode* pc_root = makeNode(nullptr, "e");
    TVNC_XMLNode* pc_node = pc_root;
    for (int i = 1; i < si_depth; ++i)
        pc_node = makeNode(pc_node, "e");
    return pc_root;
}

void tst_TVNC_XMLWriter::formattingEndsAtADepthOf100_data()
{
    QTest::addColumn<int>("depth");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
    QTest::newRow("99") << 99;
    QTest::newRow("100") << 100;
    QTest::newRow("101") << 101;
    QTest::newRow("102") << 102;
    QTest::newRow("150") << 150;
}

void tst_TVNC_XMLWriter::formattingEndsAtADepthOf100()
{
    QFETCH(int, depth);
    QByteArray expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    for (int i = 1; i <= depth; ++i) {
        if (i <= 100)
            expected += '\n' + QByteArray(4 * (i - 1), ' ');
        expected += i == depth ? "<e/>" : "<e>";
    }
    for (int i = depth - 1; i >= 1; --i) {
        if (i <= 100)
            expected += '\n' + QByteArray(4 * (i - 1), ' ');
        expected += "</e>";
    }
    QScopedPointer<TVNC_XMLNode> root(chain(depth));
    QCOMPARE(written(root.data()), expected + '\n');
}

void tst_TVNC_XMLWriter::formattingResumesBehindADeepElement()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "r"));
    char c_append = 0;
    root->addXMLNode(chain(103), c_append);
    makeNode(root.data(), "s", "text");
    const QByteArray document = written(root.data());
    QVERIFY(document.endsWith("\n    </e>\n    <s>text</s>\n</r>\n"));
    QVERIFY(document.contains("<e><e><e><e><e/></e></e></e>\n"));
}

void tst_TVNC_XMLWriter::aMillionNestedElementsAreWritten()
{
    QScopedPointer<TVNC_XMLNode> root(chain(1000000));
    QByteArray document;
    QBuffer buffer(&document);
    buffer.open(QIODevice::ReadWrite);
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(buffer, root.data()));
    QVERIFY(document.size() < 7100000); // seven bytes an element, and the indentation of the first hundred
    QCOMPARE(document.count("<e>"), 999999);
    QCOMPARE(document.count("</e>"), 999999);
}

void tst_TVNC_XMLWriter::nullRootLeavesTheFile()
{
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, "as it was");
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(path, nullptr));
    QCOMPARE(readFile(path), QByteArray("as it was"));
    QString absent = dir.path() + utf8("absent.xml");
    QVERIFY(!writer.write(absent, nullptr));
    QVERIFY(!QFile::exists(absent));

    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(!writer.write(buffer, nullptr));
    QVERIFY(bytes.isEmpty());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLWriter::unopenableFileIsLogged()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
    TempDir dir;
    QString path = dir.path() + utf8("absent/x.xml");
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(path, root.data()));
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLWriter::write file open error!\n"));
    QString directory = dir.path();
    QVERIFY(!writer.write(directory, root.data()));
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLWriter::write file open error!\n"));
}

void tst_TVNC_XMLWriter::writeErrorsAreNotDetected()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
    for (int i = 0; i < 10000; ++i)
        makeNode(root.data(), "record", "more than any buffer holds");
    QString path = utf8("/dev/full");
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(path, root.data()));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLWriter::fileIsReplaced()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a"));
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, QByteArray(100000, 'x'));
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(path, root.data()));
    QCOMPARE(readFile(path), DECLARATION + QByteArray("<a/>\n"));
    // Nothing else appears beside it.
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList(utf8("x.xml")));
}

void tst_TVNC_XMLWriter::nullNodeStopsTheWriting_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("first") << 0 << QByteArray("<r/>\n");
    QTest::newRow("second") << 1 << QByteArray("<r>\n    <a>x</a>\n</r>\n");
    QTest::newRow("last") << 2 << QByteArray("<r>\n    <a>x</a>\n    <b/>\n</r>\n");
}

void tst_TVNC_XMLWriter::nullNodeStopsTheWriting()
{
    QFETCH(int, position);
    QFETCH(QByteArray, document);
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "r"));
    makeNode(root.data(), "a", "x");
    makeNode(root.data(), "b");
    root->getXMLNodeChildren().insert(position, nullptr);
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(path, root.data()));
    QCOMPARE(readFile(path), DECLARATION + document);
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.\n"));
}

void tst_TVNC_XMLWriter::nullNodeDeepDownLeavesAReadableDocument()
{
    QScopedPointer<TVNC_XMLNode> root(chain(200000));
    TVNC_XMLNode* pc_deepest = root.data();
    while (!pc_deepest->getXMLNodeChildren().isEmpty())
        pc_deepest = pc_deepest->getXMLNodeChildren().first();
    pc_deepest->getXMLNodeChildren().append(nullptr);
    QByteArray document;
    QBuffer buffer(&document);
    buffer.open(QIODevice::ReadWrite);
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(buffer, root.data()));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.\n"));
    QVERIFY(document.size() < 1500000);
    QVERIFY(document.endsWith("\n    </e>\n</e>\n"));
    buffer.seek(0);
    TVNC_XMLReader reader;
    root.reset(reader.read(buffer));
    QVERIFY(!reader.hasError());
}

void tst_TVNC_XMLWriter::elementIsWrittenIntoAnOpenDocument()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    TVNC_XMLWriter writer;
    writer.setDevice(&buffer);
    writer.writeStartDocument();
    writer.writeStartElement(utf8("outer"));
    QScopedPointer<TVNC_XMLNode> node(makeNode(nullptr, "a", "x"));
    makeNode(node.data(), "b");
    QVERIFY(writer.writeXMLNode(node.data()));
    QVERIFY(!writer.writeXMLNode(nullptr));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.\n"));
    node->getXMLNodeChildren().append(nullptr);
    QVERIFY(!writer.writeXMLNode(node.data())); // its end tag is left to the end of the document
    writer.writeEndDocument();
    QCOMPARE(bytes,
             DECLARATION + QByteArray("<outer>\n    <a>x<b/>\n    </a>\n    <a>x<b/>\n    </a>\n</outer>\n"));
}

void tst_TVNC_XMLWriter::writerCanBeUsedAgain()
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "a", "x"));
    makeNode(root.data(), "b");
    TempDir dir;
    QString one = dir.path() + utf8("one.xml");
    QString two = dir.path() + utf8("two.xml");
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(one, root.data()));
    QVERIFY(writer.write(two, root.data()));
    QCOMPARE(readFile(one), DECLARATION + QByteArray("<a>x<b/>\n</a>\n"));
    QCOMPARE(readFile(two), readFile(one));
}

void tst_TVNC_XMLWriter::formattingCanBeSwitchedOff()
{
    QScopedPointer<TVNC_XMLNode> root(chain(150));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    TVNC_XMLWriter writer;
    QVERIFY(writer.autoFormatting());
    QCOMPARE(writer.autoFormattingIndent(), 4);
    writer.setAutoFormatting(false);
    QVERIFY(writer.write(buffer, root.data()));
    QVERIFY(!writer.autoFormatting());
    QVERIFY(!bytes.contains(' ') || bytes.lastIndexOf(' ') < bytes.indexOf("?>"));

    writer.setAutoFormatting(true);
    QVERIFY(writer.write(buffer, root.data()));
    QVERIFY(writer.autoFormatting());
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLWriter)
#include "tst_TVNC_XMLWriter.moc"
