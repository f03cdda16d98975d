#include "tools/tlvctl/Tool.h"

#include "tools/tlvctl/auth/AuthCommands.h"
#include "tools/tlvctl/bookmarks/BookmarkCommands.h"
#include "tools/tlvctl/cookies/CookieCommands.h"
#include "tools/tlvctl/files/CacheCommands.h"
#include "tools/tlvctl/files/CheckCommand.h"
#include "tools/tlvctl/files/ShowCommand.h"
#include "tools/tlvctl/fonts/FontCommands.h"
#include "tools/tlvctl/history/HistoryCommands.h"
#include "tools/tlvctl/prefs/PreferenceCommands.h"
#include "tools/tlvctl/thumbnails/ThumbnailCommands.h"

Command tool()
{
    Command tool;
    tool.name = "tlvctl";
    tool.summary = "Looks into the settings directory of a device, repairs it and converts it.";
    tool.details = "Ends with 0 when all was done, 1 when something could not be done, 2 for\n"
                   "wrong usage. Characters of stored texts that a terminal would obey, such as\n"
                   "escape sequences, are shown as \\n, \\t, \\x1B or \\u{202E}, and a backslash as \\\\.";
    tool.examples = {"tlvctl show /data/settings/fontlist.xml", "tlvctl fonts list /data/settings"};
    tool.commands = {showCommand(),       checkCommand(), fontCommands(),   bookmarkCommands(),
                     historyCommands(),   authCommands(), cookieCommands(), preferenceCommands(),
                     thumbnailCommands(), cacheCommands()};
    return tool;
}
