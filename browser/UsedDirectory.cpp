#include "UsedDirectory.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <sys/stat.h>

namespace Tlv {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("Tlv::Profile", text);
}

QString holderOf(const QLockFile& lock)
{
    qint64 process = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&process, &host, &application))
        return tr("another program");
    return tr("%1 (process %2 on %3)").arg(application).arg(process).arg(host);
}

} // namespace

bool makeDirectory(const QString& path)
{
    const QString name = QDir::cleanPath(path);
    QDir().mkpath(QFileInfo(name).path());
    // Not QDir::mkdir(), which lets others in until the permissions are set.
    ::mkdir(QFile::encodeName(name).constData(), S_IRWXU);
    const QFileInfo info(name);
    return info.isDir() && info.isWritable();
}

QString UsedDirectory::hold(const QString& dir)
{
    auto lock = std::make_unique<QLockFile>(dir + QLatin1String("tlvlib.lock"));
    // Qt takes a lock of this age away only when the kernel knows of nobody who holds the file, so that a
    // living program keeps it. With 0 a lock file that a power cut has left empty would never be taken away.
    lock->setStaleLockTime(1);
    if (!lock->tryLock(0))
        return holderOf(*lock);
    lock_ = std::move(lock);
    return QString();
}

} // namespace Tlv
