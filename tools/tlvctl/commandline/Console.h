#ifndef TOOLS_TLVCTL_COMMANDLINE_CONSOLE_H
#define TOOLS_TLVCTL_COMMANDLINE_CONSOLE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstddef>

/**
 * @file
 * What the tool says, always in UTF-8, whatever the locale. Texts of others go through printable() first.
 */

/// What the process ends with.
enum ExitCode { DONE = 0, FAILED = 1, WRONG_USAGE = 2 };

/// Writes to standard output as it is.
void print(const QByteArray& utf8);

/// Writes a line to standard output.
void printLine(const QString& line);

/**
 * Writes "tlvctl: SUBJECT: PROBLEM" to standard error, behind what has gone to standard output so far.
 *
 * @param subject the file or directory in question; made printable here
 * @param problem what is wrong, and behind a semicolon what to do about it
 */
void complain(const QString& subject, const QString& problem);

/// As above, where the problem is with no file: "tlvctl: PROBLEM".
void complain(const QString& problem);

/// Hands everything to the system. False when standard output could not take it all (a full disk, say).
bool flushOutput();

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
