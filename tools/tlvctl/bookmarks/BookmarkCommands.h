#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCOMMANDS_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command bookmarkListCommand();
Command bookmarkShowCommand();
Command bookmarkAddCommand();
Command bookmarkRenameCommand();
Command bookmarkRemoveCommand();
Command bookmarkThumbnailCommand();
Command bookmarkExportCommand();
Command bookmarkImportCommand();

#endif
