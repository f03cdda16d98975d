#ifndef TOOLS_TLVCTL_FILES_FILECOMMANDS_H
#define TOOLS_TLVCTL_FILES_FILECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command showCommand();
Command checkCommand();
Command cacheClearCommand();

#endif
