#ifndef TLVLIB_XML_TVNG_NEWXMLNODE_H
#define TLVLIB_XML_TVNG_NEWXMLNODE_H

#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_XMLNode.h"

/**
 * A new node under @a pc_parent, or null when memory has run out: no exception leaves the library.
 * Internal to the library; not installed.
 */
inline TVNC_XMLNode* TVNG_newXMLNode(TVNC_XMLNode* pc_parent, char c_prepend)
{
    TVNC_XMLNode* pc_node = nullptr;
    TVNG_hasMemoryFor([&] { pc_node = new TVNC_XMLNode(pc_parent, c_prepend); });
    return pc_node;
}

#endif
