#ifndef TESTS_SUPPORT_TREE_H
#define TESTS_SUPPORT_TREE_H

/**
 * @file
 * Short ways to make trees of nodes and to look at them.
 */

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QStringList>

/// A new node, last in its parent. Names and texts are UTF-8.
inline TVNC_XMLNode* makeNode(TVNC_XMLNode* pc_parent, const char* pc_name, const char* pc_text = "",
                              char c_type = 0)
{
    TVNC_XMLNode* pc_node = new TVNC_XMLNode(pc_parent, 0);
    QString name = QString::fromUtf8(pc_name);
    QString text = QString::fromUtf8(pc_text);
    pc_node->setName(name);
    pc_node->setText(text);
    pc_node->setTextType(c_type);
    return pc_node;
}

inline void addAttribute(TVNC_XMLNode* pc_node, const char* pc_name, const QString& value)
{
    pc_node->getAttribute().append(QString::fromUtf8(pc_name), value);
}

/**
 * A tree in one line: name, attributes, text, children, such as a{id=000}'text'(b,c''), where c'...' is a
 * CDATA section: a{id=000}'text'(b cdata'<p>'). Null nodes stand as 0. For trees that are not deep.
 */
inline QString describe(TVNC_XMLNode* pc_node)
{
    if (!pc_node)
        return QLatin1String("0");
    QString result = pc_node->getName();
    const QXmlStreamAttributes& attributes = pc_node->getAttribute();
    if (!attributes.isEmpty()) {
        QStringList list;
        for (int i = 0; i < attributes.size(); ++i)
            list << attributes.at(i).qualifiedName().toString() + QLatin1Char('=') +
                        attributes.at(i).value().toString();
        result += QLatin1Char('{') + list.join(QLatin1String(" ")) + QLatin1Char('}');
    }
    if (pc_node->getTextType() == 1)
        result += QLatin1String(" cdata'") + pc_node->getText() + QLatin1Char('\'');
    else if (pc_node->getTextType() != 0)
        result += QString::fromLatin1(" type%1'").arg(int(pc_node->getTextType())) + pc_node->getText() +
                  QLatin1Char('\'');
    else if (!pc_node->getText().isEmpty())
        result += QLatin1Char('\'') + pc_node->getText() + QLatin1Char('\'');
    const QList<TVNC_XMLNode*> children = pc_node->getXMLNodeChildren();
    if (!children.isEmpty()) {
        QStringList list;
        foreach (TVNC_XMLNode* pc_child, children)
            list << describe(pc_child);
        result += QLatin1Char('(') + list.join(QLatin1String(",")) + QLatin1Char(')');
    }
    return result;
}

/// The names of a node's children, as one string: "a b c".
inline QString childNames(TVNC_XMLNode* pc_node)
{
    QStringList list;
    foreach (TVNC_XMLNode* pc_child, pc_node->getXMLNodeChildren())
        list << (pc_child ? pc_child->getName() : QLatin1String("0"));
    return list.join(QLatin1String(" "));
}

#endif
