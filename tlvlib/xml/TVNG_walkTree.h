#ifndef TLVLIB_XML_TVNG_WALKTREE_H
#define TLVLIB_XML_TVNG_WALKTREE_H

#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <vector>

/**
 * Goes through a tree in document order, however deep, with a stack of its own instead of recursion. The tree
 * must not change meanwhile. Internal to the library; not installed.
 *
 * @param visitor is told of every node twice: by <tt>bool enter(TVNC_XMLNode* pc_node, int si_depth)</tt>
 *        before its children, and by <tt>void leave(TVNC_XMLNode& node, int si_depth)</tt> behind them. The
 *        depth of the root is 1. enter() may get a null node, and ends the walk when it returns false.
 * @return whether the walk came to its end
 */
template <typename Visitor>
bool TVNG_walkTree(TVNC_XMLNode* pc_root, Visitor& visitor)
{
    struct Open
    {
        TVNC_XMLNode* pc_node;
        int si_next; ///< position of the child that comes next
    };

    if (!visitor.enter(pc_root, 1))
        return false;
    std::vector<Open> open(1, Open{pc_root, 0}); // the path from the root to where the walk is
    while (!open.empty()) {
        Open& last = open.back();
        const int si_depth = static_cast<int>(open.size());
        const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*last.pc_node);
        if (last.si_next == children.size()) {
            visitor.leave(*last.pc_node, si_depth);
            open.pop_back();
            continue;
        }
        TVNC_XMLNode* const pc_child = children.at(last.si_next++);
        if (!visitor.enter(pc_child, si_depth + 1))
            return false;
        open.push_back(Open{pc_child, 0});
    }
    return true;
}

#endif
