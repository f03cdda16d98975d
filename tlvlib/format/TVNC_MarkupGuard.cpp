#include "tlvlib/format/TVNC_MarkupGuard.h"

#include "tlvlib/format/TVNG_documentForm.h"

#include <cstring>

namespace {

const char COMMENT_KEYWORD[] = "!--";
const char CDATA_KEYWORD[] = "![CDATA[";
const char DOCTYPE_KEYWORD[] = "!DOCTYPE";
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
    , si_markupSize_(0)
    , c_last_(0)
    , c_beforeLast_(0)
    , c_quote_(0)
    , si_attributes_(0)
    , si_xmlnsSize_(0)
    , si_depth_(0)
    , b_doctypeSeen_(false)
    , b_elementSeen_(false)
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
            if (c_byte == c_quote_) {
                part_ = TAG;
                c_last_ = c_byte; // a '/' at the end of a value does not end an element
                si_xmlnsSize_ = 0;
            } else if (c_byte == '<') {
                begin(MARKUP); // no value may hold one: the parser stops here
            }
            break;
        case COMMENT:
        case CDATA:
        case INSTRUCTION:
            if (endsPart(c_byte))
                part_ = CONTENT;
            c_beforeLast_ = c_last_;
            c_last_ = c_byte;
            break;
        case DOCTYPE:
            if (c_byte == '[')
                return i;
            if (c_byte == '>') {
                part_ = CONTENT;
            } else if (c_byte == '"' || c_byte == '\'') {
                c_quote_ = c_byte;
                part_ = DOCTYPE_LITERAL;
            }
            break;
        case DOCTYPE_LITERAL:
            if (c_byte == c_quote_)
                part_ = DOCTYPE;
            break;
        }
    }
    return si_size;
}

/// Returns false when the byte completes the start of a declaration that must not be parsed.
bool TVNC_MarkupGuard::admitMarkup(char c_byte)
{
    // No more than eight get here: the longest keywords have eight, and eight characters are one of the
    // keywords or none.
    c_markup_[si_markupSize_++] = c_byte;
    if (c_markup_[0] == '?') {
        begin(INSTRUCTION);
    } else if (c_markup_[0] == '/') {
        endElement();
        part_ = CONTENT;
    } else if (c_markup_[0] != '!') {
        beginElement();
    } else if (isAllOf(COMMENT_KEYWORD, c_markup_, si_markupSize_)) {
        begin(COMMENT);
    } else if (isAllOf(CDATA_KEYWORD, c_markup_, si_markupSize_)) {
        begin(CDATA);
    } else if (isAllOf(DOCTYPE_KEYWORD, c_markup_, si_markupSize_)) {
        if (b_elementSeen_ || b_doctypeSeen_)
            return false;
        b_doctypeSeen_ = true;
        begin(DOCTYPE);
    } else if (!isBeginningOf(COMMENT_KEYWORD, c_markup_, si_markupSize_) &&
               !isBeginningOf(CDATA_KEYWORD, c_markup_, si_markupSize_) &&
               !isBeginningOf(DOCTYPE_KEYWORD, c_markup_, si_markupSize_)) {
        part_ = CONTENT; // not XML: the parser stops here
    }
    return true;
}

/// Returns false at the attribute that is one too many.
bool TVNC_MarkupGuard::admitTag(char c_byte)
{
    if (!admitAttributeName(c_byte))
        return false;
    const char c_before = c_last_;
    c_last_ = c_byte;
    switch (c_byte) {
    case '<':
        begin(MARKUP); // no tag may hold one: the parser stops here
        break;
    case '>':
        if (c_before == '/')
            endElement();
        part_ = CONTENT;
        break;
    case '"':
    case '\'':
        c_quote_ = c_byte;
        part_ = TAG_LITERAL;
        return ++si_attributes_ <= ATTRIBUTES_MAX;
    default:
        break;
    }
    return true;
}

/// Follows the names in a tag for "xmlns", alone or before a colon. Returns false at the declaration that is
/// one too many.
bool TVNC_MarkupGuard::admitAttributeName(char c_byte)
{
    const bool b_blank = TVNG_isBlank(static_cast<unsigned char>(c_byte));
    if (si_xmlnsSize_ == NAMESPACE_SIZE && (c_byte == ':' || c_byte == '=' || b_blank)) {
        if (namespaceDepths_.size() == NAMESPACES_MAX)
            return false;
        namespaceDepths_.append(si_depth_);
        si_xmlnsSize_ =
            -1; // the declaration is counted: the rest of its name, or blanks behind it, count nothing
    }
    if (b_blank)
        si_xmlnsSize_ = 0;
    else if (si_xmlnsSize_ >= 0)
        si_xmlnsSize_ =
            si_xmlnsSize_ < NAMESPACE_SIZE && NAMESPACE[si_xmlnsSize_] == c_byte ? si_xmlnsSize_ + 1 : -1;
    return true;
}

void TVNC_MarkupGuard::begin(Part part)
{
    part_ = part;
    si_markupSize_ = 0;
    c_last_ = 0;
    c_beforeLast_ = 0;
}

void TVNC_MarkupGuard::beginElement()
{
    begin(TAG);
    b_elementSeen_ = true;
    ++si_depth_;
    si_attributes_ = 0;
    si_xmlnsSize_ = -1; // the element's own name may be anything
}

void TVNC_MarkupGuard::endElement()
{
    while (!namespaceDepths_.isEmpty() && namespaceDepths_.last() == si_depth_)
        namespaceDepths_.remove(namespaceDepths_.size() - 1);
    --si_depth_;
}

bool TVNC_MarkupGuard::endsPart(char c_byte) const
{
    if (c_byte != '>')
        return false;
    switch (part_) {
    case COMMENT:
        return c_last_ == '-' && c_beforeLast_ == '-';
    case CDATA:
        return c_last_ == ']' && c_beforeLast_ == ']';
    default:
        return c_last_ == '?';
    }
}
