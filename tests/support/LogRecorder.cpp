#include "tests/support/LogRecorder.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

// Never destroyed: the stores log when the process ends.
QStringList& messages()
{
    static QStringList* const pc_messages = new QStringList;
    return *pc_messages;
}

/// Addresses differ from run to run: "0x" and what follows becomes "0x*", unless the address is null.
QString withoutAddresses(const char* pc_text)
{
    QByteArray result;
    while (*pc_text) {
        const size_t ul_digits =
            std::strncmp(pc_text, "0x", 2) == 0 ? std::strspn(pc_text + 2, "0123456789ABCDEF") : 0;
        if (ul_digits > 1 || (ul_digits == 1 && pc_text[2] != '0')) {
            result += "0x*";
            pc_text += 2 + ul_digits;
        } else {
            result += *pc_text++;
        }
    }
    return QString::fromUtf8(result.constData());
}

} // namespace

void TVNG_DebugPrint(unsigned long level, const char* fmt, ...)
{
    char text[4096];
    va_list arguments;
    va_start(arguments, fmt);
    std::vsnprintf(text, sizeof text, fmt, arguments);
    va_end(arguments);
    messages().append(QString::number(level) + QLatin1Char(' ') + withoutAddresses(text));
    if (LogRecorder::pc_onMessage)
        LogRecorder::pc_onMessage(QString(messages().last())); // a copy: it may log, too
}

void (*LogRecorder::pc_onMessage)(const QString& message) = nullptr;

QString LogRecorder::take()
{
    QString block;
    foreach (const QString& message, takeLines())
        block += message + QLatin1Char('\n');
    return block;
}

QStringList LogRecorder::takeLines()
{
    const QStringList taken = messages();
    messages().clear();
    return taken;
}
