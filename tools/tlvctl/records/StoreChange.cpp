#include "tools/tlvctl/records/StoreChange.h"

#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/records/Record.h"

#include <algorithm>
#include <set>

namespace {

const QString FORCE = "force";
const QString DRY_RUN = "dry-run";
const QString MAX = "max";

void writeChanges(const StoreFile& file, bool isDryRun, const QStringList& changes)
{
    JsonWriter json;
    json.beginObject();
    json.member("file", file.path());
    json.member("dryRun", isDryRun);
    json.member("changes", changes);
    json.endObject();
}

void printChanges(const StoreFile& file, bool isDryRun, const QStringList& changes, bool isChanged)
{
    const QString path = printable(file.path());
    if (isDryRun && !isChanged)
        printLine(QString("dry run: nothing would change in %1").arg(path));
    else if (isDryRun)
        printLine(QString("dry run: nothing is written to %1, where this would change:").arg(path));
    for (const QString& line : changes)
        printLine(line);
}

/// One of the numbers that no record has, if there is one.
std::optional<int> absentNumber(const Store& store, const std::set<int>& numbers)
{
    QSet<int> present;
    for (TVNC_XMLNode* record : std::as_const(store.root().getXMLNodeChildren()))
        numberOf(*record, present);
    const auto absent = std::find_if(numbers.begin(), numbers.end(),
                                     [&present](int number) { return !present.contains(number); });
    return absent == numbers.end() ? std::nullopt : std::optional<int>(*absent);
}

/// Reads "007" or a range, "0-2". Complains and returns false when it is neither.
bool readNumbers(const QString& argument, std::set<int>& numbers)
{
    const int at = static_cast<int>(argument.indexOf('-'));
    const int dash = parseNumber(argument.left(at)) && parseNumber(argument.mid(at + 1)) ? at : -1;
    const std::optional<int> first = recordNumber(dash < 0 ? argument : argument.left(dash));
    const std::optional<int> last = dash < 0 ? first : recordNumber(argument.mid(dash + 1));
    if (!first || !last)
        return false;
    if (*first > *last || *last - *first >= NUMBERED_MAX) {
        wrongUsage(QString("%1 is no range of numbers").arg(quoted(argument)));
        return false;
    }
    for (int i = 0; i <= *last - *first; ++i) // the last number there is may be the last
        numbers.insert(*first + i);
    return true;
}

/// Saves the store. Keeps a copy of what only --force replaces.
bool save(Store& store, bool isReplacing, QStringList& changes)
{
    if (isReplacing) {
        const std::optional<QString> copy = store.file().keepCopy();
        if (!copy)
            return false;
        if (!copy->isEmpty())
            changes.append(QString("as it was, the file is in %1").arg(printable(*copy)));
    }
    return store.saveChecked();
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
               jsonOption(),
               {DRY_RUN, "Write nothing, but say what would change."},
               {FORCE,
                QString("Go on when %1 cannot be read to its end, or is another document. A copy of it is "
                        "kept.")
                    .arg(fileName)}};
}

int changeStore(Store& store, const QCommandLineParser& arguments,
                const std::function<Outcome(QStringList& changes)>& change,
                const std::function<void(QStringList& changes)>& finish)
{
    const StoreFile& file = store.file();
    DirectoryLock lock;
    if (!file.checkDirectory() || (!isDryRun(arguments) && !lock.take(file.dir())))
        return FAILED;
    Document document = readDocument(file.path());
    const bool isWhole = document.state == Document::State::COMPLETE && store.hasOwnRoot(document);
    const bool isForced = arguments.isSet(FORCE);
    if ((!isForced && (!file.checkReplaceable(document) || !store.checkRoot(document))) ||
        !file.checkWritable())
        return FAILED;
    store.load(std::move(document.root));
    QStringList changes;
    const Outcome outcome = change(changes);
    if (outcome == Outcome::REFUSED)
        return FAILED;
    if (outcome == Outcome::CHANGED) {
        if (!isDryRun(arguments) && !save(store, isForced && !isWhole, changes))
            return FAILED;
        if (finish)
            finish(changes);
        changes = store.changesOfLoading() + changes;
    }
    tellChanges(file, arguments, changes, outcome == Outcome::CHANGED);
    return DONE;
}

void tellChanges(const StoreFile& file, const QCommandLineParser& arguments, const QStringList& changes,
                 bool isChanged)
{
    if (arguments.isSet("json"))
        writeChanges(file, isDryRun(arguments), changes);
    else
        printChanges(file, isDryRun(arguments), changes, isChanged);
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
        if (!readNumbers(text, numbers))
            return WRONG_USAGE;
    }
    const auto removeAll = [&](QStringList& changes) {
        if (const std::optional<int> absent = absentNumber(store, numbers))
            return refused(store, noSuchRecord(*absent));
        for (const int number : numbers)
            changes.append(changeLine("removed", numberText(number), describe(number)));
        // From the back, so that the numbers of those to come stay what they are.
        std::for_each(numbers.rbegin(), numbers.rend(), remove);
        return Outcome::CHANGED;
    };
    return changeStore(store, arguments, removeAll, finish);
}

bool hasRecord(const Store& store, int number)
{
    return !absentNumber(store, {number});
}

QString noSuchRecord(int number)
{
    return QString("there is no record %1; see what the command \"list\" shows").arg(numberText(number));
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
