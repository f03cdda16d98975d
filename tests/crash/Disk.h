#ifndef TESTS_CRASH_DISK_H
#define TESTS_CRASH_DISK_H

#include "tests/support/Random.h"
#include "tests/support/SystemCalls.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QVector>

/// The files of a directory and of those below it, by their paths.
typedef QMap<QByteArray, QByteArray> Files;

/**
 * What a disk may hold when its power is cut, as far as POSIX promises anything: a call changes the disk for
 * certain only once the file, or for a name the directory, is synced. Until then a write may have reached the
 * disk or not, each block of 512 bytes of it by itself, in any order; so may a file's new size and each name.
 * A rename happens as a whole.
 */
class Disk
{
public:
    /// A disk that holds these files for certain.
    explicit Disk(const Files& files);

    /// What a call does, which is not certain yet or makes earlier ones certain.
    void apply(const SystemCall& call);

    /// The files as programs see them.
    Files seen() const;

    /// How many changes are not certain.
    int pending() const { return static_cast<int>(pending_.size()); }

    /// Whether one of them is some data, rather than a size or a name without which none is seen.
    bool isData(int si_pending) const { return pending_.at(si_pending).kind == Change::DATA; }

    /**
     * The files after a cut when only these of the pending changes, by their numbers from 0 on, reached the
     * disk, in this order.
     */
    Files after(const QVector<int>& reached) const;

private:
    /// A change that reaches the disk as a whole or not at all.
    struct Change
    {
        enum Kind { DATA, GROWTH, SIZE, NAME, NO_NAME, RENAME };
        Kind kind;
        int si_file;
        int si_offset;    ///< of the data; the size
        QByteArray bytes; ///< the data; the name
        QByteArray other; ///< the new name
    };

    struct Content
    {
        Content() : si_size(0) {}
        QByteArray bytes;
        int si_size;
    };

    struct State
    {
        QMap<QByteArray, int> names;
        QHash<int, Content> contents;
        void make(const Change& change);
        Files files() const;
    };

    void add(Change::Kind kind, int si_file, int si_offset, const QByteArray& bytes,
             const QByteArray& other = QByteArray());
    void addBlocks(int si_file, int si_offset, const QByteArray& data);
    void sync(bool b_names, int si_file, const QByteArray& directory);

    State certain_;
    State seen_;
    QVector<Change> pending_;
};

#endif
