#include "tests/support/SystemCalls.h"

#include <QtCore/QHash>
#include <QtCore/QPair>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

// Qt calls the variants of a 64-bit file system where the C library has both, so both are defined here.

namespace {

/// What is recorded, and what fails. Made on first use: the C library opens files before main().
struct State
{
    State() : b_recording(false), si_error(0), si_after(0), b_once(false), room(-1), si_files(0) {}

    bool b_recording;
    QByteArray directory;
    QList<SystemCall> calls;
    QStringList texts;
    QHash<QPair<quint64, quint64>, int> numbers; ///< of the files, by device and inode

    QByteArray failing; ///< the directory in which calls fail
    QByteArray name;
    int si_error;
    int si_after;
    bool b_once;
    qint64 room; ///< bytes that can still be written; -1 for any number

    int si_files;
};

State& state()
{
    static State* const pc_state = new State;
    return *pc_state;
}

bool b_active = false; ///< whether there is anything to do here
bool b_inside = false; ///< whether this file itself calls

/// While it lives, calls are the recorder's own.
struct Inside
{
    Inside() { b_inside = true; }
    ~Inside() { b_inside = false; }
};

bool isWatched()
{
    return b_active && !b_inside;
}

template <typename Function>
Function real(const char* pc_name, Function)
{
    union {
        void* pc_object;
        Function function;
    } found;
    found.pc_object = dlsym(RTLD_NEXT, pc_name);
    if (!found.pc_object)
        std::abort();
    return found.function;
}

#define REAL(name) real(#name, &::name)

QByteArray pathOfDescriptor(int si_file)
{
    char pc_link[64];
    std::snprintf(pc_link, sizeof pc_link, "/proc/self/fd/%d", si_file);
    char pc_path[PATH_MAX];
    const ssize_t si_size = readlink(pc_link, pc_path, sizeof pc_path);
    return si_size > 0 ? QByteArray(pc_path, static_cast<int>(si_size)) : QByteArray();
}

QByteArray absolute(int si_directory, const char* pc_path)
{
    if (*pc_path == '/')
        return pc_path;
    if (si_directory != AT_FDCWD)
        return pathOfDescriptor(si_directory) + '/' + pc_path;
    char pc_current[PATH_MAX];
    return QByteArray(getcwd(pc_current, sizeof pc_current)) + '/' + pc_path;
}

bool isBelow(const QByteArray& path, const QByteArray& directory)
{
    return !directory.isEmpty() && (path + '/').startsWith(directory);
}

bool isRecorded(const QByteArray& path)
{
    return state().b_recording && isBelow(path, state().directory);
}

QByteArray relative(const QByteArray& path)
{
    return path.mid(state().directory.size());
}

/// Whether this call is to fail, with errno set.
bool fails(const char* pc_name, const QByteArray& path)
{
    if (state().si_error == 0 || state().name != pc_name || !isBelow(path, state().failing) ||
        state().si_after-- > 0)
        return false;
    state().si_after = 0;
    errno = state().si_error;
    if (state().b_once)
        state().si_error = 0;
    return true;
}

int numberOf(const struct stat& status, bool b_new)
{
    const QPair<quint64, quint64> key(status.st_dev, status.st_ino);
    if (b_new || !state().numbers.contains(key))
        state().numbers[key] = state().si_files++;
    return state().numbers.value(key);
}

int numberOf(int si_file)
{
    struct stat status;
    return fstat(si_file, &status) == 0 ? numberOf(status, false) : -1;
}

void add(SystemCall::Kind kind, int si_file, const QByteArray& path = QByteArray(),
         const QByteArray& other = QByteArray(), qint64 offset = 0, const QByteArray& data = QByteArray())
{
    const SystemCall call = {kind, si_file, path, other, offset, data};
    state().calls.append(call);
}

void addText(const QByteArray& text)
{
    state().texts.append(QString::fromLocal8Bit(text));
}

typedef int (*Open)(int si_directory, const char* pc_path, int si_flags, ...);

int openFile(Open function, int si_directory, const char* pc_path, int si_flags, mode_t mode)
{
    if (!isWatched())
        return function(si_directory, pc_path, si_flags, mode);
    const Inside inside;
    const QByteArray path = absolute(si_directory, pc_path);
    const bool b_writes = (si_flags & O_ACCMODE) != O_RDONLY;
    if ((b_writes || (si_flags & O_DIRECTORY)) && fails("open", path))
        return -1;
    struct stat before;
    const bool b_existed = stat(path.constData(), &before) == 0;
    const int si_file = function(si_directory, pc_path, si_flags, mode);
    if (!b_writes || !isRecorded(path))
        return si_file;
    addText("open " + relative(path) + " 0x" + QByteArray::number(si_flags, 16) + ' ' +
            QByteArray::number(si_flags & O_CREAT ? mode : 0u, 8) + (si_file < 0 ? " failed" : ""));
    if (si_file < 0)
        return si_file;
    struct stat opened;
    fstat(si_file, &opened);
    add(b_existed ? SystemCall::OPEN : SystemCall::CREATE, numberOf(opened, !b_existed),
        relative(pathOfDescriptor(si_file)));
    if (b_existed && (si_flags & O_TRUNC))
        add(SystemCall::TRUNCATE, numberOf(opened, false));
    return si_file;
}

/// How many of so many bytes a full disk takes.
size_t roomFor(const QByteArray& path, size_t ul_size)
{
    if (state().room < 0 || !isBelow(path, state().failing))
        return ul_size;
    const size_t ul_taken = qMin(ul_size, static_cast<size_t>(state().room));
    state().room -= static_cast<qint64>(ul_taken);
    return ul_taken;
}

ssize_t writeFile(int si_file, const char* pc_data, size_t ul_size, off_t offset)
{
    const bool b_sequential = offset < 0;
    if (!isWatched())
        return b_sequential ? REAL(write)(si_file, pc_data, ul_size)
                            : REAL(pwrite)(si_file, pc_data, ul_size, offset);
    const Inside inside;
    const QByteArray path = pathOfDescriptor(si_file);
    if (fails("write", path))
        return -1;
    const size_t ul_taken = roomFor(path, ul_size);
    if (ul_taken == 0 && ul_size > 0) {
        errno = ENOSPC;
        return -1;
    }
    const off_t at = b_sequential ? lseek(si_file, 0, SEEK_CUR) : offset;
    const ssize_t si_written = b_sequential ? REAL(write)(si_file, pc_data, ul_taken)
                                            : REAL(pwrite)(si_file, pc_data, ul_taken, offset);
    if (si_written >= 0 && isRecorded(path)) {
        add(SystemCall::WRITE, numberOf(si_file), QByteArray(), QByteArray(), at,
            QByteArray(pc_data, static_cast<int>(si_written)));
        addText("write " + QByteArray::number(static_cast<qint64>(si_written)));
    }
    return si_written;
}

int truncateFile(int (*function)(int, off_t), int si_file, off_t size)
{
    const int si_result = function(si_file, size);
    if (!isWatched())
        return si_result;
    const Inside inside;
    if (isRecorded(pathOfDescriptor(si_file))) {
        add(SystemCall::TRUNCATE, numberOf(si_file), QByteArray(), QByteArray(), size);
        addText("truncate");
    }
    return si_result;
}

int syncFile(int (*function)(int), const char* pc_name, int si_file)
{
    if (!isWatched())
        return function(si_file);
    const Inside inside;
    const QByteArray path = pathOfDescriptor(si_file);
    struct stat status;
    const bool b_directory = fstat(si_file, &status) == 0 && S_ISDIR(status.st_mode);
    if (fails(b_directory ? "fsync directory" : "fsync", path))
        return -1;
    const int si_result = function(si_file);
    if (si_result == 0 && isRecorded(path)) {
        addText(pc_name + QByteArray(b_directory ? " directory" : ""));
        if (b_directory)
            add(SystemCall::SYNC_DIRECTORY, -1, relative(path + '/'));
        else
            add(SystemCall::SYNC, numberOf(si_file));
    }
    return si_result;
}

int renameFile(int si_from, const char* pc_from, int si_to, const char* pc_to, unsigned int ul_flags)
{
    const auto rename = [=] {
        return ul_flags != 0 ? REAL(renameat2)(si_from, pc_from, si_to, pc_to, ul_flags)
                             : REAL(renameat)(si_from, pc_from, si_to, pc_to);
    };
    if (!isWatched())
        return rename();
    const Inside inside;
    const QByteArray from = absolute(si_from, pc_from);
    const QByteArray to = absolute(si_to, pc_to);
    if (fails("rename", to))
        return -1;
    struct stat status;
    const bool b_there = lstat(from.constData(), &status) == 0;
    const int si_result = rename();
    if (si_result == 0 && b_there && isRecorded(to)) {
        add(SystemCall::RENAME, numberOf(status, false), relative(from), relative(to));
        addText("rename " + relative(from) + ' ' + relative(to));
    }
    return si_result;
}

int unlinkFile(int si_directory, const char* pc_path, int si_flags)
{
    if (!isWatched())
        return REAL(unlinkat)(si_directory, pc_path, si_flags);
    const Inside inside;
    const QByteArray path = absolute(si_directory, pc_path);
    const int si_result = REAL(unlinkat)(si_directory, pc_path, si_flags);
    if (si_result == 0 && isRecorded(path)) {
        add(SystemCall::UNLINK, -1, relative(path));
        addText("unlink " + relative(path));
    }
    return si_result;
}

int linkFile(int si_from, const char* pc_from, int si_to, const char* pc_to, int si_flags)
{
    const int si_result = REAL(linkat)(si_from, pc_from, si_to, pc_to, si_flags);
    if (!isWatched())
        return si_result;
    const Inside inside;
    const QByteArray to = absolute(si_to, pc_to);
    struct stat status;
    if (si_result == 0 && isRecorded(to) && stat(to.constData(), &status) == 0) {
        add(SystemCall::LINK, numberOf(status, false), relative(to));
        addText("link " + relative(to));
    }
    return si_result;
}

/// After a call that changed something beside what a file holds.
void changed(const char* pc_name, const QByteArray& path)
{
    struct stat status;
    if (!isRecorded(path) || stat(path.constData(), &status) != 0)
        return;
    add(SystemCall::CHANGE, numberOf(status, false), relative(path));
    addText(pc_name + QByteArray(" ") + relative(path));
}

} // namespace

