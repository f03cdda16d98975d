#include "tools/tlvctl/thumbnails/ThumbnailPackCommand.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Progress.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"
#include "tools/tlvctl/records/StoreFile.h"
#include "tools/tlvctl/thumbnails/ThumbnailPack.h"

#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace {

/// Whether the pack may be written: not over what is none, unless forced.
bool checkReplaceable(const StoreFile& file, bool isForced)
{
    if (!file.checkReplaceable(isForced))
        return false;
    const Document document = readDocument(file.path());
    if (isForced || document.state == Document::State::MISSING || isPack(document))
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

/// Writes the pack beside the file first, so that an older one is only lost to a whole one.
bool save(const StoreFile& file, TVNC_XMLNode& root)
{
    QSaveFile out(file.path());
    if (out.open(QIODevice::WriteOnly) && TVNC_XMLWriter().write(out, &root) && out.commit())
        return file.checkSaved(root);
    complain(file.path(),
             QString("saving failed: %1; check the permissions of the file and its directory and the "
                     "free space (\"df %2\")")
                 .arg(printable(out.errorString()), printable(file.dir())));
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
    json.member("file");
    json.string(file.path());
    json.member("dryRun");
    json.boolean(isDryRun);
    json.member("fileBytes");
    if (isDryRun)
        json.null();
    else
        json.number(QFileInfo(file.path()).size());
    writePictures(json, pictures);
    json.endObject();
}

int pack(const QCommandLineParser& arguments)
{
    const StoreFile dir(pathArgument(arguments, 0), "the pictures");
    const QFileInfo target(pathArgument(arguments, 1));
    const StoreFile file(target.path(), target.fileName());
    const bool isForced = arguments.isSet("force");
    if (!dir.checkDirectory() || !file.checkDirectory() || !checkReplaceable(file, isForced))
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
    if (!isDryRun(arguments) && !save(file, *document.root))
        return FAILED;
    const std::vector<PackedPicture> pictures = picturesOf(document);
    if (arguments.isSet("json"))
        writeResult(file, pictures, isDryRun(arguments));
    else
        printResult(file, pictures, isDryRun(arguments));
    return problems.isEmpty() ? DONE : FAILED;
}

} // namespace

Command thumbnailPackCommand()
{
    Command command;
    command.name = "pack";
    command.summary = "Pack the PNG files of a directory into one file.";
    command.details = "Files are packed whose names end in \".png\", in small or capital letters; no\n"
                      "directories and no symbolic links. The directory stays as it is.";
    command.examples = {"tlvctl thumbnails pack /data/user/thumbnail /data/user/thumbnails.xml"};
    command.arguments = {{"DIR", "The directory with the pictures."}, {"FILE", "The pack to be written."}};
    command.options = {jsonOption(),
                       {"dry-run", "Write nothing, but say what would be packed."},
                       {"force", "Replace a file that is no pack, and leave out what cannot be packed."}};
    command.run = pack;
    return command;
}
