#include "tests/support/Random.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"
#include "tlvlib/util/TVNG_QtVersion.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QPair>
#include <QtCore/QProcess>

/**
 * Random trees are written, accepted by a parser that is not Qt's, and read again: both by the reader and by
 * a load, which has ways of its own, the tree is what it was, but for what a document cannot hold.
 */
class tst_TVNC_XMLRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void handMadeTreesUpToTheReadersLimits();
    void initTestCase();
    void init();
    void cleanup();

    void randomTreesComeBack();
    void aMillionLevelsComeBack();
    void aHundredThousandRecordsComeBack();
    void wideAndDeepTreesComeBack();
    void manyAttributesComeBack_data();
    void manyAttributesComeBack();
    void manyPrefixesComeBack();

private:
    TVNC_XMLNode* root() { return setting_->getXMLRootNode(); }
    TVNC_XMLNode* randomNode(TVNC_XMLNode* pc_parent);
    QString randomText();
    void comesBack();
    void parserAccepts(const QStringList& files);

    Random random_ = Random(20110412);
    bool b_hasParser;
    QScopedPointer<TempDir> dir_;
    QScopedPointer<Setting> setting_;
};

void tst_TVNC_XMLRoundTrip::initTestCase()
{
    QProcess parser;
    parser.start(utf8("xmllint"), QStringList() << utf8("--version"));
    b_hasParser = parser.waitForFinished() && parser.exitCode() == 0;
    if (!b_hasParser)
        qWarning("xmllint is not installed: the documents are read by this library alone");
}

void tst_TVNC_XMLRoundTrip::init()
{
    dir_.reset(new TempDir);
    setting_.reset(new Setting);
    setting_->createXMLRootNode();
    QString name = utf8("root");
    root()->setName(name);
}

void tst_TVNC_XMLRoundTrip::cleanup()
{
    setting_.reset();
    releaseDeferred();
    dir_.reset();
}

/// A root with a child of so many attributes whose names only the general reader takes.
static void addAttributes(TVNC_XMLNode* pc_root, int si_count)
{
    TVNC_XMLNode* const pc_child = makeNode(pc_root, "child");
    for (int i = 0; i < si_count; ++i)
        addAttribute(pc_child, ("\xC3\xA9" + QByteArray::number(i)).constData(), utf8("v"));
}

/// So many elements, each in the one before it, and each with an attribute in a namespace of its own.
static void nestNamespaces(TVNC_XMLNode* pc_root, int si_count)
{
    TVNC_XMLNode* pc_node = pc_root;
    for (int i = 0; i < si_count; ++i) {
        pc_node = makeNode(pc_node, "e");
        pc_node->getAttribute().append(utf8("urn:") + QString::number(i), utf8("a"), utf8("v"));
    }
}

static int depthOf(TVNC_XMLNode* pc_node)
{
    int si_depth = 0;
    for (; !pc_node->getXMLNodeChildren().isEmpty(); pc_node = pc_node->getXMLNodeChildren().at(0))
        ++si_depth;
    return si_depth;
}

// The one exception to the promise that what was written is read back: trees that no store makes.
void tst_TVNC_XMLRoundTrip::handMadeTreesUpToTheReadersLimits()
{
    QString path = dir_->path() + utf8("a.xml");
    for (int si_above = 0; si_above <= 1; ++si_above) {
        setting_->createXMLRootNode();
        QString name = utf8("root");
        root()->setName(name);
        addAttributes(root(), 8000 + si_above);
        setting_->save(path);
        setting_->load(path);
        QCOMPARE(depthOf(root()), si_above ? 0 : 1);
        if (!si_above)
            QCOMPARE(static_cast<int>(root()->getXMLNodeChildren().at(0)->getAttribute().size()), 8000);

        setting_->createXMLRootNode();
        root()->setName(name);
        nestNamespaces(root(), 4000 + si_above);
        setting_->save(path);
        setting_->load(path);
        QCOMPARE(depthOf(root()), 4000);
    }
}

/// One of the noncharacters that XML has. The device's Qt writes a "?" for it, later versions write it.
static QString keptNoncharacter(const QString& character)
{
    return TVNG_decoderRefusesNoncharacters() ? utf8("?") : character;
}

/// What a document can hold of a text: see the writer.
static QString kept(const QString& text)
{
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        if (unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            const bool b_noncharacter = (QChar::surrogateToUcs4(unit, text.at(i + 1)) & 0xFFFE) == 0xFFFE;
            const QString pair = text.mid(i++, 2);
            result += b_noncharacter ? keptNoncharacter(pair) : pair;
        } else if (unit.unicode() >= 0xFDD0 && unit.unicode() <= 0xFDEF) {
            result += keptNoncharacter(unit);
        } else if (unit.unicode() >= 0x20
                       ? unit.unicode() < 0xD800 || (unit.unicode() > 0xDFFF && unit.unicode() < 0xFFFE)
                       : unit == QLatin1Char('\t') || unit == QLatin1Char('\n') ||
                             unit == QLatin1Char('\r')) {
            result += unit;
        }
    }
    return result;
}

