#ifndef TLVLIB_UTIL_TVNG_QTVERSION_H
#define TLVLIB_UTIL_TVNG_QTVERSION_H

/**
 * Where the supported versions of Qt differ, and every such difference: no other file of the library tests
 * QT_VERSION. Internal to the library; not installed.
 *
 * The device runs Qt 4.8, a desk Qt 5.15. Each difference below changes data silently when it is missed.
 */

#include <QtCore/QDateTime>
#include <QtCore/QString>

/**
 * The text of zero-terminated bytes, read the way the device reads C strings: with the codec set by
 * QTextCodec::setCodecForCStrings() where Qt still has that setting and it is set, as Latin-1 otherwise.
 * (Qt 5 and later would read UTF-8 where Qt 4 read Latin-1.) A null pointer gives a null string.
 */
inline QString TVNG_fromCString(const char* pc_text)
{
#if QT_VERSION < 0x050000
    return QString::fromAscii(pc_text);
#else
    return QString::fromLatin1(pc_text);
#endif
}

/**
 * Whether Qt's own UTF-8 decoder takes the noncharacters of Unicode (U+FDD0 to U+FDEF and the last two code
 * points of every plane) for an encoding error. Qt 4 does, and gives up on the whole buffer that holds one.
 */
inline bool TVNG_decoderRefusesNoncharacters()
{
#if QT_VERSION < 0x050000
    return true;
#else
    return false;
#endif
}

/**
 * A string of its own from the text that a stream reader's reference points at (a QStringRef, in Qt 6 a
 * QStringView). Never toString(): since Qt 5 that may share the reader's token buffer, which keeps the
 * capacity of the longest token read so far.
 */
template <typename Reference>
inline QString TVNG_copyOf(const Reference& reference)
{
    return QString(reference.data(), static_cast<int>(reference.size()));
}

/**
 * The low 32 bits of an address, for the "0x%X" of the log texts: an address has 64 bits on a desk, and the
 * texts are the device's.
 */
inline unsigned int TVNG_low32(const void* pc_object)
{
    return static_cast<unsigned int>(reinterpret_cast<quintptr>(pc_object));
}

/**
 * Whether a time is later than another, by the device's rule: two local times are compared as they stand on
 * the clock, and a time without a date is earlier than any with one. (Qt 5 would convert local times first,
 * take those that a daylight-saving change skips for others, place those that it repeats by chance, and a
 * time without a date at the beginning of 1970.)
 */
inline bool TVNG_isLater(const QDateTime& dateTime, const QDateTime& other)
{
#if QT_VERSION >= 0x050000
    if (dateTime.timeSpec() == Qt::LocalTime && other.timeSpec() == Qt::LocalTime) {
        if (dateTime.date() != other.date())
            return dateTime.date() > other.date();
        return dateTime.time() > other.time();
    }
#endif
    return dateTime > other;
}

/**
 * A local time that Qt's own classes accept, wherever the device's Qt accepts it: Qt 5 calls the times that a
 * daylight-saving change skips invalid, which would make a cookie one without expiry. They are taken by the
 * clock that was in force before the change. Every other time is given back as it is.
 */
inline QDateTime TVNG_acceptedTime(const QDateTime& dateTime)
{
#if QT_VERSION >= 0x050000
    if (!dateTime.isValid() && dateTime.date().isValid() && dateTime.time().isValid()) {
        const int si_offset = QDateTime(dateTime.date().addDays(-1), dateTime.time()).offsetFromUtc();
        return QDateTime(dateTime.date(), dateTime.time(), Qt::UTC).addSecs(-si_offset).toLocalTime();
    }
#endif
    return dateTime;
}

#endif
