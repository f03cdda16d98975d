/*
 * A liblog for desks: messages go to syslog(3) under the identity "tlvlib". What the three start-up calls do
 * on the device (signal handlers, shared memory) has no counterpart here; that they were called is noted.
 */

#include "platform/liblog.h"

#include <pthread.h>
#include <syslog.h>

static pthread_once_t opened = PTHREAD_ONCE_INIT;

static void open_log(void)
{
    openlog("tlvlib", LOG_PID, LOG_USER);
}

static void note(int priority, const char* text)
{
    pthread_once(&opened, open_log);
    syslog(priority, "%s", text);
}

int LIBF_WriteSystemLog(int kind, int level, int code, const char* text, unsigned short* id)
{
    (void)kind;
    (void)level;
    (void)code;
    (void)id;
    note(LOG_INFO, text);
    return 0;
}

int LIBF_SetSignalHandler01(int mask)
{
    (void)mask;
    note(LOG_DEBUG, "LIBF_SetSignalHandler01 called: no signal handlers on this platform");
    return 0;
}

int LIBF_SetApiSignalInfoNonSave(int enable)
{
    (void)enable;
    note(LOG_DEBUG, "LIBF_SetApiSignalInfoNonSave called: nothing to set on this platform");
    return 0;
}

int LIBF_AttachMemory(void)
{
    note(LOG_DEBUG, "LIBF_AttachMemory called: no log memory on this platform");
    return 0;
}
