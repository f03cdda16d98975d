#include "tools/tlvctl/prefs/PreferenceCommands.h"

#include "tools/tlvctl/commandline/Password.h"
#include "tools/tlvctl/commandline/Table.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/prefs/PreferenceWishes.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <algorithm>

namespace {

const QString SHOW_PASSWORDS = "show-passwords";
const QString PASSWORD_FILE = "password-file";

QString shownValue(const Preference& preference, const QByteArray& value, bool withPasswords)
{
    return preference.isSecret && !withPasswords ? "(hidden)" : printableBytes(value);
}

// --- show, get --------------------------------------------------------------------------------------------

void printPreferences(const Preferences& preferences, bool withPasswords)
{
    const std::vector<PreferenceRecord> records = preferences.records();
    Table table({"name", "value", "meaning", "allowed"}, true);
    for (const PreferenceRecord& record : records) {
        const Preference& preference = *record.preference;
        table.addRow({preference.name + (record.flaws.empty() ? "" : "*"),
                      shownValue(preference, record.value, withPasswords), preference.meaning,
                      preference.allowed()});
    }
    table.print();
    for (const PreferenceRecord& record : records) {
        if (!record.flaws.empty())
            printLine("* " + record.preference->name + ": " + explanationsOf(record.flaws));
    }
    if (!preferences.isLoadedFromFile())
        printLine("these are the defaults, because there is nothing to read in " +
                  printable(preferences.file().path()));
}

void writePreference(JsonWriter& json, const PreferenceRecord& record, bool withPasswords)
{
    const Preference& preference = *record.preference;
    json.member("name", preference.name);
    if (!preference.isSecret || withPasswords) {
        writeBytes(json, "value", "valueBase64", record.value);
        json.member("stored", record.stored);
    }
    json.member("flaws", namesOf(record.flaws));
}

int showPreferences(const QCommandLineParser& arguments)
{
    const std::unique_ptr<Preferences> preferences = openPreferences(arguments);
    if (!preferences)
        return WRONG_USAGE;
    const bool withPasswords = arguments.isSet(SHOW_PASSWORDS);
    return listStore(
        *preferences, arguments, [&] { printPreferences(*preferences, withPasswords); },
        [&](JsonWriter& json) {
            writeArray(json, "preferences", preferences->records(),
                       [withPasswords](JsonWriter& member, const PreferenceRecord& record) {
                           writePreference(member, record, withPasswords);
                       });
        });
}

int getPreference(const QCommandLineParser& arguments)
{
    const std::unique_ptr<Preferences> preferences = openPreferences(arguments);
    if (!preferences)
        return WRONG_USAGE;
    const Preference* const preference = findPreference(*preferences, arguments.positionalArguments().at(2));
    if (!preference)
        return FAILED;
    const bool withPasswords = arguments.isSet(SHOW_PASSWORDS);
    if (preference->isSecret && !withPasswords) {
        complain(preferences->file().path(),
                 QString("%1 is only shown with --show-passwords").arg(preference->name));
        return FAILED;
    }
    const std::optional<Document> document = loadToRead(*preferences);
    if (!document)
        return FAILED;
    const PreferenceRecord record = preferences->record(*preference);
    if (arguments.isSet("json")) {
        JsonWriter json;
        json.beginObject();
        writePreference(json, record, withPasswords);
        json.endObject();
    } else {
        printLine(printableBytes(record.value));
    }
    return exitCodeOfReading(preferences->file().path(), *document);
}

// --- set --------------------------------------------------------------------------------------------------

/// Reads a value. Complains and returns nothing when it cannot be one.
std::optional<QByteArray> readValue(const Preferences& preferences, const Preference& preference,
                                    const QString& argument, const QCommandLineParser& arguments)
{
    QByteArray value = argument.toUtf8();
    if (preference.isSecret) {
        if (argument != "-") {
            preferences.refuse(
                QString(
                    "give \"-\" for the value of %1, which is then read from "
                    "--password-file, from standard input or from the keyboard; every user of the machine "
                    "can read a command line")
                    .arg(preference.name));
            return std::nullopt;
        }
        std::optional<QString> path;
        if (arguments.isSet(PASSWORD_FILE))
            path = arguments.value(PASSWORD_FILE);
        return readPassword(path, preference.maxBytes);
    }
    QString problem;
    const std::optional<QByteArray> checked = preference.checkedValue(value, problem);
    if (checked && !arguments.isSet("force"))
        problem = preference.doubtAbout(*checked);
    if (checked && !problem.isEmpty()) {
        preferences.refuse(QString("%1 %2").arg(preference.name, problem));
        return std::nullopt;
    }
    if (!checked)
        preferences.refuse(QString("%1 %2").arg(preference.name, problem));
    return checked;
}

/// Reads all pairs of names and values. Complains and returns nothing when one of them is wrong.
std::optional<std::vector<Wish>> readWishes(const Preferences& preferences,
                                            const QCommandLineParser& arguments)
{
    const QStringList words = arguments.positionalArguments().mid(2);
    std::vector<Wish> wishes;
    for (int i = 0; i + 1 < words.size(); i += 2) {
        const Preference* const preference = findPreference(preferences, words.at(i));
        if (!preference)
            return std::nullopt;
        if (std::any_of(wishes.begin(), wishes.end(),
                        [preference](const Wish& wish) { return wish.preference == preference; })) {
            preferences.refuse(QString("%1 is set twice").arg(preference->name));
            return std::nullopt;
        }
        const std::optional<QByteArray> value =
            readValue(preferences, *preference, words.at(i + 1), arguments);
        if (!value)
            return std::nullopt;
        wishes.push_back({preference, *value});
    }
    return wishes;
}

int setPreferences(const QCommandLineParser& arguments)
{
    const std::unique_ptr<Preferences> preferences = openPreferences(arguments);
    if (!preferences)
        return WRONG_USAGE;
    if (arguments.positionalArguments().size() % 2 != 0)
        return wrongUsage("the last name has no value");
    if (!preferences->file().checkDirectory())
        return FAILED;
    const std::optional<std::vector<Wish>> wishes = readWishes(*preferences, arguments);
    if (!wishes)
        return FAILED;
    return grantWishes(*preferences, *wishes, arguments);
}

// --- The commands -----------------------------------------------------------------------------------------

const QCommandLineOption SHOW_PASSWORDS_OPTION{SHOW_PASSWORDS, "Show the proxy's password, too."};

/// The names of all preferences, for the help.
QString namesOf(const std::vector<Preference>& table)
{
    QString lines;
    for (const Preference& preference : table)
        lines += QString("\n  %1 %2").arg(preference.name.leftJustified(19), preference.meaning);
    return lines;
}

} // namespace

