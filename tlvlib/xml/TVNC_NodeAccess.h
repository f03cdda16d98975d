#ifndef TLVLIB_XML_TVNC_NODEACCESS_H
#define TLVLIB_XML_TVNC_NODEACCESS_H

#include "tlvlib/xml/TVNC_XMLNode.h"

/**
 * The library's own way to the parts of a node, without exposing it (see TVNC_RecordNumbers). Whoever changes
 * a list of children or an attribute here sees to the mark of the list. Internal to the library; not
 * installed.
 */
struct TVNC_NodeAccess
{
    /// Bits of a node's state.
    enum State {
        NUMBERED = 1, ///< the list of children is marked
        EXPOSED = 2,  ///< a reference to a part of the node is in foreign hands
        LEAVING = 4,  ///< the node is about to be deleted with its parent
    };

    static QList<TVNC_XMLNode*>& children(TVNC_XMLNode& node) { return node.children_; }
    static QXmlStreamAttributes& attributes(TVNC_XMLNode& node) { return node.attributes_; }
    static QString& name(TVNC_XMLNode& node) { return node.name_; }
    static QString& text(TVNC_XMLNode& node) { return node.text_; }
    static unsigned char& state(TVNC_XMLNode& node) { return node.uc_state_; }
};

#endif
