#include "tools/tlvctl/bookmarks/BookmarkCommands.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/bookmarks/Pictures.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

namespace {

const QString TITLE = "title";
const QString CLIP = "clip";
const QString IMAGE = "image";
const QString IMAGE_SIZE = "image-size";
const QString KEEP_IMAGE = "keep-image";

bool checkUrl(const BookmarkList& list, const QString& url)
{
    const QString problem = problemWithName(url, TVNG_URL_MAX_BYTES);
    return problem.isEmpty() || list.refuse(QString("the address %1 %2").arg(quoted(url), problem));
}

/// Cuts a title where that is asked for. Complains and returns false when it cannot be kept.
bool readTitle(const BookmarkList& list, const QCommandLineParser& arguments, QString& title)
{
    if (arguments.isSet(CLIP))
        title = list.clipped(title);
    const QString problem = problemWithText(title, TVNG_TITLE_MAX_BYTES);
    if (problem.isEmpty())
        return true;
    const bool isTooLong = utf8Size(title) > TVNG_TITLE_MAX_BYTES;
    return list.refuse(
        QString("the title %1 %2%3").arg(quoted(title), problem, isTooLong ? "; --clip cuts it" : QString()));
}

/// Reads a picture and scales it to a thumbnail. Complains and returns nothing when that fails.
std::optional<QImage> readImage(const QString& path, const QSize& largest)
{
    QString problem = problemWithPlace(path);
    if (!problem.isEmpty()) {
        complain(path, QString("nothing was changed: %1; name a picture file").arg(problem));
        return std::nullopt;
    }
    QFile file(path);
    const QImage image = readPicture(file, largest, problem);
    if (!image.isNull())
        return image;
    complain(path, QString("nothing was changed: this cannot be read as a picture: %1; name a picture file")
                       .arg(printable(problem)));
    return std::nullopt;
}

std::optional<QSize> imageSize(const QCommandLineParser& arguments)
{
    const QString text = arguments.value(IMAGE_SIZE);
    const QRegularExpressionMatch match = QRegularExpression("^([0-9]{1,4})x([0-9]{1,4})$").match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (match.hasMatch() && !size.isEmpty())
        return size;
    wrongUsage(QString("size %1 is none of the form 160x120").arg(quoted(text)));
    return std::nullopt;
}

QString pictureLine(const char* verb, const QString& path)
{
    return changeLine(verb, "   ", printable(path));
}

/// Deletes a picture that no bookmark shows any more. False when that fails.
bool deletePicture(const BookmarkList& list, const QString& path, bool isDryRun, QStringList& changes)
{
    if (!path.startsWith(list.thumbnailDir()) || list.users(path) > 0 || !QFile::exists(path))
        return true;
    if (!isDryRun && !QFile::remove(path)) {
        changes.append(pictureLine("kept", path) + " (cannot be removed)");
        return false;
    }
    changes.append(pictureLine("removed", path));
    return true;
}

// --- add --------------------------------------------------------------------------------------------------

int addBookmark(const QCommandLineParser& arguments)
{
    const std::optional<QSize> largest = imageSize(arguments);
    if (!largest)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    TVNS_Bookmark bookmark{arguments.value(TITLE), arguments.positionalArguments().at(1), QString()};
    if (!list.checkSavable() || !checkUrl(list, bookmark.href) || !readTitle(list, arguments, bookmark.title))
        return FAILED;
    QImage image;
    if (arguments.isSet(IMAGE)) {
        const std::optional<QImage> read = readImage(arguments.value(IMAGE), *largest);
        if (!read)
            return FAILED;
        image = *read;
    }
    NewPictures picture(list, isDryRun(arguments));
    const auto add = [&](QStringList& changes) {
        if (!image.isNull() && !picture.write(image))
            return Outcome::REFUSED;
        bookmark.thumbnail = picture.last();
        if (!list.add(bookmark))
            return refused(list, "the store refuses the bookmark");
        changes.append(changeLine("added", numberText(0), BookmarkList::line(bookmark)));
        if (!bookmark.thumbnail.isEmpty())
            changes.append(pictureLine("added", bookmark.thumbnail));
        return Outcome::CHANGED;
    };
    return changeStore(list, arguments, add, [&picture](QStringList&) { picture.keep(); });
}

// --- rename -----------------------------------------------------------------------------------------------

int renameBookmark(const QCommandLineParser& arguments)
{
    const std::optional<int> number = recordNumber(arguments.positionalArguments().at(1));
    if (!number)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    QString title = arguments.positionalArguments().at(2);
    if (!list.checkSavable() || !readTitle(list, arguments, title))
        return FAILED;
    return changeStore(list, arguments, [&](QStringList& changes) {
        if (!hasRecord(list, *number))
            return refused(list, noSuchRecord(*number));
        BookmarkRecord record = list.record(*number);
        if (list.storedTitle(*number) == title) {
            changes.append(changeLine("as is", numberText(*number), BookmarkList::line(record.bookmark)));
            return Outcome::UNCHANGED;
        }
        if (!list.rename(*number, title))
            return refused(list, QString("bookmark %1 has no title to change").arg(numberText(*number)));
        record.bookmark.title = title;
        changes.append(changeLine("renamed", numberText(*number), BookmarkList::line(record.bookmark)));
        return Outcome::CHANGED;
    });
}

// --- remove -----------------------------------------------------------------------------------------------

int removeBookmarks(const QCommandLineParser& arguments)
{
    BookmarkList list(pathArgument(arguments));
    if (!list.checkSavable())
        return FAILED;
    QStringList pictures;
    bool isDone = true;
    const auto describe = [&](int number) {
        const TVNS_Bookmark bookmark = list.record(number).bookmark;
        pictures.append(bookmark.thumbnail);
        return BookmarkList::line(bookmark);
    };
    const auto deletePictures = [&](QStringList& changes) {
        pictures.removeDuplicates();
        for (const QString& picture : pictures) {
            if (!arguments.isSet(KEEP_IMAGE))
                isDone = deletePicture(list, picture, isDryRun(arguments), changes) && isDone;
        }
    };
    const int exitCode = removeRecords(
        list, arguments, describe, [&list](int number) { list.remove(number); }, deletePictures);
    return exitCode == DONE && !isDone ? FAILED : exitCode;
}

// --- thumbnail --------------------------------------------------------------------------------------------

int setThumbnail(const QCommandLineParser& arguments)
{
    const std::optional<int> number = recordNumber(arguments.positionalArguments().at(1));
    const std::optional<QSize> largest = imageSize(arguments);
    if (!number || !largest)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    if (!list.checkSavable())
        return FAILED;
    const std::optional<QImage> image = readImage(arguments.positionalArguments().at(2), *largest);
    if (!image)
        return FAILED;
    NewPictures picture(list, isDryRun(arguments));
    QString earlier;
    const auto set = [&](QStringList& changes) {
        if (!hasRecord(list, *number))
            return refused(list, noSuchRecord(*number));
        const BookmarkRecord record = list.record(*number);
        earlier = record.bookmark.thumbnail;
        if (!picture.write(*image))
            return Outcome::REFUSED;
        if (!list.setThumbnail(*number, picture.last()))
            return refused(list,
                           QString("bookmark %1 has no element \"thumbnail\"; remove it and add it again")
                               .arg(numberText(*number)));
        changes.append(changeLine("changed", numberText(*number), BookmarkList::line(record.bookmark)));
        changes.append(pictureLine("added", picture.last()));
        return Outcome::CHANGED;
    };
    return changeStore(list, arguments, set, [&](QStringList& changes) {
        picture.keep();
        deletePicture(list, earlier, isDryRun(arguments), changes);
    });
}

QCommandLineOption imageSizeOption()
{
    return {IMAGE_SIZE, "The largest size of a picture; larger ones are scaled.", "WxH", "160x120"};
}

QCommandLineOption clipOption()
{
    return {CLIP, QString("Cut a title of more than %1 bytes of UTF-8.").arg(TVNG_TITLE_MAX_BYTES)};
}

const char* const NUMBER_DESCRIPTION = "The number of a bookmark, as \"tlvctl bookmarks list\" shows it.";

} // namespace

