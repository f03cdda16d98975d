#ifndef TOOLS_TLVCTL_FILES_CHECKCOMMAND_H
#define TOOLS_TLVCTL_FILES_CHECKCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The command "check".
Command checkCommand();

#endif
