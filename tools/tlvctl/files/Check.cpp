#include "tools/tlvctl/files/Check.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/auth/AuthList.h"
#include "tools/tlvctl/bookmarks/BookmarkList.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/cookies/CookieList.h"
#include "tools/tlvctl/files/Recovery.h"
#include "tools/tlvctl/fonts/FontList.h"
#include "tools/tlvctl/history/HistoryList.h"
#include "tools/tlvctl/prefs/Preferences.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/thumbnails/Png.h"
#include "tools/tlvctl/thumbnails/ThumbnailPack.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <functional>

#include <sys/stat.h>

namespace {

/// Bytes of a picture's path that are left for a directory to grow by, below which it is told.
const int NEAR_LIMIT_BYTES = 10;

const char HIDDEN_RECORDS[] =
    "a value holds the start of another record: look at the file, and correct it there";

const char LEFTOVER[] = ".tlvsave";

/// The files that a settings directory has.
const char* const FILE_NAMES[] = {"repostry.xml", "fontlist.xml", "repostry_private.xml", "bookmark.xml",
                                  "visit.xml",    "authinfo.xml", "cookies.xml",          "cookie.ini"};

/// Those with credentials or cookies.
const char* const SECRET_NAMES[] = {"authinfo.xml", "cookies.xml", "cookie.ini"};

/// What a repair makes of a file.
struct Plan
{
    std::function<void(const QString& dir)> write; ///< writes the file into its directory, or another one
    int lost = 0;
    QByteArray rejected;
};

/// One file that may be in a directory. Directories have a "/" at their end.
struct CheckedFile
{
    QString name;
    std::function<QStringList(const QString& dir)> check; ///< of a file that can be read
    std::function<std::optional<Plan>(const QString& dir)>
        plan; ///< nothing when the file would stay as it is
};

/// A directory for files that are thrown away, which need no disk.
class TrialDir
{
public:
    TrialDir() { TVNG_SetSafeSave(0); }
    ~TrialDir() { TVNG_SetSafeSave(1); }

    TrialDir(const TrialDir&) = delete;
    TrialDir& operator=(const TrialDir&) = delete;

