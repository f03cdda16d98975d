#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QTextCodec>
#include <QtCore/QBuffer>

/// Damaged and hostile documents: the tree holds what stands before the damage.
class tst_TVNC_XMLReader_input : public QObject
{
    Q_OBJECT

private slots:
    void malformedDocumentsAreReadUpToTheError_data();
    void malformedDocumentsAreReadUpToTheError();
    void everyTruncationIsRead();
    void badBytesEndTheDocumentRightThere_data();
    void badBytesEndTheDocumentRightThere();
    void aBadByteCostsNoRecordBeforeIt_data();
    void aBadByteCostsNoRecordBeforeIt();
    void charactersSurviveEveryBufferBoundary();
    void charactersThatXMLLacksEndTheDocumentAnywhere();
    void noncharactersCostNothingElse();
    void internalSubsetsAreNotRead_data();
    void internalSubsetsAreNotRead();
    void entitiesNeverBlowUp();
    void whatLooksLikeADocumentTypeIsText();
    void otherEncodingsAreRead_data();
    void otherEncodingsAreRead();
    void otherEncodingsHideNoDocumentType_data();
    void otherEncodingsHideNoDocumentType();
    void brokenOtherEncodingsEndTheDocument();
    void devicesThatGiveFewBytesAreReadToTheEnd();

    void aMillionNestedElementsAreRead();
    void aMillionOpenElementsAreRead();
    void longListsAreRead();
    void hugeTextsAndAttributesAreRead();
    void elementsWithTooManyAttributesEndTheDocument_data();
    void elementsWithTooManyAttributesEndTheDocument();
    void aLoadTakesAnyNumberOfAttributes();
    void tooManyNamespacesEndTheDocument_data();
    void tooManyNamespacesEndTheDocument();
};

static TVNC_XMLNode* read(const QByteArray& document)
{
    QByteArray bytes = document;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    return reader.read(buffer);
}

static QString treeOf(const QByteArray& document)
{
    QScopedPointer<TVNC_XMLNode> root(read(document));
    return describe(root.data());
}

void tst_TVNC_XMLReader_input::malformedDocumentsAreReadUpToTheError_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("tree");

    QTest::newRow("wrong end tag") << QByteArray("<a><b>x</b><c></a>") << utf8("a(b'x',c)");
    QTest::newRow("second root is not read") << QByteArray("<a/><b/>") << utf8("a");
    QTest::newRow("text behind the root") << QByteArray("<a><b/></a>text") << utf8("a(b)");
    QTest::newRow("attribute twice") << QByteArray("<a><b/><c d='1' d='2'/></a>") << utf8("a(b)");
    QTest::newRow("unknown entity") << QByteArray("<a><b/>&foo;<c/></a>") << utf8("a(b)");
    QTest::newRow("undeclared prefix") << QByteArray("<a><b/><p:c/></a>") << utf8("a(b)");
    QTest::newRow("reference to no character") << QByteArray("<a><b/><c>&#0;</c></a>") << utf8("a(b,c)");
    QTest::newRow("less-than in attribute") << QByteArray("<a><b/><c d='<'/></a>") << utf8("a(b)");
    QTest::newRow("CDATA end in text") << QByteArray("<a><b>x]]>y</b></a>") << utf8("a(b)");
    // The text before the character is kept, whatever the version of Qt.
    QTest::newRow("control character in text") << QByteArray("<a><b/>x\x01y<c/></a>") << utf8("a'x'(b)");
    QTest::newRow("control character in attribute")
        << QByteArray("<a><b/><c d='x\x01y'/></a>") << utf8("a(b)");
    QTest::newRow("control character in CDATA") << QByteArray("<a><b/><![CDATA[\x01]]></a>") << utf8("a(b)");
    QTest::newRow("control character in comment")
        << QByteArray("<a><b/><!-- \x01 --><c/></a>") << utf8("a(b)");
    QTest::newRow("NUL in text") << QByteArray("<a><b/>x\0y<c/></a>", 18) << utf8("a'x'(b)");
    QTest::newRow("NUL in attribute") << QByteArray("<a><b/><c d='\0'/></a>", 21) << utf8("a(b)");
    QTest::newRow("U+FFFE") << QByteArray("<a><b/>x\xEF\xBF\xBEy<c/></a>") << utf8("a'x'(b)");
    QTest::newRow("U+FFFF in attribute") << QByteArray("<a><b/><c d='\xEF\xBF\xBF'/></a>") << utf8("a(b)");
}

