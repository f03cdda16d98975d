#ifndef TLVLIB_XML_TVNC_CANONICALREADER_H
#define TLVLIB_XML_TVNC_CANONICALREADER_H

#include <QtCore/QIODevice>

class TVNC_XMLNode;

/**
 * Reads documents in the form in which the library writes them, several times as fast as Qt's stream reader.
 * Internal to the library; not installed.
 *
 * It takes a document that is well-formed beyond doubt, and leaves every other one, damaged or merely
 * unusual, to TVNC_XMLReader: a declaration of UTF-8, names and attribute names of ASCII letters, no
 * namespaces, no character that XML lacks or that anything might change on its way (a carriage return, a byte
 * order mark, a noncharacter), only the five named entities, no comments, no processing instructions, nothing
 * behind the root but blanks. Of what it takes it makes the very same tree.
 */
class TVNC_CanonicalReader
{
public:
    /**
     * The tree of the document in @a device, which stands at its beginning.
     *
     * @return null for a document of any other form, and when there is no memory for a node. The device then
     *         stands at its beginning again, unless it is sequential, which nothing is read from.
     *
     * Throws std::bad_alloc when there is no memory for a text.
     */
    static TVNC_XMLNode* read(QIODevice& device);
};

#endif
