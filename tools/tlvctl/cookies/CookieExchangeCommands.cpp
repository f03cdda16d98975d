#include "tools/tlvctl/cookies/CookieCommands.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieJar.h"
#include "tools/tlvctl/cookies/CookieList.h"
#include "tools/tlvctl/exchange/ExchangeFile.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/records/StoreChange.h"

#include "tlvlib/util/TVNG_limits.h"

#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>

namespace {

const QString DOCUMENT = "document";
const QString REPLACE = "replace";

/// The path of the document that is named, as seen from the directory.
QString documentPath(const QCommandLineParser& arguments)
{
    return QDir(pathArgument(arguments)).filePath(arguments.value(DOCUMENT));
}

QString lineOf(const QNetworkCookie& cookie)
{
    CookieRecord record;
    record.name = cookie.name();
    record.domain = cookie.domain();
    record.path = cookie.path();
    return record.line();
}

QString leftOutLine(const QNetworkCookie& cookie, const QString& problem)
{
    return changeLine("left out", "---", lineOf(cookie)) + " (it " + problem + ')';
}

/// A cookie of the document as the browser gets it: with its time of expiry as local time.
QNetworkCookie cookieOf(const CookieRecord& record)
{
    QNetworkCookie cookie(record.name, record.value);
    cookie.setDomain(record.domain);
    cookie.setPath(record.path);
    cookie.setSecure(record.secure == "true");
    cookie.setExpirationDate(QDateTime::fromString(record.expires, TVNG_EXPIRES_FORMAT));
    return cookie;
}

std::vector<QNetworkCookie> cookiesOf(const CookieDocument& document)
{
    std::vector<QNetworkCookie> cookies;
    for (const CookieRecord& record : document.records()) {
        if (record.number)
            cookies.push_back(cookieOf(record));
    }
    return cookies;
}

std::vector<QNetworkCookie> cookiesIn(QString iniDir)
{
    const QList<QNetworkCookie> cookies =
        TVNC_CookieSetting::getInstance()->loadCookieInfo(&iniDir, TVNG_CONVERTED_MAX);
    return {cookies.begin(), cookies.end()};
}

// --- export -----------------------------------------------------------------------------------------------

Export exportCookies(const std::vector<QNetworkCookie>& cookies)
{
    Export made;
    made.readers = Readers::OWNER;
    std::vector<QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : cookies) {
        const QString problem = problemWithJar(cookie);
        if (problem.isEmpty())
            kept.push_back(cookie);
        else
            made.lines.append(leftOutLine(cookie, problem));
    }
    made.bytes = writeJar(kept);
    made.lines.append(QString("exported: %1").arg(kept.size()));
    return made;
}

int exportIni(const QString& path, const QCommandLineParser& arguments)
{
    const StoreFile ini(pathArgument(arguments), "cookie.ini");
    if (!ini.checkDirectory())
        return FAILED;
    if (!QFileInfo::exists(ini.path())) {
        complain(ini.path(), "no such file; name the directory that holds it, or a document with --document");
        return FAILED;
    }
    const std::optional<CookieFile> file = readCookieIni(ini.dir());
    if (!file)
        return FAILED;
    const Export made = exportCookies(cookiesIn(ini.dir()));
    if (!writeExport(path, made.bytes, made.readers, arguments))
        return FAILED;
    for (const QString& line : file->remarks + made.lines)
        printLine(line);
    return DONE;
}

int exportCommand(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments, 1);
    if (!arguments.isSet(DOCUMENT))
        return exportIni(path, arguments);
    CookieDocument document(documentPath(arguments));
    return exportStore(document, path, arguments, [&] { return exportCookies(cookiesOf(document)); });
}

// --- import -----------------------------------------------------------------------------------------------

/// What an import does to the cookies that are there.
struct Plan
{
    std::vector<size_t> removed; ///< their places among those that are there, in order
    std::vector<QNetworkCookie> added;
    int unchanged = 0;
    int leftOut = 0;
};

/// What a file can hold.
struct Limits
{
    size_t cookies;
    QString (*problemWith)(const QNetworkCookie& cookie); ///< to follow "it"; empty when there is none
};

/**
 * Compares the cookies of a file with those that are there, appending lines for what becomes of each. A
 * cookie of the same name, domain and path stays, unless it is to be replaced.
 */
