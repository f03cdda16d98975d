#include "tlvlib/util/TVNG_ClockTime.h"

#include "tlvlib/util/TVNG_digits.h"

namespace {

/// Whether a text has the length of a format, and its separators.
bool hasForm(const QString& text, const QString& format)
{
    if (text.size() != format.size())
        return false;
    for (int i = 0; i < format.size(); ++i) {
        if (!format.at(i).isLetter() && text.at(i) != format.at(i))
            return false;
    }
    return true;
}

} // namespace

bool TVNG_clockParts(const QString& text, const QString& format, QDate& date, QTime& time)
{
    if (!hasForm(text, format))
        return false;
    const QChar* const pc_text = text.constData();
    const int si_year = TVNG_digits(pc_text, 4);
    date = QDate(si_year, TVNG_digits(pc_text + 5, 2), TVNG_digits(pc_text + 8, 2));
    const int si_second = text.size() > 16 ? TVNG_digits(pc_text + 17, 2) : 0;
    time = QTime(TVNG_digits(pc_text + 11, 2), TVNG_digits(pc_text + 14, 2), si_second);
    // Every version of Qt reads these years alike. Callers leave all others to Qt.
    return si_year >= 1000 && si_year <= 7999 && date.isValid() && time.isValid();
}

QString TVNG_clockText(const QDateTime& dateTime, const QString& format)
{
    const QDate date = dateTime.date();
    const QTime time = dateTime.time();
    // Qt takes a hundred times as long for the same text.
    if (date.isValid() && time.isValid() && date.year() >= 1000 && date.year() <= 7999) {
        QString text = format;
        QChar* const pc_text = text.data();
        TVNG_putDigits(pc_text, 4, date.year());
        TVNG_putDigits(pc_text + 5, 2, date.month());
        TVNG_putDigits(pc_text + 8, 2, date.day());
        TVNG_putDigits(pc_text + 11, 2, time.hour());
        TVNG_putDigits(pc_text + 14, 2, time.minute());
        if (text.size() > 16)
            TVNG_putDigits(pc_text + 17, 2, time.second());
        return text;
    }
    // A session cookie has such a date. Qt would make its calendars first, and end the program without
    // memory.
    if (!date.isValid())
        return QString();
    // In UTC no time is skipped: asked for its text itself, a QDateTime of Qt 5 with a skipped time has none.
    return QDateTime(date, time, Qt::UTC).toString(format);
}

QDateTime TVNG_clockTime(const QString& text, const QString& format)
{
    // Plain texts are read here, because Qt 5's fromString() refuses the times that a daylight-saving change
    // skips (and takes its time over the others).
    QDate date;
    QTime time;
    if (TVNG_clockParts(text, format, date, time))
        return QDateTime(date, time);
    return QDateTime::fromString(text, format);
}
