#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCHANGECOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCHANGECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command bookmarkAddCommand();
Command bookmarkRenameCommand();
Command bookmarkRemoveCommand();
Command bookmarkThumbnailCommand();

#endif
