#ifndef TLVLIB_UTIL_TVNG_DIGITS_H
#define TLVLIB_UTIL_TVNG_DIGITS_H

#include <QtCore/QChar>

/**
 * The number in a run of at most nine ASCII digits; -1 when another character stands among them. Takes
 * neither memory nor a locale. Internal to the library; not installed.
 */
inline int TVNG_digits(const QChar* pc_text, int si_count)
{
    int si_number = 0;
    for (int i = 0; i < si_count; ++i) {
        const int si_digit = pc_text[i].unicode() - '0';
        if (si_digit < 0 || si_digit > 9)
            return -1;
        si_number = si_number * 10 + si_digit;
    }
    return si_number;
}

#endif
