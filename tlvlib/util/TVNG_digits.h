#ifndef TLVLIB_UTIL_TVNG_DIGITS_H
#define TLVLIB_UTIL_TVNG_DIGITS_H

#include <QtCore/QChar>

/**
 * @file
 * Numbers in runs of ASCII digits, without memory or a locale. Internal to the library; not installed.
 */

inline int TVNG_codeOf(char c_character)
{
    return static_cast<unsigned char>(c_character);
}

inline int TVNG_codeOf(QChar character)
{
    return character.unicode();
}

/// The number in a run of at most nine digits; -1 when another character stands among them.
template <typename Character>
int TVNG_digits(const Character* pc_text, int si_count)
{
    int si_number = 0;
    for (int i = 0; i < si_count; ++i) {
        const int si_digit = TVNG_codeOf(pc_text[i]) - '0';
        if (si_digit < 0 || si_digit > 9)
            return -1;
        si_number = si_number * 10 + si_digit;
    }
    return si_number;
}

/// Writes the last digits of a number that is not negative, zeros in front included.
inline void TVNG_putDigits(QChar* pc_text, int si_count, int si_number)
{
    for (int i = si_count - 1; i >= 0; --i) {
        pc_text[i] = QLatin1Char(static_cast<char>('0' + si_number % 10));
        si_number /= 10;
    }
}

#endif
