#ifndef TESTS_DIAG_RECORDINGLIBLOG_H
#define TESTS_DIAG_RECORDINGLIBLOG_H

/**
 * @file
 * A liblog inside the test program. It writes down every call, as a program that defines LIBF_* itself may.
 */

#include "platform/liblog.h"

#include <QtCore/QStringList>

#include <mutex> // which the thread sanitizer understands, other than Qt's

class RecordingLiblog
{
public:
    /// The calls since the last time, such as "WriteSystemLog 1 1 255 'text' 0xffff".
    static QStringList take()
    {
        const std::lock_guard<std::mutex> lock(mutex());
        const QStringList taken = calls();
        calls().clear();
        return taken;
    }

    static void add(const QString& call)
    {
        const std::lock_guard<std::mutex> lock(mutex());
        calls().append(call);
    }

private:
    static std::mutex& mutex()
    {
        static std::mutex* const pc_mutex = new std::mutex;
        return *pc_mutex;
    }
    static QStringList& calls()
    {
        static QStringList* const pc_calls = new QStringList;
        return *pc_calls;
    }
};

int LIBF_WriteSystemLog(int kind, int level, int code, const char* text, unsigned short* id)
{
    RecordingLiblog::add(QString::fromLatin1("WriteSystemLog %1 %2 %3 '%4' 0x%5")
                             .arg(kind)
                             .arg(level)
                             .arg(code)
                             .arg(QString::fromUtf8(text))
                             .arg(*id, 0, 16));
    return -1; // results are of no interest to the library
}

int LIBF_SetSignalHandler01(int mask)
{
    RecordingLiblog::add(QString::fromLatin1("SetSignalHandler01 %1").arg(mask));
    return -1;
}

int LIBF_SetApiSignalInfoNonSave(int enable)
{
    RecordingLiblog::add(QString::fromLatin1("SetApiSignalInfoNonSave %1").arg(enable));
    return -1;
}

int LIBF_AttachMemory(void)
{
    RecordingLiblog::add(QString::fromLatin1("AttachMemory"));
    return -1;
}

#endif
