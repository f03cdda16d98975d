#ifndef TLVLIB_FORMAT_TVNG_DOCUMENTFORM_H
#define TLVLIB_FORMAT_TVNG_DOCUMENTFORM_H

/**
 * @file
 * What a document of the library looks like. Internal to the library; not installed.
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <bookmarks docInfo="1.0">
 *     <bookmark id="000">
 *         <title>News &amp; weather</title>
 *         <secret><![CDATA[c2VjcmV0]]></secret>
 *     </bookmark>
 *     <bookmark id="001"/>
 * </bookmarks>
 * @endcode
 *
 * An element begins on a line of its own, unless the text of the element around it stands right before it. So
 * does the end tag of an element with children. The last line ends with a line break. Qt's stream writer
 * formats its documents in the same way.
 */

/// The first line, without its line break.
#define TVNG_XML_DECLARATION "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"

#define TVNG_INDENTATION "    "
#define TVNG_CDATA_START "<![CDATA["
#define TVNG_CDATA_END "]]>"

/// May stand in front of the declaration, and is not written there.
#define TVNG_BYTE_ORDER_MARK "\xEF\xBB\xBF"

/// The entities that XML predefines. All are read; an apostrophe is written as it is.
const struct
{
    const char* pc_reference;
    char c_meaning;
} TVNG_PREDEFINED_ENTITIES[] = {
    {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};

/// Elements up to this depth, the root's being 1, have lines of their own. Deeper ones are written without
/// line breaks and indentation, which would grow with the square of the depth.
const int TVNG_FORMATTED_DEPTH = 100;

/// The text types of a node: how its text is written. The text of any other type is not written at all.
const char TVNG_CHARACTER_DATA = 0;
const char TVNG_CDATA_SECTION = 1;

/// What XML calls white space.
inline bool TVNG_isBlank(unsigned int ul_character)
{
    return ul_character == ' ' || ul_character == '\t' || ul_character == '\n' || ul_character == '\r';
}

/// The names of the library's own documents are made of ASCII letters, digits and a few signs. XML allows
/// more, and so does the tree.
inline bool TVNG_isNameStart(unsigned int ul_character)
{
    return (ul_character >= 'a' && ul_character <= 'z') || (ul_character >= 'A' && ul_character <= 'Z') ||
           ul_character == '_';
}

inline bool TVNG_isNameCharacter(unsigned int ul_character)
{
    return TVNG_isNameStart(ul_character) || (ul_character >= '0' && ul_character <= '9') ||
           ul_character == '-' || ul_character == '.';
}

#endif
