#ifndef TOOLS_TLVCTL_THUMBNAILCOMMANDS_H
#define TOOLS_TLVCTL_THUMBNAILCOMMANDS_H

#include "tools/tlvctl/CommandLine.h"

/// The group "thumbnails".
Command thumbnailCommands();

#endif
