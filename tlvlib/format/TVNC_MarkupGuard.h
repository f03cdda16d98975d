#ifndef TLVLIB_FORMAT_TVNC_MARKUPGUARD_H
#define TLVLIB_FORMAT_TVNC_MARKUPGUARD_H

#include <QtCore/QVector>

/**
 * Watches the bytes of an XML document in UTF-8 for what must not be parsed: document type declarations that
 * declare something, and more attributes than a parser of Qt's can take. Internal to the library; not
 * installed.
 *
 * A declaration with an internal subset can declare entities that blow up without limit; Qt 4.8 has no limit
 * of its own. Every version of Qt also parses a declaration inside or behind the root element, and a second
 * one, before it reports an error; some versions report none. The guard lets one declaration pass, without a
 * subset and before the root element.
 *
 * Qt compares every attribute of an element with every other one, and every prefix with all declarations of
 * namespaces that are in force, those of the elements around it included. Without limits its
 * time would grow with the square of a file's size, to hours. The limits are far above what any document
 * needs. (A megabyte at the limit of attributes took four seconds on a busy
 * desk, one at the limit of namespaces one.)
 *
 * The guard only tells tags, comments, CDATA sections and processing instructions from the rest: a '<' in any
 * other place begins markup, or is an error that ends the parsing. It does not matter what the guard takes
 * the bytes behind an error for.
 */
class TVNC_MarkupGuard
{
public:
    enum {
        ATTRIBUTES_MAX = 8000, ///< of an element, declarations of namespaces included
        NAMESPACES_MAX = 4000, ///< declarations in force at one place
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
    bool admitAttributeName(char c_byte);
    void begin(Part part);
    void beginElement();
    void endElement();
    bool endsPart(char c_byte) const;

    Part part_;
    char c_markup_[8]; ///< in MARKUP: the characters behind '<'
    int si_markupSize_;
    char c_last_; ///< the last two characters of the part
    char c_beforeLast_;
    char c_quote_;      ///< what ends a literal
    int si_attributes_; ///< of the element, so far
    int si_xmlnsSize_; ///< how much of "xmlns" an attribute's name has begun with; -1 when it is another name
    int si_depth_;     ///< how many elements are open
    bool b_doctypeSeen_;
    bool b_elementSeen_;
    /// Of each declaration of a namespace that is in force, the depth of its element: in ascending order.
    QVector<int> namespaceDepths_;
};

#endif
