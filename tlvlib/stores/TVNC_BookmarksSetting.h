#ifndef TLVLIB_STORES_TVNC_BOOKMARKSSETTING_H
#define TLVLIB_STORES_TVNC_BOOKMARKSSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QString>
#include <QtGui/QImage>

/// One bookmark. The order of the members is part of the binary interface.
struct TVNS_Bookmark
{
    /// The title shown to the user. Adding cuts it to 100 bytes of UTF-8.
    QString title;

    /// The page's address, at most 256 bytes of UTF-8. A carriage return in it, as in a title, comes back as
    /// a line feed from a file, and a text of blanks alone as empty.
    QString href;

    /// The full path of the bookmark's picture, at most 256 bytes of UTF-8; see TVNC_BookmarksSetting.
    QString thumbnail;
};

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The user's bookmarks, newest first, in the file "bookmark.xml", and their pictures beside it in the
 * directory "thumbnail/":
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <bookmarks docInfo="1.0">
 *     <bookmark id="000">
 *         <href>http://example.com/weather</href>
 *         <title>Weather</title>
 *         <thumbnail>000007.PNG</thumbnail>
 *     </bookmark>
 * </bookmarks>
 * @endcode
 *
 * A bookmark's number is its position and changes with every addition and deletion; new bookmarks get number
 * 0. At most 999 bookmarks have a number. The store starts without a document: before the first
 * loadBookmark() there are no bookmarks, and what is added is lost.
 *
 * Pictures: PNG files with six digits and ".PNG" for a name. In the file "thumbnail" is that name, ten
 * characters long; in memory it is the full path, directory + "thumbnail/" + name. Loading makes paths of
 * the names, saving cuts the paths to their last ten characters, whatever they are, and makes paths of them
 * again. Both go from the front to the first bookmark that has no "thumbnail" element, and leave that one
 * and those behind it as they are. Two things follow for browsers: a bookmark without picture comes back with
 * the path of a nameless file, and when the directory is so long that a path gets longer than 256 bytes of
 * UTF-8, saving empties the names. A directory of up to 236 bytes is safe.
 *
 * The browser numbers the pictures, and deletes them:
 *
 * @code
 * TVNC_BookmarksSetting* bookmarks = TVNC_BookmarksSetting::getInstance();
 * int number = 0;
 * bookmarks->loadBookmark(&directory, 100, number); // the highest number in use
 * bookmark.thumbnail = directory + QLatin1String("thumbnail/");
 * bookmarks->setThumbnail(&image, &bookmark.thumbnail, number); // writes, say, thumbnail/000008.PNG
 * bookmarks->setBookmark(&bookmark);
 * bookmarks->saveBookmark(&directory, 100);
 * @endcode
 *
 * Directories end in "/": file names are appended as they are. The library creates none. Failures are results
 * and log lines as told below.
 */
class TLVLIB_EXPORT TVNC_BookmarksSetting : public TVNC_XMLSetting
{
public:
    /// The one store of the process, made on first use.
    static TVNC_BookmarksSetting* getInstance();

    /**
     * Replaces the bookmarks by those of @a dir + "bookmark.xml", numbers them and makes paths of their
     * pictures' names. A missing file gives an empty list. All bookmarks are kept, however many: @a
     * si_loadMax, at least 1, is only remembered.
     *
     * Logs at level 3 "[TVNC_BookmarksSetting::loadBookmark] start" and "... end", and before the end what
     * getLastNumber() logs. A null or empty directory changes nothing and logs at level 2
     * "[TVNC_BookmarksSetting::loadBookmark] Path is NULL or empty."; so does a maximum below 1 with
     * "[TVNC_BookmarksSetting::loadBookmark] Error load_max:%d".
     *
     * @param dir           ends in "/"; at most 236 bytes of UTF-8, so that the pictures' paths keep to 256
     * @param si_loadMax    at least 1
     * @param si_lastNumber receives the result of getLastNumber(); unchanged when the load is refused
     */
    void loadBookmark(QString* dir, int si_loadMax, int& si_lastNumber);

    /**
     * Writes all bookmarks to @a dir + "bookmark.xml", as TVNG_SetSafeSave() has it. Afterwards all pictures
     * have their paths under @a dir. @a si_saveMax must be at least 1 and has no other effect. Before the
     * first load the file stays as it was.
     *
     * Logs at level 3 "[TVNC_BookmarksSetting::saveBookmark] start" and "... end". A null or empty directory
     * writes nothing and logs at level 2 "[TVNC_BookmarksSetting::saveBookmark] Path is NULL or empty."; so
     * does a maximum below 1 with "[TVNC_BookmarksSetting::saveBookmark] Error save_max:%d".
     */
    void saveBookmark(QString* dir, int si_saveMax);

    /// How many bookmarks have a number: at most 999. Time grows with the number of bookmarks.
    int getBookmarkCnt();

    /**
     * Adds a bookmark in front, as number 0. A title over 100 bytes of UTF-8 is cut by ClipString(). Nothing
     * is saved.
     *
     * Logs at level 3 "[TVNC_BookmarksSetting::setBookmark]", and when memory ran out at level 1
     * "[TVNC_BookmarksSetting::setBookmark] Failed to new TVNC_XMLNode.". A refusal has no line of its own.
     *
     * @return false when @a pc_bookmark is null, its address or its thumbnail is longer than 256 bytes of
     *         UTF-8, or memory ran out; nothing is added then. Before the first load true is no promise: the
     *         bookmark is lost.
     */
    bool setBookmark(TVNS_Bookmark* pc_bookmark);

