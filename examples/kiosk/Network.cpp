#include "Network.h"

#include <tlvlib/util/TVNC_IwsUrl.h>

#include <QtCore/QEventLoop>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkDiskCache>
#include <QtNetwork/QNetworkProxyFactory>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QSslConfiguration>

#include <memory>

namespace {

const char TRIED[] = "kioskLoginTried";

/// How long to wait for a server's answer before a login is taken for one of the basic scheme.
const int PROBE_MS = 10000;

/// Asks proxyFor() about every connection.
class ProxyFactory : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override
    {
        return {proxyFor(query.url())};
    }
};

/// Whether a host is one of the domains for which the proxy is not used, or in one of them.
bool isBypassed(const QString& host)
{
    QString domains;
    BrowserState::common().getNoProxyDomainStr(&domains);
    for (QString domain : domains.split(QRegularExpression("[,; ]"), Qt::SkipEmptyParts)) {
        if (domain.startsWith('.'))
            domain.remove(0, 1);
        if (host.compare(domain, Qt::CaseInsensitive) == 0 ||
            host.endsWith('.' + domain, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

/// The scheme of a challenge, in the code of the store.
unsigned char schemeOf(const QByteArray& challenge)
{
    const QByteArray text = challenge.toLower();
    if (text.startsWith("digest") || text.contains("\ndigest"))
        return 1;
    return text.startsWith("ntlm") || text.contains("\nntlm") ? 2 : 0;
}

} // namespace

QNetworkProxy proxyFor(const QUrl& url)
{
    TVNC_BrowserCommonSetting& preferences = BrowserState::common();
    if (!preferences.getUseProxyInfo() || TVNC_IwsUrl::IsIwsContents(url, 0, nullptr, nullptr) ||
        isBypassed(url.host()))
        return QNetworkProxy::NoProxy;
    const bool isSecure = url.scheme() == "https";
    QString host;
    QString port;
    preferences.getProxyServerStr(&host);
    if (isSecure)
        preferences.getProxyHttpsPortStr(&port);
    else
        preferences.getProxyHttpPortStr(&port);
    if (host.isEmpty() || port.toUShort() == 0)
        return QNetworkProxy::NoProxy;
    return QNetworkProxy(isSecure ? QNetworkProxy::HttpProxy : QNetworkProxy::HttpCachingProxy, host,
                         port.toUShort());
}

Network::Network(BrowserState& state) : state_(state)
{
    setCookieJar(&state.cookies);
    state.cookies.setParent(nullptr); // the jar stays the state's
    setProxyFactory(new ProxyFactory);
    connect(this, &QNetworkAccessManager::authenticationRequired, this, &Network::authenticate);
    connect(this, &QNetworkAccessManager::proxyAuthenticationRequired, this, &Network::authenticateAtProxy);
}

QString Network::applyPreferences()
{
    TVNC_BrowserCommonSetting& preferences = BrowserState::common();

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
    const bool isProxied = proxyFor(request.url()).type() != QNetworkProxy::NoProxy;
    if (isProxied && !BrowserState::common().getUseProxyHttpInfo())
        changed.setRawHeader("Connection", "close");
    return QNetworkAccessManager::createRequest(operation, changed, data);
}

unsigned char Network::findOutScheme(const QUrl& url)
{
    QNetworkAccessManager stranger; // has no logins
    stranger.setProxyFactory(new ProxyFactory);
    connect(&stranger, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &Network::authenticateAtProxy);
    QEventLoop loop;
    QTimer::singleShot(PROBE_MS, &loop, &QEventLoop::quit);
    const std::unique_ptr<QNetworkReply> reply(stranger.head(QNetworkRequest(url)));
    connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return schemeOf(reply->rawHeader("WWW-Authenticate"));
}

void Network::authenticate(QNetworkReply* reply, QAuthenticator* authenticator)
{
    const QUrl url = reply->url();
    TVNS_AuthInfo login{url.host(), QString::number(url.port(url.scheme() == "https" ? 443 : 80)),
                        findOutScheme(url), QByteArray(), QByteArray()};
    LoginQuestion question;
    question.wasRefused = reply->property(TRIED).toBool(); // the server asks again when a login was wrong
    reply->setProperty(TRIED, true);
    const int position = state_.logins.find(login.hostName, login.portNum, login.authType);
    if (position >= 0) {
        login = state_.logins.at(position);
        question.user = QString::fromUtf8(login.user);
        const QString password = QString::fromUtf8(login.passwd);
        // Qt may have tried it already, from another page of the server. It does not try it twice.
        if (authenticator->user() == question.user && authenticator->password() == password)
            question.wasRefused = true;
        if (!question.wasRefused) {
            authenticator->setUser(question.user);
            authenticator->setPassword(password);
            return;
        }
    }
    question.server = login.hostName + ':' + login.portNum;
    question.realm = authenticator->realm();
    if (!askForLogin || !askForLogin(question))
        return;
    authenticator->setUser(question.user);
    authenticator->setPassword(question.password);
    login.user = question.user.toUtf8();
    login.passwd = question.password.toUtf8();
    const QString problem = state_.logins.keep(login);
    if (!problem.isEmpty())
        emit message(problem);
}

void Network::authenticateAtProxy(const QNetworkProxy&, QAuthenticator* authenticator)
{
    TVNC_BrowserCommonSetting& preferences = BrowserState::common();
    if (!preferences.getUseProxyCertificationInfo() || authenticator->option(TRIED).isValid())
        return; // it was wrong
    authenticator->setOption(TRIED, true);
    QByteArray user;
    QByteArray password;
    preferences.getProxyAccountStr(&user);
    preferences.getProxyPasswordStr(&password);
    authenticator->setUser(QString::fromUtf8(user));
    authenticator->setPassword(QString::fromUtf8(password));
}
