#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKLISTCOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKLISTCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command bookmarkListCommand();
Command bookmarkShowCommand();

#endif
