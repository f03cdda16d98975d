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

/// What a repair would make of a file.
struct Plan
{
    std::function<void()> write;
    int lost = 0;
    QByteArray rejected;
};

/// One file that may be in a directory.
struct CheckedFile
{
    QString path;
    std::function<QStringList()> check;        ///< for a file that can be read
    std::function<std::optional<Plan>()> plan; ///< nothing when the file would stay as it is
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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

/// A document of a directory: how a store for it is made, and what is found in a loaded one.
struct DocumentKind
{
    std::function<std::unique_ptr<Store>(const QString& dir)> make;
    std::function<QStringList(Store& store)> findings;
    std::vector<LeafPlace> leaves; ///< of preferences
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

/// Whether some of what is in the document is of this store.
bool hasOwnContent(TVNC_XMLNode& root, const DocumentKind& kind, const DocumentForm& form)
{
    if (root.getName() == form.root || isRootOfAnother(root.getName(), form))
        return root.getName() == form.root;
    if (form.record)
        return childOf(root, form.record) != nullptr;
    return std::any_of(kind.leaves.begin(), kind.leaves.end(), [&root](const LeafPlace& place) {
        return childOf(root, place.group.toLatin1().constData()) != nullptr;
    });
}

/// The file as the store would keep it, tried in a directory of its own. Empty when that would lose records.
QByteArray asStored(const DocumentKind& kind, TVNC_XMLNode& root, const QString& name)
{
    const QTemporaryDir dir(QDir::tempPath() + "/tlvctl-XXXXXX");
    const std::unique_ptr<Store> store = kind.make(dir.path());
    QString path = dir.path() + '/' + name;
    TVNG_SetSafeSave(0); // a file that is thrown away needs no disk
    TVNC_XMLWriter().write(path, &root);
    const QByteArray written = contentOf(path);
    store->load();
    const bool isLossless = !store->form().record || recordsOf(&store->root()) == recordsOf(&root);
    store->save();
    TVNG_SetSafeSave(1);
    return isLossless ? contentOf(path) : written;
}

std::optional<Plan> planDocument(const DocumentKind& kind, const Store& store)
{
    const QString path = store.file().path();
    const QByteArray bytes = contentOf(path);
    const DocumentForm& form = store.form();
    if (hidesRecords(bytes, form))
        return std::nullopt;
    Document document = readDocument(path);
    Plan plan;
    if (document.state == Document::State::DAMAGED) {
        const Recovered recovered =
            form.record ? recoverRecords(bytes, form) : recoverLeaves(bytes, form, kind.leaves);
        if (recovered.isForeign || (recovered.kept == 0 && recovered.lost > 0))
            return std::nullopt;
        document.root = parse(recovered.document);
        plan.lost = recovered.lost;
        plan.rejected = recovered.rejected;
    }
    if (!document.root || !hasOwnContent(*document.root, kind, form))
        return std::nullopt;
    normalise(*document.root, form);
    const QByteArray result = asStored(kind, *document.root, QFileInfo(path).fileName());
    if (result == bytes)
        return std::nullopt;
    plan.write = [result, path] {
        QString copy = path;
        const std::unique_ptr<TVNC_XMLNode> root = parse(result);
        TVNC_XMLWriter().write(copy, root.get());
    };
    return plan;
}

QStringList checkDocument(const DocumentKind& kind, Store& store)
{
    const QString path = store.file().path();
    const Document document = readDocument(path);
    QStringList lines;
    if (document.state == Document::State::DAMAGED)
        lines.append(describe(document.damage) +
                     ": what stands behind that place is not read, and saving loses it");
    if (document.root && document.root->getName() != store.form().root)
        lines.append(QString("its root is %1 instead of \"%2\"")
                         .arg(quoted(document.root->getName()), store.form().root));
    if (document.state == Document::State::COMPLETE)
        lines += strayContent(path, store.form());
    if (hidesRecords(contentOf(path), store.form()))
        lines.append(HIDDEN_RECORDS);
    store.load();
    return lines + kind.findings(store);
}

CheckedFile checkedDocument(const DocumentKind& kind, const QString& dir)
{
    const std::shared_ptr<Store> store = kind.make(dir);
    return {store->file().path(), [=] { return checkDocument(kind, *store); },
            [=] { return planDocument(kind, *store); }};
}

/// A list: its records' flaws, and what else there is to say.
template <typename List, typename... Arguments>
DocumentKind listKind(const std::function<QStringList(List& list)>& remarks, Arguments... arguments)
{
    DocumentKind kind;
    kind.make = [=](const QString& dir) { return std::make_unique<List>(dir, arguments...); };
    kind.findings = [=](Store& store) {
        auto& list = static_cast<List&>(store);
        return flawsOf(list.records()) + remarks(list);
    };
    return kind;
}

DocumentKind preferencesKind(const QString& scope)
{
    DocumentKind kind;
    kind.make = [=](const QString& dir) { return Preferences::open(scope, dir); };
    kind.findings = [](Store& store) {
        QStringList lines;
        for (const PreferenceRecord& record : static_cast<Preferences&>(store).records()) {
            if (!record.flaws.empty())
                lines.append(record.preference->name + ": " + explanationsOf(record.flaws));
        }
        return lines;
    };
    for (const Preference& preference : scope == "common" ? commonPreferences() : userPreferences())
        kind.leaves.push_back({preference.group, preference.leaf});
    return kind;
}

// --- Bookmarks' pictures ----------------------------------------------------------------------------------

/// Pictures that no bookmark shows or that are none, and a directory that leaves their paths no room.
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
    plan.write = [cookies, dir] {
        QString iniDir = dir;
        TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &iniDir, static_cast<int>(cookies.size()));
    };
    return plan;
}

