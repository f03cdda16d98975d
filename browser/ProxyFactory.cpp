#include <tlvlib/browser/ProxyFactory.h>

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/util/TVNC_IwsUrl.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>

namespace Tlv {

namespace {

TVNC_BrowserCommonSetting& preferences()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

/// Whether a host is one of the domains for which the proxy is not used, or in one of them.
bool isBypassed(const QString& host)
{
    static const QRegularExpression separators(QLatin1String("[,;\\s]+"));
    QString domains;
    preferences().getNoProxyDomainStr(&domains);
    for (QString domain : domains.split(separators, Qt::SkipEmptyParts)) {
        if (domain.startsWith(QLatin1Char('.')))
            domain.remove(0, 1);
        if (domain.isEmpty())
            continue;
        if (host.compare(domain, Qt::CaseInsensitive) == 0 ||
            host.endsWith(QLatin1Char('.') + domain, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

QList<QNetworkProxy> ProxyFactory::queryProxy(const QNetworkProxyQuery& query)
{
    return {proxyFor(query.url())};
}

QNetworkProxy ProxyFactory::proxyFor(const QUrl& url)
{
    if (!preferences().getUseProxyInfo() || TVNC_IwsUrl::IsIwsContents(url, 0, nullptr, nullptr) ||
        isBypassed(url.host()))
        return QNetworkProxy::NoProxy;
    const bool isSecure = url.scheme() == QLatin1String("https");
    QString host;
    QString port;
    preferences().getProxyServerStr(&host);
    if (isSecure)
        preferences().getProxyHttpsPortStr(&port);
    else
        preferences().getProxyHttpPortStr(&port);
    if (host.isEmpty() || port.toUShort() == 0)
        return QNetworkProxy::NoProxy;
    return QNetworkProxy(isSecure ? QNetworkProxy::HttpProxy : QNetworkProxy::HttpCachingProxy, host,
                         port.toUShort());
}

} // namespace Tlv
