/*
 * Any bytes as an address for the local-content check, and as Shift-JIS.
 */

#include "fuzz/Fuzz.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/util/QEXC_TextCodec.h>
#include <tlvlib/util/TVNC_IwsUrl.h>

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = QEXC_TextCodec::fromSJIS(bytes.constData());
    MUST(text.size() <= bytes.size());
    MUST(QEXC_TextCodec::fromSJIS(bytes.constData()) == text);

    for (const QUrl& url :
         {QUrl(QString::fromUtf8(bytes)), QUrl::fromEncoded(bytes), QUrl("http://" + text + '/')}) {
        const bool isLocal = TVNC_IwsUrl::IsIwsContents(url, 0, nullptr, nullptr);
        MUST(!isLocal || !url.host().isEmpty());
        // More hosts make more addresses local, never fewer.
        MUST(!isLocal || TVNC_IwsUrl::IsIwsContents(url, 1, bytes.data(), bytes.data()));
    }

    const QString unicode = QString::fromUtf8(bytes);
    const QString unmarked = QString::fromUtf8(unicode.toUtf8()); // without a byte order mark in front
    for (int max : {1, 2, 3, 7, 100}) {
        const QString clipped = TVNC_BookmarksSetting::getInstance()->ClipString(unicode, max);
        MUST(clipped.toUtf8().size() <= max);
        MUST(unmarked.startsWith(clipped));
    }
    return 0;
}
