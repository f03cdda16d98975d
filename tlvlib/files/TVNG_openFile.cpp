#include "tlvlib/files/TVNG_openFile.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/util/TVNG_literal.h"

#include <QtCore/QFile>

QString TVNG_pathIn(const QString& dir, const char* pc_name)
{
    return dir + TVNG_literal(pc_name);
}

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

bool TVNG_openForWriting(TVNC_SavedFile& file)
{
    if (file.open())
        return true;
    TVNG_DebugPrint(2, "TVNC_XMLWriter::write file open error!");
    return false;
}

bool TVNG_finishWriting(TVNC_SavedFile& file)
{
    if (file.commit())
        return true;
    TVNG_DebugPrint(2, "TVNC_XMLWriter::write file replace error!");
    return false;
}
