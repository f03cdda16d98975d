#ifndef TLVLIB_XML_TVNC_XMLWRITER_H
#define TLVLIB_XML_TVNC_XMLWRITER_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QXmlStreamWriter>

class TVNC_XMLNode;

/**
 * Writes a tree of TVNC_XMLNode as a settings file: UTF-8, auto-formatted with four spaces a level.
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <fontlist docInfo="1.0">
 *     <font id="000">Sans</font>
 * </fontlist>
 * @endcode
 *
 * An element has its attributes in their order, then its text, then its children. Text type 0 goes out as
 * character data, 1 as a CDATA section, any other not at all; an element without text and children as
 * an empty tag. Two rules keep every file readable:
 *
 *  - Characters that XML 1.0 cannot hold (control characters, lone surrogates, U+FFFE, U+FFFF) are left out
 *    of texts and attribute values. A web page's title may contain them, and one would cost the whole rest
 *    of the document.
 *  - Elements deeper than 100 are written without line breaks and indentation, which otherwise grow with the
 *    square of the depth.
 *
 * Any depth of nesting can be written.
 */
class TLVLIB_EXPORT TVNC_XMLWriter : public QXmlStreamWriter
{
public:
    /// Switches auto-formatting on.
    TVNC_XMLWriter();
    ~TVNC_XMLWriter();

    /**
     * Writes a document into the file at @a path, replacing what it held: in place, or whole in the mode that
     * TVNG_SetSafeSave() switches on.
     *
     * @return false, with the file untouched, for a null root or when the file cannot be opened (logged at
     *         level 2 as "TVNC_XMLWriter::write file open error!"); false, with a readable part of the
     *         document in the file, when the tree holds a null node. In place, errors while writing (a full
     *         disk) are not detected; hasError() tells of them. Where the file is replaced whole, any error
     *         leaves it as it was, gives false and is logged at level 2 as "TVNC_XMLWriter::write file
     *         replace error!".
     */
    bool write(QString& path, TVNC_XMLNode* pc_root);

    /// Writes a document into an open device. The result is as above; when memory has run out, it is false
    /// and the writer has no device any more.
    bool write(QIODevice& device, TVNC_XMLNode* pc_root);

    /**
     * Writes one element with its subtree.
     *
     * @return false at the first null node, the given one included, which is logged at level 1 as
     *         "[TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.". The elements around it are then left open
     *         for writeEndDocument().
     */
    bool writeXMLNode(TVNC_XMLNode* pc_node);
};

#endif
