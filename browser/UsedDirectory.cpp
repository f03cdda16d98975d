#include "UsedDirectory.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace Tlv {

bool UsedDirectory::make(const QString& path)
{
    if (!QFileInfo::exists(path)) {
        const QFile::Permissions owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        if (!QDir().mkpath(path) || !QFile::setPermissions(path, owner))
            return false;
    }
    const QFileInfo info(path);
    return info.isDir() && info.isWritable();
}

QString UsedDirectory::hold(const QString& dir)
{
    auto lock = std::make_unique<QLockFile>(dir + QLatin1String("tlvlib.lock"));
    // Not 0, or an empty lock file, which a power cut leaves, would stop everybody for ever. A lock whose
    // process lives is kept however old it is.
    lock->setStaleLockTime(1);
    if (!lock->tryLock(0)) {
        qint64 process = 0;
        QString host;
        QString application;
        lock->getLockInfo(&process, &host, &application);
        return QCoreApplication::translate("Tlv::Profile", "%1 (process %2 on %3)")
            .arg(application)
            .arg(process)
            .arg(host);
    }
    lock_ = std::move(lock);
    return QString();
}

} // namespace Tlv
