#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl bookmarks": the user's bookmarks.
Command bookmarkCommands();

#endif
