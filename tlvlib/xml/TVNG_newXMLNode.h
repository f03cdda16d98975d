#ifndef TLVLIB_XML_TVNG_NEWXMLNODE_H
#define TLVLIB_XML_TVNG_NEWXMLNODE_H

#include "tlvlib/xml/TVNC_XMLNode.h"

#include <new>

/**
 * A new node under @a pc_parent, or null when memory has run out: no exception leaves the library.
 * Internal to the library; not installed.
 */
inline TVNC_XMLNode* TVNG_newXMLNode(TVNC_XMLNode* pc_parent, char c_prepend)
{
    QT_TRY
    {
        return new TVNC_XMLNode(pc_parent, c_prepend);
    }
    QT_CATCH(const std::bad_alloc&)
    {
        return nullptr;
    }
}

#endif
