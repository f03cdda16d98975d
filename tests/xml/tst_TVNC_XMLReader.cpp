#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QPointer>

/// What is kept of a document. tst_TVNC_XMLReader_input has the damaged and the hostile ones.
class tst_TVNC_XMLReader : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void keepsWhatADocumentHolds_data();
    void keepsWhatADocumentHolds();
    void textTypeIsThatOfTheKeptText();
    void parentsAreSet();
    void measuredFileIsReadAsItsTree();

    void missingFileGivesAnEmptyNode();
    void linkThatLeadsNowhereIsNoFile();
    void unopenableFileGivesAnEmptyNode();
    void fileWithoutAnElementGivesAnEmptyNode_data();
    void fileWithoutAnElementGivesAnEmptyNode();
    void deviceWithoutAnElementGivesNull_data();
    void deviceWithoutAnElementGivesNull();
    void readingLogsNothing();

    void deviceIsReadFromWhereItStands();
    void positionAndErrorCanBeAskedForAfterwards();
    void readerMayReadTwice();
    void filterGoesWithTheReader();
    void deviceMayGoBeforeTheReader();
    void deviceMayBeReplaced();
    void attributesAreThoseOfTheStreamReader_data();
    void attributesAreThoseOfTheStreamReader();
    void prefixedNumberIsNotTheNumber();
    void elementIsReadUnderAParent();
    void textIsStoredByTheRules();

    void recurringNamesAreOneString();
    void smallTextsStaySmall();
};

static QString treeOf(const QByteArray& document)
{
    QByteArray bytes = document;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    TVNC_XMLNode* pc_root = reader.read(buffer);
    const QString tree = describe(pc_root);
    delete pc_root;
    return tree;
}

void tst_TVNC_XMLReader::init()
{
    LogRecorder::clear();
}