Command preferenceShowCommand()
{
    Command command("show", "Show all preferences with their values.", showPreferences);
    command.details = "Where the file holds something else than the store answers, the name is marked with\n"
                      "*, and a line below the table tells what.";
    command.examples = {"tlvctl prefs show common /data/settings",
                        "tlvctl prefs show user /data/user --json"};
    command.arguments = {scopeArgument(), preferenceDirArgument()};
    command.options = {jsonOption(), SHOW_PASSWORDS_OPTION};
    return command;
}

Command preferenceGetCommand()
{
    Command command("get", "Print the value of a preference.", getPreference);
    command.examples = {"tlvctl prefs get common /data/settings proxy.host"};
    command.arguments = {scopeArgument(),
                         preferenceDirArgument(),
                         {"NAME", "The name of a preference, as \"tlvctl prefs show\" shows it."}};
    command.options = {jsonOption(), SHOW_PASSWORDS_OPTION};
    return command;
}

Command preferenceSetCommand()
{
    Command command("set", "Set preferences.", setPreferences);
    command.details =
        "All values are checked before the first is set. The names for common are:" +
        namesOf(commonPreferences()) + "\nand for user:" + namesOf(userPreferences()) +
        "\n\nFor \"yes\" and \"no\" there are also \"on\" and \"off\", and for a zoom of \"1.2\"\n"
        "\"120%\". The value of proxy.password is \"-\".";
    command.examples = {
        "tlvctl prefs set common /data/settings proxy.host proxy.example.net proxy.enabled yes",
        "tlvctl prefs set user /data/user page.zoom 1.2",
        "tlvctl prefs set common /data/settings proxy.password - --password-file secret"};
    command.arguments = {scopeArgument(),
                         preferenceDirArgument(),
                         {"NAME", "The name of a preference."},
                         {"VALUE", "Its value; more names and values may follow.", true}};
    command.options = changeOptions(
        "the file", {{PASSWORD_FILE, "Read the proxy's password from this file, at most 80 bytes.", "FILE"}});
    return command;
}
