#ifndef TESTS_SUPPORT_SYSTEMCALLS_H
#define TESTS_SUPPORT_SYSTEMCALLS_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

/**
 * One call with which the process changed files below the watched directory. Paths are relative to it. A file
 * is a number that it keeps under every name, and that no other file gets.
 */
struct SystemCall
{
    enum Kind {
        CREATE,         ///< file under path
        OPEN,           ///< file under path, which was there
        TRUNCATE,       ///< file to a size of offset
        WRITE,          ///< data into file at offset
        RENAME,         ///< file from path to other
        LINK,           ///< file gets the further name path
        UNLINK,         ///< path
        SYNC,           ///< file
        SYNC_DIRECTORY, ///< path
        CHANGE,         ///< owner, mode or times of file
        CLOSE           ///< file
    };

    Kind kind;
    int si_file;
    QByteArray path;
    QByteArray other;
    qint64 offset;
    QByteArray data;
};

/**
 * Sees what the process asks of the kernel, and lets it fail. A program that links this defines open(),
 * write() and so on itself; the library and Qt find these before the C library's.
 */
class SystemCalls
{
public:
    /// Records from now on what changes files below a directory, whose path ends in "/".
    static void record(const QByteArray& directory);

    /// Ends recording. The calls so far, in their order.
    static QList<SystemCall> take();

    /// The same calls as text, with their flags and modes, such as "open a.xml 0x80241 666" and "write 12".
    static QStringList texts();

    /**
     * Below the directory, or another one: the calls of this name fail with an error, after so many of them
     * succeeded; or only the next one then. The name is one of "open", "write", "fsync", "fsync directory",
     * "rename", "chmod", "chown", "flock" and "close", which fails after it has closed.
     */
    static void fail(const QByteArray& directory, const QByteArray& name, int si_error, int si_after = 0,
                     bool b_once = false);

    /// Below the directory no more than so many bytes can be written, as on a disk that is full then.
    static void fill(const QByteArray& directory, qint64 room);

    /// Nothing fails any more.
    static void mend();
};

#endif
