#ifndef TOOLS_TLVCTL_RECORDS_DIRECTORYLOCK_H
#define TOOLS_TLVCTL_RECORDS_DIRECTORYLOCK_H

#include <QtCore/QLockFile>
#include <QtCore/QString>

#include <memory>

/// The name of the lock file in a settings directory. Browsers hold it as long as they run.
const char LOCK_NAME[] = "tlvlib.lock";

/**
 * Holds a settings directory while the tool changes it, so that neither a browser nor another run of the tool
 * does. A lock that a program left behind when it died stops nobody.
 */
class DirectoryLock
{
public:
    /**
     * Waits for other runs of the tool, and complains and returns false when any other program holds the
     * directory. One that takes no file cannot be held by anybody, and counts as taken.
     *
     * @param dir with a "/" at its end
     */
    bool take(const QString& dir);

private:
    std::unique_ptr<QLockFile> lock_;
};

#endif
