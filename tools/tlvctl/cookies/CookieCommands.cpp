#include "tools/tlvctl/cookies/CookieCommands.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieList.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QTemporaryDir>

#include <deque>

namespace {

// --- list -------------------------------------------------------------------------------------------------

const QString SHOW_VALUES = "show-values";

void writeCookie(JsonWriter& json, const CookieRecord& record)
{
    writeRecord(json, record);
    json.member("domain", record.domain);
    writeBytes(json, "name", "nameBase64", record.name);
    json.member("path", record.path);
    json.member("secure", record.secure == "true");
    json.member("httpOnly", record.httpOnly);
    json.member("expires", record.expires.isEmpty() ? std::nullopt : std::optional<QString>(record.expires));
}

void writeCookies(JsonWriter& json, const CookieFile& cookies, bool withValues)
{
    json.member("remarks", cookies.remarks);
    writeArray(json, "cookies", cookies.records,
               [withValues](JsonWriter& member, const CookieRecord& record) {
                   writeCookie(member, record);
                   if (withValues)
                       writeBytes(member, "value", "valueBase64", record.value);
               });
}

int listDocument(const QCommandLineParser& arguments, bool withValues)
{
    CookieDocument document(pathArgument(arguments));
    return listStore(
        document, arguments, [&] { printCookies(document.read(), document.count(), withValues); },
        [&](JsonWriter& json) { writeCookies(json, document.read(), withValues); });
}

int listIni(const QCommandLineParser& arguments, bool withValues)
{
    const StoreFile file(cookieIniDir(pathArgument(arguments)), "cookie.ini");
    if (!file.checkDirectory())
        return FAILED;
    const std::optional<CookieFile> cookies = readCookieIni(file.dir());
    if (!cookies)
        return FAILED;
    const int count = static_cast<int>(cookies->records.size());
    const bool exists = QFileInfo::exists(file.path());
    if (arguments.isSet("json")) {
        JsonWriter json;
        json.beginObject();
        json.member("file", file.path());
        json.member("exists", exists);
        json.member("count", count);
        writeCookies(json, *cookies, withValues);
        json.endObject();
    } else if (exists) {
        printCookies(*cookies, count, withValues);
    } else {
        printLine("records: 0, because there is no " + printable(file.path()));
    }
    if (!cookies->isDamaged)
        return DONE;
    complain(file.path(),
             "damaged; restore it from a copy, or have \"tlvctl check --repair\" keep what is whole");
    return FAILED;
}

int listCookies(const QCommandLineParser& arguments)
{
    const bool withValues = arguments.isSet(SHOW_VALUES);
    return isCookieIni(pathArgument(arguments)) ? listIni(arguments, withValues)
                                                : listDocument(arguments, withValues);
}

// --- to-ini, from-ini -------------------------------------------------------------------------------------

/**
 * The two files of a conversion, and copies of them in a directory of their own, which the conversion works
 * on. The library takes the paths of a conversion as ASCII, and the files of others may stand anywhere; and
 * nothing is changed before all has worked out.
 */
class Conversion
{
public:
    Conversion(const QString& documentPath, const QString& iniDir)
        : document_(QFileInfo(documentPath).path(), QFileInfo(documentPath).fileName())
        , ini_(iniDir, "cookie.ini")
        , copies_("/tmp/tlvctl-XXXXXX")
    {
    }

    const StoreFile& document() const { return document_; }
    const StoreFile& ini() const { return ini_; }
    QString documentCopy() const { return copies_.path() + "/cookies.xml"; }
    QString iniCopyDir() const { return copies_.path() + '/'; }

    /// Copies what there is of both files. Complains and returns false when that does not work.
    bool begin() const
    {
        if (!copies_.isValid()) {
            complain(
                "/tmp",
                "no directory can be made there; check its permissions and the free space (\"df /tmp\")");
            return false;
        }
        return copy(document_.path(), documentCopy()) && copy(ini_.path(), iniCopyDir() + "cookie.ini");
    }

    void toIni() const
    {
        QByteArray source = documentCopy().toLatin1();
        QByteArray destination = iniCopyDir().toLatin1();
        TVNC_CookieSetting::getInstance()->convertCookieXMLToIni(source.data(), destination.data());
    }

    void fromIni() const
    {
        QByteArray source = iniCopyDir().toLatin1();
        QByteArray destination = documentCopy().toLatin1();
        TVNC_CookieSetting::getInstance()->convertCookieIniToXML(source.data(), destination.data());
    }

    /// Saves what the conversion has made of the copies.
    bool writeIni() const
    {
        auto* store = TVNC_CookieSetting::getInstance();
        QString copyDir = iniCopyDir();
        QString dir = ini_.dir();
        store->saveCookieInfo(store->loadCookieInfo(&copyDir, TVNG_CONVERTED_MAX), &dir, TVNG_CONVERTED_MAX);
        if (TVNG_GetSaveError().isEmpty())
            return true;
        ini_.complainAboutSaving(printable(TVNG_GetSaveError()));
        return false;
    }

