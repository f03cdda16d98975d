#include "DamageCheck.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>

#include <memory>

namespace Tlv {

namespace {

const int MAXIMUM_COPIES = 9;

QString tr(const char* text)
{
    return QCoreApplication::translate("Tlv::Profile", text);
}

QString damageOfDocument(QFile& file)
{
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> root(reader.read(file));
    if (reader.error() == QXmlStreamReader::NoError)
        return QString();
    const auto kept = root ? root->getXMLNodeChildren().size() : 0;
    return tr("%1 is damaged at line %2: %3. The %4 entries in front of that are kept, what stood behind is "
              "lost.")
        .arg(file.fileName())
        .arg(reader.lineNumber())
        .arg(reader.errorString())
        .arg(kept);
}

/// The file says how many cookies it has.
QString damageOfCookies(const QString& path)
{
    const QSettings file(path, QSettings::IniFormat);
    QDataStream stream(file.value(QLatin1String("Cookie/cookies")).toByteArray());
    qint32 promised = 0;
    stream >> promised;
    QString dir = QFileInfo(path).path() + QLatin1Char('/');
    const auto read = TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 1).size();
    if (file.status() == QSettings::NoError && stream.status() == QDataStream::Ok && promised == read)
        return QString();
    return tr("%1 is damaged: the %2 cookies that can be read are kept, the others are lost.")
        .arg(path)
        .arg(read);
}

} // namespace

QString damageOf(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return QString();
    if (!file.open(QIODevice::ReadOnly))
        return tr("%1 cannot be read: %2. What it holds is not here.").arg(path, file.errorString());
    return path.endsWith(QLatin1String(".ini")) ? damageOfCookies(path) : damageOfDocument(file);
}

Copy keepCopy(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {QString(), file.errorString()};
    const QByteArray bytes = file.readAll();
    QString copyPath;
    for (int number = 1; number <= MAXIMUM_COPIES; ++number) {
        copyPath = path + QLatin1String(".damaged");
        if (number > 1)
            copyPath += QString::fromLatin1("-%1").arg(number);
        QFile earlier(copyPath);
        if (!earlier.open(QIODevice::ReadOnly))
            break;
        if (earlier.readAll() == bytes)
            return {copyPath, QString()}; // it was damaged the last time, too, and nothing was saved since
    }
    // There may be passwords in it, and others may look into a directory that was there before.
    QSaveFile copy(copyPath);
    if (!copy.open(QIODevice::WriteOnly) || !copy.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        copy.write(bytes) != bytes.size() || !copy.commit())
        return {QString(), copy.errorString()};
    return {copyPath, QString()};
}

} // namespace Tlv