/// Characters of all planes, markup, controls and halves of pairs. No carriage return, which comes back as a
/// line feed, and no "]]>", which ends a CDATA section; both have tests of their own.
QString tst_TVNC_XMLRoundTrip::randomText()
{
    static const ushort UNITS[] = {' ',  '\n',   '\t',   '<',    '>',    '&',    '"',   '\'',
                                   ']',  ';',    '%',    0,      1,      0x1F,   0x7F,  0x85,
                                   0xE9, 0x65E5, 0x2028, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF};
    QString text(QLatin1Char('x')); // never blank
    for (quint32 i = random_.next(16); i > 0; --i) {
        switch (random_.next(6)) {
        case 0: { // any plane but the first
            const uint ul_code = 0x10000 + random_.next(0x100000);
            text += QChar(QChar::highSurrogate(ul_code));
            text += QChar(QChar::lowSurrogate(ul_code));
            break;
        }
        case 1: // anywhere in the first plane, halves of pairs included, but a carriage return
            text += QChar(static_cast<ushort>(0x20 + random_.next(0xFFE0)));
            break;
        default:
            text += QChar(UNITS[random_.next(sizeof UNITS / sizeof UNITS[0])]);
            break;
        }
    }
    while (kept(text).contains(utf8("]]>")))
        text.remove(QLatin1Char(']'));
    return text;
}

TVNC_XMLNode* tst_TVNC_XMLRoundTrip::randomNode(TVNC_XMLNode* pc_parent)
{
    static const char* const NAMES[] = {
        "a", "pageInfo", "x-1", "_y", "title.z", "\xC3\xA9t\xC3\xA9", "\xE6\x97\xA5\xE6\x9C\xAC"};
    const quint32 ul_names = sizeof NAMES / sizeof NAMES[0];
    TVNC_XMLNode* pc_node = makeNode(pc_parent, NAMES[random_.next(ul_names)]);
    if (random_.next(3) != 0) {
        QString text = randomText();
        pc_node->setText(text);
        pc_node->setTextType(static_cast<char>(random_.next(2)));
    }
    const quint32 ul_first = random_.next(ul_names);
    for (quint32 i = random_.next(4); i > 0; --i) // names that differ
        addAttribute(pc_node, NAMES[(ul_first + i) % ul_names], randomText());
    return pc_node;
}

static bool sameAttributes(const QXmlStreamAttributes& made, const QXmlStreamAttributes& read)
{
    if (made.size() != read.size())
        return false;
    for (int i = 0; i < made.size(); ++i) {
        if (made.at(i).qualifiedName() != read.at(i).qualifiedName() ||
            made.at(i).namespaceUri() != read.at(i).namespaceUri() ||
            kept(made.at(i).value().toString()) != read.at(i).value().toString())
            return false;
    }
    return true;
}

/// Goes through both trees without recursion. Gives an empty string when they are the same.
static QString difference(TVNC_XMLNode* pc_made, TVNC_XMLNode* pc_read)
{
    QList<QPair<TVNC_XMLNode*, TVNC_XMLNode*>> rest;
    rest.append(qMakePair(pc_made, pc_read));
    while (!rest.isEmpty()) {
        TVNC_XMLNode* const pc_one = rest.last().first;
        TVNC_XMLNode* const pc_other = rest.last().second;
        rest.removeLast();
        if (!pc_one || !pc_other)
            return utf8("a node is missing");
        if (pc_one->getName() != pc_other->getName() || kept(pc_one->getText()) != pc_other->getText() ||
            pc_one->getTextType() != pc_other->getTextType() ||
            !sameAttributes(pc_one->getAttribute(), pc_other->getAttribute()) ||
            pc_one->getXMLNodeChildren().size() != pc_other->getXMLNodeChildren().size())
            return pc_one->getName() + utf8(" '") + pc_one->getText() + utf8("' became ") +
                   pc_other->getName() + utf8(" '") + pc_other->getText() + QLatin1Char('\'');
        for (int i = 0; i < pc_one->getXMLNodeChildren().size(); ++i)
            rest.append(qMakePair(pc_one->getXMLNodeChildren().at(i), pc_other->getXMLNodeChildren().at(i)));
    }
    return QString();
}