    bool writeDocument() const
    {
        CookieDocument(documentCopy()).load();
        return CookieDocument(document_.path()).saveChecked(); // of the one store that there is
    }

private:
    static bool copy(const QString& from, const QString& to)
    {
        if (!QFileInfo::exists(from) || (QFileInfo(from).isFile() && QFile::copy(from, to)))
            return true;
        complain(from, "cannot be read, or not be copied to /tmp; make it a readable file, and look for free "
                       "space with \"df /tmp\"");
        return false;
    }

    StoreFile document_;
    StoreFile ini_;
    QTemporaryDir copies_;
};

CookieFile readCopy(const Conversion& conversion)
{
    CookieDocument document(conversion.documentCopy());
    document.load();
    return document.read();
}

/// All that the files can hold of a cookie.
QString wholeOf(const CookieRecord& record)
{
    const QString flags = record.httpOnly ? QString::number(*record.httpOnly) : QString();
    return QStringList{record.line(), record.secure, record.expires, printableBytes(record.value), flags}
        .join('\n');
}

/// The cookies from before the conversion. Each can be taken once.
class Before
{
public:
    explicit Before(const std::vector<CookieRecord>& records) : isTaken_(records.size(), false)
    {
        for (size_t i = 0; i < records.size(); ++i) {
            byWhole_[wholeOf(records[i])].push_back(i);
            byCookie_[records[i].line()].push_back(i);
        }
    }

    bool takeUnchanged(const CookieRecord& record) { return take(byWhole_[wholeOf(record)]); }
    bool takeSame(const CookieRecord& record) { return take(byCookie_[record.line()]); }
    bool isTaken(size_t i) const { return isTaken_[i]; }

private:
    bool take(std::deque<size_t>& candidates)
    {
        while (!candidates.empty() && isTaken_[candidates.front()])
            candidates.pop_front();
        if (candidates.empty())
            return false;
        isTaken_[candidates.front()] = true;
        return true;
    }

    std::vector<bool> isTaken_;
    QHash<QString, std::deque<size_t>> byWhole_;
    QHash<QString, std::deque<size_t>> byCookie_;
};

/// What has become of each cookie, in lines.
QStringList difference(const std::vector<CookieRecord>& earlier, const std::vector<CookieRecord>& later)
{
    Before before(earlier);
    std::vector<const CookieRecord*> others;
    for (const CookieRecord& record : later) {
        if (!before.takeUnchanged(record))
            others.push_back(&record);
    }
    QStringList lines;
    for (const CookieRecord* record : others) {
        const char* const verb = before.takeSame(*record) ? "changed" : "added";
        lines.append(changeLine(verb, numberText(record->number), record->line()));
    }
    for (size_t i = 0; i < earlier.size(); ++i) {
        if (!before.isTaken(i))
            lines.append(changeLine("removed", numberText(earlier[i].number), earlier[i].line()));
    }
    lines.append(QString("unchanged: %1").arg(later.size() - others.size()));
    return lines;
}

int countHttpOnly(const std::vector<CookieRecord>& records)
{
    int count = 0;
    for (const CookieRecord& record : records)
        count += record.httpOnly.value_or(false) ? 1 : 0;
    return count;
}

void printResult(const Conversion& conversion, const StoreFile& changed, bool isDryRun,
                 const QStringList& lines, const CookieFile& ini, const CookieFile& document)
{
    if (isDryRun)
        printLine(QString("dry run: nothing is written to %1, where this would change:")
                      .arg(printable(changed.path())));
    for (const QString& line : lines)
        printLine(line);
    printLine("\n" + printable(conversion.ini().path()));
    printCookies(ini, static_cast<int>(ini.records.size()), false);
    CookieDocument copy(conversion.documentCopy());
    copy.load();
    printLine("\n" + printable(conversion.document().path()));
    printCookies(document, copy.count(), false);
}

bool refuse(const StoreFile& file, const QString& problem)
{
    complain(file.path(), problem + ". Name the right file, or go on with --force");
    return false;
}

/// Complains and returns false when the source is missing, another file, damaged or without a cookie.
bool checkSource(const StoreFile& source, const std::vector<CookieRecord>& cookies, const QStringList& damage)
{
    if (!QFileInfo::exists(source.path()))
        return refuse(source, "no such file; nothing was changed, because all cookies would be removed");
    if (!damage.isEmpty())
        return refuse(source, QString("damaged (%1); nothing was changed, because cookies would be lost")
                                  .arg(damage.join("; ")));
    return !cookies.empty() ||
           refuse(source, "holds no cookies; nothing was changed, because all cookies would be removed");
}

/// Writes the result, after a copy of what it replaces.
bool write(const Conversion& conversion, bool isToIni, QStringList& lines)
{
    const StoreFile& target = isToIni ? conversion.ini() : conversion.document();
    const std::optional<QString> copy = target.keepCopy();
    if (!copy || !(isToIni ? conversion.writeIni() : conversion.writeDocument()))
        return false;
    if (!copy->isEmpty())
        lines.append(QString("as it was, the file is in %1").arg(printable(*copy)));
    return true;
}

int convert(const Conversion& conversion, bool isToIni, const QCommandLineParser& arguments)
{
    const StoreFile& source = isToIni ? conversion.document() : conversion.ini();
    const StoreFile& target = isToIni ? conversion.ini() : conversion.document();
    const bool isForced = arguments.isSet("force");
    const CookieDocument store(conversion.document().path());
    const Document read = isForced ? Document() : readDocument(conversion.document().path());
    if (!isForced && (!store.file().checkReplaceable(read) || !store.checkRoot(read)))
        return FAILED;
    if (!target.checkWritable() || !conversion.begin())
        return FAILED;
    const std::optional<CookieFile> iniBefore = readCookieIni(conversion.iniCopyDir());
    if (!iniBefore || (isToIni && !checkIniReplaceable(conversion.ini(), *iniBefore, isForced)))
        return FAILED;
    const CookieFile documentBefore = readCopy(conversion);
    if (!isForced && !(isToIni ? checkSource(source, documentBefore.records, {})
                               : checkSource(source, iniBefore->records, iniBefore->remarks)))
        return FAILED;
    isToIni ? conversion.toIni() : conversion.fromIni();
    const std::optional<CookieFile> ini = readCookieIni(conversion.iniCopyDir());
    if (!ini)
        return FAILED;

    const CookieFile document = readCopy(conversion);
    QStringList lines = isToIni ? difference(iniBefore->records, ini->records)
                                : difference(documentBefore.records, document.records);
    if (isToIni && document.records.size() > ini->records.size())
        lines.append(QString("entries of the document that are not converted: %1")
                         .arg(document.records.size() - ini->records.size()));
    if (const int lost = countHttpOnly(iniBefore->records))
        lines.append(QString("cookies that %1 HttpOnly, which the document does not hold: %2")
                         .arg(isToIni ? "were" : "are")
                         .arg(lost));
    if (!isDryRun(arguments) && !write(conversion, isToIni, lines))
        return FAILED;
    if (arguments.isSet("json"))
        tellChanges(target, arguments, lines);
    else
        printResult(conversion, target, isDryRun(arguments), lines, *ini, document);
    return DONE;
}

/// Converts while the target's directory is held; the source is only read.
int convertAlone(const Conversion& conversion, bool isToIni, const QCommandLineParser& arguments)
{
    DirectoryLock lock;
    const StoreFile& target = isToIni ? conversion.ini() : conversion.document();
    if (!isDryRun(arguments) && !lock.take(target.dir()))
        return FAILED;
    return convert(conversion, isToIni, arguments);
}

int toIni(const QCommandLineParser& arguments)
{
    const Conversion conversion(pathArgument(arguments, 0), pathArgument(arguments, 1));
    return conversion.ini().checkDirectory() ? convertAlone(conversion, true, arguments) : FAILED;
}

int fromIni(const QCommandLineParser& arguments)
{
    const Conversion conversion(pathArgument(arguments, 1), pathArgument(arguments, 0));
    const bool isPlace = conversion.ini().checkDirectory() && conversion.document().checkDirectory();
    return isPlace ? convertAlone(conversion, false, arguments) : FAILED;
}

const Argument DOCUMENT{"XML", "The cookie document."};
const Argument INI_DIR{"DIR", "The directory of cookie.ini."};

} // namespace

