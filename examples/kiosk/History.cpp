#include "History.h"

History::History(const Profile& profile)
    : store_(*TVNC_HistorySetting::getInstance()), profile_(profile), saving_({[this] { save(); }})
{
}

void History::load()
{
    store_.loadHistory(&profile_.user, HISTORY_MAX);
}

void History::save()
{
    store_.saveHistory(&profile_.user, HISTORY_MAX);
}

void History::visit(const QString& url, const QString& title)
{
    TVNS_History visit;
    visit.url = url;
    visit.title = title;
    visit.dateTime = QDateTime::currentDateTime();
    const int earlier = store_.getHistoryIndex(visit.url);
    if (earlier >= 0)
        store_.deleteHistory(earlier);
    store_.updateHistory(&visit); // the oldest goes when the list is full
    changeAndSave();
}

void History::setTitle(const QString& url, const QString& title)
{
    QString address = url;
    const int position = store_.getHistoryIndex(address);
    if (position < 0)
        return;
    QString text = title;
    store_.changeHistoryTitle(position, text);
    changeAndSave();
}

QList<TVNS_History> History::visits(const QString& text) const
{
    QList<TVNS_History> found;
    const int count = store_.getHistoryCnt();
    for (int i = 0; i < count; ++i) {
        TVNS_History visit; // a new one each time: what a record lacks stays as it was
        store_.getHistory(i, &visit);
        if (visit.title.contains(text, Qt::CaseInsensitive) || visit.url.contains(text, Qt::CaseInsensitive))
            found.append(visit);
    }
    return found;
}

void History::clear()
{
    store_.deleteAllSetting();
    changeAndSave();
}

void History::changeAndSave()
{
    saving_.schedule();
    emit changed();
}
