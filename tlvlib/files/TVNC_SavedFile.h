#ifndef TLVLIB_FILES_TVNC_SAVEDFILE_H
#define TLVLIB_FILES_TVNC_SAVEDFILE_H

#include "tlvlib/files/TVNC_WholeFile.h"

#include <QtCore/QFile>
#include <QtCore/QScopedPointer>

/**
 * The file that a save writes, in the mode of its moment: in place, with errors after the opening unnoticed,
 * or whole. Internal to the library; not installed.
 */
class TVNC_SavedFile
{
public:
    explicit TVNC_SavedFile(const QString& path);

    /// False when the file may not be written.
    bool open();

    /// Where to write to, once it is open.
    QIODevice& device();

    /// Ends the save. Without it, a file that is replaced whole stays as it was. False when the save failed.
    bool commit();

private:
    Q_DISABLE_COPY(TVNC_SavedFile)

    QFile inPlace_;
    QScopedPointer<TVNC_WholeFile> whole_; ///< null in the default mode, otherwise used instead
};

#endif
