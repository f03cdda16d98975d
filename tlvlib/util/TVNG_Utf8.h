#ifndef TLVLIB_UTIL_TVNG_UTF8_H
#define TLVLIB_UTIL_TVNG_UTF8_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Whether a text is at most @a si_maxBytes long in UTF-8, the measure of every limit on texts.
 * Internal to the library; not installed.
 */
inline bool TVNG_fitsUtf8(const QString& text, int si_maxBytes)
{
    // No UTF-16 unit takes more than three bytes, so that most texts need not be encoded to be measured.
    return text.size() <= si_maxBytes / 3 || text.toUtf8().size() <= si_maxBytes;
}

#endif
