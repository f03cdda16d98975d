#ifndef TOOLS_TLVCTL_COOKIES_COOKIELISTCOMMAND_H
#define TOOLS_TLVCTL_COOKIES_COOKIELISTCOMMAND_H

#include "tools/tlvctl/commandline/CommandLine.h"
#include "tools/tlvctl/cookies/CookieList.h"

/// Prints the table of a file's cookies, with what there is to say about them.
void printCookies(const CookieFile& cookies, int counted, bool withValues);

Command cookieListCommand();

#endif
