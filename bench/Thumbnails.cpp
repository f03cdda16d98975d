#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>

#include <malloc.h>

namespace {

const int COUNT = 500;
const int SIZE = 20 * 1024;

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

/// Reads, encodes and writes the same bytes into one file, with no more around them than it takes.
void packBare(const QString& dir, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    for (const QString& name : QDir(dir).entryList({"*.png"}, QDir::Files, QDir::Name | QDir::Reversed)) {
        file.write("    <image src=\"" + name.toUtf8() + "\"><![CDATA[");
        file.write(readAll(dir + name).toBase64());
        file.write("]]></image>\n");
    }
}

void unpackBare(const QString& path, const QString& dir)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        const auto start = line.indexOf("<![CDATA[") + 9;
        const auto name = line.indexOf("src=\"") + 5;
        if (start < 9 || name < 5)
            continue;
        writeAll(dir + QString::fromUtf8(line.mid(name, line.indexOf('"', name) - name)),
                 QByteArray::fromBase64(line.mid(start, line.indexOf("]]>") - start)));
    }
}

void pack(QByteArray dir, QByteArray path)
{
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(dir.data(), path.data());
}

void unpack(QByteArray path, QByteArray dir)
{
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailXMLToPng(path.data(), dir.data());
}

/// Resident kilobytes: now ("VmRSS"), or the most since forgetPeak() ("VmHWM").
long resident(const char* field)
{
    for (const QByteArray& line : readAll("/proc/self/status").split('\n')) {
        if (line.startsWith(field))
            return line.mid(static_cast<int>(qstrlen(field)) + 1).simplified().split(' ').first().toLong();
    }
    return 0;
}

void forgetPeak()
{
    writeAll("/proc/self/clear_refs", "5");
}

template <typename Call>
double peakOf(Call call)
{
    release();
    malloc_trim(0);
    const long before = resident("VmRSS");
    forgetPeak();
    call();
    const double ratio = static_cast<double>(resident("VmHWM") - before) * 1024 / (COUNT * SIZE);
    release();
    return ratio;
}

/// The pictures' directory, made and filled.
QString makePictures(const QString& parent)
{
    const QString dir = parent + "pictures/";
    QDir().mkpath(dir);
    QByteArray bytes(SIZE, Qt::Uninitialized);
    for (int i = 0; i < COUNT; ++i) {
        for (int j = 0; j < SIZE; ++j)
            bytes[j] = static_cast<char>((i * 7919 + j * j * 31 + (j >> 3)) & 0xFF);
        writeAll(dir + QString("%1.png").arg(i, 6, 10, QChar('0')), bytes);
    }
    return dir;
}

} // namespace

void addThumbnails(const QString& parent)
{
    const QString path = parent + "pack.xml";
    const QString target = parent + "unpacked/";
    const auto makePack = [parent, path, target] {
        QDir().mkpath(target);
        pack(makePictures(parent).toLatin1(), path.toLatin1());
    };
    addRow("pack 500 pictures of 20 KB", 1.3, [parent, path] {
        const QString dir = makePictures(parent);
        return Works{{"bare", {[dir, path] { packBare(dir, path); }, {}}},
                     {"tlvlib", {[dir, path] { pack(dir.toLatin1(), path.toLatin1()); }, release}}};
    });
    addRow("unpack 500 pictures of 20 KB", 1.3, [path, target, makePack] {
        makePack();
        return Works{{"bare", {[path, target] { unpackBare(path, target); }, {}}},
                     {"tlvlib", {[path, target] { unpack(path.toLatin1(), target.toLatin1()); }, release}}};
    });
    addRatios({"peak memory of pack, of the pictures' bytes"}, 3, [parent, path] {
        const QString dir = makePictures(parent);
        return std::vector<double>{peakOf([&] { pack(dir.toLatin1(), path.toLatin1()); })};
    });
    addRatios({"peak memory of unpack, of the pictures' bytes"}, 3, [path, target, makePack] {
        makePack();
        return std::vector<double>{peakOf([&] { unpack(path.toLatin1(), target.toLatin1()); })};
    });
}
