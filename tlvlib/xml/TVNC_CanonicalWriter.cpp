#include "tlvlib/xml/TVNC_CanonicalWriter.h"

#include "tlvlib/format/TVNC_ByteKinds.h"
#include "tlvlib/format/TVNC_XMLCharacters.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNG_walkTree.h"

#include <cstring>
#include <memory>

namespace {

/// Bytes that are collected before they go to the device.
const int OUTPUT_SIZE = 64 * 1024;

/// Characters that are copied at a time: the room for them is looked for once.
const int RUN_SIZE = 1024;

/// Whether bytes of ASCII are written as they are, in one CDATA section: none is a control character, and no
/// section ends within.
bool fitsOneSection(const QByteArray& ascii)
{
    return !std::memchr(ascii.constData(), '>', static_cast<size_t>(ascii.size())) &&
           TVNC_XMLCharacters::arePrintable(ascii.constData(), static_cast<int>(ascii.size()));
}

/// Whether anything is left of a text without what XML cannot hold.
bool hasWritable(const QString& text)
{
    if (text.isEmpty())
        return false;
    const ushort us_first = text.at(0).unicode();
    return (us_first >= 0x20 && us_first < 0x80) || !TVNC_XMLCharacters::writable(text).isEmpty();
}

/// Looks at a tree before it is written.
class KindCheck
{
public:
    bool enter(TVNC_XMLNode* pc_node, int si_depth)
    {
        return pc_node && si_depth <= TVNG_FORMATTED_DEPTH && isName(TVNC_NodeAccess::name(*pc_node)) &&
               areAttributeNames(TVNC_NodeAccess::attributes(*pc_node));
    }
    void leave(TVNC_XMLNode&, int) {}

private:
    /// @tparam Text a QString or what an attribute hands out
    template <typename Text>
    bool isName(const Text& name) const
    {
        const QChar* const pc_name = name.data();
        const int si_size = static_cast<int>(name.size());
        if (si_size == 0 || si_size > RUN_SIZE || !kinds_.is(pc_name[0], TVNC_ByteKinds::NAME_START))
            return false;
        int i = 1;
        while (i < si_size && kinds_.is(pc_name[i], TVNC_ByteKinds::IN_NAME))
            ++i;
        return i == si_size;
    }

    bool areAttributeNames(const QXmlStreamAttributes& attributes) const
    {
        for (int i = 0; i < attributes.size(); ++i) {
            const auto namespaceUri = attributes.at(i).namespaceUri();
            const auto qualifiedName = attributes.at(i).qualifiedName();
            if (!namespaceUri.isEmpty() || !isName(qualifiedName))
                return false;
        }
        return true;
    }

    const TVNC_ByteKinds kinds_;
};

/// Bytes on their way to the device.
class Output
{
public:
    explicit Output(QIODevice& device)
        : device_(device), buffer_(new char[OUTPUT_SIZE]), si_size_(0), b_failed_(false)
    {
    }

    void bytes(const char* pc_bytes, int si_size)
    {
        if (si_size > OUTPUT_SIZE) {
            flush();
            send(pc_bytes, si_size);
            return;
        }
        std::memcpy(room(si_size), pc_bytes, static_cast<size_t>(si_size));
        si_size_ += si_size;
    }

    template <size_t SIZE>
    void literal(const char (&c_text)[SIZE])
    {
        bytes(c_text, static_cast<int>(SIZE) - 1);
    }

    void newLine(int si_level)
    {
        literal("\n");
        for (int i = 0; i < si_level; ++i)
            literal(TVNG_INDENTATION);
    }

    /// A name that KindCheck took.
    template <typename Text>
    void name(const Text& text)
    {
        const int si_length = static_cast<int>(text.size());
        char* const pc_to = room(si_length);
        const QChar* const pc_text = text.data();
        for (int i = 0; i < si_length; ++i)
            pc_to[i] = static_cast<char>(pc_text[i].unicode());
        si_size_ += si_length;
    }

    /// Text with its markup escaped, and without what XML cannot hold; in an attribute, line breaks and tabs
    /// are escaped, too.
    template <typename Text>
    void escaped(const Text& text, bool b_attribute)
    {
        const QChar* pc_text = text.data();
        const QChar* const pc_end = pc_text + text.size();
        while (pc_text != pc_end) {
            const QChar* const pc_behind = plainRun(pc_text, pc_end);
            if (pc_behind != pc_text)
                pc_text = pc_behind; // the next round copies more, if there are more
            else if (pc_text->unicode() >= 0x80)
                pc_text = foreignRun(pc_text, pc_end);
            else
                sign(static_cast<char>((pc_text++)->unicode()), b_attribute);
        }
    }

    /// The text, without what XML cannot hold, in as many sections as it takes.
    void cdata(const QString& text)
    {
        const QByteArray utf8 = TVNC_XMLCharacters::writable(text).toUtf8();
        literal(TVNG_CDATA_START);
        int si_from = 0;
        int si_found;
        while ((si_found = static_cast<int>(utf8.indexOf(TVNG_CDATA_END, si_from))) >= 0) {
            // Between the second bracket and the ">", so that neither section has the end in it.
            bytes(utf8.constData() + si_from, si_found + 2 - si_from);
            literal(TVNG_CDATA_END TVNG_CDATA_START);
            si_from = si_found + 2;
        }
        bytes(utf8.constData() + si_from, static_cast<int>(utf8.size()) - si_from);
        literal(TVNG_CDATA_END);
    }

    void flush()
    {
        send(buffer_.get(), si_size_);
        si_size_ = 0;
    }

private:
    /// Room for so many bytes, at most a piece, behind what is there.
    char* room(int si_size)
    {
        if (si_size > OUTPUT_SIZE - si_size_)
            flush();
        return buffer_.get() + si_size_;
    }

