#include "tools/tlvctl/commandline/Progress.h"

#include <cstdio>
#include <string>

#include <unistd.h>

namespace {

const size_t WIDTH = 40;

} // namespace

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
    const size_t before = done_ * 100 / (total_ > 0 ? total_ : 1);
    ++done_;
    if (isShown_ && done_ * 100 / total_ != before)
        draw();
}

void Progress::draw() const
{
    const size_t filled = done_ * WIDTH / total_;
    const std::string bar = std::string(filled, '#') + std::string(WIDTH - filled, ' ');
    std::fprintf(stderr, "\r[%s] %3zu %%", bar.c_str(), done_ * 100 / total_);
    std::fflush(stderr);
}
