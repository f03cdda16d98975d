#include "tlvlib/stores/TVNC_BookmarksSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_digits.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
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
    QString file = QEXC_TextCodec::fromSJIS("bookmark.xml");
    QString thumbnailDirectory = QEXC_TextCodec::fromSJIS("thumbnail/");
    QString aboutBlank = QEXC_TextCodec::fromSJIS("about:blank");
    QString root = QEXC_TextCodec::fromSJIS("bookmarks");
    QString bookmark = QEXC_TextCodec::fromSJIS("bookmark");
    QString title = QEXC_TextCodec::fromSJIS("title");
    QString href = QEXC_TextCodec::fromSJIS("href");
    QString thumbnail = QEXC_TextCodec::fromSJIS("thumbnail");
};

BookmarkNames& bookmarkNames()
{
    return TVNG_immortal<BookmarkNames>();
}

/// What getBookmarkChildNode() selects.
const char TITLE = 0;
const char HREF = 1;
const char THUMBNAIL = 2;

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

/// The title; none where it is over its limit.
QString titleOf(TVNC_XMLNode& title)
{
    return TVNG_fitsUtf8(title.getText(), TVNG_TITLE_MAX_BYTES) ? title.getText() : QString();
}

QString urlOf(TVNC_XMLNode& href)
{
    return TVNG_fitsUtf8(href.getText(), TVNG_URL_MAX_BYTES) ? href.getText() : bookmarkNames().aboutBlank;
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

/// The number in the name of a picture; 0 when there is none.
int numberOf(const QString& path)
{
    const int si_from = qMax(0, static_cast<int>(path.size()) - THUMBNAIL_NAME_LENGTH);
    const int si_count = static_cast<int>(path.size()) - si_from - THUMBNAIL_EXTENSION_LENGTH;
    // The names that this store makes take no memory here. Qt reads whatever else is a number.
    const int si_number = TVNG_digits(path.constData() + si_from, si_count);
    return si_number >= 0 ? si_number : path.mid(si_from, si_count).toInt();
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
    si_maxCount_ = si_loadMax;
    deleteAllSetting();
    QString path = *dir + bookmarkNames().file;
    load(path);
    setIDforChildren(TVNC_RecordNumbers::attributeName());
    addThumbnailFilePath(dir);
    si_lastNumber = getLastNumber();
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::loadBookmark] end");
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
    TVNG_nameRoot(getXMLRootNode(), bookmarkNames().root);
    removeThumbnailFilePath();
    QString path = *dir + bookmarkNames().file;
    save(path);
    addThumbnailFilePath(dir);
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::saveBookmark] end");
}

int TVNC_BookmarksSetting::getBookmarkCnt()
{
    return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), bookmarkNames().bookmark);
}

bool TVNC_BookmarksSetting::setBookmark(TVNS_Bookmark* pc_bookmark)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::setBookmark]");
    if (!pc_bookmark || !TVNG_fitsUtf8(pc_bookmark->href, TVNG_URL_MAX_BYTES) ||
        !TVNG_fitsUtf8(pc_bookmark->thumbnail, TVNG_THUMBNAIL_PATH_MAX_BYTES))
        return false;
    TVNC_XMLNode* pc_record = TVNG_addRecord(*this, bookmarkNames().bookmark, 1);
    if (!pc_record) {
        TVNG_DebugPrint(1, "[TVNC_BookmarksSetting::setBookmark] Failed to new TVNC_XMLNode.");
        return false;
    }
    const bool b_fits = TVNG_fitsUtf8(pc_bookmark->title, TVNG_TITLE_MAX_BYTES);
    TVNG_addField(*this, pc_record, bookmarkNames().href, pc_bookmark->href, TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_record, bookmarkNames().title,
                  b_fits ? pc_bookmark->title : ClipString(pc_bookmark->title, TVNG_TITLE_MAX_BYTES),
                  TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_record, bookmarkNames().thumbnail, pc_bookmark->thumbnail, TVNG_CHARACTER_DATA);
    TVNG_releaseDetached(pc_record);
    setIDforChildren(TVNC_RecordNumbers::attributeName());
    return true;
}

bool TVNC_BookmarksSetting::getBookmark(int si_id, TVNS_Bookmark* pc_out)
{
    TVNC_XMLNode* pc_record = pc_out ? TVNG_recordByNumber(*this, si_id) : nullptr;
    if (!pc_record)
        return false;
    // A title over its limit is answered with true and no title: it gets empty here, not the caller's own.
    if (TVNC_XMLNode* pc_title = childOf(pc_record, TITLE))
        pc_out->title = titleOf(*pc_title);
    if (TVNC_XMLNode* pc_href = childOf(pc_record, HREF))
        pc_out->href = urlOf(*pc_href);
    if (TVNC_XMLNode* pc_thumbnail = childOf(pc_record, THUMBNAIL))
        pc_out->thumbnail = getThumbFilePath(pc_thumbnail);
    return true;
}

void TVNC_BookmarksSetting::deleteBookmark(int si_id)
{
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::deleteBookmark] si_nodeNum:%d", si_id);
    deleteXMLNodeByID(si_id, TVNC_RecordNumbers::attributeName());
    setIDforChildren(TVNC_RecordNumbers::attributeName());
}

// --- The members of one bookmark --------------------------------------------------------------------------

