#ifndef TOOLS_TLVCTL_MANUAL_MANUAL_H
#define TOOLS_TLVCTL_MANUAL_MANUAL_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The manual page of a tool in the macros of man(7), as UTF-8.
QByteArray manPage(const Command& tool, const QString& version);

/// A script that teaches bash the commands and options of a tool.
QByteArray bashCompletion(const Command& tool);

#endif
