#ifndef TOOLS_TLVCTL_COMMANDLINE_COMMANDLINE_H
#define TOOLS_TLVCTL_COMMANDLINE_COMMANDLINE_H

#include <QtCore/QCommandLineParser>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

/// What a command is given beside its options.
struct Argument
{
    QString name; ///< as the help shows it, such as "DIR"
    QString description;
    bool isRepeatable = false; ///< the last one may be given more than once

    /// As a usage line shows it: "NAME..." when it is repeatable.
    QString syntax() const { return isRepeatable ? name + "..." : name; }
};

/**
 * One command of the tool, or a group of commands. A new one is described by such an object and added to its
 * group; options, help and messages about wrong usage come from the description.
 */
struct Command
{
    using Run = int (*)(const QCommandLineParser& arguments);

    Command() = default;
    Command(const QString& itsName, const QString& itsSummary, Run itsRun = nullptr)
        : name(itsName), summary(itsSummary), run(itsRun)
    {
    }

    QString name;
    QString summary;               ///< one sentence
    QString details;               ///< more for its own help, in lines of at most 80 characters; may be empty
    std::vector<QString> examples; ///< whole command lines

    std::vector<Command> commands; ///< a group's; a group has nothing of what follows

    std::vector<Argument> arguments;
    QList<QCommandLineOption> options;
    bool needsGui = false; ///< whether it uses what only Qt with fonts and windows has
    /// Does the work, with the right number of arguments, and returns the exit code.
    Run run = nullptr;
};

/// A command's options with those that every command takes; the tool itself has one more.
QList<QCommandLineOption> allOptions(const Command& command, bool isTool);

/**
 * Finds the command that the arguments name, and runs it. The help, the version and the options that every
 * level takes are dealt with here.
 *
 * @param tool      the group of all commands
 * @param arguments what stands behind the program's name
 * @return the exit code
 */
int runCommandLine(const Command& tool, const QStringList& arguments);

/**
 * Complains about what a running command was given, and points to its help.
 *
 * @param problem what is wrong, fit for a terminal
 * @return the exit code for wrong usage
 */
int wrongUsage(const QString& problem);

/// The option "--json".
QCommandLineOption jsonOption();

/// The argument "DIR", the settings directory that holds the file @a name.
Argument directoryArgument(const QString& name);

/// An argument as the path of a file or directory.
QString pathArgument(const QCommandLineParser& arguments, int index = 0);

#endif
