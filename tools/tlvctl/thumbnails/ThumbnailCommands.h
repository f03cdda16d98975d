#ifndef TOOLS_TLVCTL_THUMBNAILS_THUMBNAILCOMMANDS_H
#define TOOLS_TLVCTL_THUMBNAILS_THUMBNAILCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command thumbnailListCommand();
Command thumbnailPackCommand();
Command thumbnailUnpackCommand();

#endif
