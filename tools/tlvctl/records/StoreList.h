#ifndef TOOLS_TLVCTL_RECORDS_STORELIST_H
#define TOOLS_TLVCTL_RECORDS_STORELIST_H

#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/Store.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QStringList>

#include <functional>
#include <vector>

/**
 * @file
 * What the commands that list a store have in common. They show all that the file holds, and say what of it
 * the users of the store do not get to see.
 */

/// Reads the file and loads the store. Complains and returns nothing when the file cannot be read; the
/// document has no root any more.
std::optional<Document> loadToRead(Store& store);

/// Shows a store that was loaded so, as listStore() does.
int showLoaded(const Store& store, const Document& document, const QCommandLineParser& arguments,
               const std::function<void()>& printText,
               const std::function<void(JsonWriter& json)>& writeMembers);

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

/// The last line of a list, with the number of flawed records, if there are any, behind @a mark.
void printCount(int counted, const std::vector<ListedRecord>& records, const char* mark);

/**
 * Writes two members, one of which is null: the text of the bytes, unless they are no UTF-8, or else their
 * base64.
 */
void writeBytes(JsonWriter& json, const char* textMember, const char* base64Member, const QByteArray& bytes);

/// Writes the members "number", "filePosition" and "flaws" of a record's object.
void writeRecord(JsonWriter& json, const ListedRecord& record);

/// Writes a member that is an array with an object for each record.
template <typename Records, typename Write>
void writeArray(JsonWriter& json, const char* member, const Records& records, Write write)
{
    json.member(member);
    json.beginArray();
    for (const auto& record : records) {
        json.beginObject();
        write(json, record);
        json.endObject();
    }
    json.endArray();
}

/// How a list of numbered records is shown.
template <typename Record>
struct ListView
{
    QStringList header; ///< the columns behind that of the number
    std::function<QStringList(const Record& record)> cells;
    const char* member; ///< the array of all records in JSON
    std::function<void(JsonWriter& json, const Record& record)> write;
};

/// Lists the records of a store: those that its records() has, with its remarks().
template <typename List, typename Record>
int listRecords(List& list, const QCommandLineParser& arguments, const ListView<Record>& view)
{
    const auto print = [&] {
        const std::vector<Record> records = list.records();
        printRecords(
            list.count(), view.header, {records.begin(), records.end()},
            [&](size_t i) { return view.cells(records[i]); }, list.remarks());
    };
    const auto write = [&](JsonWriter& json) {
        list.writeRemarks(json);
        writeArray(json, view.member, list.records(), view.write);
    };
    return listStore(list, arguments, print, write);
}

#endif
