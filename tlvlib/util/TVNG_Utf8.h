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
    // No UTF-16 unit takes more than three bytes, and none less than one, so that most texts need not be
    // counted.
    if (text.size() <= si_maxBytes / 3)
        return true;
    if (text.size() > si_maxBytes)
        return false;
    int si_bytes = 0;
    for (int i = 0; i < text.size(); ++i) {
        const ushort us_unit = text.at(i).unicode();
        if (us_unit >= 0xD800 && us_unit <= 0xDFFF) // what halves of pairs become is Qt's to say
            return text.toUtf8().size() <= si_maxBytes;
        si_bytes += us_unit < 0x80 ? 1 : us_unit < 0x800 ? 2 : 3;
    }
    return si_bytes <= si_maxBytes;
}

#endif
