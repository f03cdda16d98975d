#include "tools/tlvctl/thumbnails/ThumbnailCommands.h"

#include "tools/tlvctl/thumbnails/ThumbnailPackCommand.h"
#include "tools/tlvctl/thumbnails/ThumbnailUnpackCommands.h"

Command thumbnailCommands()
{
    Command group;
    group.name = "thumbnails";
    group.summary = "Pack the thumbnails of a directory into one file, or unpack them.";
    group.examples = {"tlvctl thumbnails pack /data/user/thumbnail /data/user/thumbnails.xml",
                      "tlvctl thumbnails unpack /data/user/thumbnails.xml /data/new/thumbnail"};
    group.commands = {thumbnailListCommand(), thumbnailPackCommand(), thumbnailUnpackCommand()};
    return group;
}
