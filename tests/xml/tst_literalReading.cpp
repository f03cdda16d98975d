#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QTextCodec>
#include <QtCore/QBuffer>

/**
 * Documents of all kinds are read as a literal reading over Qt's stream reader alone reads them: one call for
 * an element, one for each of its children, and the reader's own attribute sets. What was read is written,
 * and read again as it was. Left out are the documents that this library reads otherwise on purpose, damaged
 * ones and document types with entities, which other tests have.
 */
class tst_literalReading : public QObject
{
    Q_OBJECT

private slots:
    void sameTree_data();
    void sameTree();
};

/// A tree with every attribute's names, prefix and namespace.
static QString fullDescription(TVNC_XMLNode* pc_node)
{
    if (!pc_node)
        return utf8("0");
    QString result = QLatin1Char('<') + pc_node->getName();
    const QXmlStreamAttributes& attributes = pc_node->getAttribute();
    for (int i = 0; i < attributes.size(); ++i) {
        const QXmlStreamAttribute& attribute = attributes.at(i);
        result += QLatin1Char(' ') + attribute.qualifiedName().toString() + QLatin1Char('|') +
                  attribute.prefix().toString() + QLatin1Char('|') + attribute.name().toString() +
                  QLatin1Char('|') + attribute.namespaceUri().toString() + QLatin1Char('|') +
                  attribute.value().toString();
    }
    result += QLatin1Char('>') + QString::number(pc_node->getTextType()) + QLatin1Char('\'') +
              pc_node->getText() + QLatin1Char('\'');
    foreach (TVNC_XMLNode* pc_child, pc_node->getXMLNodeChildren())
        result += fullDescription(pc_child);
    return result + utf8("</>");
}

static TVNC_XMLNode* readLiterally(QXmlStreamReader& reader, TVNC_XMLNode* pc_parent)
{
    TVNC_XMLNode* pc_node = new TVNC_XMLNode(pc_parent, 0);
    QXmlStreamAttributes attributes = reader.attributes();
    QString name = reader.name().toString();
    pc_node->setAttribute(attributes);
    pc_node->setName(name);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement())
            break;
        if (pc_node->getText().isEmpty() && !reader.isWhitespace() && reader.isCharacters()) {
            QString text = reader.text().toString();
            pc_node->setTextType(reader.isCDATA() ? 1 : 0);
            pc_node->setText(text);
        }
        if (reader.isStartElement())
            readLiterally(reader, pc_node);
    }
    return pc_node;
}

static TVNC_XMLNode* readLiterally(const QByteArray& document)
{
    QByteArray bytes = document;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&buffer);
    TVNC_XMLNode* pc_root = nullptr;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement())
            break;
        if (reader.isStartElement() && !pc_root)
            pc_root = readLiterally(reader, nullptr);
    }
    return pc_root;
}

