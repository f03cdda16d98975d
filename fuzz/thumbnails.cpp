/*
 * A pack of thumbnails of any bytes, unpacked into a directory of its own. Names may lead anywhere, which is
 * the caller's to look at, so those with a "/" are left out here; then all is packed and unpacked again.
 */

#include "fuzz/Fuzz.h"

#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>

#include <QtCore/QDir>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const int rootStart = bytes.indexOf("src");
    for (int i = rootStart; i >= 0; i = bytes.indexOf("src", i + 3)) {
        // Neither "/" nor what an entity might make one of.
        const int end = bytes.indexOf('>', i);
        for (int j = i; j < (end < 0 ? bytes.size() : end); ++j) {
            if (bytes.at(j) == '/' || bytes.at(j) == '&')
                bytes[j] = 'x';
        }
    }
    if (bytes.contains("<!") && !bytes.contains("<![CDATA["))
        return 0;
    auto* converter = TVNC_ThumbnailConverter::getInstance();
    const QString target = scratchDir() + "pictures/";
    QDir(target).removeRecursively();
    QDir().mkpath(target);
    const QString pack = scratchDir() + "pack.xml";
    writeFile(pack, bytes);
    QByteArray packPath = pack.toLatin1();
    QByteArray targetPath = target.toLatin1();
    converter->convertThumbnailXMLToPng(packPath.data(), targetPath.data());

    converter->convertThumbnailPngToXML(targetPath.data(), packPath.data());
    const QByteArray first = readFile(pack);
    converter->convertThumbnailXMLToPng(packPath.data(), targetPath.data());
    converter->convertThumbnailPngToXML(targetPath.data(), packPath.data());
    MUST(readFile(pack) == first);
    release();
    return 0;
}
