#ifndef TOOLS_TLVCTL_HISTORY_HISTORYCOMMANDS_H
#define TOOLS_TLVCTL_HISTORY_HISTORYCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command historyListCommand();
Command historyFindCommand();
Command historyAddCommand();
Command historyRemoveCommand();
Command historyExportCommand();

#endif
