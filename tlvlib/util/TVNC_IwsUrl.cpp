#include "tlvlib/util/TVNC_IwsUrl.h"

#include "tlvlib/util/TVNG_QtVersion.h"

namespace {

bool isSameHost(const QString& host, const QString& other)
{
    return host.compare(other, Qt::CaseInsensitive) == 0;
}

bool isGivenHost(const QString& host, const char* pc_given)
{
    return pc_given && *pc_given && isSameHost(host, TVNG_fromCString(pc_given));
}

} // namespace

bool TVNC_IwsUrl::IsIwsContents(const QUrl& url, char useFirstHost, char* firstHost, char* secondHost)
{
    const QString host = url.host();
    if (isSameHost(host.left(8), QLatin1String("127.0.0.")))
        return true;
    if (isSameHost(host, QLatin1String("localhost")))
        return true;
    if (useFirstHost == 1 && isGivenHost(host, firstHost))
        return true;
    return isGivenHost(host, secondHost);
}
