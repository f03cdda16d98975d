#include "tests/crash/Disk.h"

namespace {

const int BLOCK_SIZE = 512;

QByteArray directoryOf(const QByteArray& path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

} // namespace

Disk::Disk(const Files& files)
{
    int si_file = -1; // the recorder's numbers begin with 0
    for (Files::const_iterator it = files.begin(); it != files.end(); ++it, --si_file) {
        certain_.names[it.key()] = si_file;
        certain_.contents[si_file].bytes = it.value();
        certain_.contents[si_file].si_size = static_cast<int>(it.value().size());
    }
    seen_ = certain_;
}

void Disk::State::make(const Change& change)
{
    Content& content = contents[change.si_file];
    const int si_end = change.si_offset + static_cast<int>(change.bytes.size());
    switch (change.kind) {
    case Change::DATA:
        if (content.bytes.size() < si_end)
            content.bytes.append(QByteArray(si_end - static_cast<int>(content.bytes.size()), '\0'));
        content.bytes.replace(change.si_offset, static_cast<int>(change.bytes.size()), change.bytes);
        break;
    case Change::GROWTH:
        content.si_size = qMax(content.si_size, change.si_offset);
        break;
    case Change::SIZE:
        content.bytes.truncate(change.si_offset);
        content.si_size = change.si_offset;
        break;
    case Change::NAME:
        names[change.bytes] = change.si_file;
        break;
    case Change::NO_NAME:
        names.remove(change.bytes);
        break;
    case Change::RENAME:
        names.remove(change.bytes);
        names[change.other] = change.si_file;
        break;
    }
}

Files Disk::State::files() const
{
    Files files;
    for (QMap<QByteArray, int>::const_iterator it = names.begin(); it != names.end(); ++it) {
        const Content content = contents.value(it.value());
        const int si_missing = content.si_size - static_cast<int>(content.bytes.size());
        files[it.key()] = si_missing > 0 ? content.bytes + QByteArray(si_missing, '\0')
                                         : content.bytes.left(content.si_size);
    }
    return files;
}

void Disk::add(Change::Kind kind, int si_file, int si_offset, const QByteArray& bytes,
               const QByteArray& other)
{
    const Change change = {kind, si_file, si_offset, bytes, other};
    seen_.make(change);
    pending_.append(change);
}

void Disk::addBlocks(int si_file, int si_offset, const QByteArray& data)
{
    add(Change::GROWTH, si_file, si_offset + static_cast<int>(data.size()), QByteArray());
    for (int i = 0; i < data.size();) {
        const int si_block = BLOCK_SIZE - (si_offset + i) % BLOCK_SIZE;
        add(Change::DATA, si_file, si_offset + i, data.mid(i, si_block));
        i += si_block;
    }
}

/// Makes the pending changes certain of a directory's names, or of a file's data.
void Disk::sync(bool b_names, int si_file, const QByteArray& directory)
{
    QVector<Change> left;
    for (int i = 0; i < pending_.size(); ++i) {
        const Change& change = pending_.at(i);
        const bool b_name = change.kind >= Change::NAME;
        const bool b_synced = b_name == b_names &&
                              (b_name ? directoryOf(change.bytes) == directory : change.si_file == si_file);
        if (b_synced)
            certain_.make(change);
        else
            left.append(change);
    }
    pending_ = left;
}

void Disk::apply(const SystemCall& call)
{
    switch (call.kind) {
    case SystemCall::CREATE:
        add(Change::NAME, call.si_file, 0, call.path);
        break;
    case SystemCall::OPEN: {
        // A file of the beginning gets the number that the recorder gave it.
        const int si_known = seen_.names.value(call.path);
        if (si_known < 0) {
            seen_.names[call.path] = certain_.names[call.path] = call.si_file;
            seen_.contents[call.si_file] = seen_.contents.take(si_known);
            certain_.contents[call.si_file] = certain_.contents.take(si_known);
        }
        break;
    }
    case SystemCall::TRUNCATE:
        add(Change::SIZE, call.si_file, static_cast<int>(call.offset), QByteArray());
        break;
    case SystemCall::WRITE:
        addBlocks(call.si_file, static_cast<int>(call.offset), call.data);
        break;
    case SystemCall::RENAME:
        add(Change::RENAME, call.si_file, 0, call.path, call.other);
        break;
    case SystemCall::LINK:
        add(Change::NAME, call.si_file, 0, call.path);
        break;
    case SystemCall::UNLINK:
        add(Change::NO_NAME, call.si_file, 0, call.path);
        break;
    case SystemCall::SYNC:
        sync(false, call.si_file, QByteArray());
        break;
    case SystemCall::SYNC_DIRECTORY:
        sync(true, -1, call.path);
        break;
    case SystemCall::CHANGE:
    case SystemCall::CLOSE:
        break;
    }
}

Files Disk::seen() const
{
    return seen_.files();
}

Files Disk::after(const QVector<int>& reached) const
{
    State state = certain_;
    for (int i = 0; i < reached.size(); ++i)
        state.make(pending_.at(reached.at(i)));
    return state.files();
}
