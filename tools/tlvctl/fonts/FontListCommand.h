#ifndef TOOLS_TLVCTL_FONTS_FONTLISTCOMMAND_H
#define TOOLS_TLVCTL_FONTS_FONTLISTCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl fonts list": all that the list holds, and what of it the store hides.
Command fontListCommand();

#endif