void tst_TVNC_XMLReader::keepsWhatADocumentHolds_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("tree");

    QTest::newRow("one element") << QByteArray("<a/>") << utf8("a");
    QTest::newRow("declaration") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>\n")
                                 << utf8("a");
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF<a>x</a>") << utf8("a'x'");
    QTest::newRow("attributes in order") << QByteArray("<a z='1' b='2' q='3'/>") << utf8("a{z=1 b=2 q=3}");
    QTest::newRow("children in order") << QByteArray("<a><c/><b/><c/></a>") << utf8("a(c,b,c)");
    QTest::newRow("text") << QByteArray("<a>text</a>") << utf8("a'text'");
    QTest::newRow("blanks around text are text") << QByteArray("<a> x\n</a>") << utf8("a' x\n'");
    QTest::newRow("indentation is dropped") << QByteArray("<a>  <b/>  </a>") << utf8("a(b)");
    QTest::newRow("blank text is dropped") << QByteArray("<a> \t\n\r </a>") << utf8("a");
    QTest::newRow("first text only") << QByteArray("<a>x<b/>y</a>") << utf8("a'x'(b)");
    QTest::newRow("first text may come later") << QByteArray("<a> <b/>y<c/>z</a>") << utf8("a'y'(b,c)");
    QTest::newRow("comment splits text") << QByteArray("<a>x<!-- c -->y</a>") << utf8("a'x'");
    QTest::newRow("CDATA") << QByteArray("<a><![CDATA[<p>]]></a>") << utf8("a cdata'<p>'");
    QTest::newRow("first of two CDATA sections")
        << QByteArray("<a><![CDATA[x]]><![CDATA[y]]></a>") << utf8("a cdata'x'");
    QTest::newRow("text before CDATA") << QByteArray("<a>x<![CDATA[y]]></a>") << utf8("a'x'");
    QTest::newRow("blank CDATA is kept") << QByteArray("<a><![CDATA[  ]]></a>") << utf8("a cdata'  '");
    QTest::newRow("empty CDATA sets the type only") << QByteArray("<a><![CDATA[]]></a>") << utf8("a cdata''");
    QTest::newRow("text behind empty CDATA") << QByteArray("<a><![CDATA[]]>x</a>") << utf8("a'x'");
    QTest::newRow("reference to a blank is kept") << QByteArray("<a>&#32;</a>") << utf8("a' '");
    QTest::newRow("references") << QByteArray("<a q='&lt;&quot;&#9;'>&amp;&gt;&apos;&#x3042;</a>")
                                << utf8("a{q=<\"\t}'&>'あ'");
    QTest::newRow("references do not split text") << QByteArray("<a>x &amp; y</a>") << utf8("a'x & y'");
    QTest::newRow("line ends become line feeds") << QByteArray("<a>x\r\ny\rz</a>") << utf8("a'x\ny\nz'");
    QTest::newRow("comments and instructions are skipped")
        << QByteArray("<!-- 1 --><?i n?><a><!-- 2 --><b/><?i n?></a><!-- 3 --><?i n?>") << utf8("a(b)");
    QTest::newRow("prefixes of elements are not kept")
        << QByteArray("<p:a xmlns:p='u'><p:b/></p:a>") << utf8("a(b)");
    QTest::newRow("namespace declarations are no attributes")
        << QByteArray("<a xmlns='u' b='1'/>") << utf8("a{b=1}");
    QTest::newRow("all planes")
        << QByteArray("<a q='\xF0\x9F\x98\x80'>\xC3\xA9\xE3\x81\x82\xF4\x8F\xBF\xBD</a>")
        << QString::fromUtf8("a{q=\xF0\x9F\x98\x80}'\xC3\xA9\xE3\x81\x82\xF4\x8F\xBF\xBD'");
    QTest::newRow("names beyond ASCII") << QByteArray("<\xE3\x81\x82/>") << utf8("あ");
    QTest::newRow("bare document type") << QByteArray("<!DOCTYPE a><a>x</a>") << utf8("a'x'");
    QTest::newRow("document type with identifiers")
        << QByteArray("<!DOCTYPE a PUBLIC '-//X//Y' \"z]['>.dtd\"><a>x</a>") << utf8("a'x'");
    QTest::newRow("undeclared entity with external document type")
        << QByteArray("<!DOCTYPE a SYSTEM 'x'><a>1&foo;2</a>") << utf8("a'1'");
}

void tst_TVNC_XMLReader::keepsWhatADocumentHolds()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, tree);
    QCOMPARE(treeOf(document), tree);
}

void tst_TVNC_XMLReader::textTypeIsThatOfTheKeptText()
{
    QByteArray bytes("<a><b>x</b><c><![CDATA[x]]></c><d/></a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    const QList<TVNC_XMLNode*> children = root->getXMLNodeChildren();
    QCOMPARE(int(children.at(0)->getTextType()), 0);
    QCOMPARE(int(children.at(1)->getTextType()), 1);
    QCOMPARE(int(children.at(2)->getTextType()), 0);
}

void tst_TVNC_XMLReader::parentsAreSet()
{
    QByteArray bytes("<a><b><c/></b></a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    TVNC_XMLNode* pc_b = root->getXMLNodeChildren().at(0);
    QVERIFY(!root->getXMLNodeParent());
    QCOMPARE(pc_b->getXMLNodeParent(), root.data());
    QCOMPARE(pc_b->getXMLNodeChildren().at(0)->getXMLNodeParent(), pc_b);
}

void tst_TVNC_XMLReader::measuredFileIsReadAsItsTree()
{
    QString path = testData(utf8("bookmark.xml"));
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(path));
    // "<raw> & ]]> split" goes out as two CDATA sections, of which the first is read back.
    QCOMPARE(
        describe(root.data()),
        utf8("bookmarks{docInfo=1.0}("
             "bookmark{id=000}(href'http://example.com/?a=1&b=<2>\"'',title'Café 日本 😀 tab\there ]]> end',"
             "thumbnail'000001.PNG'),"
             "bookmark{id=001}(href,mixed'text'(child cdata'<raw> & ]]'),"
             "attrs{q=<a> & \"b\" 'c' \t \n ü}))"));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLReader::missingFileGivesAnEmptyNode()
{
    TempDir dir;
    QString path = dir.path() + utf8("absent.xml");
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(path));
    QVERIFY(root);
    QCOMPARE(describe(root.data()), QString());
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLReader::read file not exist!\n"));
    QVERIFY(!QFile::exists(path));
}

void tst_TVNC_XMLReader::linkThatLeadsNowhereIsNoFile()
{
    TempDir dir;
    QString path = dir.path() + utf8("link.xml");
    QVERIFY(QFile::link(dir.path() + utf8("absent.xml"), path));
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(path));
    QCOMPARE(describe(root.data()), QString());
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLReader::read file not exist!\n"));
}

