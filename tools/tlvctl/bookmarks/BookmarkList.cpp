#include "tools/tlvctl/bookmarks/BookmarkList.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <utility>

namespace {

/// The element of a record; null where there is none.
TVNC_XMLNode* childOf(TVNC_XMLNode& record, const char* element)
{
    QString name = element;
    return record.getXMLNodeChildByName(name);
}

QString pictureName(int number)
{
    return QString("%1.PNG").arg(number, 6, 10, QLatin1Char('0'));
}

Flaw missing(const char* element)
{
    return {"elementMissing", QString("no element \"%1\"").arg(element)};
}

/// What the store answers for a text, unless it is longer than its limit.
QString answeredText(TVNC_XMLNode& record, const char* element, int maxBytes, const Flaw& tooLong,
                     const QString& otherwise, std::vector<Flaw>& flaws)
{
    TVNC_XMLNode* const child = childOf(record, element);
    if (!child) {
        flaws.push_back(missing(element));
        return QString();
    }
    const qint64 bytes = utf8Size(child->getText());
    if (bytes <= maxBytes)
        return child->getText();
    flaws.push_back({tooLong.name, tooLong.explanation.arg(bytes).arg(maxBytes)});
    return otherwise;
}

} // namespace

BookmarkList::BookmarkList(const QString& dir)
    : Store(dir, "bookmark.xml"), store_(*TVNC_BookmarksSetting::getInstance())
{
}

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

void BookmarkList::load()
{
    renumbered_ = countRenumbered(readDocument(file().path()).root.get());
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

TVNC_XMLNode& BookmarkList::root() const
{
    return *store_.getXMLRootNode();
}

int BookmarkList::count() const
{
    return store_.getBookmarkCnt();
}

/// What the record holds by itself.
BookmarkRecord BookmarkList::read(TVNC_XMLNode& node) const
{
    BookmarkRecord record;
    if (node.getName() != "bookmark")
        record.flaws.push_back(
            {"notNamedBookmark", QString("element %1 instead of \"bookmark\": answered, but not counted")
                                     .arg(quoted(node.getName()))});
    record.bookmark.title =
        answeredText(node, "title", TITLE_MAX_BYTES,
                     {"titleTooLong", "title of %1 bytes, over %2: the store does not answer it"}, QString(),
                     record.flaws);
    record.bookmark.href =
        answeredText(node, "href", URL_MAX_BYTES,
                     {"addressTooLong", "address of %1 bytes, over %2: the store answers \"about:blank\""},
                     "about:blank", record.flaws);
    TVNC_XMLNode* const thumbnail = childOf(node, "thumbnail");
    if (!thumbnail)
        record.flaws.push_back(missing("thumbnail"));
    record.bookmark.thumbnail = store_.getThumbFilePath(thumbnail);
    record.hasPicture = !record.bookmark.thumbnail.isEmpty() && QFileInfo(record.bookmark.thumbnail).isFile();
    if (!record.bookmark.thumbnail.isEmpty() && !record.hasPicture)
        record.flaws.push_back(
            {"pictureMissing", QString("there is no picture %1").arg(printable(record.bookmark.thumbnail))});
    return record;
}

std::vector<BookmarkRecord> BookmarkList::records() const
{
    std::vector<BookmarkRecord> records;
    QSet<int> taken;
    bool isWalkOver = false;
    for (TVNC_XMLNode* node : std::as_const(root().getXMLNodeChildren())) {
        BookmarkRecord record = read(*node);
        record.filePosition = static_cast<int>(records.size());
        record.number = numberOf(*node, taken);
        if (!record.number)
            record.flaws.insert(record.flaws.begin(), {"noNumber", "has no number: cannot be asked for"});
        const bool isBookmark = node->getName() == "bookmark";
        if (isWalkOver && isBookmark)
            record.flaws.push_back({"pathAsInFile",
                                    "behind a bookmark without \"thumbnail\": its picture's name is "
                                    "not made a path"});
        isWalkOver = isWalkOver || (isBookmark && !childOf(*node, "thumbnail"));
        records.push_back(record);
    }
    return records;
}

BookmarkRecord BookmarkList::record(int number) const
{
    QString id = "id";
    BookmarkRecord record = read(*root().getXMLNodeChildByID(number, id));
    record.number = number;
    return record;
}

QString BookmarkList::storedTitle(int number) const
{
    TVNC_XMLNode* const title = store_.getBookmarkChildNode(number, 0);
    return title ? title->getText() : QString();
}

bool BookmarkList::add(TVNS_Bookmark bookmark)
{
    return store_.setBookmark(&bookmark);
}

bool BookmarkList::rename(int number, QString title)
{
    return store_.setBookmarkTitle(number, &title);
}

bool BookmarkList::setThumbnail(int number, QString path)
{
    return store_.setBookmarkThumbnailFilePath(number, &path);
}

void BookmarkList::remove(int number)
{
    store_.deleteBookmark(number);
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

bool BookmarkList::writePicture(QImage image) const
{
    const QString picture = nextPicture();
    QString path = thumbnailDir();
    int number = lastPicture();
    if (QDir().mkpath(path) && store_.setThumbnail(&image, &path, number))
        return true;
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
