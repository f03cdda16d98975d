#ifndef TOOLS_TLVCTL_FONTS_FONTCOMMANDS_H
#define TOOLS_TLVCTL_FONTS_FONTCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl fonts": the list of fonts that are offered to the user.
Command fontCommands();

#endif
