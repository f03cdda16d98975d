#ifndef TLVLIB_FORMAT_TVNC_XMLINPUT_H
#define TLVLIB_FORMAT_TVNC_XMLINPUT_H

#include "tlvlib/format/TVNC_MarkupGuard.h"
#include "tlvlib/format/TVNC_XMLDecoder.h"

#include <QtCore/QIODevice>

/**
 * The bytes of an XML document on their way to Qt's stream reader. Internal to the library; not installed.
 *
 * By itself, the stream reader loses data of some documents and misreads others, and each version of Qt does
 * so with other ones. This filter ends such a document at the exact place, so that the reader reads what
 * stands before it:
 *
 *  - before a byte that is not of the document's encoding, see TVNC_XMLDecoder. The stream reader would give
 *    up on all of its read buffer, up to 8192 bytes;
 *  - after the first character that XML does not have, which goes out as an error, see TVNC_XMLCharacters;
 *  - before markup that must not be parsed, see TVNC_MarkupGuard.
 */
class TVNC_XMLInput : public QIODevice
{
public:
    /// Opens itself. @a source must be open for reading, and live as long as anything is read from this.
    explicit TVNC_XMLInput(QIODevice& source);

    bool isSequential() const override;

protected:
    qint64 readData(char* pc_data, qint64 maxSize) override;
    qint64 writeData(const char* pc_data, qint64 size) override;

private:
    void produce();
    QByteArray readSource();

    QIODevice& source_;
    TVNC_XMLDecoder decoder_;
    TVNC_MarkupGuard guard_;
    QByteArray tail_;    ///< first bytes of a UTF-8 sequence whose rest is not read yet
    QByteArray output_;  ///< checked bytes on their way out
    int si_outputTaken_; ///< how many of them are gone
    bool b_ended_;       ///< nothing follows what is in output_
};

#endif
