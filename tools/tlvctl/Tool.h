#ifndef TOOLS_TLVCTL_TOOL_H
#define TOOLS_TLVCTL_TOOL_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The whole tool: the group of all its commands.
Command tool();

#endif
