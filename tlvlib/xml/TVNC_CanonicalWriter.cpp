#include "tlvlib/xml/TVNC_CanonicalWriter.h"

#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_XMLCharacters.h"
#include "tlvlib/xml/TVNG_canonicalForm.h"

#include <QtCore/QVector>

#include <cstring>

namespace {

/// Levels of elements that TVNC_XMLWriter formats.
const int MAX_DEPTH = 100;

/// Bytes that are collected before they go to the device.
const int PIECE_SIZE = 64 * 1024;

const char CHARACTER_DATA = 0;
const char CDATA_SECTION = 1;

bool isName(const QString& name)
{
    if (name.isEmpty() || !TVNG_isNameStart(name.at(0).unicode()))
        return false;
    for (int i = 1; i < name.size(); ++i) {
        if (!TVNG_isNameCharacter(name.at(i).unicode()))
            return false;
    }
    return true;
}

/// An element whose children are being gone through.
struct Open
{
    TVNC_XMLNode* pc_node;
    int si_next; ///< position of the child that comes next
};

/// Bytes on their way to the device.
class Output
{
public:
    explicit Output(QIODevice& device) : device_(device), b_failed_(false)
    {
        bytes_.reserve(PIECE_SIZE + 4096);
    }
    ~Output() { flush(); }

    template <size_t SIZE>
    void literal(const char (&pc_text)[SIZE])
    {
        bytes_.append(pc_text, static_cast<int>(SIZE) - 1);
    }

    void newLine(int si_level)
    {
        bytes_.append('\n');
        for (int i = 0; i < si_level; ++i)
            literal("    ");
    }

    /// ASCII alone.
    void name(const QString& text)
    {
        char* pc_to = room(static_cast<int>(text.size()));
        for (int i = 0; i < text.size(); ++i)
            pc_to[i] = static_cast<char>(text.at(i).unicode());
    }

    /// Text with its markup escaped; in an attribute, line breaks and tabs, too.
    void escaped(const QString& text, bool b_attribute)
    {
        const QChar* const pc_text = text.constData();
        for (int i = 0; i < text.size();) {
            const int si_plain = plainRun(pc_text + i, static_cast<int>(text.size()) - i);
            if (si_plain > 0) {
                i += si_plain;
                continue;
            }
            const ushort us_unit = pc_text[i].unicode();
            if (us_unit >= 0x80) {
                i += encodedRun(pc_text + i, static_cast<int>(text.size()) - i);
                continue;
            }
            sign(static_cast<char>(us_unit), b_attribute);
            ++i;
        }
        flushIfFull();
    }

    /// The text as it is, in as many sections as it takes.
    void cdata(const QString& text)
    {
        literal("<![CDATA[");
        const QChar* const pc_text = text.constData();
        int si_from = 0;
        for (int i = 0;; ++i) {
            i = static_cast<int>(text.indexOf(QLatin1Char('>'), i));
            if (i < 0)
                break;
            if (i < 2 || pc_text[i - 1] != QLatin1Char(']') || pc_text[i - 2] != QLatin1Char(']'))
                continue;
            // Between the second bracket and the ">", so that neither section has the end in it.
            encoded(pc_text + si_from, i - si_from);
            literal("]]><![CDATA[");
            si_from = i;
        }
        encoded(pc_text + si_from, static_cast<int>(text.size()) - si_from);
        literal("]]>");
    }

    void flushIfFull()
    {
        if (bytes_.size() >= PIECE_SIZE)
            flush();
    }

private:
    char* room(int si_size)
    {
        const int si_before = static_cast<int>(bytes_.size());
        bytes_.resize(si_before + si_size);
        return bytes_.data() + si_before;
    }

    /// Copies characters from the front that stand for themselves. Returns how many.
    int plainRun(const QChar* pc_text, int si_size)
    {
        int si_run = 0;
        while (si_run < si_size && si_run < PIECE_SIZE) {
            const ushort us_unit = pc_text[si_run].unicode();
            if (us_unit < 0x20 || us_unit >= 0x80 || us_unit == '<' || us_unit == '>' || us_unit == '&' ||
                us_unit == '"')
                break;
            ++si_run;
        }
        char* const pc_to = room(si_run);
        for (int i = 0; i < si_run; ++i)
            pc_to[i] = static_cast<char>(pc_text[i].unicode());
        return si_run;
    }

    /// Encodes characters from the front that are not ASCII. Returns how many units.
    int encodedRun(const QChar* pc_text, int si_size)
    {
        int si_run = 0;
        while (si_run < si_size && pc_text[si_run].unicode() >= 0x80)
            ++si_run;
        encoded(pc_text, si_run);
        return si_run;
    }

    /// Encodes characters as Qt does.
    void encoded(const QChar* pc_text, int si_size)
    {
        bytes(QString::fromRawData(pc_text, si_size).toUtf8());
    }

    void bytes(const QByteArray& added)
    {
        if (added.size() < PIECE_SIZE / 4) {
            bytes_.append(added);
            flushIfFull();
            return;
        }
        flush();
        b_failed_ = b_failed_ || device_.write(added) != added.size();
    }

