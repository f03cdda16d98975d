#include "bench/Records.h"

#include <QtCore/QDateTime>

const Format BOOKMARKS{"bookmark.xml", "bookmarks", "bookmark", {"href", "title", "thumbnail"}};
const Format HISTORY{"visit.xml", "history", "pageInfo", {"title", "url", "dateTime"}};
const Format FONTS{"fontlist.xml", "fontlist", "font", {}};

namespace {

QString urlOf(int i)
{
    return QString("http://www.example.com/section%1/page?id=%2&from=list").arg(i % 7).arg(i * 37 % 1000);
}

QString titleOf(int i)
{
    return i % 5 == 0 ? QString::fromUtf8("天気予報と交通情報 %1").arg(i)
                      : QString("The news of the day, page %1").arg(i);
}

} // namespace

Records sampleRecords(const Format& format, int count)
{
    Records records;
    const QDateTime start(QDate(2011, 4, 12), QTime(10, 15));
    for (int i = 0; i < count; ++i) {
        if (&format == &BOOKMARKS)
            records.push_back({urlOf(i), titleOf(i), QString("%1.PNG").arg(i + 1, 6, 10, QChar('0'))});
        else if (&format == &HISTORY)
            records.push_back({titleOf(i), urlOf(i),
                               start.addSecs(-60 * 7 * (i * 611 % count)).toString("yyyy/MM/dd hh:mm")});
        else
            records.push_back({QString("Family number %1 Sans").arg(i)});
    }
    return records;
}

QString numberOf(int position)
{
    return QString("%1").arg(position, 3, 10, QChar('0'));
}
