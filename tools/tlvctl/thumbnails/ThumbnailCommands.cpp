#include "tools/tlvctl/thumbnails/ThumbnailCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Table.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/DirectoryLock.h"
#include "tools/tlvctl/records/StoreChange.h"
#include "tools/tlvctl/thumbnails/ThumbnailPack.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QFileInfo>

namespace {

const QString TRUST_NAMES = "trust-names";

const Argument PACK{"FILE", "The pack."};

// --- list -------------------------------------------------------------------------------------------------

void printPictures(const std::vector<PackedPicture>& pictures)
{
    Table table({"name", "bytes"});
    qint64 bytes = 0;
    for (const PackedPicture& picture : pictures) {
        const bool isMarked = !picture.omissions.empty() || !picture.doubts.empty();
        table.addRow({printable(picture.name) + (isMarked ? "*" : ""), QString::number(picture.bytes)});
        bytes += picture.bytes;
    }
    table.print();
    qint64 marked = 0;
    for (const PackedPicture& picture : pictures) {
        for (const std::vector<Flaw>& flaws : {picture.omissions, picture.doubts}) {
            if (flaws.empty())
                continue;
            printLine("* " + quoted(picture.name) + ' ' + explanationsOf(flaws));
            ++marked;
        }
    }
    QString line = QString("pictures: %1, bytes: %2").arg(pictures.size()).arg(bytes);
    if (marked > 0)
        line += QString(", marked: %1").arg(marked);
    printLine(line);
}

void writeList(const QString& path, const Document& pack, const std::vector<PackedPicture>& pictures)
{
    JsonWriter json;
    json.beginObject();
    json.member("file", path);
    writeCompleteness(json, pack);
    writePictures(json, pictures);
    json.endObject();
}

int list(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments);
    const std::optional<Document> pack = readPack(path);
    if (!pack)
        return FAILED;
    if (arguments.isSet("json"))
        writeList(path, *pack, picturesOf(*pack));
    else
        printPictures(picturesOf(*pack));
    return exitCodeOfReading(path, *pack);
}

// --- unpack -----------------------------------------------------------------------------------------------

/// What to do with names, and with files that are there.
struct Permissions
{
    bool trustsNames;
    bool isForced;
};

/// Why a picture is not to be written to this path; empty when it may be.
QString obstacle(const PackedPicture& picture, const QString& path, const Permissions& permissions)
{
    if (!picture.doubts.empty() && !permissions.trustsNames)
        return explanationsOf(picture.doubts);
    const QFileInfo info(path);
    if (info.isSymLink() && !permissions.trustsNames)
        return "would be written through a symbolic link that is there";
    if (info.exists() && !info.isFile())
        return "has the name of something that is there and is no file";
    if (info.exists() && !permissions.isForced)
        return "is there already";
    return QString();
}

/// Complains about all that stands in the way, and returns false when there is anything.
bool checkPictures(const StoreFile& pack, const QString& dir, const std::vector<PackedPicture>& pictures,
                   const Permissions& permissions)
{
    const int shownMax = 10;
    int count = 0;
    for (const PackedPicture& picture : pictures) {
        const QString problem =
            picture.isUnpacked() ? obstacle(picture, dir + picture.name, permissions) : QString();
        if (!problem.isEmpty() && ++count <= shownMax)
            complain(pack.path(), quoted(picture.name) + ' ' + problem);
    }
    if (count == 0)
        return true;
    if (count > shownMax)
        complain(pack.path(), QString("and %1 more").arg(count - shownMax));
    complain(pack.path(),
             "nothing was written; unpack into an empty directory, replace files that are there with "
             "--force, and use names as they are with --trust-names if you know who has made the pack");
    return false;
}

/// Why a picture could not be written; empty when it was.
QString writeFile(const PackedPicture& picture, const QString& dir)
{
    QByteArray base64 = picture.node->getText().toLatin1();
    QString path = dir + picture.name;
    if (TVNC_ThumbnailConverter::getInstance()->decode_base64(base64, path) && TVNG_GetSaveError().isEmpty())
        return QString();
    return QString(
               "cannot be written: %1; check the permissions of the directory and the free space (\"df %2\")")
        .arg(printable(TVNG_GetSaveError()), printable(dir));
}

/// Writes all pictures. The lines tell which ones could not be.
QStringList writeFiles(const std::vector<PackedPicture>& pictures, const QString& dir)
{
    QStringList problems;
    Progress progress(pictures.size());
    for (const PackedPicture& picture : pictures) {
        const QString problem = picture.isUnpacked() ? writeFile(picture, dir) : QString();
        if (!problem.isEmpty())
            problems.append(quoted(picture.name) + ' ' + problem);
        progress.advance();
    }
    return problems;
}

