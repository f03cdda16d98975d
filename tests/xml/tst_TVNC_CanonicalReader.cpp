#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

/**
 * Loading a setting reads documents in the library's own form in a faster way than the reader does. Both must
 * make the same tree of every file.
 */
class tst_TVNC_CanonicalReader : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_.reset(new TempDir); }
    void cleanup();

    void sameTreeAsTheReaders_data();
    void sameTreeAsTheReaders();
    void sameTreeOfMutatedDocuments_data();
    void sameTreeOfMutatedDocuments();
    void numbersOfOneDocumentAreNotThoseOfAnother();
    void sameTreeAcrossPieces_data();
    void sameTreeAcrossPieces();
    void longDocumentsAreReadToTheirEnd();
    void longSectionIsATextLikeAnyOther_data();
    void longSectionIsATextLikeAnyOther();
    void memoryThatRunsOutIsNoEndOfTheDocument();

private:
    QString path() const { return dir_->path() + utf8("document.xml"); }
    QString loaded();
    QString read();

    QScopedPointer<TempDir> dir_;
};

void tst_TVNC_CanonicalReader::cleanup()
{
    failingNode = 0;
    LogRecorder::take();
    releaseDeferred();
    dir_.reset();
}

QString tst_TVNC_CanonicalReader::loaded()
{
    Setting setting;
    QString file = path();
    setting.load(file);
    return describe(setting.getXMLRootNode());
}

QString tst_TVNC_CanonicalReader::read()
{
    TVNC_XMLReader reader;
    QString file = path();
    QScopedPointer<TVNC_XMLNode> root(reader.read(file));
    return describe(root.data());
}

