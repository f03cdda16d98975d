#ifndef TLVLIB_XML_TVNC_XMLCHARACTERS_H
#define TLVLIB_XML_TVNC_XMLCHARACTERS_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Which characters an XML 1.0 document can hold: all of Unicode but the control characters (tab, line feed
 * and carriage return are allowed), lone halves of surrogate pairs, U+FFFE and U+FFFF. Internal to the
 * library; not installed.
 */
class TVNC_XMLCharacters
{
public:
    /// The text without what XML cannot hold. Almost every text comes back as it is, shared.
    static QString writable(const QString& text);

    /// How many units from the front are printable ASCII and blanks, to within three.
    static int plainRun(const QChar* pc_text, int si_size);

    /// The same for bytes, exactly.
    static int plainRun(const char* pc_bytes, int si_size);

    /// What a look at a piece of a document found.
    struct Check
    {
        int si_admitted;      ///< bytes that may be parsed
        int si_cutOff;        ///< bytes behind them that begin a sequence whose rest is yet to come
        bool b_ended;         ///< whether the document ends with what is admitted
        bool b_noncharacters; ///< whether withoutNoncharacters() would change it
    };

    /**
     * Finds, in a piece of a document, the first byte that is not UTF-8, and the first character that XML
     * cannot hold. Such a character becomes U+0001, an error on every version of Qt, and is the last one
     * admitted.
     */
    static Check check(QByteArray& piece);

    /**
     * Puts U+FFFD in the place of the noncharacters of Unicode, U+FDD0 to U+FDEF and the last two of every
     * plane, for a decoder that takes them for errors. The piece must be UTF-8.
     */
    static QByteArray withoutNoncharacters(const QByteArray& piece);
};

#endif
