#include "tools/tlvctl/FontList.h"

#include "tools/tlvctl/Text.h"

#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>
#include <QtCore/QSet>

#include <memory>

namespace {

/// How many records of a document the store numbers.
const int NUMBERED_MAX = 999;

/// The number by which the store finds a record; none if another one with it stands before.
std::optional<int> numberOf(TVNC_XMLNode& record, QSet<int>& taken)
{
    bool isNumber = false;
    const int number = record.getAttribute().value("id").toString().toInt(&isNumber);
    if (!isNumber || taken.contains(number))
        return std::nullopt;
    taken.insert(number);
    return number;
}

FontRecord readRecord(TVNC_XMLNode& node, QSet<int>& taken)
{
    FontRecord record;
    record.number = numberOf(node, taken);
    record.name = node.getText();
    record.element = node.getName();
    if (!record.number)
        record.flaws.push_back(FontFlaw::NO_NUMBER);
    if (record.name.toUtf8().size() > FontList::NAME_MAX_BYTES)
        record.flaws.push_back(FontFlaw::TOO_LONG);
    if (record.name.isEmpty())
        record.flaws.push_back(FontFlaw::EMPTY);
    if (record.element != "font")
        record.flaws.push_back(FontFlaw::OTHER_ELEMENT);
    return record;
}

/// Whether a text is the same when it was written and read again: some characters are not, and blanks alone.
bool survivesSaving(const QString& text)
{
    TVNC_XMLNode node(nullptr, 0);
    QString element = "font";
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

} // namespace

FontList::FontList(const QString& dir)
    : store_(*TVNC_FontListSetting::getInstance()), file_(dir, "fontlist.xml")
{
}

void FontList::load()
{
    store_.loadFontList(file_.dir());
}

bool FontList::save()
{
    store_.saveFontList(file_.dir());
    return file_.checkSaved(*store_.getXMLRootNode());
}

int FontList::count() const
{
    return store_.getCount();
}

std::vector<FontRecord> FontList::records() const
{
    std::vector<FontRecord> records;
    QSet<int> taken;
    for (TVNC_XMLNode* node : std::as_const(store_.getXMLRootNode()->getXMLNodeChildren()))
        records.push_back(readRecord(*node, taken));
    return records;
}

int FontList::numbersLeft() const
{
    return qMax(0, NUMBERED_MAX - store_.getXMLNodeCnt());
}

int FontList::add(const QString& name)
{
    const int number = store_.getXMLNodeCnt();
    store_.addFont(name);
    return number;
}

QString FontList::problemWithName(const QString& name)
{
    if (name.isEmpty())
        return "is empty";
    const qint64 bytes = name.toUtf8().size();
    if (bytes > NAME_MAX_BYTES)
        return QString("has %1 bytes of UTF-8, more than the %2 that the store hands out")
            .arg(bytes)
            .arg(NAME_MAX_BYTES);
    if (!survivesSaving(name))
        return "consists of blanks or has control characters, which the file cannot keep";
    return QString();
}

QString FontList::line(const std::optional<int>& number, const QString& name)
{
    const QString digits = number ? QString("%1").arg(*number, 3, 10, QLatin1Char('0')) : "---";
    return digits + "  " + printable(name);
}
