#include "tools/tlvctl/auth/AuthChangeCommands.h"

#include "tools/tlvctl/auth/AuthList.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Password.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

const QString TYPE = "type";
const QString USER = "user";
const QString PASSWORD_FILE = "password-file";

bool refuse(const AuthList& list, const QString& problem)
{
    complain(list.file().path(), QString("nothing was added: %1; give another one").arg(problem));
    return false;
}

/// Complains and returns false when the store or its file cannot keep a host name or port.
bool checkText(const AuthList& list, const char* what, const QString& text, int maxBytes)
{
    const QString problem = text.isEmpty() ? "is empty" : problemWithText(text, maxBytes);
    return problem.isEmpty() || refuse(list, QString("the %1 %2 %3").arg(what, quoted(text), problem));
}

bool checkUser(const AuthList& list, const QByteArray& user)
{
    return user.size() <= AuthList::USER_MAX_BYTES ||
           refuse(list, QString("the user name has %1 bytes, more than the %2 that the store takes")
                            .arg(user.size())
                            .arg(AuthList::USER_MAX_BYTES));
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
        !checkText(list, "host name", info.hostName, AuthList::HOST_MAX_BYTES) ||
        !checkText(list, "port", info.portNum, AuthList::PORT_MAX_BYTES) || !checkUser(list, info.user))
        return FAILED;
    std::optional<QString> path;
    if (arguments.isSet(PASSWORD_FILE))
        path = arguments.value(PASSWORD_FILE);
    const std::optional<QByteArray> password = readPassword(path, AuthList::PASSWORD_MAX_BYTES);
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

int removeEntries(const QCommandLineParser& arguments)
{
    const std::optional<int> maximum = maximumArgument(arguments);
    if (!maximum)
        return WRONG_USAGE;
    AuthList list(pathArgument(arguments), *maximum);
    return removeRecords(
        list, arguments, [&list](int number) { return AuthList::line(list.entry(number)); },
        [&list](int number) { list.remove(number); });
}

} // namespace

Command authAddCommand()
{
    Command command;
    command.name = "add";
    command.summary = "Add the credentials for a server.";
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
    command.options = {{TYPE, "The scheme: basic, digest or ntlm.", "TYPE"},
                       {USER, "The user's name, at most 272 bytes of UTF-8.", "U"},
                       {PASSWORD_FILE, "Read the password from this file, at most 272 bytes.", "FILE"},
                       maximumOption()};
    command.options += changeOptions("authinfo.xml");
    command.run = addEntry;
    return command;
}

Command authRemoveCommand()
{
    Command command;
    command.name = "remove";
    command.summary = "Remove credentials.";
    command.details = "The numbers are those that \"tlvctl auth list\" shows. Nothing is removed when\n"
                      "one of them is absent. Prints what was removed, without the passwords.";
    command.examples = {"tlvctl auth remove /data/settings 003 007"};
    command.arguments = {directoryArgument("authinfo.xml"), numbersArgument()};
    command.options = {maximumOption()};
    command.options += changeOptions("authinfo.xml");
    command.run = removeEntries;
    return command;
}
