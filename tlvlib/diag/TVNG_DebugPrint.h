#ifndef TLVLIB_DIAG_TVNG_DEBUGPRINT_H
#define TLVLIB_DIAG_TVNG_DEBUGPRINT_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QtGlobal>

/**
 * @file
 * The diagnostic log. Every class of the library reports through TVNG_DebugPrint(), and an application may do
 * the same. A message can go to two sinks:
 *
 *  - the log file "/ata07/Talvenor/tmp/tlvlog.log", to which lines are appended, filtered by level;
 *  - the system log, which gets every message, whatever its level, while it is switched on.
 *
 * Levels: 1 failure, 2 rejected input or file problem, 3 trace (start and end of every load and save). The
 * logger itself knows only numbers. A line of the file reads
 * @code
 * [Talvenor][TVNC_XMLSetting::save] start
 * @endcode
 * without time, level or thread. The file only grows; nothing in the library truncates or rotates it.
 *
 * The system log is on from the start and has no threshold: it gets the traces of level 3, too, thousands of
 * lines for the load of a long history. docs/log.md tells what a product does about it.
 *
 * Failures are never reported to the caller. When the log file cannot be opened (its directory is missing,
 * say), the message is lost in both sinks.
 */

// printf-style checks by the compiler, for the library's own build alone: programs call TVNG_DebugPrint(2,
// text), which many compilers are set to refuse when they check.
/// @cond
#if defined(TLVLIB_CHECK_FORMATS)
#define TLVLIB_PRINTF_FORMAT(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define TLVLIB_PRINTF_FORMAT(fmt, first)
#endif
/// @endcond

/// Threshold of the log file: messages of this level and below are written. 0, the initial value, is off.
TLVLIB_EXPORT extern quint32 ul_outputLevel;

/**
 * Switch of the system log: 0 is off, any other value is on. Initially 1. Not a level, despite its name.
 * There is no setter; write it directly.
 */
TLVLIB_EXPORT extern unsigned char g_uc_SystemLogLevel;

/**
 * Formats one message and hands it to the sinks.
 *
 * @param level the level of the message
 * @param fmt   printf format; null or empty does nothing at all
 *
 * The log file gets the whole message, the system log at most its first 127 bytes. Any thread may log: lines
 * of the file never mix. The threshold may change meanwhile.
 */
TLVLIB_EXPORT void TVNG_DebugPrint(unsigned long level, const char* fmt, ...) TLVLIB_PRINTF_FORMAT(2, 3);

/**
 * Sets ul_outputLevel: 0 turns the log file off, 1 writes failures, 2 also rejected input, 3 everything.
 * The value is kept in 32 bits.
 */
TLVLIB_EXPORT void TVNG_DebugSetLogLevel(unsigned long level);

/// Has the platform's logging library install its signal handlers. For the program's start.
TLVLIB_EXPORT void TVNG_SetSignalHandler01();

/// Has the platform's logging library attach its memory. For the program's start.
TLVLIB_EXPORT void TVNG_DebugAttachMemory();

#endif
