#include "tools/tlvctl/history/HistoryCommands.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

const QString TITLE = "title";
const QString TIME = "time";

// --- list -------------------------------------------------------------------------------------------------

void writeVisit(JsonWriter& json, const VisitRecord& record)
{
    writeRecord(json, record);
    json.member("time", record.time.isEmpty() ? std::nullopt : std::optional<QString>(record.time));
    json.member("title", record.title);
    json.member("url", record.url);
}

int listVisits(const QCommandLineParser& arguments)
{
    HistoryList list(pathArgument(arguments), NUMBERED_MAX);
    const auto cells = [](const VisitRecord& record) {
        return QStringList{printable(record.time), printable(record.title), printable(record.url)};
    };
    return listRecords(list, arguments,
                       ListView<VisitRecord>{{"time", "title", "address"}, cells, "visits", writeVisit});
}

// --- find -------------------------------------------------------------------------------------------------

/// The visit that answers, as the list shows it.
std::optional<VisitRecord> newestVisit(HistoryList& list, const QString& url)
{
    const std::optional<int> number = list.find(url);
    for (const VisitRecord& record : list.records()) {
        if (number && record.number == number)
            return record;
    }
    return std::nullopt;
}

int findVisit(const QCommandLineParser& arguments)
{
    HistoryList list(pathArgument(arguments), NUMBERED_MAX);
    const QString url = arguments.positionalArguments().at(1);
    std::optional<VisitRecord> visit;
    const auto print = [&] {
        visit = newestVisit(list, url);
        if (!visit)
            return;
        printLine("number   " + numberText(visit->number));
        printLine("time     " + HistoryList::timeText(list.entry(*visit->number).dateTime));
        printLine("title    " + printable(visit->title));
        printLine("address  " + printable(visit->url));
    };
    const auto write = [&](JsonWriter& json) {
        visit = newestVisit(list, url);
        json.member("visit");
        if (!visit) {
            json.null();
            return;
        }
        json.beginObject();
        writeVisit(json, *visit);
        json.endObject();
    };
    const int exitCode = listStore(list, arguments, print, write);
    if (exitCode != DONE || visit)
        return exitCode;
    complain(list.file().path(), QString("no visit of %1; addresses are compared exactly, see what \"tlvctl "
                                         "history list\" shows")
                                     .arg(quoted(url)));
    return FAILED;
}

// --- add --------------------------------------------------------------------------------------------------

int addVisit(const QCommandLineParser& arguments)
{
    const std::optional<int> maximum = maximumArgument(arguments);
    if (!maximum)
        return WRONG_USAGE;
    TVNS_History visit;
    visit.url = arguments.positionalArguments().at(1);
    visit.title = arguments.value(TITLE);
    visit.dateTime = QDateTime::currentDateTime();
    if (arguments.isSet(TIME) && !HistoryList::parseTime(arguments.value(TIME), visit.dateTime))
        return wrongUsage(QString("time %1 is none of the form \"yyyy/MM/dd hh:mm\", such as "
                                  "\"2011/04/12 10:15\"")
                              .arg(quoted(arguments.value(TIME))));

    HistoryList list(pathArgument(arguments), *maximum);
    if (visit.url.isEmpty()) {
        complain(list.file().path(), "nothing was added: the address is empty; give one");
        return FAILED;
    }
    // The store has no limit for its texts.
    if (!checkAddable(list, "address", visit.url, problemWithText(visit.url, -1)) ||
        !checkAddable(list, "title", visit.title, problemWithText(visit.title, -1)))
        return FAILED;
    const auto add = [&](QStringList& changes) {
        const std::optional<int> earlier = list.find(visit.url);
        if (earlier && !arguments.isSet(TITLE))
            visit.title = list.entry(*earlier).title;
        list.add(visit, changes);
        return Outcome::CHANGED;
    };
    const auto tellNumber = [&](QStringList& changes) {
        const std::optional<int> number = list.numberAfterSorting(visit);
        changes.append(changeLine("added", numberText(number), HistoryList::line(visit)));
    };
    return changeStore(list, arguments, add, tellNumber);
}

} // namespace

Command historyListCommand()
{
    Command command("list", "List the visits with their numbers, newest first.", listVisits);
    command.details = "Shows all that the file holds. Loading sorts the list and builds it anew.\n"
                      "Records that it changes or drops are marked with *, and lines below tell how.";
    command.examples = {"tlvctl history list /data/settings", "tlvctl history list --json /data/settings"};
    command.arguments = {directoryArgument("visit.xml")};
    command.options = {jsonOption()};
    return command;
}

Command historyFindCommand()
{
    Command command("find", "Show the newest visit of an address.", findVisit);
    command.details = "Ends with 1 when there is none. Addresses are compared exactly.";
    command.examples = {"tlvctl history find /data/settings http://example.com/"};
    command.arguments = {directoryArgument("visit.xml"), {"URL", "The address of the page."}};
    command.options = {jsonOption()};
    return command;
}

Command historyAddCommand()
{
    Command command("add", "Record a visit.", addVisit);
    command.details = "The newest visit of the same address, if there is one, is removed, and its title\n"
                      "kept when no other is given. When the list still holds as many visits as it may,\n"
                      "the oldest goes. Prints all that changed; the new visit's number is the one that\n"
                      "it has once the file is loaded and sorted.";
    command.examples = {"tlvctl history add /data/settings http://example.com/ --title Example",
                        "tlvctl history add /data/settings http://a.example/ --time \"2011/04/12 10:15\""};
    command.arguments = {directoryArgument("visit.xml"), {"URL", "The address of the page."}};
    command.options = changeOptions(
        "visit.xml", {{TITLE, "The page's title.", "T"},
                      {TIME, "When it was visited, \"yyyy/MM/dd hh:mm\"; now, if it is not given.", "TIME"},
                      maximumOption()});
    return command;
}

Command historyRemoveCommand()
{
    Command command("remove", "Remove visits.", removeUpToMaximum<HistoryList>);
    command.details = "The numbers are those that \"tlvctl history list\" shows. Nothing is removed when\n"
                      "one of them is absent. Prints what was removed.";
    command.examples = {"tlvctl history remove /data/settings 003 007"};
    command.arguments = {directoryArgument("visit.xml"), numbersArgument()};
    command.options = changeOptions("visit.xml", {maximumOption()});
    return command;
}
