#ifndef TOOLS_TLVCTL_EXCHANGE_EXCHANGEFILE_H
#define TOOLS_TLVCTL_EXCHANGE_EXCHANGEFILE_H

#include "tools/tlvctl/commandline/CommandLine.h"
#include "tools/tlvctl/records/Store.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <optional>
#include <vector>

/**
 * @file
 * Files in the formats of other programs: which format one has, reading it whole, and writing it whole.
 */

/// A format by its name for "--format", and the ends of the names of files that have it.
struct Format
{
    QString name;
    QStringList endings;
};

/// The option "--format".
QCommandLineOption formatOption(const std::vector<Format>& formats);

/// The name of the format that is asked for, or that the file's name tells. Complains and returns nothing
/// when there is none.
std::optional<QString> formatOf(const QString& path, const QCommandLineParser& arguments,
                                const std::vector<Format>& formats);

/// The bytes of a file to import. Complains and returns nothing when it cannot be read or is too large.
std::optional<QByteArray> readImport(const QString& path);

/// Complains that nothing was imported from a file, and why.
void refuseImport(const QString& path, const QString& problem);

/// The argument "FILE" of an export, and its own options with "--force".
Argument exportArgument(const QString& content);
QList<QCommandLineOption> exportOptions(const QList<QCommandLineOption>& own = {});

/// Who may read what is written.
enum class Readers {
    ALL,   ///< whom the process's mask lets
    OWNER, ///< its owner alone, because it holds secrets
};

/**
 * Writes a file whole or not at all. Complains and returns false when that fails, and when there is such a
 * file already, unless "--force" is given.
 */
bool writeExport(const QString& path, const QByteArray& bytes, Readers readers,
                 const QCommandLineParser& arguments);

/// What an export writes, and what there is to say about it.
struct Export
{
    QByteArray bytes;
    QStringList lines;
    Readers readers = Readers::ALL;
};

/**
 * Loads a store and writes what @a make makes of it. A damaged file is exported up to the damage.
 *
 * @return the exit code
 */
int exportStore(Store& store, const QString& path, const QCommandLineParser& arguments,
                const std::function<Export()>& make);

#endif
