#ifndef TOOLS_TLVCTL_AUTH_AUTHLISTCOMMAND_H
#define TOOLS_TLVCTL_AUTH_AUTHLISTCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl auth list": all that the file holds, the passwords only where they are asked for.
Command authListCommand();

#endif
