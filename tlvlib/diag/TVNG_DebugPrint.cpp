#include "tlvlib/diag/TVNG_DebugPrint.h"

#include "platform/liblog.h"

#include <QtCore/QSemaphore>

#include <cstdarg>
#include <cstdio>
#include <cstring>

// Read and set without a lock, but whole: any thread may log while another one changes them.
quint32 ul_outputLevel = 0;
unsigned char g_uc_SystemLogLevel = 1;

namespace {

const char LOG_FILE[] = "/ata07/Talvenor/tmp/tlvlog.log";
const char LOG_TAG[] = "[Talvenor]";

/// The system log takes messages of at most this many bytes, with the terminating zero.
const size_t SYSTEM_LOG_SIZE = 128;

/// Serialises the log file. The other one of the library's two static initialisers. The line is written while
/// it is held, so that lines stay whole; nothing of the program's is called meanwhile.
QSemaphore fileSemaphore(1);

/// Returns false when the log file cannot be opened.
bool writeToFile(const char* pc_format, va_list arguments)
{
    fileSemaphore.acquire();
    FILE* pc_file = std::fopen(LOG_FILE, "a");
    if (!pc_file) {
        fileSemaphore.release();
        return false;
    }
    std::fwrite(LOG_TAG, 1, sizeof LOG_TAG - 1, pc_file);
    std::vfprintf(pc_file, pc_format, arguments);
    std::fputc('\n', pc_file);
    std::fclose(pc_file);
    fileSemaphore.release();
    return true;
}

void writeToSystemLog(const char* pc_format, va_list arguments)
{
    char c_buffer[SYSTEM_LOG_SIZE + 1];
    std::memset(c_buffer, 0, sizeof c_buffer);
    if (std::strchr(pc_format, '%'))
        std::vsnprintf(c_buffer, SYSTEM_LOG_SIZE, pc_format, arguments);
    else // most messages are a text and nothing else
        std::memcpy(c_buffer, pc_format, strnlen(pc_format, SYSTEM_LOG_SIZE - 1));
    unsigned short us_id = 0xFFFF;
    LIBF_WriteSystemLog(1, 1, 255, c_buffer, &us_id);
}

} // namespace

void TVNG_DebugPrint(unsigned long level, const char* fmt, ...)
{
    if (!fmt || !*fmt)
        return;

    // Each sink starts the arguments afresh: a va_list that was used once is spent.
    va_list arguments;
    const quint32 ul_threshold = __atomic_load_n(&ul_outputLevel, __ATOMIC_RELAXED);
    if (ul_threshold != 0 && ul_threshold >= level) {
        va_start(arguments, fmt);
        const bool b_written = writeToFile(fmt, arguments);
        va_end(arguments);
        // A log file that cannot be opened costs the message in the system log too. The device's service
        // tools rely on the two sinks agreeing, so this must stay.
        if (!b_written)
            return;
    }
    if (__atomic_load_n(&g_uc_SystemLogLevel, __ATOMIC_RELAXED)) {
        va_start(arguments, fmt);
        writeToSystemLog(fmt, arguments);
        va_end(arguments);
    }
}

void TVNG_DebugSetLogLevel(unsigned long level)
{
    __atomic_store_n(&ul_outputLevel, static_cast<quint32>(level), __ATOMIC_RELAXED);
}

void TVNG_SetSignalHandler01()
{
    LIBF_SetSignalHandler01(0xFFFF);
    LIBF_SetApiSignalInfoNonSave(1);
}

void TVNG_DebugAttachMemory()
{
    LIBF_AttachMemory();
}
