#ifndef TLVLIB_BROWSER_SAVEERROR_H
#define TLVLIB_BROWSER_SAVEERROR_H

#include <QtCore/QString>

#if __has_include(<tlvlib/files/TVNG_SafeSave.h>)
#    include <tlvlib/files/TVNG_SafeSave.h>
#else
inline void TVNG_SetSafeSave(char) {}
inline QString TVNG_GetSaveError()
{
    return QString();
}
#endif

#endif