void printUnpacked(const std::vector<PackedPicture>& pictures, const QString& dir, bool isDryRun)
{
    qint64 bytes = 0;
    qint64 count = 0;
    for (const PackedPicture& picture : pictures) {
        if (picture.isUnpacked()) {
            ++count;
            bytes += picture.bytes;
        } else {
            printLine(quoted(picture.name) + ' ' + explanationsOf(picture.omissions));
        }
    }
    if (isDryRun)
        printLine(QString("dry run: nothing is written to %1").arg(printable(dir)));
    printLine(QString("pictures unpacked: %1, bytes: %2").arg(count).arg(bytes));
}

int unpack(const QCommandLineParser& arguments)
{
    const QFileInfo source(pathArgument(arguments, 0));
    const StoreFile file(source.path(), source.fileName());
    const StoreFile dir(pathArgument(arguments, 1), "the pictures");
    const Permissions permissions{arguments.isSet(TRUST_NAMES), arguments.isSet("force")};
    if (!dir.checkDirectory())
        return FAILED;
    const std::optional<Document> pack = readPack(file.path());
    if (!pack)
        return FAILED;
    if (pack->state == Document::State::DAMAGED && (!pack->root || !permissions.isForced)) {
        complain(file.path(), describe(pack->damage) +
                                  "; nothing was written. What stands before that place is unpacked "
                                  "with --force");
        return FAILED;
    }
    DirectoryLock lock;
    if (!isDryRun(arguments) && !lock.take(dir.dir()))
        return FAILED;
    const std::vector<PackedPicture> pictures = picturesOf(*pack);
    if (!checkPictures(file, dir.dir(), pictures, permissions))
        return FAILED;
    const QStringList problems = isDryRun(arguments) ? QStringList() : writeFiles(pictures, dir.dir());
    for (const QString& problem : problems)
        complain(dir.dir(), problem);
    if (!problems.isEmpty())
        return FAILED;
    if (arguments.isSet("json"))
        writeList(file.path(), *pack, pictures);
    else
        printUnpacked(pictures, dir.dir(), isDryRun(arguments));
    return DONE;
}

// --- pack -------------------------------------------------------------------------------------------------

/// Whether the pack may be written: not over what is none, unless forced.
bool checkReplaceable(const StoreFile& file, bool isForced)
{
    if (isForced)
        return true;
    const Document document = readDocument(file.path());
    if (!file.checkReplaceable(document))
        return false;
    if (document.state == Document::State::MISSING || isPack(document))
        return true;
    complain(file.path(),
             "is there and is no pack of thumbnails; nothing was written. Name another file, or go on "
             "with --force");
    return false;
}

/// The pack's root, as the library makes it.
std::unique_ptr<TVNC_XMLNode> makeRoot()
{
    auto root = std::make_unique<TVNC_XMLNode>(nullptr, 0);
    QString name = "thumbnail";
    root->setName(name);
    QXmlStreamAttributes attributes;
    attributes.append("docInfo", "1.0");
    root->setAttribute(attributes);
    return root;
}

/// Why a file cannot be packed; empty when it was added.
QString addPicture(TVNC_XMLNode& root, const QString& dir, const QString& name)
{
    if (!survivesSaving(name))
        return "has a name with characters that a pack cannot keep";
    TVNC_ThumbnailConverter& converter = *TVNC_ThumbnailConverter::getInstance();
    const QByteArray unread = "not base64"; // it stays so when the file cannot be opened
    QByteArray base64 = unread;
    QString path = dir + name;
    converter.encode_base64(path, base64);
    if (base64 == unread)
        return "cannot be read";
    QString text = QString::fromLatin1(base64);
    if (decodedSize(text) != QFileInfo(path).size())
        return "cannot be read to its end";
    QString src = name;
    converter.setThumbnail(text, src, &root);
    return QString();
}

/// Adds all pictures of a directory. The lines tell which ones could not be.
QStringList addPictures(TVNC_XMLNode& root, const StoreFile& dir)
{
    QString path = dir.dir();
    QStringList filters{"*.png"};
    const QStringList names = TVNC_ThumbnailConverter::getInstance()->getFileList(
        path, filters, QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDir::Name | QDir::Reversed);
    QStringList problems;
    Progress progress(static_cast<size_t>(names.size()));
    for (const QString& name : names) {
        const QString problem = addPicture(root, path, name);
        if (!problem.isEmpty())
            problems.append(QString("%1 %2").arg(printable(name), problem));
        progress.advance();
    }
    return problems;
}

bool save(const StoreFile& file, TVNC_XMLNode& root)
{
    QString path = file.path();
    if (TVNC_XMLWriter().write(path, &root) && TVNG_GetSaveError().isEmpty())
        return file.checkSaved(root);
    file.complainAboutSaving(printable(TVNG_GetSaveError()));
    return false;
}

