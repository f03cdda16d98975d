#ifndef TOOLS_TLVCTL_THUMBNAILS_THUMBNAILUNPACKCOMMANDS_H
#define TOOLS_TLVCTL_THUMBNAILS_THUMBNAILUNPACKCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The command "thumbnails list".
Command thumbnailListCommand();

/// The command "thumbnails unpack".
Command thumbnailUnpackCommand();

#endif
