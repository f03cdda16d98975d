#include "tools/tlvctl/auth/AuthListCommand.h"

#include "tools/tlvctl/auth/AuthList.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

namespace {

const QString SHOW_PASSWORDS = "show-passwords";

void printEntries(const AuthList& list, bool withPasswords)
{
    const std::vector<AuthRecord> records = list.records();
    const auto cells = [&records, withPasswords](size_t i) {
        const TVNS_AuthInfo& info = records[i].info;
        QStringList row{printable(info.hostName), printable(info.portNum), AuthList::typeName(info.authType),
                        printableBytes(info.user)};
        if (withPasswords)
            row.append(printableBytes(info.passwd));
        return row;
    };
    QStringList header{"host", "port", "type", "user"};
    if (withPasswords)
        header.append("password");
    printRecords(list.count(), header, {records.begin(), records.end()}, cells,
                 remarkAboutNumbers(list.renumbered()));
}

void writeEntry(JsonWriter& json, const AuthRecord& record, bool withPasswords)
{
    json.beginObject();
    writeRecord(json, record);
    json.member("host");
    json.string(record.info.hostName);
    json.member("port");
    json.string(record.info.portNum);
    json.member("type");
    json.string(AuthList::typeName(record.info.authType));
    writeBytes(json, "user", "userBase64", record.info.user);
    if (withPasswords)
        writeBytes(json, "password", "passwordBase64", record.info.passwd);
    json.endObject();
}

void writeEntries(JsonWriter& json, const AuthList& list, bool withPasswords)
{
    json.member("renumbered");
    json.number(list.renumbered());
    json.member("entries");
    json.beginArray();
    for (const AuthRecord& record : list.records())
        writeEntry(json, record, withPasswords);
    json.endArray();
}

int listEntries(const QCommandLineParser& arguments)
{
    AuthList list(pathArgument(arguments), NUMBERED_MAX);
    const bool withPasswords = arguments.isSet(SHOW_PASSWORDS);
    return listStore(
        list, arguments, [&] { printEntries(list, withPasswords); },
        [&](JsonWriter& json) { writeEntries(json, list, withPasswords); });
}

} // namespace

Command authListCommand()
{
    Command command;
    command.name = "list";
    command.summary = "List the credentials with their numbers, newest first.";
    command.details = "Shows all that the file holds, as the store answers it. Records that the store\n"
                      "hides in part or in full are marked with *, and lines below the table tell how.\n"
                      "User names and passwords that are no UTF-8 are shown in base64.";
    command.examples = {"tlvctl auth list /data/settings",
                        "tlvctl auth list --json --show-passwords /data/settings"};
    command.arguments = {directoryArgument("authinfo.xml")};
    command.options = {jsonOption(), {SHOW_PASSWORDS, "Show the passwords, too."}};
    command.run = listEntries;
    return command;
}
