#ifndef TOOLS_TLVCTL_PREFS_PREFERENCECOMMANDS_H
#define TOOLS_TLVCTL_PREFS_PREFERENCECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command preferenceShowCommand();
Command preferenceGetCommand();
Command preferenceSetCommand();
Command preferenceExportCommand();
Command preferenceImportCommand();

#endif
