#ifndef TOOLS_TLVCTL_CACHECOMMANDS_H
#define TOOLS_TLVCTL_CACHECOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// The group "cache".
Command cacheCommands();

#endif
