#include "tlvlib/xml/TVNC_MarkupGuard.h"

#include <cstring>

namespace {

const char COMMENT_START[] = "!--";
const char CDATA_START[] = "![CDATA[";
const char DOCTYPE_START[] = "!DOCTYPE";
const char NAMESPACE[] = "xmlns";
const int NAMESPACE_SIZE = sizeof NAMESPACE - 1;

/// Whether the characters are the beginning of a keyword, or all of it.
bool isBeginningOf(const char* pc_keyword, const char* pc_characters, int si_size)
{
    return std::strncmp(pc_keyword, pc_characters, static_cast<size_t>(si_size)) == 0;
}

bool isAllOf(const char* pc_keyword, const char* pc_characters, int si_size)
{
    return isBeginningOf(pc_keyword, pc_characters, si_size) &&
           std::strlen(pc_keyword) == static_cast<size_t>(si_size);
}

} // namespace

TVNC_MarkupGuard::TVNC_MarkupGuard()
    : part_(CONTENT)
    , si_MarkupSize(0)
    , c_Last(0)
    , c_BeforeLast(0)
    , c_Quote(0)
    , si_Attributes(0)
    , si_Namespaces(0)
    , si_XmlnsSize(0)
    , b_ElementSeen(false)
    , b_DoctypeSeen(false)
{
}

int TVNC_MarkupGuard::admit(const char* pc_bytes, int si_size)
{
    for (int i = 0; i < si_size; ++i) {
        const char c_byte = pc_bytes[i];
        switch (part_) {
        case CONTENT: {
            const void* pc_found = std::memchr(pc_bytes + i, '<', static_cast<size_t>(si_size - i));
            if (!pc_found)
                return si_size;
            i = static_cast<int>(static_cast<const char*>(pc_found) - pc_bytes);
            begin(MARKUP);
            break;
        }
        case MARKUP:
            if (!admitMarkup(c_byte))
                return i;
            break;
        case TAG:
            if (!admitTag(c_byte))
                return i;
            break;
        case TAG_LITERAL:
            if (c_byte == c_Quote) {
                part_ = TAG;
                si_XmlnsSize = 0;
            } else if (c_byte == '<') {
                begin(MARKUP);
            }
            break;
        case COMMENT:
        case CDATA:
        case INSTRUCTION:
            if (endsPart(c_byte))
                part_ = CONTENT;
            c_BeforeLast = c_Last;
            c_Last = c_byte;
            break;
        case DOCTYPE:
            if (c_byte == '[')
                return i;
            if (c_byte == '>') {
                part_ = CONTENT;
            } else if (c_byte == '"' || c_byte == '\'') {
                c_Quote = c_byte;
                part_ = DOCTYPE_LITERAL;
            }
            break;
        case DOCTYPE_LITERAL:
            if (c_byte == c_Quote)
                part_ = DOCTYPE;
            break;
        }
    }
    return si_size;
}

/// Returns false when the byte completes the start of a declaration that must not be parsed.
bool TVNC_MarkupGuard::admitMarkup(char c_byte)
{
    markup_[si_MarkupSize++] = c_byte;
    if (c_byte == '?' && si_MarkupSize == 1) {
        begin(INSTRUCTION);
    } else if (markup_[0] != '!') {
        if (c_byte == '/') {
            part_ = CONTENT;
        } else {
            b_ElementSeen = true;
            si_Attributes = 0;
            si_XmlnsSize = -1;
            part_ = TAG;
        }
    } else if (isAllOf(COMMENT_START, markup_, si_MarkupSize)) {
        begin(COMMENT);
    } else if (isAllOf(CDATA_START, markup_, si_MarkupSize)) {
        begin(CDATA);
    } else if (isAllOf(DOCTYPE_START, markup_, si_MarkupSize)) {
        if (b_ElementSeen || b_DoctypeSeen)
            return false;
        b_DoctypeSeen = true;
        begin(DOCTYPE);
    } else if (!isBeginningOf(COMMENT_START, markup_, si_MarkupSize) &&
               !isBeginningOf(CDATA_START, markup_, si_MarkupSize) &&
               !isBeginningOf(DOCTYPE_START, markup_, si_MarkupSize)) {
        part_ = CONTENT; // not XML: the parser stops here
    }
    return true;
}

/// Returns false at the attribute that is one too many.
bool TVNC_MarkupGuard::admitTag(char c_byte)
{
    const bool b_blank = c_byte == ' ' || c_byte == '\t' || c_byte == '\n' || c_byte == '\r';
    if (si_XmlnsSize == NAMESPACE_SIZE && (c_byte == ':' || c_byte == '=' || b_blank)) {
        si_XmlnsSize = -1;
        if (++si_Namespaces > NAMESPACES_MAX)
            return false;
    }
    switch (c_byte) {
    case '<':
        begin(MARKUP);
        break;
    case '>':
        part_ = CONTENT;
        break;
    case '"':
    case '\'':
        c_Quote = c_byte;
        part_ = TAG_LITERAL;
        return ++si_Attributes <= ATTRIBUTES_MAX;
    default:
        if (b_blank)
            si_XmlnsSize = 0;
        else if (si_XmlnsSize >= 0)
            si_XmlnsSize = NAMESPACE[si_XmlnsSize] == c_byte ? si_XmlnsSize + 1 : -1;
    }
    return true;
}

void TVNC_MarkupGuard::begin(Part part)
{
    part_ = part;
    si_MarkupSize = 0;
    c_Last = 0;
    c_BeforeLast = 0;
}

bool TVNC_MarkupGuard::endsPart(char c_byte) const
{
    if (c_byte != '>')
        return false;
    switch (part_) {
    case COMMENT:
        return c_Last == '-' && c_BeforeLast == '-';
    case CDATA:
        return c_Last == ']' && c_BeforeLast == ']';
    default:
        return c_Last == '?';
    }
}
