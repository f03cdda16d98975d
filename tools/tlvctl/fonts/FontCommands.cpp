#include "tools/tlvctl/fonts/FontCommands.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/fonts/FontList.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QSet>
#include <QtGui/QFont>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>

#include <algorithm>

namespace {

// --- list -------------------------------------------------------------------------------------------------

/// The flaws stand behind each name: names alone need no table.
void printFonts(const FontList& list)
{
    const std::vector<FontRecord> records = list.records();
    for (const FontRecord& record : records)
        printLine(recordName(record) +
                  (record.flaws.empty() ? QString() : "  (" + explanationsOf(record.flaws) + ')'));
    printCount(list.count(), {records.begin(), records.end()}, "hidden in part or in full");
}

void writeFont(JsonWriter& json, const FontRecord& record)
{
    json.member("number", record.number);
    json.member("name", record.name);
    json.member("element", record.element);
    json.member("hidden", namesOf(record.flaws));
}

int listFonts(const QCommandLineParser& arguments)
{
    FontList list(pathArgument(arguments));
    return listStore(
        list, arguments, [&list] { printFonts(list); },
        [&list](JsonWriter& json) { writeArray(json, "fonts", list.records(), writeFont); });
}

// --- both -------------------------------------------------------------------------------------------------

void addAll(FontList& list, const QStringList& names, QStringList& changes)
{
    for (const QString& name : names)
        changes.append(numberText(list.add(name)) + FontList::label(name));
}

void complainAboutNumbers(const FontList& list, const QString& what)
{
    complain(list.file().path(),
             what + ": the store numbers at most 999 records; delete records from the file first");
}

// --- add --------------------------------------------------------------------------------------------------

int addFonts(const QCommandLineParser& arguments)
{
    FontList list(pathArgument(arguments));
    const QStringList names = arguments.positionalArguments().mid(1);
    for (const QString& name : names) {
        if (!checkAddable(list, "name", name, FontList::problemWithFont(name), "another name"))
            return FAILED;
    }
    return changeStore(list, arguments, [&](QStringList& changes) {
        if (names.size() > list.numbersLeft()) {
            complainAboutNumbers(list, QString("nothing was added: %1 given, numbers left for %2")
                                           .arg(names.size())
                                           .arg(list.numbersLeft()));
            return Outcome::REFUSED;
        }
        addAll(list, names, changes);
        return Outcome::CHANGED;
    });
}

// --- import -----------------------------------------------------------------------------------------------

/// What becomes of the font families of this machine.
struct ImportPlan
{
    QStringList added;
    int listed = 0;
    int unusable = 0; ///< too long, or nothing that the file can keep
    int unnumbered = 0;
};

ImportPlan planImport(const FontList& list, const QStringList& families)
{
    QSet<QString> listed;
    for (const FontRecord& record : list.records())
        listed.insert(record.name);

    ImportPlan plan;
    for (const QString& family : families) {
        if (listed.contains(family))
            ++plan.listed;
        else if (!FontList::problemWithFont(family).isEmpty())
            ++plan.unusable;
        else if (plan.added.size() >= list.numbersLeft())
            ++plan.unnumbered;
        else
            plan.added.append(family);
    }
    return plan;
}

/// Qt lists its generic families, such as "Serif", even when no font stands behind them.
bool haveFonts(const QStringList& families)
{
    return std::any_of(families.begin(), families.end(),
                       [](const QString& family) { return !QFontInfo(QFont(family)).family().isEmpty(); });
}

int importFonts(const QCommandLineParser& arguments)
{
    FontList list(pathArgument(arguments));
    const QStringList families = QFontDatabase().families();
    ImportPlan plan;
    const int exitCode = changeStore(list, arguments, [&](QStringList& changes) {
        if (!haveFonts(families)) {
            complain("Qt finds no fonts on this machine; install a font package, such as "
                     "fonts-dejavu, and check with \"fc-list\"");
            return Outcome::REFUSED;
        }
        plan = planImport(list, families);
        addAll(list, plan.added, changes);
        changes.append(QString("%1 found: %2 added, %3 already listed, %4 skipped (name too long or "
                               "unusable), %5 skipped (no number left)")
                           .arg(families.size())
                           .arg(plan.added.size())
                           .arg(plan.listed)
                           .arg(plan.unusable)
                           .arg(plan.unnumbered));
        return plan.added.isEmpty() ? Outcome::UNCHANGED : Outcome::CHANGED;
    });
    if (exitCode != DONE || plan.unnumbered == 0)
        return exitCode;
    complainAboutNumbers(list, QString("%1 skipped").arg(plan.unnumbered));
    return FAILED;
}

} // namespace

Command fontListCommand()
{
    Command command("list", "List the fonts with their numbers.", listFonts);
    command.details = "Shows all that the file holds, and says in parentheses what of it is hidden from\n"
                      "the users of the store.";
    command.examples = {"tlvctl fonts list /data/settings", "tlvctl fonts list --json /data/settings"};
    command.arguments = {directoryArgument("fontlist.xml")};
    command.options = {jsonOption()};
    return command;
}

Command fontAddCommand()
{
    Command command("add", "Add fonts at the end of the list.", addFonts);
    command.details = "Prints what was added with its number. The same name may stand twice.";
    command.examples = {"tlvctl fonts add /data/settings \"DejaVu Sans\" \"VL Gothic\"",
                        "tlvctl fonts add /data/settings -- \"-a name that begins with a dash\""};
    command.arguments = {directoryArgument("fontlist.xml"),
                         {"NAME", "The name of a font, at most 256 bytes of UTF-8.", true}};
    command.options = changeOptions("fontlist.xml");
    return command;
}

Command fontImportCommand()
{
    Command command("import", "Add the fonts of this machine that are not listed yet.", importFonts);
    command.details = "Adds the font families that Qt finds, in Qt's order. Ends with 1 when a family\n"
                      "was skipped because the list is full.";
    command.examples = {"tlvctl fonts import /data/settings"};
    command.arguments = {directoryArgument("fontlist.xml")};
    command.options = changeOptions("fontlist.xml");
    command.needsGui = true;
    return command;
}