Command bookmarkAddCommand()
{
    Command command("add", "Add a bookmark in front.", addBookmark);
    command.details = "The new bookmark gets number 000. Its picture is written into the directory\n"
                      "\"thumbnail\" beside the file, under the next number.";
    command.examples = {"tlvctl bookmarks add /data/settings http://example.com/ --title Example",
                        "tlvctl bookmarks add /data/settings http://example.com/ --image page.jpg"};
    command.arguments = {directoryArgument("bookmark.xml"),
                         {"URL", "The page's address, at most 256 bytes of UTF-8."}};
    command.options = changeOptions(
        "bookmark.xml", {{TITLE, "The page's title, at most 100 bytes of UTF-8.", "T"},
                         clipOption(),
                         {IMAGE, "A picture for the bookmark, in any format that Qt reads.", "FILE"},
                         imageSizeOption()});
    return command;
}

Command bookmarkRenameCommand()
{
    Command command("rename", "Give a bookmark another title.", renameBookmark);
    command.examples = {"tlvctl bookmarks rename /data/settings 003 \"A better title\""};
    command.arguments = {directoryArgument("bookmark.xml"),
                         {"NUMBER", NUMBER_DESCRIPTION},
                         {"TITLE", "The title, at most 100 bytes of UTF-8."}};
    command.options = changeOptions("bookmark.xml", {clipOption()});
    return command;
}

Command bookmarkRemoveCommand()
{
    Command command("remove", "Remove bookmarks and their pictures.", removeBookmarks);
    command.details = "The numbers are those that \"tlvctl bookmarks list\" shows. Nothing is removed when\n"
                      "one of them is absent. A picture that another bookmark shows stays.";
    command.examples = {"tlvctl bookmarks remove /data/settings 003 007"};
    command.arguments = {directoryArgument("bookmark.xml"), numbersArgument()};
    command.options = changeOptions("bookmark.xml", {{KEEP_IMAGE, "Keep the pictures."}});
    return command;
}

Command bookmarkThumbnailCommand()
{
    Command command("thumbnail", "Give a bookmark another picture.", setThumbnail);
    command.details = "The picture is written under the next number. The earlier one is removed, unless\n"
                      "another bookmark shows it.";
    command.examples = {"tlvctl bookmarks thumbnail /data/settings 003 page.png"};
    command.arguments = {directoryArgument("bookmark.xml"),
                         {"NUMBER", NUMBER_DESCRIPTION},
                         {"FILE", "A picture, in any format that Qt reads."}};
    command.options = changeOptions("bookmark.xml", {imageSizeOption()});
    return command;
}