// --- What stands in for the C library's --------------------------------------------------------------------

#define MODE_OF(flags)                                                                                       \
    mode_t mode = 0;                                                                                         \
    if ((flags) & (O_CREAT | O_TMPFILE)) {                                                                   \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        mode = va_arg(arguments, mode_t);                                                                    \
        va_end(arguments);                                                                                   \
    }

extern "C" {

int open(const char* pc_path, int si_flags, ...)
{
    MODE_OF(si_flags)
    return openFile(REAL(openat), AT_FDCWD, pc_path, si_flags, mode);
}

int open64(const char* pc_path, int si_flags, ...)
{
    MODE_OF(si_flags)
    return openFile(REAL(openat64), AT_FDCWD, pc_path, si_flags, mode);
}

int openat(int si_directory, const char* pc_path, int si_flags, ...)
{
    MODE_OF(si_flags)
    return openFile(REAL(openat), si_directory, pc_path, si_flags, mode);
}

int openat64(int si_directory, const char* pc_path, int si_flags, ...)
{
    MODE_OF(si_flags)
    return openFile(REAL(openat64), si_directory, pc_path, si_flags, mode);
}

int creat(const char* pc_path, mode_t mode)
{
    return open(pc_path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}

int creat64(const char* pc_path, mode_t mode)
{
    return open64(pc_path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}

ssize_t write(int si_file, const void* pc_data, size_t ul_size)
{
    return writeFile(si_file, static_cast<const char*>(pc_data), ul_size, -1);
}

ssize_t pwrite(int si_file, const void* pc_data, size_t ul_size, off_t offset)
{
    return writeFile(si_file, static_cast<const char*>(pc_data), ul_size, offset);
}

ssize_t pwrite64(int si_file, const void* pc_data, size_t ul_size, off64_t offset)
{
    return writeFile(si_file, static_cast<const char*>(pc_data), ul_size, offset);
}

ssize_t writev(int si_file, const struct iovec* pc_parts, int si_count)
{
    ssize_t si_sum = 0;
    for (int i = 0; i < si_count; ++i) {
        const ssize_t si_written =
            writeFile(si_file, static_cast<const char*>(pc_parts[i].iov_base), pc_parts[i].iov_len, -1);
        if (si_written < 0)
            return si_sum > 0 ? si_sum : -1;
        si_sum += si_written;
        if (static_cast<size_t>(si_written) < pc_parts[i].iov_len)
            break;
    }
    return si_sum;
}

int ftruncate(int si_file, off_t size) noexcept
{
    return truncateFile(REAL(ftruncate), si_file, size);
}

int ftruncate64(int si_file, off64_t size) noexcept
{
    return truncateFile(REAL(ftruncate), si_file, size);
}

int fsync(int si_file)
{
    return syncFile(REAL(fsync), "fsync", si_file);
}

int fdatasync(int si_file)
{
    return syncFile(REAL(fdatasync), "fdatasync", si_file);
}

int rename(const char* pc_from, const char* pc_to) noexcept
{
    return renameFile(AT_FDCWD, pc_from, AT_FDCWD, pc_to, 0);
}

int renameat(int si_from, const char* pc_from, int si_to, const char* pc_to) noexcept
{
    return renameFile(si_from, pc_from, si_to, pc_to, 0);
}

int renameat2(int si_from, const char* pc_from, int si_to, const char* pc_to, unsigned int ul_flags) noexcept
{
    return renameFile(si_from, pc_from, si_to, pc_to, ul_flags);
}

int unlink(const char* pc_path) noexcept
{
    return unlinkFile(AT_FDCWD, pc_path, 0);
}

int unlinkat(int si_directory, const char* pc_path, int si_flags) noexcept
{
    return unlinkFile(si_directory, pc_path, si_flags);
}

int link(const char* pc_from, const char* pc_to) noexcept
{
    return linkFile(AT_FDCWD, pc_from, AT_FDCWD, pc_to, 0);
}

int linkat(int si_from, const char* pc_from, int si_to, const char* pc_to, int si_flags) noexcept
{
    return linkFile(si_from, pc_from, si_to, pc_to, si_flags);
}

int chmod(const char* pc_path, mode_t mode) noexcept
{
    const int si_result = REAL(chmod)(pc_path, mode);
    if (isWatched()) {
        const Inside inside;
        changed("chmod", absolute(AT_FDCWD, pc_path));
    }
    return si_result;
}

int fchmod(int si_file, mode_t mode) noexcept
{
    if (!isWatched())
        return REAL(fchmod)(si_file, mode);
    const Inside inside;
    const QByteArray path = pathOfDescriptor(si_file);
    if (fails("chmod", path))
        return -1;
    const int si_result = REAL(fchmod)(si_file, mode);
    changed("fchmod", path);
    return si_result;
}

int flock(int si_file, int si_operation) noexcept
{
    if (!isWatched())
        return REAL(flock)(si_file, si_operation);
    const Inside inside;
    return fails("flock", pathOfDescriptor(si_file)) ? -1 : REAL(flock)(si_file, si_operation);
}

int fchown(int si_file, uid_t owner, gid_t group) noexcept
{
    if (!isWatched())
        return REAL(fchown)(si_file, owner, group);
    const Inside inside;
    const QByteArray path = pathOfDescriptor(si_file);
    if (fails("chown", path))
        return -1;
    const int si_result = REAL(fchown)(si_file, owner, group);
    changed("fchown", path);
    return si_result;
}

int utimes(const char* pc_path, const struct timeval times[2]) noexcept
{
    const int si_result = REAL(utimes)(pc_path, times);
    if (isWatched()) {
        const Inside inside;
        changed("utimes", absolute(AT_FDCWD, pc_path));
    }
    return si_result;
}

int close(int si_file)
{
    if (!isWatched())
        return REAL(close)(si_file);
    const Inside inside;
    const QByteArray path = pathOfDescriptor(si_file);
    struct stat status;
    const bool b_writes = fstat(si_file, &status) == 0 && S_ISREG(status.st_mode) &&
                          (fcntl(si_file, F_GETFL) & O_ACCMODE) != O_RDONLY;
    if (b_writes && isRecorded(path)) {
        add(SystemCall::CLOSE, numberOf(si_file));
        addText("close");
    }
    const bool b_fails = b_writes && fails("close", path);
    const int si_result = REAL(close)(si_file);
    if (b_fails)
        errno = state().si_error;
    return b_fails ? -1 : si_result;
}

} // extern "C"

// --- The interface for tests -------------------------------------------------------------------------------

void SystemCalls::record(const QByteArray& directory)
{
    state().directory = directory;
    state().calls.clear();
    state().texts.clear();
    state().b_recording = true;
    b_active = true;
}

QList<SystemCall> SystemCalls::take()
{
    b_active = false;
    state().b_recording = false;
    return state().calls;
}

QStringList SystemCalls::texts()
{
    take();
    return state().texts;
}

void SystemCalls::fail(const QByteArray& directory, const QByteArray& name, int si_error, int si_after,
                       bool b_once)
{
    state().failing = directory;
    state().name = name;
    state().si_error = si_error;
    state().si_after = si_after;
    state().b_once = b_once;
    b_active = true;
}

void SystemCalls::fill(const QByteArray& directory, qint64 room)
{
    state().failing = directory;
    state().room = room;
    b_active = true;
}

void SystemCalls::mend()
{
    state().si_error = 0;
    state().room = -1;
    b_active = state().b_recording;
}
