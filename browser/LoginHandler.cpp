#include <tlvlib/browser/LoginHandler.h>

#include <tlvlib/browser/ProxyFactory.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

#include <QtCore/QRegularExpression>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <optional>

namespace Tlv {

namespace {

// What has come of a proxy's question so far stays with Qt's own object for it: no reply tells whose it is.
const char PROXY_TRIED[] = "tlvProxyTried";
const char PROXY_QUESTIONS[] = "tlvProxyQuestions";

TVNC_BrowserCommonSetting& preferences()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

/// Qt sends a login in Latin-1. A text whose characters are the bytes of the UTF-8 goes out as that.
QString toWire(const QByteArray& utf8)
{
    return QString::fromLatin1(utf8);
}

QByteArray fromWire(const QString& text)
{
    return text.toLatin1();
}

/// A server's area. What one area was answered is none of another's business.
QString keyOf(const LoginRequest& request)
{
    return QString::fromLatin1("%1 %2:%3 %4")
        .arg(request.isProxy ? 1 : 0)
        .arg(request.host)
        .arg(request.port)
        .arg(request.realm);
}

int portOf(const QUrl& url)
{
    return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
}

int statusOf(const QNetworkReply* reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

/// The scheme that Qt chooses from a server's challenges; nothing when there is none.
std::optional<LoginModel::Scheme> schemeOf(const QNetworkReply* reply)
{
    // Quoted texts are the server's and may say anything.
    static const QRegularExpression quoted(QLatin1String("\"(\\\\.|[^\"\\\\])*\""));
    const QString challenges =
        QString::fromLatin1(reply->rawHeader("WWW-Authenticate")).toLower().remove(quoted);
    const auto has = [&challenges](const char* scheme) {
        const QRegularExpression word(QString::fromLatin1("(^|[,\\n])\\s*%1\\b").arg(QLatin1String(scheme)));
        return challenges.contains(word);
    };
    if (has("digest"))
        return LoginModel::Digest;
    if (has("ntlm"))
        return LoginModel::Ntlm;
    return has("basic") ? std::optional<LoginModel::Scheme>(LoginModel::Basic) : std::nullopt;
}

} // namespace

LoginHandler::LoginHandler(LoginModel& logins, QObject* parent)
    : QObject(parent), logins_(logins), stranger_(new QNetworkAccessManager(this))
{
    qRegisterMetaType<LoginRequest>("Tlv::LoginRequest"); // for queued connections
    stranger_->setProxyFactory(new ProxyFactory);
    connect(stranger_, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &LoginHandler::authenticateAtProxy);
}

LoginHandler::~LoginHandler() = default;

void LoginHandler::attach(QNetworkAccessManager* manager)
{
    if (managers_.contains(manager))
        return; // asked twice, one question would count as two
    managers_.append(manager);
    connect(manager, &QObject::destroyed, this, [this, manager] { managers_.removeAll(manager); });
    connect(manager, &QNetworkAccessManager::authenticationRequired, this, &LoginHandler::authenticate);
    connect(manager, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &LoginHandler::authenticateAtProxy);
    connect(manager, &QNetworkAccessManager::finished, this, &LoginHandler::proveProxyLogin);
}

bool LoginHandler::answer(const LoginRequest& request, const QString& user, const QString& password)
{
    answers_[keyOf(request)] = {user.toUtf8(), password.toUtf8()};
    if (asking_ > 0)
        return true;
    // Otherwise Qt would try the refused ones of its own memory first.
    for (QNetworkAccessManager* manager : managers_)
        manager->clearAccessCache();
    return false;
}

void LoginHandler::forget()
{
    answers_.clear();
    for (QNetworkAccessManager* manager : managers_)
        manager->clearAccessCache();
}

bool LoginHandler::ask(const LoginRequest& request)
{
    const QString key = keyOf(request);
    answers_.remove(key);
    ++asking_;
    Q_EMIT loginRequired(request);
    --asking_;
    return answers_.contains(key);
}

void LoginHandler::authenticate(QNetworkReply* reply, QAuthenticator* authenticator)
{
    if (!attempts_.contains(reply)) {
        connect(reply, &QNetworkReply::metaDataChanged, this, [this, reply] { readHeaders(reply); });
        connect(reply, &QNetworkReply::finished, this, [this, reply] { finish(reply); });
        connect(reply, &QObject::destroyed, this, [this, reply] { attempts_.remove(reply); });
    }
    Attempt attempt = attempts_.value(reply); // a copy: asking may let other replies come and go
    attempt.request.url = reply->url();
    attempt.request.host = reply->url().host();
    attempt.request.port = portOf(reply->url());
    attempt.request.realm = authenticator->realm();
    // Qt tries by itself what it remembers. It is wrong, or there would be no question.
    const Credentials last{fromWire(authenticator->user()), fromWire(authenticator->password())};
    if (!last.user.isEmpty() && !attempt.tried.contains(last))
        attempt.tried.append(last);
    attempt.request.wasRefused = !attempt.tried.isEmpty();

    QList<Credentials> left = candidates(attempt);
    if (left.isEmpty() && !attempt.isWaiting && attempt.questions < MaximumQuestions) {
        ++attempt.questions;
        attempt.request.user = QString::fromUtf8(last.user);
        if (ask(attempt.request))
            left = candidates(attempt);
    }
    attempts_[reply] = attempt;
    if (left.isEmpty())
        return; // the request fails
    authenticator->setUser(toWire(left.first().user));
    authenticator->setPassword(toWire(left.first().password));
    attempts_[reply].tried.append(left.first());
}

QList<LoginHandler::Credentials> LoginHandler::candidates(Attempt& attempt) const
{
    const LoginRequest& request = attempt.request;
    const QString key = keyOf(request);
    QList<Credentials> left;
    const auto add = [&](const Credentials& credentials) {
        if (!attempt.tried.contains(credentials))
            left.append(credentials);
    };
    if (answers_.contains(key))
        add(answers_.value(key));
    const bool isKnown = schemes_.contains(key);
    const int before = static_cast<int>(left.size());
    bool isUnsure = false;
    for (const LoginModel::Scheme scheme : {LoginModel::Basic, LoginModel::Digest, LoginModel::Ntlm}) {
        const int row = logins_.find(request.host, request.port, scheme);
        if (row < 0 || (isKnown && schemes_.value(key) != scheme))
            continue;
        const auto [user, password] = logins_.credentials(row);
        if (isKnown || scheme == LoginModel::Basic)
            add({user, password});
        else
            isUnsure = isUnsure || !attempt.tried.contains({user, password});
    }
    attempt.isWaiting = isUnsure && static_cast<int>(left.size()) == before;
    return left;
}

void LoginHandler::readHeaders(QNetworkReply* reply)
{
    const int status = statusOf(reply);
    const auto found = attempts_.find(reply);
    if (found == attempts_.end() || found->tried.isEmpty() || status == 0 || status == 401 || status == 407)
        return;
    const LoginRequest request = found->request;
    const Credentials right = found->tried.last();
    attempts_.erase(found);
    // What was kept already needs no keeping.
    const QString key = keyOf(request);
    if (!answers_.contains(key) || !(answers_.value(key) == right))
        return;
    answers_.remove(key);
    if (schemes_.contains(key))
        keep(request, schemes_.value(key), right);
    else
        findOutScheme(request, right);
}

void LoginHandler::finish(QNetworkReply* reply)
{
    if (!attempts_.contains(reply))
        return;
    const Attempt attempt = attempts_.take(reply);
    const LoginRequest request = attempt.request;
    const std::optional<LoginModel::Scheme> scheme = schemeOf(reply);
    if (reply->error() != QNetworkReply::AuthenticationRequiredError || !scheme)
        return;
    schemes_[keyOf(request)] = *scheme;
    if (!attempt.isWaiting)
        return;
    // From the event loop, since a reply that is finishing is no place to begin another one.
    const bool isFound = logins_.find(request.host, request.port, *scheme) >= 0;
    QMetaObject::invokeMethod(
        this,
        [this, request, isFound] {
            if (isFound)
                Q_EMIT loginFound(request.url);
            else
                Q_EMIT loginRequired(request);
        },
        Qt::QueuedConnection);
}

void LoginHandler::findOutScheme(const LoginRequest& request, const Credentials& credentials)
{
    QNetworkReply* reply = stranger_->head(QNetworkRequest(request.url));
    connect(reply, &QNetworkReply::finished, this, [this, reply, request, credentials] {
        // A server that does not want one any more is answered with what any server takes.
        keep(request, schemeOf(reply).value_or(LoginModel::Basic), credentials);
        reply->deleteLater();
    });
}

void LoginHandler::keep(const LoginRequest& request, LoginModel::Scheme scheme,
                        const Credentials& credentials)
{
    schemes_[keyOf(request)] = scheme;
    if (!logins_.keep(request.host, request.port, scheme, credentials.user, credentials.password))
        Q_EMIT loginNotKept(request);
}

void LoginHandler::authenticateAtProxy(const QNetworkProxy& proxy, QAuthenticator* authenticator)
{
    LoginRequest request;
    request.host = proxy.hostName();
    request.port = proxy.port();
    request.realm = authenticator->realm();
    request.isProxy = true;
    const QString key = keyOf(request);
    QStringList tried = authenticator->option(QLatin1String(PROXY_TRIED)).toStringList();
    const auto give = [&](const Credentials& credentials) {
        const QString mark = toWire(credentials.user + '\n' + credentials.password);
        if (credentials.user.isEmpty() || tried.contains(mark))
            return false;
        tried.append(mark);
        authenticator->setOption(QLatin1String(PROXY_TRIED), tried);
        authenticator->setUser(toWire(credentials.user));
        authenticator->setPassword(toWire(credentials.password));
        return true;
    };

    if (answers_.contains(key) && give(answers_.value(key)))
        return;
    Credentials kept;
    preferences().getProxyAccountStr(&kept.user);
    preferences().getProxyPasswordStr(&kept.password);
    if (preferences().getUseProxyCertificationInfo() && give(kept))
        return;
    request.user = QString::fromUtf8(fromWire(authenticator->user()));
    request.wasRefused = !tried.isEmpty();
    const int questions = authenticator->option(QLatin1String(PROXY_QUESTIONS)).toInt();
    // Any change of Qt's object, even of an option, has the request sent again: none without a new login.
    if (questions < MaximumQuestions && ask(request) && give(answers_.value(key)))
        authenticator->setOption(QLatin1String(PROXY_QUESTIONS), questions + 1);
}

void LoginHandler::proveProxyLogin(QNetworkReply* reply)
{
    const QNetworkProxy proxy = ProxyFactory::proxyFor(reply->url());
    const int status = statusOf(reply);
    if (proxy.type() == QNetworkProxy::NoProxy || status == 0 || status == 407)
        return;
    // The realm of a proxy is not told once it has let a request through; there is one proxy.
    for (auto answer = answers_.begin(); answer != answers_.end(); ++answer) {
        if (!answer.key().startsWith(QString::fromLatin1("1 %1:%2 ").arg(proxy.hostName()).arg(proxy.port())))
            continue;
        const Credentials right = answer.value();
        answers_.erase(answer);
        LoginRequest request;
        request.host = proxy.hostName();
        request.port = proxy.port();
        request.isProxy = true;
        if (right.user.size() > ProxyMaximumBytes || right.password.size() > ProxyMaximumBytes) {
            Q_EMIT loginNotKept(request);
            return;
        }
        preferences().setProxyAccountStr(right.user);
        preferences().setProxyPasswordStr(right.password);
        preferences().setUseProxyCertificationInfo(1);
        Q_EMIT proxyLoginKept();
        return;
    }
}

} // namespace Tlv