void tst_TVNC_XMLReader_input::malformedDocumentsAreReadUpToTheError()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, tree);
    QCOMPARE(treeOf(document), tree);
}

void tst_TVNC_XMLReader_input::everyTruncationIsRead()
{
    const QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r docInfo=\"1.0\">\n"
                                "    <e id=\"000\">caf\xC3\xA9</e>\n"
                                "    <e id=\"001\"><![CDATA[\xE3\x81\x82]]></e>\n"
                                "    <e id=\"002\"/>\n</r>\n";
    const QString complete = utf8("r{docInfo=1.0}(e{id=000}'café',e{id=001} cdata'あ',e{id=002})");
    QCOMPARE(treeOf(document), complete);
    // Where the complete tags end that make the tree one step larger.
    const int root = static_cast<int>(document.indexOf("1.0\">")) + 5;
    const int first = static_cast<int>(document.indexOf("000\">")) + 5;
    const int firstText = static_cast<int>(document.indexOf("</e>")) + 1; // the '<' ends the text
    const int second = static_cast<int>(document.indexOf("001\">")) + 5;
    const int secondText = static_cast<int>(document.indexOf("]]>")) + 3;
    const int third = static_cast<int>(document.indexOf("002\"/>")) + 6;
    for (int i = 0; i <= document.size(); ++i) {
        QString expected = utf8("0");
        if (i >= third)
            expected = complete;
        else if (i >= secondText)
            expected = utf8("r{docInfo=1.0}(e{id=000}'café',e{id=001} cdata'あ')");
        else if (i >= second)
            expected = utf8("r{docInfo=1.0}(e{id=000}'café',e{id=001})");
        else if (i >= firstText)
            expected = utf8("r{docInfo=1.0}(e{id=000}'café')");
        else if (i >= first)
            expected = utf8("r{docInfo=1.0}(e{id=000})");
        else if (i >= root)
            expected = utf8("r{docInfo=1.0}");
        QCOMPARE(treeOf(document.left(i)), expected);
    }
}

void tst_TVNC_XMLReader_input::badBytesEndTheDocumentRightThere_data()
{
    QTest::addColumn<QByteArray>("bad");
    QTest::newRow("lone continuation") << QByteArray("\x80");
    QTest::newRow("FF") << QByteArray("\xFF");
    QTest::newRow("FE") << QByteArray("\xFE");
    QTest::newRow("overlong slash") << QByteArray("\xC0\xAF");
    QTest::newRow("overlong, C1") << QByteArray("\xC1\xBF");
    QTest::newRow("overlong, three bytes") << QByteArray("\xE0\x9F\xBF");
    QTest::newRow("overlong, four bytes") << QByteArray("\xF0\x8F\xBF\xBF");
    QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80");
    QTest::newRow("surrogate pair") << QByteArray("\xED\xA0\x80\xED\xB0\x80");
    QTest::newRow("above U+10FFFF") << QByteArray("\xF4\x90\x80\x80");
    QTest::newRow("F5") << QByteArray("\xF5\x80\x80\x80");
    QTest::newRow("five bytes") << QByteArray("\xF8\x88\x80\x80\x80");
    QTest::newRow("cut off, then ASCII") << QByteArray("\xE3\x81");
    QTest::newRow("Latin-1 letter") << QByteArray("\xE9");
}

void tst_TVNC_XMLReader_input::badBytesEndTheDocumentRightThere()
{
    QFETCH(QByteArray, bad);
    const QByteArray before = "<a><b>1</b><c d='2'>3</c>";
    QCOMPARE(treeOf(before + bad + "<e/></a>"), utf8("a(b'1',c{d=2}'3')"));
    QCOMPARE(treeOf(before + "<e f='" + bad + "'/></a>"), utf8("a(b'1',c{d=2}'3')"));
    // The tree is that of the file cut off at the bad byte.
    QCOMPARE(treeOf(before + "<e>text" + bad + "more</e></a>"), treeOf(before + "<e>text"));
    QCOMPARE(treeOf(before + "<e>text" + bad), treeOf(before + "<e>text"));
}

