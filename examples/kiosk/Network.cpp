#include "Network.h"

#include <QtCore/QFileInfo>
#include <QtNetwork/QNetworkDiskCache>
#include <QtNetwork/QSslConfiguration>

using Tlv::Profile;

namespace {

/// The only directory that the library empties.
const char CACHE_DIR[] = "/ata07/Talvenor/cache/";

} // namespace

Network::Network(Profile& profile)
{
    profile.attach(this);
}

QString Network::applyPreferences()
{
    TVNC_BrowserCommonSetting& preferences = Profile::devicePreferences();

    // What can be had of the old protocols depends on the machine's TLS library: SSL 3.0 is gone from most.
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    if (preferences.getUseSSL30())
        tls.setProtocol(QSsl::AnyProtocol);
    else
        tls.setProtocol(preferences.getUseTLS10() ? QSsl::TlsV1_0OrLater : QSsl::TlsV1_2OrLater);
    QSslConfiguration::setDefaultConfiguration(tls);

    if (!preferences.getUseCacheInfo()) {
        setCache(nullptr);
        return QString();
    }
    if (!QFileInfo(CACHE_DIR).isWritable())
        return tr("No disk cache: make the directory %1.").arg(CACHE_DIR);
    auto* diskCache = new QNetworkDiskCache; // of the manager, from now on
    diskCache->setCacheDirectory(CACHE_DIR);
    setCache(diskCache);
    return QString();
}

QNetworkReply* Network::createRequest(Operation operation, const QNetworkRequest& request, QIODevice* data)
{
    QNetworkRequest changed = request;
    // Qt speaks HTTP/1.1 alone; without its lasting connections, old proxies get along with it.
    const bool isProxied = Tlv::ProxyFactory::proxyFor(request.url()).type() != QNetworkProxy::NoProxy;
    if (isProxied && !Profile::devicePreferences().getUseProxyHttpInfo())
        changed.setRawHeader("Connection", "close");
    return QNetworkAccessManager::createRequest(operation, changed, data);
}
