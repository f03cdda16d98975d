#include "tlvlib/files/TVNC_WholeFile.h"

#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/files/TVNG_saveMode.h"

#include <QtCore/QFile>

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Behind the name of a file that is not complete yet. Told in docs/integration.md.
const char LEFTOVER_SUFFIX[] = ".tlvsave";

/// Bytes that are collected before they are written.
const int PENDING_SIZE = 64 * 1024;

/// As many as the kernel follows.
const int LINKS_MAX = 40;

/// How often another process that saves in the directory is waited for, 20 ms each time.
const int LOCK_ATTEMPTS = 250;
const useconds_t LOCK_PAUSE = 20 * 1000;

const mode_t FOR_ALL = 0666; // less the process's umask
const mode_t FOR_OWNER = 0600;
const mode_t PERMISSIONS = 07777;

/// The part of a path that names the directory, with its "/"; empty for a name alone.
QByteArray directoryOf(const QByteArray& path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

/// The path of what a path leads to behind all symbolic links, whether there is something or not.
QByteArray behindLinks(QByteArray path)
{
    for (int i = 0; i < LINKS_MAX; ++i) {
        char c_to[PATH_MAX];
        const ssize_t si_size = ::readlink(path.constData(), c_to, sizeof c_to);
        if (si_size < 0)
            break;
        const QByteArray to(c_to, static_cast<int>(si_size));
        path = to.startsWith('/') ? to : directoryOf(path) + to;
    }
    return path;
}

/// Whether an error means that a directory takes no new file, rather than that it cannot take one now.
bool isNoPlaceForFiles(int si_error)
{
    return si_error == EACCES || si_error == EPERM || si_error == EROFS || si_error == ENOENT ||
           si_error == ENOTDIR || si_error == ELOOP || si_error == ENAMETOOLONG;
}

/// Whether an error means that what is synced knows no sync, as terminals and a few file systems do.
bool knowsNoSync(int si_error)
{
    return si_error == EINVAL || si_error == EROFS || si_error == ENOTSUP;
}

} // namespace

TVNC_WholeFile::TVNC_WholeFile(const QString& path)
    : path_(path), si_directory_(-1), si_file_(-1), b_leftover_(false), si_error_(0), pc_failed_(nullptr)
{
}

TVNC_WholeFile::~TVNC_WholeFile()
{
    release();
}

// --- Opening ----------------------------------------------------------------------------------------------

bool TVNC_WholeFile::open(OpenMode mode)
{
    if (openFile())
        return QIODevice::open(mode | Unbuffered);
    fail("it may not be written");
    release();
    tell();
    return false;
}

/// False, with errno set, when the target may not be written.
bool TVNC_WholeFile::openFile()
{
    const QByteArray path = behindLinks(QFile::encodeName(path_));
    if (path.contains('\0')) {
        errno = ENOENT; // the kernel would take another file
        return false;
    }
    directory_ = directoryOf(path);
    name_ = path.mid(directory_.size());
    leftover_ = name_.left(NAME_MAX - static_cast<int>(sizeof LEFTOVER_SUFFIX) + 1) + LEFTOVER_SUFFIX;

    struct stat target;
    std::memset(&target, 0, sizeof target); // a mode of 0 for a target that does not exist
    const bool b_missing = ::stat(path.constData(), &target) != 0;
    if (name_.isEmpty() || (b_missing && errno != ENOENT))
        return openInPlace(); // which fails
    if (target.st_mode != 0) {
        if (!S_ISREG(target.st_mode))
            return openInPlace();
        // The directory's permissions alone would let a file be replaced that may not be written.
        const int si_file = ::open(path.constData(), O_WRONLY | O_CLOEXEC);
        if (si_file < 0)
            return false;
        ::close(si_file);
    }
    return openBeside(target) || openInPlace();
}

bool TVNC_WholeFile::openInPlace()
{
    si_file_ =
        ::open(QFile::encodeName(path_).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, FOR_ALL);
    return si_file_ >= 0;
}

/// False when the target is to be written in place. So are the functions below.
bool TVNC_WholeFile::openBeside(const struct stat& target)
{
    const bool b_exists = target.st_mode != 0;
    if (!openDirectory() || !lockDirectory() ||
        !openLeftover(b_exists || TVNC_SecretSave::isActive() ? FOR_OWNER : FOR_ALL))
        return false;
    if (hasFailed() || !b_exists || takeIdentity(target))
        return true;
    closeFile();
    removeLeftover();
    return false;
}

