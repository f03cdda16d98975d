#ifndef TLVLIB_FILES_TVNC_SECRETSAVE_H
#define TLVLIB_FILES_TVNC_SECRETSAVE_H

#include <QtCore/QtGlobal>

/**
 * Tells whether what is saved while it lives holds credentials or cookies: a safe save then makes a file that
 * did not exist for its owner alone. Internal to the library; not installed.
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
