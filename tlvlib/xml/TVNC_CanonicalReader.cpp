#include "tlvlib/xml/TVNC_CanonicalReader.h"

#include "tlvlib/format/TVNC_ByteKinds.h"
#include "tlvlib/format/TVNC_XMLCharacters.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/xml/TVNC_NamePool.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

const char DECLARATION[] = TVNG_XML_DECLARATION "\n";
const char CDATA_START[] = TVNG_CDATA_START;
const char CDATA_END[] = TVNG_CDATA_END;

/// The length of a literal.
template <size_t SIZE>
int sizeOf(const char (&)[SIZE])
{
    return static_cast<int>(SIZE) - 1;
}

/// Bytes that are read at a time; more for a text that is longer.
const int READ_SIZE = 64 * 1024;

/// Tokens larger than this are left to the general reader.
const int TOKEN_MAX = 512 * 1024 * 1024;

/// Some of the document's bytes.
struct Span
{
    int size() const { return static_cast<int>(pc_end - pc_begin); }

    /// Compares lengths first. The order serves to find equal names, and for nothing else.
    bool operator<(const Span& other) const
    {
        if (size() != other.size())
            return size() < other.size();
        return std::memcmp(pc_begin, other.pc_begin, static_cast<size_t>(size())) < 0;
    }
    bool operator==(const Span& other) const
    {
        return size() == other.size() &&
               std::memcmp(pc_begin, other.pc_begin, static_cast<size_t>(size())) == 0;
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

/// Replaces the predefined entities in checked bytes. Returns false when there are others.
bool resolve(const Span& bytes, QByteArray& resolved)
{
    resolved.reserve(bytes.size());
    const char* pc_from = bytes.pc_begin;
    while (const void* const pc_found =
               std::memchr(pc_from, '&', static_cast<size_t>(bytes.pc_end - pc_from))) {
        const char* const pc_reference = static_cast<const char*>(pc_found);
        resolved.append(pc_from, static_cast<int>(pc_reference - pc_from));
        pc_from = pc_reference;
        for (const auto& entity : TVNG_PREDEFINED_ENTITIES) {
            // Behind the bytes there is a '<', so that no reference is found beyond their end.
            const size_t ul_length = std::strlen(entity.pc_reference);
            if (std::strncmp(pc_reference, entity.pc_reference, ul_length) != 0)
                continue;
            resolved.append(entity.c_meaning);
            pc_from += ul_length;
            break;
        }
        if (pc_from == pc_reference)
            return false;
    }
    resolved.append(pc_from, static_cast<int>(bytes.pc_end - pc_from));
    return true;
}

/**
 * One pass over the bytes, token by token.
 *
 * The buffer holds the bytes from the current token on, as many as were read so far, and a zero behind them.
 * A function for a token, or for a part of one, moves pc_pos_ over it and answers how that went. Until it is
 * DONE it leaves the tree alone, so that a token of which only a part was in the buffer is begun again when
 * there are more bytes.
 */
class Parser
{
public:
    explicit Parser(QIODevice& device) : device_(device), pc_node_(nullptr)
    {
        buffer_.resize(READ_SIZE + 1);
        pc_pos_ = buffer_.constData();
        pc_end_ = pc_pos_;
        readMore(pc_pos_);
    }

    /// Null when the document is of another form, or there is no memory for a node.
    TVNC_XMLNode* parse()
    {
        if (pc_end_ - pc_pos_ < sizeOf(DECLARATION) ||
            std::memcmp(pc_pos_, DECLARATION, sizeof DECLARATION - 1) != 0)
            return nullptr;
        pc_pos_ = kinds_.skip(pc_pos_ + sizeOf(DECLARATION), TVNC_ByteKinds::BLANK);
        do {
            const char* const pc_token = pc_pos_;
            const Step step = token();
            if (step == OTHER_FORM || (step == MORE_BYTES && !readMore(pc_token)))
                return nullptr;
        } while (!root_ || pc_node_);
        do {
            pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::BLANK);
        } while (pc_pos_ == pc_end_ && readMore(pc_pos_));
        return pc_pos_ == pc_end_ ? root_.release() : nullptr;
    }

private:
    enum Step {
        DONE,
        MORE_BYTES, ///< the bytes in the buffer do not tell
        OTHER_FORM, ///< the document is not for this reader, or there is no memory for a node
    };

    /// Goes back to a place and reads on behind what is there. False at the end of the device, and when the
    /// token is too large.
    bool readMore(const char* pc_from)
    {
        const int si_kept = static_cast<int>(pc_end_ - pc_from);
        const int si_from = static_cast<int>(pc_from - buffer_.constData());
        if (si_kept > TOKEN_MAX)
            return false;
        // Only a token that fills the buffer makes it grow, to nearly twice its size: a long token is copied
        // a few times in all, and there is always room for more bytes. TOKEN_MAX keeps the size within an
        // int.
        if (si_kept + 1 == buffer_.size())
            buffer_.resize(2 * si_kept);
        char* const pc_buffer = buffer_.data();
        std::memmove(pc_buffer, pc_buffer + si_from, static_cast<size_t>(si_kept));
        const qint64 si_count = device_.read(pc_buffer + si_kept, buffer_.size() - 1 - si_kept);
        pc_pos_ = pc_buffer;
        pc_end_ = pc_buffer + si_kept + qMax(si_count, static_cast<qint64>(0));
        pc_buffer[pc_end_ - pc_buffer] = 0;
        return si_count > 0;
    }

    /// What a byte that is not the expected one means.
    Step unexpected() const { return pc_pos_ == pc_end_ ? MORE_BYTES : OTHER_FORM; }

    /// A tag, or a text between two tags.
    Step token()
    {
        if (!root_)
            return startTag();
        if (*pc_pos_ != '<')
            return characterData();
        switch (pc_pos_[1]) {
        case '/':
            return endTag();
        case '!':
            return cdataSection();
        default:
            return startTag();
        }
    }

    Step skip(char c_byte)
    {
        if (*pc_pos_ != c_byte)
            return unexpected();
        ++pc_pos_;
        return DONE;
    }

    Step name(Span& name)
    {
        if (!kinds_.is(*pc_pos_, TVNC_ByteKinds::NAME_START))
            return unexpected();
        name.pc_begin = pc_pos_;
        pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::IN_NAME);
        name.pc_end = pc_pos_;
        return pc_pos_ == pc_end_ ? MORE_BYTES : DONE;
    }

