#include <tlvlib/browser/HistoryModel.h>

namespace Tlv {

HistoryModel::HistoryModel(QObject* parent)
    : StoredModel({{"dateTime", tr("Time")}, {"title", tr("Title")}, {"url", tr("Address")}}, DefaultMaximum,
                  parent)
    , store_(*TVNC_HistorySetting::getInstance())
{
}

void HistoryModel::readStore(QString dir)
{
    store_.loadHistory(&dir, maximum());
}

void HistoryModel::writeStore(QString dir)
{
    store_.saveHistory(&dir, maximum());
}

int HistoryModel::find(const QString& url) const
{
    return findRecord({{UrlColumn, url}});
}

void HistoryModel::visit(const QString& url, const QString& title, const QDateTime& time)
{
    TVNS_History visit;
    visit.url = url;
    visit.title = title;
    visit.dateTime = time;
    const int earlier = find(url);
    if (earlier >= 0) {
        store_.deleteHistory(earlier);
        store_.setHistory(&visit);
        recordMovedToFront(earlier);
    } else {
        // What the store's updateHistory() does, in steps that can be told one by one.
        if (count() >= maximum())
            remove(maximum() - 1);
        store_.setHistory(&visit);
        recordPrepended();
    }
    Q_EMIT changed();
}

void HistoryModel::setTitle(const QString& url, const QString& title)
{
    const int row = find(url);
    if (row < 0 || field(row, TitleColumn) == title)
        return;
    QString text = title;
    store_.changeHistoryTitle(row, text);
    recordChanged(row);
    Q_EMIT changed();
}

int HistoryModel::storedCount() const
{
    return store_.getHistoryCnt();
}

QVariantList HistoryModel::storedRecord(int row) const
{
    TVNS_History visit; // a new one each time: what a record lacks stays as it was
    store_.getHistory(row, &visit);
    return {visit.dateTime, visit.title, visit.url};
}

void HistoryModel::removeStored(int row)
{
    store_.deleteHistory(row);
}

QVariant HistoryModel::shown(int column, const QVariant& value) const
{
    if (column != TimeColumn)
        return value;
    // Date and time apart: a time that a change to daylight saving skips is none for Qt, but was on the
    // clock.
    const QDateTime time = value.toDateTime();
    return QString(time.date().toString(QLatin1String("yyyy-MM-dd")) + QLatin1Char(' ') +
                   time.time().toString(QLatin1String("hh:mm")))
        .trimmed();
}

} // namespace Tlv