void tst_TVNC_XMLReader_input::aBadByteCostsNoRecordBeforeIt_data()
{
    QTest::addColumn<int>("records");
    QTest::newRow("a small file") << 57;
    QTest::newRow("several buffers") << 2000;
}

void tst_TVNC_XMLReader_input::aBadByteCostsNoRecordBeforeIt()
{
    QFETCH(int, records);
    QByteArray document = "<list>";
    for (int i = 0; i < records; ++i)
        document += "<e>record</e>";
    QScopedPointer<TVNC_XMLNode> root(read(document + "<e>\xFF</e></list>"));
    QCOMPARE(root->getXMLNodeChildren().size(), records + 1);
    QCOMPARE(describe(root->getXMLNodeChildren().at(records - 1)), utf8("e'record'"));
}

void tst_TVNC_XMLReader_input::charactersSurviveEveryBufferBoundary()
{
    // Documents are read 8192 bytes at a time. Characters of one to four bytes at every place around that.
    const QString text = QString::fromUtf8("a\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80z");
    for (int padding = 8192 - 30; padding < 8192 + 5; ++padding) {
        const QByteArray comment = "<!--" + QByteArray(padding - 10, 'x') + "-->";
        const QString expected = utf8("r(e'") + text + utf8("',e'") + text + utf8("')");
        QCOMPARE(treeOf("<r>" + comment + "<e>" + text.toUtf8() + "</e><e>" + text.toUtf8() + "</e></r>"),
                 expected);
    }
}

void tst_TVNC_XMLReader_input::charactersThatXMLLacksEndTheDocumentAnywhere()
{
    // Also as the last character of a buffer.
    for (int padding = 8192 - 20; padding < 8192; ++padding) {
        const QByteArray comment = "<!--" + QByteArray(padding - 10, 'x') + "-->";
        QCOMPARE(treeOf("<r>" + comment + "<a/><b c='" + QByteArray(1, '\0') + "'/></r>"), utf8("r(a)"));
        QCOMPARE(treeOf("<r>" + comment + "<a/><b c='\xEF\xBF\xBE'/></r>"), utf8("r(a)"));
    }
}

void tst_TVNC_XMLReader_input::noncharactersCostNothingElse()
{
    QScopedPointer<TVNC_XMLNode> root(read("<r><e>1</e><e>x\xEF\xB7\x90y\xF0\x9F\xBF\xBEz\xF4\x8F\xBF\xBF</"
                                           "e><e a='\xEF\xB7\xAF'>3</e><e>4</e></r>"));
    QCOMPARE(root->getXMLNodeChildren().size(), 4);
    QCOMPARE(describe(root->getXMLNodeChildren().at(3)), utf8("e'4'"));
    // Qt 4 cannot decode them and gets U+FFFD in their place.
    const QString text = root->getXMLNodeChildren().at(1)->getText();
    QVERIFY(text == QString::fromUtf8("x\xEF\xB7\x90y\xF0\x9F\xBF\xBEz\xF4\x8F\xBF\xBF") ||
            text == QString::fromUtf8("x\xEF\xBF\xBDy\xEF\xBF\xBDz\xEF\xBF\xBD"));
}

