#include "tlvlib/xml/TVNC_XMLNode.h"

#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_PackedText.h"

TVNC_XMLNode::TVNC_XMLNode(TVNC_XMLNode* pc_parent, char c_prepend)
    : c_textType_(TVNG_CHARACTER_DATA)
    , uc_state_(0)
    // addXMLNode() sets the parent. Were it set here, addXMLNode() would search all of the parent's children
    // for the new node first, and building a list would cost the square of its length.
    , pc_parent_(nullptr)
{
    if (pc_parent)
        pc_parent->addXMLNode(this, c_prepend);
}

TVNC_XMLNode::~TVNC_XMLNode()
{
    // A list's change takes memory only while a program holds a copy of the list. When there is none, null
    // takes the place of the node, in the copy as well.
    const auto leaveParent = [](TVNC_XMLNode& node) {
        TVNC_XMLNode* const pc_parent = node.pc_parent_;
        pc_parent->removeXMLNode(&node);
        for (int i = 0; node.pc_parent_ && i < pc_parent->children_.size(); ++i) {
            TVNC_XMLNode* const& pc_entry = pc_parent->children_.at(i);
            if (pc_entry == &node)
                const_cast<TVNC_XMLNode*&>(pc_entry) = nullptr;
        }
        node.pc_parent_ = nullptr;
    };
    if (pc_parent_)
        leaveParent(*this);

    // Only a program can have copied a list, or repeated an entry.
    const auto makeOwn = [](TVNC_XMLNode& node) {
        if (!(node.uc_state_ & EXPOSED))
            return;
        QList<TVNC_XMLNode*>& children = node.children_;
        if (!TVNG_hasMemoryFor([&] { children.detach(); })) {
            // The children are left to the program, which knows them from its copy.
            for (int i = 0; i < children.size(); ++i) {
                if (TVNC_XMLNode* const pc_child = children.at(i))
                    pc_child->pc_parent_ = nullptr;
            }
            children = QList<TVNC_XMLNode*>();
        }
        for (int i = 0; i < children.size(); ++i) {
            TVNC_XMLNode* const pc_child = children.at(i);
            if (!pc_child)
                continue;
            if (pc_child->uc_state_ & LEAVING)
                children[i] = nullptr; // so that no child is deleted twice
            pc_child->uc_state_ |= LEAVING;
        }
    };

    // Depth first, children in document order, each detached from its list before its own children go. The
    // parent pointer of a detached node leads back up, so neither the depth of the tree nor the length of a
    // list costs stack or searching: every node is deleted without parent and without children.
    TVNC_XMLNode* pc_node = this;
    makeOwn(*pc_node);
    for (;;) {
        if (!pc_node->children_.isEmpty()) {
            TVNC_XMLNode* pc_child = pc_node->children_.takeFirst();
            if (!pc_child)
                continue;
            if (pc_child->pc_parent_ && pc_child->pc_parent_ != pc_node)
                leaveParent(*pc_child);
            pc_child->pc_parent_ = pc_node;
            pc_node = pc_child;
            makeOwn(*pc_node);
        } else if (pc_node != this) {
            TVNC_XMLNode* pc_done = pc_node;
            pc_node = pc_done->pc_parent_;
            pc_done->pc_parent_ = nullptr;
            delete pc_done;
        } else {
            break;
        }
    }
}

TVNC_XMLNode* TVNC_XMLNode::getXMLNodeParent()
{
    return pc_parent_;
}

QList<TVNC_XMLNode*>& TVNC_XMLNode::getXMLNodeChildren()
{
    expose();
    return children_;
}

QXmlStreamAttributes& TVNC_XMLNode::getAttribute()
{
    expose();
    return attributes_;
}

QString& TVNC_XMLNode::getName()
{
    return name_;
}

QString& TVNC_XMLNode::getText()
{
    if (uc_state_ & PACKED_TEXT) {
        const bool b_unpacked = TVNG_hasMemoryFor([&] {
            QString text = TVNC_PackedText::unpack(text_);
            setText(text);
        });
        if (!b_unpacked) {
            static QString noText;
            noText.clear(); // of what somebody may have written into it
            return noText;
        }
    }
    return text_;
}

char TVNC_XMLNode::getTextType()
{
    return c_textType_;
}

void TVNC_XMLNode::setName(QString& name)
{
    name_ = name;
}

void TVNC_XMLNode::setText(QString& text)
{
    uc_state_ &= static_cast<unsigned char>(~PACKED_TEXT);
    text_ = text;
}

void TVNC_XMLNode::setTextType(char c_textType)
{
    c_textType_ = c_textType;
}

void TVNC_XMLNode::setAttribute(QXmlStreamAttributes& attributes)
{
    if (pc_parent_)
        pc_parent_->unmark();
    attributes_ = attributes;
}

void TVNC_XMLNode::addXMLNode(TVNC_XMLNode* pc_child, char& c_prepend)
{
    if (!pc_child)
        return;
    TVNC_XMLNode* const pc_former = pc_child->pc_parent_;
    // The place is made first: a child must not leave its parent and then find no memory for another.
    const bool b_room = TVNG_hasMemoryFor([&] {
        if (pc_former)
            pc_former->children_.detach();
        if (c_prepend == 0)
            children_.append(nullptr);
        else
            children_.prepend(nullptr);
    });
    if (!b_room)
        return;
    if (pc_former)
        pc_former->removeXMLNode(pc_child);
    unmark();
    (c_prepend == 0 ? children_.last() : children_.first()) = pc_child;
    pc_child->pc_parent_ = this;
}

void TVNC_XMLNode::removeXMLNode(TVNC_XMLNode* pc_child)
{
    if (!pc_child || !TVNG_hasMemoryFor([&] { children_.removeAll(pc_child); }))
        return;
    // The list may be another node's. That node then keeps an entry of which it hears no more.
    if (pc_child->pc_parent_)
        pc_child->pc_parent_->unmark();
    pc_child->pc_parent_ = nullptr;
    unmark();
}

TVNC_XMLNode* TVNC_XMLNode::getChildByName(QString& name, int& si_index)
{
    const QList<TVNC_XMLNode*>& children = children_;
    if (si_index < 0)
        si_index = 0;
    for (; si_index < children.size(); ++si_index) {
        TVNC_XMLNode* pc_child = children.at(si_index);
        if (pc_child && pc_child->name_ == name)
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
    const bool b_complete = TVNG_hasMemoryFor([&] {
        int si_index = 0;
        while (TVNC_XMLNode* pc_child = getChildByName(name, si_index)) {
            found.append(pc_child);
            ++si_index;
        }
    });
    return b_complete ? found : QList<TVNC_XMLNode*>();
}

// getXMLNodeChildByID() stands in TVNC_RecordNumbers.cpp: a node knows nothing of numbers.
