#include "tools/tlvctl/commandline/Console.h"

#include "tools/tlvctl/commandline/Text.h"

#include <cstdio>
#include <string>

#include <unistd.h>

namespace {

const size_t BAR_WIDTH = 40; ///< of a progress bar, in columns

} // namespace

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

Progress::Progress(size_t total) : isShown_(total > 0 && isatty(STDERR_FILENO)), total_(total)
{
    if (isShown_)
        draw();
}

Progress::~Progress()
{
    if (isShown_)
        std::fputs("\r\033[K", stderr);
}

void Progress::advance()
{
    if (total_ == 0)
        return;
    const size_t before = done_ * 100 / total_;
    ++done_;
    if (isShown_ && done_ * 100 / total_ != before)
        draw();
}

void Progress::draw() const
{
    const size_t filled = done_ * BAR_WIDTH / total_;
    const std::string bar = std::string(filled, '#') + std::string(BAR_WIDTH - filled, ' ');
    std::fprintf(stderr, "\r[%s] %3zu %%", bar.c_str(), done_ * 100 / total_);
    std::fflush(stderr);
}
