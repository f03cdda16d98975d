#include "tlvlib/stores/TVNC_BookmarksSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_digits.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>

namespace {

/// The name of a picture, and its parts in characters.
const char THUMBNAIL_NAME[] = "%06d.PNG";
const int THUMBNAIL_NAME_LENGTH = 10;
const int THUMBNAIL_EXTENSION_LENGTH = 4;
const char THUMBNAIL_FORMAT[] = "PNG";

/// The names in the document.
struct BookmarkNames
{
    QString file = TVNG_literal("bookmark.xml");
    QString thumbnailDirectory = TVNG_literal("thumbnail/");
    QString aboutBlank = TVNG_literal("about:blank");
    QString root = TVNG_literal("bookmarks");
    QString bookmark = TVNG_literal("bookmark");
    QString title = TVNG_literal("title");
    QString href = TVNG_literal("href");
    QString thumbnail = TVNG_literal("thumbnail");
};

BookmarkNames& bookmarkNames()
{
    return TVNG_immortal<BookmarkNames>();
}

/// What getBookmarkChildNode() selects.
const char TITLE = 0;
const char HREF = 1;
const char THUMBNAIL = 2;

/// As getThumbNode().
TVNC_XMLNode* thumbnailNode(TVNC_XMLSetting& bookmarks, int& si_index)
{
    TVNC_XMLNode* pc_root = bookmarks.getXMLRootNode();
    TVNC_XMLNode* pc_record = pc_root ? pc_root->getChildByName(bookmarkNames().bookmark, si_index) : nullptr;
    return pc_record ? pc_record->getXMLNodeChildByName(bookmarkNames().thumbnail) : nullptr;
}

/// Null for a null record, for a code that selects nothing, and when the element is missing.
TVNC_XMLNode* childOf(TVNC_XMLNode* pc_record, char c_which)
{
    if (!pc_record)
        return nullptr;
    switch (c_which) {
    case TITLE:
        return pc_record->getXMLNodeChildByName(bookmarkNames().title);
    case HREF:
        return pc_record->getXMLNodeChildByName(bookmarkNames().href);
    case THUMBNAIL:
        return pc_record->getXMLNodeChildByName(bookmarkNames().thumbnail);
    default:
        return nullptr;
    }
}

/// Copies the title, unless it is over its limit.
void copyTitle(TVNC_XMLNode& title, QString& out)
{
    const QString text = TVNC_NodeAccess::text(title);
    if (TVNG_fitsUtf8(text, TVNG_TITLE_MAX_BYTES))
        out = text;
}

QString urlOf(TVNC_XMLNode& href)
{
    const QString url = TVNC_NodeAccess::text(href);
    return TVNG_fitsUtf8(url, TVNG_URL_MAX_BYTES) ? url : bookmarkNames().aboutBlank;
}

/// The path or, in the file, the name of a picture; none where it is over its limit.
QString thumbnailOf(TVNC_XMLNode& thumbnail)
{
    const QString path = TVNC_NodeAccess::text(thumbnail);
    return TVNG_fitsUtf8(path, TVNG_THUMBNAIL_PATH_MAX_BYTES) ? path : QString();
}

QString makeThumbFilePath(QString& path, QString& dir)
{
    // In one piece: there may be a thousand, and each stays in memory.
    QString full;
    full.reserve(dir.size() + bookmarkNames().thumbnailDirectory.size() + path.size());
    full += dir;
    full += bookmarkNames().thumbnailDirectory;
    full += path;
    return full;
}

QString trimThumbFilePath(QString& path, QString&)
{
    return path.right(THUMBNAIL_NAME_LENGTH);
}

/// As changeThumbFilePath(). When memory runs out, those in front are changed and the others are not, which
/// the next save or load makes good.
void changePaths(TVNC_XMLSetting& bookmarks, QString& dir, QString (*pc_rewrite)(QString& path, QString& dir))
{
    const int si_count = bookmarks.getXMLNodeCnt();
    for (int i = 0; i < si_count; ++i) {
        TVNC_XMLNode* pc_thumbnail = thumbnailNode(bookmarks, i);
        // A bookmark without the element ends the walk, and those behind it keep their texts. Files with such
        // bookmarks hold whole paths behind them, which would be joined to the directory a second time.
        if (!pc_thumbnail)
            return;
        QString path = thumbnailOf(*pc_thumbnail);
        QString rewritten = pc_rewrite(path, dir);
        pc_thumbnail->setText(rewritten);
    }
}

/// The number in the name of a picture; 0 when there is none.
int numberOf(const QString& path)
{
    const int si_from = qMax(0, static_cast<int>(path.size()) - THUMBNAIL_NAME_LENGTH);
    const int si_count = static_cast<int>(path.size()) - si_from - THUMBNAIL_EXTENSION_LENGTH;
    // The names that this store makes take no memory here. Qt reads whatever else is a number.
    const int si_number = TVNG_digits(path.constData() + si_from, si_count);
    return si_number >= 0 ? si_number : path.mid(si_from, si_count).toInt();
}

/// The highest number of a picture, which is logged.
int lastNumber(TVNC_XMLSetting& bookmarks)
{
    int si_last = 0;
    const int si_count = bookmarks.getXMLNodeCnt();
    for (int i = 0; i < si_count; ++i) {
        TVNC_XMLNode* pc_thumbnail = thumbnailNode(bookmarks, i);
        if (!pc_thumbnail)
            break;
        si_last = qMax(si_last, numberOf(thumbnailOf(*pc_thumbnail)));
    }
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::getLastNumber] last number:%d", si_last);
    return si_last;
}

