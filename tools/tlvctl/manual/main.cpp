/**
 * @file
 * tlvctl_manual PAGE SCRIPT: writes the manual page of tlvctl and its completion for bash, while the tool is
 * built.
 */

#include "tools/tlvctl/Tool.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/manual/Manual.h"

#include <QtCore/QFile>

namespace {

bool write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush())
        return true;
    complain(path, "cannot be written: " + file.errorString());
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        complain("usage: tlvctl_manual PAGE SCRIPT");
        return WRONG_USAGE;
    }
    const bool isDone = write(QFile::decodeName(argv[1]), manPage(tool(), TLVCTL_VERSION)) &&
                        write(QFile::decodeName(argv[2]), bashCompletion(tool()));
    return isDone ? DONE : FAILED;
}
