#ifndef TOOLS_TLVCTL_REPORT_REPORTCOMMAND_H
#define TOOLS_TLVCTL_REPORT_REPORTCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"

Command reportCommand();

#endif
