#include "tlvlib/files/TVNC_SavedFile.h"

#include "tlvlib/files/TVNG_saveMode.h"

TVNC_SavedFile::TVNC_SavedFile(const QString& path)
    : inPlace_(path), whole_(TVNG_isSafeSave() ? new TVNC_WholeFile(path) : nullptr)
{
}

bool TVNC_SavedFile::open()
{
    return device().open(QIODevice::WriteOnly);
}

QIODevice& TVNC_SavedFile::device()
{
    return whole_ ? static_cast<QIODevice&>(*whole_) : inPlace_;
}

bool TVNC_SavedFile::commit()
{
    if (whole_)
        return whole_->commit();
    inPlace_.close();
    return true;
}
