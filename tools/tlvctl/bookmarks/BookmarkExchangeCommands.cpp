#include "tools/tlvctl/bookmarks/BookmarkCommands.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/bookmarks/BookmarkFile.h"
#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/bookmarks/Pictures.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/exchange/ExchangeFile.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QBuffer>
#include <QtCore/QSet>

#include <algorithm>

namespace {

const QString HTML = "html";
const std::vector<Format> FORMATS{{HTML, {"html", "htm"}}, {"xbel", {"xbel"}}};

/// Why an address is no bookmark's, to follow it; empty when it can be.
QString problemWithAddress(const QString& href)
{
    const QString problem = problemWithName(href, TVNG_URL_MAX_BYTES);
    if (!problem.isEmpty())
        return problem;
    const bool isSafe = isPrintable(href) && !href.contains(QChar(QChar::ReplacementCharacter));
    return isSafe ? QString() : "has characters that are not safe to show";
}

QString leftOutLine(const std::optional<int>& number, const TVNS_Bookmark& bookmark, const QString& problem)
{
    return QString("%1 (%2)").arg(changeLine("left out", numberText(number), BookmarkList::line(bookmark)),
                                  problem);
}

// --- export -----------------------------------------------------------------------------------------------

Export exportBookmarks(const BookmarkList& list, bool isHtml)
{
    Export made;
    std::vector<FiledBookmark> bookmarks;
    int pictures = 0;
    const std::vector<BookmarkRecord> records = list.records();
    Progress progress(records.size());
    for (const BookmarkRecord& record : records) {
        progress.advance();
        const FiledBookmark bookmark{plainTitle(record.bookmark.title), record.bookmark.href.trimmed(),
                                     isHtml ? pngOf(record) : QByteArray()};
        const QString problem = problemWithAddress(bookmark.href);
        if (!problem.isEmpty()) {
            made.lines.append(leftOutLine(record.number, record.bookmark, "the address " + problem));
            continue;
        }
        if (!record.flaws.empty())
            made.lines.append(QString("* %1: %2").arg(recordName(record), explanationsOf(record.flaws)));
        pictures += bookmark.picture.isEmpty() ? 0 : 1;
        bookmarks.push_back(bookmark);
    }
    made.bytes = isHtml ? writeHtml(bookmarks) : writeXbel(bookmarks);
    made.lines.append(QString("exported: %1, pictures: %2").arg(bookmarks.size()).arg(pictures));
    return made;
}

int exportCommand(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments, 1);
    const std::optional<QString> format = formatOf(path, arguments, FORMATS);
    if (!format)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    return exportStore(list, path, arguments, [&] { return exportBookmarks(list, *format == HTML); });
}

// --- import -----------------------------------------------------------------------------------------------

/// By what a bookmark of a file is found to be there already.
QStringList keyOf(const TVNS_Bookmark& bookmark)
{
    return {bookmark.title, bookmark.href};
}

/// One import into a list that is loaded.
class Import
{
public:
    Import(BookmarkList& list, NewPictures& pictures, QStringList& changes)
        : list_(list), pictures_(pictures), changes_(changes)
    {
        for (const BookmarkRecord& record : list.records())
            present_.insert(keyOf(record.bookmark));
        const int present = static_cast<int>(list.root().getXMLNodeChildren().size());
        room_ = static_cast<size_t>(std::max(0, NUMBERED_MAX - present));
    }

    /// Adds what there is room for in front, in the order of the file.
    Outcome add(const BookmarkFile& file)
    {
        Progress progress(file.bookmarks.size());
        for (const FiledBookmark& bookmark : file.bookmarks) {
            progress.advance();
            if (!take(bookmark))
                return Outcome::REFUSED;
        }
        if (!std::all_of(added_.rbegin(), added_.rend(),
                         [this](const TVNS_Bookmark& bookmark) { return list_.add(bookmark); }))
            return refused(list_, "the store refuses a bookmark");
        tell(file);
        return added_.empty() ? Outcome::UNCHANGED : Outcome::CHANGED;
    }

private:
    /// Takes a bookmark, or leaves it out. False when its picture cannot be written.
    bool take(const FiledBookmark& filed)
    {
        TVNS_Bookmark bookmark{list_.clipped(filed.title), filed.href, QString()};
        if (present_.contains(keyOf(bookmark)))
            return count(presentCount_);
        if (added_.size() == room_)
            return count(surplus_);
        const QString problem = problemWith(bookmark);
        if (!problem.isEmpty()) {
            changes_.append(leftOutLine(std::nullopt, bookmark, problem));
            return count(leftOut_);
        }
        if (!filed.picture.isEmpty() && !addPicture(filed.picture, bookmark))
            return false;
        cut_ += bookmark.title == filed.title ? 0 : 1;
        changes_.append(
            changeLine("added", numberText(static_cast<int>(added_.size())), BookmarkList::line(bookmark)));
        added_.push_back(bookmark);
        return true;
    }

