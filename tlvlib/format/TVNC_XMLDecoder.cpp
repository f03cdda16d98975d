#include "tlvlib/format/TVNC_XMLDecoder.h"

#include "tlvlib/format/TVNG_documentForm.h"

// Without a module: from Qt 6 on it is Core5Compat.
#include <QTextCodec>
#include <QTextDecoder>

namespace {

const int UTF8_MIB = 106;

/// The encoding that the first bytes tell, by the stream reader's own rules.
int mibOfFirstBytes(const QByteArray& head)
{
    if (head.size() < 4)
        return UTF8_MIB;
    const uchar* const pc_head = reinterpret_cast<const uchar*>(head.constData());
    if ((pc_head[0] == 0 && pc_head[1] == 0 && pc_head[2] == 0xFE && pc_head[3] == 0xFF) ||
        (pc_head[0] == 0xFF && pc_head[1] == 0xFE && pc_head[2] == 0 && pc_head[3] == 0))
        return 1017; // UTF-32 with byte order mark
    if (pc_head[0] == '<' && pc_head[1] == 0 && pc_head[2] == 0 && pc_head[3] == 0)
        return 1019; // UTF-32LE
    if (pc_head[0] == 0 && pc_head[1] == 0 && pc_head[2] == 0 && pc_head[3] == '<')
        return 1018; // UTF-32BE
    if ((pc_head[0] == 0xFE && pc_head[1] == 0xFF) || (pc_head[0] == 0xFF && pc_head[1] == 0xFE))
        return 1015; // UTF-16 with byte order mark
    if (pc_head[0] == '<' && pc_head[1] == 0)
        return 1014; // UTF-16LE
    if (pc_head[0] == 0 && pc_head[1] == '<')
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

int skipBlanks(const QByteArray& bytes, int i)
{
    while (i < bytes.size() && TVNG_isBlank(static_cast<uchar>(bytes.at(i))))
        ++i;
    return i;
}

/**
 * Finds the encoding in the XML declaration at the start of a document. Strict, because the stream reader
 * switches to any encoding that it finds in a declaration: one that is not in plain sight makes the document
 * malformed.
 */
EncodingName::Result findEncoding(const QByteArray& head, EncodingName& found)
{
    const int si_start =
        head.startsWith(TVNG_BYTE_ORDER_MARK) ? static_cast<int>(sizeof TVNG_BYTE_ORDER_MARK) - 1 : 0;
    if (head.mid(si_start, 5) != "<?xml" || skipBlanks(head, si_start + 5) == si_start + 5)
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
    i = skipBlanks(declaration, i);
    if (i == declaration.size() || declaration.at(i) != '=')
        return EncodingName::MALFORMED;
    i = skipBlanks(declaration, i + 1);
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

TVNC_XMLDecoder::TVNC_XMLDecoder() : b_begun_(false), b_ended_(false) {}

TVNC_XMLDecoder::~TVNC_XMLDecoder() {}

QByteArray TVNC_XMLDecoder::decode(const QByteArray& bytes)
{
    if (!b_begun_) {
        b_begun_ = true;
        return decodeHead(bytes);
    }
    return decoder_ ? toUtf8(bytes) : bytes;
}

QByteArray TVNC_XMLDecoder::decodeHead(const QByteArray& head)
{
    EncodingName encoding;
    QTextCodec* pc_codec = nullptr;
    const int si_mib = mibOfFirstBytes(head);
    if (si_mib != UTF8_MIB) {
        pc_codec = QTextCodec::codecForMib(si_mib);
    } else {
        const EncodingName::Result result = findEncoding(head, encoding);
        if (result == EncodingName::MALFORMED)
            return end();
        if (result == EncodingName::FOUND)
            pc_codec = QTextCodec::codecForName(encoding.name);
    }
    if (!pc_codec || pc_codec->mibEnum() == UTF8_MIB)
        return head;

    decoder_.reset(pc_codec->makeDecoder());
    QByteArray decoded = toUtf8(head);
    const EncodingName::Result result = findEncoding(decoded, encoding);
    if (result == EncodingName::MALFORMED)
        return end();
    if (result == EncodingName::FOUND) {
        const int si_length = encoding.si_end - encoding.si_start;
        decoded.replace(encoding.si_start, si_length, QByteArray(si_length, ' '));
    }
    return decoded;
}

/// Decodes byte by byte, to find the exact place where the encoding is broken. Such documents are rare.
QByteArray TVNC_XMLDecoder::toUtf8(const QByteArray& bytes)
{
    QString text = surrogate_;
    surrogate_.clear();
    for (int i = 0; i < bytes.size(); ++i) {
        const QString decoded = decoder_->toUnicode(bytes.constData() + i, 1);
        if (decoder_->hasFailure()) {
            b_ended_ = true;
            break;
        }
        text += decoded;
    }
    if (!text.isEmpty() && text.at(text.size() - 1).isHighSurrogate()) {
        surrogate_ = text.right(1);
        text.chop(1);
    }
    return text.toUtf8();
}

QByteArray TVNC_XMLDecoder::end()
{
    b_ended_ = true;
    return QByteArray();
}
