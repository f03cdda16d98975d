#include "tlvlib/xml/TVNC_CanonicalReader.h"

#include "tlvlib/xml/TVNC_MarkupGuard.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_canonicalForm.h"
#include "tlvlib/xml/TVNG_newXMLNode.h"

#include <QtCore/QString>

#include <cstring>
#include <memory>

namespace {

const char DECLARATION[] = TVNG_XML_DECLARATION "\n";
const size_t DECLARATION_SIZE = sizeof DECLARATION - 1;

/// Bytes that are read at a time; more for a text that is longer.
const int PIECE_SIZE = 64 * 1024;

const char CHARACTER_DATA = 0;
const char CDATA_SECTION = 1;

bool isBlank(char c_byte)
{
    return c_byte == ' ' || c_byte == '\n' || c_byte == '\t';
}

/// Some of the document's bytes.
struct Span
{
    Span() : pc_begin(nullptr), pc_end(nullptr) {}
    Span(const char* pc_from, const char* pc_to) : pc_begin(pc_from), pc_end(pc_to) {}

    int size() const { return static_cast<int>(pc_end - pc_begin); }
    bool equals(const QString& text) const
    {
        if (text.size() != size())
            return false;
        const QChar* const pc_text = text.constData();
        for (int i = 0; i < size(); ++i) {
            if (pc_text[i].unicode() != static_cast<uchar>(pc_begin[i]))
                return false;
        }
        return true;
    }

    const char* pc_begin;
    const char* pc_end;
};

/// The text of checked bytes, without room for more.
QString textOf(const Span& bytes, bool b_ascii)
{
    if (b_ascii)
        return QString::fromLatin1(bytes.pc_begin, bytes.size());
    QString text = QString::fromUtf8(bytes.pc_begin, bytes.size());
    text.squeeze();
    return text;
}

/// How many bytes from the front are ASCII that needs no second look: no markup, no control characters.
size_t plainRun(const char* pc_bytes, size_t size)
{
    size_t i = 0;
    while (i < size) {
        const uchar uc_byte = static_cast<uchar>(pc_bytes[i]);
        if (uc_byte < 0x20 || uc_byte >= 0x80 || uc_byte == '<' || uc_byte == '&' || uc_byte == '>')
            break;
        ++i;
    }
    return i;
}

/// The same inside a CDATA section, up to a bracket.
size_t plainCdataRun(const char* pc_bytes, size_t size)
{
    size_t i = 0;
    while (i < size) {
        const uchar uc_byte = static_cast<uchar>(pc_bytes[i]);
        if (uc_byte < 0x20 || uc_byte >= 0x80 || uc_byte == ']')
            break;
        ++i;
    }
    return i;
}

/// Gives every "pageInfo" and "title" of a document the same shared string. Of two names that fall into the
/// same slot only the later one is remembered.
class NamePool
{
public:
    QString& shared(const Span& name)
    {
        QString& slot =
            slots_[(static_cast<unsigned int>(name.size()) * 7u + static_cast<uchar>(*name.pc_begin) * 31u +
                    static_cast<uchar>(name.pc_end[-1])) %
                   SLOTS];
        if (!name.equals(slot))
            slot = QString::fromLatin1(name.pc_begin, name.size());
        return slot;
    }

private:
    static const unsigned int SLOTS = 32;
    QString slots_[SLOTS];
};

/**
 * One pass over the bytes. Every function returns false at the first thing that is not of the form, and when
 * the bytes read so far are not enough to tell. In that case b_short_ is set, nothing has been done, and the
 * function is called again with more bytes, from the same place.
 */
class Parser
{
public:
    explicit Parser(QIODevice& device) : device_(device)
    {
        buffer_.resize(PIECE_SIZE);
        pc_pos = buffer_.data();
        pc_end = pc_pos;
        readMore(pc_pos);
    }

    /// Null when the document is not of the form, or memory ran out.
    TVNC_XMLNode* parse()
    {
        if (size() < DECLARATION_SIZE || std::memcmp(pc_pos, DECLARATION, DECLARATION_SIZE) != 0)
            return nullptr;
        pc_pos += DECLARATION_SIZE;
        skipBlanks();
        std::unique_ptr<TVNC_XMLNode> root;
        TVNC_XMLNode* pc_node = nullptr; // the element that is open
        do {
            const char* const pc_token = pc_pos;
            b_short_ = false;
            if (token(root, pc_node))
                continue;
            if (!b_short_ || !readMore(pc_token))
                return nullptr;
        } while (!root || pc_node);
        skipBlanks();
        while (pc_pos == pc_end && readMore(pc_pos))
            skipBlanks();
        return pc_pos == pc_end ? root.release() : nullptr;
    }

private:
    size_t size() const { return static_cast<size_t>(pc_end - pc_pos); }

