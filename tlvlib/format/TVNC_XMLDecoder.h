#ifndef TLVLIB_FORMAT_TVNC_XMLDECODER_H
#define TLVLIB_FORMAT_TVNC_XMLDECODER_H

#include <QtCore/QByteArray>
#include <QtCore/QScopedPointer>
#include <QtCore/QString>

class QTextDecoder;

/**
 * Tells the encoding of a document, and makes UTF-8 of any other. Internal to the library; not installed.
 *
 * The encoding is what the byte order mark tells or, without one, the XML declaration. A document in UTF-8
 * passes as it is, unchecked. From any other the name of the encoding is blanked in the declaration, so that
 * whoever reads the result takes it for the UTF-8 that it is. An unknown encoding passes, too: it is the
 * parser's to report.
 *
 * The document ends before the first byte that is not of its encoding, and at its beginning when the
 * declaration names an encoding in a way that different parsers might take for different ones.
 */
class TVNC_XMLDecoder
{
public:
    TVNC_XMLDecoder();
    ~TVNC_XMLDecoder();

    /// The next bytes of the document, as far as they make whole characters. The first ones must hold all of
    /// the declaration.
    QByteArray decode(const QByteArray& bytes);

    /// Whether nothing may follow what was decoded last.
    bool hasEnded() const { return b_ended_; }

private:
    Q_DISABLE_COPY(TVNC_XMLDecoder)

    QByteArray decodeHead(const QByteArray& head);
    QByteArray toUtf8(const QByteArray& bytes);
    QByteArray end();

    QScopedPointer<QTextDecoder> decoder_; ///< null for a document in UTF-8
    QString surrogate_;                    ///< first half of a character whose second half is yet to come
    bool b_begun_;
    bool b_ended_;
};

#endif
