#ifndef TLVLIB_FILES_TVNG_SAFESAVE_H
#define TLVLIB_FILES_TVNG_SAFESAVE_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QString>

/**
 * @file
 * Saves that neither a power cut nor a full disk can tear. The library saves in place until an application
 * switches them on, once, at its start:
 *
 * @code
 * TVNG_SetSafeSave(1);
 * ...
 * store->saveBookmark(&directory, 100);
 * if (!TVNG_GetSaveError().isEmpty())
 *     tellTheUser(TVNG_GetSaveError());
 * @endcode
 *
 * While the mode is on, every file that the library writes (documents, "cookie.ini", packs, pictures) is
 * replaced whole or not at all. It is written once, under the name of the file with ".tlvsave" behind it,
 * synced to the disk, renamed over the file, and the directory is synced. When the save returns without an
 * error the new file is on the disk; until then the old one is. A cut leaves the file with the other name
 * behind at most, which nothing reads and the next save of that file removes.
 *
 * What a file holds and which log lines a save writes stay as they are. So do a file's mode, owner and group
 * and a symbolic link, whose target is replaced; other hard links to the file keep what it held. A file that
 * did not exist is made as ever, but for its owner alone (mode 0600) when it holds credentials or cookies. A
 * file that may not be written is refused as ever. These are written in place, as ever, but with their errors
 * told: what is no regular file, what lies in a directory that takes no new file or cannot be read, and what
 * belongs to others to whom this process cannot give a file.
 *
 * Of two processes that save the same file at the same time the later one waits for the earlier one.
 */

/// Every save is safe from now on; 0, the initial state, has them in place again. For the one thread that
/// saves.
TLVLIB_EXPORT void TVNG_SetSafeSave(char c_on);

/**
 * What the most recent save in this mode could not do, and why, in words for a person; empty when it
 * succeeded, and before the first one. It names the file with its path, unless memory ran out, and so is
 * nothing for a log.
 *
 * The file then holds what it held before, and memory keeps the change: the save may be tried again. Where
 * nothing failed but the sync of the directory, the file holds the new state, which a power cut may still
 * undo as a whole.
 */
TLVLIB_EXPORT QString TVNG_GetSaveError();

#endif
