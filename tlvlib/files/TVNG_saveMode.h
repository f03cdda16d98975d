#ifndef TLVLIB_FILES_TVNG_SAVEMODE_H
#define TLVLIB_FILES_TVNG_SAVEMODE_H

#include "tlvlib/diag/TVNG_ifMemory.h"

#include <QtCore/QString>

/**
 * @file
 * What the saves know of the mode that TVNG_SetSafeSave() sets, and what they tell. Internal to the library;
 * not installed.
 */

bool TVNG_isSafeSave();

/// What TVNG_GetSaveError() answers after a save for which memory did not suffice. It takes none itself.
/// While saves are in place it does nothing, since that tells of safe ones.
void TVNG_setNoMemoryToSave();

/// What TVNG_GetSaveError() answers from now on; empty after a save that succeeded.
void TVNG_setSaveError(const QString& error);

/// Does what may run out of memory and saves: as TVNG_hasMemoryFor(), but TVNG_GetSaveError() tells of it,
/// too.
template <typename Work>
bool TVNG_hasMemoryToSave(Work work)
{
    const bool b_complete = TVNG_hasMemoryFor(work);
    if (!b_complete)
        TVNG_setNoMemoryToSave();
    return b_complete;
}

/// The same for an operation of the interface, as TVNG_ifMemory() is for others.
template <typename Work>
void TVNG_saveIfMemory(Work work)
{
    TVNG_ifMemory([&] {
        if (!TVNG_hasMemoryToSave(work))
            qBadAlloc(); // once more
    });
}

#endif
