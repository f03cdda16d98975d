#ifndef TLVLIB_XML_TVNC_XMLNODE_H
#define TLVLIB_XML_TVNC_XMLNODE_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QXmlStreamAttributes>

/**
 * One element of a settings document: its name, its attributes, at most one piece of text, and its child
 * elements in document order.
 *
 * Ownership: a node owns its children. Nodes are created with new and deleted with their parent; deleting a
 * node deletes its whole subtree and takes the node out of its parent's list. The QObject parent stays null:
 * QObject serves for deleteLater() alone.
 *
 * A node never fails and logs nothing: null arguments are ignored, searches that find nothing return null.
 * Where memory runs out, an operation changes nothing and finds nothing, and getText() gives an empty text
 * that is not the node's; only the creation of a node throws std::bad_alloc then, as every new does. One
 * thread at a time uses a tree.
 *
 * @code
 * TVNC_XMLNode* root = new TVNC_XMLNode(nullptr, 0);
 * QString name = QLatin1String("font");
 * TVNC_XMLNode* font = new TVNC_XMLNode(root, 0); // the last child of root
 * font->setName(name);
 * root->getXMLNodeChildByName(name);              // font
 * delete root;                                    // deletes font as well
 * @endcode
 *
 * The order of the data members is part of the binary interface.
 */
class TLVLIB_EXPORT TVNC_XMLNode : public QObject
{
public:
    /**
     * Creates an empty element with text type 0.
     *
     * @param pc_parent the element that owns the new one, or null for a root
     * @param c_prepend where it goes among the parent's children: 0 last, any other value first
     */
    TVNC_XMLNode(TVNC_XMLNode* pc_parent, char c_prepend);

    /// Takes the node out of its parent's children and deletes its subtree, however deep, in document order.
    virtual ~TVNC_XMLNode();

    /// The element that holds this one; null for a root.
    TVNC_XMLNode* getXMLNodeParent();

    /// The node's own list of children. Take a copy before changing the tree while walking the list.
    QList<TVNC_XMLNode*>& getXMLNodeChildren();

    /// The node's own attributes, in document order.
    QXmlStreamAttributes& getAttribute();

    /// The node's own name.
    QString& getName();

    /// The node's own text.
    QString& getText();

    /// How the text is written: 0 as character data, 1 as a CDATA section, any other value not at all.
    char getTextType();

    /// Any name; the writer writes it as it is.
    void setName(QString& name);

    /// Any text; the writer leaves out what XML cannot hold.
    void setText(QString& text);

    /// Stores the code as it is; see getTextType().
    void setTextType(char c_textType);

    /// Replaces all attributes.
    void setAttribute(QXmlStreamAttributes& attributes);

    /**
     * Makes a node a child of this one. A node that has a parent already leaves that parent first, so adding
     * a node to its own parent again moves it.
     *
     * @param pc_child  the node; null does nothing
     * @param c_prepend 0 puts it last, any other value first
     */
    void addXMLNode(TVNC_XMLNode* pc_child, char& c_prepend);

    /// Detaches a child without deleting it: its parent becomes null, and the list forgets it. Null does
    /// nothing.
    void removeXMLNode(TVNC_XMLNode* pc_child);

    /**
     * Finds the first child of a name at or after a position.
     *
     * @param name     the exact, case-sensitive name
     * @param si_index where to start, from 0 when it is below; afterwards the position of the result, or the
     * number of children when there is none. A start at or past the number of children is left as it is.
     * @return the child, or null. To go on behind it, add 1 to @a si_index.
     */
    TVNC_XMLNode* getChildByName(QString& name, int& si_index);

    /// The first child of a name, or null.
    TVNC_XMLNode* getXMLNodeChildByName(QString& name);

    /// All children of a name, in document order. The tree keeps owning them.
    QList<TVNC_XMLNode*> getXMLNodeChildrenByName(QString& name);

    /**
     * The first child whose attribute holds a number: "007" and "7" are both 7. A child without the
     * attribute, or with a value that is no decimal number, never matches.
     *
     * @return the child, or null
     */
    TVNC_XMLNode* getXMLNodeChildByID(int si_id, QString& attributeName);

private:
    Q_DISABLE_COPY(TVNC_XMLNode)

    friend struct TVNC_NodeAccess;

    /// Bits of the state.
    enum State {
        NUMBERED = 1,    ///< the children stand at the positions that their numbers tell
        EXPOSED = 2,     ///< a reference to the children or the attributes is in foreign hands
        LEAVING = 4,     ///< the node is about to be deleted with its parent
        PACKED_TEXT = 8, ///< the text takes half its room
    };

    /// The children, or their numbers, change.
    void unmark() { uc_state_ &= static_cast<unsigned char>(~NUMBERED); }

    /// From now on the list or the attributes may change at any time without notice.
    void expose()
    {
        unmark();
        if (pc_parent_)
            pc_parent_->unmark();
        uc_state_ |= EXPOSED;
    }

    char c_textType_;
    unsigned char uc_state_; ///< in what was padding, so that the layout stays
    TVNC_XMLNode* pc_parent_;
    QList<TVNC_XMLNode*> children_;
    QXmlStreamAttributes attributes_;
    QString name_;
    QString text_;
};

#endif