    Step startTag()
    {
        Span element = {pc_pos_, pc_pos_};
        Step step = skip('<');
        if (step == DONE)
            step = name(element);
        names_.clear();
        values_.clear();
        while (step == DONE && *pc_pos_ == ' ')
            step = attribute();
        if (step != DONE)
            return step;
        const bool b_empty = *pc_pos_ == '/';
        if (b_empty)
            ++pc_pos_;
        step = skip('>');
        if (step != DONE)
            return step;
        return isAttributeTwice() ? OTHER_FORM : addNode(element, b_empty);
    }

    Step attribute()
    {
        ++pc_pos_;
        Span attribute = {pc_pos_, pc_pos_};
        Span value = attribute;
        Step step = name(attribute);
        if (step == DONE)
            step = skip('=');
        if (step == DONE)
            step = skip('"');
        if (step == DONE)
            step = attributeValue(value);
        if (step != DONE)
            return step;
        // The general reader reads documents with namespaces.
        if (attribute.size() >= 3 && std::memcmp(attribute.pc_begin, "xml", 3) == 0)
            return OTHER_FORM;
        names_.push_back(attribute);
        values_.push_back(value);
        return DONE;
    }

    Step attributeValue(Span& value)
    {
        value.pc_begin = pc_pos_;
        for (;;) {
            pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::IN_VALUE);
            if (*pc_pos_ == '"')
                break;
            const Step step = multibyte();
            if (step != DONE)
                return step;
        }
        value.pc_end = pc_pos_++;
        return DONE;
    }

    /// Sorts the names, so that even very many of them are compared in little time.
    bool isAttributeTwice()
    {
        if (names_.size() < 2)
            return false;
        sortedNames_ = names_;
        std::sort(sortedNames_.begin(), sortedNames_.end());
        return std::adjacent_find(sortedNames_.begin(), sortedNames_.end()) != sortedNames_.end();
    }

    /// Makes the node of a start tag.
    Step addNode(const Span& element, bool b_empty)
    {
        TVNC_XMLNode* const pc_node = TVNG_newXMLNode(pc_node_, 0);
        if (!pc_node)
            return OTHER_FORM;
        if (!root_)
            root_.reset(pc_node);
        TVNC_NodeAccess::name(*pc_node) = pool_.shared(element.pc_begin, element.size());
        if (!names_.empty())
            giveAttributes(TVNC_NodeAccess::attributes(*pc_node));
        if (!b_empty)
            pc_node_ = pc_node;
        return DONE;
    }

    /// A number that is a record's only attribute is a set that all documents share.
    void giveAttributes(QXmlStreamAttributes& attributes)
    {
        const QString& usualName = TVNC_RecordNumbers::attributeName();
        const Span& value = values_.front();
        const int si_number =
            names_.size() == 1 ? TVNC_RecordNumbers::ofDigits(value.pc_begin, value.size()) : -1;
        if (si_number >= 0 &&
            TVNC_NamePool::equals(usualName, names_.front().pc_begin, names_.front().size())) {
            attributes = TVNC_RecordNumbers::attributes(si_number);
            return;
        }
        attributes.reserve(static_cast<int>(names_.size()));
        for (size_t i = 0; i < names_.size(); ++i)
            attributes.append(pool_.shared(names_[i].pc_begin, names_[i].size()), textOf(values_[i], false));
    }

    Step endTag()
    {
        pc_pos_ += 2;
        const QString& expected = TVNC_NodeAccess::name(*pc_node_);
        if (pc_end_ - pc_pos_ <= expected.size())
            return MORE_BYTES;
        if (!TVNC_NamePool::equals(expected, pc_pos_, static_cast<int>(expected.size())))
            return OTHER_FORM;
        pc_pos_ += expected.size();
        const Step step = skip('>');
        if (step == DONE)
            pc_node_ = pc_node_->getXMLNodeParent();
        return step;
    }

    /// Everything up to the next tag. The first text of an element that is not blank is its text.
    Step characterData()
    {
        Span text = {pc_pos_, pc_pos_};
        pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::BLANK); // most often that is all: indentation
        if (*pc_pos_ == '<')
            return DONE;
        bool b_ascii = true;
        bool b_entities = false;
        for (;;) {
            pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::IN_TEXT);
            if (*pc_pos_ == '<')
                break;
            if (*pc_pos_ == '&') { // resolve() tells which one, once all of the text is there
                b_entities = true;
                ++pc_pos_;
                continue;
            }
            // This refuses '>', too: "]]>" must not stand in a text, and the library escapes each '>'.
            const Step step = multibyte();
            if (step != DONE)
                return step;
            b_ascii = false;
        }
        text.pc_end = pc_pos_;
        QByteArray resolved;
        if (b_entities) {
            if (!resolve(text, resolved))
                return OTHER_FORM;
            text = Span{resolved.constData(), resolved.constData() + resolved.size()};
        }
        giveText(text, b_ascii, TVNG_CHARACTER_DATA);
        return DONE;
    }

    Step cdataSection()
    {
        if (pc_end_ - pc_pos_ < sizeOf(CDATA_START))
            return MORE_BYTES;
        if (std::memcmp(pc_pos_, CDATA_START, sizeof CDATA_START - 1) != 0)
            return OTHER_FORM;
        pc_pos_ += sizeOf(CDATA_START);
        Span text = {pc_pos_, pc_pos_};
        // The section may be blank. The general reader decides whether blanks are a text.
        if (kinds_.skip(pc_pos_, TVNC_ByteKinds::BLANK)[0] == ']')
            return OTHER_FORM;
        bool b_ascii = true;
        for (;;) {
            pc_pos_ = kinds_.skip(pc_pos_, TVNC_ByteKinds::IN_CDATA);
            if (*pc_pos_ == ']') {
                if (pc_end_ - pc_pos_ < sizeOf(CDATA_END))
                    return MORE_BYTES;
                if (std::memcmp(pc_pos_, CDATA_END, sizeof CDATA_END - 1) == 0)
                    break;
                ++pc_pos_;
                continue;
            }
            const Step step = multibyte();
            if (step != DONE)
                return step;
            b_ascii = false;
        }
        text.pc_end = pc_pos_;
        pc_pos_ += sizeOf(CDATA_END);
        giveText(text, b_ascii, TVNG_CDATA_SECTION);
        return DONE;
    }

    /// The first text of an element is its text.
    void giveText(const Span& text, bool b_ascii, char c_textType)
    {
        if (!TVNC_NodeAccess::storedText(*pc_node_).isEmpty())
            return;
        if (b_ascii && text.size() >= TVNC_PackedText::SIZE_MIN && c_textType == TVNG_CDATA_SECTION)
            TVNC_NodeAccess::setPackedText(*pc_node_, TVNC_PackedText::pack(text.pc_begin, text.size()));
        else
            TVNC_NodeAccess::storedText(*pc_node_) = textOf(text, b_ascii);
        pc_node_->setTextType(c_textType);
    }

    /// Takes a character of more than one byte. It refuses those that Qt might change: noncharacters, and
    /// byte order marks, which Qt's decoders may take for the mark of an encoding.
    Step multibyte()
    {
        if (static_cast<uchar>(*pc_pos_) < 0x80)
            return unexpected();
        const int si_length =
            TVNC_XMLCharacters::sequenceLength(pc_pos_, static_cast<int>(pc_end_ - pc_pos_));
        if (si_length == TVNC_XMLCharacters::CUT_OFF)
            return MORE_BYTES;
        if (si_length == TVNC_XMLCharacters::NO_SEQUENCE ||
            TVNC_XMLCharacters::isNoncharacter(pc_pos_, si_length) ||
            std::strncmp(pc_pos_, TVNG_BYTE_ORDER_MARK, sizeof TVNG_BYTE_ORDER_MARK - 1) == 0)
            return OTHER_FORM;
        pc_pos_ += si_length;
        return DONE;
    }

    QIODevice& device_;
    QByteArray buffer_;
    const char* pc_pos_; ///< in the buffer
    const char* pc_end_; ///< behind what was read: where the zero is
    const TVNC_ByteKinds kinds_;
    TVNC_NamePool pool_;
    std::vector<Span> names_; ///< of the attributes of a tag
    std::vector<Span> values_;
    std::vector<Span> sortedNames_;
    std::unique_ptr<TVNC_XMLNode> root_;
    TVNC_XMLNode* pc_node_; ///< the element that is open; null before the root and behind it
};

} // namespace

TVNC_XMLNode* TVNC_CanonicalReader::read(QIODevice& device)
{
    if (device.isSequential() || device.size() < sizeOf(DECLARATION))
        return nullptr;
    TVNC_XMLNode* const pc_root = Parser(device).parse();
    if (!pc_root)
        device.seek(0);
    return pc_root;
}
