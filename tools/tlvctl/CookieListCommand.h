#ifndef TOOLS_TLVCTL_COOKIELISTCOMMAND_H
#define TOOLS_TLVCTL_COOKIELISTCOMMAND_H

#include "tools/tlvctl/CommandLine.h"
#include "tools/tlvctl/CookieList.h"

/// Prints the table of a file's cookies, with what there is to say about them.
void printCookies(const CookieFile& cookies, int counted, bool withValues);

Command cookieListCommand();

#endif
