#ifndef TOOLS_TLVCTL_AUTH_AUTHCOMMANDS_H
#define TOOLS_TLVCTL_AUTH_AUTHCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command authListCommand();
Command authAddCommand();
Command authRemoveCommand();

#endif
