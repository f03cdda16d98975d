#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace {

/// Whether a character can do more on a terminal than stand in its place.
bool isUnsafe(uint codePoint)
{
    switch (QChar::category(codePoint)) {
    case QChar::Other_Control:
    case QChar::Other_Format: // among them the marks that turn the direction of writing
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
    case QChar::Other_NotAssigned: // the terminal may know a later version of Unicode
        return true;
    default:
        return false;
    }
}

QString hex(uint value, int digits)
{
    return QString::number(value, 16).toUpper().rightJustified(digits, '0');
}

QString escape(uint codePoint)
{
    switch (codePoint) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        if (codePoint < 0x100)
            return "\\x" + hex(codePoint, 2);
        return "\\u{" + hex(codePoint, 4) + '}';
    }
}

/// A character that does not fit one code unit becomes two escapes.
QString jsonEscape(uint codePoint)
{
    if (!QChar::requiresSurrogates(codePoint))
        return "\\u" + hex(codePoint, 4);
    return "\\u" + hex(QChar::highSurrogate(codePoint), 4) + "\\u" + hex(QChar::lowSurrogate(codePoint), 4);
}

/// Puts what @a replacement makes of them in the place of the characters that @a isMeant picks.
QString replaceCharacters(const QString& text, bool (*isMeant)(uint), QString (*replacement)(uint))
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        const bool isPair = unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const uint codePoint = isPair ? QChar::surrogateToUcs4(unit, text.at(i + 1)) : unit.unicode();
        const int size = isPair ? 2 : 1;
        if (isMeant(codePoint))
            result += replacement(codePoint);
        else
            result += text.mid(i, size);
        i += size - 1;
    }
    return result;
}

bool isSurrogate(uint codePoint)
{
    return QChar::isSurrogate(codePoint);
}

QString replacementCharacter(uint)
{
    return QString(QChar(QChar::ReplacementCharacter));
}

} // namespace

QString printable(const QString& text)
{
    QString result = text;
    result.replace('\\', "\\\\");
    return replaceCharacters(result, isUnsafe, escape);
}

bool isPrintable(const QString& text)
{
    return printable(text).size() == text.size() + text.count('\\');
}

QString quoted(const QString& text)
{
    QString result = printable(text);
    result.replace('"', "\\\"");
    return '"' + result + '"';
}

QByteArray jsonString(const QString& text)
{
    const QJsonArray array{replaceCharacters(text, isSurrogate, replacementCharacter)};
    QByteArray json = QJsonDocument(array).toJson(QJsonDocument::Compact);
    json = json.mid(1, json.size() - 2); // without the brackets of the array
    return replaceCharacters(QString::fromUtf8(json), isUnsafe, jsonEscape).toUtf8();
}

std::optional<QString> utf8Text(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size()); // beyond a zero byte, too
    return text.toUtf8() == bytes ? std::optional<QString>(text) : std::nullopt;
}

QString printableBytes(const QByteArray& bytes)
{
    const std::optional<QString> text = utf8Text(bytes);
    return text ? printable(*text) : "base64:" + QString::fromLatin1(bytes.toBase64());
}
