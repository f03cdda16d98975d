#include <tlvlib/browser/LoginModel.h>

namespace Tlv {

LoginModel::LoginModel(QObject* parent)
    : StoredModel({{"server", tr("Server")},
                   {"scheme", tr("Scheme")},
                   {"user", tr("User name")},
                   {nullptr, tr("Password")},
                   {"host", QString()},
                   {"port", QString()}},
                  DefaultMaximum, parent)
    , store_(*TVNC_AuthSetting::getInstance())
{
}

void LoginModel::readStore(QString dir)
{
    store_.loadAuthInfo(&dir, maximum());
}

void LoginModel::writeStore(QString dir)
{
    store_.saveAuthInfo(&dir, maximum());
}

int LoginModel::find(const QString& host, int port, Scheme scheme) const
{
    return findRecord({{HostRole - FirstRole, host},
                       {PortRole - FirstRole, QString::number(port)},
                       {SchemeColumn, static_cast<int>(scheme)}});
}

QPair<QByteArray, QByteArray> LoginModel::credentials(int row) const
{
    const TVNS_AuthInfo login = stored(row);
    return {login.user, login.passwd};
}

bool LoginModel::keep(const QString& host, int port, Scheme scheme, const QByteArray& user,
                      const QByteArray& password)
{
    const int earlier = find(host, port, scheme);
    TVNS_AuthInfo login{host, QString::number(port), static_cast<unsigned char>(scheme), user, password};
    if (!store_.setAuthInfo(&login))
        return false;
    recordPrepended();
    if (earlier >= 0)
        remove(earlier + 1); // the store does not look for one
    else if (count() > maximum())
        remove(maximum()); // as the store's updateAuthInfo() does, but not for a login that is refused
    Q_EMIT changed();
    return true;
}

TVNS_AuthInfo LoginModel::stored(int row) const
{
    // What is too long in the file is left as it is here: empty.
    TVNS_AuthInfo login{QString(), QString(), Basic, QByteArray(), QByteArray()};
    store_.getAuthInfo(row, &login);
    return login;
}

int LoginModel::storedCount() const
{
    return store_.getAuthInfoCnt();
}

QVariantList LoginModel::storedRecord(int row) const
{
    const TVNS_AuthInfo login = stored(row);
    return {QString(login.hostName + QLatin1Char(':') + login.portNum),
            static_cast<int>(login.authType),
            QString::fromUtf8(login.user),
            QString(8, QChar(0x2022)),
            login.hostName,
            login.portNum};
}

void LoginModel::removeStored(int row)
{
    store_.deleteAuthInfo(row);
}

QVariant LoginModel::shown(int column, const QVariant& value) const
{
    if (column != SchemeColumn)
        return value;
    switch (value.toInt()) {
    case Digest:
        return tr("Digest");
    case Ntlm:
        return tr("NTLM");
    default:
        return tr("Basic");
    }
}

} // namespace Tlv
