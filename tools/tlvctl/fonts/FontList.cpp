#include "tools/tlvctl/fonts/FontList.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Text.h"

std::vector<FontRecord> FontList::records() const
{
    return readRecords<FontRecord>(root(), [](TVNC_XMLNode& node, FontRecord& record) {
        record.name = node.getText();
        record.element = node.getName();
        record.label = label(record.name);
        checkLength(record.name, TVNG_FONT_NAME_MAX_BYTES,
                    {"nameTooLong", "name of %1 bytes, over %2: the store answers an empty one"},
                    record.flaws);
        if (record.name.isEmpty())
            record.flaws.push_back({"emptyName", "has no name"});
        checkName(node, "font", {"notNamedFont", ": answered, but not counted"}, record.flaws);
    });
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

QString FontList::problemWithFont(const QString& name)
{
    return problemWithName(name, TVNG_FONT_NAME_MAX_BYTES);
}

QString FontList::label(const QString& name)
{
    return "  " + printable(name);
}
