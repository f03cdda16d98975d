#ifndef TOOLS_TLVCTL_COOKIES_COOKIECOMMANDS_H
#define TOOLS_TLVCTL_COOKIES_COOKIECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl cookies": the cookies in both their files.
Command cookieCommands();

#endif
