#include <tlvlib/browser/LoginModel.h>

#include <tlvlib/files/TVNG_SafeSave.h>

namespace Tlv {

LoginModel::LoginModel(QObject* parent)
    : RecordModel({{"server", tr("Server")},
                   {"scheme", tr("Scheme")},
                   {"user", tr("User name")},
                   {nullptr, tr("Password")},
                   {"host", QString()},
                   {"port", QString()}},
                  parent)
    , store_(*TVNC_AuthSetting::getInstance())
{
}

void LoginModel::setMaximum(int maximum)
{
    maximum_ = qBound(1, maximum, MaximumCount);
}

void LoginModel::load(const QString& dir)
{
    QString directory = dir;
    store_.loadAuthInfo(&directory, maximum_);
    storeLoaded();
}

QString LoginModel::save(const QString& dir)
{
    QString directory = dir;
    store_.saveAuthInfo(&directory, maximum_);
    return TVNG_GetSaveError();
}

int LoginModel::find(const QString& host, int port, Scheme scheme) const
{
    for (int row = 0; row < count(); ++row) {
        if (field(row, HostRole - FirstRole).toString() == host &&
            field(row, PortRole - FirstRole).toString() == QString::number(port) &&
            field(row, SchemeColumn).toInt() == scheme)
            return row;
    }
    return -1;
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
    else if (count() > maximum_)
        remove(maximum_); // as the store's updateAuthInfo() does, but not for a login that is refused
    emit changed();
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
