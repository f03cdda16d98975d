#ifndef TOOLS_TLVCTL_BOOKMARKS_PICTURES_H
#define TOOLS_TLVCTL_BOOKMARKS_PICTURES_H

#include "tools/tlvctl/bookmarks/BookmarkList.h"

#include <QtCore/QIODevice>
#include <QtCore/QSize>
#include <QtCore/QStringList>
#include <QtGui/QImage>

/**
 * Reads a picture in any format that Qt reads, scaled down to a size.
 *
 * @return a null image, with the @a problem, when that fails
 */
QImage readPicture(QIODevice& device, const QSize& largest, QString& problem);

/// Pictures go out and come in at no larger a size, so that the way there and back changes none.
const QSize PICTURE_SIZE(320, 240);

/// The picture of a bookmark as PNG; empty when it has none that can be read.
QByteArray pngOf(const BookmarkRecord& record);

/// Writes pictures for new bookmarks. When what follows fails, the pictures go again.
class NewPictures
{
public:
    NewPictures(BookmarkList& list, bool isDryRun) : list_(list), isDryRun_(isDryRun) {}
    ~NewPictures();

    NewPictures(const NewPictures&) = delete;
    NewPictures& operator=(const NewPictures&) = delete;

    /// Complains and returns false when that fails.
    bool write(const QImage& image);

    /// The path of the picture that was written last; empty before the first.
    QString last() const { return last_; }

    void keep() { written_.clear(); }

private:
    BookmarkList& list_;
    bool isDryRun_;
    QString last_;
    QStringList written_;
};

#endif
