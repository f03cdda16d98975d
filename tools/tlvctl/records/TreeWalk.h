#ifndef TOOLS_TLVCTL_RECORDS_TREEWALK_H
#define TOOLS_TLVCTL_RECORDS_TREEWALK_H

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <vector>

/**
 * Visits all elements of a tree in document order, however deep, with a stack of its own.
 *
 * @param enter called as enter(node, depth) before the children of an element; the root's depth is 1
 * @param leave called as leave(node) behind them
 */
template <typename Enter, typename Leave>
void walkTree(TVNC_XMLNode& root, Enter enter, Leave leave)
{
    struct Level
    {
        TVNC_XMLNode* node;
        int nextChild;
    };
    std::vector<Level> open;
    enter(root, 1);
    open.push_back({&root, 0});
    while (!open.empty()) {
        TVNC_XMLNode& node = *open.back().node;
        const QList<TVNC_XMLNode*>& children = node.getXMLNodeChildren();
        if (open.back().nextChild == children.size()) {
            leave(node);
            open.pop_back();
            continue;
        }
        TVNC_XMLNode* const child = children.at(open.back().nextChild++);
        open.push_back({child, 0});
        enter(*child, static_cast<int>(open.size()));
    }
}

#endif
