#include "Profile.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <sys/stat.h>

QString Profile::open(const QString& dir)
{
    const QString path = QDir(dir).absolutePath();
    const bool isAscii = std::all_of(path.begin(), path.end(), [](QChar c) { return c.unicode() < 0x80; });
    if (!isAscii || path.size() > PATH_MAX_BYTES)
        return QString("%1: a profile's path has at most %2 characters, all of them ASCII; name another "
                       "directory with --profile")
            .arg(path)
            .arg(PATH_MAX_BYTES);
    common = path + "/common/";
    user = path + "/user/";
    // Passwords and cookies lie below it. One that is there already keeps its permissions: it may be shared.
    QDir().mkpath(QFileInfo(path).path());
    ::mkdir(path.toLatin1().constData(), 0700);
    const bool isMade = QDir().mkpath(common) && QDir().mkpath(thumbnails());
    if (!isMade || !QFileInfo(common).isWritable() || !QFileInfo(user).isWritable())
        return QString(
                   "%1: cannot be written; check its permissions, or name another directory with --profile")
            .arg(path);
    return QString();
}
