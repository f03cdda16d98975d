#ifndef EXAMPLES_KIOSK_COOKIEJAR_H
#define EXAMPLES_KIOSK_COOKIEJAR_H

#include "DelayedSave.h"
#include "Profile.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <QtNetwork/QNetworkCookieJar>

/**
 * The browser's cookies. Those that outlive the browser are in cookie.ini, with everything they have, and
 * through the conversion in the document cookies.xml.
 */
class CookieJar : public QNetworkCookieJar
{
    Q_OBJECT

public:
    explicit CookieJar(const Profile& profile);

    void load();

    /// When it saves, and what became of it.
    DelayedSave& saving() { return saving_; }

    /// The cookies that are saved: the newest ones that have an expiry, as many as the conversion takes.
    QList<QNetworkCookie> keptCookies() const;

    QList<QNetworkCookie> cookies() const { return allCookies(); }
    void clear();

    // The preference of the device decides whether there are cookies at all.
    QList<QNetworkCookie> cookiesForUrl(const QUrl& url) const override;
    bool setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url) override;
    bool insertCookie(const QNetworkCookie& cookie) override;
    bool deleteCookie(const QNetworkCookie& cookie) override;

signals:
    void changed();

private:
    void saveIni();
    void saveDocument();
    void changeAndSave();

    TVNC_CookieSetting& store_;
    Profile profile_;
    DelayedSave saving_;
};

#endif
