#ifndef TLVLIB_XML_TVNC_DOCTYPEGUARD_H
#define TLVLIB_XML_TVNC_DOCTYPEGUARD_H

/**
 * Watches the bytes of an XML document in UTF-8 for a document type declaration that must not be parsed.
 * Internal to the library; not installed.
 *
 * A declaration with an internal subset can declare entities that blow up without limit; Qt 4.8 has no limit
 * of its own. Besides, every version of Qt parses a declaration inside or behind the root element, and a
 * second one, before it complains, if it does. Only one declaration without a subset, before the root
 * element, may pass.
 *
 * It is enough to tell comments, CDATA sections and processing instructions from the rest, since a '<' in any
 * other place begins markup or is an error that ends the parsing.
 */
class TVNC_DoctypeGuard
{
public:
    TVNC_DoctypeGuard();

    /**
     * Takes the next piece of the document.
     * @return how many of its bytes may be parsed. Fewer than @a si_size means that the document ends there.
     */
    int admit(const char* pc_bytes, int si_size);

private:
    enum Part {
        CONTENT,         ///< text, and what follows the first characters of a tag
        MARKUP,          ///< behind a '<', until the characters tell what it begins
        COMMENT,         ///< ends with "-->"
        CDATA,           ///< ends with "]]>"
        INSTRUCTION,     ///< ends with "?>"
        DOCTYPE,         ///< ends with ">"
        DOCTYPE_LITERAL, ///< a quoted identifier in the declaration
    };

    bool admitMarkup(char c_byte);
    void begin(Part part);
    bool endsPart(char c_byte) const;

    Part part_;
    char markup_[8]; ///< in MARKUP: the characters behind '<'
    int si_MarkupSize;
    char c_Last; ///< the last two characters of a part that ends with a sequence
    char c_BeforeLast;
    char c_Quote; ///< what ends a DOCTYPE_LITERAL
    bool b_ElementSeen;
    bool b_DoctypeSeen;
};

#endif
