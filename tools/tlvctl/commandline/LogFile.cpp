#include "tools/tlvctl/commandline/LogFile.h"

#include "tools/tlvctl/commandline/Console.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

/// The library only drops its messages when its file cannot be opened.
void checkLogFile()
{
    QFile file(logFilePath());
    if (file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    const QString dir = QFileInfo(logFilePath()).path();
    const QString advice = QFileInfo(dir).isDir()
                               ? "check the permissions of the file and its directory"
                               : QString("create the directory with \"mkdir -p %1\"").arg(dir);
    complain(logFilePath(), QString("no log is written: %1; %2").arg(file.errorString(), advice));
}

} // namespace

QString logFilePath()
{
    return "/ata07/Talvenor/tmp/tlvlog.log";
}

bool parseLogLevel(const QString& text, int& level)
{
    if (text.size() != 1 || text.at(0) < '0' || text.at(0) > '3')
        return false;
    level = text.at(0).digitValue();
    return true;
}

void setLogLevel(int level)
{
    g_uc_SystemLogLevel = 0;
    TVNG_DebugSetLogLevel(static_cast<unsigned long>(level));
    if (level > 0)
        checkLogFile();
}
