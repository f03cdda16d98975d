#ifndef TOOLS_TLVCTL_CHECKCOMMAND_H
#define TOOLS_TLVCTL_CHECKCOMMAND_H

#include "tools/tlvctl/CommandLine.h"

/// The command "check".
Command checkCommand();

#endif
