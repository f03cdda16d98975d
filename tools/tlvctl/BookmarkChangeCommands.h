#ifndef TOOLS_TLVCTL_BOOKMARKCHANGECOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKCHANGECOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

Command bookmarkAddCommand();
Command bookmarkRenameCommand();
Command bookmarkRemoveCommand();
Command bookmarkThumbnailCommand();

#endif
