#include "tools/tlvctl/fonts/FontList.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QSet>

namespace {

FontRecord readRecord(TVNC_XMLNode& node, QSet<int>& taken)
{
    FontRecord record;
    record.number = numberOf(node, taken);
    record.name = node.getText();
    record.element = node.getName();
    if (!record.number)
        record.flaws.push_back(FontFlaw::NO_NUMBER);
    if (utf8Size(record.name) > FontList::NAME_MAX_BYTES)
        record.flaws.push_back(FontFlaw::TOO_LONG);
    if (record.name.isEmpty())
        record.flaws.push_back(FontFlaw::EMPTY);
    if (record.element != "font")
        record.flaws.push_back(FontFlaw::OTHER_ELEMENT);
    return record;
}

} // namespace

FontList::FontList(const QString& dir)
    : Store(dir, "fontlist.xml"), store_(*TVNC_FontListSetting::getInstance())
{
}

void FontList::load()
{
    store_.loadFontList(file().dir());
}

void FontList::save()
{
    store_.saveFontList(file().dir());
}

TVNC_XMLNode& FontList::root() const
{
    return *store_.getXMLRootNode();
}

int FontList::count() const
{
    return store_.getCount();
}

std::vector<FontRecord> FontList::records() const
{
    std::vector<FontRecord> records;
    QSet<int> taken;
    for (TVNC_XMLNode* node : std::as_const(root().getXMLNodeChildren()))
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
    return problemWithText(name, NAME_MAX_BYTES);
}

QString FontList::line(const std::optional<int>& number, const QString& name)
{
    return numberText(number) + "  " + printable(name);
}

QString FontList::explanation(FontFlaw flaw, const FontRecord& record)
{
    switch (flaw) {
    case FontFlaw::NO_NUMBER:
        return "has no number: cannot be asked for";
    case FontFlaw::TOO_LONG:
        return QString("name of %1 bytes, over %2: the store answers an empty one")
            .arg(utf8Size(record.name))
            .arg(NAME_MAX_BYTES);
    case FontFlaw::EMPTY:
        return "has no name";
    case FontFlaw::OTHER_ELEMENT:
        return QString("element \"%1\" instead of \"font\": answered, but not counted")
            .arg(printable(record.element));
    }
    return QString();
}
