#ifndef TOOLS_TLVCTL_HISTORYCOMMANDS_H
#define TOOLS_TLVCTL_HISTORYCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// "tlvctl history": the visited pages.
Command historyCommands();

#endif
