#include "tools/tlvctl/exchange/ExchangeFile.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace {

const QString FORMAT = "format";
const QString FORCE = "force";

/// A file is read whole: no bookmarks that people keep come near this.
const qint64 IMPORT_MAX_BYTES = 256 << 20;

QString namesOf(const std::vector<Format>& formats, const QString& separator)
{
    QStringList names;
    for (const Format& format : formats)
        names.append(format.name);
    return names.join(separator);
}

} // namespace

QCommandLineOption formatOption(const std::vector<Format>& formats)
{
    return {FORMAT,
            QString("The format, %1, where the file's name does not tell it.").arg(namesOf(formats, " or ")),
            namesOf(formats, "|")};
}

std::optional<QString> formatOf(const QString& path, const QCommandLineParser& arguments,
                                const std::vector<Format>& formats)
{
    const QString wanted = arguments.value(FORMAT);
    const QString ending = QFileInfo(path).suffix().toLower();
    for (const Format& format : formats) {
        if (arguments.isSet(FORMAT) ? format.name == wanted : format.endings.contains(ending))
            return format.name;
    }
    const QString names = namesOf(formats, " nor ");
    if (arguments.isSet(FORMAT))
        wrongUsage(QString("format %1 is neither %2").arg(quoted(wanted), names));
    else
        wrongUsage(QString("the name %1 does not tell the format; give --format").arg(quoted(path)));
    return std::nullopt;
}

std::optional<QByteArray> readImport(const QString& path)
{
    QFile file(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly)) {
        refuseImport(path, QString("it cannot be read: %1; name a file that can be")
                               .arg(QFileInfo(path).isDir() ? "is a directory" : file.errorString()));
        return std::nullopt;
    }
    const QByteArray bytes = file.read(IMPORT_MAX_BYTES + 1);
    if (file.error() != QFileDevice::NoError) {
        refuseImport(path, QString("it cannot be read: %1").arg(file.errorString()));
        return std::nullopt;
    }
    if (bytes.size() <= IMPORT_MAX_BYTES)
        return bytes;
    refuseImport(path, QString("it has more than %1 MiB; name a smaller one").arg(IMPORT_MAX_BYTES >> 20));
    return std::nullopt;
}

void refuseImport(const QString& path, const QString& problem)
{
    complain(path, "nothing was imported: " + problem);
}

Argument exportArgument(const QString& content)
{
    return {"FILE", QString("The file to make, for %1.").arg(content)};
}

QList<QCommandLineOption> exportOptions(const QList<QCommandLineOption>& own)
{
    return own + QList<QCommandLineOption>{{FORCE, "Replace the file when there is one already."}};
}

bool writeExport(const QString& path, const QByteArray& bytes, Readers readers,
                 const QCommandLineParser& arguments)
{
    if (QFileInfo::exists(path) && !arguments.isSet(FORCE)) {
        complain(path, "nothing was exported, because there is such a file already; name another one, or "
                       "replace it with --force");
        return false;
    }
    QSaveFile file(path);
    bool isReady = file.open(QIODevice::WriteOnly);
    if (isReady && readers == Readers::OWNER)
        isReady = file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (isReady && file.write(bytes) == bytes.size() && file.commit())
        return true;
    complain(path, QString("nothing was exported: %1; check the permissions of its directory and the free "
                           "space (\"df %2\")")
                       .arg(printable(file.errorString()), printable(QFileInfo(path).path())));
    return false;
}

int exportStore(Store& store, const QString& path, const QCommandLineParser& arguments,
                const std::function<Export()>& make)
{
    if (!store.file().checkDirectory())
        return FAILED;
    const QString source = store.file().path();
    Document document = readDocument(source);
    const bool isDefault = document.state == Document::State::MISSING && store.hasDefaults();
    if (!isDefault && !checkReadable(source, document, "name the directory of a file that can be"))
        return FAILED;
    store.load(std::move(document.root));
    const Export made = make();
    if (!writeExport(path, made.bytes, made.readers, arguments))
        return FAILED;
    for (const QString& line : made.lines)
        printLine(line);
    return exitCodeOfReading(source, document);
}
