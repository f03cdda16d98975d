#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKLIST_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKLIST_H

#include "tools/tlvctl/records/StoreList.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>

#include <QtCore/QString>

#include <optional>
#include <vector>

/// One record of the bookmarks, as the store answers it.
struct BookmarkRecord : ListedRecord
{
    TVNS_Bookmark bookmark;  ///< without a picture the thumbnail is empty
    bool hasPicture = false; ///< whether the file of the thumbnail exists
};

/// The bookmarks of a settings directory.
class BookmarkList : public StoreOf<TVNC_BookmarksSetting>
{
public:
    /// With a longer directory, paths of pictures pass the store's limit, and saving empties their names.
    static const int DIR_MAX_BYTES;

    /// @param dir the settings directory, with or without a "/" at its end
    explicit BookmarkList(const QString& dir) : StoreOf(dir, "bookmark.xml", {"bookmarks", "bookmark"}) {}

    /// Complains and returns false when the directory is too long for saving.
    bool checkSavable() const;

    void save() override;
    bool checkSaved() override;
    int count() const override { return store_.getBookmarkCnt(); }

    /// All records, in the order of the document.
    std::vector<BookmarkRecord> records() const;

    /// The record of a number, which exists.
    BookmarkRecord record(int number) const;

    /// Its title as the file has it, however long.
    QString storedTitle(int number) const;

    /// Adds a bookmark in front.
    bool add(TVNS_Bookmark bookmark) { return store_.setBookmark(&bookmark); }
    bool rename(int number, QString title) { return store_.setBookmarkTitle(number, &title); }
    bool setThumbnail(int number, QString path) { return store_.setBookmarkThumbnailFilePath(number, &path); }
    void remove(int number) { store_.deleteBookmark(number); }

    /// As much of a title as the store takes.
    QString clipped(const QString& title) const;

    QString thumbnailDir() const { return file().dir() + "thumbnail/"; }

    /// The path of the next picture, the number of which neither a bookmark nor a file has.
    QString nextPicture() const;

    /// Writes that picture and makes the directory for it. Complains and returns false when that fails.
    bool writePicture(QImage image);

    /// How many bookmarks show the picture of a path.
    int users(const QString& picture) const;

    /// The line that shows a bookmark: title, address.
    static QString line(const TVNS_Bookmark& bookmark);

protected:
    void loadSetting() override;

private:
    void read(TVNC_XMLNode& node, BookmarkRecord& record) const;

    /// The number before that of nextPicture().
    int lastPicture() const;

    void emptyNamelessPaths();

    int lastNumber_ = 0;
};

#endif
