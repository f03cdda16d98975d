#ifndef TOOLS_TLVCTL_HISTORY_HISTORYCHANGECOMMANDS_H
#define TOOLS_TLVCTL_HISTORY_HISTORYCHANGECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl history add": records a visit.
Command historyAddCommand();

/// "tlvctl history remove": removes the visits of these numbers.
Command historyRemoveCommand();

#endif
