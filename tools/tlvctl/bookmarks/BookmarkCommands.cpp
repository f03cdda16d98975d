#include "tools/tlvctl/bookmarks/BookmarkCommands.h"

#include "tools/tlvctl/bookmarks/BookmarkChangeCommands.h"
#include "tools/tlvctl/bookmarks/BookmarkListCommands.h"

Command bookmarkCommands()
{
    Command group;
    group.name = "bookmarks";
    group.summary = "List or change the bookmarks and their pictures.";
    group.examples = {"tlvctl bookmarks list /data/settings",
                      "tlvctl bookmarks add /data/settings http://example.com/ --title Example",
                      "tlvctl bookmarks rename /data/settings 003 \"A better title\"",
                      "tlvctl bookmarks remove /data/settings 003 007"};
    group.commands = {bookmarkListCommand(),   bookmarkShowCommand(),   bookmarkAddCommand(),
                      bookmarkRenameCommand(), bookmarkRemoveCommand(), bookmarkThumbnailCommand()};
    return group;
}
