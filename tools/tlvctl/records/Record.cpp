#include "tools/tlvctl/records/Record.h"

#include "tools/tlvctl/commandline/Text.h"

#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>
#include <QtCore/QStringList>

#include <algorithm>
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

int countRenumbered(TVNC_XMLNode* root)
{
    if (!root)
        return 0;
    const QList<TVNC_XMLNode*>& records = root->getXMLNodeChildren();
    int renumbered = 0;
    for (int i = 0; i < std::min(static_cast<int>(records.size()), NUMBERED_MAX); ++i) {
        if (records.at(i)->getAttribute().value("id") != numberText(i))
            ++renumbered;
    }
    return renumbered;
}

void beginRecord(ListedRecord& record, TVNC_XMLNode& node, QSet<int>& taken, size_t filePosition)
{
    record.filePosition = static_cast<int>(filePosition);
    record.number = numberOf(node, taken);
    if (!record.number)
        record.flaws.push_back({"noNumber", "has no number: cannot be asked for"});
}

QString recordName(const ListedRecord& record)
{
    if (record.number || !record.label.isEmpty())
        return numberText(record.number) + record.label;
    return QString("%1 (record %2 of the file)").arg(numberText(record.number)).arg(record.filePosition + 1);
}

QString explanationsOf(const std::vector<Flaw>& flaws)
{
    QStringList explanations;
    for (const Flaw& flaw : flaws)
        explanations.append(flaw.explanation);
    return explanations.join("; ");
}

QStringList namesOf(const std::vector<Flaw>& flaws)
{
    QStringList names;
    for (const Flaw& flaw : flaws)
        names.append(flaw.name);
    return names;
}

TVNC_XMLNode* childOf(TVNC_XMLNode& record, const char* element)
{
    QString name = element;
    return record.getXMLNodeChildByName(name);
}

std::optional<QString> textOf(TVNC_XMLNode& record, const char* element)
{
    TVNC_XMLNode* const child = childOf(record, element);
    return child ? std::optional<QString>(child->getText()) : std::nullopt;
}

Flaw missingElement(const char* element, const QString& effect)
{
    return {"elementMissing", QString("no element \"%1\"%2").arg(element, effect)};
}

void checkName(TVNC_XMLNode& record, const char* element, const Flaw& otherwise, std::vector<Flaw>& flaws)
{
    if (record.getName() != element)
        flaws.push_back({otherwise.name, QString("element %1 instead of \"%2\"%3")
                                             .arg(quoted(record.getName()), element, otherwise.explanation)});
}

bool checkLength(const QString& text, int maxBytes, const Flaw& tooLong, std::vector<Flaw>& flaws)
{
    const qint64 bytes = utf8Size(text);
    if (bytes > maxBytes)
        flaws.push_back({tooLong.name, tooLong.explanation.arg(bytes).arg(maxBytes)});
    return bytes <= maxBytes;
}

QString answeredText(TVNC_XMLNode& record, const char* element, int maxBytes, const Flaw& tooLong,
                     const QString& otherwise, std::vector<Flaw>& flaws)
{
    const std::optional<QString> text = textOf(record, element);
    if (!text) {
        flaws.push_back(missingElement(element));
        return QString();
    }
    return checkLength(*text, maxBytes, tooLong, flaws) ? *text : otherwise;
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

QString problemWithName(const QString& text, int maxBytes)
{
    return text.isEmpty() ? "is empty" : problemWithText(text, maxBytes);
}
