#ifndef TOOLS_TLVCTL_COOKIES_COOKIECONVERTCOMMANDS_H
#define TOOLS_TLVCTL_COOKIES_COOKIECONVERTCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command cookieToIniCommand();
Command cookieFromIniCommand();

#endif
