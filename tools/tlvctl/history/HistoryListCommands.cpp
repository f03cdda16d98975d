#include "tools/tlvctl/history/HistoryListCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/records/Record.h"

namespace {

// --- list -------------------------------------------------------------------------------------------------

void printVisits(const HistoryList& list)
{
    const std::vector<VisitRecord> records = list.records();
    const auto cells = [&records](size_t i) {
        return QStringList{printable(records[i].time), printable(records[i].title),
                           printable(records[i].url)};
    };
    printRecords(list.count(), {"time", "title", "address"}, {records.begin(), records.end()}, cells,
                 list.remarks());
}

void writeVisit(JsonWriter& json, const VisitRecord& record)
{
    json.beginObject();
    writeRecord(json, record);
    json.member("time");
    if (record.time.isEmpty())
        json.null();
    else
        json.string(record.time);
    json.member("title");
    json.string(record.title);
    json.member("url");
    json.string(record.url);
    json.endObject();
}

void writeVisits(JsonWriter& json, const HistoryList& list)
{
    json.member("renumbered");
    json.number(list.renumbered());
    json.member("sorted");
    json.boolean(list.isSorted());
    json.member("visits");
    json.beginArray();
    for (const VisitRecord& record : list.records())
        writeVisit(json, record);
    json.endArray();
}

int listVisits(const QCommandLineParser& arguments)
{
    HistoryList list(pathArgument(arguments), NUMBERED_MAX);
    return listStore(
        list, arguments, [&list] { printVisits(list); },
        [&list](JsonWriter& json) { writeVisits(json, list); });
}

// --- find -------------------------------------------------------------------------------------------------

void printVisit(int number, const TVNS_History& visit)
{
    printLine("number   " + numberText(number));
    printLine("time     " + HistoryList::timeText(visit.dateTime));
    printLine("title    " + printable(visit.title));
    printLine("address  " + printable(visit.url));
}

int findVisit(const QCommandLineParser& arguments)
{
    HistoryList list(pathArgument(arguments), NUMBERED_MAX);
    const QString url = arguments.positionalArguments().at(1);
    std::optional<int> number;
    const auto print = [&] {
        number = list.find(url);
        if (number)
            printVisit(*number, list.visit(*number));
    };
    const auto write = [&](JsonWriter& json) {
        number = list.find(url);
        json.member("visit");
        if (!number) {
            json.null();
            return;
        }
        VisitRecord record;
        for (const VisitRecord& candidate : list.records()) {
            if (candidate.number == number)
                record = candidate;
        }
        writeVisit(json, record);
    };
    const int exitCode = listStore(list, arguments, print, write);
    if (exitCode != DONE || number)
        return exitCode;
    complain(list.file().path(), QString("no visit of %1; addresses are compared exactly, see what \"tlvctl "
                                         "history list\" shows")
                                     .arg(quoted(url)));
    return FAILED;
}

} // namespace

Command historyListCommand()
{
    Command command;
    command.name = "list";
    command.summary = "List the visits with their numbers, newest first.";
    command.details = "Shows all that the file holds. Loading sorts the list and builds it anew.\n"
                      "Records that it changes or drops are marked with *, and lines below tell how.";
    command.examples = {"tlvctl history list /data/settings", "tlvctl history list --json /data/settings"};
    command.arguments = {directoryArgument("visit.xml")};
    command.options = {jsonOption()};
    command.run = listVisits;
    return command;
}

Command historyFindCommand()
{
    Command command;
    command.name = "find";
    command.summary = "Show the newest visit of an address.";
    command.details = "Ends with 1 when there is none. Addresses are compared exactly.";
    command.examples = {"tlvctl history find /data/settings http://example.com/"};
    command.arguments = {directoryArgument("visit.xml"), {"URL", "The address of the page."}};
    command.options = {jsonOption()};
    command.run = findVisit;
    return command;
}