void tst_TVNC_XMLReader_input::internalSubsetsAreNotRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("tree");
    const QString none = utf8("0");

    QTest::newRow("entity") << QByteArray("<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>") << none;
    QTest::newRow("empty subset") << QByteArray("<!DOCTYPE a []><a>x</a>") << none;
    QTest::newRow("default attribute") << QByteArray("<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>]><a/>") << none;
    QTest::newRow("behind an identifier")
        << QByteArray("<!DOCTYPE a SYSTEM '>' [<!ENTITY x 'y'>]><a>&x;</a>") << none;
    QTest::newRow("behind a comment") << QByteArray("<!-- <!DOCTYPE a> --><!DOCTYPE a [ ]><a>x</a>") << none;
    QTest::newRow("behind an instruction") << QByteArray("<?i > ?><!DOCTYPE a [ ]><a>x</a>") << none;
    QTest::newRow("second declaration")
        << QByteArray("<!DOCTYPE a><!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>") << none;
    QTest::newRow("second bare declaration") << QByteArray("<!DOCTYPE a><!DOCTYPE a><a>x</a>") << none;
    QTest::newRow("inside the root") << QByteArray("<a><b/><!DOCTYPE a [<!ENTITY x 'y'>]><c>&x;</c></a>")
                                     << utf8("a(b)");
    QTest::newRow("bare, inside the root") << QByteArray("<a><b/><!DOCTYPE a><c>x</c></a>") << utf8("a(b)");
    QTest::newRow("behind the root") << QByteArray("<a><b/></a><!DOCTYPE a [<!ENTITY x 'y'>]>")
                                     << utf8("a(b)");
    QTest::newRow("behind CDATA") << QByteArray("<a><b/><![CDATA[]]]]>]]><!DOCTYPE a []></a>")
                                  << utf8("a cdata']]'(b)");
}

void tst_TVNC_XMLReader_input::internalSubsetsAreNotRead()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, tree);
    QCOMPARE(treeOf(document), tree);
}

void tst_TVNC_XMLReader_input::entitiesNeverBlowUp()
{
    // Ten entities of ten references each would be 10^10 characters, by parameter entities already while the
    // declaration is read.
    QByteArray general = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
    QByteArray parameter = "<!DOCTYPE a [<!ENTITY % e0 '<!ENTITY x \"y\">'>";
    for (int i = 1; i < 10; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray previous = QByteArray::number(i - 1);
        QByteArray ten;
        QByteArray tenPercent;
        for (int j = 0; j < 10; ++j) {
            ten += "&e" + previous + ';';
            tenPercent += "&#37;e" + previous + ';';
        }
        general += "<!ENTITY e" + number + " '" + ten + "'>";
        parameter += "<!ENTITY % e" + number + " '" + tenPercent + "'>";
    }
    QCOMPARE(treeOf(general + "]><a>&e9;</a>"), utf8("0"));
    QCOMPARE(treeOf(parameter + "%e9;]><a>x</a>"), utf8("0"));
    // Where it would not be noticed before it is too late, too.
    QCOMPARE(treeOf("<a><b/>" + general + "]><c>&e9;</c></a>"), utf8("a(b)"));
    QCOMPARE(treeOf("<a><b/></a>" + parameter + "%e9;]>"), utf8("a(b)"));
}

void tst_TVNC_XMLReader_input::whatLooksLikeADocumentTypeIsText()
{
    QCOMPARE(treeOf("<a><![CDATA[<!DOCTYPE a [<!ENTITY x 'y'>]>]]></a>"),
             utf8("a cdata'<!DOCTYPE a [<!ENTITY x 'y'>]>'"));
    QCOMPARE(treeOf("<a><!-- <!DOCTYPE a [ --><b/><?i <!DOCTYPE a [ ?><c>&lt;!DOCTYPE a [</c></a>"),
             utf8("a(b,c'<!DOCTYPE a [')"));
    QCOMPARE(treeOf("<a b='!DOCTYPE a ['>!DOCTYPE a [</a>"), utf8("a{b=!DOCTYPE a [}'!DOCTYPE a ['"));
    // Across the boundary of two buffers.
    for (int padding = 8170; padding < 8200; ++padding) {
        const QByteArray comment =
            "<!--" + QByteArray("x-").repeated(padding / 2) + QByteArray(1 + padding % 2, 'x') + "-->";
        QCOMPARE(treeOf("<a>" + comment + "<![CDATA[<!DOCTYPE [>]]><b/></a>"),
                 utf8("a cdata'<!DOCTYPE [>'(b)"));
        QCOMPARE(treeOf(comment + "<!DOCTYPE a SYSTEM '[' []><a/>"), utf8("0"));
    }
}

