#ifndef TLVLIB_FORMAT_TVNC_BYTEKINDS_H
#define TLVLIB_FORMAT_TVNC_BYTEKINDS_H

#include "tlvlib/format/TVNG_documentForm.h"

#include <QtCore/QChar>

/**
 * Tells of each byte in which parts of a document it may stand, whatever stands around it. A zero is of no
 * kind, so that one behind the last byte of a buffer ends every scan. Internal to the library; not installed.
 */
class TVNC_ByteKinds
{
public:
    enum Kind {
        BLANK = 1,       ///< but for the carriage return, which a parser turns into a line feed
        IN_TEXT = 2,     ///< ASCII, and not '<', '&' or '>'
        IN_CDATA = 4,    ///< ASCII, and not ']'
        IN_VALUE = 8,    ///< ASCII, no line break and no tab, and not '"', '<' or '&'
        NAME_START = 16, ///< of a name
        IN_NAME = 32,
        UNESCAPED = 64, ///< what a writer writes as it is in texts and values: IN_VALUE, and not '>'
    };

    TVNC_ByteKinds()
    {
        for (int i = 0; i < 256; ++i) {
            const unsigned int ul_byte = static_cast<unsigned int>(i);
            const bool b_blank = TVNG_isBlank(ul_byte) && i != '\r';
            const bool b_printable = i >= 0x20 && i < 0x80;
            const bool b_markup = i == '<' || i == '&';
            const bool b_inText = (b_printable || b_blank) && !b_markup && i != '>';
            const bool b_inCdata = (b_printable || b_blank) && i != ']';
            const bool b_inValue = b_printable && !b_markup && i != '"';
            uc_kinds_[i] = static_cast<uchar>(
                (b_blank ? BLANK : 0) | (b_inText ? IN_TEXT : 0) | (b_inCdata ? IN_CDATA : 0) |
                (b_inValue ? IN_VALUE : 0) | (TVNG_isNameStart(ul_byte) ? NAME_START : 0) |
                (TVNG_isNameCharacter(ul_byte) ? IN_NAME : 0) | (b_inValue && i != '>' ? UNESCAPED : 0));
        }
    }

    bool is(char c_byte, Kind kind) const { return (uc_kinds_[static_cast<uchar>(c_byte)] & kind) != 0; }

    /// The same for a character. Only ASCII is of any kind.
    bool is(QChar character, Kind kind) const
    {
        return character.unicode() < 0x80 && (uc_kinds_[character.unicode()] & kind) != 0;
    }

    /// The first byte that is not of a kind.
    const char* skip(const char* pc_bytes, Kind kind) const
    {
        while (is(*pc_bytes, kind))
            ++pc_bytes;
        return pc_bytes;
    }

private:
    uchar uc_kinds_[256];
};

#endif