bool TVNC_BookmarksSetting::getBookmarkTitle(int si_id, QString* pc_out)
{
    TVNC_XMLNode* pc_title = pc_out ? getBookmarkChildNode(si_id, TITLE) : nullptr;
    if (!pc_title)
        return false;
    // True also when the title is withheld: browsers take false for a bookmark that is gone.
    if (TVNG_fitsUtf8(pc_title->getText(), TVNG_TITLE_MAX_BYTES))
        *pc_out = pc_title->getText();
    return true;
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
    TVNC_XMLNode* pc_href = pc_out ? getBookmarkChildNode(si_id, HREF) : nullptr;
    if (!pc_href)
        return false;
    *pc_out = urlOf(*pc_href);
    return true;
}

bool TVNC_BookmarksSetting::setBookmarkURL(int si_id, QString* pc_url)
{
    if (!pc_url || !TVNG_fitsUtf8(*pc_url, TVNG_URL_MAX_BYTES))
        return false;
    TVNC_XMLNode* pc_href = getBookmarkChildNode(si_id, HREF);
    if (!pc_href)
        return false;
    pc_href->setText(*pc_url);
    return true;
}

bool TVNC_BookmarksSetting::getBookmarkThumbnailFilePath(int si_id, QString* pc_out)
{
    TVNC_XMLNode* pc_thumbnail = pc_out ? getBookmarkChildNode(si_id, THUMBNAIL) : nullptr;
    if (!pc_thumbnail)
        return false;
    *pc_out = getThumbFilePath(pc_thumbnail);
    return true;
}

bool TVNC_BookmarksSetting::setBookmarkThumbnailFilePath(int si_id, QString* pc_path)
{
    if (!pc_path || !TVNG_fitsUtf8(*pc_path, TVNG_THUMBNAIL_PATH_MAX_BYTES))
        return false;
    return setThumbFilePath(getBookmarkChildNode(si_id, THUMBNAIL), *pc_path);
}

TVNC_XMLNode* TVNC_BookmarksSetting::getBookmarkChildNode(int si_id, char c_which)
{
    return childOf(TVNG_recordByNumber(*this, si_id), c_which);
}

QString TVNC_BookmarksSetting::ClipString(const QString& text, int si_maxBytes)
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

// --- Pictures ---------------------------------------------------------------------------------------------

bool TVNC_BookmarksSetting::setThumbnail(QImage* pc_image, QString* pc_path, int& si_number)
{
    if (!pc_image || !pc_path)
        return false;
    // Wraps around behind the largest number, as the device's compiler has it.
    si_number = static_cast<int>(static_cast<unsigned int>(si_number) + 1u);
    char c_name[32];
    qsnprintf(c_name, sizeof c_name, THUMBNAIL_NAME, si_number);
    *pc_path += QLatin1String(c_name);
    // In place Qt opens the file itself, and removes what it could not finish.
    return TVNG_isSafeSave() ? savePictureWhole(*pc_image, *pc_path)
                             : pc_image->save(*pc_path, THUMBNAIL_FORMAT, -1);
}

bool TVNC_BookmarksSetting::getThumbnail(QImage* pc_image, QString* pc_path)
{
    return pc_image && pc_path && pc_image->load(*pc_path, THUMBNAIL_FORMAT);
}

bool TVNC_BookmarksSetting::deleteThumbnail(QString* pc_path)
{
    return pc_path && QFile::remove(*pc_path);
}

TVNC_XMLNode* TVNC_BookmarksSetting::getThumbNode(int& si_index)
{
    TVNC_XMLNode* pc_root = getXMLRootNode();
    TVNC_XMLNode* pc_record = pc_root ? pc_root->getChildByName(bookmarkNames().bookmark, si_index) : nullptr;
    return pc_record ? pc_record->getXMLNodeChildByName(bookmarkNames().thumbnail) : nullptr;
}

QString TVNC_BookmarksSetting::getThumbFilePath(TVNC_XMLNode* pc_node)
{
    if (!pc_node || !TVNG_fitsUtf8(pc_node->getText(), TVNG_THUMBNAIL_PATH_MAX_BYTES))
        return QString();
    return pc_node->getText();
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
    int si_last = 0;
    const int si_count = getXMLNodeCnt();
    for (int i = 0; i < si_count; ++i) {
        TVNC_XMLNode* pc_thumbnail = getThumbNode(i);
        if (!pc_thumbnail)
            break;
        si_last = qMax(si_last, numberOf(getThumbFilePath(pc_thumbnail)));
    }
    TVNG_DebugPrint(3, "[TVNC_BookmarksSetting::getLastNumber] last number:%d", si_last);
    return si_last;
}

void TVNC_BookmarksSetting::changeThumbFilePath(QString& dir,
                                                QString (*pc_rewrite)(QString& path, QString& dir))
{
    if (!pc_rewrite)
        return;
    const int si_count = getXMLNodeCnt();
    for (int i = 0; i < si_count; ++i) {
        TVNC_XMLNode* pc_thumbnail = getThumbNode(i);
        // A bookmark without the element ends the walk, and those behind it keep their texts. Files with such
        // bookmarks hold whole paths behind them, which would be joined to the directory a second time.
        if (!pc_thumbnail)
            return;
        QString path = getThumbFilePath(pc_thumbnail);
        QString rewritten = pc_rewrite(path, dir);
        setThumbFilePath(pc_thumbnail, rewritten);
    }
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
