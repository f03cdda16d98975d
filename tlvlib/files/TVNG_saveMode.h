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

/// Has TVNG_GetSaveError() tell that memory did not suffice for a save. It takes no memory, and does nothing
/// while saves are in place.
void TVNG_setNoMemoryToSave();

/// What TVNG_GetSaveError() answers from now on; empty after a save that succeeded.
void TVNG_setSaveError(const QString& error);

/// Saves something. It does what TVNG_hasMemoryFor() does, and TVNG_GetSaveError() tells of a failure.
template <typename Work>
bool TVNG_hasMemoryToSave(Work work)
{
    const bool b_complete = TVNG_hasMemoryFor(work);
    if (!b_complete)
        TVNG_setNoMemoryToSave();
    return b_complete;
}

/// Does the same for an operation of the interface, and logs a failure as TVNG_ifMemory() does.
template <typename Work>
void TVNG_saveIfMemory(Work work)
{
    TVNG_ifMemory([&] {
        if (!TVNG_hasMemoryToSave(work))
            qBadAlloc(); // for TVNG_ifMemory()
    });
}

#endif
