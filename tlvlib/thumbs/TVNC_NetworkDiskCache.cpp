#include "tlvlib/thumbs/TVNC_NetworkDiskCache.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/util/TVNG_literal.h"

#include <QtNetwork/QNetworkDiskCache>

TVNC_NetworkDiskCache::TVNC_NetworkDiskCache() {}

TVNC_NetworkDiskCache::~TVNC_NetworkDiskCache() {}

TVNC_NetworkDiskCache* TVNC_NetworkDiskCache::getInstance()
{
    static TVNC_NetworkDiskCache instance;
    return &instance;
}

void TVNC_NetworkDiskCache::clear()
{
    // The text keeps the operation's older name.
    TVNG_DebugPrint(3, "[TVNC_NetworkDiskCache::clearDiskCache]");
    TVNG_ifMemory([] {
        QNetworkDiskCache cache;
        cache.setCacheDirectory(TVNG_literal("/ata07/Talvenor/cache/"));
        cache.clear();
    });
}
