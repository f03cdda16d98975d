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

/**
 * Tells whether what is saved while it lives holds credentials or cookies: a safe save then makes a file that
 * did not exist for its owner alone.
 */
class TVNC_SecretSave
{
public:
    explicit TVNC_SecretSave(bool b_secret);
    ~TVNC_SecretSave();

    static bool isActive();

private:
    Q_DISABLE_COPY(TVNC_SecretSave)

    const bool b_before_;
};

#endif
