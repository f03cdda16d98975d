#ifndef TLVLIB_UTIL_QEXC_TEXTCODEC_H
#define TLVLIB_UTIL_QEXC_TEXTCODEC_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QString>

/**
 * Decoding of Shift-JIS text.
 *
 * The stores pass every literal element, attribute and file name through fromSJIS(); for ASCII literals that
 * changes nothing. The codec is Qt's own "SJIS", looked up once when the library is loaded. Where Qt has no
 * such codec, text is read as Latin-1, which keeps ASCII text right.
 *
 * @code
 * const QString test = QEXC_TextCodec::fromSJIS("\x83\x65\x83\x58\x83\x67"); // U+30C6 U+30B9 U+30C8
 * @endcode
 */
class TLVLIB_EXPORT QEXC_TextCodec
{
public:
    /**
     * @param text Shift-JIS bytes up to a terminating zero; null counts as empty.
     * @return the decoded text; empty when memory runs out. Bytes that are not Shift-JIS become what Qt's
     * codec makes of them.
     *
     * May be called from any thread. Logs nothing.
     */
    static QString fromSJIS(const char* text);
};

#endif
