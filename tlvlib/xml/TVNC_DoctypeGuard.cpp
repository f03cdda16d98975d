#include "tlvlib/xml/TVNC_DoctypeGuard.h"

#include <cstring>

namespace {

const char COMMENT_START[] = "!--";
const char CDATA_START[] = "![CDATA[";
const char DOCTYPE_START[] = "!DOCTYPE";

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

TVNC_DoctypeGuard::TVNC_DoctypeGuard()
    : part_(CONTENT)
    , si_MarkupSize(0)
    , c_Last(0)
    , c_BeforeLast(0)
    , c_Quote(0)
    , b_ElementSeen(false)
    , b_DoctypeSeen(false)
{
}

int TVNC_DoctypeGuard::admit(const char* pc_bytes, int si_size)
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
bool TVNC_DoctypeGuard::admitMarkup(char c_byte)
{
    markup_[si_MarkupSize++] = c_byte;
    if (c_byte == '?' && si_MarkupSize == 1) {
        begin(INSTRUCTION);
    } else if (markup_[0] != '!') {
        if (c_byte != '/')
            b_ElementSeen = true;
        part_ = CONTENT;
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

void TVNC_DoctypeGuard::begin(Part part)
{
    part_ = part;
    si_MarkupSize = 0;
    c_Last = 0;
    c_BeforeLast = 0;
}

bool TVNC_DoctypeGuard::endsPart(char c_byte) const
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
