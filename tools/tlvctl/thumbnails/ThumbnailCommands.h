#ifndef TOOLS_TLVCTL_THUMBNAILS_THUMBNAILCOMMANDS_H
#define TOOLS_TLVCTL_THUMBNAILS_THUMBNAILCOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The group "thumbnails".
Command thumbnailCommands();

#endif
