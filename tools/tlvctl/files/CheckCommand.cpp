#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/files/Check.h"
#include "tools/tlvctl/files/FileCommands.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QFileInfo>

namespace {

const QString REPAIR = "repair";

/// What all files together have.
struct Totals
{
    int files = 0;
    int findings = 0;
    int remaining = 0;
    int lost = 0;
};

QString endingOf(const Finding& finding)
{
    switch (finding.ending) {
    case Ending::REPAIRED:
        return "repaired";
    case Ending::LOST:
        return "lost";
    default:
        return "remains";
    }
}

void writeReport(JsonWriter& json, const FileReport& report, bool isRepairing)
{
    QStringList texts;
    QStringList endings;
    for (const Finding& finding : report.findings) {
        texts.append(finding.text);
        endings.append(endingOf(finding));
    }
    json.member("file", report.path);
    json.member("findings", texts);
    if (!isRepairing)
        return;
    json.member("endings", endings);
    json.member("lostRecords", report.lost);
    json.member("keptAs", report.keptAs.isEmpty() ? std::nullopt : std::optional<QString>(report.keptAs));
    json.member("rejectedTo",
                report.rejectedTo.isEmpty() ? std::nullopt : std::optional<QString>(report.rejectedTo));
}

void printReport(const FileReport& report, bool isRepairing)
{
    printLine(printable(report.path) + (report.findings.empty() ? ": clean" : ":"));
    for (const Finding& finding : report.findings) {
        const QString lost =
            finding.ending == Ending::LOST ? QString("%1 records: ").arg(report.lost) : QString();
        printLine("    " + (isRepairing ? endingOf(finding) + ": " + lost : QString()) + finding.text);
    }
    if (!report.rejectedTo.isEmpty())
        printLine("    what could not be read is in " + printable(report.rejectedTo));
    if (!report.keptAs.isEmpty())
        printLine("    as it was, the file is in " + printable(report.keptAs));
}

/// The directory, and those of the device and of the user below a profile.
QStringList directoriesOf(const QString& dir)
{
    QStringList dirs{dir};
    for (const char* below : {"common/", "user/"}) {
        if (QFileInfo(dir + below).isDir())
            dirs.append(dir + below);
    }
    return dirs;
}

/// Complains and returns nothing when a directory to be repaired is held.
std::optional<std::vector<FileReport>> reportsOf(const QString& dir, const QCommandLineParser& arguments)
{
    if (!arguments.isSet(REPAIR))
        return checkDirectory(dir, Repair::NONE);
    if (isDryRun(arguments))
        return checkDirectory(dir, Repair::TRY);
    DirectoryLock lock;
    if (!lock.take(dir))
        return std::nullopt;
    return checkDirectory(dir, Repair::DO);
}

int check(const QCommandLineParser& arguments)
{
    const StoreFile place(pathArgument(arguments), "the browser's files");
    if (!place.checkDirectory())
        return FAILED;
    const bool isRepairing = arguments.isSet(REPAIR);
    const bool isJson = arguments.isSet("json");
    if (isDryRun(arguments) && !isRepairing)
        return wrongUsage("--dry-run goes with --repair");
    std::vector<FileReport> reports;
    for (const QString& dir : directoriesOf(place.dir())) {
        const std::optional<std::vector<FileReport>> of = reportsOf(dir, arguments);
        if (!of)
            return FAILED;
        reports.insert(reports.end(), of->begin(), of->end());
    }
    Totals totals;
    for (const FileReport& report : reports) {
        ++totals.files;
        totals.lost += report.lost;
        totals.findings += static_cast<int>(report.findings.size());
        for (const Finding& finding : report.findings)
            totals.remaining += finding.ending == Ending::FOUND || finding.ending == Ending::REMAINS ? 1 : 0;
        if (!isJson)
            printReport(report, isRepairing);
        if (!report.problem.isEmpty())
            complain(report.path, report.problem);
    }
    if (isJson) {
        JsonWriter json;
        json.beginArray();
        for (const FileReport& report : reports) {
            json.beginObject();
            writeReport(json, report, isRepairing);
            json.endObject();
        }
        json.endArray();
    } else {
        QString line = QString("files: %1, findings: %2").arg(totals.files).arg(totals.findings);
        if (isRepairing)
            line += QString(", remaining: %1, lost records: %2").arg(totals.remaining).arg(totals.lost);
        printLine(line);
    }
    return totals.remaining == 0 && totals.lost == 0 ? DONE : FAILED;
}

} // namespace

Command checkCommand()
{
    Command command("check", "Check all files of a settings directory, or of a profile.", check);
    command.details =
        "Says of each file what the library does not read, hides, renames or drops, and names\n"
        "leftovers of interrupted saves, pictures that are none, files of a wrong spelling, and\n"
        "credentials or cookies that others may open. DIR is a settings directory, or a profile\n"
        "with \"user\" and \"common\" below it.\n"
        "\n"
        "With --repair every finding ends as repaired, remains or lost. Of a damaged list every record\n"
        "in front of the damage and behind it is kept whole; records that could not be read are\n"
        "counted as lost, and written to a file beside it whose name ends in \".rejected\". A file\n"
        "is copied beside itself before it is changed, and only then. With --dry-run as well,\n"
        "nothing is written. Exit code 1: something was found and is not repaired, or was lost.";
    command.examples = {"tlvctl check /data/user", "tlvctl check --repair /data/user",
                        "tlvctl check --repair --dry-run /data/user"};
    command.arguments = {{"DIR", "The settings directory of the device or of a user, or a profile."}};
    command.options = {jsonOption(),
                       {REPAIR, "Repair what can be repaired, after a copy."},
                       {"dry-run", "With --repair: write nothing, but say how it would end."}};
    return command;
}
