#include <tlvlib/browser/CookieJar.h>

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include <algorithm>

namespace Tlv {

namespace {

bool areAccepted()
{
    return TVNC_BrowserCommonSetting::getInstance()->getRcvCookieInfo() != 0;
}

bool isExpired(const QNetworkCookie& cookie)
{
    return !cookie.isSessionCookie() && cookie.expirationDate() < QDateTime::currentDateTimeUtc();
}

/// The conversions take C strings.
QByteArray documentIn(const QString& dir)
{
    return dir.toLatin1() + "cookies.xml";
}

} // namespace

CookieJar::CookieJar(QObject* parent) : QNetworkCookieJar(parent), store_(*TVNC_CookieSetting::getInstance())
{
}

CookieJar::~CookieJar() = default;

QString CookieJar::load(const QString& dir)
{
    QString directory = dir;
    QByteArray document = documentIn(dir);
    // A document that was restored from a backup, alone.
    QString error;
    if (!QFile::exists(dir + QLatin1String("cookie.ini")) && QFile::exists(QString::fromLatin1(document))) {
        store_.convertCookieXMLToIni(document.data(), dir.toLatin1().data());
        error = TVNG_GetSaveError();
    }
    QList<QNetworkCookie> cookies = store_.loadCookieInfo(&directory, MaximumKept);
    // The file has expired ones, too.
    cookies.erase(std::remove_if(cookies.begin(), cookies.end(), isExpired), cookies.end());
    setAllCookies(cookies);
    Q_EMIT loaded();
    return error;
}

QString CookieJar::save(const QString& dir)
{
    QString directory = dir;
    removeExpired();
    store_.saveCookieInfo(keptCookies(), &directory, MaximumKept);
    const QString error = TVNG_GetSaveError();
    if (!error.isEmpty())
        return error;
    store_.convertCookieIniToXML(dir.toLatin1().data(), documentIn(dir).data());
    return TVNG_GetSaveError();
}

QList<QNetworkCookie> CookieJar::keptCookies() const
{
    QList<QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : allCookies()) {
        if (!cookie.isSessionCookie() && !isExpired(cookie))
            kept.append(cookie);
    }
    return kept.mid(std::max<int>(0, static_cast<int>(kept.size()) - MaximumKept)); // the newest are last
}

void CookieJar::clear()
{
    const int count = static_cast<int>(allCookies().size());
    if (count == 0)
        return;
    setAllCookies({});
    Q_EMIT cookiesRemoved(0, count - 1);
    Q_EMIT changed();
}

void CookieJar::removeExpired()
{
    for (const QNetworkCookie& cookie : allCookies()) {
        if (isExpired(cookie))
            deleteCookie(cookie);
    }
}

QList<QNetworkCookie> CookieJar::cookiesForUrl(const QUrl& url) const
{
    return areAccepted() ? QNetworkCookieJar::cookiesForUrl(url) : QList<QNetworkCookie>();
}

bool CookieJar::setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url)
{
    if (!areAccepted())
        return false;
    removeExpired();
    return QNetworkCookieJar::setCookiesFromUrl(cookies, url);
}

bool CookieJar::insertCookie(const QNetworkCookie& cookie)
{
    if (!QNetworkCookieJar::insertCookie(cookie)) // takes an older one out with deleteCookie()
        return false;
    Q_EMIT cookieAdded();
    Q_EMIT changed();
    return true;
}

bool CookieJar::deleteCookie(const QNetworkCookie& cookie)
{
    const QList<QNetworkCookie> before = allCookies();
    const auto found = std::find_if(before.begin(), before.end(), [&cookie](const QNetworkCookie& known) {
        return known.hasSameIdentifier(cookie);
    });
    if (!QNetworkCookieJar::deleteCookie(cookie))
        return false;
    const int position = static_cast<int>(found - before.begin());
    Q_EMIT cookiesRemoved(position, position);
    Q_EMIT changed();
    return true;
}

} // namespace Tlv
