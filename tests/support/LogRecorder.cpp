#include "tests/support/LogRecorder.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"

#include <QtCore/QRegExp>

#include <cstdarg>
#include <cstdio>

namespace {

// Never destroyed: the stores log when the process ends.
QStringList& messages()
{
    static QStringList* const pc_messages = new QStringList;
    return *pc_messages;
}

} // namespace

void TVNG_DebugPrint(unsigned long level, const char* fmt, ...)
{
    char text[4096];
    va_list arguments;
    va_start(arguments, fmt);
    std::vsnprintf(text, sizeof text, fmt, arguments);
    va_end(arguments);
    messages().append(QString::number(level) + QLatin1Char(' ') + QString::fromUtf8(text));
}

QStringList LogRecorder::take()
{
    QStringList taken = messages();
    messages().clear();
    return taken.replaceInStrings(QRegExp(QLatin1String("0x(?!0\\b)[0-9A-F]+")), QLatin1String("0x*"));
}
