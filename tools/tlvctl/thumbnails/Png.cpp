#include "tools/tlvctl/thumbnails/Png.h"

#include "tools/tlvctl/records/Document.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>

namespace {

const QByteArray SIGNATURE("\x89PNG\r\n\x1A\n", 8);

/// The checksum of a chunk's type and data, CRC-32.
quint32 checksum(const char* data, qsizetype size)
{
    quint32 crc = 0xFFFFFFFF;
    for (qsizetype i = 0; i < size; ++i) {
        crc ^= static_cast<uchar>(data[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

quint32 numberAt(const QByteArray& bytes, qsizetype at)
{
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

} // namespace

QString problemWithPng(const QString& path)
{
    // A device may have no end.
    const QString place = problemWithPlace(path);
    if (!place.isEmpty())
        return place.toLower();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "cannot be read";
    const QByteArray bytes = file.readAll();
    if (bytes.isEmpty())
        return "is empty";
    if (!bytes.startsWith(SIGNATURE))
        return "is no PNG";
    qsizetype at = SIGNATURE.size();
    while (bytes.size() - at >= 12) {
        const quint32 length = numberAt(bytes, at);
        if (length > static_cast<quint32>(bytes.size() - at - 12))
            return "is cut off";
        const qsizetype behind = at + 8 + static_cast<qsizetype>(length);
        if (checksum(bytes.constData() + at + 4, behind - at - 4) != numberAt(bytes, behind))
            return "is damaged";
        if (qstrncmp(bytes.constData() + at + 4, "IEND", 4) == 0)
            return behind + 4 == bytes.size() ? QString() : "has something behind its end";
        at = behind + 4;
    }
    return "is cut off";
}
