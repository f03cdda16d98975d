#include "tools/tlvctl/manual/Manual.h"

namespace {

// --- The manual page --------------------------------------------------------------------------------------

/// A text as it stands, whatever it holds.
QString escaped(QString text)
{
    text.replace('\\', "\\e").replace('-', "\\-");
    if (text.startsWith('.') || text.startsWith('\''))
        text.prepend("\\&");
    return text;
}

QString request(const QString& name, const QString& text)
{
    return name + ' ' + escaped(text) + '\n';
}

/// The summary and the details of a command. Indented lines keep their form.
QString description(const Command& command)
{
    QString page = escaped(command.summary) + '\n';
    if (command.details.isEmpty())
        return page;
    page += ".PP\n";
    bool isIndented = false;
    for (const QString& line : command.details.split('\n')) {
        const bool indented = line.startsWith(' ');
        if (indented != isIndented)
            page += indented ? ".PP\n.nf\n" : ".fi\n.PP\n";
        isIndented = indented;
        page += line.isEmpty() ? ".PP\n" : escaped(line) + '\n';
    }
    return isIndented ? page + ".fi\n" : page;
}

QString option(const QCommandLineOption& option)
{
    QStringList names;
    for (const QString& name : option.names())
        names << (name.size() == 1 ? '-' + name : "--" + name);
    QString line = "\\fB" + escaped(names.join(", ")) + "\\fR";
    if (!option.valueName().isEmpty())
        line += " \\fI" + escaped(option.valueName()) + "\\fR";
    return ".TP\n" + line + '\n' + escaped(option.description()) + '\n';
}

QString usage(const Command& command, const QString& path)
{
    QString line = "\\fB" + escaped(path) + "\\fR [\\fIoptions\\fR]";
    for (const Argument& argument : command.arguments)
        line += " \\fI" + escaped(argument.syntax()) + "\\fR";
    return line + '\n';
}

/// One command, or those of a group.
QString commands(const Command& command, const QString& path)
{
    QString page;
    if (command.run) {
        page += request(".SS", path) + usage(command, path) + ".PP\n" + description(command);
        for (const Argument& argument : command.arguments)
            page += ".TP\n\\fI" + escaped(argument.name) + "\\fR\n" + escaped(argument.description) + '\n';
        for (const QCommandLineOption& own : command.options)
            page += option(own);
    }
    for (const Command& child : command.commands)
        page += commands(child, path + ' ' + child.name);
    return page;
}

QString examples(const Command& command)
{
    QString page;
    for (const QString& example : command.examples)
        page += escaped(example) + '\n';
    for (const Command& child : command.commands)
        page += examples(child);
    return page;
}

// --- Completion -------------------------------------------------------------------------------------------

/// What of a command line names a command: the patterns of a case.
QStringList paths(const Command& command, const QString& path)
{
    QStringList list;
    for (const Command& child : command.commands)
        list << '\'' + path + ' ' + child.name + '\'' << paths(child, path + ' ' + child.name);
    return list;
}

/// One branch for each command, with the words that can follow it. An argument such as "a|b" is one of words.
QString branches(const Command& command, const QString& path, bool isTool)
{
    QStringList options;
    for (const QCommandLineOption& option : allOptions(command, isTool))
        options << "--" + option.names().last();
    QStringList words;
    for (const Command& child : command.commands)
        words << child.name;
    if (!command.arguments.empty() && command.arguments.front().name.contains('|'))
        words << command.arguments.front().name.split('|');
    QString script = QString("    '%1')\n        words='%2'\n        options='%3'\n        ;;\n")
                         .arg(path, words.join(' '), options.join(' '));
    for (const Command& child : command.commands)
        script += branches(child, path + ' ' + child.name, false);
    return script;
}

const char SCRIPT[] = R"(# Completion of %1's command lines for bash.

_%1()
{
    local current=${COMP_WORDS[COMP_CWORD]} path=%1 arguments=0 words= options= word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "$path $word" in
        %2)
            path="$path $word"
            arguments=0
            ;;
        *' '-*) ;;
        *) arguments=$((arguments + 1)) ;;
        esac
    done
    case $path in
%3    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    elif [[ -n $words && $arguments -eq 0 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _%1 %1
)";

} // namespace

QByteArray manPage(const Command& tool, const QString& version)
{
    QString page;
    page +=
        QString(".TH %1 1 \"\" \"tlvlib %2\" \"User Commands\"\n").arg(tool.name.toUpper(), escaped(version));
    QString summary = tool.summary;
    summary.chop(1); // the full stop
    page += ".SH NAME\n" + tool.name + " \\- " + summary.left(1).toLower() + escaped(summary.mid(1)) + '\n';
    page += ".SH SYNOPSIS\n\\fB" + tool.name + "\\fR [\\fIoptions\\fR] \\fICOMMAND\\fR\n";
    page += ".SH DESCRIPTION\n" + description(tool);
    page += ".SH OPTIONS\nEvery command takes these, but for \\fB\\-\\-version\\fR, which stands alone.\n";
    for (const QCommandLineOption& common : allOptions(Command(), true))
        page += option(common);
    page += ".SH COMMANDS\n" + commands(tool, tool.name);
    page += ".SH EXAMPLES\n.nf\n" + examples(tool) + ".fi\n";
    return page.toUtf8();
}

QByteArray bashCompletion(const Command& tool)
{
    return QString(SCRIPT)
        .arg(tool.name, paths(tool, tool.name).join(" | "), branches(tool, tool.name, true))
        .toUtf8();
}