/// The first bytes of a text in UTF-8, in whole characters. All of it for a limit below 1.
QString clipped(const QString& text, int si_maxBytes)
{
    if (si_maxBytes < 1)
        return text;
    const QByteArray bytes = text.toUtf8();
    int si_end = qMin(si_maxBytes, static_cast<int>(bytes.size()));
    // Not into the middle of a character: what a byte 10xxxxxx continues begins further in front.
    while (si_end > 0 && si_end < bytes.size() && (bytes.at(si_end) & 0xC0) == 0x80)
        --si_end;
    return QString::fromUtf8(bytes.constData(), si_end);
}

/// As QImage::save() does, but in the mode for files that are replaced whole.
bool savePictureWhole(const QImage& image, const QString& path)
{
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!image.save(&png, THUMBNAIL_FORMAT, -1)) {
        TVNG_setSaveError(path + QLatin1String(" could not be saved: there is no picture"));
        return false;
    }
    TVNC_SavedFile file(path);
    if (!file.open())
        return false;
    file.device().write(png.data());
    if (!file.commit()) {
        TVNG_DebugPrint(2, "[TVNC_BookmarksSetting::setThumbnail] Couldn't replace thumbnail.");
        return false;
    }
    return true;
}

} // namespace

TVNC_BookmarksSetting::TVNC_BookmarksSetting() : si_maxCount_(0) {}

TVNC_BookmarksSetting::~TVNC_BookmarksSetting() {}

TVNC_BookmarksSetting* TVNC_BookmarksSetting::getInstance()
{
    static TVNC_BookmarksSetting instance;
    return &instance;
}

// --- The list ---------------------------------------------------------------------------------------------

void TVNC_BookmarksSetting::loadBookmark(QString* dir, int si_loadMax, int& si_lastNumber)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::loadBookmark] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BookmarksSetting::loadBookmark] Path is NULL or empty.");
        return;
    }
    if (si_loadMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_BookmarksSetting::loadBookmark] Error load_max:%d", si_loadMax);
        return;
    }
    TVNG_ifMemory([&] {
        QString path = *dir + bookmarkNames().file;
        si_maxCount_ = si_loadMax;
        deleteAllSetting();
        load(path);
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        changePaths(*this, *dir, makeThumbFilePath);
        si_lastNumber = lastNumber(*this);
        TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::loadBookmark] end");
    });
}

void TVNC_BookmarksSetting::saveBookmark(QString* dir, int si_saveMax)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::saveBookmark] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BookmarksSetting::saveBookmark] Path is NULL or empty.");
        return;
    }
    // Only tested: all bookmarks are written. Browsers that pass a small number here rely on losing none.
    if (si_saveMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_BookmarksSetting::saveBookmark] Error save_max:%d", si_saveMax);
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = *dir + bookmarkNames().file;
        TVNG_nameRoot(getXMLRootNode(), bookmarkNames().root);
        QString noDirectory;
        changePaths(*this, noDirectory, trimThumbFilePath);
        save(path);
        changePaths(*this, *dir, makeThumbFilePath);
        TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::saveBookmark] end");
    });
}

