#include "CookieJar.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include <algorithm>

namespace {

bool areAccepted()
{
    return TVNC_BrowserCommonSetting::getInstance()->getRcvCookieInfo() != 0;
}

bool isExpired(const QNetworkCookie& cookie)
{
    return !cookie.isSessionCookie() && cookie.expirationDate() < QDateTime::currentDateTime();
}

} // namespace

CookieJar::CookieJar(const Profile& profile)
    : store_(*TVNC_CookieSetting::getInstance())
    , profile_(profile)
    , saving_({[this] { saveIni(); }, [this] { saveDocument(); }})
{
}

void CookieJar::load()
{
    // A document that was restored from a backup, alone.
    if (!QFile::exists(profile_.user + "cookie.ini") && QFile::exists(profile_.cookieDocument()))
        store_.convertCookieXMLToIni(profile_.cookieDocument().data(), profile_.cookieDir().data());
    QList<QNetworkCookie> loaded = store_.loadCookieInfo(&profile_.user, COOKIE_MAX);
    // The file has expired ones, too.
    loaded.erase(std::remove_if(loaded.begin(), loaded.end(), isExpired), loaded.end());
    setAllCookies(loaded);
}

void CookieJar::saveIni()
{
    store_.saveCookieInfo(keptCookies(), &profile_.user, COOKIE_MAX);
}

void CookieJar::saveDocument()
{
    store_.convertCookieIniToXML(profile_.cookieDir().data(), profile_.cookieDocument().data());
}

QList<QNetworkCookie> CookieJar::keptCookies() const
{
    QList<QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : allCookies()) {
        if (!cookie.isSessionCookie() && !isExpired(cookie))
            kept.append(cookie);
    }
    return kept.mid(qMax(0, kept.size() - COOKIE_MAX)); // a changed one moves to the end
}

void CookieJar::clear()
{
    setAllCookies({});
    changeAndSave();
}

QList<QNetworkCookie> CookieJar::cookiesForUrl(const QUrl& url) const
{
    return areAccepted() ? QNetworkCookieJar::cookiesForUrl(url) : QList<QNetworkCookie>();
}

bool CookieJar::setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url)
{
    return areAccepted() && QNetworkCookieJar::setCookiesFromUrl(cookies, url);
}

bool CookieJar::insertCookie(const QNetworkCookie& cookie)
{
    const bool isInserted = QNetworkCookieJar::insertCookie(cookie);
    if (isInserted)
        changeAndSave();
    return isInserted;
}

bool CookieJar::deleteCookie(const QNetworkCookie& cookie)
{
    const bool isDeleted = QNetworkCookieJar::deleteCookie(cookie);
    if (isDeleted)
        changeAndSave();
    return isDeleted;
}

void CookieJar::changeAndSave()
{
    saving_.schedule();
    emit changed();
}
