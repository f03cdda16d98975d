#include "tools/tlvctl/Tool.h"

#include "tools/tlvctl/auth/AuthCommands.h"
#include "tools/tlvctl/bookmarks/BookmarkCommands.h"
#include "tools/tlvctl/cookies/CookieCommands.h"
#include "tools/tlvctl/files/FileCommands.h"
#include "tools/tlvctl/fonts/FontCommands.h"
#include "tools/tlvctl/history/HistoryCommands.h"
#include "tools/tlvctl/prefs/PreferenceCommands.h"
#include "tools/tlvctl/report/ReportCommand.h"
#include "tools/tlvctl/thumbnails/ThumbnailCommands.h"

namespace {

Command group(const char* name, const char* summary, const std::vector<Command>& commands,
              const std::vector<QString>& examples)
{
    Command group(name, summary);
    group.commands = commands;
    group.examples = examples;
    return group;
}

} // namespace

Command tool()
{
    Command tool("tlvctl", "Looks into the settings directory of a device, repairs it and converts it.");
    tool.details = "Ends with 0 when all was done, 1 when something could not be done, 2 for\n"
                   "wrong usage. Characters of stored texts that a terminal would obey, such as\n"
                   "escape sequences, are shown as \\n, \\t, \\x1B or \\u{202E}, and a backslash as \\\\.";
    tool.examples = {"tlvctl show /data/settings/fontlist.xml", "tlvctl fonts list /data/settings"};
    tool.commands = {
        showCommand(),
        checkCommand(),
        reportCommand(),
        group("fonts", "List or change the fonts that are offered to the user.",
              {fontListCommand(), fontAddCommand(), fontImportCommand()},
              {"tlvctl fonts list /data/settings", "tlvctl fonts add /data/settings \"DejaVu Sans\"",
               "tlvctl fonts import /data/settings"}),
        group("bookmarks", "List or change the bookmarks and their pictures.",
              {bookmarkListCommand(), bookmarkShowCommand(), bookmarkAddCommand(), bookmarkRenameCommand(),
               bookmarkRemoveCommand(), bookmarkThumbnailCommand(), bookmarkExportCommand(),
               bookmarkImportCommand()},
              {"tlvctl bookmarks list /data/settings",
               "tlvctl bookmarks add /data/settings http://example.com/ --title Example",
               "tlvctl bookmarks rename /data/settings 003 \"A better title\"",
               "tlvctl bookmarks remove /data/settings 003 007",
               "tlvctl bookmarks import /data/settings bookmarks.html"}),
        group("history", "List or change the visited pages.",
              {historyListCommand(), historyFindCommand(), historyAddCommand(), historyRemoveCommand(),
               historyExportCommand()},
              {"tlvctl history list /data/settings", "tlvctl history find /data/settings http://example.com/",
               "tlvctl history add /data/settings http://example.com/ --title Example",
               "tlvctl history remove /data/settings 003 007",
               "tlvctl history export /data/settings visits.csv"}),
        group("auth", "List or change the credentials for servers.",
              {authListCommand(), authAddCommand(), authRemoveCommand()},
              {"tlvctl auth list /data/settings",
               "tlvctl auth add /data/settings example.com 443 --type digest --user me",
               "tlvctl auth remove /data/settings 003 007"}),
        group("cookies", "List the cookies, or convert them between their files.",
              {cookieListCommand(), cookieToIniCommand(), cookieFromIniCommand(), cookieExportCommand(),
               cookieImportCommand()},
              {"tlvctl cookies list /data/settings", "tlvctl cookies to-ini /data/cookies.xml /data/settings",
               "tlvctl cookies from-ini /data/settings /data/cookies.xml",
               "tlvctl cookies export /data/settings cookies.txt"}),
        group("prefs", "Show or set preferences of the device or of a user.",
              {preferenceShowCommand(), preferenceGetCommand(), preferenceSetCommand(),
               preferenceExportCommand(), preferenceImportCommand()},
              {"tlvctl prefs show common /data/settings", "tlvctl prefs get user /data/user page.zoom",
               "tlvctl prefs set common /data/settings proxy.host proxy.example.net",
               "tlvctl prefs import common /data/settings device.json"}),
        group("thumbnails", "Pack the thumbnails of a directory into one file, or unpack them.",
              {thumbnailListCommand(), thumbnailPackCommand(), thumbnailUnpackCommand()},
              {"tlvctl thumbnails pack /data/user/thumbnail /data/user/thumbnails.xml",
               "tlvctl thumbnails unpack /data/user/thumbnails.xml /data/new/thumbnail"}),
        group("cache", "Empty the browser's disk cache.", {cacheClearCommand()}, {"tlvctl cache clear"})};
    return tool;
}
