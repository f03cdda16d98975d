#include "Logins.h"

Logins::Logins(const Profile& profile)
    : store_(*TVNC_AuthSetting::getInstance()), profile_(profile), saving_({[this] { save(); }})
{
}

void Logins::load()
{
    store_.loadAuthInfo(&profile_.user, AUTH_MAX);
}

void Logins::save()
{
    store_.saveAuthInfo(&profile_.user, AUTH_MAX);
}

TVNS_AuthInfo Logins::at(int position) const
{
    // What is too long in the file is left as it is here: empty.
    TVNS_AuthInfo login{QString(), QString(), 0, QByteArray(), QByteArray()};
    store_.getAuthInfo(position, &login);
    return login;
}

int Logins::find(const QString& host, const QString& port, unsigned char scheme) const
{
    for (int i = 0; i < count(); ++i) {
        const TVNS_AuthInfo login = at(i);
        if (login.hostName == host && login.portNum == port && login.authType == scheme)
            return i;
    }
    return -1;
}

QString Logins::keep(TVNS_AuthInfo login)
{
    const int earlier = find(login.hostName, login.portNum, login.authType);
    if (earlier >= 0)
        store_.deleteAuthInfo(earlier); // the store does not look for one
    const bool isFull = count() >= AUTH_MAX;
    const int isKept = isFull ? store_.updateAuthInfo(&login) : store_.setAuthInfo(&login);
    changeAndSave();
    return isKept ? QString()
                  : tr("The login is used but not kept: the server's name, the user name or the password is "
                       "too long.");
}

void Logins::remove(int position)
{
    store_.deleteAuthInfo(position);
    changeAndSave();
}

void Logins::clear()
{
    store_.deleteAllSetting();
    changeAndSave();
}

void Logins::changeAndSave()
{
    saving_.schedule();
    emit changed();
}
