#ifndef TOOLS_TLVCTL_FILES_CACHECOMMANDS_H
#define TOOLS_TLVCTL_FILES_CACHECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The group "cache".
Command cacheCommands();

#endif