    QString path() const { return dir_.path() + '/'; }

private:
    QTemporaryDir dir_;
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList flawsOf(const std::vector<PackedPicture>& pictures)
{
    QStringList lines;
    for (const PackedPicture& picture : pictures) {
        for (const std::vector<Flaw>& flaws : {picture.omissions, picture.doubts}) {
            if (!flaws.empty())
                lines.append(quoted(picture.name) + ' ' + explanationsOf(flaws));
        }
    }
    return lines;
}

template <typename Record>
QStringList flawsOf(const std::vector<Record>& records)
{
    QStringList lines;
    for (const Record& record : records) {
        if (!record.flaws.empty())
            lines.append(recordName(record) + ": " + explanationsOf(record.flaws));
    }
    return lines;
}

// --- Documents --------------------------------------------------------------------------------------------

/// A document of a directory.
struct DocumentKind
{
    QString name;
    DocumentForm form;
    std::vector<LeafPlace> leaves; ///< of preferences
    std::function<QStringList(const QString& dir, Document document)>
        findings;                                        ///< in what was read of the file
    std::function<void(const QString& dir)> loadAndSave; ///< as the store does; none when there is no store
};

std::unique_ptr<TVNC_XMLNode> parse(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return std::unique_ptr<TVNC_XMLNode>(TVNC_XMLReader().read(buffer));
}

int recordsOf(TVNC_XMLNode* root)
{
    return root ? static_cast<int>(root->getXMLNodeChildren().size()) : 0;
}

/// Whether some of what is in the document is of this kind.
bool hasOwnContent(TVNC_XMLNode& root, const DocumentKind& kind)
{
    const DocumentForm& form = kind.form;
    if (root.getName() == form.root || isRootOfAnother(root.getName(), form))
        return root.getName() == form.root;
    if (form.record)
        return childOf(root, form.record) != nullptr;
    return std::any_of(kind.leaves.begin(), kind.leaves.end(), [&root](const LeafPlace& place) {
        return childOf(root, place.group.toLatin1().constData()) != nullptr;
    });
}

void writeDocument(TVNC_XMLNode& root, QString path)
{
    TVNC_XMLWriter().write(path, &root);
}

/// The file as the store would keep it, unless that would lose records.
QByteArray asStored(const DocumentKind& kind, TVNC_XMLNode& root)
{
    const TrialDir dir;
    const QString path = dir.path() + kind.name;
    writeDocument(root, path);
    const QByteArray written = contentOf(path);
    if (!kind.loadAndSave)
        return written;
    kind.loadAndSave(dir.path());
    const QByteArray stored = contentOf(path);
    return !kind.form.record || recordsOf(parse(stored).get()) == recordsOf(&root) ? stored : written;
}

std::optional<Plan> planDocument(const DocumentKind& kind, const QString& dir)
{
    const QByteArray bytes = contentOf(dir + kind.name);
    if (hidesRecords(bytes, kind.form))
        return std::nullopt;
    Document document = readDocument(dir + kind.name);
    Plan plan;
    if (document.state == Document::State::DAMAGED) {
        const Recovered recovered = kind.form.record ? recoverRecords(bytes, kind.form)
                                                     : recoverLeaves(bytes, kind.form, kind.leaves);
        if (recovered.isForeign || (recovered.kept == 0 && recovered.lost > 0))
            return std::nullopt;
        document.root = parse(recovered.document);
        plan.lost = recovered.lost;
        plan.rejected = recovered.rejected;
    }
    if (!document.root || !hasOwnContent(*document.root, kind))
        return std::nullopt;
    normalise(*document.root, kind.form);
    const QByteArray result = asStored(kind, *document.root);
    if (result == bytes)
        return std::nullopt;
    plan.write = [result, name = kind.name](const QString& target) {
        writeDocument(*parse(result), target + name);
    };
    return plan;
}

QStringList checkDocument(const DocumentKind& kind, const QString& dir)
{
    const QString path = dir + kind.name;
    const bool isHiding = hidesRecords(contentOf(path), kind.form);
    Document document = readDocument(path);
    QStringList lines;
    if (document.state == Document::State::DAMAGED)
        lines.append(describe(document.damage) +
                     ": what stands behind that place is not read, and saving loses it");
    if (document.root && document.root->getName() != kind.form.root)
        lines.append(QString("its root is %1 instead of \"%2\"")
                         .arg(quoted(document.root->getName()), kind.form.root));
    if (document.state == Document::State::COMPLETE)
        lines += strayContent(path, kind.form);
    if (isHiding)
        lines.append(HIDDEN_RECORDS);
    return lines + kind.findings(dir, std::move(document));
}

CheckedFile checkedDocument(const DocumentKind& kind)
{
    return {kind.name, [=](const QString& dir) { return checkDocument(kind, dir); },
            [=](const QString& dir) { return planDocument(kind, dir); }};
}

/// The kind of a store, which @a make makes for a directory. What is found in it loaded is left to @a
/// findings.
template <typename Make, typename Findings>
DocumentKind storeKind(Make make, Findings findings)
{
    DocumentKind kind;
    const auto store = make(QString());
    kind.name = QFileInfo(store->file().path()).fileName();
    kind.form = store->form();
    kind.findings = [=](const QString& dir, Document document) {
        const auto loaded = make(dir);
        loaded->load(std::move(document.root));
        return findings(*loaded);
    };
    kind.loadAndSave = [=](const QString& dir) {
        const auto loaded = make(dir);
        loaded->load();
        loaded->save();
    };
    return kind;
}

/// A list: its records' flaws, and what else there is to say.
template <typename List, typename Remarks, typename... Arguments>
CheckedFile checkedList(Remarks remarks, Arguments... arguments)
{
    return checkedDocument(
        storeKind([=](const QString& dir) { return std::make_unique<List>(dir, arguments...); },
                  [=](List& list) { return flawsOf(list.records()) + remarks(list); }));
}

CheckedFile checkedPreferences(const QString& scope)
{
    DocumentKind kind =
        storeKind([=](const QString& dir) { return Preferences::open(scope, dir); },
                  [](Preferences& preferences) {
                      QStringList lines;
                      for (const PreferenceRecord& record : preferences.records()) {
                          if (!record.flaws.empty())
                              lines.append(record.preference->name + ": " + explanationsOf(record.flaws));
                      }
                      return lines;
                  });
    for (const Preference& preference : scope == "common" ? commonPreferences() : userPreferences())
        kind.leaves.push_back({preference.group, preference.leaf});
    return checkedDocument(kind);
}

// --- Bookmarks' pictures ----------------------------------------------------------------------------------

/// Pictures that no bookmark shows or that are none.
QStringList checkPictures(const BookmarkList& list)
{
    QStringList lines;
    for (const QString& name : QDir(list.thumbnailDir()).entryList(QDir::Files, QDir::Name)) {
        const QString path = list.thumbnailDir() + name;
        if (name.endsWith(LEFTOVER))
            continue;
        if (list.users(path) == 0)
            lines.append(QString("no bookmark shows the file %1").arg(printable(path)));
        const QString problem = problemWithPng(path);
        if (!problem.isEmpty() && list.users(path) > 0)
            lines.append(QString("the picture %1 %2").arg(printable(path), problem));
    }
    return lines;
}

/// A directory that leaves the paths of pictures no room.
QStringList checkRoom(const QString& dir)
{
    const qint64 left = BookmarkList::DIR_MAX_BYTES - utf8Size(dir);
    if (left < 0)
        return {
            QString("the directory's path is %1 bytes too long: paths of pictures pass the store's limit of "
                    "256 bytes, and saving empties their names")
                .arg(-left)};
    if (left < NEAR_LIMIT_BYTES)
        return {QString("the directory's path may grow by %1 bytes at most: then paths of pictures pass the "
                        "store's limit of 256 bytes")
                    .arg(left)};
    return {};
}

// --- cookie.ini -------------------------------------------------------------------------------------------

QStringList checkCookieIni(const QString& dir)
{
    const std::optional<CookieFile> file = readCookieIni(dir);
    return file ? flawsOf(file->records) + file->remarks : QStringList();
}

std::optional<Plan> planCookieIni(const QString& dir)
{
    Plan plan;
    const std::optional<CookieFile> file = readCookieIni(dir);
    const QList<QNetworkCookie> cookies = recoverCookies(dir, plan.lost, plan.rejected);
    if (!file || file->remarks.isEmpty() || cookies.isEmpty())
        return std::nullopt;
    plan.write = [cookies](const QString& target) {
        QString iniDir = target;
        TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &iniDir, static_cast<int>(cookies.size()));
    };
    return plan;
}

// --- All files --------------------------------------------------------------------------------------------

std::vector<CheckedFile> filesOf()
{
    const auto remarks = [](Store& store) { return store.remarks(); };
    return {
        checkedPreferences("common"),
        checkedList<FontList>(remarks),
        checkedPreferences("user"),
        checkedList<BookmarkList>([](BookmarkList& list) { return list.remarks() + checkPictures(list); }),
        checkedList<HistoryList>(
            [](HistoryList& list) { return list.Store::remarks() + list.changesOfLoading(); }, NUMBERED_MAX),
        checkedList<AuthList>(remarks, NUMBERED_MAX),
        checkedDocument(storeKind(
            [](const QString& dir) { return std::make_unique<CookieDocument>(dir + "cookies.xml"); },
            [](CookieDocument& document) { return flawsOf(document.records()) + document.remarks(); })),
        {"cookie.ini", checkCookieIni, planCookieIni}};
}

bool isListed(const QString& name, const char* const* begin, const char* const* end)
{
    return std::any_of(begin, end, [&name](const char* listed) { return name == listed; });
}

bool isSecret(const QString& path)
{
    return isListed(QFileInfo(path).fileName().section('.', 0, 1), std::begin(SECRET_NAMES),
                    std::end(SECRET_NAMES));
}

/// What others can do with a secret file; empty when they can do nothing.
QString exposureOf(const QString& path)
{
    struct stat info;
    if (!isSecret(path) || stat(QFile::encodeName(path).constData(), &info) != 0 ||
        (info.st_mode & (S_IRWXG | S_IRWXO)) == 0)
        return QString();
    return QString("holds credentials or cookies, and others may open it (mode %1)")
        .arg(info.st_mode & 07777, 4, 8, QLatin1Char('0'));
}

/// Whether the owner of the directory, who runs the browser, may not even read the file; empty when he may.
QString lockOutOf(const QString& path)
{
    struct stat info;
    struct stat dir;
    if (stat(QFile::encodeName(path).constData(), &info) != 0 ||
        stat(QFile::encodeName(QFileInfo(path).path()).constData(), &dir) != 0)
        return QString();
    const mode_t group = info.st_gid == dir.st_gid ? S_IRGRP | S_IROTH : S_IROTH;
    if ((info.st_mode & (info.st_uid == dir.st_uid ? mode_t(S_IRUSR) : group)) != 0)
        return QString();
    return QString("may not be read by the owner of its directory (the file's owner is %1, its mode %2)")
        .arg(info.st_uid)
        .arg(info.st_mode & 07777, 4, 8, QLatin1Char('0'));
}

bool conceal(const QString& path)
{
    struct stat info;
    const QByteArray name = QFile::encodeName(path);
    return stat(name.constData(), &info) == 0 && chmod(name.constData(), info.st_mode & S_IRWXU) == 0;
}

/// What is wrong with a file, whatever it holds.
QStringList findingsBeside(const CheckedFile& file, const QString& dir)
{
    QStringList lines = file.name == "bookmark.xml" ? checkRoom(dir) : QStringList();
    for (const QString& line : {exposureOf(dir + file.name), lockOutOf(dir + file.name)}) {
        if (!line.isEmpty())
            lines.append(line);
    }
    return lines;
}

/// Why a file that is there cannot be read; empty when it can.
QString problemWithReading(const QString& path)
{
    QString problem = problemWithPlace(path);
    if (problem.isEmpty() && QFileInfo(path).isSymLink() && !QFileInfo::exists(path))
        return "is a symbolic link that leads nowhere";
    QFile file(path);
    if (problem.isEmpty() && !file.open(QIODevice::ReadOnly))
        problem = printable(file.errorString());
    return problem.isEmpty()
               ? QString()
               : QString("cannot be read: %1; the store is empty then, and saving replaces the file")
                     .arg(problem);
}

// --- Repair -----------------------------------------------------------------------------------------------

/// Writes what could not be read beside the file. Nothing when that fails.
std::optional<QString> keepRejected(const QString& path, const QByteArray& rejected)
{
    QString name = path + ".rejected";
    for (int i = 2; QFileInfo::exists(name); ++i)
        name = QString("%1.rejected%2").arg(path).arg(i);
    const mode_t mask = umask(S_IRWXG | S_IRWXO);
    QFile file(name);
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(rejected) == rejected.size() && file.flush();
    umask(mask);
    return isWritten ? std::optional<QString>(name) : std::nullopt;
}

/// Writes what the plan says, after a copy. Tells in the report what was done; false when nothing was.
bool carryOut(const Plan& plan, const StoreFile& file, FileReport& report)
{
    const std::optional<QString> copy = file.keepCopy();
    if (!copy)
        return false; // with a complaint
    plan.write(file.dir());
    if (!TVNG_GetSaveError().isEmpty()) {
        report.problem = "is not repaired: " + printable(TVNG_GetSaveError());
        QFile::remove(*copy); // the file is as it was
        return false;
    }
    report.keptAs = *copy;
    if (!plan.rejected.isEmpty())
        report.rejectedTo = keepRejected(report.path, plan.rejected).value_or(QString());
    return true;
}

/// What would be found in the file that the plan writes.
QStringList checkTrial(const CheckedFile& file, const Plan& plan, const QString& dir)
{
    const TrialDir trial;
    QFile::link(dir + "thumbnail", trial.path() + "thumbnail");
    plan.write(trial.path());
    return file.check(trial.path()).replaceInStrings(printable(trial.path()), printable(dir));
}

/// Says of each finding how it ends, and adds those that only the repair has made.
void tellEndings(FileReport& report, QStringList left)
{
    bool isLossTold = report.lost == 0;
    for (Finding& finding : report.findings) {
        const bool remains = left.removeAll(finding.text) > 0;
        finding.ending = remains ? Ending::REMAINS : isLossTold ? Ending::REPAIRED : Ending::LOST;
        isLossTold = isLossTold || !remains; // the damage is the first that goes
    }
    for (const QString& line : left)
        report.findings.push_back({line, Ending::REMAINS});
}

void repair(const CheckedFile& file, const QString& dir, bool isTrial, FileReport& report)
{
    const QString exposure = exposureOf(report.path);
    QStringList left;
    for (const Finding& finding : report.findings)
        left.append(finding.text);
    const std::optional<Plan> plan =
        problemWithReading(report.path).isEmpty() ? file.plan(dir) : std::nullopt;
    if (!problemWithReading(report.path).isEmpty()) {
        report.problem = "is not repaired, because it cannot be read; make it readable";
    } else if (plan && !QFileInfo(report.path).isWritable()) {
        report.problem = "is not repaired: permission denied; make the file writable";
    } else if (plan && (isTrial || carryOut(*plan, StoreFile(dir, file.name), report))) {
        report.lost = plan->lost;
        left = (isTrial ? checkTrial(file, *plan, dir) : file.check(dir)) + findingsBeside(file, dir);
    }
    if (!exposure.isEmpty() && (isTrial || conceal(report.path)))
        left.removeAll(exposure);
    tellEndings(report, left);
}

// --- What else lies in the directory ----------------------------------------------------------------------

/// Whether two names differ in one letter, or only in capitals.
bool isMisspelt(const QString& name, const QString& known)
{
    if (name.compare(known, Qt::CaseInsensitive) == 0)
        return true;
    int front = 0;
    while (front < std::min(name.size(), known.size()) && name.at(front) == known.at(front))
        ++front;
    const QString rest = name.mid(front);
    const QString knownRest = known.mid(front);
    return rest.mid(1) == knownRest.mid(1) || rest.mid(1) == knownRest || rest == knownRest.mid(1);
}

/// What a file's name alone tells against it; empty for nothing.
QString problemWithName(const QString& dir, const QString& name)
{
    if (isListed(name, std::begin(FILE_NAMES), std::end(FILE_NAMES)))
        return QString();
    for (const char* known : FILE_NAMES) {
        const bool isCopy = name.startsWith(QString(known) + '.');
        if (isCopy && !QFileInfo::exists(dir + known))
            return QString("there is no %1, but this is beside it").arg(known);
        if (!isCopy && isMisspelt(name, known))
            return QString("is read by nobody; it may be meant for %1").arg(known);
    }
    return QString();
}

QStringList findingsOfLeftover(const QString& dir, const QString& name)
{
    QStringList lines;
    const bool isLeftover = name.endsWith(LEFTOVER);
    const QString target = name.left(name.size() - static_cast<int>(qstrlen(LEFTOVER)));
    if (isLeftover && QFileInfo::exists(dir + target))
        lines.append("is left over from an interrupted save");
    else if (isLeftover)
        lines.append(
            QString("is left over from an interrupted save, and there is no %1").arg(printable(target)));
    else if (const QString problem = problemWithName(dir, name); !problem.isEmpty())
        lines.append(problem);
    const QString exposure = exposureOf(dir + name);
    const bool isOwn = isListed(name, std::begin(FILE_NAMES), std::end(FILE_NAMES));
    if (!exposure.isEmpty() && !isOwn)
        lines.append(exposure);
    return lines;
}

/// Files beside those of the browser that need a look. A leftover goes when its file is there.
void checkOthers(const QString& dir, Repair repair, std::vector<FileReport>& reports)
{
    for (const QString& name : QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name)) {
        FileReport report;
        report.path = dir + name;
        QStringList left = name.startsWith(LOCK_NAME) ? QStringList() : findingsOfLeftover(dir, name);
        if (left.isEmpty())
            continue;
        for (const QString& line : left)
            report.findings.push_back({line});
        if (repair != Repair::NONE) {
            const bool isTrial = repair == Repair::TRY;
            const QString exposure = exposureOf(report.path);
            const QString target = report.path.left(report.path.size() - static_cast<int>(qstrlen(LEFTOVER)));
            if (name.endsWith(LEFTOVER) && QFileInfo::exists(target)) {
                if (isTrial || QFile::remove(report.path))
                    left.clear();
            } else if (!exposure.isEmpty() && (isTrial || conceal(report.path))) {
                left.removeAll(exposure);
            }
            tellEndings(report, left);
        }
        reports.push_back(report);
    }
}

