#include "tools/tlvctl/records/Store.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

StoreFile::StoreFile(const QString& dir, const QString& name)
    : dir_(dir.isEmpty() || dir.endsWith('/') ? dir : dir + '/'), name_(name)
{
}

namespace {

/// Copies all bytes of a file, and syncs them. The copy belongs to whom the file belongs, where that can be.
bool copyTo(QFile& from, QFile& to)
{
    struct stat info;
    if (fstat(from.handle(), &info) != 0)
        return false;
    while (!from.atEnd()) {
        const QByteArray bytes = from.read(1 << 20);
        if (bytes.isEmpty() || to.write(bytes) != bytes.size())
            return false;
    }
    const bool isGiven = fchown(to.handle(), info.st_uid, info.st_gid) == 0;
    return to.flush() && (!isGiven || fchmod(to.handle(), info.st_mode & 07777) == 0) &&
           fsync(to.handle()) == 0;
}

/// Opens a file that must not be there, for its owner alone.
bool openNew(QFile& file)
{
    const int fd = open(QFile::encodeName(file.fileName()).constData(),
                        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    return fd >= 0 && file.open(fd, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
}

} // namespace

bool StoreFile::checkDirectory() const
{
    if (QFileInfo(dir_).isDir())
        return true;
    const QString path = dir_.left(dir_.size() - 1); // without its "/", so that a plain file is found
    if (dir_.isEmpty())
        complain(dir_, QString("no directory; name the one that holds %1, \".\" for this one").arg(name_));
    else if (QFileInfo::exists(path))
        complain(path, QString("not a directory; name the directory that holds %1").arg(name_));
    else
        complain(path, "no such directory; check the spelling");
    return false;
}

bool StoreFile::checkReplaceable(const Document& document) const
{
    if (document.state == Document::State::DAMAGED) {
        complain(path(), describe(document.damage) +
                             "; nothing was changed, because saving would lose everything from "
                             "that line on. Correct the file there, or go on with --force");
        return false;
    }
    if (document.state == Document::State::UNREADABLE) {
        complain(path(), QString("cannot be read: %1; nothing was changed, because saving would lose all "
                                 "that it holds. Make it readable, or go on with --force")
                             .arg(printable(document.problem)));
        return false;
    }
    return true;
}

bool StoreFile::checkWritable() const
{
    const QString problem = problemWithPlace(path());
    if (!problem.isEmpty()) {
        complain(path(), QString("nothing was changed: %1; name a file").arg(problem));
        return false;
    }
    if (!QFileInfo::exists(path()) || QFileInfo(path()).isWritable())
        return true;
    complain(path(), "nothing was changed: permission denied; make the file writable");
    return false;
}

std::optional<QString> StoreFile::keepCopy() const
{
    if (!QFileInfo::exists(path()))
        return QString();
    QString name = path() + ".bak";
    for (int i = 2; QFileInfo::exists(name) || QFileInfo(name).isSymLink(); ++i)
        name = QString("%1.bak%2").arg(path()).arg(i);
    QFile from(path());
    QFile to(name);
    if (from.open(QIODevice::ReadOnly) && openNew(to) && copyTo(from, to))
        return name;
    if (to.isOpen())
        to.remove();
    // What may not be read can still have a second name; safe saves never write into the file itself.
    else if (!from.isOpen() &&
             link(QFile::encodeName(path()).constData(), QFile::encodeName(name).constData()) == 0)
        return name;
    complain(path(),
             QString("nothing was changed, because it cannot be copied to %1; look for free space with "
                     "\"df\", and at the permissions")
                 .arg(printable(name)));
    return std::nullopt;
}

bool StoreFile::checkSaved(TVNC_XMLNode& expected) const
{
    const Document saved = readDocument(path());
    QString problem;
    if (saved.state == Document::State::MISSING || saved.state == Document::State::UNREADABLE)
        problem = printable(saved.problem);
    else if (saved.state == Document::State::DAMAGED)
        problem = describe(saved.damage);
    else if (!sameTree(expected, *saved.root))
        problem = "it holds something else than was to be saved";
    else
        return true;
    complainAboutSaving(problem, ", then look at the file before trying again");
    return false;
}

void StoreFile::complainAboutSaving(const QString& problem, const QString& advice) const
{
    complain(path(), QString("saving failed: %1; check the permissions of the file and its directory and "
                             "the free space (\"df %2\")%3")
                         .arg(problem, printable(dir_), advice));
}

bool Store::refuse(const QString& problem) const
{
    complain(file_.path(), "nothing was changed: " + problem);
    return false;
}

bool Store::hasOwnRoot(const Document& document) const
{
    return !document.root || document.root->getName() == form_.root;
}

bool Store::checkRoot(const Document& document) const
{
    return hasOwnRoot(document) ||
           refuse(QString("another document: its root is %1 instead of \"%2\". Name the right file, or go on "
                          "with --force")
                      .arg(quoted(document.root->getName()), form_.root));
}

void Store::load(std::unique_ptr<TVNC_XMLNode> fileRoot)
{
    renumbered_ = countRenumbered(fileRoot.get());
    takeFile(std::move(fileRoot));
    loadSetting();
}

bool Store::saveChecked()
{
    save();
    const QString error = TVNG_GetSaveError();
    if (error.isEmpty())
        return checkSaved();
    file_.complainAboutSaving(printable(error));
    return false;
}

QStringList Store::remarks() const
{
    if (renumbered_ == 0)
        return {};
    return {QString("numbers that stand otherwise in the file, and are given anew by loading: %1")
                .arg(renumbered_)};
}

void Store::writeRemarks(JsonWriter& json) const
{
    json.member("renumbered", renumbered_);
}
