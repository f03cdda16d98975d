#include "tools/tlvctl/records/Record.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>

#include <memory>

std::optional<int> numberOf(TVNC_XMLNode& record, QSet<int>& taken)
{
    bool isNumber = false;
    const int number = record.getAttribute().value("id").toString().toInt(&isNumber);
    if (!isNumber || taken.contains(number))
        return std::nullopt;
    taken.insert(number);
    return number;
}

QString numberText(const std::optional<int>& number)
{
    return number ? QString("%1").arg(*number, 3, 10, QLatin1Char('0')) : "---";
}

qint64 utf8Size(const QString& text)
{
    return text.toUtf8().size();
}

bool survivesSaving(const QString& text)
{
    TVNC_XMLNode node(nullptr, 0);
    QString element = "text";
    QString copy = text;
    node.setName(element);
    node.setText(copy);

    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    TVNC_XMLWriter().write(buffer, &node);
    buffer.seek(0);
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> saved(reader.read(buffer));
    return !reader.hasError() && saved->getText() == text;
}

QString problemWithText(const QString& text, int maxBytes)
{
    const qint64 bytes = utf8Size(text);
    if (maxBytes >= 0 && bytes > maxBytes)
        return QString("has %1 bytes of UTF-8, more than the %2 that the store hands out")
            .arg(bytes)
            .arg(maxBytes);
    if (!survivesSaving(text))
        return "consists of blanks or has control characters, which the file cannot keep";
    return QString();
}