void tst_literalReading::sameTree_data()
{
    QTest::addColumn<QByteArray>("document");
    const char* const pc_documents[] = {
        "",
        "<a/>",
        "<a></a>",
        "<?xml version='1.0'?><a/>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a docInfo=\"1.0\">\n    <b id=\"000\">x</b>\n</a>\n",
        "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\n\n<a>x</a>\n\n",
        "<!-- x --><?y z?><a/><!-- x --><?y z?>",
        "<a>x<b/>y<c>z</c> </a>",
        "<a>\n \t<b>\r\n</b></a>",
        "<a>x<!-- y -->z</a>",
        "<a>x<?y?>z</a>",
        "<a><![CDATA[x]]><![CDATA[y]]></a>",
        "<a><![CDATA[]]>x</a>",
        "<a><![CDATA[ ]]>x</a>",
        "<a>x<![CDATA[<&]]>y</a>",
        "<a> <![CDATA[ ]]]] >]]></a>",
        "<a>&lt;&gt;&amp;&quot;&apos;</a>",
        "<a>&#32;</a>",
        "<a>&#x9;&#10;</a>",
        "<a>x&#0;y</a>",
        "<a>&#x1F600;&#xFFFD;</a>",
        "<a b='&#9;&#10;&#13;&lt;\"'/>",
        "<a b=' x\ty\nz '/>",
        "<a b='1' c=\"2\" d='\"' e=\"'\"/>",
        "<a  b = '1'\n\tc\n=\n'2' ></a >",
        "<a b=''/>",
        "<a xml:lang='ja' xml:space='preserve'>x</a>",
        "<a xmlns='urn:u' b='1'><c xmlns='' d='2'/></a>",
        "<p:a xmlns:p='urn:u' p:b='1' b='2'/>",
        "<a xmlns:p='urn:u'><p:b p:c='1'><d p:e='2' p:f='3'/></p:b></a>",
        "<a xmlns:p='urn:u'><b xmlns:p='urn:v' p:c='1'/><b p:c='2'/></a>",
        "<a xmlns:p='urn:u' xmlns:q='urn:u' p:b='1' q:c='2'/>",
        "<a xmlns:p='urn:u' xmlns:q='urn:u' p:b='1' q:b='2'/>",
        "<a xmlns:p='urn:u'><b p:c='1' p:c='2'/></a>",
        "<a><p:b/></a>",
        "<a><b p:c='1'/></a>",
        "<a xmlns:p=''/>",
        "<a xmlns:xml='urn:u'/>",
        "<a xmlns:xmlns='urn:u'/>",
        "<a xmlns:n1='urn:u' xmlns:n2='urn:v' n2:x='1' n1:x='2'/>",
        "<a:b:c xmlns:a='u'/>",
        "<a b:c:d='1' xmlns:b='u'/>",
        "<:a/>",
        "<a :b='1'/>",
        "<a xmlns:p='a&amp;b&lt;&quot;' p:c='1'/>",
        "<!DOCTYPE a><a>x</a>",
        "<!DOCTYPE a SYSTEM 'a.dtd'><a>x</a>",
        "<!DOCTYPE a PUBLIC '-//X//Y' \"a.dtd\"><a b='1'>x</a>",
        ("<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Strict//EN\" "
         "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-strict.dtd\"><html xmlns='http://www.w3.org/1999/xhtml' "
         "xml:lang='en' lang='en'><head><title>x</title></head></html>"),
        "<!DOCTYPE a SYSTEM 'x'><a>1&foo;2</a>",
        "<!DOCTYPE><a/>",
        "<!DOCTYPE a",
        "<a>x",
        "<a><b>x</b>",
        "<a><b>x</c></a>",
        "<a b='1' b='2'/>",
        "<a b=1/>",
        "<a b/>",
        "<a b='<'/>",
        "<a>]]></a>",
        "<a>&x;</a>",
        "<a>& x</a>",
        "<a><!-- -- --></a>",
        "<a><b/></a><c/>",
        "<a/>x",
        "x<a/>",
        "<1/>",
        "<a.b-c_d1/>",
        "<a><?xml version='1.0'?></a>",
        " <?xml version='1.0'?><a/>",
        "<?xml version='2.0'?><a/>",
        "<?xml version='1.0' encoding='nothing-1'?><a/>",
        "<?xml?><a/>",
        "\xEF\xBB\xBF<a>x</a>",
        "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><a>\xE6\x97\xA5</a>",
        "<\xE6\x97\xA5 \xC3\xA9='\xF0\x9F\x98\x80'>\xE6\x97\xA5\xF0\x9F\x98\x80</\xE6\x97\xA5>",
        "<a xmlns:\xE6\x97\xA5='urn:\xE6\x9C\xAC' \xE6\x97\xA5:\xC3\xA9='1'/>",
        "<a>\x7F\xC2\x85\xE2\x80\xA8\xEF\xBB\xBF</a>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE9'>\xFC</a>",
        "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><a>\x93\xFA\x96\x7B</a>",
        "<?xml version='1.0' encoding='EUC-JP' standalone='no'?><a>\xC6\xFC\xCB\xDC</a>",
        "<?xml version='1.0' encoding='windows-1252'?><a>\x93x\x94</a>",
    };
    for (size_t i = 0; i < sizeof pc_documents / sizeof pc_documents[0]; ++i)
        QTest::newRow(qPrintable(QString::number(i))) << QByteArray(pc_documents[i]);

    const QString text = utf8("<?xml version='1.0'?>\n<a b='\xC3\xA9'>\xE6\x97\xA5\xF0\x9F\x98\x80<c/></a>");
    foreach (const char* pc_codec, QList<const char*>() << "UTF-16"
                                                        << "UTF-16BE"
                                                        << "UTF-16LE"
                                                        << "UTF-32")
        QTest::newRow(pc_codec) << QTextCodec::codecForName(pc_codec)->fromUnicode(text);
    QByteArray large("<a xmlns:x='urn:u'>");
    for (int i = 0; i < 3000; ++i)
        large += "<b id='" + QByteArray::number(i) + "' x:c='\xE6\x97\xA5'>x &amp; y<!-- --></b>\n";
    QTest::newRow("large") << large + "</a>";
    QTest::newRow("large, cut off") << large;
}

void tst_literalReading::sameTree()
{
    QFETCH(QByteArray, document);
    const QScopedPointer<TVNC_XMLNode> literal(readLiterally(document));
    const QString expected = fullDescription(literal.data());
    QBuffer buffer(&document);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    const QScopedPointer<TVNC_XMLNode> root(reader.read(buffer));
    QCOMPARE(fullDescription(root.data()), expected);

    const TempDir dir;
    QString path = dir.path() + utf8("document.xml");
    writeFile(path, document);
    Setting setting;
    setting.load(path);
    if (!root) {
        QCOMPARE(describe(setting.getXMLRootNode()), QString());
        return;
    }
    QCOMPARE(fullDescription(setting.getXMLRootNode()), expected);
    // A carriage return comes back as a line feed, and a blank text not at all.
    setting.save(path);
    setting.load(path);
    const QString once = fullDescription(setting.getXMLRootNode());
    setting.save(path);
    setting.load(path);
    QCOMPARE(fullDescription(setting.getXMLRootNode()), once);
    releaseDeferred();
}

TLVLIB_TEST_MAIN(tst_literalReading)
#include "tst_literalReading.moc"
