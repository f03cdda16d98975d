#include "tlvlib/xml/TVNC_XMLCharacters.h"

#include <cstring>

namespace {

/// Of the characters of one UTF-16 unit that are no surrogates.
bool isXMLCharacter(ushort us_unit)
{
    if (us_unit < 0x20)
        return us_unit == '\t' || us_unit == '\n' || us_unit == '\r';
    return us_unit < 0xFFFE;
}

/// Whether eight bytes are plain characters that need no closer look: no control characters, all ASCII.
bool arePlain(const char* pc_bytes)
{
    quint64 word;
    std::memcpy(&word, pc_bytes, sizeof word);
    const quint64 high = Q_UINT64_C(0x8080808080808080);
    return ((word | ((word - Q_UINT64_C(0x2020202020202020)) & ~word)) & high) == 0;
}

/**
 * The length in bytes of the UTF-8 sequence at @a pc_bytes, of which @a si_size bytes are there; 0 when it is
 * none (overlong forms, surrogates and values above U+10FFFF are none), -1 when it may be one but is cut off.
 */
int sequenceLength(const uchar* pc_bytes, int si_size)
{
    const uchar c_lead = pc_bytes[0];
    int si_length;
    uchar c_min = 0x80; // bounds of the second byte
    uchar c_max = 0xBF;
    if (c_lead < 0x80) {
        return 1;
    } else if (c_lead >= 0xC2 && c_lead <= 0xDF) {
        si_length = 2;
    } else if (c_lead >= 0xE0 && c_lead <= 0xEF) {
        si_length = 3;
        if (c_lead == 0xE0)
            c_min = 0xA0;
        else if (c_lead == 0xED)
            c_max = 0x9F;
    } else if (c_lead >= 0xF0 && c_lead <= 0xF4) {
        si_length = 4;
        if (c_lead == 0xF0)
            c_min = 0x90;
        else if (c_lead == 0xF4)
            c_max = 0x8F;
    } else {
        return 0;
    }
    for (int i = 1; i < si_length; ++i) {
        if (i == si_size)
            return -1;
        if (pc_bytes[i] < c_min || pc_bytes[i] > c_max)
            return 0;
        c_min = 0x80;
        c_max = 0xBF;
    }
    return si_length;
}

/// Whether a UTF-8 sequence is a noncharacter: U+FDD0 to U+FDEF, or one of the last two of a plane.
bool isNoncharacter(const uchar* pc_bytes, int si_length)
{
    if (si_length == 3 && pc_bytes[0] == 0xEF) {
        if (pc_bytes[1] == 0xB7)
            return pc_bytes[2] >= 0x90 && pc_bytes[2] <= 0xAF;
        return pc_bytes[1] == 0xBF && pc_bytes[2] >= 0xBE;
    }
    return si_length == 4 && (pc_bytes[1] & 0x0F) == 0x0F && pc_bytes[2] == 0xBF && pc_bytes[3] >= 0xBE;
}

} // namespace

int TVNC_XMLCharacters::plainRun(const QChar* pc_text, int si_size)
{
    // Four units at a time: each below 0x80, and none below 0x20.
    const quint64 high = Q_UINT64_C(0x8000800080008000);
    int i = 0;
    for (; i + 4 <= si_size; i += 4) {
        quint64 word;
        std::memcpy(&word, pc_text + i, sizeof word);
        const bool b_ascii = (word & Q_UINT64_C(0xFF80FF80FF80FF80)) == 0;
        if (!b_ascii || (((word | high) - Q_UINT64_C(0x0020002000200020)) & high) != high)
            break;
    }
    return i;
}

int TVNC_XMLCharacters::plainRun(const char* pc_bytes, int si_size)
{
    int i = 0;
    while (i + 8 <= si_size && arePlain(pc_bytes + i))
        i += 8;
    while (i < si_size && static_cast<uchar>(pc_bytes[i]) >= 0x20 && static_cast<uchar>(pc_bytes[i]) < 0x80)
        ++i;
    return i;
}

QString TVNC_XMLCharacters::writable(const QString& text)
{
    const QChar* const pc_text = text.constData();
    const int si_size = static_cast<int>(text.size());
    QString clean;
    int si_kept = 0; // all before this position is in clean
    for (int i = plainRun(pc_text, si_size); i < si_size; ++i) {
        const QChar unit = pc_text[i];
        if (unit.isHighSurrogate() && i + 1 < si_size && pc_text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (unit.isHighSurrogate() || unit.isLowSurrogate() || !isXMLCharacter(unit.unicode())) {
            clean.append(QString(pc_text + si_kept, i - si_kept));
            si_kept = i + 1;
        }
    }
    if (si_kept == 0)
        return text;
    clean.append(QString(pc_text + si_kept, si_size - si_kept));
    return clean;
}

TVNC_XMLCharacters::Check TVNC_XMLCharacters::check(QByteArray& piece)
{
    char* const pc_bytes = piece.data();
    const int si_size = static_cast<int>(piece.size());
    Check result = {si_size, 0, false, false};
    int i = 0;
    while (i < si_size) {
        if (i + 8 <= si_size && arePlain(pc_bytes + i)) {
            i += 8;
            continue;
        }
        const uchar* const pc_sequence = reinterpret_cast<const uchar*>(pc_bytes + i);
        const int si_length = sequenceLength(pc_sequence, si_size - i);
        if (si_length <= 0) {
            result.si_admitted = i;
            result.si_cutOff = si_length < 0 ? si_size - i : 0;
            result.b_ended = si_length == 0;
            break;
        }
        const bool b_noncharacter = isNoncharacter(pc_sequence, si_length);
        // Of the noncharacters, only U+FFFE and U+FFFF are none of XML's.
        const bool b_xml = si_length == 1 ? isXMLCharacter(*pc_sequence)
                                          : !b_noncharacter || si_length == 4 || pc_sequence[1] != 0xBF;
        if (!b_xml) {
            pc_bytes[i] = 1;
            result.si_admitted = i + 1;
            result.b_ended = true;
            break;
        }
        result.b_noncharacters = result.b_noncharacters || b_noncharacter;
        i += si_length;
    }
    return result;
}

QByteArray TVNC_XMLCharacters::withoutNoncharacters(const QByteArray& piece)
{
    QByteArray result;
    result.reserve(piece.size());
    int i = 0;
    while (i < piece.size()) {
        const uchar* const pc_sequence = reinterpret_cast<const uchar*>(piece.constData() + i);
        const int si_length = sequenceLength(pc_sequence, static_cast<int>(piece.size()) - i);
        if (isNoncharacter(pc_sequence, si_length))
            result.append("\xEF\xBF\xBD");
        else
            result.append(piece.constData() + i, si_length);
        i += si_length;
    }
    return result;
}