void tst_TVNC_CanonicalReader::sameTreeAsTheReaders_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("tree");
    const auto row = [](const char* pc_name, const QByteArray& body, const char* pc_tree) {
        QTest::newRow(pc_name) << body << utf8(pc_tree);
    };
    row("record", "<a d=\"1.0\">\n    <b id=\"000\">\n        <c>x y</c>\n    </b>\n</a>\n",
        "a{d=1.0}(b{id=000}(c'x y'))");
    row("empty", "<a/>", "a");
    row("empty with an end tag", "<a></a>", "a");
    row("numbers",
        "<a><b id=\"998\"/><b id=\"999\"/><b id=\"00\"/><b id=\"0x1\"/><b id=\"001\" x=\"2\"/>"
        "<b x=\"2\" id=\"001\"/></a>",
        "a(b{id=998},b{id=999},b{id=00},b{id=0x1},b{id=001 x=2},b{x=2 id=001})");
    row("names that are none", "<a><b>x</b><`/></a>", "a(b'x')");
    row("names with what no name has", "<a><b>x</b><c{/></a>", "a(b'x')");
    row("name that begins with a digit", "<a><b>x</b><9/></a>", "a(b'x')");
    row("entities", "<a>&lt;&gt;&amp;&quot;&apos;x&amp;amp;</a>", "a'<>&\"'x&amp;'");
    row("entity first in a blank", "<a>  &lt;  </a>", "a'  <  '");
    row("numeric entity", "<a>&#65;&#x42;</a>", "a'AB'");
    row("numeric blank", "<a>&#32;</a>", "a' '"); // written so, it is a text
    row("unknown entity", "<a>x&nbsp;</a>", "a'x'");
    row("bare ampersand", "<a>x & y</a>", "a");
    row("entity in an attribute", "<a b=\"&lt;x&gt;\"/>", "a{b=<x>}");
    row("greater than", "<a>x > y</a>", "a'x > y'");
    row("end of CDATA in a text", "<a>x]]>y</a>", "a");
    row("cdata", "<a><![CDATA[<x>&amp;]] >]]></a>", "a cdata'<x>&amp;]] >'");
    row("empty cdata", "<a><![CDATA[]]><b/></a>", "a cdata''(b)");
    row("blank cdata", "<a><![CDATA[ \n ]]>x</a>", "a cdata' \n '");
    row("cdata behind text", "<a>x<![CDATA[y]]></a>", "a'x'");
    row("text behind cdata", "<a><![CDATA[y]]>x</a>", "a cdata'y'");
    row("text behind a child", "<a><b/>x<b/>y</a>", "a'x'(b,b)");
    row("text around children", "<a> \n <b/> x <b/></a>", "a' x '(b,b)");
    row("tab and line feed", "<a>x\ty\nz</a>", "a'x\ty\nz'");
    row("carriage return", "<a>x\r\ny\rz</a>", "a'x\ny\nz'");
    row("UTF-8", "<a>\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80</a>", "a'\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80'");
    row("UTF-8 in an attribute", "<a b=\"\xC3\xA9\"/>", "a{b=\xC3\xA9}");
    row("name of two bytes", "<\xC3\xA9>x</\xC3\xA9>", "\xC3\xA9'x'");
    row("byte order mark in a text", "<a>\xEF\xBB\xBFx</a>", "a'\xEF\xBB\xBFx'");
    row("overlong", "<a><b>x</b><c>\xC0\xAF</c></a>", "a(b'x',c)");
    row("continuation alone", "<a><b>x</b><c>\x80</c></a>", "a(b'x',c)");
    row("continuation alone in CDATA", "<a><b>x</b><c><![CDATA[\x80]]></c></a>", "a(b'x',c)");
    row("continuation alone in an attribute", "<a><b>x</b><c d=\"\x80\"/></a>", "a(b'x')");
    row("surrogate", "<a><b>x</b><c>\xED\xA0\x80</c></a>", "a(b'x',c)");
    row("beyond the last", "<a><b>x</b><c>\xF4\x90\x80\x80</c></a>", "a(b'x',c)");
    row("cut off character", "<a>x\xE6\x97</a>", "a"); // no end of the text before it
    row("control character", "<a><b>x</b>\x01</a>", "a(b'x')");
    row("zero byte", QByteArray("<a><b>x</b>\0</a>", 15), "a(b'x')");
    row("U+FFFE", "<a><b>x</b>\xEF\xBF\xBE</a>", "a(b'x')");
    row("comment", "<a><!-- c --><b/></a>", "a(b)");
    row("instruction", "<a><?x y?><b/></a>", "a(b)");
    row("doctype", "<!DOCTYPE a><a><b/></a>", "a(b)");
    row("namespace", "<a xmlns=\"urn:x\"><p:b xmlns:p=\"urn:y\" p:c=\"1\"/></a>", "a(b{p:c=1})");
    row("attribute xml", "<a xmlish=\"1\"/>", "a{xmlish=1}");
    row("single quotes", "<a b='1'/>", "a{b=1}");
    row("spaces in a tag", "<a  b = \"1\" ><c /></a >", "a{b=1}(c)");
    row("attribute twice", "<a><b/><c d=\"1\" d=\"2\"/></a>", "a(b)");
    row("tab in an attribute", "<a b=\"x\ty\"/>", "a{b=x y}");
    row("less than in an attribute", "<a><b/><c d=\"<\"/></a>", "a(b)");
    row("wrong end tag", "<a><b>x</c></a>", "a(b'x')");
    row("end tag with more", "<a><b>x</bb></a>", "a(b'x')");
    row("unclosed", "<a><b>x</b>", "a(b'x')");
    row("open tag at the end", "<a><b", "a");
    row("two roots", "<a/><b/>", "a");
    row("text behind the root", "<a/>x", "a");
    row("comment behind the root", "<a/><!-- c -->", "a");
    row("nothing", "", "");
    row("text alone", "text", "");
}

void tst_TVNC_CanonicalReader::sameTreeAsTheReaders()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, tree);
    const char* const pc_declarations[] = {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", "",
                                           "<?xml version='1.0'?>", "\xEF\xBB\xBF"};
    for (size_t i = 0; i < sizeof pc_declarations / sizeof pc_declarations[0]; ++i) {
        writeFile(path(), pc_declarations[i] + body);
        QCOMPARE(loaded(), tree);
        QCOMPARE(read(), tree);
    }
}

