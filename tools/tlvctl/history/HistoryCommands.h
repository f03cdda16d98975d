#ifndef TOOLS_TLVCTL_HISTORY_HISTORYCOMMANDS_H
#define TOOLS_TLVCTL_HISTORY_HISTORYCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl history": the visited pages.
Command historyCommands();

#endif
