#ifndef TLVLIB_UTIL_TVNC_IWSURL_H
#define TLVLIB_UTIL_TVNC_IWSURL_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QUrl>

/**
 * Recognises URLs that point at content which the device serves itself. A browser loads such pages directly,
 * never through a proxy.
 */
class TLVLIB_EXPORT TVNC_IwsUrl
{
public:
    /**
     * Tells whether a URL's host is local content. Every comparison takes whole host names and ignores
     * letter case, except that any host which begins with the eight characters "127.0.0." counts.
     *
     * @param url          the URL; one without a host is never local content
     * @param useFirstHost @a firstHost is consulted only when this is exactly 1
     * @param firstHost    a zero-terminated host name, or null or empty for none
     * @param secondHost   a zero-terminated host name, or null or empty for none; always consulted
     * @return true for "127.0.0.*", for "localhost", and for the given hosts
     *
     * Host names are read as the device reads C strings: with the codec set for C strings in Qt 4, as
     * Latin-1 otherwise. May be called from any thread. Logs nothing.
     */
    static bool IsIwsContents(const QUrl& url, char useFirstHost, char* firstHost, char* secondHost);
};

#endif
