#ifndef TOOLS_TLVCTL_RECORDS_STORELIST_H
#define TOOLS_TLVCTL_RECORDS_STORELIST_H

#include "tools/tlvctl/records/Store.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QStringList>

#include <functional>
#include <optional>
#include <vector>

class JsonWriter;

/**
 * @file
 * What the commands that list a store have in common. They show all that the file holds, and say what of it
 * the users of the store do not get to see.
 */

/**
 * Reads the file, loads the store and shows it as text or, with "--json", as an object with the members
 * "file", "exists", "complete", "error", "count" and those that @a writeMembers adds. A damaged file is shown
 * up to the damage; a missing one as an empty list.
 *
 * @param printText called when there is a file
 * @return the exit code
 */
int listStore(Store& store, const QCommandLineParser& arguments, const std::function<void()>& printText,
              const std::function<void(JsonWriter& json)>& writeMembers);

/// What keeps a record from being one like any other.
struct Flaw
{
    const char* name;    ///< for JSON
    QString explanation; ///< fit for a terminal
};

/// A record of the list, whatever its store.
struct ListedRecord
{
    std::optional<int> number;
    int filePosition = 0; ///< among the records of the file, from 0 on
    std::vector<Flaw> flaws;
};

/**
 * Prints a table, a line for each record that has flaws, the remarks, and how many records there are. The
 * numbers of flawed records are marked with "*".
 *
 * @param counted how many records the store counts
 * @param header the names of the columns behind that of the number
 * @param cells  those columns of a record, fit for a terminal
 */
void printRecords(int counted, const QStringList& header, const std::vector<ListedRecord>& records,
                  const std::function<QStringList(size_t index)>& cells, const QStringList& remarks);

/**
 * Writes two members, one of which is null: the text of the bytes, unless they are no UTF-8, or else their
 * base64.
 */
void writeBytes(JsonWriter& json, const char* textMember, const char* base64Member, const QByteArray& bytes);

/// Writes the members "number", "filePosition" and "flaws" of a record's object.
void writeRecord(JsonWriter& json, const ListedRecord& record);

/// "loading numbers 3 records anew", when the records of a file have other numbers than their places.
QStringList remarkAboutNumbers(int renumbered);

/// How many of the first 999 records have another number in the file than loading will give them.
int countRenumbered(TVNC_XMLNode* root);

/// What stands before the explanation of a record's flaws: "003" or "--- (record 1001 of the file)".
QString recordName(const ListedRecord& record);

QString explanationsOf(const std::vector<Flaw>& flaws);

#endif
