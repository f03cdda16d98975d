#ifndef TLVLIB_FILES_TVNG_OPENFILE_H
#define TLVLIB_FILES_TVNG_OPENFILE_H

class QFile;

/**
 * @file
 * Opening the files of documents, with the log lines that tell when that fails. The texts name reader and
 * writer, whoever opens the file: log filters on the devices look for them. Internal to the library; not
 * installed.
 */

/**
 * Opens a file for reading.
 *
 * @return false when there is no such file, logged at level 2 as "TVNC_XMLReader::read file not exist!" (a
 *         link that leads nowhere is no file), and when it cannot be opened, logged at level 2 as
 *         "TVNC_XMLReader::read file open error!"
 */
bool TVNG_openForReading(QFile& file);

/**
 * Opens a file for writing, and empties it.
 *
 * @return false when it cannot be opened, logged at level 2 as "TVNC_XMLWriter::write file open error!"
 */
bool TVNG_openForWriting(QFile& file);

#endif
