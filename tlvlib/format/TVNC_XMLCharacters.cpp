#include "tlvlib/format/TVNC_XMLCharacters.h"

#include "tlvlib/format/TVNG_documentForm.h"

#include <cstring>

namespace {

/// Whether XML has the character that a UTF-16 unit is. The unit must not be a surrogate.
bool isXMLCharacter(ushort us_unit)
{
    return us_unit < 0x20 ? TVNG_isBlank(us_unit) : us_unit < 0xFFFE;
}

/// The same as TVNC_XMLCharacters::arePrintable(), for eight bytes at once: the highest bit of a byte is set
/// in the result of the subtraction when the byte is below 0x20, and in the byte itself when it is no ASCII.
bool areEightPrintable(const char* pc_bytes)
{
    quint64 ul_word;
    std::memcpy(&ul_word, pc_bytes, sizeof ul_word);
    const quint64 ul_high = Q_UINT64_C(0x8080808080808080);
    return ((ul_word | ((ul_word - Q_UINT64_C(0x2020202020202020)) & ~ul_word)) & ul_high) == 0;
}

/// Counts the UTF-16 units from the front that are printable ASCII, four at a time: up to three more may
/// follow.
int printableRun(const QChar* pc_text, int si_size)
{
    const quint64 ul_high = Q_UINT64_C(0x8000800080008000);
    int i = 0;
    for (; i + 4 <= si_size; i += 4) {
        quint64 ul_word;
        std::memcpy(&ul_word, pc_text + i, sizeof ul_word);
        const bool b_ascii = (ul_word & Q_UINT64_C(0xFF80FF80FF80FF80)) == 0;
        if (!b_ascii || (((ul_word | ul_high) - Q_UINT64_C(0x0020002000200020)) & ul_high) != ul_high)
            break;
    }
    return i;
}

} // namespace

QString TVNC_XMLCharacters::writable(const QString& text)
{
    const QChar* const pc_text = text.constData();
    const int si_size = static_cast<int>(text.size());
    QString clean;
    int si_kept = 0; // all before this position is in clean
    for (int i = printableRun(pc_text, si_size); i < si_size; ++i) {
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

bool TVNC_XMLCharacters::arePrintable(const char* pc_bytes, int si_size)
{
    int i = 0;
    while (i + 8 <= si_size && areEightPrintable(pc_bytes + i))
        i += 8;
    while (i < si_size && static_cast<uchar>(pc_bytes[i]) >= 0x20 && static_cast<uchar>(pc_bytes[i]) < 0x80)
        ++i;
    return i == si_size;
}

int TVNC_XMLCharacters::sequenceLength(const char* pc_bytes, int si_size)
{
    const uchar* const pc_sequence = reinterpret_cast<const uchar*>(pc_bytes);
    const uchar uc_lead = pc_sequence[0];
    if (uc_lead < 0x80)
        return 1;
    if (uc_lead < 0xC2 || uc_lead > 0xF4) // the rest of a sequence, an overlong form, too large a value
        return NO_SEQUENCE;
    const int si_length = uc_lead < 0xE0 ? 2 : uc_lead < 0xF0 ? 3 : 4;
    // The second byte tells overlong forms (E0, F0), surrogates (ED) and values above U+10FFFF (F4).
    uchar uc_min = uc_lead == 0xE0 ? 0xA0 : uc_lead == 0xF0 ? 0x90 : 0x80;
    uchar uc_max = uc_lead == 0xED ? 0x9F : uc_lead == 0xF4 ? 0x8F : 0xBF;
    for (int i = 1; i < si_length; ++i) {
        if (i == si_size)
            return CUT_OFF;
        if (pc_sequence[i] < uc_min || pc_sequence[i] > uc_max)
            return NO_SEQUENCE;
        uc_min = 0x80;
        uc_max = 0xBF;
    }
    return si_length;
}

bool TVNC_XMLCharacters::isNoncharacter(const char* pc_bytes, int si_length)
{
    const uchar* const pc_sequence = reinterpret_cast<const uchar*>(pc_bytes);
    // U+FDD0 to U+FDEF are EF B7 90 to EF B7 AF.
    if (si_length == 3 && pc_sequence[0] == 0xEF && pc_sequence[1] == 0xB7)
        return pc_sequence[2] >= 0x90 && pc_sequence[2] <= 0xAF;
    // U+FFFE and U+FFFF are EF BF BE and EF BF BF.
    if (si_length == 3)
        return pc_sequence[0] == 0xEF && pc_sequence[1] == 0xBF && pc_sequence[2] >= 0xBE;
    // The last two of every other plane end in 16 bits FFFE or FFFF: Fx yF BF BE and Fx yF BF BF.
    return si_length == 4 && (pc_sequence[1] & 0x0F) == 0x0F && pc_sequence[2] == 0xBF &&
           pc_sequence[3] >= 0xBE;
}

TVNC_XMLCharacters::Check TVNC_XMLCharacters::check(QByteArray& piece)
{
    char* const pc_bytes = piece.data();
    const int si_size = static_cast<int>(piece.size());
    Check result = {si_size, 0, false, false};
    int i = 0;
    while (i < si_size) {
        if (i + 8 <= si_size && areEightPrintable(pc_bytes + i)) {
            i += 8;
            continue;
        }
        const int si_length = sequenceLength(pc_bytes + i, si_size - i);
        if (si_length == NO_SEQUENCE || si_length == CUT_OFF) {
            result.si_admitted = i;
            result.si_cutOff = si_length == CUT_OFF ? si_size - i : 0;
            result.b_ended = si_length == NO_SEQUENCE;
            break;
        }
        const bool b_noncharacter = isNoncharacter(pc_bytes + i, si_length);
        // XML has all noncharacters but two, which both begin with EF BF.
        const bool b_xml = si_length == 1 ? isXMLCharacter(static_cast<uchar>(pc_bytes[i]))
                                          : !b_noncharacter || si_length == 4 || pc_bytes[i + 1] != '\xBF';
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
        const char* const pc_sequence = piece.constData() + i;
        const int si_length = sequenceLength(pc_sequence, static_cast<int>(piece.size()) - i);
        if (isNoncharacter(pc_sequence, si_length))
            result.append("\xEF\xBF\xBD");
        else
            result.append(pc_sequence, si_length);
        i += si_length;
    }
    return result;
}
