#include "tlvlib/xml/TVNC_XMLNode.h"

#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"

TVNC_XMLNode::TVNC_XMLNode(TVNC_XMLNode* pc_parent, char c_prepend)
    : c_TextType(0)
    , uc_State(0)
    // addXMLNode() sets the parent. Were it set here, addXMLNode() would search all of the parent's children
    // for the new node first, and building a list would cost the square of its length.
    , pc_Parent(nullptr)
{
    if (pc_parent)
        pc_parent->addXMLNode(this, c_prepend);
}

TVNC_XMLNode::~TVNC_XMLNode()
{
    if (pc_Parent)
        pc_Parent->removeXMLNode(this);

    // Depth first, children in document order, each detached from its list before its own children go. The
    // parent pointer of a detached node leads back up, so neither the depth of the tree nor the length of a
    // list costs stack or searching: every node is deleted without parent and without children.
    TVNC_XMLNode* pc_node = this;
    for (;;) {
        if (!pc_node->lst_Children.isEmpty()) {
            TVNC_XMLNode* pc_child = pc_node->lst_Children.takeFirst();
            if (!pc_child)
                continue;
            if (pc_child->pc_Parent && pc_child->pc_Parent != pc_node)
                pc_child->pc_Parent->removeXMLNode(pc_child);
            pc_child->pc_Parent = pc_node;
            pc_node = pc_child;
        } else if (pc_node != this) {
            TVNC_XMLNode* pc_done = pc_node;
            pc_node = pc_done->pc_Parent;
            pc_done->pc_Parent = nullptr;
            delete pc_done;
        } else {
            break;
        }
    }
}

TVNC_XMLNode* TVNC_XMLNode::getXMLNodeParent()
{
    return pc_Parent && !(pc_Parent->uc_State & HOLDS_DETACHED) ? pc_Parent : nullptr;
}

QList<TVNC_XMLNode*>& TVNC_XMLNode::getXMLNodeChildren()
{
    TVNC_NodeAccess::setNumbered(*this, false);
    uc_State |= EXPOSED_CHILDREN;
    return lst_Children;
}

QXmlStreamAttributes& TVNC_XMLNode::getAttribute()
{
    uc_State |= EXPOSED_ATTRIBUTES;
    if (pc_Parent)
        TVNC_NodeAccess::setNumbered(*pc_Parent, false);
    return att_Attributes;
}

QString& TVNC_XMLNode::getName()
{
    return str_Name;
}

QString& TVNC_XMLNode::getText()
{
    return TVNC_NodeAccess::text(*this);
}

char TVNC_XMLNode::getTextType()
{
    return c_TextType;
}

void TVNC_XMLNode::setName(QString& name)
{
    str_Name = name;
}

void TVNC_XMLNode::setText(QString& text)
{
    uc_State &= static_cast<unsigned char>(~PACKED_TEXT);
    str_Text = text;
}

void TVNC_XMLNode::setTextType(char c_textType)
{
    c_TextType = c_textType;
}

void TVNC_XMLNode::setAttribute(QXmlStreamAttributes& attributes)
{
    if (pc_Parent)
        TVNC_NodeAccess::setNumbered(*pc_Parent, false);
    att_Attributes = attributes;
}

void TVNC_XMLNode::addXMLNode(TVNC_XMLNode* pc_child, char& c_prepend)
{
    if (!pc_child)
        return;
    if (TVNC_XMLNode* pc_earlier = pc_child->pc_Parent) {
        pc_earlier->removeXMLNode(pc_child);
        if (pc_earlier->uc_State & HOLDS_DETACHED) // it is to be deleted all the same
            pc_child->deleteLater();
    }
    pc_child->pc_Parent = this;
    TVNC_NodeAccess::setNumbered(*this, false);
    if (c_prepend == 0)
        lst_Children.append(pc_child);
    else
        lst_Children.prepend(pc_child);
}

void TVNC_XMLNode::removeXMLNode(TVNC_XMLNode* pc_child)
{
    if (!pc_child)
        return;
    pc_child->pc_Parent = nullptr;
    TVNC_NodeAccess::setNumbered(*this, false);
    lst_Children.removeAll(pc_child);
}

TVNC_XMLNode* TVNC_XMLNode::getChildByName(QString& name, int& si_index)
{
    const QList<TVNC_XMLNode*>& children = lst_Children;
    if (si_index < 0)
        si_index = 0;
    for (; si_index < children.size(); ++si_index) {
        TVNC_XMLNode* pc_child = children.at(si_index);
        if (pc_child && pc_child->str_Name == name)
            return pc_child;
    }
    return nullptr;
}

TVNC_XMLNode* TVNC_XMLNode::getXMLNodeChildByName(QString& name)
{
    int si_index = 0;
    return getChildByName(name, si_index);
}

QList<TVNC_XMLNode*> TVNC_XMLNode::getXMLNodeChildrenByName(QString& name)
{
    QList<TVNC_XMLNode*> found;
    int si_index = 0;
    while (TVNC_XMLNode* pc_child = getChildByName(name, si_index)) {
        found.append(pc_child);
        ++si_index;
    }
    return found;
}

TVNC_XMLNode* TVNC_XMLNode::getXMLNodeChildByID(int si_id, QString& attributeName)
{
    const QList<TVNC_XMLNode*>& children = lst_Children;
    if (TVNC_NodeAccess::isNumbered(*this) && si_id >= 0 && si_id < TVNC_RecordNumbers::LIMIT &&
        attributeName == TVNC_RecordNumbers::usualName())
        return si_id < children.size() ? children.at(si_id) : nullptr;
    for (int i = 0; i < children.size(); ++i) {
        TVNC_XMLNode* pc_child = children.at(i);
        int si_number = 0;
        if (pc_child && TVNC_RecordNumbers::read(pc_child->att_Attributes, attributeName, si_number) &&
            si_number == si_id)
            return pc_child;
    }
    return nullptr;
}