    void send(const char* pc_bytes, int si_size)
    {
        b_failed_ = b_failed_ || device_.write(pc_bytes, si_size) != si_size;
    }

    /// Copies characters that stand for themselves from the front, at most RUN_SIZE of them. Returns the
    /// place behind them.
    const QChar* plainRun(const QChar* pc_text, const QChar* pc_end)
    {
        const int si_most = pc_end - pc_text < RUN_SIZE ? static_cast<int>(pc_end - pc_text) : RUN_SIZE;
        char* const pc_to = room(si_most);
        int i = 0;
        for (; i < si_most; ++i) {
            if (!kinds_.is(pc_text[i], TVNC_ByteKinds::UNESCAPED))
                break;
            pc_to[i] = static_cast<char>(pc_text[i].unicode());
        }
        si_size_ += i;
        return pc_text + i;
    }

    /// Encodes characters from the front that are not ASCII, as Qt does. Returns what is behind them.
    const QChar* foreignRun(const QChar* pc_text, const QChar* pc_end)
    {
        const QChar* pc_stop = pc_text;
        while (pc_stop != pc_end && pc_stop->unicode() >= 0x80)
            ++pc_stop;
        const QString run = QString::fromRawData(pc_text, static_cast<int>(pc_stop - pc_text));
        const QByteArray utf8 = TVNC_XMLCharacters::writable(run).toUtf8();
        bytes(utf8.constData(), static_cast<int>(utf8.size()));
        return pc_stop;
    }

    void sign(char c_sign, bool b_attribute)
    {
        for (const auto& entity : TVNG_PREDEFINED_ENTITIES) {
            if (entity.c_meaning == c_sign) {
                bytes(entity.pc_reference, static_cast<int>(std::strlen(entity.pc_reference)));
                return;
            }
        }
        switch (c_sign) {
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
            break; // XML has no other control character
        }
    }

    QIODevice& device_;
    const TVNC_ByteKinds kinds_;
    std::unique_ptr<char[]> buffer_;
    int si_size_; ///< of what is in the buffer
    bool b_failed_;
};

/// Writes a document node by node.
class DocumentWriter
{
public:
    explicit DocumentWriter(Output& output) : output_(output), b_textBefore_(false) {}

    /// Writes an element up to its first child, or all of it when it has none.
    bool enter(TVNC_XMLNode* pc_node, int si_depth)
    {
        if (!b_textBefore_)
            output_.newLine(si_depth - 1);
        writeStartTag(*pc_node);
        const bool b_text = writeText(*pc_node);
        const bool b_leaf = isLeaf(*pc_node);
        if (b_leaf && b_text)
            writeEndTag(*pc_node);
        else if (b_leaf)
            output_.literal("/>");
        else if (!b_text)
            output_.literal(">");
        b_textBefore_ = b_text && !b_leaf;
        return true;
    }

    void leave(TVNC_XMLNode& node, int si_depth)
    {
        if (isLeaf(node))
            return;
        output_.newLine(si_depth - 1);
        writeEndTag(node);
    }

private:
    static bool isLeaf(TVNC_XMLNode& node) { return TVNC_NodeAccess::children(node).isEmpty(); }

    /// Writes a start tag without the '>' or "/>" at its end.
    void writeStartTag(TVNC_XMLNode& node)
    {
        output_.literal("<");
        output_.name(TVNC_NodeAccess::name(node));
        const QXmlStreamAttributes& attributes = TVNC_NodeAccess::attributes(node);
        for (int i = 0; i < attributes.size(); ++i) {
            output_.literal(" ");
            output_.name(attributes.at(i).qualifiedName());
            output_.literal("=\"");
            output_.escaped(attributes.at(i).value(), true);
            output_.literal("\"");
        }
    }

    /// Writes the '>' of the start tag, and the text. Returns false, and writes nothing, when there is no
    /// text.
    bool writeText(TVNC_XMLNode& node)
    {
        const char c_type = node.getTextType();
        if (c_type != TVNG_CHARACTER_DATA && c_type != TVNG_CDATA_SECTION)
            return false;
        if (c_type == TVNG_CDATA_SECTION && TVNC_NodeAccess::isTextPacked(node)) {
            const QByteArray packed = TVNC_PackedText::bytes(TVNC_NodeAccess::storedText(node));
            if (fitsOneSection(packed)) {
                output_.literal(">" TVNG_CDATA_START);
                output_.bytes(packed.constData(), static_cast<int>(packed.size()));
                output_.literal(TVNG_CDATA_END);
                return true;
            }
        }
        const QString text = TVNC_NodeAccess::text(node);
        if (!hasWritable(text))
            return false;
        output_.literal(">");
        if (c_type == TVNG_CDATA_SECTION)
            output_.cdata(text);
        else
            output_.escaped(text, false);
        return true;
    }

    void writeEndTag(TVNC_XMLNode& node)
    {
        output_.literal("</");
        output_.name(TVNC_NodeAccess::name(node));
        output_.literal(">");
    }

    Output& output_;
    bool b_textBefore_; ///< whether a text of the element around it stands right before what comes next
};

} // namespace

bool TVNC_CanonicalWriter::takes(TVNC_XMLNode& root)
{
    KindCheck check;
    return TVNG_walkTree(&root, check);
}

void TVNC_CanonicalWriter::write(QIODevice& device, TVNC_XMLNode& root)
{
    Output output(device);
    output.literal(TVNG_XML_DECLARATION);
    DocumentWriter writer(output);
    TVNG_walkTree(&root, writer);
    output.literal("\n");
    output.flush();
}