    void sign(char c_sign, bool b_attribute)
    {
        switch (c_sign) {
        case '<':
            literal("&lt;");
            break;
        case '>':
            literal("&gt;");
            break;
        case '&':
            literal("&amp;");
            break;
        case '"':
            literal("&quot;");
            break;
        case '\t':
            b_attribute ? literal("&#9;") : literal("\t");
            break;
        case '\n':
            b_attribute ? literal("&#10;") : literal("\n");
            break;
        case '\r':
            b_attribute ? literal("&#13;") : literal("\r");
            break;
        default:
            break; // no other control character is writable
        }
    }

    void flush()
    {
        if (!b_failed_)
            b_failed_ = device_.write(bytes_) != bytes_.size();
        bytes_.resize(0);
    }

    QIODevice& device_;
    QByteArray bytes_;
    bool b_failed_;
};

/// Whether the names of an element are of the kind. The names of a document are few: one that was found to be
/// is remembered.
bool hasNames(TVNC_XMLNode& node, QString& known)
{
    const QString& name = TVNC_NodeAccess::name(node);
    if (name.constData() != known.constData()) {
        if (!isName(name))
            return false;
        known = name;
    }
    const QXmlStreamAttributes& attributes = TVNC_NodeAccess::attributes(node);
    for (int i = 0; i < attributes.size(); ++i) {
        const QXmlStreamAttribute& attribute = attributes.at(i);
        if (!attribute.namespaceUri().isEmpty() || !isName(attribute.qualifiedName().toString()))
            return false;
    }
    return true;
}

/// Goes through a tree. The rules of formatting: a line of its own for every start tag but that of the first
/// child of an element with a text, and for the end tag of an element with children.
class TreeWriter
{
public:
    explicit TreeWriter(QIODevice& device) : output_(device) {}

    void write(TVNC_XMLNode& root)
    {
        output_.literal(TVNG_XML_DECLARATION);
        bool b_textBefore = writeElement(root, false);
        while (!open_.isEmpty()) {
            Open& element = open_.last();
            const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*element.pc_node);
            if (element.si_next < children.size()) {
                b_textBefore = writeElement(*children.at(element.si_next++), b_textBefore);
                continue;
            }
            TVNC_XMLNode& node = *element.pc_node;
            open_.remove(open_.size() - 1);
            output_.newLine(static_cast<int>(open_.size()));
            writeEndTag(node);
        }
        output_.literal("\n");
    }

private:
    /// Writes an element up to its first child, or all of it when it has none. Returns whether a text was
    /// written last.
    bool writeElement(TVNC_XMLNode& node, bool b_textBefore)
    {
        if (!b_textBefore)
            output_.newLine(static_cast<int>(open_.size()));
        writeStartTag(node);
        const char c_type = node.getTextType();
        QString text;
        if (c_type == CHARACTER_DATA || c_type == CDATA_SECTION)
            text = TVNC_XMLCharacters::writable(TVNC_NodeAccess::text(node));
        const bool b_leaf = TVNC_NodeAccess::children(node).isEmpty();
        if (text.isEmpty() && b_leaf) {
            output_.literal("/>");
            return false;
        }
        output_.literal(">");
        if (!text.isEmpty() && c_type == CDATA_SECTION)
            output_.cdata(text);
        else
            output_.escaped(text, false);
        if (b_leaf) {
            writeEndTag(node);
            return false;
        }
        const Open element = {&node, 0};
        open_.append(element);
        return !text.isEmpty();
    }

    /// Without its last sign.
    void writeStartTag(TVNC_XMLNode& node)
    {
        output_.literal("<");
        output_.name(TVNC_NodeAccess::name(node));
        const QXmlStreamAttributes& attributes = TVNC_NodeAccess::attributes(node);
        for (int i = 0; i < attributes.size(); ++i) {
            output_.literal(" ");
            output_.name(attributes.at(i).qualifiedName().toString());
            output_.literal("=\"");
            output_.escaped(TVNC_XMLCharacters::writable(attributes.at(i).value().toString()), true);
            output_.literal("\"");
        }
    }

    void writeEndTag(TVNC_XMLNode& node)
    {
        output_.literal("</");
        output_.name(TVNC_NodeAccess::name(node));
        output_.literal(">");
    }

    Output output_;
    QVector<Open> open_;
};

} // namespace

bool TVNC_CanonicalWriter::takes(TVNC_XMLNode& root)
{
    QString knownName;
    QVector<Open> open;
    if (!hasNames(root, knownName))
        return false;
    const Open top = {&root, 0};
    open.append(top);
    while (!open.isEmpty()) {
        const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*open.last().pc_node);
        if (open.last().si_next == children.size()) {
            open.remove(open.size() - 1);
            continue;
        }
        TVNC_XMLNode* const pc_child = children.at(open.last().si_next++);
        if (!pc_child || open.size() == MAX_DEPTH || !hasNames(*pc_child, knownName))
            return false;
        const Open next = {pc_child, 0};
        open.append(next);
    }
    return true;
}

void TVNC_CanonicalWriter::write(QIODevice& device, TVNC_XMLNode& root)
{
    TreeWriter(device).write(root);
}
