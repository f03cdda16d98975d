#ifndef EXAMPLES_PROFILE_UPKEEP_H
#define EXAMPLES_PROFILE_UPKEEP_H

#include "Profile.h"

/// Changes a filled profile with the operations that filling does not need: edits, deletions, switches.
void changeProfile(Profile& profile);

/// Deletes all that one user has collected, as at the end of a use, and leaves the preferences.
void forgetUser(Profile& profile);

/// Packs the pictures of the bookmarks into one file.
void packPictures(const Profile& profile, const QString& pack);

/**
 * Unpacks a pack of doubtful origin into a directory, which is made for it.
 *
 * @return what is wrong; empty when all is well
 */
QString unpackPictures(const QString& pack, const QString& dir);

/// Empties the disk cache of the device.
QString clearCache();

#endif
