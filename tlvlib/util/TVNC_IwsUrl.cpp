#include "tlvlib/util/TVNC_IwsUrl.h"

#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_memory.h"

namespace {

bool isSameHost(const QString& host, const QString& other)
{
    return host.compare(other, Qt::CaseInsensitive) == 0;
}

bool isGivenHost(const QString& host, const char* pc_given)
{
    return pc_given && *pc_given && isSameHost(host, TVNG_fromCString(pc_given));
}

bool isDeviceHost(const QString& host)
{
    if (isSameHost(host.left(8), QLatin1String("127.0.0.")))
        return true;
    return isSameHost(host, QLatin1String("localhost"));
}

} // namespace

bool TVNC_IwsUrl::IsIwsContents(const QUrl& url, char useFirstHost, char* firstHost, char* secondHost)
{
    bool b_device = false;
    TVNG_hasMemoryFor([&] {
        const QString host = url.host();
        b_device = isDeviceHost(host) || (useFirstHost == 1 && isGivenHost(host, firstHost)) ||
                   isGivenHost(host, secondHost);
    });
    return b_device;
}
