#ifndef TLVLIB_XML_TVNC_NODEACCESS_H
#define TLVLIB_XML_TVNC_NODEACCESS_H

#include "tlvlib/xml/TVNC_XMLNode.h"

#include <QtCore/QByteArray>

#include <cstring>

/**
 * The library's own way to the parts of a node. Internal to the library; not installed.
 *
 * A list whose first 999 children have the numbers 0 to 998 in their order, and no other child one of these,
 * is marked as numbered; a look-up by number then is a look-up by position. The mark goes with every change
 * that might make it wrong. The public accessors hand out references through which a node may be changed at
 * any time without notice: a node that has handed one out is exposed for the rest of its life, and no list
 * with an exposed child, or one that is exposed itself, is ever marked. Here nothing is exposed, so whoever
 * changes a list or its attributes here sees to the mark.
 */
struct TVNC_NodeAccess
{
    static QList<TVNC_XMLNode*>& children(TVNC_XMLNode& node) { return node.lst_Children; }
    static QXmlStreamAttributes& attributes(TVNC_XMLNode& node) { return node.att_Attributes; }
    static QString& name(TVNC_XMLNode& node) { return node.str_Name; }

    static bool hasText(const TVNC_XMLNode& node) { return !node.str_Text.isEmpty(); }

    /// The text; of a packed one, what it is then for good.
    static QString& text(TVNC_XMLNode& node)
    {
        if (node.uc_State & TVNC_XMLNode::PACKED_TEXT) {
            const QByteArray bytes = packedText(node);
            QString text = QString::fromLatin1(bytes.constData(), static_cast<int>(bytes.size()));
            node.setText(text);
        }
        return node.str_Text;
    }

    /**
     * Long texts of ASCII, such as a picture's, are packed: two characters in the room of one, until somebody
     * asks for the text. The room's first unit tells whether the last one is half full.
     */
    static void setPackedText(TVNC_XMLNode& node, const char* pc_ascii, int si_size)
    {
        QString room(1 + (si_size + 1) / 2, QChar(static_cast<ushort>(si_size % 2)));
        std::memcpy(room.data() + 1, pc_ascii, static_cast<size_t>(si_size));
        node.setText(room);
        node.uc_State |= TVNC_XMLNode::PACKED_TEXT;
    }

    /// The bytes of a packed text, as long as the node keeps it; a null array for any other.
    static QByteArray packedText(const TVNC_XMLNode& node)
    {
        if (!(node.uc_State & TVNC_XMLNode::PACKED_TEXT))
            return QByteArray();
        const int si_size = 2 * (static_cast<int>(node.str_Text.size()) - 1) - node.str_Text.at(0).unicode();
        return QByteArray::fromRawData(reinterpret_cast<const char*>(node.str_Text.constData() + 1), si_size);
    }

    /// Whether anybody may change the attributes without notice.
    static bool hasExposedAttributes(const TVNC_XMLNode& node)
    {
        return (node.uc_State & TVNC_XMLNode::EXPOSED_ATTRIBUTES) != 0;
    }

    /// Whether the children stand at the positions that their "id" tells.
    static bool isNumbered(const TVNC_XMLNode& node) { return (node.uc_State & TVNC_XMLNode::NUMBERED) != 0; }

    /// Marks a list, unless it is exposed, or takes the mark away.
    static void setNumbered(TVNC_XMLNode& node, bool b_numbered)
    {
        if (b_numbered && !(node.uc_State & TVNC_XMLNode::EXPOSED_CHILDREN))
            node.uc_State |= TVNC_XMLNode::NUMBERED;
        else
            node.uc_State &= static_cast<unsigned char>(~TVNC_XMLNode::NUMBERED);
    }

    /// Takes all children out of a node. They are the caller's then, and without a parent.
    static QList<TVNC_XMLNode*> takeChildren(TVNC_XMLNode& node)
    {
        QList<TVNC_XMLNode*> children;
        children.swap(node.lst_Children);
        setNumbered(node, false);
        for (int i = 0; i < children.size(); ++i) {
            if (children.at(i))
                children.at(i)->pc_Parent = nullptr;
        }
        return children;
    }

    /**
     * Has detached nodes deleted as deleteLater() of each of them would, in one event instead of one each. To
     * everybody else they are without a parent meanwhile.
     *
     * @param pc_holder a new node, for nothing else; null, when memory ran out, takes an event each
     */
    static void deleteLater(const QList<TVNC_XMLNode*>& detached, TVNC_XMLNode* pc_holder)
    {
        for (int i = 0; i < detached.size(); ++i) {
            if (detached.at(i) && pc_holder)
                detached.at(i)->pc_Parent = pc_holder;
            else if (detached.at(i))
                detached.at(i)->deleteLater();
        }
        if (!pc_holder)
            return;
        pc_holder->uc_State = TVNC_XMLNode::HOLDS_DETACHED;
        pc_holder->lst_Children = detached;
        pc_holder->deleteLater();
    }
};

#endif