void tst_TVNC_XMLRoundTrip::parserAccepts(const QStringList& files)
{
    if (!b_hasParser)
        return;
    QProcess parser;
    // It has limits of its own for documents of doubtful origin, which --huge lifts.
    parser.start(utf8("xmllint"), QStringList() << utf8("--noout") << utf8("--huge") << files);
    QVERIFY(parser.waitForFinished(120000));
    const QByteArray output = parser.readAllStandardError();
    QVERIFY2(parser.exitCode() == 0, output.left(1000).constData());
}

/// Through the writer and the reader, and through a save and a load.
void tst_TVNC_XMLRoundTrip::comesBack()
{
    QString saved = dir_->path() + utf8("saved.xml");
    QString written = dir_->path() + utf8("written.xml");
    setting_->save(saved);
    TVNC_XMLWriter writer;
    QVERIFY(writer.write(written, root()));
    QVERIFY(readFile(saved) == readFile(written));
    TVNC_XMLReader reader;
    const QScopedPointer<TVNC_XMLNode> read(reader.read(written));
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(difference(root(), read.data()), QString());
    Setting other;
    other.load(saved);
    QCOMPARE(difference(root(), other.getXMLRootNode()), QString());
}

void tst_TVNC_XMLRoundTrip::randomTreesComeBack()
{
    QStringList files;
    for (int i = 0; i < 1000; ++i) {
        init();
        QList<TVNC_XMLNode*> nodes;
        nodes.append(root());
        for (quint32 j = random_.next(30); j > 0; --j)
            nodes.append(
                randomNode(nodes.at(static_cast<int>(random_.next(static_cast<quint32>(nodes.size()))))));
        comesBack();
        if (QTest::currentTestFailed())
            return;
        parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
        releaseDeferred();
    }
}

void tst_TVNC_XMLRoundTrip::aMillionLevelsComeBack()
{
    TVNC_XMLNode* pc_node = root();
    for (int i = 1; i < 1000000; ++i)
        pc_node = i % 1000 == 0 ? randomNode(pc_node) : makeNode(pc_node, "a");
    comesBack();
    parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
}

void tst_TVNC_XMLRoundTrip::aHundredThousandRecordsComeBack()
{
    for (int i = 0; i < 100000; ++i)
        randomNode(randomNode(root()));
    comesBack();
    parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
}

void tst_TVNC_XMLRoundTrip::wideAndDeepTreesComeBack()
{
    TVNC_XMLNode* pc_node = root();
    for (int i = 0; i < 300; ++i) { // past the depth at which indentation ends
        for (int j = 0; j < 20; ++j)
            randomNode(pc_node);
        pc_node = randomNode(pc_node);
        randomNode(pc_node->getXMLNodeParent());
    }
    comesBack();
    parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
}

void tst_TVNC_XMLRoundTrip::manyAttributesComeBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    QTest::newRow("names of the library's own") << utf8("a") << 3000;
    QTest::newRow("names beyond ASCII") << utf8("\xC3\xA9") << 3000;
}

void tst_TVNC_XMLRoundTrip::manyAttributesComeBack()
{
    QFETCH(QString, name);
    QFETCH(int, count);
    for (int i = 0; i < count; ++i)
        root()->getAttribute().append(name + QString::number(i), utf8("<x> & \"y\""));
    comesBack();
    parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
}

/// Gives a node an attribute with a prefix, as only a document can.
static void addPrefixed(TVNC_XMLNode* pc_node, const QByteArray& prefix, const QByteArray& namespaceUri)
{
    QXmlStreamReader reader("<a xmlns:" + prefix + "='" + namespaceUri + "' " + prefix + ":b='1'/>");
    reader.readNextStartElement();
    pc_node->getAttribute().append(reader.attributes().at(0));
}

void tst_TVNC_XMLRoundTrip::manyPrefixesComeBack()
{
    // As many records as have one each, a record with many, and many inside each other.
    for (int i = 0; i < 1200; ++i)
        addPrefixed(makeNode(root(), "record"), "x", "urn:u" + QByteArray::number(i % 3));
    TVNC_XMLNode* const pc_many = makeNode(root(), "many");
    for (int i = 0; i < 3000; ++i)
        addPrefixed(pc_many, "p" + QByteArray::number(i), "urn:" + QByteArray::number(i));
    TVNC_XMLNode* pc_node = root();
    for (int i = 0; i < 10000; ++i) {
        pc_node = makeNode(pc_node, "level");
        addPrefixed(pc_node, "x", "urn:u");
    }
    comesBack();
    parserAccepts(QStringList(dir_->path() + utf8("saved.xml")));
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLRoundTrip)
#include "tst_TVNC_XMLRoundTrip.moc"
