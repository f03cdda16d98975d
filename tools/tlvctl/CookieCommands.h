#ifndef TOOLS_TLVCTL_COOKIECOMMANDS_H
#define TOOLS_TLVCTL_COOKIECOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

Command cookieCommands();

#endif
