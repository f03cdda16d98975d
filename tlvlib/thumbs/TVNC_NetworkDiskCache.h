#ifndef TLVLIB_THUMBS_TVNC_NETWORKDISKCACHE_H
#define TLVLIB_THUMBS_TVNC_NETWORKDISKCACHE_H

#include <tlvlib/util/tlvlib_export.h>

#include <QtCore/QtGlobal>

/**
 * Empties the browser's disk cache in the directory "/ata07/Talvenor/cache/", which is fixed. The browser's
 * own QNetworkDiskCache has to use that directory, too; one that is open there at the time is not told.
 */
class TLVLIB_EXPORT TVNC_NetworkDiskCache
{
public:
    /// The one object of the process, made on first use.
    static TVNC_NetworkDiskCache* getInstance();

    /**
     * Removes every file whose name ends in ".d", at any depth below the directory, and nothing else: that is
     * what a QNetworkDiskCache takes for its own. A missing directory is created where that is allowed, and
     * is no failure.
     *
     * Logs at level 3 "[TVNC_NetworkDiskCache::clearDiskCache]".
     */
    void clear();

private:
    Q_DISABLE_COPY(TVNC_NetworkDiskCache)

    TVNC_NetworkDiskCache();
    ~TVNC_NetworkDiskCache();
};

#endif
