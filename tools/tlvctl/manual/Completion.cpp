#include "tools/tlvctl/manual/Completion.h"

namespace {

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

QByteArray bashCompletion(const Command& tool)
{
    return QString(SCRIPT)
        .arg(tool.name, paths(tool, tool.name).join(" | "), branches(tool, tool.name, true))
        .toUtf8();
}
