#ifndef TLVLIB_XML_TVNC_XMLREADER_H
#define TLVLIB_XML_TVNC_XMLREADER_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QXmlStreamReader>

class TVNC_XMLNode;

/**
 * Reads a settings file into a tree of TVNC_XMLNode. Use one reader for one document.
 *
 * A document such as
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <fontlist docInfo="1.0">
 *     <font id="000">Sans</font>
 * </fontlist>
 * @endcode
 * becomes a node "fontlist" with one child. Of each element the reader keeps the local name, the attributes
 * with their prefixes and namespaces, the child elements, and the first text that is not blank: blank text is
 * indentation, and text after the first is dropped. Comments, processing instructions and a bare document
 * type declaration are skipped.
 *
 * Bad input never fails and is not logged. Reading stops at the first error, and the tree holds what stood
 * before it: every complete element, and the open ones with what they held so far. Errors are malformed XML,
 * bytes that are not of the document's encoding, characters that XML does not have, and a document type
 * declaration with an internal subset (the library never writes one, and entities blow up), more than 8,000
 * attributes in an element, and more than 4,000 declarations of namespaces around one place (Qt's time for
 * them grows with their square). error(), errorString(), lineNumber() and columnNumber() tell about the error
 * afterwards.
 *
 * Nothing is thrown. When memory runs out, error() is CustomError, and the result is null; only where no more
 * than a child element could not be created, the result is what stood before that.
 *
 * Any depth of nesting can be read; time and memory grow with the size of the document.
 */
class TLVLIB_EXPORT TVNC_XMLReader : public QXmlStreamReader
{
public:
    TVNC_XMLReader();
    ~TVNC_XMLReader();

    /**
     * Reads the file at @a path.
     *
     * @return the root element, owned by the caller. When the file is missing, cannot be opened or holds no
     * element, an empty node without a name. Null only when memory ran out.
     *
     * Logs at level 2 "TVNC_XMLReader::read file not exist!" or "TVNC_XMLReader::read file open error!".
     */
    TVNC_XMLNode* read(QString& path);

    /**
     * Reads the document that an open device holds, to its end.
     *
     * @return the root element, owned by the caller; null when there is none, or memory ran out
     *
     * The reader's device() is a filter afterwards, which belongs to the reader. Logs nothing.
     */
    TVNC_XMLNode* read(QIODevice& device);

    /**
     * Reads one element with its subtree. The reader must stand on the element's start tag.
     *
     * @param pc_parent gets the element as its last child; null for none
     * @return the element; null only when memory ran out
     */
    TVNC_XMLNode* readXMLNode(TVNC_XMLNode* pc_parent);

    /**
     * Stores the current token as the node's text, with its text type, if it is character data or a CDATA
     * section, is not blank, and the node has no text yet. Otherwise, or with a null node, does nothing.
     */
    void readText(TVNC_XMLNode* pc_node);
};

#endif
