#ifndef TOOLS_TLVCTL_FILES_SHOWCOMMAND_H
#define TOOLS_TLVCTL_FILES_SHOWCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl show": any settings document as a tree.
Command showCommand();

#endif
