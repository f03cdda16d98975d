#ifndef TOOLS_TLVCTL_FONTS_FONTCHANGECOMMANDS_H
#define TOOLS_TLVCTL_FONTS_FONTCHANGECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl fonts add": adds the fonts that are named.
Command fontAddCommand();

/// "tlvctl fonts import": adds the fonts of this machine.
Command fontImportCommand();

#endif
