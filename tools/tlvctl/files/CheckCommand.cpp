#include "tools/tlvctl/files/Check.h"
#include "tools/tlvctl/files/FileCommands.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/auth/AuthList.h"
#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieList.h"
#include "tools/tlvctl/fonts/FontList.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/prefs/Preferences.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>

namespace {

const QString REPAIR = "repair";

/// Bytes of a picture's path that are left for a directory to grow by, below which it is told.
const int NEAR_LIMIT_BYTES = 10;

/// What was found in one file.
struct Findings
{
    QString path;
    QStringList lines;
    bool isReadable = true;
};

void addFlaws(QStringList& lines, const ListedRecord& record)
{
    if (!record.flaws.empty())
        lines.append(recordName(record) + ": " + explanationsOf(record.flaws));
}

/// Loads a store and finds what its document has; nothing when there is no such file.
std::optional<Findings> checkStore(Store& store, const std::function<QStringList()>& findings)
{
    Findings found{store.file().path(), {}};
    const Document document = readDocument(found.path);
    if (document.state == Document::State::MISSING)
        return std::nullopt;
    if (document.state == Document::State::UNREADABLE) {
        found.lines.append(
            QString("cannot be read: %1; the store is empty then, and saving replaces the file")
                .arg(printable(document.problem)));
        found.isReadable = false;
        return found;
    }
    if (document.state == Document::State::DAMAGED)
        found.lines.append(describe(document.damage) +
                           ": what stands behind that place is not read, and saving loses it");
    store.load();
    found.lines += findings();
    return found;
}

// --- The files --------------------------------------------------------------------------------------------

/// Pictures that no bookmark shows, and a directory that leaves their paths no room.
QStringList checkPictures(const BookmarkList& list)
{
    QStringList lines;
    for (const QString& name : QDir(list.thumbnailDir()).entryList(QDir::Files, QDir::Name)) {
        if (list.users(list.thumbnailDir() + name) == 0)
            lines.append(QString("no bookmark shows the file %1").arg(printable(list.thumbnailDir() + name)));
    }
    const qint64 left = BookmarkList::DIR_MAX_BYTES - utf8Size(list.file().dir());
    if (left < 0)
        lines.append(
            QString("the directory's path is %1 bytes too long: paths of pictures pass the store's limit of "
                    "256 bytes, and saving empties their names")
                .arg(-left));
    else if (left < NEAR_LIMIT_BYTES)
        lines.append(
            QString("the directory's path may grow by %1 bytes at most: then paths of pictures pass the "
                    "store's limit of 256 bytes")
                .arg(left));
    return lines;
}

/// One file that may be in a directory: how it is checked, and how what the library would keep of it is
/// written.
struct CheckedFile
{
    std::function<std::optional<Findings>()> check;
    std::function<bool()> rewrite; ///< complains and returns false when that fails
};

CheckedFile checkedStore(const std::shared_ptr<Store>& store, const std::function<QStringList()>& findings)
{
    return {[=] { return checkStore(*store, findings); },
            [=] {
                store->load();
                store->save();
                return store->checkSaved();
            }};
}

template <typename Kind>
CheckedFile checkedList(const std::shared_ptr<Kind>& list, const std::function<QStringList()>& remarks)
{
    return checkedStore(list, [=] {
        QStringList lines;
        for (const auto& record : list->records())
            addFlaws(lines, record);
        return lines + remarks();
    });
}

CheckedFile checkedPreferences(const QString& scope, const QString& dir)
{
    const std::shared_ptr<Preferences> preferences = Preferences::open(scope, dir);
    return checkedStore(preferences, [preferences] {
        QStringList lines;
        for (const PreferenceRecord& record : preferences->records()) {
            if (!record.flaws.empty())
                lines.append(record.preference->name + ": " + explanationsOf(record.flaws));
        }
        return lines;
    });
}

CheckedFile checkedCookieIni(const QString& dir)
{
    const QString path = dir + "cookie.ini";
    const auto check = [dir, path]() -> std::optional<Findings> {
        if (!QFileInfo::exists(path))
            return std::nullopt;
        const std::optional<CookieFile> file = readCookieIni(dir);
        if (!file)
            return Findings{
                path, {"cannot be read: there are no cookies then, and saving replaces the file"}, false};
        Findings found{path, {}};
        for (const CookieRecord& record : file->records)
            addFlaws(found.lines, record);
        found.lines += file->remarks;
        return found;
    };
    const auto rewrite = [dir, path] {
        QString iniDir = dir;
        auto* store = TVNC_CookieSetting::getInstance();
        store->saveCookieInfo(store->loadCookieInfo(&iniDir, TVNG_CONVERTED_MAX), &iniDir,
                              TVNG_CONVERTED_MAX);
        const std::optional<CookieFile> file = readCookieIni(dir);
        return file && file->remarks.isEmpty();
    };
    return {check, rewrite};
}

std::vector<CheckedFile> filesOf(const QString& dir)
{
    const auto fonts = std::make_shared<FontList>(dir);
    const auto bookmarks = std::make_shared<BookmarkList>(dir);
    const auto history = std::make_shared<HistoryList>(dir, NUMBERED_MAX);
    const auto auth = std::make_shared<AuthList>(dir, NUMBERED_MAX);
    const auto cookies = std::make_shared<CookieDocument>(dir + "cookies.xml");
    return {
        checkedPreferences("common", dir),
        checkedList(fonts, [] { return QStringList(); }),
        checkedPreferences("user", dir),
        checkedList(bookmarks, [bookmarks] { return bookmarks->remarks() + checkPictures(*bookmarks); }),
        checkedList(history, [history] { return history->Store::remarks() + history->changesOfLoading(); }),
        checkedList(auth, [auth] { return auth->remarks(); }),
        checkedList(cookies, [cookies] { return cookies->remarks(); }),
        checkedCookieIni(dir)};
}

// --- The command ------------------------------------------------------------------------------------------

/// Copies a file beside itself. Complains and returns nothing when that fails.
std::optional<QString> backUp(const QString& path)
{
    QString copy = path + ".bak";
    for (int i = 2; QFileInfo::exists(copy); ++i)
        copy = QString("%1.bak%2").arg(path).arg(i);
    if (QFile::copy(path, copy))
        return copy;
    complain(
        path,
        QString("is not repaired, because it cannot be copied to %1; look for free space with \"df\", and "
                "at the permissions")
            .arg(printable(copy)));
    return std::nullopt;
}

/// Writes what the library would keep. False when that fails.
bool repair(const CheckedFile& file, const Findings& found)
{
    if (!found.isReadable) {
        complain(found.path, "is not repaired, because it cannot be read; make it readable");
        return false;
    }
    const std::optional<QString> copy = backUp(found.path);
    if (!copy || !file.rewrite())
        return false;
    printLine(QString("    repaired; as it was, it is in %1").arg(printable(*copy)));
    return true;
}

void writeFindings(JsonWriter& json, const Findings& found)
{
    json.beginObject();
    json.member("file", found.path);
    json.member("findings", found.lines);
    json.endObject();
}

int check(const QCommandLineParser& arguments)
{
    const StoreFile place(pathArgument(arguments), "the browser's files");
    if (!place.checkDirectory())
        return FAILED;
    const bool isRepairing = arguments.isSet(REPAIR);
    const bool isJson = arguments.isSet("json");
    if (isRepairing && isJson)
        return wrongUsage("--repair and --json do not go together");
    int files = 0;
    qint64 findings = 0;
    bool isRepaired = true;
    JsonWriter json;
    if (isJson)
        json.beginArray();
    for (const CheckedFile& file : filesOf(place.dir())) {
        const std::optional<Findings> found = file.check();
        if (!found)
            continue;
        ++files;
        findings += found->lines.size();
        if (isJson) {
            writeFindings(json, *found);
            continue;
        }
        printLine(printable(found->path) + (found->lines.isEmpty() ? ": clean" : ":"));
        for (const QString& line : found->lines)
            printLine("    " + line);
        if (isRepairing && !found->lines.isEmpty())
            isRepaired = repair(file, *found) && isRepaired;
    }
    if (isJson)
        json.endArray();
    else
        printLine(QString("files: %1, findings: %2").arg(files).arg(findings));
    return findings == 0 || (isRepairing && isRepaired) ? DONE : FAILED;
}

} // namespace

std::vector<FileReport> checkDirectory(const QString& dir, bool /*isRepairing*/)
{
    std::vector<FileReport> reports;
    for (const CheckedFile& file : filesOf(dir)) {
        const std::optional<Findings> found = file.check();
        if (!found)
            continue;
        FileReport report{found->path, {}};
        for (const QString& line : found->lines)
            report.findings.push_back({line});
        reports.push_back(report);
    }
    return reports;
}

Command checkCommand()
{
    Command command("check", "Check all files of a settings directory.", check);
    command.details =
        "Says of each file what the library does not read, hides, renames or drops. With\n"
        "--repair, a file with findings is copied beside itself and then written as the library\n"
        "would keep it; values that the library answers otherwise stay as they are. Exit code 0:\n"
        "nothing was found, or all was repaired; 1: something was found.";
    command.examples = {"tlvctl check /data/user", "tlvctl check --repair /data/user"};
    command.arguments = {{"DIR", "The settings directory of the device or of a user."}};
    command.options = {jsonOption(), {REPAIR, "Write what the library would keep, after a copy."}};
    return command;
}
