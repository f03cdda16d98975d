#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/exchange/ExchangeFile.h"
#include "tools/tlvctl/history/HistoryCommands.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/records/Record.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace {

const QString CSV = "csv";
const std::vector<Format> FORMATS{{CSV, {"csv"}}, {"json", {"json"}}};

/// "2011-04-12T10:15", local time, as ISO 8601 has it; empty for none.
QString isoTime(const VisitRecord& visit)
{
    QDateTime time;
    if (!HistoryList::parseTime(visit.time, time))
        return QString();
    return QString(visit.time).replace('/', '-').replace(' ', 'T');
}

/// A field as RFC 4180 has it.
QByteArray field(QString text)
{
    return '"' + text.replace('"', "\"\"").toUtf8() + '"';
}

QByteArray csvOf(const std::vector<VisitRecord>& visits)
{
    QByteArray csv = "time,title,url\r\n";
    for (const VisitRecord& visit : visits)
        csv += field(isoTime(visit)) + ',' + field(visit.title) + ',' + field(visit.url) + "\r\n";
    return csv;
}

QByteArray jsonOf(const std::vector<VisitRecord>& visits)
{
    QJsonArray array;
    for (const VisitRecord& visit : visits) {
        const QString time = isoTime(visit);
        array.append(QJsonObject{{"time", time.isEmpty() ? QJsonValue() : QJsonValue(time)},
                                 {"title", visit.title},
                                 {"url", visit.url}});
    }
    return QJsonDocument(array).toJson();
}

Export exportVisits(const HistoryList& list, bool isCsv)
{
    std::vector<VisitRecord> visits = list.records();
    visits.erase(std::remove_if(visits.begin(), visits.end(),
                                [](const VisitRecord& visit) { return visit.isDropped; }),
                 visits.end());
    return {isCsv ? csvOf(visits) : jsonOf(visits), {QString("exported: %1").arg(visits.size())}};
}

int exportCommand(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments, 1);
    const std::optional<QString> format = formatOf(path, arguments, FORMATS);
    if (!format)
        return WRONG_USAGE;
    HistoryList list(pathArgument(arguments), NUMBERED_MAX);
    return exportStore(list, path, arguments, [&] { return exportVisits(list, *format == CSV); });
}

} // namespace

Command historyExportCommand()
{
    Command command("export", "Write the visits for a spreadsheet or a program.", exportCommand);
    command.details = "CSV as RFC 4180 has it, in UTF-8, with the columns time, title and url; or JSON, an\n"
                      "array of objects with these members. Times are local and of the form\n"
                      "2011-04-12T10:15. Newest first.";
    command.examples = {"tlvctl history export /data/settings visits.csv",
                        "tlvctl history export /data/settings visits.json"};
    command.arguments = {directoryArgument("visit.xml"), exportArgument("the visits")};
    command.options = exportOptions({formatOption(FORMATS)});
    return command;
}
