#ifndef TOOLS_TLVCTL_BOOKMARKLISTCOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKLISTCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

Command bookmarkListCommand();
Command bookmarkShowCommand();

#endif
