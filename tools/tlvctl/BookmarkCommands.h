#ifndef TOOLS_TLVCTL_BOOKMARKCOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// "tlvctl bookmarks": the user's bookmarks.
Command bookmarkCommands();

#endif
