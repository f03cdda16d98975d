#ifndef EXAMPLES_KIOSK_PROFILELOCK_H
#define EXAMPLES_KIOSK_PROFILELOCK_H

#include "Profile.h"

#include <QtCore/QLockFile>

#include <memory>
#include <vector>

/**
 * Keeps other programs from changing the profile while this one has it in memory. Each directory is held by
 * a lock file of its own, where tlvctl looks for it, too.
 */
class ProfileLock
{
public:
    /// @return by whom the profile is held, and what to do; empty when it is held by this lock from now on
    QString take(const Profile& profile);

private:
    std::vector<std::unique_ptr<QLockFile>> locks_;
};

#endif
