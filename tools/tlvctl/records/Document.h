#ifndef TOOLS_TLVCTL_RECORDS_DOCUMENT_H
#define TOOLS_TLVCTL_RECORDS_DOCUMENT_H

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QString>

#include <memory>

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
    std::unique_ptr<TVNC_XMLNode> root;
};

Document readDocument(const QString& path);

/// "damaged at line 3, column 17 (what the parser says)", fit for a terminal.
QString describe(const Damage& damage);

/// Complains that what was shown of a damaged document is not all of it.
void complainAboutDamage(const QString& path, const Document& document);

/// Writes the members "complete" and "error", which tell whether a document was read to its end.
void writeCompleteness(JsonWriter& json, const Document& document);

/// Whether two trees are the same when saved: names, attributes, texts and their order.
bool sameTree(TVNC_XMLNode& left, TVNC_XMLNode& right);

#endif
