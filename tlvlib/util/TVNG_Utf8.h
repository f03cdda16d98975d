#ifndef TLVLIB_UTIL_TVNG_UTF8_H
#define TLVLIB_UTIL_TVNG_UTF8_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Whether a text is at most @a si_maxBytes long in UTF-8 as toUtf8() of this Qt makes it, the measure of
 * every limit on texts. Internal to the library; not installed.
 */
inline bool TVNG_fitsUtf8(const QString& text, int si_maxBytes)
{
    // A UTF-16 unit takes at most three bytes, so most texts need not be counted.
    if (text.size() <= si_maxBytes / 3)
        return true;
    // The device's Qt writes one byte for a pair of surrogates that is a noncharacter. No two units take
    // less.
    if (text.size() / 2 > si_maxBytes)
        return false;
    int si_bytes = 0;
    for (int i = 0; i < text.size(); ++i) {
        const ushort us_unit = text.at(i).unicode();
        // Among these are surrogates and noncharacters. How many bytes they take depends on the version of
        // Qt.
        if (us_unit >= 0xD800)
            return text.toUtf8().size() <= si_maxBytes;
        si_bytes += us_unit < 0x80 ? 1 : us_unit < 0x800 ? 2 : 3;
    }
    return si_bytes <= si_maxBytes;
}

#endif