bool TVNC_WholeFile::openDirectory()
{
    si_directory_ =
        ::open(directory_.isEmpty() ? "." : directory_.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return si_directory_ >= 0 || failUnlessInPlace("its directory could not be opened");
}

/// Two processes that save the same file have one name for the new file, which belongs to who has this lock.
bool TVNC_WholeFile::lockDirectory()
{
    for (int i = 0; i < LOCK_ATTEMPTS && !hasFailed(); ++i) {
        // A file system without locks is used without.
        if (::flock(si_directory_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
            return true;
        ::usleep(LOCK_PAUSE);
    }
    return fail("another program keeps saving in its directory");
}

bool TVNC_WholeFile::openLeftover(unsigned int ul_mode)
{
    if (hasFailed())
        return true;
    const int si_flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    si_file_ = ::openat(si_directory_, leftover_.constData(), si_flags, ul_mode);
    if (si_file_ < 0 && errno == EEXIST && ::unlinkat(si_directory_, leftover_.constData(), 0) == 0)
        si_file_ = ::openat(si_directory_, leftover_.constData(), si_flags, ul_mode);
    b_leftover_ = si_file_ >= 0;
    return b_leftover_ || failUnlessInPlace("a new file could not be made in its directory");
}

/// Gives the new file the target's owner, group and mode.
bool TVNC_WholeFile::takeIdentity(const struct stat& target)
{
    struct stat made;
    if (::fstat(si_file_, &made) != 0)
        return false;
    if ((made.st_uid != target.st_uid || made.st_gid != target.st_gid) &&
        ::fchown(si_file_, target.st_uid, target.st_gid) != 0)
        return false;
    // After the owner: a change of owner takes bits of the mode.
    return (made.st_mode & PERMISSIONS) == (target.st_mode & PERMISSIONS) ||
           ::fchmod(si_file_, target.st_mode & PERMISSIONS) == 0;
}

// --- Writing ----------------------------------------------------------------------------------------------

bool TVNC_WholeFile::isSequential() const
{
    return true;
}

qint64 TVNC_WholeFile::readData(char*, qint64)
{
    return -1;
}

qint64 TVNC_WholeFile::writeData(const char* pc_data, qint64 size)
{
    pending_.append(pc_data, static_cast<int>(size));
    if (pending_.size() >= PENDING_SIZE)
        flush();
    return hasFailed() ? -1 : size;
}

void TVNC_WholeFile::flush()
{
    const char* pc_data = pending_.constData();
    size_t ul_size = static_cast<size_t>(pending_.size());
    while (ul_size > 0 && !hasFailed()) {
        const ssize_t si_written = ::write(si_file_, pc_data, ul_size);
        if (si_written >= 0) {
            pc_data += si_written;
            ul_size -= static_cast<size_t>(si_written);
        } else if (errno != EINTR) {
            fail("the new file could not be written");
        }
    }
    pending_.resize(0); // keeps its memory
}

// --- The end ----------------------------------------------------------------------------------------------

bool TVNC_WholeFile::commit()
{
    flush();
    sync();
    closeFile();
    putInPlace();
    release();
    tell();
    return !hasFailed();
}

void TVNC_WholeFile::sync()
{
    if (!hasFailed() && ::fsync(si_file_) != 0 && !knowsNoSync(errno))
        fail("the new file could not be synced to the disk");
}

void TVNC_WholeFile::closeFile()
{
    if (si_file_ >= 0 && ::close(si_file_) != 0)
        fail("the new file could not be written");
    si_file_ = -1;
}

void TVNC_WholeFile::putInPlace()
{
    if (hasFailed() || !b_leftover_)
        return;
    if (::renameat(si_directory_, leftover_.constData(), si_directory_, name_.constData()) != 0) {
        fail("the new file could not take its place");
        return;
    }
    b_leftover_ = false;
    if (::fsync(si_directory_) != 0 && !knowsNoSync(errno))
        fail("its directory could not be synced to the disk");
}

void TVNC_WholeFile::removeLeftover()
{
    if (b_leftover_)
        ::unlinkat(si_directory_, leftover_.constData(), 0);
    b_leftover_ = false;
}

/// Lets go of the directory, so that nothing is locked when the caller logs how the save ended: the log may
/// be a function of the program's that saves something itself.
void TVNC_WholeFile::release()
{
    closeFile();
    removeLeftover();
    if (si_directory_ >= 0)
        ::close(si_directory_); // with it goes the lock
    si_directory_ = -1;
}

// --- Errors -----------------------------------------------------------------------------------------------

/// Keeps errno with what it was an error of, unless there is an error already. Always true.
bool TVNC_WholeFile::fail(const char* pc_what)
{
    if (!hasFailed()) {
        si_error_ = errno;
        pc_failed_ = pc_what;
    }
    return true;
}

/// False when errno means that the directory takes no new file, ever; otherwise fails.
bool TVNC_WholeFile::failUnlessInPlace(const char* pc_what)
{
    return !isNoPlaceForFiles(errno) && fail(pc_what);
}

void TVNC_WholeFile::tell() const
{
    QString error;
    if (hasFailed())
        error = path_ + QLatin1String(" could not be saved: ") + QLatin1String(pc_failed_) +
                QLatin1String(" (") + QString::fromLocal8Bit(std::strerror(si_error_)) + QLatin1Char(')');
    TVNG_setSaveError(error);
}
