#include "tools/tlvctl/bookmarks/BookmarkListCommands.h"

#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QFileInfo>
#include <QtGui/QImageReader>

namespace {

void writeText(JsonWriter& json, const char* member, const QString& text)
{
    json.member(member);
    if (text.isEmpty())
        json.null();
    else
        json.string(text);
}

void writeMembers(JsonWriter& json, const BookmarkRecord& record)
{
    writeRecord(json, record);
    json.member("title");
    json.string(record.bookmark.title);
    json.member("url");
    json.string(record.bookmark.href);
    writeText(json, "picture", record.bookmark.thumbnail);
    json.member("pictureExists");
    json.boolean(record.hasPicture);
}

// --- list -------------------------------------------------------------------------------------------------

void printBookmarks(const BookmarkList& list)
{
    const std::vector<BookmarkRecord> records = list.records();
    const auto cells = [&records](size_t i) {
        const TVNS_Bookmark& bookmark = records[i].bookmark;
        return QStringList{printable(bookmark.title), printable(bookmark.href),
                           printable(QFileInfo(bookmark.thumbnail).fileName())};
    };
    printRecords(list.count(), {"title", "address", "picture"}, {records.begin(), records.end()}, cells,
                 remarkAboutNumbers(list.renumbered()));
}

void writeBookmarks(JsonWriter& json, const BookmarkList& list)
{
    json.member("renumbered");
    json.number(list.renumbered());
    json.member("bookmarks");
    json.beginArray();
    for (const BookmarkRecord& record : list.records()) {
        json.beginObject();
        writeMembers(json, record);
        json.endObject();
    }
    json.endArray();
}

int listBookmarks(const QCommandLineParser& arguments)
{
    BookmarkList list(pathArgument(arguments));
    return listStore(
        list, arguments, [&list] { printBookmarks(list); },
        [&list](JsonWriter& json) { writeBookmarks(json, list); });
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
    json.member("pictureWidth");
    json.number(size.isValid() ? size.width() : 0);
    json.member("pictureHeight");
    json.number(size.isValid() ? size.height() : 0);
    json.endObject();
}

int showBookmark(const QCommandLineParser& arguments)
{
    const std::optional<int> number = recordNumber(arguments.positionalArguments().at(1));
    if (!number)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    if (!list.file().checkDirectory())
        return FAILED;
    list.load();
    if (!checkPresent(list, *number))
        return FAILED;
    return listStore(
        list, arguments, [&] { printBookmark(list.record(*number)); },
        [&](JsonWriter& json) { writeBookmark(json, list.record(*number)); });
}

} // namespace

Command bookmarkListCommand()
{
    Command command;
    command.name = "list";
    command.summary = "List the bookmarks with their numbers, newest first.";
    command.details = "Shows all that the file holds, as the store answers it. Bookmarks that the store\n"
                      "hides in part or in full, and those whose picture is missing, are marked with *,\n"
                      "and lines below the table tell how.";
    command.examples = {"tlvctl bookmarks list /data/settings",
                        "tlvctl bookmarks list --json /data/settings"};
    command.arguments = {directoryArgument("bookmark.xml")};
    command.options = {jsonOption()};
    command.run = listBookmarks;
    return command;
}

Command bookmarkShowCommand()
{
    Command command;
    command.name = "show";
    command.summary = "Show one bookmark, with the size of its picture.";
    command.examples = {"tlvctl bookmarks show /data/settings 003"};
    command.arguments = {directoryArgument("bookmark.xml"),
                         {"NUMBER", "The number of a bookmark, as \"tlvctl bookmarks list\" shows it."}};
    command.options = {jsonOption()};
    command.run = showBookmark;
    return command;
}