Plan planImport(const std::vector<QNetworkCookie>& present, const std::vector<QNetworkCookie>& wanted,
                bool isReplacing, const Limits& limits, QStringList& changes)
{
    QHash<QString, size_t> places;
    for (size_t i = 0; i < present.size(); ++i)
        places.insert(lineOf(present[i]), i);
    Plan plan;
    QSet<size_t> removed;
    size_t count = present.size();
    Progress progress(wanted.size());
    for (const QNetworkCookie& cookie : wanted) {
        progress.advance();
        const QString line = lineOf(cookie);
        const auto place = places.constFind(line);
        const bool isPresent = place != places.constEnd();
        QString problem = limits.problemWith(cookie);
        if (problem.isEmpty() && isPresent && !isReplacing)
            problem = "is there with something else in it; --replace takes the file's";
        else if (problem.isEmpty() && !isPresent && count == limits.cookies)
            problem = QString("finds no room below %1 entries").arg(limits.cookies);
        if (isPresent && present[*place] == cookie) {
            ++plan.unchanged;
        } else if (!problem.isEmpty()) {
            ++plan.leftOut;
            changes.append(leftOutLine(cookie, problem));
        } else {
            changes.append(changeLine(isPresent ? "changed" : "added", "---", line));
            plan.added.push_back(cookie);
            if (isPresent)
                removed.insert(*place);
            else
                ++count;
        }
    }
    plan.removed = {removed.begin(), removed.end()};
    std::sort(plan.removed.begin(), plan.removed.end());
    return plan;
}

QString summary(const Plan& plan, qint64 unreadable)
{
    return QString("added: %1, changed: %2, unchanged: %3, left out: %4")
        .arg(plan.added.size() - plan.removed.size())
        .arg(plan.removed.size())
        .arg(plan.unchanged)
        .arg(plan.leftOut + unreadable);
}

QString problemWithIni(const QNetworkCookie& cookie)
{
    const bool isKept = QNetworkCookie::parseCookies(cookie.toRawForm()) == QList<QNetworkCookie>{cookie};
    return isKept ? QString() : "has characters that cookie.ini cannot keep";
}

QString problemWithDocument(const QNetworkCookie& cookie)
{
    const std::optional<QString> name = utf8Text(cookie.name());
    const std::optional<QString> value = utf8Text(cookie.value());
    const bool isText =
        name && value && survivesSaving(*name) && (value->isEmpty() || survivesSaving(*value));
    const bool isKept = isText && survivesSaving(cookie.domain()) && survivesSaving(cookie.path());
    return isKept ? QString() : "has characters that the document cannot keep";
}

const Limits INI{SIZE_MAX, problemWithIni};
const Limits NUMBERED{NUMBERED_MAX, problemWithDocument};

/// The cookies of cookie.ini after an import: those that stay, then the new ones.
QList<QNetworkCookie> after(const Plan& plan, const std::vector<QNetworkCookie>& present)
{
    QList<QNetworkCookie> cookies;
    size_t removed = 0;
    for (size_t i = 0; i < present.size(); ++i) {
        if (removed < plan.removed.size() && plan.removed[removed] == i)
            ++removed;
        else
            cookies.append(present[i]);
    }
    for (const QNetworkCookie& cookie : plan.added)
        cookies.append(cookie);
    return cookies;
}

/// Saves cookie.ini and reads it back. Complains and returns false when that went wrong.
bool saveIni(const StoreFile& ini, const QList<QNetworkCookie>& cookies)
{
    QString dir = ini.dir();
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &dir, TVNG_CONVERTED_MAX);
    const std::vector<QNetworkCookie> saved = cookiesIn(dir);
    const bool isSaved = std::equal(saved.begin(), saved.end(), cookies.begin(), cookies.end());
    if (TVNG_GetSaveError().isEmpty() && isSaved)
        return true;
    ini.complainAboutSaving(isSaved ? printable(TVNG_GetSaveError())
                                    : "it holds something else than was to be saved");
    return false;
}

