#include "tests/support/TestSupport.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdlib>

namespace {

void removeTree(const QString& path)
{
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) {
        const QDir dir(path);
        const QStringList names =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        foreach (const QString& name, names)
            removeTree(path + QLatin1Char('/') + name);
        QDir().rmdir(path);
    } else {
        QFile::remove(path);
    }
}

} // namespace

TempDir::TempDir()
{
    QByteArray name = QFile::encodeName(QDir::tempPath() + QLatin1String("/tlvlib-test-XXXXXX"));
    if (!mkdtemp(name.data()))
        qFatal("cannot make a temporary directory %s", name.constData());
    path_ = QFile::decodeName(name) + QLatin1Char('/');
}

TempDir::~TempDir()
{
    removeTree(path_.left(path_.size() - 1));
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

QString testData(const QString& name)
{
    return QCoreApplication::applicationDirPath() + QLatin1String("/../data/") + name;
}
