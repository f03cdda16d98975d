#ifndef TLVLIB_UTIL_TVNG_CLOCKTIME_H
#define TLVLIB_UTIL_TVNG_CLOCKTIME_H

#include <QtCore/QDateTime>
#include <QtCore/QString>

/**
 * @file
 * Times in documents: as a clock showed them, without a zone. A time that a daylight-saving change skips is
 * valid on the device's Qt 4 and invalid on Qt 5; here it keeps its text on both. Internal to the library;
 * not installed.
 */

/**
 * The date and the time of day in a plain text, without what a time zone would make of them.
 *
 * @return false for a text of any other form; TVNG_clockTime() tells what it means, if anything
 */
bool TVNG_clockParts(const QString& text, const QString& format, QDate& date, QTime& time);

/// The text of a time as it stands, whatever its zone; empty without a valid date and time.
QString TVNG_clockText(const QDateTime& dateTime, const QString& format);

/**
 * Reads what TVNG_clockText() writes, as a local time. A skipped time is not valid on Qt 5, but date() and
 * time() tell it. Texts of any other form are not valid.
 *
 * @param format "yyyy/MM/dd hh:mm", or the same with ":ss" behind it
 */
QDateTime TVNG_clockTime(const QString& text, const QString& format);

#endif