int importIntoIni(const std::vector<QNetworkCookie>& wanted, const QStringList& leftOut,
                  const QCommandLineParser& arguments)
{
    const StoreFile ini(pathArgument(arguments), "cookie.ini");
    DirectoryLock lock;
    if (!ini.checkDirectory() || (!isDryRun(arguments) && !lock.take(ini.dir())))
        return FAILED;
    const bool isForced = arguments.isSet("force");
    const std::optional<CookieFile> file = readCookieIni(ini.dir());
    if (!file || !checkIniReplaceable(ini, *file, isForced) || !ini.checkWritable())
        return FAILED;
    const std::vector<QNetworkCookie> present = cookiesIn(ini.dir());
    QStringList changes = leftOut;
    const Plan plan = planImport(present, wanted, arguments.isSet(REPLACE), INI, changes);
    changes.append(summary(plan, leftOut.size()));
    const bool isSaving = !plan.added.empty() && !isDryRun(arguments);
    if (isSaving && !file->remarks.isEmpty()) {
        const std::optional<QString> copy = ini.keepCopy();
        if (!copy)
            return FAILED;
        changes.append(QString("as it was, the file is in %1").arg(printable(*copy)));
    }
    if (isSaving && !saveIni(ini, after(plan, present)))
        return FAILED;
    tellChanges(ini, arguments, changes, !plan.added.empty());
    return DONE;
}

int importIntoDocument(std::vector<QNetworkCookie> wanted, const QStringList& leftOut,
                       const QCommandLineParser& arguments)
{
    int httpOnly = 0;
    for (QNetworkCookie& cookie : wanted) {
        httpOnly += cookie.isHttpOnly() ? 1 : 0;
        cookie.setHttpOnly(false);
        if (!cookie.isSessionCookie()) // the document holds local time
            cookie.setExpirationDate(cookie.expirationDate().toLocalTime());
    }
    CookieDocument document(documentPath(arguments));
    return changeStore(document, arguments, [&](QStringList& changes) {
        changes += leftOut;
        Plan plan = planImport(cookiesOf(document), wanted, arguments.isSet(REPLACE), NUMBERED, changes);
        std::for_each(plan.removed.rbegin(), plan.removed.rend(),
                      [&](size_t number) { document.remove(static_cast<int>(number)); });
        document.add(plan.added);
        if (httpOnly > 0)
            changes.append(
                QString("cookies that are HttpOnly, which the document does not hold: %1").arg(httpOnly));
        changes.append(summary(plan, leftOut.size()));
        return plan.added.empty() ? Outcome::UNCHANGED : Outcome::CHANGED;
    });
}

int importCommand(const QCommandLineParser& arguments)
{
    const std::optional<QByteArray> bytes = readImport(pathArgument(arguments, 1));
    if (!bytes)
        return FAILED;
    QStringList leftOut;
    const std::vector<QNetworkCookie> cookies = readJar(*bytes, leftOut);
    if (cookies.empty() && !leftOut.isEmpty()) {
        refuseImport(pathArgument(arguments, 1), "none of its lines is a cookie; name a file cookies.txt");
        return FAILED;
    }
    return arguments.isSet(DOCUMENT) ? importIntoDocument(cookies, leftOut, arguments)
                                     : importIntoIni(cookies, leftOut, arguments);
}

QCommandLineOption documentOption()
{
    return {DOCUMENT, "A cookie document, as seen from DIR, in place of cookie.ini.", "XML"};
}

} // namespace

Command cookieExportCommand()
{
    Command command("export", "Write the cookies for curl, wget and others.", exportCommand);
    command.details =
        "FILE is a cookies.txt, as \"curl --cookie\" and \"wget --load-cookies\" read it. It holds\n"
        "the cookies' values, which are as good as passwords, and is readable by its owner alone.\n"
        "Times of expiry, which have no zone in a document, are taken as local time.";
    command.examples = {"tlvctl cookies export /data/settings cookies.txt",
                        "tlvctl cookies export /data/settings cookies.txt --document cookies.xml"};
    command.arguments = {directoryArgument("cookie.ini"), exportArgument("the cookies")};
    command.options = exportOptions({documentOption()});
    return command;
}

Command cookieImportCommand()
{
    Command command("import", "Add the cookies of a cookies.txt.", importCommand);
    command.details =
        "FILE is what \"curl --cookie-jar\" and \"wget --save-cookies\" write. A cookie of the same\n"
        "name, domain and path stays as it is, unless --replace is given. New ones are added in\n"
        "the order of the file, behind the others in cookie.ini and before them in a document,\n"
        "which holds up to 999 and does not know HttpOnly.";
    command.examples = {"tlvctl cookies import /data/settings cookies.txt --dry-run",
                        "tlvctl cookies import /data/settings cookies.txt --document cookies.xml"};
    command.arguments = {directoryArgument("cookie.ini"), {"FILE", "The file to import."}};
    command.options =
        changeOptions("the file", {documentOption(),
                                   {REPLACE, "Replace cookies that are there with something else in them."}});
    return command;
}
