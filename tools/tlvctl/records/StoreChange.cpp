#include "tools/tlvctl/records/StoreChange.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <algorithm>
#include <set>

namespace {

const QString FORCE = "force";
const QString DRY_RUN = "dry-run";
const QString MAX = "max";

void printChanges(const Store& store, bool isDryRun, const QStringList& changes)
{
    const QString path = printable(store.file().path());
    if (isDryRun && changes.isEmpty())
        printLine(QString("dry run: nothing would change in %1").arg(path));
    else if (isDryRun)
        printLine(QString("dry run: nothing is written to %1, where this would change:").arg(path));
    for (const QString& line : changes)
        printLine(line);
}

/// Saves the store and reads the file back. Complains when that went wrong.
bool saveStore(Store& store)
{
    store.save();
    return store.checkSaved();
}

/// Complains and returns false when one of the records is absent.
bool checkPresent(const Store& store, const std::set<int>& numbers)
{
    QSet<int> present;
    for (TVNC_XMLNode* record : std::as_const(store.root().getXMLNodeChildren()))
        numberOf(*record, present);
    for (const int number : numbers) {
        if (present.contains(number))
            continue;
        store.refuse(QString("there is no record %1; see what the command "
                             "\"list\" shows")
                         .arg(numberText(number)));
        return false;
    }
    return true;
}

} // namespace

Outcome refused(const Store& store, const QString& problem)
{
    store.refuse(problem);
    return Outcome::REFUSED;
}

QList<QCommandLineOption> changeOptions(const QString& fileName, const QList<QCommandLineOption>& own)
{
    return own +
           QList<QCommandLineOption>{
               {DRY_RUN, "Write nothing, but say what would change."},
               {FORCE, QString("Go on when %1 cannot be read to its end. What could not be read is lost.")
                           .arg(fileName)}};
}

int changeStore(Store& store, const QCommandLineParser& arguments,
                const std::function<Outcome(QStringList& changes)>& change,
                const std::function<void(QStringList& changes)>& finish)
{
    if (!store.file().checkDirectory() || !store.file().checkReplaceable(arguments.isSet(FORCE)))
        return FAILED;
    store.load();
    QStringList changes;
    const Outcome outcome = change(changes);
    if (outcome == Outcome::REFUSED)
        return FAILED;
    if (outcome == Outcome::CHANGED) {
        if (!isDryRun(arguments) && !saveStore(store))
            return FAILED;
        if (finish)
            finish(changes);
        changes = store.changesOfLoading() + changes;
    }
    printChanges(store, isDryRun(arguments), changes);
    return DONE;
}

std::optional<int> parseNumber(const QString& text)
{
    const bool isPlain = !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= '0' && character <= '9';
    });
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isPlain && isNumber ? std::optional<int>(number) : std::nullopt;
}

std::optional<int> recordNumber(const QString& argument)
{
    const std::optional<int> number = parseNumber(argument);
    if (!number)
        wrongUsage(QString("%1 is no number of a record").arg(quoted(argument)));
    return number;
}

bool checkAddable(const Store& store, const QString& what, const QString& text, const QString& problem,
                  const QString& advice)
{
    if (!problem.isEmpty())
        complain(
            store.file().path(),
            QString("nothing was added: the %1 %2 %3; give %4").arg(what, quoted(text), problem, advice));
    return problem.isEmpty();
}

bool isDryRun(const QCommandLineParser& arguments)
{
    return arguments.isSet(DRY_RUN);
}

Argument numbersArgument()
{
    return {"NUMBER", "The number of a record, such as 003, as it is before the command.", true};
}

int removeRecords(Store& store, const QCommandLineParser& arguments,
                  const std::function<QString(int number)>& describe,
                  const std::function<void(int number)>& remove,
                  const std::function<void(QStringList& changes)>& finish)
{
    std::set<int> numbers;
    for (const QString& text : arguments.positionalArguments().mid(1)) {
        const std::optional<int> number = recordNumber(text);
        if (!number)
            return WRONG_USAGE;
        numbers.insert(*number);
    }
    const auto removeAll = [&](QStringList& changes) {
        if (!checkPresent(store, numbers))
            return Outcome::REFUSED;
        for (const int number : numbers)
            changes.append(changeLine("removed", numberText(number), describe(number)));
        // From the back, so that the numbers of those to come stay what they are.
        std::for_each(numbers.rbegin(), numbers.rend(), remove);
        return Outcome::CHANGED;
    };
    return changeStore(store, arguments, removeAll, finish);
}

bool checkPresent(const Store& store, int number)
{
    return checkPresent(store, std::set<int>{number});
}

QString changeLine(const char* verb, const QString& number, const QString& what)
{
    return QString("%1  %2  %3").arg(QString(verb).leftJustified(7), number, what);
}

QCommandLineOption maximumOption()
{
    return {MAX, QString("How many records the store is to keep at most, 1 to %1.").arg(NUMBERED_MAX), "N",
            QString::number(NUMBERED_MAX)};
}

std::optional<int> maximumArgument(const QCommandLineParser& arguments)
{
    const QString text = arguments.value(MAX);
    const std::optional<int> maximum = parseNumber(text);
    if (maximum && *maximum >= 1 && *maximum <= NUMBERED_MAX)
        return maximum;
    wrongUsage(
        QString("maximum %1 is no number from 1 to %2").arg(quoted(text), QString::number(NUMBERED_MAX)));
    return std::nullopt;
}
