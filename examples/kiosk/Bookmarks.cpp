#include "Bookmarks.h"

#include <tlvlib/files/TVNG_SafeSave.h>

Bookmarks::Bookmarks(const Profile& profile)
    : store_(*TVNC_BookmarksSetting::getInstance()), profile_(profile), saving_({[this] { save(); }})
{
}

void Bookmarks::load()
{
    store_.loadBookmark(&profile_.user, BOOKMARK_MAX, lastNumber_);
}

void Bookmarks::save()
{
    store_.saveBookmark(&profile_.user, BOOKMARK_MAX);
}

TVNS_Bookmark Bookmarks::at(int position) const
{
    TVNS_Bookmark bookmark;
    store_.getBookmark(position, &bookmark);
    return bookmark;
}

QImage Bookmarks::picture(int position) const
{
    QString path;
    QImage image;
    if (store_.getBookmarkThumbnailFilePath(position, &path))
        store_.getThumbnail(&image, &path);
    return image;
}

int Bookmarks::find(const QString& url) const
{
    for (int i = 0; i < count(); ++i) {
        QString address;
        if (store_.getBookmarkURL(i, &address) && address == url)
            return i;
    }
    return -1;
}

QString Bookmarks::add(const QString& title, const QString& url, QImage picture)
{
    const int earlier = find(url);
    if (earlier < 0 && count() >= BOOKMARK_MAX)
        return tr("There are %1 bookmarks already. Remove one first.").arg(BOOKMARK_MAX);

    TVNS_Bookmark bookmark{title, url, profile_.thumbnails()};
    QString problem;
    if (!store_.setThumbnail(&picture, &bookmark.thumbnail, lastNumber_)) { // completes the path
        bookmark.thumbnail.clear();
        problem = tr("Bookmarked without its picture: %1").arg(TVNG_GetSaveError());
    }
    if (!store_.setBookmark(&bookmark)) {
        store_.deleteThumbnail(&bookmark.thumbnail);
        return tr("This address is too long for a bookmark: it has %1 bytes, and 256 are the most.")
            .arg(url.toUtf8().size());
    }
    if (earlier >= 0)
        remove(earlier + 1); // the new one has moved it
    changeAndSave();
    return problem;
}

void Bookmarks::rename(int position, const QString& title)
{
    // Longer titles are taken, but not handed out again.
    QString clipped = store_.ClipString(title, 100);
    store_.setBookmarkTitle(position, &clipped);
    changeAndSave();
}

void Bookmarks::remove(int position)
{
    // The picture is a file of its own, which the store leaves to its caller.
    QString picture;
    if (store_.getBookmarkThumbnailFilePath(position, &picture) && !picture.isEmpty())
        store_.deleteThumbnail(&picture);
    store_.deleteBookmark(position);
    changeAndSave();
}

void Bookmarks::changeAndSave()
{
    saving_.schedule();
    emit changed();
}