Command cookieListCommand()
{
    Command command("list", "List the cookies of cookie.ini, or of a cookie document.", listCookies);
    command.details = "FILE is a directory that holds cookie.ini, that file, or a cookie document. In\n"
                      "cookie.ini times of expiry are in UTC, in a document they have no zone. Cookies\n"
                      "that the store hides, or reads otherwise than they stand there, are marked with\n"
                      "*, and lines below the table tell how. Values are as good as passwords and only\n"
                      "shown with --show-values.";
    command.examples = {"tlvctl cookies list /data/settings", "tlvctl cookies list --json /data/cookies.xml"};
    command.arguments = {{"FILE", "A directory with cookie.ini, that file, or a cookie document."}};
    command.options = {jsonOption(), {SHOW_VALUES, "Show the values, too."}};
    return command;
}

Command cookieToIniCommand()
{
    Command command("to-ini", "Make cookie.ini from a cookie document.", toIni);
    command.details =
        "Replaces cookie.ini by the first 20 entries of the document. Prints what has become of\n"
        "each cookie and, like \"tlvctl cookies list\", both files. Times of expiry, which have\n"
        "no zone in the document, are taken as local time.";
    command.examples = {"tlvctl cookies to-ini /data/cookies.xml /data/settings"};
    command.arguments = {DOCUMENT, INI_DIR};
    command.options = changeOptions("one of the files");
    return command;
}

Command cookieFromIniCommand()
{
    Command command("from-ini", "Bring a cookie document up to cookie.ini.", fromIni);
    command.details =
        "Entries that are the same as a cookie stay. Of the first 20, all others go. All other\n"
        "cookies are added in front. Prints what has become of each entry and, like \"tlvctl\n"
        "cookies list\", both files.";
    command.examples = {"tlvctl cookies from-ini /data/settings /data/cookies.xml"};
    command.arguments = {INI_DIR, DOCUMENT};
    command.options = changeOptions("the document");
    return command;
}
