#include "tools/tlvctl/manual/ManPage.h"

namespace {

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
