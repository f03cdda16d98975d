#ifndef TOOLS_TLVCTL_THUMBNAILS_THUMBNAILPACKCOMMAND_H
#define TOOLS_TLVCTL_THUMBNAILS_THUMBNAILPACKCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// The command "thumbnails pack".
Command thumbnailPackCommand();

#endif
