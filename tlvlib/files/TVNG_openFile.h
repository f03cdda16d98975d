#ifndef TLVLIB_FILES_TVNG_OPENFILE_H
#define TLVLIB_FILES_TVNG_OPENFILE_H

#include <QtCore/QString>

class QFile;
class TVNC_SavedFile;

/**
 * @file
 * Where the files of documents are, and how they are opened, with the log lines that tell when that fails.
 * The texts name reader and writer, whoever opens the file: log filters on the devices look for them.
 * Internal to the library; not installed.
 */

/// The path of a file; the directory ends in "/", the name is a literal.
QString TVNG_pathIn(const QString& dir, const char* pc_name);

/**
 * Opens a file for reading.
 *
 * @return false when there is no such file, logged at level 2 as "TVNC_XMLReader::read file not exist!" (a
 *         link that leads nowhere is no file), and when it cannot be opened, logged at level 2 as
 *         "TVNC_XMLReader::read file open error!"
 */
bool TVNG_openForReading(QFile& file);

/**
 * Opens a file that is to be saved.
 *
 * @return false when it may not be written, logged at level 2 as "TVNC_XMLWriter::write file open error!"
 */
bool TVNG_openForWriting(TVNC_SavedFile& file);

/**
 * Ends the save of a file.
 *
 * @return false when it failed and the file is as it was, logged at level 2 as "TVNC_XMLWriter::write file
 * replace error!"; never where files are saved in place
 */
bool TVNG_finishWriting(TVNC_SavedFile& file);

#endif
