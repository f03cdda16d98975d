#ifndef TLVLIB_UTIL_TVNG_LITERAL_H
#define TLVLIB_UTIL_TVNG_LITERAL_H

#include "tlvlib/util/QEXC_TextCodec.h"

/**
 * A name or word of the system's own. When memory runs out, this throws: a name that was empty for want of
 * memory would lead to other files and elements. Internal to the library; not installed.
 *
 * @param pc_text not empty
 */
inline QString TVNG_literal(const char* pc_text)
{
    const QString text = QEXC_TextCodec::fromSJIS(pc_text);
    if (text.isEmpty())
        qBadAlloc();
    return text;
}

#endif
