#include "tools/tlvctl/history/HistoryChangeCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

const QString TITLE = "title";
const QString TIME = "time";

/// Complains and returns false when the file cannot keep a text.
bool checkText(const HistoryList& list, const char* what, const QString& text)
{
    const QString problem = problemWithText(text, -1); // the store has no limit for its texts
    if (problem.isEmpty())
        return true;
    complain(list.file().path(),
             QString("nothing was added: the %1 %2 %3; give another one").arg(what, quoted(text), problem));
    return false;
}

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
    if (!checkText(list, "address", visit.url) || !checkText(list, "title", visit.title))
        return FAILED;
    const auto add = [&](QStringList& changes) {
        const std::optional<int> earlier = list.find(visit.url);
        if (earlier && !arguments.isSet(TITLE))
            visit.title = list.visit(*earlier).title;
        list.add(visit, changes);
        return Outcome::CHANGED;
    };
    const auto tellNumber = [&](QStringList& changes) {
        const std::optional<int> number = list.numberAfterSorting(visit);
        changes.append(changeLine("added", numberText(number), HistoryList::line(visit)));
    };
    return changeStore(list, arguments, add, tellNumber);
}

int removeVisits(const QCommandLineParser& arguments)
{
    const std::optional<int> maximum = maximumArgument(arguments);
    if (!maximum)
        return WRONG_USAGE;
    HistoryList list(pathArgument(arguments), *maximum);
    return removeRecords(
        list, arguments, [&list](int number) { return HistoryList::line(list.visit(number)); },
        [&list](int number) { list.remove(number); });
}

} // namespace

Command historyAddCommand()
{
    Command command;
    command.name = "add";
    command.summary = "Record a visit.";
    command.details = "The newest visit of the same address, if there is one, is removed, and its title\n"
                      "kept when no other is given. When the list still holds as many visits as it may,\n"
                      "the oldest goes. Prints all that changed; the new visit's number is the one that\n"
                      "it has once the file is loaded and sorted.";
    command.examples = {"tlvctl history add /data/settings http://example.com/ --title Example",
                        "tlvctl history add /data/settings http://a.example/ --time \"2011/04/12 10:15\""};
    command.arguments = {directoryArgument("visit.xml"), {"URL", "The address of the page."}};
    command.options = {{TITLE, "The page's title.", "T"},
                       {TIME, "When it was visited, \"yyyy/MM/dd hh:mm\"; now, if it is not given.", "TIME"},
                       maximumOption()};
    command.options += changeOptions("visit.xml");
    command.run = addVisit;
    return command;
}

Command historyRemoveCommand()
{
    Command command;
    command.name = "remove";
    command.summary = "Remove visits.";
    command.details = "The numbers are those that \"tlvctl history list\" shows. Nothing is removed when\n"
                      "one of them is absent. Prints what was removed.";
    command.examples = {"tlvctl history remove /data/settings 003 007"};
    command.arguments = {directoryArgument("visit.xml"), numbersArgument()};
    command.options = {maximumOption()};
    command.options += changeOptions("visit.xml");
    command.run = removeVisits;
    return command;
}
