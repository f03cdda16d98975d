#ifndef TOOLS_TLVCTL_FONTS_FONTCOMMANDS_H
#define TOOLS_TLVCTL_FONTS_FONTCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command fontListCommand();
Command fontAddCommand();
Command fontImportCommand();

#endif