// --- All files --------------------------------------------------------------------------------------------

std::vector<CheckedFile> filesOf(const QString& dir)
{
    std::vector<CheckedFile> files;
    files.push_back(checkedDocument(preferencesKind("common"), dir));
    files.push_back(checkedDocument(listKind<FontList>([](FontList& list) { return list.remarks(); }), dir));
    files.push_back(checkedDocument(preferencesKind("user"), dir));
    files.push_back(checkedDocument(listKind<BookmarkList>([](BookmarkList& list) {
                                        return list.file().path().startsWith(QDir::tempPath() + "/tlvctl-")
                                                   ? list.remarks()
                                                   : list.remarks() + checkPictures(list);
                                    }),
                                    dir));
    files.push_back(checkedDocument(
        listKind<HistoryList>(
            [](HistoryList& list) { return list.Store::remarks() + list.changesOfLoading(); }, NUMBERED_MAX),
        dir));
    files.push_back(checkedDocument(
        listKind<AuthList>([](AuthList& list) { return list.remarks(); }, NUMBERED_MAX), dir));
    DocumentKind cookies;
    cookies.make = [](const QString& place) {
        return std::make_unique<CookieDocument>(place + "/cookies.xml");
    };
    cookies.findings = [](Store& store) {
        const CookieFile file = static_cast<CookieDocument&>(store).read();
        return flawsOf(file.records) + file.remarks;
    };
    files.push_back(checkedDocument(cookies, dir));
    files.push_back(
        {dir + "cookie.ini", [dir] { return checkCookieIni(dir); }, [dir] { return planCookieIni(dir); }});
    return files;
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

bool conceal(const QString& path)
{
    struct stat info;
    const QByteArray name = QFile::encodeName(path);
    return stat(name.constData(), &info) == 0 && chmod(name.constData(), info.st_mode & S_IRWXU) == 0;
}

/// All that is wrong with a file; nothing when there is none.
std::optional<QStringList> findingsOf(const CheckedFile& file)
{
    const QString place = problemWithPlace(file.path);
    if (!place.isEmpty())
        return QStringList{
            QString("cannot be read: %1; the store is empty then, and saving replaces the file").arg(place)};
    QFile opened(file.path);
    if (QFileInfo(file.path).isSymLink() && !QFileInfo::exists(file.path))
        return QStringList{"is a symbolic link that leads nowhere"};
    if (!QFileInfo::exists(file.path))
        return std::nullopt;
    if (!opened.open(QIODevice::ReadOnly))
        return QStringList{
            QString("cannot be read: %1; the store is empty then, and saving replaces the file")
                .arg(printable(opened.errorString()))};
    opened.close();
    QStringList lines = file.check();
    const QString exposure = exposureOf(file.path);
    if (!exposure.isEmpty())
        lines.append(exposure);
    return lines;
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

/// Writes what the plan says, after a copy. Tells a failure in the report.
void carryOut(const Plan& plan, FileReport& report)
{
    const QFileInfo info(report.path);
    const StoreFile file(info.path(), info.fileName());
    if (!info.isWritable()) {
        report.problem = "is not repaired: permission denied; make the file writable";
        return;
    }
    const std::optional<QString> copy = file.keepCopy();
    if (!copy)
        return; // with a complaint
    plan.write();
    if (!TVNG_GetSaveError().isEmpty()) {
        report.problem = "is not repaired: " + printable(TVNG_GetSaveError());
        QFile::remove(*copy); // the file is as it was
        return;
    }
    report.keptAs = *copy;
    report.lost = plan.lost;
    if (!plan.rejected.isEmpty())
        report.rejectedTo = keepRejected(report.path, plan.rejected).value_or(QString());
}

void repair(const CheckedFile& file, FileReport& report)
{
    if (problemWithPlace(file.path).isEmpty() && QFile(file.path).open(QIODevice::ReadOnly)) {
        const std::optional<Plan> plan = file.plan();
        if (plan)
            carryOut(*plan, report);
        if (!exposureOf(file.path).isEmpty())
            conceal(file.path);
    } else
        report.problem = "is not repaired, because it cannot be read; make it readable";
    const QStringList left = findingsOf(file).value_or(QStringList());
    for (Finding& finding : report.findings)
        finding.ending = left.contains(finding.text) ? Ending::REMAINS : Ending::REPAIRED;
    for (const QString& line : left) {
        const auto same = [&line](const Finding& finding) { return finding.text == line; };
        if (std::none_of(report.findings.begin(), report.findings.end(), same))
            report.findings.push_back({line, Ending::REMAINS});
    }
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
void checkOthers(const QString& dir, bool isRepairing, std::vector<FileReport>& reports)
{
    for (const QString& name : QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name)) {
        if (name.startsWith(LOCK_NAME))
            continue;
        FileReport report;
        report.path = dir + name;
        for (const QString& line : findingsOfLeftover(dir, name))
            report.findings.push_back({line});
        if (report.findings.empty())
            continue;
        if (isRepairing) {
            const QString target = report.path.left(report.path.size() - static_cast<int>(qstrlen(LEFTOVER)));
            if (name.endsWith(LEFTOVER) && QFileInfo::exists(target))
                QFile::remove(report.path);
            else if (!exposureOf(report.path).isEmpty())
                conceal(report.path);
            const QStringList left =
                QFileInfo::exists(report.path) ? findingsOfLeftover(dir, name) : QStringList();
            for (Finding& finding : report.findings)
                finding.ending = left.contains(finding.text) ? Ending::REMAINS : Ending::REPAIRED;
        }
        reports.push_back(report);
    }
}

/// A list that is gone while its pictures are there.
void checkMissing(const QString& dir, bool isRepairing, std::vector<FileReport>& reports)
{
    const bool hasPictures = !QDir(dir + "thumbnail").entryList({"*.png"}, QDir::Files).isEmpty();
    if (!hasPictures || QFileInfo::exists(dir + "bookmark.xml"))
        return;
    FileReport report;
    report.path = dir + "bookmark.xml";
    report.findings.push_back(
        {"is missing, but its pictures are there", isRepairing ? Ending::REMAINS : Ending::FOUND});
    reports.push_back(report);
}

/// Packs of thumbnails, whatever they are called.
void addPacks(const QString& dir, std::vector<CheckedFile>& files)
{
    for (const QString& name : QDir(dir).entryList({"*.xml"}, QDir::Files, QDir::Name)) {
        const QString path = dir + name;
        QFile file(path);
        if (isListed(name, std::begin(FILE_NAMES), std::end(FILE_NAMES)) || !file.open(QIODevice::ReadOnly) ||
            !file.read(200).contains("<thumbnail"))
            continue;
        const DocumentForm form{"thumbnail", "image", "src"};
        const auto check = [path, form] {
            const Document document = readDocument(path);
            QStringList lines;
            if (document.state == Document::State::DAMAGED)
                lines.append(describe(document.damage) + ": what stands behind that place is not unpacked");
            else
                lines += strayContent(path, form);
            if (hidesRecords(contentOf(path), form))
                lines.append(HIDDEN_RECORDS);
            for (const PackedPicture& picture : picturesOf(document)) {
                for (const std::vector<Flaw>& flaws : {picture.omissions, picture.doubts}) {
                    if (!flaws.empty())
                        lines.append(quoted(picture.name) + ' ' + explanationsOf(flaws));
                }
            }
            return lines;
        };
        const auto plan = [path, form]() -> std::optional<Plan> {
            const QByteArray bytes = contentOf(path);
            const Recovered recovered = recoverRecords(bytes, form);
            if (readDocument(path).state != Document::State::DAMAGED || recovered.kept == 0 ||
                hidesRecords(bytes, form))
                return std::nullopt;
            Plan made;
            made.lost = recovered.lost;
            made.rejected = recovered.rejected;
            made.write = [path, recovered] {
                QString copy = path;
                const std::unique_ptr<TVNC_XMLNode> root = parse(recovered.document);
                TVNC_XMLWriter().write(copy, root.get());
            };
            return made;
        };
        files.push_back({path, check, plan});
    }
}

} // namespace

std::vector<FileReport> checkDirectory(const QString& dir, bool isRepairing)
{
    std::vector<FileReport> reports;
    std::vector<CheckedFile> files = filesOf(dir);
    addPacks(dir, files);
    for (const CheckedFile& file : files) {
        const std::optional<QStringList> found = findingsOf(file);
        if (!found)
            continue;
        FileReport report;
        report.path = file.path;
        for (const QString& line : *found)
            report.findings.push_back({line});
        if (isRepairing && !found->isEmpty())
            repair(file, report);
        reports.push_back(report);
    }
    checkMissing(dir, isRepairing, reports);
    checkOthers(dir, isRepairing, reports);
    std::vector<FileReport> pictures;
    if (QFileInfo(dir + "thumbnail").isDir())
        checkOthers(dir + "thumbnail/", isRepairing, pictures);
    reports.insert(reports.end(), pictures.begin(), pictures.end());
    return reports;
}

std::vector<FileReport> tryRepair(const QString& dir)
{
    // Of the same length as the directory's, because paths of pictures have a limit.
    const QTemporaryDir place(QDir::tempPath() + "/tlvtry-XXXXXX");
    const QString copy = place.path() + '/';
    for (const QString& folder : {QString(), QString("thumbnail/")}) {
        QDir().mkpath(copy + folder);
        for (const QFileInfo& info : QDir(dir + folder).entryInfoList(QDir::Files | QDir::Hidden)) {
            QFile::copy(info.filePath(), copy + folder + info.fileName());
        }
    }
    std::vector<FileReport> reports = checkDirectory(dir, false);
    std::vector<FileReport> tried = checkDirectory(copy, true);
    for (FileReport& report : reports) {
        const QString path = copy + report.path.mid(dir.size());
        const auto it = std::find_if(tried.begin(), tried.end(),
                                     [&path](const FileReport& other) { return other.path == path; });
        for (Finding& finding : report.findings) {
            finding.ending = Ending::REMAINS;
            if (it == tried.end())
                continue;
            for (const Finding& other : it->findings) {
                QString text = other.text;
                if (text.replace(printable(copy), printable(dir)) == finding.text)
                    finding.ending = other.ending;
            }
        }
        report.lost = it == tried.end() ? 0 : it->lost;
    }
    return reports;
}
