#include "tools/tlvctl/fonts/FontCommands.h"

#include "tools/tlvctl/fonts/FontChangeCommands.h"
#include "tools/tlvctl/fonts/FontListCommand.h"

Command fontCommands()
{
    Command group;
    group.name = "fonts";
    group.summary = "List or change the fonts that are offered to the user.";
    group.examples = {"tlvctl fonts list /data/settings", "tlvctl fonts add /data/settings \"DejaVu Sans\"",
                      "tlvctl fonts import /data/settings"};
    group.commands = {fontListCommand(), fontAddCommand(), fontImportCommand()};
    return group;
}
