#include "tlvlib/xml/TVNC_XMLInput.h"

#include "tlvlib/util/TVNG_QtVersion.h"

#include <QtCore/QTextCodec>
#include <QtCore/QTextDecoder>

#include <cstring>

namespace {

/// Bytes read from the source at a time: what the stream reader asks for.
const int PIECE_SIZE = 8192;

const int UTF8_MIB = 106;

/// The encoding that the first bytes tell, by the stream reader's own rules.
int mibOfFirstBytes(const QByteArray& head)
{
    if (head.size() < 4)
        return UTF8_MIB;
    const uchar* const b = reinterpret_cast<const uchar*>(head.constData());
    if ((b[0] == 0 && b[1] == 0 && b[2] == 0xFE && b[3] == 0xFF) ||
        (b[0] == 0xFF && b[1] == 0xFE && b[2] == 0 && b[3] == 0))
        return 1017; // UTF-32 with byte order mark
    if (b[0] == '<' && b[1] == 0 && b[2] == 0 && b[3] == 0)
        return 1019; // UTF-32LE
    if (b[0] == 0 && b[1] == 0 && b[2] == 0 && b[3] == '<')
        return 1018; // UTF-32BE
    if ((b[0] == 0xFE && b[1] == 0xFF) || (b[0] == 0xFF && b[1] == 0xFE))
        return 1015; // UTF-16 with byte order mark
    if (b[0] == '<' && b[1] == 0)
        return 1014; // UTF-16LE
    if (b[0] == 0 && b[1] == '<')
        return 1013; // UTF-16BE
    return UTF8_MIB;
}

/// Where an XML declaration names its encoding.
struct EncodingName
{
    enum Result { NONE, FOUND, MALFORMED };
    int si_start; ///< position of the word "encoding"
    int si_end;   ///< position behind the closing quotation mark
    QByteArray name;
};

bool isBlank(char c_byte)
{
    return c_byte == ' ' || c_byte == '\t' || c_byte == '\n' || c_byte == '\r';
}

/**
 * Finds the encoding in the XML declaration at the start of a document. Strict, because the stream reader
 * switches to any encoding that it finds in a declaration: one that is not in plain sight makes the document
 * malformed.
 */
EncodingName::Result findEncoding(const QByteArray& head, EncodingName& found)
{
    const int si_start = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    if (head.mid(si_start, 5) != "<?xml" || head.size() <= si_start + 5 || !isBlank(head.at(si_start + 5)))
        return EncodingName::NONE;
    const int si_declarationEnd = static_cast<int>(head.indexOf("?>", si_start));
    if (si_declarationEnd < 0)
        return EncodingName::MALFORMED;
    const QByteArray declaration = head.left(si_declarationEnd);

    static const char KEYWORD[] = "encoding";
    found.si_start = static_cast<int>(declaration.indexOf(KEYWORD));
    if (found.si_start < 0)
        return EncodingName::NONE;
    int i = found.si_start + static_cast<int>(sizeof KEYWORD) - 1;
    if (declaration.indexOf(KEYWORD, i) >= 0)
        return EncodingName::MALFORMED;
    while (i < declaration.size() && isBlank(declaration.at(i)))
        ++i;
    if (i == declaration.size() || declaration.at(i++) != '=')
        return EncodingName::MALFORMED;
    while (i < declaration.size() && isBlank(declaration.at(i)))
        ++i;
    if (i == declaration.size() || (declaration.at(i) != '"' && declaration.at(i) != '\''))
        return EncodingName::MALFORMED;
    const int si_close = static_cast<int>(declaration.indexOf(declaration.at(i), i + 1));
    if (si_close < 0)
        return EncodingName::MALFORMED;
    found.name = declaration.mid(i + 1, si_close - i - 1);
    found.si_end = si_close + 1;
    return found.name.contains('&') ? EncodingName::MALFORMED : EncodingName::FOUND;
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

/// What a check of a piece of a document found.
struct Check
{
    int si_admitted; ///< bytes that may be parsed
    int si_cutOff;   ///< bytes behind them that begin a sequence whose rest is yet to come
    bool b_noncharacters;
};

/**
 * Finds the first byte that is not UTF-8, and the first character that XML does not have, which becomes
 * U+0001 and is the last one admitted.
 */
Check checkCharacters(QByteArray& piece)
{
    char* const pc_bytes = piece.data();
    const int si_size = static_cast<int>(piece.size());
    Check check = {si_size, 0, false};
    int i = 0;
    while (i < si_size) {
        if (i + 8 <= si_size && arePlain(pc_bytes + i)) {
            i += 8;
            continue;
        }
        const uchar* const pc_sequence = reinterpret_cast<const uchar*>(pc_bytes + i);
        const int si_length = sequenceLength(pc_sequence, si_size - i);
        if (si_length <= 0) {
            check.si_admitted = i;
            check.si_cutOff = si_length < 0 ? si_size - i : 0;
            break;
        }
        bool b_xml = true;
        if (si_length == 1) {
            b_xml = *pc_sequence >= 0x20 || isBlank(pc_bytes[i]);
        } else if (isNoncharacter(pc_sequence, si_length)) {
            check.b_noncharacters = true;
            b_xml = si_length == 4 || pc_sequence[1] != 0xBF; // U+FFFE and U+FFFF are not XML characters
        }
        if (!b_xml) {
            pc_bytes[i] = 1;
            check.si_admitted = i + 1;
            break;
        }
        i += si_length;
    }
    return check;
}

/// Puts U+FFFD in the place of noncharacters. The piece must be UTF-8.
QByteArray withoutNoncharacters(const QByteArray& piece)
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

} // namespace

TVNC_XMLInput::TVNC_XMLInput(QIODevice& source)
    : QIODevice(&source), source_(source), si_OutputPos(0), b_Begun(false), b_Ended(false)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

TVNC_XMLInput::~TVNC_XMLInput() {}

bool TVNC_XMLInput::isSequential() const
{
    return true;
}

qint64 TVNC_XMLInput::readData(char* pc_data, qint64 maxSize)
{
    if (si_OutputPos == str_Output.size() && !b_Ended)
        produce();
    const qint64 size = qMin(maxSize, static_cast<qint64>(str_Output.size() - si_OutputPos));
    std::memcpy(pc_data, str_Output.constData() + si_OutputPos, static_cast<size_t>(size));
    si_OutputPos += static_cast<int>(size);
    return size;
}

qint64 TVNC_XMLInput::writeData(const char*, qint64)
{
    return -1;
}

/// Refills str_Output. Leaves it empty only at the end.
void TVNC_XMLInput::produce()
{
    si_OutputPos = 0;
    str_Output = next();
    const Check check = checkCharacters(str_Output);
    str_Tail = str_Output.mid(check.si_admitted, check.si_cutOff);
    b_Ended = b_Ended || check.si_admitted + check.si_cutOff < str_Output.size();
    str_Output.truncate(check.si_admitted);
    if (check.b_noncharacters && TVNG_decoderRefusesNoncharacters())
        str_Output = withoutNoncharacters(str_Output);

    const int si_size = static_cast<int>(str_Output.size());
    const int si_admitted = guard_.admit(str_Output.constData(), si_size);
    b_Ended = b_Ended || si_admitted < si_size;
    str_Output.truncate(si_admitted);
}

/// The next piece of the document, in UTF-8, unchecked. Empty, and b_Ended set, at the end.
QByteArray TVNC_XMLInput::next()
{
    QByteArray piece;
    if (b_Begun) {
        piece = readSource();
        if (decoder_)
            piece = decode(piece);
    } else {
        b_Begun = true;
        piece = begin();
    }
    if (piece.isEmpty()) {
        b_Ended = true;
        return piece;
    }
    return str_Tail + piece;
}

/// The first piece. Finds out the encoding.
QByteArray TVNC_XMLInput::begin()
{
    const QByteArray head = readSource();
    EncodingName encoding;
    QTextCodec* pc_codec = nullptr;
    const int si_mib = mibOfFirstBytes(head);
    if (si_mib != UTF8_MIB) {
        pc_codec = QTextCodec::codecForMib(si_mib);
    } else {
        const EncodingName::Result result = findEncoding(head, encoding);
        if (result == EncodingName::MALFORMED)
            return QByteArray();
        if (result == EncodingName::FOUND)
            pc_codec = QTextCodec::codecForName(encoding.name);
    }
    // An unknown encoding is the stream reader's to report.
    if (!pc_codec || pc_codec->mibEnum() == UTF8_MIB)
        return head;

    decoder_.reset(pc_codec->makeDecoder());
    QByteArray piece = decode(head);
    const EncodingName::Result result = findEncoding(piece, encoding);
    if (result == EncodingName::MALFORMED)
        return QByteArray();
    if (result == EncodingName::FOUND) {
        const int si_length = encoding.si_end - encoding.si_start;
        piece.replace(encoding.si_start, si_length, QByteArray(si_length, ' '));
    }
    return piece;
}

/// Decodes byte by byte, to find the exact place where the encoding is broken. Such documents are rare.
QByteArray TVNC_XMLInput::decode(const QByteArray& bytes)
{
    QString text = str_Surrogate;
    str_Surrogate.clear();
    for (int i = 0; i < bytes.size(); ++i) {
        const QString decoded = decoder_->toUnicode(bytes.constData() + i, 1);
        if (decoder_->hasFailure()) {
            b_Ended = true;
            break;
        }
        text += decoded;
    }
    if (!text.isEmpty() && text.at(text.size() - 1).isHighSurrogate()) {
        str_Surrogate = text.right(1);
        text.chop(1);
    }
    return text.toUtf8();
}

/// Reads until a piece is full or the source has no more.
QByteArray TVNC_XMLInput::readSource()
{
    const int si_capacity = PIECE_SIZE - static_cast<int>(str_Tail.size());
    QByteArray bytes;
    bytes.resize(si_capacity);
    int si_size = 0;
    while (si_size < si_capacity) {
        const qint64 count = source_.read(bytes.data() + si_size, si_capacity - si_size);
        if (count <= 0)
            break;
        si_size += static_cast<int>(count);
    }
    bytes.truncate(si_size);
    return bytes;
}