    /// Goes back to a place and reads on behind what is there. False at the end of the device.
    bool readMore(const char* pc_from)
    {
        const int si_kept = static_cast<int>(pc_end - pc_from);
        const int si_from = static_cast<int>(pc_from - buffer_.constData());
        if (si_kept == buffer_.size())
            buffer_.resize(2 * si_kept);
        char* const pc_buffer = buffer_.data();
        std::memmove(pc_buffer, pc_buffer + si_from, static_cast<size_t>(si_kept));
        const qint64 count = device_.read(pc_buffer + si_kept, buffer_.size() - si_kept);
        pc_pos = pc_buffer;
        pc_end = pc_buffer + si_kept + qMax(count, static_cast<qint64>(0));
        return count > 0;
    }

    bool isShort()
    {
        b_short_ = true;
        return false;
    }

    /// A tag, or a text between two tags.
    bool token(std::unique_ptr<TVNC_XMLNode>& root, TVNC_XMLNode*& pc_node)
    {
        if (size() < 2)
            return isShort();
        if (!root) {
            root.reset(startTag(nullptr));
            pc_node = b_tagEnded_ ? nullptr : root.get();
            return root != nullptr;
        }
        if (*pc_pos != '<')
            return characterData(*pc_node);
        if (pc_pos[1] == '!')
            return cdataSection(*pc_node);
        if (pc_pos[1] == '/') {
            if (!endTag(*pc_node))
                return false;
            pc_node = pc_node->getXMLNodeParent();
            return true;
        }
        TVNC_XMLNode* const pc_child = startTag(pc_node);
        if (pc_child && !b_tagEnded_)
            pc_node = pc_child;
        return pc_child != nullptr;
    }

    void skipBlanks()
    {
        while (pc_pos != pc_end && isBlank(*pc_pos))
            ++pc_pos;
    }

    bool skip(char c_byte)
    {
        if (pc_pos == pc_end)
            return isShort();
        if (*pc_pos != c_byte)
            return false;
        ++pc_pos;
        return true;
    }

    bool name(Span& name)
    {
        if (pc_pos == pc_end)
            return isShort();
        if (!TVNG_isNameStart(static_cast<uchar>(*pc_pos)))
            return false;
        name.pc_begin = pc_pos;
        while (pc_pos != pc_end && TVNG_isNameCharacter(static_cast<uchar>(*pc_pos)))
            ++pc_pos;
        name.pc_end = pc_pos;
        return true;
    }

    /// Null for a tag of another form, and when memory ran out. b_tagEnded_ tells whether the element is
    /// empty.
    TVNC_XMLNode* startTag(TVNC_XMLNode* pc_parent)
    {
        // The whole tag, so that no node is made for nothing.
        if (!std::memchr(pc_pos, '>', size())) {
            isShort();
            return nullptr;
        }
        Span element;
        if (!skip('<') || !name(element))
            return nullptr;
        TVNC_XMLNode* const pc_node = TVNG_newXMLNode(pc_parent, 0);
        if (!pc_node)
            return nullptr;
        TVNC_NodeAccess::name(*pc_node) = names_.shared(element);
        if (finishStartTag(*pc_node))
            return pc_node;
        delete pc_node;
        return nullptr;
    }

    bool finishStartTag(TVNC_XMLNode& node)
    {
        while (skip(' ')) {
            Span attribute;
            Span value;
            if (!name(attribute) || !skip('=') || !skip('"') || !attributeValue(value))
                return false;
            // Namespaces are the general reader's, and so is an attribute that comes twice or is one too
            // many.
            if (attribute.size() >= 3 && std::memcmp(attribute.pc_begin, "xml", 3) == 0)
                return false;
            QXmlStreamAttributes& attributes = TVNC_NodeAccess::attributes(node);
            if (attributes.size() == TVNC_MarkupGuard::ATTRIBUTES_MAX)
                return false;
            for (int i = 0; i < attributes.size(); ++i) {
                if (attributes.at(i).qualifiedName() == names_.shared(attribute))
                    return false;
            }
            if (!attributes.isEmpty() || !giveNumber(node, attribute, value))
                attributes.append(names_.shared(attribute), textOf(value, false));
        }
        b_tagEnded_ = skip('/');
        return skip('>');
    }

