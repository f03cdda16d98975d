#include "tools/tlvctl/bookmarks/BookmarkCommands.h"

#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QFileInfo>
#include <QtGui/QImageReader>

namespace {

void writeMembers(JsonWriter& json, const BookmarkRecord& record)
{
    const QString& picture = record.bookmark.thumbnail;
    writeRecord(json, record);
    json.member("title", record.bookmark.title);
    json.member("url", record.bookmark.href);
    json.member("picture", picture.isEmpty() ? std::nullopt : std::optional<QString>(picture));
    json.member("pictureExists", record.hasPicture);
}

// --- list -------------------------------------------------------------------------------------------------

int listBookmarks(const QCommandLineParser& arguments)
{
    BookmarkList list(pathArgument(arguments));
    const auto cells = [](const BookmarkRecord& record) {
        const TVNS_Bookmark& bookmark = record.bookmark;
        return QStringList{printable(bookmark.title), printable(bookmark.href),
                           printable(QFileInfo(bookmark.thumbnail).fileName())};
    };
    return listRecords(
        list, arguments,
        ListView<BookmarkRecord>{{"title", "address", "picture"}, cells, "bookmarks", writeMembers});
}

// --- show -------------------------------------------------------------------------------------------------

/// The size of a picture in pixels; invalid when the file is no picture.
QSize sizeOf(const BookmarkRecord& record)
{
    return record.hasPicture ? QImageReader(record.bookmark.thumbnail, "PNG").size() : QSize();
}

QString describePicture(const BookmarkRecord& record)
{
    if (record.bookmark.thumbnail.isEmpty())
        return "none";
    const QString path = printable(record.bookmark.thumbnail);
    if (!record.hasPicture)
        return path + " (there is no such file)";
    const QSize size = sizeOf(record);
    const QString bytes = QString("%1 bytes").arg(QFileInfo(record.bookmark.thumbnail).size());
    if (!size.isValid())
        return QString("%1 (no PNG, %2)").arg(path, bytes);
    return QString("%1 (%2 x %3, %4)")
        .arg(path, QString::number(size.width()), QString::number(size.height()), bytes);
}

void printBookmark(const BookmarkRecord& record)
{
    printLine("number   " + numberText(record.number));
    printLine("title    " + printable(record.bookmark.title));
    printLine("address  " + printable(record.bookmark.href));
    printLine("picture  " + describePicture(record));
    for (const Flaw& flaw : record.flaws)
        printLine("* " + flaw.explanation);
}

void writeBookmark(JsonWriter& json, const BookmarkRecord& record)
{
    json.member("bookmark");
    json.beginObject();
    writeMembers(json, record);
    const QSize size = sizeOf(record);
    json.member("pictureWidth", size.isValid() ? size.width() : 0);
    json.member("pictureHeight", size.isValid() ? size.height() : 0);
    json.endObject();
}

int showBookmark(const QCommandLineParser& arguments)
{
    const std::optional<int> number = recordNumber(arguments.positionalArguments().at(1));
    if (!number)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    const std::optional<Document> document = loadToRead(list);
    if (!document)
        return FAILED;
    if (!hasRecord(list, *number)) {
        complain(list.file().path(), noSuchRecord(*number));
        return FAILED;
    }
    return showLoaded(
        list, *document, arguments, [&] { printBookmark(list.record(*number)); },
        [&](JsonWriter& json) { writeBookmark(json, list.record(*number)); });
}

} // namespace

Command bookmarkListCommand()
{
    Command command("list", "List the bookmarks with their numbers, newest first.", listBookmarks);
    command.details = "Shows all that the file holds, as the store answers it. Bookmarks that the store\n"
                      "hides in part or in full, and those whose picture is missing, are marked with *,\n"
                      "and lines below the table tell how.";
    command.examples = {"tlvctl bookmarks list /data/settings",
                        "tlvctl bookmarks list --json /data/settings"};
    command.arguments = {directoryArgument("bookmark.xml")};
    command.options = {jsonOption()};
    return command;
}

Command bookmarkShowCommand()
{
    Command command("show", "Show one bookmark, with the size of its picture.", showBookmark);
    command.examples = {"tlvctl bookmarks show /data/settings 003"};
    command.arguments = {directoryArgument("bookmark.xml"),
                         {"NUMBER", "The number of a bookmark, as \"tlvctl bookmarks list\" shows it."}};
    command.options = {jsonOption()};
    return command;
}
