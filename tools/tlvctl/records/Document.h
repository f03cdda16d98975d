#ifndef TOOLS_TLVCTL_RECORDS_DOCUMENT_H
#define TOOLS_TLVCTL_RECORDS_DOCUMENT_H

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QString>

#include <memory>
#include <vector>

class JsonWriter;

/// Where and why the library stopped reading a document before its end.
struct Damage
{
    qint64 line = 0;
    qint64 column = 0;
    QString reason; ///< what the parser says
};

/// A settings document as the library loads it, and whether that is all of it.
struct Document
{
    enum class State {
        COMPLETE,
        DAMAGED, ///< the root holds what stands before the damage; there may be none
        MISSING,
        UNREADABLE,
    };

    State state = State::MISSING;
    Damage damage;
    QString problem; ///< why a file that is missing or unreadable could not be read
    bool hasRoot = false;
    std::unique_ptr<TVNC_XMLNode> root; ///< may have been taken
};

/// "Is a directory", "Is a FIFO" and so on; empty for a file, and where there is nothing.
QString problemWithPlace(const QString& path);

/// Reads a file, with a progress bar where it is large.
Document readDocument(const QString& path);

/// "damaged at line 3, column 17 (what the parser says)", fit for a terminal.
QString describe(const Damage& damage);

/// Complains and returns false when a document is missing or cannot be read at all; @a advice says what to
/// do.
bool checkReadable(const QString& path, const Document& document, const QString& advice);

/// The exit code when all that could be read was shown. Complains when that is not all there is.
int exitCodeOfReading(const QString& path, const Document& document);

/// Writes the members "complete" and "error", which tell whether a document was read to its end.
void writeCompleteness(JsonWriter& json, const Document& document);

/// Whether two trees are the same when saved: names, attributes, texts and their order.
bool sameTree(TVNC_XMLNode& left, TVNC_XMLNode& right);

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
