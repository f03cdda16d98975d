#ifndef TOOLS_TLVCTL_AUTH_AUTHCHANGECOMMANDS_H
#define TOOLS_TLVCTL_AUTH_AUTHCHANGECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl auth add": adds the credentials for a server.
Command authAddCommand();

/// "tlvctl auth remove": removes the entries of these numbers.
Command authRemoveCommand();

#endif