int TVNC_BookmarksSetting::getBookmarkCnt()
{
    return TVNG_ifMemory(0, [&] {
        return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), bookmarkNames().bookmark);
    });
}

bool TVNC_BookmarksSetting::setBookmark(TVNS_Bookmark* pc_bookmark)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::setBookmark]");
    return TVNG_ifMemory(false, [&] {
        if (!pc_bookmark || !TVNG_fitsUtf8(pc_bookmark->href, TVNG_URL_MAX_BYTES) ||
            !TVNG_fitsUtf8(pc_bookmark->thumbnail, TVNG_THUMBNAIL_PATH_MAX_BYTES))
            return false;
        TVNC_NewRecord record(*this, bookmarkNames().bookmark);
        if (!record.node()) {
            TVNG_DebugPrint(1, "[TVNC_BookmarksSetting::setBookmark] Failed to new TVNC_XMLNode.");
            return false;
        }
        const bool b_fits = TVNG_fitsUtf8(pc_bookmark->title, TVNG_TITLE_MAX_BYTES);
        record.addField(bookmarkNames().href, pc_bookmark->href, TVNG_CHARACTER_DATA);
        record.addField(bookmarkNames().title,
                        b_fits ? pc_bookmark->title : clipped(pc_bookmark->title, TVNG_TITLE_MAX_BYTES),
                        TVNG_CHARACTER_DATA);
        record.addField(bookmarkNames().thumbnail, pc_bookmark->thumbnail, TVNG_CHARACTER_DATA);
        record.keep();
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        return true;
    });
}

bool TVNC_BookmarksSetting::getBookmark(int si_id, TVNS_Bookmark* pc_out)
{
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_record = pc_out ? TVNG_recordByNumber(*this, si_id) : nullptr;
        if (!pc_record)
            return false;
        TVNC_XMLNode* const pc_title = childOf(pc_record, TITLE);
        TVNC_XMLNode* const pc_href = childOf(pc_record, HREF);
        TVNC_XMLNode* const pc_thumbnail = childOf(pc_record, THUMBNAIL);
        // A title over its limit is answered with true and no title: it gets empty here, not the caller's
        // own.
        TVNS_Bookmark bookmark;
        if (pc_title)
            copyTitle(*pc_title, bookmark.title);
        if (pc_href)
            bookmark.href = urlOf(*pc_href);
        if (pc_thumbnail)
            bookmark.thumbnail = thumbnailOf(*pc_thumbnail);
        if (pc_title)
            pc_out->title.swap(bookmark.title);
        if (pc_href)
            pc_out->href.swap(bookmark.href);
        if (pc_thumbnail)
            pc_out->thumbnail.swap(bookmark.thumbnail);
        return true;
    });
}

void TVNC_BookmarksSetting::deleteBookmark(int si_id)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:%d", si_id);
    TVNG_ifMemory([&] { TVNG_deleteRecord(*this, si_id); });
}

// --- The members of one bookmark --------------------------------------------------------------------------

bool TVNC_BookmarksSetting::getBookmarkTitle(int si_id, QString* pc_out)
{
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_title = pc_out ? getBookmarkChildNode(si_id, TITLE) : nullptr;
        if (!pc_title)
            return false;
        // True also when the title is withheld: browsers take false for a bookmark that is gone.
        copyTitle(*pc_title, *pc_out);
        return true;
    });
}

bool TVNC_BookmarksSetting::setBookmarkTitle(int si_id, QString* pc_title)
{
    TVNC_XMLNode* pc_node = pc_title ? getBookmarkChildNode(si_id, TITLE) : nullptr;
    if (!pc_node)
        return false;
    // Unlike setBookmark(), this neither checks nor cuts: files hold such titles, whole.
    pc_node->setText(*pc_title);
    return true;
}

bool TVNC_BookmarksSetting::getBookmarkURL(int si_id, QString* pc_out)
{
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_href = pc_out ? getBookmarkChildNode(si_id, HREF) : nullptr;
        if (!pc_href)
            return false;
        *pc_out = urlOf(*pc_href);
        return true;
    });
}

bool TVNC_BookmarksSetting::setBookmarkURL(int si_id, QString* pc_url)
{
    return TVNG_ifMemory(false, [&] {
        if (!pc_url || !TVNG_fitsUtf8(*pc_url, TVNG_URL_MAX_BYTES))
            return false;
        TVNC_XMLNode* pc_href = getBookmarkChildNode(si_id, HREF);
        if (!pc_href)
            return false;
        pc_href->setText(*pc_url);
        return true;
    });
}

