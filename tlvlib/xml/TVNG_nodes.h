#ifndef TLVLIB_XML_TVNG_NODES_H
#define TLVLIB_XML_TVNG_NODES_H

/**
 * @file
 * How nodes come and go. No exception leaves the library. Internal to the library; not installed.
 */

#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"

/// A new node under @a pc_parent; null when memory has run out.
inline TVNC_XMLNode* TVNG_newXMLNode(TVNC_XMLNode* pc_parent, char c_prepend)
{
    TVNC_XMLNode* pc_node = nullptr;
    TVNG_hasMemoryFor([&] { pc_node = new TVNC_XMLNode(pc_parent, c_prepend); });
    if (!pc_node || pc_node->getXMLNodeParent() == pc_parent)
        return pc_node;
    delete pc_node; // there was no memory for it in the parent's list
    return nullptr;
}

/**
 * Takes all children out of a node, null ones included. They have no parent then and are the caller's. The
 * time is linear.
 */
inline QList<TVNC_XMLNode*> TVNG_takeChildren(TVNC_XMLNode& node)
{
    QList<TVNC_XMLNode*> children;
    children.swap(TVNC_NodeAccess::children(node));
    // From the empty list each removal is a matter of the child alone.
    for (int i = 0; i < children.size(); ++i)
        node.removeXMLNode(children.at(i));
    return children;
}

/// The other way round: makes a list the children of a node that has none. It takes no memory.
inline void TVNG_giveChildren(TVNC_XMLNode& node, const QList<TVNC_XMLNode*>& children)
{
    TVNC_NodeAccess::unmark(node);
    TVNC_NodeAccess::children(node) = children;
    for (int i = 0; i < children.size(); ++i) {
        if (children.at(i))
            TVNC_NodeAccess::setParent(*children.at(i), node);
    }
}

/// Hands a node to its deleteLater(). Null does nothing. When memory runs out for the event, the node is
/// leaked, since somebody may still hold it.
inline void TVNG_release(TVNC_XMLNode* pc_node)
{
    if (pc_node)
        TVNG_hasMemoryFor([=] { pc_node->deleteLater(); });
}

#endif
