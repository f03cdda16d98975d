#ifndef TLVLIB_XML_TVNC_NODEACCESS_H
#define TLVLIB_XML_TVNC_NODEACCESS_H

#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNC_XMLNode.h"

/**
 * The library's own way to the parts of a node, without exposing it (see TVNC_RecordNumbers). Whoever changes
 * a list of children or an attribute here sees to the mark of the list. Internal to the library; not
 * installed.
 */
struct TVNC_NodeAccess
{
    static QList<TVNC_XMLNode*>& children(TVNC_XMLNode& node) { return node.children_; }
    static QXmlStreamAttributes& attributes(TVNC_XMLNode& node) { return node.attributes_; }
    static QString& name(TVNC_XMLNode& node) { return node.name_; }

    /// As it is stored, perhaps packed; getText() gives it as it is.
    static QString& text(TVNC_XMLNode& node) { return node.text_; }

    /// Gives a node a text of ASCII that stays packed until somebody asks for it.
    static void setPackedText(TVNC_XMLNode& node, const char* pc_ascii, int si_size)
    {
        QString packed = TVNC_PackedText::pack(pc_ascii, si_size);
        node.setText(packed);
        node.uc_state_ |= TVNC_XMLNode::PACKED_TEXT;
    }

    /// The bytes of a packed text, as long as the node keeps it; a null array for any other.
    static QByteArray packedText(TVNC_XMLNode& node)
    {
        return node.uc_state_ & TVNC_XMLNode::PACKED_TEXT ? TVNC_PackedText::bytes(node.text_) : QByteArray();
    }

    /// Whether the list of children is marked as numbered.
    static bool isNumbered(const TVNC_XMLNode& node)
    {
        return (node.uc_state_ & TVNC_XMLNode::NUMBERED) != 0;
    }
    static void setNumbered(TVNC_XMLNode& node) { node.uc_state_ |= TVNC_XMLNode::NUMBERED; }
    static void unmark(TVNC_XMLNode& node) { node.unmark(); }

    /// Whether a reference to a part of the node is in foreign hands.
    static bool isExposed(const TVNC_XMLNode& node) { return (node.uc_state_ & TVNC_XMLNode::EXPOSED) != 0; }
};

#endif
