#ifndef TOOLS_TLVCTL_MANUAL_COMPLETION_H
#define TOOLS_TLVCTL_MANUAL_COMPLETION_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// A script that teaches bash the commands and options of a tool.
QByteArray bashCompletion(const Command& tool);

#endif
