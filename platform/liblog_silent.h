#ifndef PLATFORM_LIBLOG_SILENT_H
#define PLATFORM_LIBLOG_SILENT_H

/**
 * @file
 * A liblog inside a program, which does nothing and takes no time: for measurements and for programs that
 * would fill the system log. Holds definitions: for one source of a program.
 */

#include "platform/liblog.h"

int LIBF_WriteSystemLog(int, int, int, const char*, unsigned short*)
{
    return 0;
}

int LIBF_SetSignalHandler01(int)
{
    return 0;
}

int LIBF_SetApiSignalInfoNonSave(int)
{
    return 0;
}

int LIBF_AttachMemory()
{
    return 0;
}

#endif
