#include "tools/tlvctl/report/ReportCommand.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/bookmarks/Pictures.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieList.h"
#include "tools/tlvctl/exchange/ExchangeFile.h"
#include "tools/tlvctl/files/Check.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/prefs/Preferences.h"
#include "tools/tlvctl/report/Html.h"

#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QLocale>
#include <QtCore/QMap>
#include <QtCore/QUrl>

#include <algorithm>

namespace {

const int COLUMNS_MAX = 60;
const size_t SITES_MAX = 15;

QString dim(const QString& html)
{
    return "<p class=\"dim\">" + html + "</p>\n";
}

bool hasFile(const Store& store)
{
    return QFileInfo(store.file().path()).isFile();
}

// --- Bookmarks --------------------------------------------------------------------------------------------

QString card(const BookmarkRecord& record)
{
    const TVNS_Bookmark& bookmark = record.bookmark;
    const QByteArray png = pngOf(record);
    const QString picture = png.isEmpty() ? "<span class=\"none\">no picture</span>"
                                          : "<img alt=\"\" src=\"data:image/png;base64," +
                                                QString::fromLatin1(png.toBase64()) + "\">";
    const QString title = bookmark.title.isEmpty() ? bookmark.href : bookmark.title;
    return "<div class=\"card\">" + picture + htmlLink(bookmark.href, title) + "<div class=\"dim\">" +
           htmlText(bookmark.href) + "</div></div>\n";
}

QString bookmarks(const QString& dir)
{
    BookmarkList list(dir);
    list.load();
    const std::vector<BookmarkRecord> records = list.records();
    Progress progress(records.size());
    QString cards;
    for (const BookmarkRecord& record : records) {
        cards += card(record);
        progress.advance();
    }
    return dim(QString("%1, newest first.").arg(records.size())) + "<div class=\"cards\">\n" + cards +
           "</div>\n";
}

// --- Visits -----------------------------------------------------------------------------------------------

/// How many visits there were in each of up to 60 equal spans of days.
std::vector<Bar> visitsOverTime(const std::vector<QDate>& days)
{
    if (days.empty())
        return {};
    const auto [first, last] = std::minmax_element(days.begin(), days.end());
    const qint64 span = first->daysTo(*last) / COLUMNS_MAX + 1;
    std::vector<Bar> columns;
    for (QDate from = *first; from <= *last; from = from.addDays(span)) {
        const QString end = span > 1 ? " to " + from.addDays(span - 1).toString("yyyy-MM-dd") : QString();
        columns.push_back({from.toString("yyyy-MM-dd") + end, 0, QString()});
    }
    for (const QDate& day : days)
        ++columns[static_cast<size_t>(first->daysTo(day) / span)].size;
    return columns;
}

std::vector<Bar> mostVisited(const QHash<QString, int>& sites)
{
    std::vector<Bar> bars;
    for (auto site = sites.begin(); site != sites.end(); ++site)
        bars.push_back({site.key(), site.value(), QString()});
    std::sort(bars.begin(), bars.end(), [](const Bar& left, const Bar& right) {
        return left.size != right.size ? left.size > right.size : left.text < right.text;
    });
    bars.resize(std::min(bars.size(), SITES_MAX));
    return bars;
}

QString visits(const QString& dir)
{
    HistoryList list(dir, NUMBERED_MAX);
    list.load();
    std::vector<QDate> days;
    QHash<QString, int> sites;
    std::vector<QStringList> rows;
    for (const VisitRecord& visit : list.records()) {
        QDateTime time;
        if (HistoryList::parseTime(visit.time, time))
            days.push_back(time.date());
        const QString host = QUrl(visit.url).host();
        ++sites[host.isEmpty() ? QString("(no site)") : host];
        rows.push_back(
            {htmlText(visit.time), htmlLink(visit.url, visit.title.isEmpty() ? visit.url : visit.title)});
    }
    return dim(QString("%1, newest first.").arg(rows.size())) + "<h3>Over time</h3>\n" +
           htmlColumns(visitsOverTime(days), "Visits over time") + "<h3>By site</h3>\n" +
           htmlBars(mostVisited(sites)) + "<h3>All</h3>\n<details><summary>The whole list</summary>\n" +
           htmlTable({"time", "page"}, rows) + "</details>\n";
}

// --- Cookies ----------------------------------------------------------------------------------------------

/// The spans in which cookies end, from the nearest on.
struct End
{
    const char* name;
    qint64 seconds; ///< from now on
};
const qint64 DAY = 24 * 60 * 60;
const End ENDS[] = {{"expired", 0},
                    {"within a day", DAY},
                    {"within a week", 7 * DAY},
                    {"within a month", 31 * DAY},
                    {"within a year", 366 * DAY},
                    {"later", INT64_MAX}};

QString endOf(const CookieRecord& cookie, Qt::TimeSpec zone)
{
    QDateTime expiry = QDateTime::fromString(cookie.expires, TVNG_EXPIRES_FORMAT);
    expiry.setTimeSpec(zone);
    if (!expiry.isValid())
        return "with the browser";
    const qint64 left = QDateTime::currentDateTimeUtc().secsTo(expiry);
    return std::find_if(std::begin(ENDS), std::end(ENDS),
                        [left](const End& end) { return left <= end.seconds; })
        ->name;
}

QString cookieTable(const std::vector<CookieRecord>& cookies, Qt::TimeSpec zone)
{
    QMap<QString, int> counts;
    std::vector<QStringList> rows;
    for (const CookieRecord& cookie : cookies) {
        const QString end = endOf(cookie, zone);
        ++counts[end];
        QStringList flags;
        if (cookie.secure == "true")
            flags.append("secure");
        if (cookie.httpOnly.value_or(false))
            flags.append("HttpOnly");
        rows.push_back({htmlText(QString::fromUtf8(cookie.name)), htmlText(cookie.domain),
                        htmlText(cookie.path), flags.join(' '), end + ' ' + htmlText(cookie.expires)});
    }
    std::vector<Bar> bars{{"with the browser", counts.value("with the browser"), QString()}};
    for (const End& end : ENDS)
        bars.push_back({end.name, counts.value(end.name), QString()});
    return "<p>They end:</p>\n" + htmlBars(bars) +
           htmlTable({"name", "domain", "path", "flags", "ends"}, rows);
}

QString cookies(const QString& dir)
{
    QString html = dim("Values are left out.");
    if (const std::optional<CookieFile> ini = readCookieIni(dir))
        html += "<h3>cookie.ini</h3>\n" + cookieTable(ini->records, Qt::UTC);
    CookieDocument document(dir + "cookies.xml");
    if (!hasFile(document))
        return html;
    document.load();
    return html + "<h3>cookies.xml</h3>\n" + cookieTable(document.records(), Qt::LocalTime);
}

// --- Preferences ------------------------------------------------------------------------------------------

QString preferences(const QString& dir)
{
    QString html;
    for (const QString& scope : {QString("common"), QString("user")}) {
        const std::unique_ptr<Preferences> store = Preferences::open(scope, dir);
        if (!hasFile(*store))
            continue;
        store->load();
        std::vector<QStringList> rows;
        for (const PreferenceRecord& record : store->records()) {
            const Preference& preference = *record.preference;
            const QString value = preference.isSecret ? "(hidden)" : QString::fromUtf8(record.value);
            rows.push_back({htmlText(preference.name), htmlText(value), htmlText(preference.meaning)});
        }
        html += "<h3>" + QString(scope == "common" ? "Of the device" : "Of the user") + "</h3>\n" +
                htmlTable({"name", "value", "meaning"}, rows);
    }
    return html.isEmpty() ? dim("None are set: the defaults hold.") : html;
}

// --- Files ------------------------------------------------------------------------------------------------

/// What each file takes, and each folder with all that is in it.
QString diskUse(const QString& dir)
{
    QMap<QString, qint64> sizes;
    qint64 all = 0;
    QDirIterator files(dir, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = files.next().mid(dir.size());
        const int slash = static_cast<int>(name.indexOf('/'));
        sizes[slash < 0 ? name : name.left(slash + 1)] += files.fileInfo().size();
        all += files.fileInfo().size();
    }
    std::vector<Bar> bars;
    for (auto size = sizes.begin(); size != sizes.end(); ++size)
        bars.push_back({size.key(), size.value(), QLocale::c().formattedDataSize(size.value())});
    return dim(QLocale::c().formattedDataSize(all) + " in all.") + htmlBars(bars);
}

QString checked(const QString& dir)
{
    QString html;
    for (const FileReport& file : checkDirectory(dir, Repair::NONE)) {
        html += "<h3>" + htmlText(QFileInfo(file.path).fileName()) + "</h3>\n";
        for (const Finding& finding : file.findings)
            html += "<p class=\"warn\">" + finding.text.toHtmlEscaped() + "</p>\n";
        if (file.findings.empty())
            html += "<p>Clean.</p>\n";
    }
    return html.isEmpty() ? dim("There are no files to check.") : html;
}

// --- The command ------------------------------------------------------------------------------------------

QString page(const QString& dir)
{
    struct Part
    {
        const char* id;
        const char* heading;
        QString (*make)(const QString& dir);
    };
    const Part parts[] = {{"bookmarks", "Bookmarks", bookmarks}, {"visits", "Visits", visits},
                          {"cookies", "Cookies", cookies},       {"preferences", "Preferences", preferences},
                          {"disk", "Disk use", diskUse},         {"check", "What a check found", checked}};
    QString links;
    QString sections;
    for (const Part& part : parts) {
        links += QString("<a href=\"#%1\">%2</a>\n").arg(part.id, part.heading);
        sections += htmlSection(part.id, part.heading, part.make(dir));
    }
    const QString time = QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm");
    return htmlPage("Settings in " + dir, "<h1>Settings in " + htmlText(dir) + "</h1>\n" +
                                              dim("As of " + time + ".") + "<nav>\n" + links + "</nav>\n" +
                                              sections);
}

int report(const QCommandLineParser& arguments)
{
    const StoreFile place(pathArgument(arguments), "the browser's files");
    if (!place.checkDirectory())
        return FAILED;
    // Visited pages are nobody else's business.
    return writeExport(pathArgument(arguments, 1), page(place.dir()).toUtf8(), Readers::OWNER, arguments)
               ? DONE
               : FAILED;
}

} // namespace

Command reportCommand()
{
    Command command("report", "Write a page that shows all of a settings directory.", report);
    command.details =
        "The page is complete in itself: bookmarks with their pictures, visits over time and by\n"
        "site, cookies and when they end, preferences, disk use, and what \"tlvctl check\" finds.\n"
        "It needs no network and no script, has no password and no value of a cookie in it, and\n"
        "is readable by its owner alone.";
    command.examples = {"tlvctl report /data/user report.html"};
    command.arguments = {{"DIR", "The settings directory of the device or of a user."},
                         exportArgument("the page")};
    command.options = exportOptions();
    return command;
}
