#include "tlvlib/files/TVNG_SafeSave.h"

#include "tlvlib/files/TVNG_saveMode.h"

namespace {

bool b_safeSave = false;
bool b_secretSave = false;

/// Never destroyed: a store may be saved while the process ends.
QString& saveError()
{
    static QString* const pc_error = new QString;
    return *pc_error;
}

} // namespace

void TVNG_SetSafeSave(char c_on)
{
    b_safeSave = c_on != 0;
}

QString TVNG_GetSaveError()
{
    return saveError();
}

bool TVNG_isSafeSave()
{
    return b_safeSave;
}

void TVNG_setSaveError(const QString& error)
{
    saveError() = error;
}

TVNC_SecretSave::TVNC_SecretSave(bool b_secret) : b_before_(b_secretSave)
{
    b_secretSave = b_secret;
}

TVNC_SecretSave::~TVNC_SecretSave()
{
    b_secretSave = b_before_;
}

bool TVNC_SecretSave::isActive()
{
    return b_secretSave;
}