void tst_TVNC_XMLReader::unopenableFileGivesAnEmptyNode()
{
    TempDir dir;
    QString path = dir.path() + utf8("directory.xml"); // root may open any file, but no directory
    QVERIFY(QDir().mkdir(path));
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(path));
    QVERIFY(root);
    QCOMPARE(describe(root.data()), QString());
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLReader::read file open error!\n"));
}

void tst_TVNC_XMLReader::fileWithoutAnElementGivesAnEmptyNode_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("<");
    QTest::newRow("three bytes") << QByteArray("<a>");
    QTest::newRow("declaration only") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    QTest::newRow("byte order mark only") << QByteArray("\xEF\xBB\xBF");
    QTest::newRow("comment only") << QByteArray("<!-- nothing -->");
    QTest::newRow("text only") << QByteArray("just text");
    QTest::newRow("end tag only") << QByteArray("</a><b/>");
}

void tst_TVNC_XMLReader::fileWithoutAnElementGivesAnEmptyNode()
{
    QFETCH(QByteArray, document);
    TempDir dir;
    QString path = dir.path() + utf8("x.xml");
    writeFile(path, document);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(path));
    QVERIFY(root);
    QCOMPARE(describe(root.data()), QString());
    QCOMPARE(int(root->getTextType()), 0);
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLReader::deviceWithoutAnElementGivesNull_data()
{
    fileWithoutAnElementGivesAnEmptyNode_data();
}

void tst_TVNC_XMLReader::deviceWithoutAnElementGivesNull()
{
    QFETCH(QByteArray, document);
    QCOMPARE(treeOf(document), utf8("0"));
}