void tst_TVNC_CanonicalReader::sameTreeOfMutatedDocuments_data()
{
    QTest::addColumn<QByteArray>("document");
    const QByteArray declaration("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    QTest::newRow("records") << declaration +
                                    "<h d=\"1.0\">\n    <p id=\"000\">\n        <t>x &amp; \xE6\x97\xA5</t>\n"
                                    "        <u><![CDATA[a]]b]]></u>\n    </p>\n    <p id=\"001\"/>\n</h>\n";
    QTest::newRow("dense") << declaration + "<a b=\"1\" c=\"\">x<b/>y<![CDATA[z]]>&lt;<c>\xC3\xA9</c></a>";
}

void tst_TVNC_CanonicalReader::sameTreeOfMutatedDocuments()
{
    QFETCH(QByteArray, document);
    static const char BYTES[] =
        " \n\t\r\0\x01<>/=\"'&;!?[]-:xml01a_.\x7F\x80\xBF\xC3\xE6\xED\xEF\xF0\xF4\xFF";
    const quint32 ul_bytes = sizeof BYTES - 1;
    Random random(20110412);
    for (int i = 0; i < 8000; ++i) {
        QByteArray mutated = document;
        for (int j = 0; j <= i % 3 && !mutated.isEmpty(); ++j) {
            const int si_place = static_cast<int>(random.next(static_cast<quint32>(mutated.size())));
            const int si_other = static_cast<int>(random.next(static_cast<quint32>(mutated.size())));
            const char c_byte = BYTES[random.next(ul_bytes)];
            switch (random.next(5)) {
            case 0:
                mutated[si_place] = c_byte;
                break;
            case 1:
                mutated.insert(si_place, c_byte);
                break;
            case 2:
                mutated.remove(si_place, 1 + si_other % 4);
                break;
            case 3:
                mutated.insert(si_place, mutated.mid(si_other, 1 + si_place % 12));
                break;
            default:
                mutated.truncate(qMax(si_place, 1));
                break;
            }
        }
        writeFile(path(), mutated);
        if (loaded() == read())
            continue;
        qWarning("document: %s", mutated.toHex().constData());
        QCOMPARE(loaded(), read());
    }
}

void tst_TVNC_CanonicalReader::numbersOfOneDocumentAreNotThoseOfAnother()
{
    // Numbers are shared between documents, but not what becomes of them.
    const QByteArray document(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><b id=\"000\"/><b id=\"001\"/></a>");
    writeFile(path(), document);
    Setting first;
    QString file = path();
    first.load(file);
    addAttribute(first.getXMLRootNode()->getXMLNodeChildren().at(0), "x", utf8("1"));
    QCOMPARE(describe(first.getXMLRootNode()), utf8("a(b{id=000 x=1},b{id=001})"));
    QCOMPARE(loaded(), utf8("a(b{id=000},b{id=001})"));
}

void tst_TVNC_CanonicalReader::sameTreeAcrossPieces_data()
{
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("record") << QByteArray("\n    <b id=\"001\">x &amp; y</b>");
    QTest::newRow("UTF-8") << QByteArray("<b>\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80</b>");
    QTest::newRow("CDATA") << QByteArray("<b><![CDATA[x]]]]></b>");
    QTest::newRow("empty") << QByteArray("<bcdef g=\"h\"/>");
}

// Pieces of the file end everywhere in the part, one byte further each time.
void tst_TVNC_CanonicalReader::sameTreeAcrossPieces()
{
    QFETCH(QByteArray, part);
    for (int si_shift = 0; si_shift <= part.size() + 4; ++si_shift) {
        const QByteArray head("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><t>");
        const int si_filling = 65536 - static_cast<int>(head.size()) - 4 - si_shift;
        writeFile(path(), head + QByteArray(si_filling, 'x') + "</t>" + part + part + "</a>\n");
        QCOMPARE(loaded(), read());
        QVERIFY(loaded().size() > 65000);
    }
}

void tst_TVNC_CanonicalReader::longDocumentsAreReadToTheirEnd()
{
    QByteArray big("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>");
    for (int i = 0; i < 20000; ++i)
        big += "<b>text</b>";
    big += "</a>";
    writeFile(path(), big);
    Setting setting;
    QString file = path();
    setting.load(file);
    QCOMPARE(setting.getXMLNodeCnt(), 20000);
    const int si_lengths[] = {65535, 65536, 200000, 3000000};
    for (size_t i = 0; i < sizeof si_lengths / sizeof si_lengths[0]; ++i) {
        writeFile(path(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><b>" +
                              QByteArray(si_lengths[i], 'x') + "</b><c>y</c></a>");
        setting.load(file);
        QCOMPARE(static_cast<int>(setting.getXMLRootNode()->getXMLNodeChildren().at(0)->getText().size()),
                 si_lengths[i]);
        QCOMPARE(setting.getXMLNodeCnt(), 2);
    }
    QString zero = utf8("/dev/zero"); // has no size and no end
    setting.load(zero);
    QCOMPARE(setting.getXMLNodeCnt(), 0);
}

void tst_TVNC_CanonicalReader::longSectionIsATextLikeAnyOther_data()
{
    QTest::addColumn<QByteArray>("text");
    for (int si_size = 1022; si_size <= 1027; ++si_size)
        QTest::newRow(qPrintable(QString::number(si_size))) << QByteArray(si_size, 'x');
    QTest::newRow("greater than") << QByteArray(2000, 'x') + "]>" + QByteArray(99, '>');
    QTest::newRow("line breaks") << QByteArray("x\n\t").repeated(700);
    QTest::newRow("UTF-8") << QByteArray(2000, 'x') + "\xE6\x97\xA5";
    QTest::newRow("blank at both ends") << ' ' + QByteArray(2000, 'x') + '\n';
}

// Long sections of ASCII are kept in half the room until somebody asks for them.
void tst_TVNC_CanonicalReader::longSectionIsATextLikeAnyOther()
{
    QFETCH(QByteArray, text);
    const QByteArray document("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n    <b><![CDATA[" + text +
                              "]]></b>\n</a>\n");
    writeFile(path(), document);
    QString file = path();
    Setting setting;
    setting.load(file);
    // Saved before and after it was looked at, and in the writer's way.
    QString copy = dir_->path() + utf8("copy.xml");
    setting.save(copy);
    QCOMPARE(readFile(copy), document);
    TVNC_XMLNode* pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    QCOMPARE(pc_node->getText(), QString::fromUtf8(text));
    QCOMPARE(pc_node->getTextType(), char(1));
    setting.save(copy);
    QCOMPARE(readFile(copy), document);

    setting.load(file);
    TVNC_XMLWriter writer;
    writer.write(copy, setting.getXMLRootNode());
    QCOMPARE(readFile(copy), document);

    // Changed without being looked at.
    setting.load(file);
    pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    pc_node->setTextType(0);
    setting.save(copy);
    setting.load(copy);
    QCOMPARE(setting.getXMLRootNode()->getXMLNodeChildren().at(0)->getText(), QString::fromUtf8(text));
    setting.load(file);
    QString other = utf8("other");
    pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    pc_node->setText(other);
    QCOMPARE(pc_node->getText(), other);
    setting.load(file);
    pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    pc_node->getText().append(QLatin1Char('!'));
    QCOMPARE(pc_node->getText(), QString::fromUtf8(text) + QLatin1Char('!'));
    setting.load(file);
    pc_node = setting.getXMLRootNode()->getXMLNodeChildren().at(0);
    makeNode(pc_node, "c");
    setting.save(copy);
    writer.write(file, setting.getXMLRootNode());
    QCOMPARE(readFile(copy), readFile(file));
}

void tst_TVNC_CanonicalReader::memoryThatRunsOutIsNoEndOfTheDocument()
{
    // One node could not be made: the document is read again, in the reader's way.
    writeFile(path(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><b/><c/><d/></a>");
    for (int si_failing = 1; si_failing <= 4; ++si_failing) {
        failingNode = si_failing;
        QCOMPARE(loaded(), utf8("a(b,c,d)"));
        QCOMPARE(failingNode, 0);
    }
}

TLVLIB_TEST_MAIN(tst_TVNC_CanonicalReader)
#include "tst_TVNC_CanonicalReader.moc"
