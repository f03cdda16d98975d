#ifndef TLVLIB_BROWSER_LOGINHANDLER_H
#define TLVLIB_BROWSER_LOGINHANDLER_H

#include <tlvlib/browser/LoginModel.h>

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QUrl>

class QAuthenticator;
class QNetworkAccessManager;
class QNetworkProxy;
class QNetworkReply;

namespace Tlv {

/// What a server, or the proxy, wants to know.
struct LoginRequest
{
    QUrl url;                ///< of the page or the part of it that wants the login
    QString host;            ///< of the server, or of the proxy
    int port = 0;            ///< of the same
    QString realm;           ///< a text of the server's: show it as plain text
    QString user;            ///< the user name that was tried last, to begin with
    bool wasRefused = false; ///< whether a login was tried and is wrong
    bool isProxy = false;    ///< whether it is the proxy that asks
};

/**
 * Gives servers and the proxy the logins that are kept, asks for those that are not, and keeps what was
 * right.
 *
 * When a server wants a login, each one that is kept for it is tried once. A login of the basic scheme, which
 * goes over the wire as it is, answers every server; one for digest or NTLM only a server that is known to
 * ask for that, and Qt tells the scheme no earlier than the request has failed. Therefore loginFound(): load
 * again, and the login is used.
 *
 * When no login is left to be tried, loginRequired() is emitted, at most three times for one request. Call
 * answer() in the slot, and the request goes on; Qt's network waits meanwhile. Or return, let the request
 * fail with QNetworkReply::AuthenticationRequiredError, call answer() once the user has given one, and load
 * again.
 *
 * An answer is kept when the server has taken it, in place of what was kept before. Which scheme to keep it
 * under is found out from a failed request, or else by one HEAD request without login. The proxy's login is
 * in the preferences of the device.
 *
 * User names and passwords are UTF-8, in the store and on the wire. Limits in bytes: 272 each, and 80 each
 * for the proxy. What is longer is used, but not kept: see loginNotKept().
 */
class TLVLIB_BROWSER_EXPORT LoginHandler : public QObject
{
    Q_OBJECT

public:
    /// How often the user is asked for one request.
    static constexpr int MaximumQuestions = 3;

    /// Of user name and password for the proxy, each.
    static constexpr int ProxyMaximumBytes = 80;

    /// A handler for logins that outlive it.
    explicit LoginHandler(LoginModel& logins, QObject* parent = nullptr);
    ~LoginHandler() override;

    /// Answers for a manager from now on. Profile::attach() does this. A second time changes nothing.
    void attach(QNetworkAccessManager* manager);

    /**
     * Answers a request.
     *
     * @return whether the request goes on with it; otherwise it has failed: load the page again
     */
    bool answer(const LoginRequest& request, const QString& user, const QString& password);

    /// Forgets what was answered and not kept, and what the managers remember. What is kept stays.
    void forget();

Q_SIGNALS:
    /// No login is left to be tried: see above. The answer may be given in the slot. The request must not be
    /// deleted there: Qt goes on with it.
    void loginRequired(const Tlv::LoginRequest& request);

    /// A request has failed whose login is kept: loading it again uses it. Never twice for the same login.
    void loginFound(const QUrl& url);

    /// A login was right, but is too long to be kept.
    void loginNotKept(const Tlv::LoginRequest& request);

    /// The preferences have a new login for the proxy.
    void proxyLoginKept();

private:
    struct Credentials
    {
        QByteArray user; // in UTF-8, as is the password
        QByteArray password;
        bool operator==(const Credentials& other) const
        {
            return user == other.user && password == other.password;
        }
    };

    /// What has come of one reply so far.
    struct Attempt
    {
        LoginRequest request;
        QList<Credentials> tried;
        int questions = 0;
        bool isWaiting = false; ///< a login is kept that may fit, once the scheme is known
    };

    void authenticate(QNetworkReply* reply, QAuthenticator* authenticator);
    void authenticateAtProxy(const QNetworkProxy& proxy, QAuthenticator* authenticator);
    void readHeaders(QNetworkReply* reply);
    void finish(QNetworkReply* reply);
    void proveProxyLogin(QNetworkReply* reply);

    QList<Credentials> candidates(Attempt& attempt) const;
    bool ask(const LoginRequest& request);
    void findOutScheme(const LoginRequest& request, const Credentials& credentials);
    void keep(const LoginRequest& request, LoginModel::Scheme scheme, const Credentials& credentials);

    LoginModel& logins_;
    QNetworkAccessManager* stranger_; ///< has no logins, and so gets to see what servers ask for
    QList<QNetworkAccessManager*> managers_;
    QHash<QNetworkReply*, Attempt> attempts_;
    QHash<QString, Credentials> answers_; ///< not taken yet, by server and realm
    QHash<QString, LoginModel::Scheme> schemes_;
    int asking_ = 0;
};

} // namespace Tlv

Q_DECLARE_METATYPE(Tlv::LoginRequest)

#endif
