#include "ProfileLock.h"

namespace {

const char LOCK_NAME[] = "tlvlib.lock";

/**
 * Qt takes a lock of this age away only when the kernel knows of nobody who holds the file, so that a living
 * program keeps it. With 0 a lock file that a power cut has left empty would never be taken away.
 */
const int STALE_MS = 1;

QString holderOf(const QLockFile& lock)
{
    qint64 process = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&process, &host, &application))
        return "another program";
    return QString("%1 (process %2 on %3)").arg(application).arg(process).arg(host);
}

} // namespace

QString ProfileLock::take(const Profile& profile)
{
    for (const QString& dir : {profile.common, profile.user}) {
        auto lock = std::make_unique<QLockFile>(dir + LOCK_NAME);
        lock->setStaleLockTime(STALE_MS);
        if (!lock->tryLock(0))
            return QString("%1 is in use by %2; end it first, or name another directory with --profile")
                .arg(dir, holderOf(*lock));
        locks_.push_back(std::move(lock));
    }
    return QString();
}
