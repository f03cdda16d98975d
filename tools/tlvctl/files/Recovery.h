#ifndef TOOLS_TLVCTL_FILES_RECOVERY_H
#define TOOLS_TLVCTL_FILES_RECOVERY_H

#include "tools/tlvctl/records/Store.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * @file
 * What can be kept of a damaged file. The library reads up to the damage; here every record in front of it
 * and behind it is found by its start tag and read by itself, so that each is kept whole or not at all. Time
 * grows with the size of the file alone.
 */

/// The records that could be read, as one document, and the rest.
struct Recovered
{
    QByteArray document;   ///< well-formed, in the order of the file; to be read by the library
    int kept = 0;          ///< records
    int lost = 0;          ///< records of which something is there
    QByteArray rejected;   ///< what could not be read
    bool isForeign = true; ///< whether nothing in the file is of this form
};

/// Recovers a list of records.
Recovered recoverRecords(const QByteArray& bytes, const DocumentForm& form);

/// Where a preference stands.
struct LeafPlace
{
    QString group;
    QString leaf;
};

/// Recovers preferences, which are found by the names of their elements.
Recovered recoverLeaves(const QByteArray& bytes, const DocumentForm& form,
                        const std::vector<LeafPlace>& places);

/**
 * Whether a value in a CDATA section holds the start of a record. A lost end of a section makes that, and so
 * can a server with the value of a cookie; nobody can tell which, so that such a file is left to a person.
 */
bool hidesRecords(const QByteArray& bytes, const DocumentForm& form);

/// Whether an element is the root of another document of the system.
bool isRootOfAnother(const QString& name, const DocumentForm& form);

/// What a healthy document of this form has nowhere: comments, attributes and texts that the next change
/// drops, and a second element of a name in one record, of which the library reads the first.
QStringList strayContent(const QString& path, const DocumentForm& form);

/// Takes from a document what strayContent() tells, and numbers its records. Second elements stay: a person
/// has to say which one was meant.
void normalise(TVNC_XMLNode& root, const DocumentForm& form);

#endif
