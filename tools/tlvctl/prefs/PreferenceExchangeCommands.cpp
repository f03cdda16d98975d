#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/exchange/ExchangeFile.h"
#include "tools/tlvctl/prefs/PreferenceCommands.h"
#include "tools/tlvctl/prefs/PreferenceWishes.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace {

const QString WITH_PASSWORDS = "with-passwords";
const QString BASE64 = "base64";

// --- export -----------------------------------------------------------------------------------------------

/// Text, or an object with the base64 of bytes that are none.
QJsonValue valueOf(const QByteArray& bytes)
{
    const std::optional<QString> text = utf8Text(bytes);
    return text ? QJsonValue(*text) : QJsonObject{{BASE64, QString::fromLatin1(bytes.toBase64())}};
}

Export exportPreferences(const Preferences& preferences, const QString& scope, bool withPasswords)
{
    Export made;
    QJsonObject values;
    for (const PreferenceRecord& record : preferences.records()) {
        const Preference& preference = *record.preference;
        if (preference.isSecret && !withPasswords)
            made.lines.append(
                QString("left out  %1, which --with-passwords takes along").arg(preference.name));
        else
            values.insert(preference.name, valueOf(record.value));
    }
    made.readers = withPasswords ? Readers::OWNER : Readers::ALL;
    made.bytes = QJsonDocument(QJsonObject{{scope, values}}).toJson();
    made.lines.append(QString("exported: %1").arg(values.size()));
    return made;
}

int exportCommand(const QCommandLineParser& arguments)
{
    const std::unique_ptr<Preferences> preferences = openPreferences(arguments);
    if (!preferences)
        return WRONG_USAGE;
    return exportStore(*preferences, pathArgument(arguments, 2), arguments, [&] {
        return exportPreferences(*preferences, arguments.positionalArguments().at(0),
                                 arguments.isSet(WITH_PASSWORDS));
    });
}

// --- import -----------------------------------------------------------------------------------------------

/// The bytes of a value; numbers and truth values are taken as the words that they are written with.
std::optional<QByteArray> bytesOf(const QJsonValue& value)
{
    if (value.isObject() && value.toObject().value(BASE64).isString())
        return QByteArray::fromBase64(value.toObject().value(BASE64).toString().toLatin1());
    if (value.isString() || value.isDouble() || value.isBool())
        return value.toVariant().toString().toUtf8();
    return std::nullopt;
}

/// Reads the member of a scope. Complains and returns nothing when the file has none.
std::optional<QJsonObject> readValues(const QString& path, const QString& scope)
{
    const std::optional<QByteArray> bytes = readImport(path);
    if (!bytes)
        return std::nullopt;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(*bytes, &error);
    if (document.object().value(scope).isObject())
        return document.object().value(scope).toObject();
    const bool isJson = error.error == QJsonParseError::NoError;
    refuseImport(
        path, isJson
                  ? QString("it has no object %1; see what \"tlvctl prefs export\" writes").arg(quoted(scope))
                  : QString("it is no JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset));
    return std::nullopt;
}

/// All values of the file. Complains and returns nothing when one of them cannot be set.
std::optional<std::vector<Wish>> readWishes(const Preferences& preferences, const QString& path,
                                            const QJsonObject& values)
{
    std::vector<Wish> wishes;
    for (auto member = values.begin(); member != values.end(); ++member) {
        const Preference* const preference = findPreference(preferences, member.key());
        if (!preference)
            return std::nullopt;
        QString problem = "is neither a text nor a number";
        const std::optional<QByteArray> bytes = bytesOf(member.value());
        const std::optional<QByteArray> value =
            bytes ? preference->checkedValue(*bytes, problem) : std::nullopt;
        if (!value) {
            refuseImport(path, preference->name + ' ' + problem);
            return std::nullopt;
        }
        wishes.push_back({preference, *value});
    }
    return wishes;
}

int importCommand(const QCommandLineParser& arguments)
{
    const std::unique_ptr<Preferences> preferences = openPreferences(arguments);
    if (!preferences)
        return WRONG_USAGE;
    const QString path = pathArgument(arguments, 2);
    const std::optional<QJsonObject> values = readValues(path, arguments.positionalArguments().at(0));
    if (!values || !preferences->file().checkDirectory())
        return FAILED;
    const std::optional<std::vector<Wish>> wishes = readWishes(*preferences, path, *values);
    return wishes ? grantWishes(*preferences, *wishes, arguments) : FAILED;
}

} // namespace

Command preferenceExportCommand()
{
    Command command("export", "Write the preferences as JSON.", exportCommand);
    command.details =
        "An object with the member \"common\" or \"user\", which holds each preference by its name.\n"
        "The proxy's password is left out unless --with-passwords is given; the file is readable\n"
        "by its owner alone then. Without a settings file the defaults are written.";
    command.examples = {"tlvctl prefs export common /data/settings device.json",
                        "tlvctl prefs export user /data/user user.json"};
    command.arguments = {scopeArgument(), preferenceDirArgument(), exportArgument("the preferences")};
    command.options = exportOptions({{WITH_PASSWORDS, "Write the proxy's password, too."}});
    return command;
}

Command preferenceImportCommand()
{
    Command command("import", "Set the preferences that a file holds.", importCommand);
    command.details =
        "FILE is what \"tlvctl prefs export\" writes, or a part of it: what it does not name stays\n"
        "as it is. All values are checked before the first is set.";
    command.examples = {"tlvctl prefs import common /data/settings device.json --dry-run",
                        "tlvctl prefs import user /data/user user.json"};
    command.arguments = {scopeArgument(), preferenceDirArgument(), {"FILE", "The file to import."}};
    command.options = changeOptions("the settings file");
    return command;
}
