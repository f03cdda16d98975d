#include "tlvlib/files/TVNG_openFile.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"

#include <QtCore/QFile>

bool TVNG_openForReading(QFile& file)
{
    // By the name: an object of Qt 5 takes a link that leads nowhere for a file that exists.
    if (!QFile::exists(file.fileName())) {
        TVNG_DebugPrint(2, "TVNC_XMLReader::read file not exist!");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        TVNG_DebugPrint(2, "TVNC_XMLReader::read file open error!");
        return false;
    }
    return true;
}

bool TVNG_openForWriting(QFile& file)
{
    if (!file.open(QIODevice::WriteOnly)) {
        TVNG_DebugPrint(2, "TVNC_XMLWriter::write file open error!");
        return false;
    }
    return true;
}