/// A list that is gone while its pictures are there.
void checkMissing(const QString& dir, Repair repair, std::vector<FileReport>& reports)
{
    if (QFileInfo::exists(dir + "bookmark.xml") ||
        QDir(dir + "thumbnail").entryList({"*.png"}, QDir::Files).isEmpty())
        return;
    FileReport report;
    report.path = dir + "bookmark.xml";
    report.findings.push_back(
        {"is missing, but its pictures are there", repair == Repair::NONE ? Ending::FOUND : Ending::REMAINS});
    reports.push_back(report);
}

/// Packs of thumbnails, whatever they are called.
void addPacks(const QString& dir, std::vector<CheckedFile>& files)
{
    for (const QString& name : QDir(dir).entryList(QDir::Files, QDir::Name)) {
        const QString path = dir + name;
        QFile file(path);
        if (!name.endsWith(".xml", Qt::CaseInsensitive) ||
            isListed(name, std::begin(FILE_NAMES), std::end(FILE_NAMES)) || !file.open(QIODevice::ReadOnly) ||
            !file.read(200).contains("<thumbnail"))
            continue;
        DocumentKind kind;
        kind.name = name;
        kind.form = {"thumbnail", "image", "src"};
        kind.findings = [](const QString&, Document document) { return flawsOf(picturesOf(document)); };
        files.push_back(checkedDocument(kind));
    }
}

} // namespace

std::vector<FileReport> checkDirectory(const QString& dir, Repair repairing)
{
    std::vector<FileReport> reports;
    std::vector<CheckedFile> files = filesOf();
    addPacks(dir, files);
    for (const CheckedFile& file : files) {
        FileReport report;
        report.path = dir + file.name;
        if (!QFileInfo::exists(report.path) && !QFileInfo(report.path).isSymLink())
            continue;
        const QString problem = problemWithReading(report.path);
        const QStringList found =
            problem.isEmpty() ? file.check(dir) + findingsBeside(file, dir) : QStringList(problem);
        for (const QString& line : found)
            report.findings.push_back({line});
        if (repairing != Repair::NONE && !found.isEmpty())
            repair(file, dir, repairing == Repair::TRY, report);
        reports.push_back(report);
    }
    checkMissing(dir, repairing, reports);
    checkOthers(dir, repairing, reports);
    if (QFileInfo(dir + "thumbnail").isDir())
        checkOthers(dir + "thumbnail/", repairing, reports);
    return reports;
}
