#ifndef TOOLS_TLVCTL_HISTORY_HISTORYLISTCOMMANDS_H
#define TOOLS_TLVCTL_HISTORY_HISTORYLISTCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl history list": all that the history holds, and what loading does to it.
Command historyListCommand();

/// "tlvctl history find": the newest visit of an address.
Command historyFindCommand();

#endif
