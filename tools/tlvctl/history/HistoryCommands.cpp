#include "tools/tlvctl/history/HistoryCommands.h"

#include "tools/tlvctl/history/HistoryChangeCommands.h"
#include "tools/tlvctl/history/HistoryListCommands.h"

Command historyCommands()
{
    Command group;
    group.name = "history";
    group.summary = "List or change the visited pages.";
    group.examples = {"tlvctl history list /data/settings",
                      "tlvctl history find /data/settings http://example.com/",
                      "tlvctl history add /data/settings http://example.com/ --title Example",
                      "tlvctl history remove /data/settings 003 007"};
    group.commands = {historyListCommand(), historyFindCommand(), historyAddCommand(),
                      historyRemoveCommand()};
    return group;
}
