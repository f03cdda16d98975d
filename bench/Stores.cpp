#include "bench/Stores.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

namespace {

const int MAX = 999;

TVNC_BookmarksSetting& bookmarks()
{
    return *TVNC_BookmarksSetting::getInstance();
}

TVNC_HistorySetting& history()
{
    return *TVNC_HistorySetting::getInstance();
}

TVNC_FontListSetting& fonts()
{
    return *TVNC_FontListSetting::getInstance();
}

} // namespace

void release()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // Takes what was delivered out of Qt's list, as an event loop does. The call above leaves it there, and
    // goes through all of it the next time.
    QCoreApplication::sendPostedEvents();
}

void fillStore(const Format& format, QString dir, const Records& records)
{
    loadStore(format, dir);
    bookmarks().deleteAllSetting();
    history().deleteAllSetting();
    fonts().deleteAllSetting();
    for (size_t i = records.size(); i > 0; --i) {
        const Record& record = records[i - 1];
        if (&format == &BOOKMARKS) {
            TVNS_Bookmark bookmark{record[1], record[0], dir + "thumbnail/" + record[2]};
            bookmarks().setBookmark(&bookmark);
        } else if (&format == &HISTORY) {
            TVNS_History visit;
            visit.title = record[0];
            visit.url = record[1];
            visit.dateTime = QDateTime::fromString(record[2], "yyyy/MM/dd hh:mm");
            history().setHistory(&visit);
        }
    }
    if (&format == &FONTS) {
        for (const Record& record : records)
            fonts().addFont(record[0]);
    }
    saveStore(format, dir);
    release();
}

void loadStore(const Format& format, QString dir)
{
    int lastNumber = 0;
    if (&format == &BOOKMARKS)
        bookmarks().loadBookmark(&dir, MAX, lastNumber);
    else if (&format == &HISTORY)
        history().loadHistory(&dir, MAX);
    else
        fonts().loadFontList(dir);
}

void emptyStore(const Format& format)
{
    if (&format == &BOOKMARKS)
        bookmarks().deleteAllSetting();
    else if (&format == &HISTORY)
        history().deleteAllSetting();
    else
        fonts().deleteAllSetting();
    release();
}

void saveStore(const Format& format, QString dir)
{
    if (&format == &BOOKMARKS)
        bookmarks().saveBookmark(&dir, MAX);
    else if (&format == &HISTORY)
        history().saveHistory(&dir, MAX);
    else
        fonts().saveFontList(dir);
}

Records recordsOfStore(const Format& format)
{
    Records records;
    if (&format == &BOOKMARKS) {
        const int count = bookmarks().getBookmarkCnt();
        records.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) {
            TVNS_Bookmark bookmark;
            bookmarks().getBookmark(i, &bookmark);
            records.push_back({bookmark.href, bookmark.title, bookmark.thumbnail});
        }
    } else if (&format == &HISTORY) {
        const int count = history().getHistoryCnt();
        records.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) {
            TVNS_History visit;
            history().getHistory(i, &visit);
            records.push_back({visit.title, visit.url});
        }
    } else {
        const int count = fonts().getCount();
        records.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i)
            records.push_back({fonts().getFont(i)});
    }
    return records;
}
