#ifndef TLVLIB_XML_TVNC_CANONICALWRITER_H
#define TLVLIB_XML_TVNC_CANONICALWRITER_H

#include <QtCore/QIODevice>

class TVNC_XMLNode;

/**
 * Writes a document as TVNC_XMLWriter does, byte for byte, several times as fast. Internal to the library;
 * not installed.
 *
 * It takes trees of the kind that the stores make: names of ASCII letters, no namespaces, no null nodes, no
 * more levels than are formatted. Others are left to TVNC_XMLWriter.
 */
class TVNC_CanonicalWriter
{
public:
    /// Whether a tree is of this kind.
    static bool takes(TVNC_XMLNode& root);

    /**
     * Writes a tree that it takes. Errors of the device are not reported; nothing follows one.
     *
     * Throws std::bad_alloc when memory runs out. Part of the document is written then.
     */
    static void write(QIODevice& device, TVNC_XMLNode& root);
};

#endif