static QByteArray encoded(const QString& text, const char* pc_codec)
{
    return QTextCodec::codecForName(pc_codec)->fromUnicode(text); // with a byte order mark where it is usual
}

void tst_TVNC_XMLReader_input::otherEncodingsAreRead_data()
{
    QTest::addColumn<QByteArray>("document");
    const QString text = utf8("<list><e>café</e><e a='テスト'>テスト</e></list>");

    QTest::newRow("UTF-8, declared so") << (utf8("<?xml version='1.0' encoding='utf-8'?>") + text).toUtf8();
    QTest::newRow("UTF-8 with byte order mark, declared so")
        << "\xEF\xBB\xBF" + (utf8("<?xml version='1.0' encoding='UTF-8'?>") + text).toUtf8();
    QTest::newRow("UTF-8, encoding not named")
        << (utf8("<?xml version='1.0' standalone='yes'?>") + text).toUtf8();
    QTest::newRow("UTF-16") << encoded(text, "UTF-16");
    QTest::newRow("UTF-16, declared so")
        << encoded(utf8("<?xml version='1.0' encoding='UTF-16'?>") + text, "UTF-16");
    QTest::newRow("UTF-16BE without mark")
        << encoded(text, "UTF-16BE").mid(encoded(text, "UTF-16BE").startsWith("\xFE\xFF") ? 2 : 0);
    QTest::newRow("UTF-16LE without mark")
        << encoded(text, "UTF-16LE").mid(encoded(text, "UTF-16LE").startsWith("\xFF\xFE") ? 2 : 0);
    QTest::newRow("UTF-32") << encoded(text, "UTF-32");
    const char* const codecs[] = {"EUC-JP", "Shift_JIS"};
    for (int i = 0; i < 2; ++i) {
        if (!QTextCodec::codecForName(codecs[i]))
            continue; // a small build of Qt
        const QString declaration = utf8("<?xml version=\"1.0\" encoding = '%1' standalone='no' ?>");
        QTest::newRow(codecs[i]) << encoded(
            declaration.arg(QLatin1String(codecs[i])) + QString(text).remove(utf8("é")), codecs[i]);
    }
}

void tst_TVNC_XMLReader_input::otherEncodingsAreRead()
{
    QFETCH(QByteArray, document);
    QScopedPointer<TVNC_XMLNode> root(read(document));
    QVERIFY(root);
    QCOMPARE(describe(root->getXMLNodeChildren().at(1)), utf8("e{a=テスト}'テスト'"));
}

void tst_TVNC_XMLReader_input::otherEncodingsHideNoDocumentType_data()
{
    QTest::addColumn<QByteArray>("document");
    const QString hostile = utf8("<!DOCTYPE a [<!ENTITY x 'y'>]><a>&x;</a>");
    QTest::newRow("UTF-16") << encoded(hostile, "UTF-16");
    QTest::newRow("UTF-32") << encoded(hostile, "UTF-32");
    QTest::newRow("ISO-8859-1") << encoded(utf8("<?xml version='1.0' encoding='ISO-8859-1'?>") + hostile,
                                           "ISO-8859-1");
    QTest::newRow("encoding named by reference")
        << QByteArray("<?xml version='1.0' encoding='UTF-1&#54;'?>") + encoded(hostile, "UTF-16BE");
    QTest::newRow("encoding named twice")
        << QByteArray("<?xml version='1.0' encoding='UTF-8' encoding='UTF-16BE'?>") +
               encoded(hostile, "UTF-16BE");
    QTest::newRow("encoding named behind 9000 blanks") << "<?xml version='1.0'" + QByteArray(9000, ' ') +
                                                              "encoding='UTF-16BE'?>" +
                                                              encoded(hostile, "UTF-16BE");
    QTest::newRow("unknown encoding") << QByteArray("<?xml version='1.0' encoding='nonsense'?><a>x</a>");
}

void tst_TVNC_XMLReader_input::otherEncodingsHideNoDocumentType()
{
    QFETCH(QByteArray, document);
    QCOMPARE(treeOf(document), utf8("0"));
}

