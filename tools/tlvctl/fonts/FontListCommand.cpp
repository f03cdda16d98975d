#include "tools/tlvctl/fonts/FontListCommand.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/fonts/FontList.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreList.h"

#include <algorithm>

namespace {

QString nameOf(FontFlaw flaw)
{
    switch (flaw) {
    case FontFlaw::NO_NUMBER:
        return "noNumber";
    case FontFlaw::TOO_LONG:
        return "nameTooLong";
    case FontFlaw::EMPTY:
        return "emptyName";
    case FontFlaw::OTHER_ELEMENT:
        return "notNamedFont";
    }
    return QString();
}

void printRecord(const FontRecord& record)
{
    QStringList explanations;
    for (FontFlaw flaw : record.flaws)
        explanations.append(FontList::explanation(flaw, record));
    QString line = FontList::line(record.number, record.name);
    if (!explanations.isEmpty())
        line += "  (" + explanations.join("; ") + ')';
    printLine(line);
}

void printSummary(const FontList& list, const std::vector<FontRecord>& records)
{
    const auto flawed = std::count_if(records.begin(), records.end(),
                                      [](const FontRecord& record) { return !record.flaws.empty(); });
    QString line = QString("records: %1, counted by the store: %2").arg(records.size()).arg(list.count());
    if (flawed > 0)
        line += QString(", hidden in part or in full: %1").arg(flawed);
    printLine(line);
}

void writeRecord(JsonWriter& json, const FontRecord& record)
{
    json.beginObject();
    json.member("number");
    if (record.number)
        json.number(*record.number);
    else
        json.null();
    json.member("name");
    json.string(record.name);
    json.member("element");
    json.string(record.element);
    json.member("hidden");
    json.beginArray();
    for (FontFlaw flaw : record.flaws)
        json.string(nameOf(flaw));
    json.endArray();
    json.endObject();
}

void writeFonts(JsonWriter& json, const std::vector<FontRecord>& records)
{
    json.member("fonts");
    json.beginArray();
    for (const FontRecord& record : records)
        writeRecord(json, record);
    json.endArray();
}

int listFonts(const QCommandLineParser& arguments)
{
    FontList list(pathArgument(arguments));
    const auto printText = [&list] {
        const std::vector<FontRecord> records = list.records();
        for (const FontRecord& record : records)
            printRecord(record);
        printSummary(list, records);
    };
    return listStore(list, arguments, printText,
                     [&list](JsonWriter& json) { writeFonts(json, list.records()); });
}

} // namespace

Command fontListCommand()
{
    Command command;
    command.name = "list";
    command.summary = "List the fonts with their numbers.";
    command.details = "Shows all that the file holds, and says in parentheses what of it is hidden from\n"
                      "the users of the store.";
    command.examples = {"tlvctl fonts list /data/settings", "tlvctl fonts list --json /data/settings"};
    command.arguments = {directoryArgument("fontlist.xml")};
    command.options = {jsonOption()};
    command.run = listFonts;
    return command;
}
