#ifndef TOOLS_TLVCTL_FONTCOMMANDS_H
#define TOOLS_TLVCTL_FONTCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// "tlvctl fonts": the list of fonts that are offered to the user.
Command fontCommands();

#endif
