#ifndef TLVLIB_XML_TVNG_FILES_H
#define TLVLIB_XML_TVNG_FILES_H

#include <QtCore/QString>

class TVNC_XMLNode;
class TVNC_XMLReader;
class TVNC_XMLWriter;

/**
 * @file
 * Reading and writing files as TVNC_XMLReader::read() and TVNC_XMLWriter::write() do, their log lines
 * included. Without a reader or writer of the caller's, whose state could be asked for afterwards, documents
 * in the library's own form take a faster way. Internal to the library; not installed.
 */

TVNC_XMLNode* TVNG_readFile(QString& path, TVNC_XMLReader* pc_reader);

bool TVNG_writeFile(QString& path, TVNC_XMLNode* pc_root, TVNC_XMLWriter* pc_writer);

#endif
