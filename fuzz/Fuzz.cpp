#include "fuzz/Fuzz.h"

#include "platform/liblog_silent.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <cstdio>
#include <cstdlib>

const QString& scratchDir()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static const QTemporaryDir dir("/dev/shm/tlvlib-fuzz-XXXXXX");
    static const QString path = dir.path() + '/';
    return path;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    MUST(file.open(QIODevice::WriteOnly));
    MUST(file.write(bytes) == bytes.size());
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void release()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void broken(const char* condition, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}
