#ifndef PLATFORM_LIBLOG_H
#define PLATFORM_LIBLOG_H

/**
 * @file
 * The calls of the device's logging library "liblog.so" that tlvlib makes.
 *
 * On the device the platform brings that library. A desk lacks it, and the build then makes one that hands
 * the messages to syslog(3). The calls go through the dynamic linker, so a program that defines these
 * functions itself sees every one of them. Such a program includes this header, as
 * <tlvlib/platform/liblog.h>: its functions are then visible to the library, also where the program is
 * compiled with -fvisibility=hidden. Hidden ones would link and never be called.
 *
 * Only the argument values are settled; tlvlib ignores every result.
 */

#pragma GCC visibility push(default)

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Records a message in the system log. tlvlib passes 1, 1, 255, a zero-terminated text of at most 127 bytes,
 * and the address of a 16-bit id that holds 0xFFFF.
 */
int LIBF_WriteSystemLog(int kind, int level, int code, const char* text, unsigned short* id);

/// Installs signal handlers; tlvlib passes 65535.
int LIBF_SetSignalHandler01(int mask);

/// tlvlib passes 1, after LIBF_SetSignalHandler01().
int LIBF_SetApiSignalInfoNonSave(int enable);

/// Attaches the log's shared memory.
int LIBF_AttachMemory(void);

#ifdef __cplusplus
}
#endif

#pragma GCC visibility pop

#endif
