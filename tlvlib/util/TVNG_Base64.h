#ifndef TLVLIB_UTIL_TVNG_BASE64_H
#define TLVLIB_UTIL_TVNG_BASE64_H

/**
 * @file
 * Raw bytes in a document: base64 with the standard alphabet, without line breaks, "=" at its end. Internal
 * to the library; not installed.
 */

#include <QtCore/QByteArray>
#include <QtCore/QString>

inline QString TVNG_toBase64(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toBase64().constData());
}

/**
 * Decodes a text as QByteArray::fromBase64() does: whatever is no letter of the alphabet is skipped, "="
 * included, and bits that make no whole byte are dropped.
 *
 * @param bytes gets the decoded bytes, but stays as it is when they are more than @a si_maxBytes
 * @return whether @a bytes was set
 */
inline bool TVNG_fromBase64(const QString& text, int si_maxBytes, QByteArray& bytes)
{
    // Six bits a letter. One letter more than fit, and the bytes are too many: the length of a text that a
    // damaged or hostile file brings neither takes memory here nor reaches Qt, which computes with it as int.
    const int si_maxLetters = (si_maxBytes * 8 + 7) / 6;
    QByteArray letters;
    letters.reserve(qMin(static_cast<int>(text.size()), si_maxLetters));
    for (int i = 0; i < text.size(); ++i) {
        const ushort us_unit = text.at(i).unicode();
        const bool b_letter = (us_unit >= 'A' && us_unit <= 'Z') || (us_unit >= 'a' && us_unit <= 'z') ||
                              (us_unit >= '0' && us_unit <= '9') || us_unit == '+' || us_unit == '/';
        if (!b_letter)
            continue;
        if (letters.size() == si_maxLetters)
            return false;
        letters.append(static_cast<char>(us_unit));
    }
    bytes = QByteArray::fromBase64(letters);
    return true;
}

#endif