    /**
     * Fills @a pc_out from a bookmark with what the three getters below give. A member whose element is
     * missing keeps the value that the caller gave it. A title that is too long for getBookmarkTitle() is
     * empty here.
     *
     * @return false when @a pc_out is null or there is no such bookmark
     */
    bool getBookmark(int si_id, TVNS_Bookmark* pc_out);

    /**
     * Removes a bookmark, if there is one of this number, and renumbers the rest. Its picture stays: read its
     * path first, save, and then hand it to deleteThumbnail().
     *
     * Logs at level 3 "[TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:%d".
     */
    void deleteBookmark(int si_id);

    /**
     * The title of a bookmark. One longer than 100 bytes of UTF-8 leaves @a pc_out as it was, with true as
     * the result all the same.
     *
     * @return false when @a pc_out is null or there is no such bookmark or title element
     */
    bool getBookmarkTitle(int si_id, QString* pc_out);

    /**
     * Changes the title of a bookmark. The length is neither checked nor cut, but getBookmarkTitle() does not
     * hand out what is longer than 100 bytes of UTF-8: hand longer titles to ClipString() first.
     *
     * @return false when @a pc_title is null or there is no such bookmark or title element
     */
    bool setBookmarkTitle(int si_id, QString* pc_title);

    /**
     * The address of a bookmark; "about:blank" for one longer than 256 bytes of UTF-8.
     *
     * @return false when @a pc_out is null or there is no such bookmark or address element
     */
    bool getBookmarkURL(int si_id, QString* pc_out);

    /**
     * Changes the address of a bookmark.
     *
     * @return false when @a pc_url is null or longer than 256 bytes of UTF-8, or there is no such bookmark or
     *         address element
     */
    bool setBookmarkURL(int si_id, QString* pc_url);

    /**
     * The path of a bookmark's picture; empty for one longer than 256 bytes of UTF-8.
     *
     * @return false when @a pc_out is null or there is no such bookmark or thumbnail element
     */
    bool getBookmarkThumbnailFilePath(int si_id, QString* pc_out);

    /**
     * Changes the path of a bookmark's picture.
     *
     * @return false when @a pc_path is null or longer than 256 bytes of UTF-8, or there is no such bookmark
     * or thumbnail element
     */
    bool setBookmarkThumbnailFilePath(int si_id, QString* pc_path);

    /**
     * An element of a bookmark.
     *
     * @param si_id   the bookmark's number
     * @param c_which 0 for the title, 1 for the address, 2 for the thumbnail
     * @return the element; null for any other @a c_which, and when there is no such bookmark or element
     */
    TVNC_XMLNode* getBookmarkChildNode(int si_id, char c_which);

    /**
     * As many characters from the front of a text as fit into @a si_maxBytes bytes of UTF-8. Nothing is
     * appended. A byte order mark in front goes. A maximum below 1 gives the whole text.
     */
    QString ClipString(const QString& text, int si_maxBytes);

    /**
     * Writes a picture into a PNG file of the next number.
     *
     * @param pc_image  the picture, of any size
     * @param pc_path   the directory of the pictures, with "/" at its end; afterwards the full path of the
     * file
     * @param si_number the highest number in use; 1 more afterwards, also when writing failed
     * A file that could not be replaced whole, in the mode that TVNG_SetSafeSave() switches on, is logged at
     * level 2 as "[TVNC_BookmarksSetting::setThumbnail] Couldn't replace thumbnail.".
     *
     * @return false when @a pc_image or @a pc_path is null, which changes nothing, or when the file could not
     *         be written
     */
    bool setThumbnail(QImage* pc_image, QString* pc_path, int& si_number);

    /// Reads the PNG file at @a pc_path. False when an argument is null or that did not work.
    bool getThumbnail(QImage* pc_image, QString* pc_path);

    /// Deletes the file at @a pc_path. False when it is null or that did not work.
    bool deleteThumbnail(QString* pc_path);

    /**
     * Finds the next bookmark from a position and gives its thumbnail element.
     *
     * @param si_index a position among the root's children, of any name; afterwards the position of the
     *                 bookmark, or the number of children when there is none
     * @return the element; null when the bookmark has none, when there is no bookmark, and without a root
     */
    TVNC_XMLNode* getThumbNode(int& si_index);

    /// The text of a thumbnail element; empty for null and for a text longer than 256 bytes of UTF-8.
    QString getThumbFilePath(TVNC_XMLNode* pc_node);

    /// Sets the text of a thumbnail element, of any length. False for null.
    bool setThumbFilePath(TVNC_XMLNode* pc_node, QString& path);

    /**
     * The highest number in the names of the pictures: of each path the last ten characters without the last
     * four. What is no number counts as 0. Goes to the first bookmark that has no thumbnail element.
     *
     * Logs at level 3 "[TVNC_BookmarksSetting::getLastNumber] last number:%d".
     */
    int getLastNumber();

    /**
     * Replaces every picture's path by what @a pc_rewrite makes of it and of @a dir, up to the first bookmark
     * that has no thumbnail element. Null does nothing.
     */
    void changeThumbFilePath(QString& dir, QString (*pc_rewrite)(QString& path, QString& dir));

    /// Makes paths under @a dir of the pictures' names, whatever they are. Null does nothing.
    void addThumbnailFilePath(QString* dir);

    /// Cuts the pictures' paths to their last ten characters.
    void removeThumbnailFilePath();

private:
    TVNC_BookmarksSetting();
    ~TVNC_BookmarksSetting();

    /// The maximum of the last accepted load; 0 before. Nothing reads it, but it is part of the layout.
    int si_maxCount_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
