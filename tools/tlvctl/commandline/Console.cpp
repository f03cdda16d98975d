#include "tools/tlvctl/commandline/Console.h"

#include "tools/tlvctl/commandline/Text.h"

#include <cstdio>

void print(const QByteArray& utf8)
{
    std::fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stdout);
}

void printLine(const QString& line)
{
    print(line.toUtf8());
    std::fputc('\n', stdout);
}

void complain(const QString& subject, const QString& problem)
{
    complain((subject.isEmpty() ? "''" : printable(subject)) + ": " + problem);
}

void complain(const QString& problem)
{
    std::fflush(stdout);
    const QByteArray line = "tlvctl: " + problem.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

bool flushOutput()
{
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}
