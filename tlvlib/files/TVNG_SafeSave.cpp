#include "tlvlib/files/TVNG_SafeSave.h"

#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/util/TVNG_immortal.h"

namespace {

bool b_safeSave = false;
bool b_secretSave = false;

/// What TVNG_GetSaveError() answers.
struct SaveError
{
    QString text;
};

} // namespace

void TVNG_SetSafeSave(char c_on)
{
    b_safeSave = c_on != 0;
}

QString TVNG_GetSaveError()
{
    return TVNG_immortal<SaveError>().text;
}

bool TVNG_isSafeSave()
{
    return b_safeSave;
}

void TVNG_setSaveError(const QString& error)
{
    TVNG_immortal<SaveError>().text = error;
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