void tst_TVNC_XMLReader_input::brokenOtherEncodingsEndTheDocument()
{
    // An unpaired surrogate, and half a character at the end.
    const QByteArray before = encoded(utf8("<a><b>1</b><c>"), "UTF-16");
    QScopedPointer<TVNC_XMLNode> root(read(before + "\xD8"));
    QCOMPARE(describe(root.data()), utf8("a(b'1',c)"));
}

/// Gives one byte at a time, as a slow pipe may.
class Dripping : public QIODevice
{
public:
    explicit Dripping(const QByteArray& bytes) : bytes_(bytes), pos_(0)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* pc_data, qint64 maxSize) override
    {
        if (maxSize < 1 || pos_ == bytes_.size())
            return 0;
        *pc_data = bytes_.at(pos_++);
        return 1;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray bytes_;
    int pos_;
};

void tst_TVNC_XMLReader_input::devicesThatGiveFewBytesAreReadToTheEnd()
{
    QByteArray document = "<list>";
    for (int i = 0; i < 1000; ++i)
        document += "<e>\xE3\x81\x82</e>";
    document += "</list>";
    Dripping device(document);
    TVNC_XMLReader reader;
    QScopedPointer<TVNC_XMLNode> root(reader.read(device));
    QCOMPARE(root->getXMLNodeChildren().size(), 1000);
    QVERIFY(!reader.hasError());
}

static int depthOf(TVNC_XMLNode* pc_node)
{
    int si_depth = 0;
    for (; pc_node; ++si_depth)
        pc_node = pc_node->getXMLNodeChildren().isEmpty() ? nullptr : pc_node->getXMLNodeChildren().first();
    return si_depth;
}

void tst_TVNC_XMLReader_input::aMillionNestedElementsAreRead()
{
    QScopedPointer<TVNC_XMLNode> root(
        read(QByteArray("<a>").repeated(1000000) + QByteArray("</a>").repeated(1000000)));
    QCOMPARE(depthOf(root.data()), 1000000);
}

void tst_TVNC_XMLReader_input::aMillionOpenElementsAreRead()
{
    QScopedPointer<TVNC_XMLNode> root(read(QByteArray("<a>").repeated(1000000)));
    QCOMPARE(depthOf(root.data()), 1000000);
}

void tst_TVNC_XMLReader_input::longListsAreRead()
{
    QScopedPointer<TVNC_XMLNode> root(read("<r>" + QByteArray("<e i='1'>x</e>").repeated(300000) + "</r>"));
    QCOMPARE(root->getXMLNodeChildren().size(), 300000);
    QCOMPARE(describe(root->getXMLNodeChildren().last()), utf8("e{i=1}'x'"));
}

void tst_TVNC_XMLReader_input::hugeTextsAndAttributesAreRead()
{
    const QByteArray huge(20000000, 'x');
    QScopedPointer<TVNC_XMLNode> root(
        read("<r a='" + huge + "'><b>" + huge + "</b><c><![CDATA[" + huge + "]]></c></r>"));
    QCOMPARE(root->getAttribute().at(0).value().size(), 20000000);
    QCOMPARE(root->getXMLNodeChildren().at(0)->getText().size(), 20000000);
    QCOMPARE(root->getXMLNodeChildren().at(1)->getText().size(), 20000000);
}

/// So many attributes of different names: " a0='x' a1='x'".
static QByteArray manyAttributes(const char* pc_name, int si_count, const char* pc_rest)
{
    QByteArray result;
    for (int i = 0; i < si_count; ++i)
        result += ' ' + QByteArray(pc_name) + QByteArray::number(i) + pc_rest;
    return result;
}

void tst_TVNC_XMLReader_input::elementsWithTooManyAttributesEndTheDocument_data()
{
    QTest::addColumn<QByteArray>("rest");           // of an attribute, behind its name
    QTest::newRow("plain") << QByteArray("=\"x\""); // as the library writes it
    QTest::newRow("apostrophes") << QByteArray("='x'");
    QTest::newRow("blanks") << QByteArray("\n=\t'x' ");
    QTest::newRow("markup in values") << QByteArray("=\"'>/>\"");
    QTest::newRow("quotes in values") << QByteArray("='\">\"'");
    QTest::newRow("empty values") << QByteArray("=''");
}

