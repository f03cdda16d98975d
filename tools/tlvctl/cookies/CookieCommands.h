#ifndef TOOLS_TLVCTL_COOKIES_COOKIECOMMANDS_H
#define TOOLS_TLVCTL_COOKIES_COOKIECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command cookieListCommand();
Command cookieToIniCommand();
Command cookieFromIniCommand();
Command cookieExportCommand();
Command cookieImportCommand();

#endif
