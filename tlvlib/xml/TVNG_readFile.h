#ifndef TLVLIB_XML_TVNG_READFILE_H
#define TLVLIB_XML_TVNG_READFILE_H

#include <QtCore/QString>

class TVNC_XMLNode;
class TVNC_XMLReader;

/**
 * Reads a file as TVNC_XMLReader::read() does, its log lines included. Internal to the library; not
 * installed.
 *
 * @param pc_reader reads the file when its state is asked for afterwards. Null reads it the fastest way,
 * which is another one for documents in the library's own form.
 */
TVNC_XMLNode* TVNG_readFile(QString& path, TVNC_XMLReader* pc_reader);

#endif
