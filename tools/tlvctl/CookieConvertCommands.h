#ifndef TOOLS_TLVCTL_COOKIECONVERTCOMMANDS_H
#define TOOLS_TLVCTL_COOKIECONVERTCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

Command cookieToIniCommand();
Command cookieFromIniCommand();

#endif
