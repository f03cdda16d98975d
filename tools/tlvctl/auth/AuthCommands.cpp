#include "tools/tlvctl/auth/AuthCommands.h"

#include "tools/tlvctl/auth/AuthChangeCommands.h"
#include "tools/tlvctl/auth/AuthListCommand.h"

Command authCommands()
{
    Command group;
    group.name = "auth";
    group.summary = "List or change the credentials for servers.";
    group.examples = {"tlvctl auth list /data/settings",
                      "tlvctl auth add /data/settings example.com 443 --type digest --user me",
                      "tlvctl auth remove /data/settings 003 007"};
    group.commands = {authListCommand(), authAddCommand(), authRemoveCommand()};
    return group;
}
