#ifndef TLVLIB_XML_TVNC_XMLINPUT_H
#define TLVLIB_XML_TVNC_XMLINPUT_H

#include "tlvlib/xml/TVNC_MarkupGuard.h"

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QScopedPointer>
#include <QtCore/QString>

class QTextDecoder;

/**
 * The bytes of an XML document on their way to Qt's stream reader. Internal to the library; not installed.
 *
 * The stream reader alone would lose data or be led astray by some documents, and not by the same ones in
 * every version of Qt. This filter ends them at the exact place, so that what stands before it is read:
 *
 *  - before a byte that is not of the document's encoding. The stream reader would give up on all of its read
 *    buffer, up to 8192 bytes;
 *  - after the first character that XML does not have, which goes out as U+0001 and is an error everywhere;
 *  - before a document type declaration that must not be parsed, see TVNC_MarkupGuard.
 *
 * A document in another encoding than UTF-8, as its byte order mark or its XML declaration tells, goes out as
 * UTF-8, with the name of the encoding blanked in the declaration.
 */
class TVNC_XMLInput : public QIODevice
{
public:
    /// Becomes a child of @a source, which must be open for reading, and opens itself.
    explicit TVNC_XMLInput(QIODevice& source);
    ~TVNC_XMLInput();

    bool isSequential() const override;

protected:
    qint64 readData(char* pc_data, qint64 maxSize) override;
    qint64 writeData(const char* pc_data, qint64 size) override;

private:
    QByteArray readSource();
    QByteArray begin();
    QByteArray next();
    QByteArray decode(const QByteArray& bytes);
    void produce();

    QIODevice& source_;
    TVNC_MarkupGuard guard_;
    QScopedPointer<QTextDecoder> decoder_; ///< null for a document in UTF-8
    QString str_Surrogate;                 ///< first half of a character whose second half is not decoded yet
    QByteArray str_Tail;                   ///< first bytes of a UTF-8 sequence whose rest is not read yet
    QByteArray str_Output;                 ///< checked bytes on their way out
    int si_OutputPos;                      ///< how many of them are gone
    bool b_Begun;
    bool b_Ended; ///< nothing follows what is in str_Output
};

#endif
