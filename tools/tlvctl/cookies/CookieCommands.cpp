#include "tools/tlvctl/cookies/CookieCommands.h"

#include "tools/tlvctl/cookies/CookieConvertCommands.h"
#include "tools/tlvctl/cookies/CookieListCommand.h"

Command cookieCommands()
{
    Command group;
    group.name = "cookies";
    group.summary = "List the cookies, or convert them between their two files.";
    group.examples = {"tlvctl cookies list /data/settings",
                      "tlvctl cookies to-ini /data/cookies.xml /data/settings",
                      "tlvctl cookies from-ini /data/settings /data/cookies.xml"};
    group.commands = {cookieListCommand(), cookieToIniCommand(), cookieFromIniCommand()};
    return group;
}
