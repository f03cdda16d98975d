#include "tools/tlvctl/auth/AuthCommands.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/auth/AuthList.h"
#include "tools/tlvctl/commandline/Password.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

const QString SHOW_PASSWORDS = "show-passwords";
const QString TYPE = "type";
const QString USER = "user";
const QString PASSWORD_FILE = "password-file";

// --- list -------------------------------------------------------------------------------------------------

int listEntries(const QCommandLineParser& arguments)
{
    AuthList list(pathArgument(arguments), NUMBERED_MAX);
    const bool withPasswords = arguments.isSet(SHOW_PASSWORDS);
    const auto cells = [withPasswords](const AuthRecord& record) {
        const TVNS_AuthInfo& info = record.info;
        QStringList row{printable(info.hostName), printable(info.portNum), AuthList::typeName(info.authType),
                        printableBytes(info.user)};
        if (withPasswords)
            row.append(printableBytes(info.passwd));
        return row;
    };
    const auto write = [withPasswords](JsonWriter& json, const AuthRecord& record) {
        writeRecord(json, record);
        json.member("host", record.info.hostName);
        json.member("port", record.info.portNum);
        json.member("type", AuthList::typeName(record.info.authType));
        writeBytes(json, "user", "userBase64", record.info.user);
        if (withPasswords)
            writeBytes(json, "password", "passwordBase64", record.info.passwd);
    };
    QStringList header{"host", "port", "type", "user"};
    if (withPasswords)
        header.append("password");
    return listRecords(list, arguments, ListView<AuthRecord>{header, cells, "entries", write});
}

// --- add --------------------------------------------------------------------------------------------------

bool refuse(const AuthList& list, const QString& problem)
{
    complain(list.file().path(), QString("nothing was added: %1; give another one").arg(problem));
    return false;
}

bool checkUser(const AuthList& list, const QByteArray& user)
{
    return user.size() <= TVNG_USER_MAX_BYTES ||
           refuse(list, QString("the user name has %1 bytes, more than the %2 that the store takes")
                            .arg(user.size())
                            .arg(TVNG_USER_MAX_BYTES));
}

/// Reads the options, all of which must be there. Complains and returns false when they are not as they
/// should be.
bool readOptions(const QCommandLineParser& arguments, TVNS_AuthInfo& info)
{
    for (const QString& option : {TYPE, USER}) {
        if (arguments.isSet(option))
            continue;
        wrongUsage("missing option --" + option);
        return false;
    }
    const QString word = arguments.value(TYPE);
    const std::optional<unsigned char> type = AuthList::typeOf(word);
    if (!type) {
        wrongUsage(QString("type %1 is none of basic, digest, ntlm").arg(quoted(word)));
        return false;
    }
    info.authType = *type;
    info.user = arguments.value(USER).toUtf8();
    return true;
}

int addEntry(const QCommandLineParser& arguments)
{
    const std::optional<int> maximum = maximumArgument(arguments);
    TVNS_AuthInfo info;
    if (!maximum || !readOptions(arguments, info))
        return WRONG_USAGE;
    info.hostName = arguments.positionalArguments().at(1);
    info.portNum = arguments.positionalArguments().at(2);

    AuthList list(pathArgument(arguments), *maximum);
    if (!list.file().checkDirectory() ||
        !checkAddable(list, "host name", info.hostName,
                      problemWithName(info.hostName, TVNG_HOST_NAME_MAX_BYTES)) ||
        !checkAddable(list, "port", info.portNum, problemWithName(info.portNum, TVNG_PORT_NUM_MAX_BYTES)) ||
        !checkUser(list, info.user))
        return FAILED;
    std::optional<QString> path;
    if (arguments.isSet(PASSWORD_FILE))
        path = arguments.value(PASSWORD_FILE);
    const std::optional<QByteArray> password = readPassword(path, TVNG_PASSWD_MAX_BYTES);
    if (!password)
        return FAILED;
    info.passwd = *password;
    return changeStore(list, arguments, [&](QStringList& changes) {
        if (list.add(info, changes))
            return Outcome::CHANGED;
        refuse(list, "the store refuses the entry");
        return Outcome::REFUSED;
    });
}

} // namespace

Command authListCommand()
{
    Command command("list", "List the credentials with their numbers, newest first.", listEntries);
    command.details = "Shows all that the file holds, as the store answers it. Records that the store\n"
                      "hides in part or in full are marked with *, and lines below the table tell how.\n"
                      "User names and passwords that are no UTF-8 are shown in base64.";
    command.examples = {"tlvctl auth list /data/settings",
                        "tlvctl auth list --json --show-passwords /data/settings"};
    command.arguments = {directoryArgument("authinfo.xml")};
    command.options = {jsonOption(), {SHOW_PASSWORDS, "Show the passwords, too."}};
    return command;
}

Command authAddCommand()
{
    Command command("add", "Add the credentials for a server.", addEntry);
    command.details = "The password is read from --password-file or standard input, up to the end and\n"
                      "without one line break there; on a terminal it is asked for. It is no argument\n"
                      "because every user of the machine can read those.\n"
                      "\n"
                      "The new entry gets number 000. When the list holds as many entries as it may,\n"
                      "the oldest goes. An older entry for the same server stays behind the new one.";
    command.examples = {"tlvctl auth add /data/settings example.com 443 --type digest --user me",
                        "tlvctl auth add /data/settings intra 80 --type ntlm --user me \\\n"
                        "      --password-file secret"};
    command.arguments = {directoryArgument("authinfo.xml"),
                         {"HOST", "The server's name, at most 256 bytes of UTF-8."},
                         {"PORT", "The server's port, at most 5 bytes."}};
    command.options = changeOptions(
        "authinfo.xml", {{TYPE, "The scheme: basic, digest or ntlm.", "TYPE"},
                         {USER, "The user's name, at most 272 bytes of UTF-8.", "U"},
                         {PASSWORD_FILE, "Read the password from this file, at most 272 bytes.", "FILE"},
                         maximumOption()});
    return command;
}

Command authRemoveCommand()
{
    Command command("remove", "Remove credentials.", removeUpToMaximum<AuthList>);
    command.details = "The numbers are those that \"tlvctl auth list\" shows. Nothing is removed when\n"
                      "one of them is absent. Prints what was removed, without the passwords.";
    command.examples = {"tlvctl auth remove /data/settings 003 007"};
    command.arguments = {directoryArgument("authinfo.xml"), numbersArgument()};
    command.options = changeOptions("authinfo.xml", {maximumOption()});
    return command;
}