bool TVNC_BookmarksSetting::getBookmarkThumbnailFilePath(int si_id, QString* pc_out)
{
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_thumbnail = pc_out ? getBookmarkChildNode(si_id, THUMBNAIL) : nullptr;
        if (!pc_thumbnail)
            return false;
        *pc_out = thumbnailOf(*pc_thumbnail);
        return true;
    });
}

bool TVNC_BookmarksSetting::setBookmarkThumbnailFilePath(int si_id, QString* pc_path)
{
    return TVNG_ifMemory(false, [&] {
        return pc_path && TVNG_fitsUtf8(*pc_path, TVNG_THUMBNAIL_PATH_MAX_BYTES) &&
               setThumbFilePath(getBookmarkChildNode(si_id, THUMBNAIL), *pc_path);
    });
}

TVNC_XMLNode* TVNC_BookmarksSetting::getBookmarkChildNode(int si_id, char c_which)
{
    return TVNG_ifMemory<TVNC_XMLNode*>(nullptr,
                                        [&] { return childOf(TVNG_recordByNumber(*this, si_id), c_which); });
}

QString TVNC_BookmarksSetting::ClipString(const QString& text, int si_maxBytes)
{
    return TVNG_ifMemory(QString(), [&] { return clipped(text, si_maxBytes); });
}

// --- Pictures ---------------------------------------------------------------------------------------------

bool TVNC_BookmarksSetting::setThumbnail(QImage* pc_image, QString* pc_path, int& si_number)
{
    if (!pc_image || !pc_path)
        return false;
    // Wraps around behind the largest number, as the device's compiler has it.
    si_number = static_cast<int>(static_cast<unsigned int>(si_number) + 1u);
    bool b_saved = false;
    TVNG_saveIfMemory([&] {
        char c_name[32];
        qsnprintf(c_name, sizeof c_name, THUMBNAIL_NAME, si_number);
        *pc_path += QLatin1String(c_name);
        // In place Qt opens the file itself, and removes what it could not finish.
        b_saved = TVNG_isSafeSave() ? savePictureWhole(*pc_image, *pc_path)
                                    : pc_image->save(*pc_path, THUMBNAIL_FORMAT, -1);
    });
    return b_saved;
}

bool TVNC_BookmarksSetting::getThumbnail(QImage* pc_image, QString* pc_path)
{
    return TVNG_ifMemory(false,
                         [&] { return pc_image && pc_path && pc_image->load(*pc_path, THUMBNAIL_FORMAT); });
}

bool TVNC_BookmarksSetting::deleteThumbnail(QString* pc_path)
{
    return TVNG_ifMemory(false, [&] { return pc_path && QFile::remove(*pc_path); });
}

TVNC_XMLNode* TVNC_BookmarksSetting::getThumbNode(int& si_index)
{
    return TVNG_ifMemory<TVNC_XMLNode*>(nullptr, [&] { return thumbnailNode(*this, si_index); });
}

QString TVNC_BookmarksSetting::getThumbFilePath(TVNC_XMLNode* pc_node)
{
    return TVNG_ifMemory(QString(), [&] { return pc_node ? thumbnailOf(*pc_node) : QString(); });
}

bool TVNC_BookmarksSetting::setThumbFilePath(TVNC_XMLNode* pc_node, QString& path)
{
    if (!pc_node)
        return false;
    pc_node->setText(path);
    return true;
}

int TVNC_BookmarksSetting::getLastNumber()
{
    return TVNG_ifMemory(0, [&] { return lastNumber(*this); });
}

void TVNC_BookmarksSetting::changeThumbFilePath(QString& dir,
                                                QString (*pc_rewrite)(QString& path, QString& dir))
{
    if (pc_rewrite)
        TVNG_ifMemory([&] { changePaths(*this, dir, pc_rewrite); });
}

void TVNC_BookmarksSetting::addThumbnailFilePath(QString* dir)
{
    if (dir)
        changeThumbFilePath(*dir, makeThumbFilePath);
}

void TVNC_BookmarksSetting::removeThumbnailFilePath()
{
    QString noDirectory;
    changeThumbFilePath(noDirectory, trimThumbFilePath);
}
