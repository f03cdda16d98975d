#include "tools/tlvctl/bookmarks/BookmarkList.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <utility>

namespace {

QString pictureName(int number)
{
    return QString("%1.PNG").arg(number, 6, 10, QLatin1Char('0'));
}

} // namespace

const int BookmarkList::DIR_MAX_BYTES =
    TVNG_THUMBNAIL_PATH_MAX_BYTES - static_cast<int>(utf8Size("thumbnail/" + pictureName(0)));

bool BookmarkList::checkSavable() const
{
    const qint64 bytes = utf8Size(file().dir());
    if (bytes <= DIR_MAX_BYTES)
        return true;
    complain(file().dir(),
             QString("nothing was changed: the directory has %1 bytes of UTF-8 in its name, more than "
                     "the %2 with which the store keeps the names of pictures; use a shorter path, "
                     "such as \".\"")
                 .arg(bytes)
                 .arg(DIR_MAX_BYTES));
    return false;
}

void BookmarkList::loadSetting()
{
    QString dir = file().dir();
    store_.loadBookmark(&dir, NUMBERED_MAX, lastNumber_);
    emptyNamelessPaths();
}

void BookmarkList::save()
{
    QString dir = file().dir();
    store_.saveBookmark(&dir, NUMBERED_MAX);
    emptyNamelessPaths();
}

/// The store makes the path of a nameless file of a missing picture, which it would save as "thumbnail/".
void BookmarkList::emptyNamelessPaths()
{
    for (TVNC_XMLNode* record : std::as_const(root().getXMLNodeChildren())) {
        TVNC_XMLNode* const thumbnail = childOf(*record, "thumbnail");
        QString none;
        if (record->getName() == "bookmark" && thumbnail && thumbnail->getText() == thumbnailDir())
            store_.setThumbFilePath(thumbnail, none);
    }
}

bool BookmarkList::checkSaved()
{
    // The file has the names of the pictures, the memory their paths.
    store_.removeThumbnailFilePath();
    const bool isSaved = Store::checkSaved();
    QString dir = file().dir();
    store_.addThumbnailFilePath(&dir);
    emptyNamelessPaths();
    return isSaved;
}

/// What the record holds by itself.
void BookmarkList::read(TVNC_XMLNode& node, BookmarkRecord& record) const
{
    checkName(node, "bookmark", {"notNamedBookmark", ": answered, but not counted"}, record.flaws);
    TVNS_Bookmark& bookmark = record.bookmark;
    bookmark.title =
        answeredText(node, "title", TVNG_TITLE_MAX_BYTES,
                     {"titleTooLong", "title of %1 bytes, over %2: the store does not answer it"}, QString(),
                     record.flaws);
    bookmark.href =
        answeredText(node, "href", TVNG_URL_MAX_BYTES,
                     {"addressTooLong", "address of %1 bytes, over %2: the store answers \"about:blank\""},
                     "about:blank", record.flaws);
    TVNC_XMLNode* const thumbnail = childOf(node, "thumbnail");
    if (!thumbnail)
        record.flaws.push_back(missingElement("thumbnail"));
    bookmark.thumbnail = store_.getThumbFilePath(thumbnail);
    record.hasPicture = !bookmark.thumbnail.isEmpty() && QFileInfo(bookmark.thumbnail).isFile();
    if (!bookmark.thumbnail.isEmpty() && !record.hasPicture)
        record.flaws.push_back(
            {"pictureMissing", QString("there is no picture %1").arg(printable(bookmark.thumbnail))});
}

std::vector<BookmarkRecord> BookmarkList::records() const
{
    bool isWalkOver = false;
    return readRecords<BookmarkRecord>(root(), [&](TVNC_XMLNode& node, BookmarkRecord& record) {
        read(node, record);
        const bool isBookmark = node.getName() == "bookmark";
        if (isWalkOver && isBookmark)
            record.flaws.push_back({"pathAsInFile",
                                    "behind a bookmark without \"thumbnail\": its picture's name is "
                                    "not made a path"});
        isWalkOver = isWalkOver || (isBookmark && !childOf(node, "thumbnail"));
    });
}

BookmarkRecord BookmarkList::record(int number) const
{
    QString id = "id";
    BookmarkRecord record;
    record.number = number;
    read(*root().getXMLNodeChildByID(number, id), record);
    return record;
}

QString BookmarkList::storedTitle(int number) const
{
    TVNC_XMLNode* const title = store_.getBookmarkChildNode(number, 0);
    return title ? title->getText() : QString();
}

QString BookmarkList::clipped(const QString& title) const
{
    return store_.ClipString(title, TVNG_TITLE_MAX_BYTES);
}

int BookmarkList::lastPicture() const
{
    int number = lastNumber_;
    while (QFileInfo::exists(thumbnailDir() + pictureName(number + 1)))
        ++number;
    return number;
}

QString BookmarkList::nextPicture() const
{
    return thumbnailDir() + pictureName(lastPicture() + 1);
}

bool BookmarkList::writePicture(QImage image)
{
    const QString picture = nextPicture();
    QString path = thumbnailDir();
    int number = lastPicture();
    if (QDir().mkpath(path) && store_.setThumbnail(&image, &path, number)) {
        lastNumber_ = number;
        return true;
    }
    complain(picture,
             QString("nothing was changed: the picture cannot be written; check the permissions of its "
                     "directory and the free space (\"df %1\")")
                 .arg(printable(file().dir())));
    return false;
}

int BookmarkList::users(const QString& picture) const
{
    int count = 0;
    for (TVNC_XMLNode* record : std::as_const(root().getXMLNodeChildren()))
        count += store_.getThumbFilePath(childOf(*record, "thumbnail")) == picture ? 1 : 0;
    return count;
}

QString BookmarkList::line(const TVNS_Bookmark& bookmark)
{
    return QStringList{printable(bookmark.title), printable(bookmark.href)}.join("  ");
}
