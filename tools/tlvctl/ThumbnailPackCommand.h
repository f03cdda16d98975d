#ifndef TOOLS_TLVCTL_THUMBNAILPACKCOMMAND_H
#define TOOLS_TLVCTL_THUMBNAILPACKCOMMAND_H

#include "tools/tlvctl/CommandLine.h"

/// The command "thumbnails pack".
Command thumbnailPackCommand();

#endif
