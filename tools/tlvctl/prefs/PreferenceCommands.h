#ifndef TOOLS_TLVCTL_PREFS_PREFERENCECOMMANDS_H
#define TOOLS_TLVCTL_PREFS_PREFERENCECOMMANDS_H

#include "tools/tlvctl/commandline/CommandLine.h"

/// "tlvctl prefs": the preferences of the device and of a user.
Command preferenceCommands();

#endif
