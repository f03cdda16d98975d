#ifndef TOOLS_TLVCTL_RECORDS_STORECHANGE_H
#define TOOLS_TLVCTL_RECORDS_STORECHANGE_H

#include "tools/tlvctl/commandline/CommandLine.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/records/Store.h"

#include <QtCore/QStringList>

#include <functional>
#include <optional>

/**
 * @file
 * What the commands that change a store have in common: the options, what is checked before, saving, and
 * what is checked and printed afterwards.
 */

/// What the attempt to change a store led to.
enum class Outcome {
    REFUSED, ///< with a complaint
    UNCHANGED,
    CHANGED,
};

/// Complains that nothing was changed, and why.
Outcome refused(const Store& store, const QString& problem);

/// A command's own options with those of every command that changes a store: "--dry-run", "--force" and
/// "--json".
QList<QCommandLineOption> changeOptions(const QString& fileName, const QList<QCommandLineOption>& own = {});

/**
 * Changes a store: checks that its file may be replaced, loads it, has it changed, saves it, reads the file
 * back to see that it holds the result, and prints what has changed. With "--dry-run" nothing is saved, and
 * what is printed is said to be what would change.
 *
 * @param change changes the loaded store and appends lines for what has changed, fit for a terminal; nothing
 *               is saved when it did not
 * @param finish may append lines that can only be told after saving; with "--dry-run" it is called as well
 * @return the exit code
 */
int changeStore(Store& store, const QCommandLineParser& arguments,
                const std::function<Outcome(QStringList& changes)>& change,
                const std::function<void(QStringList& changes)>& finish = nullptr);

/// Prints what has changed in a file, or what would with "--dry-run", as text or JSON. Where nothing does,
/// lines may still tell why.
void tellChanges(const StoreFile& file, const QCommandLineParser& arguments, const QStringList& changes,
                 bool isChanged = true);

/// The argument "NUMBER...", which removeRecords() takes.
Argument numbersArgument();

/**
 * The command that removes the records whose numbers stand behind the directory. They are the numbers from
 * before the command. When one of them is absent, nothing is removed.
 *
 * @param describe the line that shows the record of a number, which exists, without that number
 * @param remove   has the store remove the record of a number and number the rest anew
 * @param finish   as for changeStore()
 */
int removeRecords(Store& store, const QCommandLineParser& arguments,
                  const std::function<QString(int number)>& describe,
                  const std::function<void(int number)>& remove,
                  const std::function<void(QStringList& changes)>& finish = nullptr);

/// A number from 0 on in decimal digits, with or without zeros before it.
std::optional<int> parseNumber(const QString& text);

/// Reads an argument that is the number of a record. Complains and returns nothing when it is none.
std::optional<int> recordNumber(const QString& argument);

/// Whether the loaded store has a record of this number.
bool hasRecord(const Store& store, int number);

/// What there is to say where it has none.
QString noSuchRecord(int number);

/**
 * Complains and returns false when the store or its file cannot keep a text that is to be added.
 *
 * @param what   the text's name
 * @param advice what to give in its place
 */
bool checkAddable(const Store& store, const QString& what, const QString& text, const QString& problem,
                  const QString& advice = "another one");

/// Whether "--dry-run" is given.
bool isDryRun(const QCommandLineParser& arguments);

/// "removed  003  WHAT", as a line of what has changed.
QString changeLine(const char* verb, const QString& number, const QString& what);

/// The option "--max", which is handed to the store as the most records that it is to keep.
QCommandLineOption maximumOption();

/// Reads that option. Complains and returns nothing when it is no maximum.
std::optional<int> maximumArgument(const QCommandLineParser& arguments);

/// Removes records of a list with a maximum that has entry(), line() and remove() for the record of a number.
template <typename List>
int removeUpToMaximum(const QCommandLineParser& arguments)
{
    const std::optional<int> maximum = maximumArgument(arguments);
    if (!maximum)
        return WRONG_USAGE;
    List list(pathArgument(arguments), *maximum);
    return removeRecords(
        list, arguments, [&list](int number) { return List::line(list.entry(number)); },
        [&list](int number) { list.remove(number); });
}

#endif