    /// An attribute that is a record's number, and the only one so far, has a shared set.
    bool giveNumber(TVNC_XMLNode& node, const Span& attribute, const Span& value)
    {
        if (value.size() != 3 || !attribute.equals(TVNC_RecordNumbers::attributeName()))
            return false;
        int si_number = 0;
        for (int i = 0; i < 3; ++i) {
            const int si_digit = value.pc_begin[i] - '0';
            if (si_digit < 0 || si_digit > 9)
                return false;
            si_number = si_number * 10 + si_digit;
        }
        if (si_number >= TVNC_RecordNumbers::LIMIT)
            return false;
        TVNC_NodeAccess::attributes(node) = TVNC_RecordNumbers::attributes(si_number);
        return true;
    }

    bool attributeValue(Span& value)
    {
        value.pc_begin = pc_pos;
        while (pc_pos != pc_end) {
            const uchar uc_byte = static_cast<uchar>(*pc_pos);
            if (uc_byte == '"') {
                value.pc_end = pc_pos++;
                return true;
            }
            if (uc_byte < 0x20 || uc_byte == '<' || uc_byte == '&')
                return false;
            if (uc_byte < 0x80)
                ++pc_pos;
            else if (!multibyte())
                return false;
        }
        return isShort();
    }

    bool endTag(TVNC_XMLNode& node)
    {
        pc_pos += 2;
        const QString& expected = TVNC_NodeAccess::name(node);
        if (size() <= static_cast<size_t>(expected.size()))
            return isShort();
        if (!Span(pc_pos, pc_pos + expected.size()).equals(expected))
            return false;
        pc_pos += expected.size();
        return skip('>');
    }

    /// Everything up to the next tag. The first text of an element that is not blank is its text.
    bool characterData(TVNC_XMLNode& node)
    {
        const char* const pc_begin = pc_pos;
        skipBlanks(); // most often that is all: the indentation of the next tag
        if (pc_pos != pc_end && *pc_pos == '<')
            return true;
        bool b_ascii = true;
        bool b_entities = false;
        for (;;) {
            pc_pos += plainRun(pc_pos, size());
            if (pc_pos == pc_end)
                return isShort();
            const uchar uc_byte = static_cast<uchar>(*pc_pos);
            if (uc_byte == '<')
                break;
            if (uc_byte >= 0x80) {
                b_ascii = false;
                if (!multibyte())
                    return false;
                continue;
            }
            b_entities = b_entities || uc_byte == '&';
            // "]]>" must not stand in a text, and ">" alone need not.
            if (uc_byte != '&' && !isBlank(*pc_pos))
                return false;
            ++pc_pos;
        }
        QString found;
        if (b_entities && !resolve(pc_begin, pc_pos, b_ascii, found))
            return false;
        if (!TVNC_NodeAccess::text(node).isEmpty())
            return true;
        TVNC_NodeAccess::text(node) = b_entities ? found : textOf(Span(pc_begin, pc_pos), b_ascii);
        node.setTextType(CHARACTER_DATA);
        return true;
    }

