#ifndef TOOLS_TLVCTL_COMMANDLINE_PROGRESS_H
#define TOOLS_TLVCTL_COMMANDLINE_PROGRESS_H

#include <cstddef>

/// A progress bar on standard error, if that is a terminal; nothing anywhere else.
class Progress
{
public:
    /// @param total how many steps there are
    explicit Progress(size_t total);

    /// Leaves the terminal's line empty, for what comes next.
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One step is done.
    void advance();

private:
    void draw() const;

    bool isShown_;
    size_t total_;
    size_t done_ = 0;
};

#endif
