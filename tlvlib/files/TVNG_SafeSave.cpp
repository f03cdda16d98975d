#include "tlvlib/files/TVNG_SafeSave.h"

#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_memory.h"

namespace {

bool b_safeSave = false;

/// What TVNG_GetSaveError() answers.
struct SaveError
{
    QString text;
    const QString noMemory = QLatin1String("It could not be saved: memory ran out");
};

} // namespace

void TVNG_SetSafeSave(char c_on)
{
    b_safeSave = c_on != 0;
    TVNG_hasMemoryFor([] { TVNG_immortal<SaveError>(); }); // while there is memory for it
}

QString TVNG_GetSaveError()
{
    QString error;
    TVNG_hasMemoryFor([&] { error = TVNG_immortal<SaveError>().text; });
    return error;
}

bool TVNG_isSafeSave()
{
    return b_safeSave;
}

void TVNG_setSaveError(const QString& error)
{
    TVNG_immortal<SaveError>().text = error;
}

void TVNG_setNoMemoryToSave()
{
    if (!b_safeSave)
        return;
    TVNG_hasMemoryFor([] {
        SaveError& error = TVNG_immortal<SaveError>();
        error.text = error.noMemory;
    });
}
