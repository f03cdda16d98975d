#include "tools/tlvctl/cookies/CookieConvertCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieListCommand.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryDir>

namespace {

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

    bool writeIni() const { return replace(ini_, iniCopyDir() + "cookie.ini"); }
    bool writeDocument() const { return replace(document_, documentCopy()); }

private:
    static bool copy(const QString& from, const QString& to)
    {
        if (!QFileInfo::exists(from) || (QFileInfo(from).isFile() && QFile::copy(from, to)))
            return true;
        complain(from, "cannot be read, or not be copied to /tmp; make it a readable file, and look for free "
                       "space with \"df /tmp\"");
        return false;
    }

    static bool replace(const StoreFile& file, const QString& copy)
    {
        QFile source(copy);
        QSaveFile destination(file.path());
        const bool isOpen = source.open(QIODevice::ReadOnly) && destination.open(QIODevice::WriteOnly);
        if (isOpen && destination.write(source.readAll()) == source.size() && destination.commit())
            return true;
        complain(file.path(),
                 QString("saving failed: %1; check the permissions of the file and its directory and "
                         "the free space (\"df %2\")")
                     .arg(printable(destination.errorString()), printable(file.dir())));
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

/// Whether the two have everything in common that the file can hold.
bool isUnchanged(const CookieRecord& before, const CookieRecord& after)
{
    return before.secure == after.secure && before.expires == after.expires && before.value == after.value &&
           before.httpOnly == after.httpOnly;
}

bool isAny(const CookieRecord&, const CookieRecord&)
{
    return true;
}

/// The cookies from before the conversion. Each can be taken once.
class Before
{
public:
    explicit Before(const std::vector<CookieRecord>& records)
        : isTaken_(records.size(), false), records_(records)
    {
        for (size_t i = records.size(); i > 0; --i) // the last one that was put in is the first to be found
            byCookie_.insert(records[i - 1].line(), i - 1);
    }

    /// Takes the first one that is the same cookie and matches.
    bool take(const CookieRecord& record, bool (*matches)(const CookieRecord&, const CookieRecord&))
    {
        const QString key = record.line();
        for (auto it = byCookie_.find(key); it != byCookie_.end() && it.key() == key; ++it) {
            if (!matches(records_[*it], record))
                continue;
            isTaken_[*it] = true;
            byCookie_.erase(it);
            return true;
        }
        return false;
    }

    bool isTaken(size_t i) const { return isTaken_[i]; }

private:
    std::vector<bool> isTaken_;
    const std::vector<CookieRecord>& records_;
    QMultiHash<QString, size_t> byCookie_;
};

/// What has become of each cookie, in lines.
QStringList difference(const std::vector<CookieRecord>& earlier, const std::vector<CookieRecord>& later)
{
    Before before(earlier);
    std::vector<const CookieRecord*> others;
    for (const CookieRecord& record : later) {
        if (!before.take(record, isUnchanged))
            others.push_back(&record);
    }
    QStringList lines;
    for (const CookieRecord* record : others) {
        const char* const verb = before.take(*record, isAny) ? "changed" : "added";
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

/// Complains and returns false when a file with something else than cookies would be replaced.
bool checkIniReplaceable(const StoreFile& ini, const CookieFile& cookies, bool isForced)
{
    if (isForced || cookies.remarks.isEmpty())
        return true;
    complain(ini.path(),
             QString("holds more than whole cookies (%1); nothing was changed, because that would be "
                     "lost. Go on with --force")
                 .arg(cookies.remarks.join("; ")));
    return false;
}

int toIni(const QCommandLineParser& arguments)
{
    const Conversion conversion(pathArgument(arguments, 0), pathArgument(arguments, 1));
    const bool isForced = arguments.isSet("force");
    if (!conversion.ini().checkDirectory())
        return FAILED;
    if (!isForced && !QFileInfo::exists(conversion.document().path())) {
        complain(conversion.document().path(),
                 "no such file; nothing was changed, because cookie.ini would be "
                 "emptied. Name the cookie document, or go on with --force");
        return FAILED;
    }
    if (!conversion.document().checkReplaceable(isForced) || !conversion.begin())
        return FAILED;
    const std::optional<CookieFile> before = readCookieIni(conversion.iniCopyDir());
    if (!before || !checkIniReplaceable(conversion.ini(), *before, isForced))
        return FAILED;
    const CookieFile document = readCopy(conversion);
    conversion.toIni();
    const std::optional<CookieFile> after = readCookieIni(conversion.iniCopyDir());
    if (!after)
        return FAILED;
    const bool isDryRun = arguments.isSet("dry-run");
    if (!isDryRun && !conversion.writeIni())
        return FAILED;

    QStringList lines = difference(before->records, after->records);
    if (document.records.size() > after->records.size())
        lines.append(QString("entries of the document that are not converted: %1")
                         .arg(document.records.size() - after->records.size()));
    if (const int lost = countHttpOnly(before->records))
        lines.append(QString("cookies that were HttpOnly, which the document does not hold: %1").arg(lost));
    printResult(conversion, conversion.ini(), isDryRun, lines, *after, document);
    return DONE;
}

int fromIni(const QCommandLineParser& arguments)
{
    const Conversion conversion(pathArgument(arguments, 1), pathArgument(arguments, 0));
    const bool isForced = arguments.isSet("force");
    if (!conversion.ini().checkDirectory() || !conversion.document().checkDirectory())
        return FAILED;
    if (!isForced && !QFileInfo::exists(conversion.ini().path())) {
        complain(conversion.ini().path(),
                 "no such file; nothing was changed, because the document's cookies would "
                 "be removed. Name the directory of cookie.ini, or go on with --force");
        return FAILED;
    }
    if (!conversion.document().checkReplaceable(isForced) || !conversion.begin())
        return FAILED;
    const std::optional<CookieFile> ini = readCookieIni(conversion.iniCopyDir());
    if (!ini)
        return FAILED;
    const CookieFile before = readCopy(conversion);
    conversion.fromIni();
    const CookieFile after = readCopy(conversion);
    const bool isDryRun = arguments.isSet("dry-run");
    if (!isDryRun && !conversion.writeDocument())
        return FAILED;

    QStringList lines = difference(before.records, after.records);
    if (const int lost = countHttpOnly(ini->records))
        lines.append(QString("cookies that are HttpOnly, which the document does not hold: %1").arg(lost));
    printResult(conversion, conversion.document(), isDryRun, lines, *ini, after);
    return DONE;
}

const Argument DOCUMENT{"XML", "The cookie document."};
const Argument INI_DIR{"DIR", "The directory of cookie.ini."};

} // namespace

Command cookieToIniCommand()
{
    Command command;
    command.name = "to-ini";
    command.summary = "Make cookie.ini from a cookie document.";
    command.details =
        "Replaces cookie.ini by the first 20 entries of the document. Prints what has become of\n"
        "each cookie and, like \"tlvctl cookies list\", both files. Times of expiry, which have\n"
        "no zone in the document, are taken as local time.";
    command.examples = {"tlvctl cookies to-ini /data/cookies.xml /data/settings"};
    command.arguments = {DOCUMENT, INI_DIR};
    command.options = changeOptions("one of the files");
    command.run = toIni;
    return command;
}

Command cookieFromIniCommand()
{
    Command command;
    command.name = "from-ini";
    command.summary = "Bring a cookie document up to cookie.ini.";
    command.details =
        "Entries that are the same as a cookie stay. Of the first 20, all others go. All other\n"
        "cookies are added in front. Prints what has become of each entry and, like \"tlvctl\n"
        "cookies list\", both files.";
    command.examples = {"tlvctl cookies from-ini /data/settings /data/cookies.xml"};
    command.arguments = {INI_DIR, DOCUMENT};
    command.options = changeOptions("the document");
    command.run = fromIni;
    return command;
}
