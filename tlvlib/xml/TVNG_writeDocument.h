#ifndef TLVLIB_XML_TVNG_WRITEDOCUMENT_H
#define TLVLIB_XML_TVNG_WRITEDOCUMENT_H

class QIODevice;
class TVNC_XMLNode;
class TVNC_XMLWriter;

/**
 * What TVNC_XMLWriter::write() writes to a device, for callers that have to know when memory runs out: it is
 * thrown here, so that what is half written never takes a file's place. Internal to the library; not
 * installed.
 *
 * @return false when the tree has null nodes, which are left out
 */
bool TVNG_writeDocument(TVNC_XMLWriter& writer, QIODevice& device, TVNC_XMLNode* pc_root);

#endif
