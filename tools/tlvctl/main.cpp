/**
 * @file
 * tlvctl: looks into the settings directory of a device, repairs it and converts it.
 */

#include "tools/tlvctl/AuthCommands.h"
#include "tools/tlvctl/BookmarkCommands.h"
#include "tools/tlvctl/CacheCommands.h"
#include "tools/tlvctl/CheckCommand.h"
#include "tools/tlvctl/CommandLine.h"
#include "tools/tlvctl/Console.h"
#include "tools/tlvctl/CookieCommands.h"
#include "tools/tlvctl/FontCommands.h"
#include "tools/tlvctl/HistoryCommands.h"
#include "tools/tlvctl/PreferenceCommands.h"
#include "tools/tlvctl/ShowCommand.h"
#include "tools/tlvctl/ThumbnailCommands.h"

#include <QtCore/QFile>
#include <QtCore/QTextCodec>

#include <clocale>

#include <langinfo.h>

namespace {

/**
 * Command lines and file names are in the encoding of the locale. Where that has no letters beyond ASCII,
 * they are taken as UTF-8, as Qt itself does if it was built with ICU; otherwise it would read Latin-1.
 */
void chooseEncoding()
{
    std::setlocale(LC_CTYPE, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

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

} // namespace

int main(int argc, char** argv)
{
    chooseEncoding();
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QFile::decodeName(argv[i]);
        if (QFile::encodeName(argument) != argv[i]) {
            complain(QString("argument %1 is not text in the encoding of the locale, %2; convert it, or "
                             "set LC_ALL")
                         .arg(QString::number(i), QString::fromLatin1(QTextCodec::codecForLocale()->name())));
            return WRONG_USAGE;
        }
        arguments.append(argument);
    }
    return runCommandLine(tool(), arguments);
}
