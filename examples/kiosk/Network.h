#ifndef EXAMPLES_KIOSK_NETWORK_H
#define EXAMPLES_KIOSK_NETWORK_H

#include "BrowserState.h"

#include <QtNetwork/QNetworkAccessManager>

#include <functional>

class QNetworkProxyQuery;

/// What the user is asked for when a server wants a login.
struct LoginQuestion
{
    QString server;
    QString realm;
    QString user;            ///< filled in beforehand; the answer
    QString password;        ///< the answer
    bool wasRefused = false; ///< whether the login that was tried last was wrong
};

/// The browser's way to the network: proxy, protocols, cookies, disk cache and logins as the state has them.
class Network : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit Network(BrowserState& state);

    /// Asks the user. False when there is no answer.
    std::function<bool(LoginQuestion&)> askForLogin;

    /// Takes over what the preferences say. @return what of it cannot be had; empty when all can
    QString applyPreferences();

signals:
    /// Something that the user should know.
    void message(const QString& text);

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* data) override;

private:
    /// Asks the server without a login, because Qt does not tell which scheme it wants, and the store keeps
    /// it. The answer is one of the store's codes.
    unsigned char findOutScheme(const QUrl& url);

    void authenticate(QNetworkReply* reply, QAuthenticator* authenticator);
    void authenticateAtProxy(const QNetworkProxy& proxy, QAuthenticator* authenticator);

    BrowserState& state_;
};

/// The proxy for an address as the preferences have it; none for content of the device itself.
QNetworkProxy proxyFor(const QUrl& url);

#endif
