#include "tools/tlvctl/files/FileCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <tlvlib/thumbs/TVNC_NetworkDiskCache.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

namespace {

/// The one that TVNC_NetworkDiskCache empties.
const QString CACHE_DIR = "/ata07/Talvenor/cache/";

/// What is in the directory.
struct Content
{
    qint64 files = 0;
    qint64 bytes = 0;
    QString locked; ///< a directory with files, none of which can be removed; empty when there is none
};

Content contentOfCache()
{
    Content content;
    QDirIterator it(CACHE_DIR, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        ++content.files;
        content.bytes += info.size();
        if (!QFileInfo(info.path()).isWritable())
            content.locked = info.path();
    }
    return content;
}

void writeResult(const Content& removed, const Content& left, bool exists, bool isDryRun)
{
    JsonWriter json;
    json.beginObject();
    json.member("directory", CACHE_DIR);
    json.member("exists", exists);
    json.member("dryRun", isDryRun);
    json.member("removedFiles", removed.files);
    json.member("removedBytes", removed.bytes);
    json.member("leftFiles", left.files);
    json.member("leftBytes", left.bytes);
    json.endObject();
}

void printResult(const Content& removed, const Content& left, bool exists, bool isDryRun)
{
    if (!exists) {
        printLine("there is no cache: no directory " + CACHE_DIR);
    } else if (isDryRun) {
        printLine(QString("dry run: nothing is removed from %1").arg(CACHE_DIR));
        printLine(QString("files: %1, bytes: %2; of these, what is the cache's would be removed")
                      .arg(left.files)
                      .arg(left.bytes));
    } else {
        printLine(QString("files removed from %1: %2, bytes: %3")
                      .arg(CACHE_DIR)
                      .arg(removed.files)
                      .arg(removed.bytes));
        if (left.files > 0)
            printLine(QString("files left: %1, bytes: %2").arg(left.files).arg(left.bytes));
    }
}

int clear(const QCommandLineParser& arguments)
{
    const QFileInfo dir(CACHE_DIR);
    if (!dir.isDir() && QFileInfo::exists(CACHE_DIR.left(CACHE_DIR.size() - 1))) {
        complain(CACHE_DIR, "not a directory; remove what is there, and the browser makes one");
        return FAILED;
    }
    const bool exists = dir.isDir();
    const Content before = contentOfCache();
    Content left = before;
    if (exists && !isDryRun(arguments)) {
        TVNC_NetworkDiskCache::getInstance()->clear();
        left = contentOfCache();
    }
    const Content removed{before.files - left.files, before.bytes - left.bytes, QString()};
    if (arguments.isSet("json"))
        writeResult(removed, left, exists, isDryRun(arguments));
    else
        printResult(removed, left, exists, isDryRun(arguments));
    if (left.locked.isEmpty() || isDryRun(arguments))
        return DONE;
    complain(left.locked, "files in it cannot be removed; make the directory writable");
    return FAILED;
}

} // namespace

Command cacheClearCommand()
{
    Command command("clear", "Empty the browser's disk cache.", clear);
    command.details = "The cache is in " + CACHE_DIR +
                      ", which is fixed. Files there that are not\n"
                      "the cache's stay, and are counted. Stop the browser first.";
    command.examples = {"tlvctl cache clear"};
    command.options = {jsonOption(), {"dry-run", "Remove nothing, but count what is there."}};
    return command;
}