    static bool count(int& number)
    {
        ++number;
        return true;
    }

    static QString problemWith(const TVNS_Bookmark& bookmark)
    {
        const QString problem = problemWithAddress(bookmark.href);
        if (!problem.isEmpty())
            return "the address " + problem;
        const bool isKept = bookmark.title.isEmpty() || survivesSaving(bookmark.title);
        return isKept ? QString() : "the title has characters that the file cannot keep";
    }

    bool addPicture(const QByteArray& bytes, TVNS_Bookmark& bookmark)
    {
        QByteArray copy = bytes;
        QBuffer buffer(&copy);
        QString problem;
        const QImage image = readPicture(buffer, PICTURE_SIZE, problem);
        if (image.isNull()) {
            ++unreadable_;
            return true;
        }
        ++pictureCount_;
        const bool isWritten = pictures_.write(image);
        bookmark.thumbnail = pictures_.last();
        return isWritten;
    }

    void tell(const BookmarkFile& file)
    {
        if (surplus_ > 0)
            changes_.append(QString("left out, because there is no room below %1 bookmarks: the last %2")
                                .arg(NUMBERED_MAX)
                                .arg(surplus_));
        tell("pictures that cannot be read, without which their bookmarks were added", unreadable_);
        tell(QString("titles that were cut to %1 bytes").arg(TVNG_TITLE_MAX_BYTES), cut_);
        tell("folders, whose bookmarks stand one behind the other now", file.folders);
        tell("entries that are no bookmarks, such as aliases, and were left out", file.others);
        changes_.append(QString("added: %1, pictures: %2, there already: %3, left out: %4")
                            .arg(added_.size())
                            .arg(pictureCount_)
                            .arg(presentCount_)
                            .arg(leftOut_ + surplus_));
    }

    void tell(const QString& what, int count)
    {
        if (count > 0)
            changes_.append(QString("%1: %2").arg(what).arg(count));
    }

    BookmarkList& list_;
    NewPictures& pictures_;
    QStringList& changes_;
    QSet<QStringList> present_; ///< what was there before, so that a file may hold a bookmark twice
    size_t room_;
    std::vector<TVNS_Bookmark> added_;
    int presentCount_ = 0;
    int leftOut_ = 0;
    int surplus_ = 0;
    int pictureCount_ = 0;
    int unreadable_ = 0;
    int cut_ = 0;
};

int importCommand(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments, 1);
    const std::optional<QString> format = formatOf(path, arguments, FORMATS);
    if (!format)
        return WRONG_USAGE;
    BookmarkList list(pathArgument(arguments));
    if (!list.checkSavable())
        return FAILED;
    const std::optional<QByteArray> bytes = readImport(path);
    if (!bytes)
        return FAILED;
    const BookmarkFile file = *format == HTML ? readHtml(*bytes) : readXbel(path);
    if (!file.problem.isEmpty()) {
        refuseImport(path, "it " + file.problem);
        return FAILED;
    }
    NewPictures pictures(list, isDryRun(arguments));
    return changeStore(
        list, arguments, [&](QStringList& changes) { return Import(list, pictures, changes).add(file); },
        [&pictures](QStringList&) { pictures.keep(); });
}

} // namespace

Command bookmarkExportCommand()
{
    Command command("export", "Write the bookmarks for other browsers.", exportCommand);
    command.details =
        "The HTML file, which every desktop browser imports, holds the pictures, too; XBEL has no\n"
        "place for them. Pictures are scaled down to 320 x 240. Bookmarks without an address, and\n"
        "those whose address has control characters, are left out and told.";
    command.examples = {"tlvctl bookmarks export /data/settings bookmarks.html",
                        "tlvctl bookmarks export /data/settings bookmarks.xbel"};
    command.arguments = {directoryArgument("bookmark.xml"), exportArgument("the bookmarks")};
    command.options = exportOptions({formatOption(FORMATS)});
    return command;
}

Command bookmarkImportCommand()
{
    Command command("import", "Add the bookmarks of another browser.", importCommand);
    command.details =
        "FILE is the HTML file that a desktop browser exports, or XBEL. Its bookmarks are added\n"
        "in front, in their order and without their folders; those that are there already, with\n"
        "the same title and address, are not added again. Titles are cut to 100 bytes of UTF-8,\n"
        "pictures scaled down to 320 x 240. Says what is left out and why: addresses that are too\n"
        "long or have control characters, and what finds no room below 999 bookmarks.";
    command.examples = {"tlvctl bookmarks import /data/settings bookmarks.html --dry-run",
                        "tlvctl bookmarks import /data/settings bookmarks.xbel"};
    command.arguments = {directoryArgument("bookmark.xml"), {"FILE", "The file to import."}};
    command.options = changeOptions("bookmark.xml", {formatOption(FORMATS)});
    return command;
}
