#include <tlvlib/browser/BookmarkModel.h>

#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QUrl>

#include <algorithm>

namespace Tlv {

namespace {

const int PICTURES_IN_MEMORY = 100;

} // namespace

BookmarkModel::BookmarkModel(QObject* parent)
    : StoredModel({{"title", tr("Title")}, {"url", tr("Address")}, {"pictureUrl", QString()}}, DefaultMaximum,
                  parent)
    , store_(*TVNC_BookmarksSetting::getInstance())
    , shown_(PICTURES_IN_MEMORY)
{
}

void BookmarkModel::readStore(QString dir)
{
    pictures_ = dir + QLatin1String("thumbnail/");
    orphans_.clear();
    shown_.clear();
    store_.loadBookmark(&dir, maximum(), lastNumber_);
    // The store stops counting at a bookmark without an element for its picture.
    for (int row = 0; row < storedCount(); ++row)
        lastNumber_ = std::max(lastNumber_, QFileInfo(picturePath(row)).completeBaseName().toInt());
}

void BookmarkModel::writeStore(QString dir)
{
    store_.saveBookmark(&dir, maximum());
}

void BookmarkModel::storeSaved()
{
    for (int row = 0; row < count(); ++row)
        orphans_.removeAll(picturePath(row)); // another bookmark has it, too
    for (QString& picture : orphans_)
        store_.deleteThumbnail(&picture);
    orphans_.clear();
}

int BookmarkModel::find(const QString& url) const
{
    return findRecord({{UrlColumn, url}});
}

bool BookmarkModel::refuse(const QString& error)
{
    error_ = error;
    return false;
}

bool BookmarkModel::add(const QString& title, const QString& url, const QImage& picture)
{
    const int earlier = find(url);
    if (earlier < 0 && count() >= maximum())
        return refuse(tr("There are %1 bookmarks already. Remove one first.").arg(maximum()));
    const auto bytes = url.toUtf8().size();
    if (bytes > UrlMaximumBytes)
        return refuse(tr("This address is too long for a bookmark: it has %1 bytes, and %2 are the most.")
                          .arg(bytes)
                          .arg(UrlMaximumBytes));
    error_.clear();
    TVNS_Bookmark bookmark{title, url, writePicture(picture)};
    if (!store_.setBookmark(&bookmark)) {
        store_.deleteThumbnail(&bookmark.thumbnail);
        return refuse(tr("There is no memory for another bookmark."));
    }
    recordPrepended();
    if (earlier >= 0)
        remove(earlier + 1); // the new one has moved it
    Q_EMIT changed();
    return true;
}

QString BookmarkModel::writePicture(QImage picture)
{
    QString path = pictures_;
    if (picture.isNull())
        return QString();
    if (store_.setThumbnail(&picture, &path, lastNumber_)) // completes the path
        return path;
    const QString error = TVNG_GetSaveError(); // none without safe saving
    error_ = tr("Bookmarked without its picture: %1").arg(error.isEmpty() ? path : error);
    Q_EMIT pictureNotSaved(error_);
    return QString();
}

bool BookmarkModel::rename(int row, const QString& title)
{
    // The store takes longer titles, but does not hand them out again.
    QString clipped = store_.ClipString(title, TitleMaximumBytes);
    if (row < 0 || row >= count() || !store_.setBookmarkTitle(row, &clipped))
        return false;
    recordChanged(row);
    Q_EMIT changed();
    return true;
}

QString BookmarkModel::picturePath(int row) const
{
    QString path;
    store_.getBookmarkThumbnailFilePath(row, &path);
    return path.endsWith(QLatin1Char('/')) ? QString() : path; // a bookmark without picture, loaded again
}

QImage BookmarkModel::picture(int row) const
{
    QString path = field(row, PictureUrlRole - FirstRole).toUrl().toLocalFile();
    if (path.isEmpty())
        return QImage();
    if (const QImage* known = shown_.object(path))
        return *known;
    QImage image;
    store_.getThumbnail(&image, &path);
    shown_.insert(path, new QImage(image));
    return image;
}

QImage BookmarkModel::pictureOf(const QImage& page)
{
    return page.scaled(PictureSize, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation)
        .copy(QRect(QPoint(0, 0), PictureSize));
}

Qt::ItemFlags BookmarkModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = StoredModel::flags(index);
    return index.isValid() && index.column() == TitleColumn ? flags | Qt::ItemIsEditable : flags;
}

QVariant BookmarkModel::data(const QModelIndex& index, int role) const
{
    const bool isTitle = index.isValid() && index.column() == TitleColumn;
    if (isTitle && role == Qt::DecorationRole)
        return picture(index.row());
    if (isTitle && role == Qt::ToolTipRole)
        return field(index.row(), UrlColumn).toString().toHtmlEscaped();
    return StoredModel::data(index, role);
}

bool BookmarkModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const bool isTitle = (role == Qt::EditRole && index.column() == TitleColumn) || role == TitleRole;
    return index.isValid() && isTitle && rename(index.row(), value.toString());
}

int BookmarkModel::storedCount() const
{
    return store_.getBookmarkCnt();
}

QVariantList BookmarkModel::storedRecord(int row) const
{
    TVNS_Bookmark bookmark; // a new one each time: what a record lacks stays as it was
    store_.getBookmark(row, &bookmark);
    const QString path = picturePath(row);
    return {bookmark.title, bookmark.href, path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path)};
}

void BookmarkModel::removeStored(int row)
{
    const QString path = picturePath(row);
    if (QFileInfo(path).dir() == QDir(pictures_)) // an edited file may name any other
        orphans_.append(path);
    store_.deleteBookmark(row);
}

} // namespace Tlv
