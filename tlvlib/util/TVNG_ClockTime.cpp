#include "tlvlib/util/TVNG_ClockTime.h"

namespace {

/// The number in a run of decimal digits; -1 when another character stands among them.
int digitsAt(const QString& text, int si_from, int si_count)
{
    int si_number = 0;
    for (int i = si_from; i < si_from + si_count; ++i) {
        const int si_digit = text.at(i).unicode() - '0';
        if (si_digit < 0 || si_digit > 9)
            return -1;
        si_number = si_number * 10 + si_digit;
    }
    return si_number;
}

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

QString TVNG_clockText(const QDateTime& dateTime, const QString& format)
{
    // In UTC no time is skipped: asked for its text itself, a QDateTime of Qt 5 with a skipped time has none.
    return QDateTime(dateTime.date(), dateTime.time(), Qt::UTC).toString(format);
}

QDateTime TVNG_clockTime(const QString& text, const QString& format)
{
    // Plain texts are read here, because Qt 5's fromString() refuses the times that a daylight-saving change
    // skips (and takes its time over the others). Years outside the range that every Qt reads, and every
    // other text, have what meaning Qt gives them.
    if (hasForm(text, format)) {
        const int si_year = digitsAt(text, 0, 4);
        const QDate date(si_year, digitsAt(text, 5, 2), digitsAt(text, 8, 2));
        const int si_second = text.size() > 16 ? digitsAt(text, 17, 2) : 0;
        const QTime time(digitsAt(text, 11, 2), digitsAt(text, 14, 2), si_second);
        if (si_year >= 1000 && si_year <= 7999 && date.isValid() && time.isValid())
            return QDateTime(date, time);
    }
    return QDateTime::fromString(text, format);
}
