#ifndef TOOLS_TLVCTL_COMMANDLINE_PASSWORD_H
#define TOOLS_TLVCTL_COMMANDLINE_PASSWORD_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/**
 * @file
 * Passwords come from a file, from standard input or from the keyboard, never from the command line, which
 * every user of the machine can read.
 */

/**
 * Reads a password: any bytes, without the one line break that may stand at their end.
 *
 * @param path     the file; without one it is standard input, and on a terminal the user is asked, with
 *                 nothing shown of what is typed
 * @param maxBytes how long it may be
 * @return nothing, after a complaint, when it cannot be read or is too long
 */
std::optional<QByteArray> readPassword(const std::optional<QString>& path, int maxBytes);

#endif
