#include "tlvlib/xml/TVNC_XMLInput.h"

#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_XMLCharacters.h"

// Without a module: from Qt 6 on it is Core5Compat.
#include <QTextCodec>
#include <QTextDecoder>

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

/// Refills str_Output. Leaves it empty, and without memory of its own, only at the end.
void TVNC_XMLInput::produce()
{
    si_OutputPos = 0;
    str_Output = next();
    if (str_Output.isEmpty())
        return;
    const TVNC_XMLCharacters::Check check = TVNC_XMLCharacters::check(str_Output);
    str_Tail = str_Output.mid(check.si_admitted, check.si_cutOff);
    b_Ended = b_Ended || check.b_ended;
    str_Output.truncate(check.si_admitted);
    if (check.b_noncharacters && TVNG_decoderRefusesNoncharacters())
        str_Output = TVNC_XMLCharacters::withoutNoncharacters(str_Output);

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
