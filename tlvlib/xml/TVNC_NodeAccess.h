#ifndef TLVLIB_XML_TVNC_NODEACCESS_H
#define TLVLIB_XML_TVNC_NODEACCESS_H

#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNC_XMLNode.h"

/**
 * The library's own way to the parts of a node, without exposing it (see TVNC_RecordNumbers). It leaves the
 * marks of numbered lists alone: who changes children or attributes through it takes the mark away where it
 * is no longer true. Internal to the library; not installed.
 */
struct TVNC_NodeAccess
{
    static QList<TVNC_XMLNode*>& children(TVNC_XMLNode& node) { return node.children_; }
    static void setParent(TVNC_XMLNode& node, TVNC_XMLNode& parent) { node.pc_parent_ = &parent; }
    static QXmlStreamAttributes& attributes(TVNC_XMLNode& node) { return node.attributes_; }
    static QString& name(TVNC_XMLNode& node) { return node.name_; }

    /// The text, as getText() gives it. When memory runs out, this throws: an empty text for want of memory,
    /// such as getText() gives then, must not come into a file.
    static QString text(const TVNC_XMLNode& node)
    {
        return isTextPacked(node) ? TVNC_PackedText::unpack(node.text_) : node.text_;
    }

    /// As it is stored, perhaps packed.
    static QString& storedText(TVNC_XMLNode& node) { return node.text_; }

    /// Whether the text is stored packed; see TVNC_PackedText.
    static bool isTextPacked(const TVNC_XMLNode& node)
    {
        return (node.uc_state_ & TVNC_XMLNode::PACKED_TEXT) != 0;
    }
    static void setPackedText(TVNC_XMLNode& node, const QString& packed)
    {
        node.text_ = packed;
        node.uc_state_ |= TVNC_XMLNode::PACKED_TEXT;
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
