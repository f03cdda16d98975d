#ifndef TLVLIB_FILES_TVNG_SAVEMODE_H
#define TLVLIB_FILES_TVNG_SAVEMODE_H

#include <QtCore/QString>

/**
 * @file
 * What the saves know of the mode that TVNG_SetSafeSave() sets, and what they tell. Internal to the library;
 * not installed.
 */

bool TVNG_isSafeSave();

/// What TVNG_GetSaveError() answers from now on; empty after a save that succeeded.
void TVNG_setSaveError(const QString& error);

#endif
