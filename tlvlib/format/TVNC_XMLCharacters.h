#ifndef TLVLIB_FORMAT_TVNC_XMLCHARACTERS_H
#define TLVLIB_FORMAT_TVNC_XMLCHARACTERS_H

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

    /// Whether all bytes are ASCII and none is a control character.
    static bool arePrintable(const char* pc_bytes, int si_size);

    enum { NO_SEQUENCE = 0, CUT_OFF = -1 };

    /**
     * The length in bytes of the UTF-8 sequence at @a pc_bytes, of which @a si_size bytes, at least one, are
     * there; NO_SEQUENCE when it is none (overlong forms, surrogates and values above U+10FFFF are none),
     * CUT_OFF when it may become one with the bytes that follow.
     */
    static int sequenceLength(const char* pc_bytes, int si_size);

    /// Whether a complete sequence is a noncharacter of Unicode: U+FDD0 to U+FDEF, or one of the last two of
    /// a plane.
    static bool isNoncharacter(const char* pc_bytes, int si_length);

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

    /// Puts U+FFFD in the place of noncharacters, for a decoder that takes them for errors. The piece must be
    /// UTF-8.
    static QByteArray withoutNoncharacters(const QByteArray& piece);
};

#endif
