#include "tools/tlvctl/records/DirectoryLock.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QElapsedTimer>

namespace {

/// Qt takes a lock of this age away, but only when the kernel knows of nobody who holds its file.
const int STALE_MS = 1;

/// How long another run of the tool is waited for, and how long at a time.
const int PATIENCE_MS = 60000;
const int STEP_MS = 50;

} // namespace

bool DirectoryLock::take(const QString& dir)
{
    lock_ = std::make_unique<QLockFile>(dir + LOCK_NAME);
    lock_->setStaleLockTime(STALE_MS);
    qint64 process = 0;
    QString host;
    QString application;
    QElapsedTimer waited;
    waited.start();
    do {
        if (lock_->tryLock(STEP_MS) || lock_->error() == QLockFile::PermissionError)
            return true;
        // A holder that goes just now tells nothing any more.
        const bool isTold = lock_->getLockInfo(&process, &host, &application);
        if (isTold && !application.startsWith("tlvctl"))
            break;
    } while (waited.elapsed() < PATIENCE_MS);
    complain(dir, QString("nothing was changed: the directory is in use by %1 (process %2 on %3); end that "
                          "program first")
                      .arg(printable(application), QString::number(process), printable(host)));
    return false;
}