    /// Replaces the named entities.
    static bool resolve(const char* pc_from, const char* pc_to, bool b_ascii, QString& text)
    {
        QByteArray bytes;
        bytes.reserve(static_cast<int>(pc_to - pc_from));
        while (pc_from != pc_to) {
            const void* const pc_found = std::memchr(pc_from, '&', static_cast<size_t>(pc_to - pc_from));
            const char* const pc_entity = pc_found ? static_cast<const char*>(pc_found) : pc_to;
            bytes.append(pc_from, static_cast<int>(pc_entity - pc_from));
            pc_from = pc_entity;
            if (pc_from == pc_to)
                break;
            static const struct
            {
                const char* pc_name;
                char c_meaning;
            } ENTITIES[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
            bool b_known = false;
            for (size_t i = 0; i < sizeof ENTITIES / sizeof ENTITIES[0] && !b_known; ++i) {
                const size_t length = std::strlen(ENTITIES[i].pc_name);
                b_known = static_cast<size_t>(pc_to - pc_from) >= length &&
                          std::memcmp(pc_from, ENTITIES[i].pc_name, length) == 0;
                if (b_known) {
                    bytes.append(ENTITIES[i].c_meaning);
                    pc_from += length;
                }
            }
            if (!b_known)
                return false;
        }
        text = textOf(Span(bytes.constData(), bytes.constData() + bytes.size()), b_ascii);
        return true;
    }

    bool cdataSection(TVNC_XMLNode& node)
    {
        static const char START[] = "<![CDATA[";
        const size_t start = sizeof START - 1;
        if (size() < start)
            return isShort();
        if (std::memcmp(pc_pos, START, start) != 0)
            return false;
        pc_pos += start;
        const char* const pc_begin = pc_pos;
        bool b_ascii = true;
        for (;;) {
            pc_pos += plainCdataRun(pc_pos, size());
            if (size() < 3)
                return isShort();
            if (static_cast<uchar>(*pc_pos) >= 0x80) {
                b_ascii = false;
                if (!multibyte())
                    return false;
                continue;
            }
            if (*pc_pos == ']' && pc_pos[1] == ']' && pc_pos[2] == '>')
                break;
            if (*pc_pos != ']' && !isBlank(*pc_pos))
                return false;
            ++pc_pos;
        }
        const char* pc_first = pc_begin;
        while (pc_first != pc_pos && isBlank(*pc_first))
            ++pc_first;
        if (pc_first == pc_pos)
            return false; // whether blanks are a text is the general reader's to say
        const Span section(pc_begin, pc_pos);
        if (!TVNC_NodeAccess::text(node).isEmpty()) {
            // The first one counts.
        } else {
            TVNC_NodeAccess::text(node) = textOf(section, b_ascii);
            node.setTextType(CDATA_SECTION);
        }
        pc_pos += 3;
        return true;
    }

    /// Moves over a character of more than one byte.
    bool multibyte()
    {
        const uchar* const b = reinterpret_cast<const uchar*>(pc_pos);
        const size_t left = size();
        if (left < 4 && left < (b[0] < 0xE0 ? 2u : b[0] < 0xF0 ? 3u : 4u))
            return isShort();
        const auto isTail = [](uchar uc_byte) { return (uc_byte & 0xC0) == 0x80; };
        if (b[0] >= 0xC2 && b[0] <= 0xDF && isTail(b[1])) {
            pc_pos += 2;
            return true;
        }
        if (b[0] >= 0xE0 && b[0] <= 0xEF && isTail(b[1]) && isTail(b[2])) {
            if ((b[0] == 0xE0 && b[1] < 0xA0) || (b[0] == 0xED && b[1] > 0x9F))
                return false; // too long a form; a surrogate
            if (b[0] == 0xEF && ((b[1] == 0xBF && b[2] >= 0xBE) || (b[1] == 0xBB && b[2] == 0xBF) ||
                                 (b[1] == 0xB7 && b[2] >= 0x90 && b[2] <= 0xAF)))
                return false; // noncharacters; a byte order mark
            pc_pos += 3;
            return true;
        }
        if (b[0] >= 0xF0 && b[0] <= 0xF4 && isTail(b[1]) && isTail(b[2]) && isTail(b[3])) {
            if ((b[0] == 0xF0 && b[1] < 0x90) || (b[0] == 0xF4 && b[1] > 0x8F))
                return false;
            if ((b[1] & 0x0F) == 0x0F && b[2] == 0xBF && b[3] >= 0xBE)
                return false; // the last two of a plane
            pc_pos += 4;
            return true;
        }
        return false;
    }

    QIODevice& device_;
    QByteArray buffer_;
    const char* pc_pos; ///< in the buffer
    const char* pc_end; ///< behind what was read
    bool b_short_ = false;
    bool b_tagEnded_ = false;
    NamePool names_;
};

} // namespace

TVNC_XMLNode* TVNC_CanonicalReader::read(QIODevice& device)
{
    if (device.isSequential() || device.size() < static_cast<qint64>(DECLARATION_SIZE))
        return nullptr;
    TVNC_XMLNode* const pc_root = Parser(device).parse();
    if (!pc_root)
        device.seek(0);
    return pc_root;
}