void tst_TVNC_XMLReader::readingLogsNothing()
{
    treeOf("<a><b></a>");
    treeOf("<a/>");
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_XMLReader::deviceIsReadFromWhereItStands()
{
    QByteArray bytes("garbage<a>x</a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    buffer.seek(7);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    QCOMPARE(describe(root.data()), utf8("a'x'"));
}

void tst_TVNC_XMLReader::positionAndErrorCanBeAskedForAfterwards()
{
    QByteArray bytes("<a>\n  <b/>\n  <c></d>\n</a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    QCOMPARE(describe(root.data()), utf8("a(b,c)"));
    QVERIFY(reader.hasError());
    QCOMPARE(int(reader.lineNumber()), 3);
    QVERIFY(!reader.errorString().isEmpty());

    QByteArray good("<a/>");
    QBuffer goodBuffer(&good);
    goodBuffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader goodReader;
    root.reset(goodReader.read(goodBuffer));
    QVERIFY(!goodReader.hasError());
    QVERIFY(goodReader.atEnd());
}

void tst_TVNC_XMLReader::readerMayReadTwice()
{
    QByteArray bytes("<a>x</b>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    QCOMPARE(describe(root.data()), utf8("a'x'"));
    QByteArray other("<c>y</c>");
    QBuffer otherBuffer(&other);
    otherBuffer.open(QIODevice::ReadOnly);
    root.reset(reader.read(otherBuffer));
    QCOMPARE(describe(root.data()), utf8("c'y'"));
}

void tst_TVNC_XMLReader::filterGoesWithTheReader()
{
    QByteArray bytes("<a>x</a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QPointer<QIODevice> filter;
    for (int i = 0; i < 3; ++i) {
        TVNC_XMLReader reader;
        buffer.seek(0);
        delete reader.read(buffer);
        QVERIFY(buffer.children().isEmpty());
        filter = reader.device();
        QVERIFY(!filter.isNull());
        buffer.seek(0);
        delete reader.read(buffer);
        QVERIFY(filter.isNull());
        filter = reader.device();
    }
    QVERIFY(filter.isNull());
}

void tst_TVNC_XMLReader::deviceMayGoBeforeTheReader()
{
    TVNC_XMLReader reader;
    QPointer<QIODevice> filter;
    {
        QByteArray bytes("<a>x</b>");
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        delete reader.read(buffer);
        filter = reader.device();
    }
    QVERIFY(!filter.isNull());
    QVERIFY(reader.hasError());
    QVERIFY(reader.atEnd());
}

void tst_TVNC_XMLReader::deviceMayBeReplaced()
{
    QPointer<QIODevice> filter;
    {
        TVNC_XMLReader reader;
        QByteArray bytes("<a>x</a>");
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        delete reader.read(buffer);
        filter = reader.device();
        QScopedPointer<QBuffer> other(new QBuffer(&bytes));
        other->open(QIODevice::ReadOnly);
        reader.setDevice(other.data()); // gone before the reader, as Qt allows
    }
    QVERIFY(filter.isNull());
}

void tst_TVNC_XMLReader::attributesAreThoseOfTheStreamReader_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("none") << QByteArray("<a/>");
    QTest::newRow("plain") << QByteArray("<a b='1' c='2'/>");
    QTest::newRow("language") << QByteArray("<a xml:lang='ja' xml:space='preserve'/>");
    QTest::newRow("prefix") << QByteArray("<a xmlns:x='urn:u' x:id='5' id='6'/>");
    QTest::newRow("two prefixes of a namespace")
        << QByteArray("<a xmlns:x='urn:u' xmlns:y='urn:u' x:b='1' y:c='2'/>");
    QTest::newRow("prefix of the element") << QByteArray("<x:a xmlns:x='urn:u' x:b='1' c='2'/>");
    QTest::newRow("names beyond ASCII")
        << QByteArray("<a xmlns:\xE6\x97\xA5='urn:\xE6\x9C\xAC' \xE6\x97\xA5:\xC3\xA9='1'/>");
    QTest::newRow("default namespace") << QByteArray("<a xmlns='urn:u' b='1'/>");
}

void tst_TVNC_XMLReader::attributesAreThoseOfTheStreamReader()
{
    QFETCH(QByteArray, element);
    QXmlStreamReader stream(element);
    QVERIFY(stream.readNextStartElement());
    const QXmlStreamAttributes expected = stream.attributes();
    QBuffer buffer(&element);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    const QXmlStreamAttributes& attributes = root->getAttribute();
    QCOMPARE(attributes.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QString qualifiedName = expected.at(i).qualifiedName().toString();
        const QString namespaceUri = expected.at(i).namespaceUri().toString();
        const QString name = expected.at(i).name().toString();
        const QString value = expected.at(i).value().toString();
        QCOMPARE(attributes.at(i).qualifiedName().toString(), qualifiedName);
        QCOMPARE(attributes.at(i).namespaceUri().toString(), namespaceUri);
        QCOMPARE(attributes.at(i).name().toString(), name);
        QCOMPARE(attributes.at(i).prefix().toString(), expected.at(i).prefix().toString());
        QCOMPARE(attributes.at(i).value().toString(), value);
        QCOMPARE(attributes.value(qualifiedName).toString(), value);
        QCOMPARE(attributes.value(namespaceUri, name).toString(), value);
        QCOMPARE(attributes.value(name).toString(), expected.value(name).toString());
    }
}

void tst_TVNC_XMLReader::prefixedNumberIsNotTheNumber()
{
    QByteArray bytes("<a xmlns:x='urn:u'><b x:id='5'/><b id='5'/><b xml:id='6'/></a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    QString id = utf8("id");
    QCOMPARE(root->getXMLNodeChildByID(5, id), root->getXMLNodeChildren().at(1));
    QVERIFY(!root->getXMLNodeChildByID(6, id));
    QString prefixed = utf8("x:id");
    QCOMPARE(root->getXMLNodeChildByID(5, prefixed), root->getXMLNodeChildren().at(0));
}

void tst_TVNC_XMLReader::elementIsReadUnderAParent()
{
    TVNC_XMLReader reader;
    reader.addData(QByteArray("<a><b i='1'>x<c/></b><d/></a>"));
    reader.readNextStartElement(); // a
    reader.readNextStartElement(); // b
    TVNC_XMLNode parent(nullptr, 0);
    makeNode(&parent, "first");
    TVNC_XMLNode* pc_b = reader.readXMLNode(&parent);
    QCOMPARE(describe(&parent), utf8("(first,b{i=1}'x'(c))"));
    QCOMPARE(pc_b->getXMLNodeParent(), &parent);
    QVERIFY(reader.isEndElement()); // the reader stands on the end tag of b
    QCOMPARE(reader.name().toString(), utf8("b"));
    QVERIFY(reader.readNextStartElement());
    QCOMPARE(reader.name().toString(), utf8("d"));
}

void tst_TVNC_XMLReader::textIsStoredByTheRules()
{
    TVNC_XMLReader reader;
    reader.addData(QByteArray("<a>one<![CDATA[two]]> \t<b/></a>"));
    TVNC_XMLNode node(nullptr, 0);
    node.setTextType(7);

    reader.readNext(); // the start of the document
    reader.readText(&node);
    QCOMPARE(describe(&node), utf8(" type7''"));
    reader.readNext(); // <a>
    reader.readText(&node);
    QCOMPARE(describe(&node), utf8(" type7''"));
    reader.readNext();
    QCOMPARE(int(reader.tokenType()), 6);
    reader.readText(nullptr); // nothing happens
    reader.readText(&node);
    QCOMPARE(describe(&node), utf8("'one'"));
    reader.readNext(); // a second text is dropped
    reader.readText(&node);
    QCOMPARE(describe(&node), utf8("'one'"));
    TVNC_XMLNode other(nullptr, 0);
    reader.readText(&other);
    QCOMPARE(describe(&other), utf8(" cdata'two'"));
    reader.readNext(); // blanks
    TVNC_XMLNode blank(nullptr, 0);
    reader.readText(&blank);
    QCOMPARE(describe(&blank), QString());
}

void tst_TVNC_XMLReader::recurringNamesAreOneString()
{
    QByteArray bytes("<list><pageInfo id='0'><title/></pageInfo><pageInfo id='1'><title/></pageInfo></list>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    TVNC_XMLNode* pc_one = root->getXMLNodeChildren().at(0);
    TVNC_XMLNode* pc_two = root->getXMLNodeChildren().at(1);
    QVERIFY(pc_one->getName().constData() == pc_two->getName().constData());
    QVERIFY(pc_one->getXMLNodeChildren().at(0)->getName().constData() ==
            pc_two->getXMLNodeChildren().at(0)->getName().constData());
}

void tst_TVNC_XMLReader::smallTextsStaySmall()
{
    // A short text must not hold on to the room that a long one before it needed.
    QByteArray bytes("<a><b>" + QByteArray(100000, 'x') + "</b><c>y</c><d e='" + QByteArray(100000, 'z') +
                     "'/><f g='h'/></a>");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    const QList<TVNC_XMLNode*> children = root->getXMLNodeChildren();
    QVERIFY(children.at(1)->getText().capacity() < 100);
    const QXmlStreamAttributes& attributes = children.at(3)->getAttribute();
    QVERIFY(attributes.capacity() < 4);
    QCOMPARE(attributes.at(0).value().toString(), utf8("h"));
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLReader)
#include "tst_TVNC_XMLReader.moc"
