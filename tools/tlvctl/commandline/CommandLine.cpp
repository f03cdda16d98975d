#include "tools/tlvctl/commandline/CommandLine.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>
#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <numeric>

namespace {

const QString HELP = "help";
const QString VERSION = "version";
const QString LOG_LEVEL = "log-level";

/// Where the library writes its log.
const QString LOG_FILE = "/ata07/Talvenor/tmp/tlvlog.log";

/// The library only drops its messages when its file cannot be opened.
void checkLogFile()
{
    QFile file(LOG_FILE);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    const QString dir = QFileInfo(LOG_FILE).path();
    const QString advice = QFileInfo(dir).isDir()
                               ? "check the permissions of the file and its directory"
                               : QString("create the directory with \"mkdir -p %1\"").arg(dir);
    complain(LOG_FILE, QString("no log is written: %1; %2").arg(file.errorString(), advice));
}

/// Reads a log level, a number from 0 to 3. False when it is none.
bool parseLogLevel(const QString& text, int& level)
{
    if (text.size() != 1 || text.at(0) < '0' || text.at(0) > '3')
        return false;
    level = text.at(0).digitValue();
    return true;
}

/**
 * Sets what the library logs into its file, and complains when that file cannot be written. The system log is
 * left to the programs of the device: a list of fonts alone would be a thousand lines in it.
 */
void setLogLevel(int level)
{
    g_uc_SystemLogLevel = 0;
    TVNG_DebugSetLogLevel(static_cast<unsigned long>(level));
    if (level > 0)
        checkLogFile();
}

/**
 * Qt's application object, which the parser's help and the fonts need. It is made only when the command is
 * known, so that no other command waits for a platform plugin or depends on one.
 */
class Application
{
public:
    /// @param name what the help calls the program: "tlvctl fonts add"
    Application(const QString& name, bool needsGui) : name_(name.toUtf8()), argv_{name_.data(), nullptr}
    {
        if (needsGui)
            qt_ = std::make_unique<QGuiApplication>(argc_, argv_);
        else
            qt_ = std::make_unique<QCoreApplication>(argc_, argv_);
    }

private:
    // Qt keeps pointers to these.
    QByteArray name_;
    int argc_ = 1;
    char* argv_[2];

    std::unique_ptr<QCoreApplication> qt_;
};

/// What the libraries below say, about pictures for one, is nothing for the user; the tool tells it in its
/// own words. Qt ends the process when it finds no platform plugin; so do we, but in the tool's own way.
void reportFatalMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type != QtFatalMsg)
        return;
    complain(QString("Qt cannot start: %1; unset QT_QPA_PLATFORM and QT_PLUGIN_PATH, or set "
                     "QT_QPA_PLATFORM to a platform that Qt has here")
                 .arg(printable(text.simplified())));
    std::_Exit(FAILED);
}

void prepareGui()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts can be listed without a display
}

/// Sets up the parser of one level.
void describe(const Command& command, bool isTool, QCommandLineParser& parser)
{
    QString description = command.summary;
    if (!command.details.isEmpty())
        description += "\n\n" + command.details;
    parser.setApplicationDescription(description);
    parser.addOptions(allOptions(command, isTool));

    if (!command.run) {
        parser.addPositionalArgument("COMMAND", "One of the commands below.");
        // What stands behind the command's name is for the command's own parser.
        parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    }
    for (const Argument& argument : command.arguments)
        parser.addPositionalArgument(argument.name, argument.description, argument.syntax());
}

int printHelp(const Command& command, const QString& path, const QCommandLineParser& parser)
{
    const Application application(path, false);
    QString help = parser.helpText();
    if (!command.commands.empty()) {
        help += "\nCommands:\n";
        int width = 0;
        for (const Command& child : command.commands)
            width = std::max(width, static_cast<int>(child.name.size()));
        for (const Command& child : command.commands)
            help += QString("  %1  %2\n").arg(child.name, -width).arg(child.summary);
        help += QString("\n\"%1 COMMAND --help\" tells more about a command.\n").arg(path);
    }
    help += "\nExamples:\n";
    for (const QString& example : command.examples)
        help += "  " + example + '\n';
    print(help.toUtf8());
    return DONE;
}

int usageError(const QString& path, const QString& problem)
{
    complain(QString("%1; see \"%2 --help\"").arg(problem, path));
    return WRONG_USAGE;
}

/// The parser's words, made part of a sentence.
QString parserError(const QCommandLineParser& parser)
{
    QString text = printable(parser.errorText());
    if (text.endsWith('.'))
        text.chop(1);
    return text.left(1).toLower() + text.mid(1);
}

