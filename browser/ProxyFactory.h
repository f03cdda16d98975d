#ifndef TLVLIB_BROWSER_PROXYFACTORY_H
#define TLVLIB_BROWSER_PROXYFACTORY_H

#include <tlvlib/browser/browser_export.h>

#include <QtNetwork/QNetworkProxyFactory>

namespace Tlv {

/**
 * The proxy as the device's preferences have it at the moment of the question:
 *
 * - "https" goes through the proxy's port for HTTPS, as a tunnel; all else through that for HTTP.
 * - No proxy is used for content of the device itself (TVNC_IwsUrl), when the preference is off, and when
 *   there is no host name or the port is none: only the numbers from 1 to 65535 are ports.
 * - No proxy is used for the domains of the preference. They are separated by commas, semicolons or blanks.
 *   "example.com" and ".example.com" are the same: the host of that name and every host whose name ends in
 *   ".example.com". Letter case does not count. There are no wildcards.
 */
class TLVLIB_BROWSER_EXPORT ProxyFactory : public QNetworkProxyFactory
{
public:
    /// The one proxy for a connection.
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override;

    /// The proxy for an address.
    static QNetworkProxy proxyFor(const QUrl& url);
};

} // namespace Tlv

#endif
