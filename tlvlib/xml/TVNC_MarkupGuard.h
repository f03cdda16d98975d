#ifndef TLVLIB_XML_TVNC_MARKUPGUARD_H
#define TLVLIB_XML_TVNC_MARKUPGUARD_H

/**
 * Watches the bytes of an XML document in UTF-8 for what must not be parsed: document type declarations that
 * declare something, and more attributes than a parser of Qt's can take. Internal to the library; not
 * installed.
 *
 * A declaration with an internal subset can declare entities that blow up without limit; Qt 4.8 has no limit
 * of its own. Besides, every version of Qt parses a declaration inside or behind the root element, and a
 * second one, before it complains, if it does. Only one declaration without a subset, before the root
 * element, may pass.
 *
 * Qt compares every attribute of an element with every other one, and every prefix with all namespaces that
 * are in force. A few bytes more an attribute would keep it busy for hours, so there are limits, far above
 * what any document needs: without them time would grow with the square of a file's size.
 *
 * It is enough to tell tags, comments, CDATA sections and processing instructions from the rest, since a '<'
 * in any other place begins markup or is an error that ends the parsing.
 */
class TVNC_MarkupGuard
{
public:
    enum {
        ATTRIBUTES_MAX = 1000, ///< of an element, namespaces included
        NAMESPACES_MAX = 1000, ///< declared in the whole document
    };

    TVNC_MarkupGuard();

    /**
     * Takes the next piece of the document.
     * @return how many of its bytes may be parsed. Fewer than @a si_size means that the document ends there.
     */
    int admit(const char* pc_bytes, int si_size);

private:
    enum Part {
        CONTENT,         ///< text, and end tags
        MARKUP,          ///< behind a '<', until the characters tell what it begins
        TAG,             ///< of an element, behind the first character of its name
        TAG_LITERAL,     ///< a quoted value in it
        COMMENT,         ///< ends with "-->"
        CDATA,           ///< ends with "]]>"
        INSTRUCTION,     ///< ends with "?>"
        DOCTYPE,         ///< ends with ">"
        DOCTYPE_LITERAL, ///< a quoted identifier in the declaration
    };

    bool admitMarkup(char c_byte);
    bool admitTag(char c_byte);
    void begin(Part part);
    bool endsPart(char c_byte) const;

    Part part_;
    char markup_[8]; ///< in MARKUP: the characters behind '<'
    int si_MarkupSize;
    char c_Last; ///< the last two characters of a part that ends with a sequence
    char c_BeforeLast;
    char c_Quote;      ///< what ends a literal
    int si_Attributes; ///< of the element, so far
    int si_Namespaces; ///< of the document, so far
    int si_XmlnsSize;  ///< how much of "xmlns" an attribute's name has begun with; -1 when it is another name
    bool b_ElementSeen;
    bool b_DoctypeSeen;
};

#endif