/// What is wrong with the number of arguments; empty when nothing is.
QString countError(const Command& command, const QStringList& given)
{
    const int wanted = static_cast<int>(command.arguments.size());
    if (given.size() < wanted)
        return "missing argument " + command.arguments[static_cast<size_t>(given.size())].name;
    const bool isOpen = wanted > 0 && command.arguments.back().isRepeatable;
    if (given.size() > wanted && !isOpen)
        return "surplus argument " + quoted(given.at(wanted));
    return QString();
}

const Command* findCommand(const Command& group, const QString& name)
{
    for (const Command& command : group.commands) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

/// How many letters have to be put in, taken out or changed to make one word of the other.
int distance(const QString& left, const QString& right)
{
    std::vector<int> row(static_cast<size_t>(right.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < left.size(); ++i) {
        int diagonal = i;
        row[0] = i + 1;
        for (size_t j = 1; j < row.size(); ++j) {
            const int changed = diagonal + (left.at(i) == right.at(static_cast<int>(j) - 1) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

/// Suggests the command that may be meant; empty when none is near.
QString nearest(const Command& group, const QString& word)
{
    const auto isNearer = [&word](const Command& left, const Command& right) {
        return distance(word.left(100), left.name) < distance(word.left(100), right.name);
    };
    const auto best = std::min_element(group.commands.begin(), group.commands.end(), isNearer);
    const bool isNear = distance(word.left(100), best->name) <= 1 + best->name.size() / 3;
    return isNear ? QString("; did you mean \"%1\"?").arg(best->name) : QString();
}

int runCommand(const Command& command, const QString& path, const QCommandLineParser& parser, int logLevel)
{
    const QString error = countError(command, parser.positionalArguments());
    if (!error.isEmpty())
        return usageError(path, error);
    setLogLevel(logLevel);
    TVNG_SetSafeSave(1);
    qInstallMessageHandler(reportFatalMessages);
    if (command.needsGui)
        prepareGui();
    const Application application(path, command.needsGui);
    const int exitCode = command.run(parser);
    // What the stores have let go is freed by an event loop, which the tool does without.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return exitCode;
}

/// Goes down one level of commands with each call.
int runLevel(const Command& command, const QString& path, const QStringList& arguments, int logLevel)
{
    const bool isTool = path == command.name;
    QCommandLineParser parser;
    describe(command, isTool, parser);
    if (!parser.parse(QStringList(path) + arguments))
        return usageError(path, parserError(parser));
    if (parser.isSet(HELP))
        return printHelp(command, path, parser);
    if (isTool && parser.isSet(VERSION)) {
        printLine("tlvctl " TLVCTL_VERSION);
        return DONE;
    }
    if (parser.isSet(LOG_LEVEL) && !parseLogLevel(parser.value(LOG_LEVEL), logLevel))
        return usageError(
            path, QString("log level %1 is not one of 0, 1, 2, 3").arg(quoted(parser.value(LOG_LEVEL))));
    if (command.run)
        return runCommand(command, path, parser, logLevel);

    const QStringList rest = parser.positionalArguments();
    if (rest.isEmpty())
        return usageError(path, "missing command");
    const Command* const next = findCommand(command, rest.first());
    if (!next)
        return usageError(path, "unknown command " + quoted(rest.first()) + nearest(command, rest.first()));
    return runLevel(*next, path + ' ' + next->name, rest.mid(1), logLevel);
}

} // namespace

QList<QCommandLineOption> allOptions(const Command& command, bool isTool)
{
    QList<QCommandLineOption> options = {{{"h", HELP}, "Show this help."}};
    if (isTool)
        options.append({{"v", VERSION}, "Show the version."});
    options += command.options;
    options.append({LOG_LEVEL,
                    QString("Write the library's log file, %1: 0 nothing (the default), 1 failures, "
                            "2 also rejected input, 3 everything.")
                        .arg(LOG_FILE),
                    "N"});
    return options;
}

int runCommandLine(const Command& tool, const QStringList& arguments)
{
    const int exitCode = runLevel(tool, tool.name, arguments, 0);
    if (flushOutput())
        return exitCode;
    complain("standard output could not be written in full; check the free space where it goes");
    return exitCode == DONE ? FAILED : exitCode;
}

int wrongUsage(const QString& problem)
{
    return usageError(QCoreApplication::arguments().first(), problem);
}

QCommandLineOption jsonOption()
{
    return {"json", "Write JSON, for programs."};
}

Argument directoryArgument(const QString& name)
{
    return {"DIR", QString("The settings directory, which holds %1.").arg(name), false};
}

QString pathArgument(const QCommandLineParser& arguments, int index)
{
    const QString path = arguments.positionalArguments().at(index);
    // Qt would look for it among the resources inside the program.
    return path.startsWith(':') ? "./" + path : path;
}