// Qt would compare every one with every other one: a file of a megabyte took half a minute.
void tst_TVNC_XMLReader_input::elementsWithTooManyAttributesEndTheDocument()
{
    QFETCH(QByteArray, rest);
    const QByteArray start = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r><b/>";
    const QByteArray end = "<c/></r>\n";
    const QByteArray full = "<a" + manyAttributes("n", 8000, rest) + "/>";
    const QByteArray tooFull = "<a" + manyAttributes("n", 8001, rest) + "/>";
    QScopedPointer<TVNC_XMLNode> root(read(start + full + full + end));
    QCOMPARE(childNames(root.data()), utf8("b a a c"));
    QCOMPARE(static_cast<int>(root->getXMLNodeChildren().at(2)->getAttribute().size()), 8000);
    root.reset(read(start + full + tooFull + end));
    QCOMPARE(childNames(root.data()), utf8("b a"));
    QVERIFY(!read("<a" + manyAttributes("n", 100000, rest) + "/>"));
}

// As the library writes it, an element may have any number of attributes.
void tst_TVNC_XMLReader_input::aLoadTakesAnyNumberOfAttributes()
{
    TempDir dir;
    QString path = dir.path() + utf8("document.xml");
    Setting setting;
    const QByteArray many = manyAttributes("n", 100000, "=\"x\"");
    const QByteArray start = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r><b/><a" + many;
    writeFile(path, start + "/><c/></r>\n");
    setting.load(path);
    QCOMPARE(childNames(setting.getXMLRootNode()), utf8("b a c"));
    QCOMPARE(static_cast<int>(setting.getXMLRootNode()->getXMLNodeChildren().at(1)->getAttribute().size()),
             100000);
    // One that comes twice is an error as ever.
    writeFile(path, start + " n5=\"x\"/><c/></r>\n");
    setting.load(path);
    QCOMPARE(childNames(setting.getXMLRootNode()), utf8("b"));
}

void tst_TVNC_XMLReader_input::tooManyNamespacesEndTheDocument_data()
{
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<bool>("isNamespace");
    QTest::newRow("prefix") << QByteArray("xmlns:p='u'") << true;
    QTest::newRow("all elements") << QByteArray("xmlns='u'") << true;
    QTest::newRow("blanks") << QByteArray("xmlns = 'u'") << true;
    QTest::newRow("longer name") << QByteArray("xmlnsx='u'") << false;
    QTest::newRow("end of a name") << QByteArray("x-xmlns='u'") << false;
    QTest::newRow("value") << QByteArray("x='xmlns:p=u xmlns:q=u'") << false;
    QTest::newRow("value that ends like a tag") << QByteArray("xmlns:p='u/'") << true;
}

void tst_TVNC_XMLReader_input::tooManyNamespacesEndTheDocument()
{
    QFETCH(QByteArray, attribute);
    QFETCH(bool, isNamespace);
    // Nested, so that all are in force at once.
    const auto nested = [&attribute](int si_levels) {
        return "<r>" + QByteArray("<a " + attribute + '>').repeated(si_levels) + "<b/>" +
               QByteArray("</a>").repeated(si_levels) + "<c/></r>";
    };
    QScopedPointer<TVNC_XMLNode> root(read(nested(4000)));
    QCOMPARE(childNames(root.data()), utf8("a c"));
    QCOMPARE(depthOf(root.data()), 4002);
    root.reset(read(nested(4001)));
    QCOMPARE(childNames(root.data()), utf8(isNamespace ? "a" : "a c"));
    QCOMPARE(depthOf(root.data()), isNamespace ? 4001 : 4003);
    // Side by side, no two are.
    root.reset(read("<r>" + QByteArray("<a " + attribute + "/>").repeated(5000) +
                    QByteArray("<a " + attribute + "><b/></a>").repeated(5000) + "</r>"));
    QCOMPARE(static_cast<int>(root->getXMLNodeChildren().size()), 10000);
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLReader_input)
#include "tst_TVNC_XMLReader_input.moc"
