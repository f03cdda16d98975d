#ifndef TOOLS_TLVCTL_AUTHCOMMANDS_H
#define TOOLS_TLVCTL_AUTHCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// "tlvctl auth": the credentials for servers.
Command authCommands();

#endif