void printResult(const StoreFile& file, const std::vector<PackedPicture>& pictures, bool isDryRun)
{
    qint64 bytes = 0;
    qint64 empty = 0;
    for (const PackedPicture& picture : pictures) {
        bytes += picture.bytes;
        empty += picture.bytes == 0 ? 1 : 0;
    }
    const QString path = printable(file.path());
    if (isDryRun)
        printLine(QString("dry run: nothing is written to %1").arg(path));
    printLine(QString("pictures packed: %1, bytes: %2").arg(pictures.size()).arg(bytes));
    if (empty > 0)
        printLine(QString("of these without bytes, so that they will not be unpacked: %1").arg(empty));
    if (!isDryRun)
        printLine(QString("bytes of %1: %2").arg(path).arg(QFileInfo(file.path()).size()));
}

void writeResult(const StoreFile& file, const std::vector<PackedPicture>& pictures, bool isDryRun)
{
    JsonWriter json;
    json.beginObject();
    json.member("file", file.path());
    json.member("dryRun", isDryRun);
    json.member("fileBytes", isDryRun ? std::nullopt : std::optional<qint64>(QFileInfo(file.path()).size()));
    writePictures(json, pictures);
    json.endObject();
}

int pack(const QCommandLineParser& arguments)
{
    const StoreFile dir(pathArgument(arguments, 0), "the pictures");
    const QFileInfo target(pathArgument(arguments, 1));
    const StoreFile file(target.path(), target.fileName());
    const bool isForced = arguments.isSet("force");
    DirectoryLock lock;
    if (!dir.checkDirectory() || !file.checkDirectory() || (!isDryRun(arguments) && !lock.take(file.dir())) ||
        !checkReplaceable(file, isForced) || !file.checkWritable())
        return FAILED;

    Document document;
    document.root = makeRoot();
    const QStringList problems = addPictures(*document.root, dir);
    for (const QString& problem : problems)
        complain(dir.dir(), problem);
    if (!problems.isEmpty() && !isForced) {
        complain(file.path(), "nothing was written; see to these files, or go on without them with --force");
        return FAILED;
    }
    if (!isForced && document.root->getXMLNodeChildren().isEmpty() && QFileInfo::exists(file.path())) {
        complain(dir.dir(),
                 "holds no pictures; nothing was written, because the pack would be emptied. Name the "
                 "directory of the pictures, or go on with --force");
        return FAILED;
    }
    if (!isDryRun(arguments) && ((isForced && !file.keepCopy()) || !save(file, *document.root)))
        return FAILED;
    const std::vector<PackedPicture> pictures = picturesOf(document);
    if (arguments.isSet("json"))
        writeResult(file, pictures, isDryRun(arguments));
    else
        printResult(file, pictures, isDryRun(arguments));
    return problems.isEmpty() ? DONE : FAILED;
}

} // namespace

Command thumbnailListCommand()
{
    Command command("list", "Show the pictures of a pack.", list);
    command.details = "What unpacking passes over or refuses is marked with *, and a line below the table\n"
                      "tells why.";
    command.examples = {"tlvctl thumbnails list /data/user/thumbnails.xml"};
    command.arguments = {PACK};
    command.options = {jsonOption()};
    return command;
}

Command thumbnailPackCommand()
{
    Command command("pack", "Pack the PNG files of a directory into one file.", pack);
    command.details = "Files are packed whose names end in \".png\", in small or capital letters; no\n"
                      "directories and no symbolic links. The directory stays as it is.";
    command.examples = {"tlvctl thumbnails pack /data/user/thumbnail /data/user/thumbnails.xml"};
    command.arguments = {{"DIR", "The directory with the pictures."}, {"FILE", "The pack to be written."}};
    command.options = {jsonOption(),
                       {"dry-run", "Write nothing, but say what would be packed."},
                       {"force", "Replace a file that is no pack, and leave out what cannot be packed."}};
    return command;
}

Command thumbnailUnpackCommand()
{
    Command command("unpack", "Unpack the pictures of a pack into a directory.", unpack);
    command.details =
        "All or nothing: before the first picture is written, all names are checked. A pack may\n"
        "name files elsewhere, so names with a \"/\", names that come twice and symbolic links in\n"
        "the way are refused.";
    command.examples = {"tlvctl thumbnails unpack /data/user/thumbnails.xml /data/new/thumbnail"};
    command.arguments = {PACK, {"DIR", "The directory for the pictures. It has to be there."}};
    command.options = {
        jsonOption(),
        {"dry-run", "Write nothing, but say what would be unpacked."},
        {"force", "Replace files that are there, and unpack what can be read of a damaged pack."},
        {TRUST_NAMES, "Use all names as they are, wherever they lead."}};
    return command;
}
