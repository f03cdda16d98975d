#ifndef EXAMPLES_KIOSK_BOOKMARKS_H
#define EXAMPLES_KIOSK_BOOKMARKS_H

#include "DelayedSave.h"
#include "Profile.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>

#include <QtCore/QObject>
#include <QtGui/QImage>

/// The bookmarks with their pictures. Positions are those of the store: the newest is 0.
class Bookmarks : public QObject
{
    Q_OBJECT

public:
    /// The size of a bookmark's picture.
    static const int PICTURE_WIDTH = 160;
    static const int PICTURE_HEIGHT = 120;

    explicit Bookmarks(const Profile& profile);

    void load();
    void save();

    /// When it saves, and what became of it.
    DelayedSave& saving() { return saving_; }

    int count() const { return store_.getBookmarkCnt(); }
    TVNS_Bookmark at(int position) const;
    QImage picture(int position) const;

    /// The position of an address; -1 when it is not bookmarked.
    int find(const QString& url) const;

    /**
     * Puts a page in front, in place of its older bookmark if it has one.
     *
     * @return why it cannot be bookmarked, or what it lacks; empty when all went well
     */
    QString add(const QString& title, const QString& url, QImage picture);

    void rename(int position, const QString& title);
    void remove(int position);

signals:
    void changed();

private:
    void changeAndSave();

    TVNC_BookmarksSetting& store_;
    Profile profile_;
    int lastNumber_ = 0; ///< of the pictures
    DelayedSave saving_;
};

#endif
