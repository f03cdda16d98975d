#ifndef TLVLIB_BROWSER_COOKIEJAR_H
#define TLVLIB_BROWSER_COOKIEJAR_H

#include <tlvlib/browser/browser_export.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <QtNetwork/QNetworkCookieJar>

namespace Tlv {

/**
 * A cookie jar that is kept. The newest 20 cookies that have an expiry in the future are in "cookie.ini" with
 * all they have, and through the store's conversion in the document "cookies.xml" beside it, which is for the
 * user and for backups and does not know HttpOnly. Session cookies stay in memory.
 *
 * The device's preference says whether cookies are accepted. While they are refused none is taken and none is
 * sent; those that are there stay, in memory and in the file, and are sent again once cookies are accepted.
 *
 * An expired cookie is not sent, not saved, and gone from the jar with the next change or save.
 *
 * Directories end in "/" and are ASCII.
 */
class TLVLIB_BROWSER_EXPORT CookieJar : public QNetworkCookieJar
{
    Q_OBJECT

public:
    /// How many cookies the two files hold: what the conversions take.
    static constexpr int MaximumKept = 20;

    /// A jar without cookies, up to load().
    explicit CookieJar(QObject* parent = nullptr);
    ~CookieJar() override;

    /// Replaces the cookies by those of a directory. Where there is only the document, it is converted first.
    /// Profile does this. @return why it could not be converted, so that the jar has none of its cookies
    QString load(const QString& dir);

    /// Writes both files. Profile does this. @return what failed, as StoredModel::save() tells it
    QString save(const QString& dir);

    /// All cookies, those of the session included, in the order in which they came.
    QList<QNetworkCookie> cookies() const { return allCookies(); }

    /// The cookies that are saved.
    QList<QNetworkCookie> keptCookies() const;

    /// Removes all cookies.
    void clear();

    /// @cond
    QList<QNetworkCookie> cookiesForUrl(const QUrl& url) const override;
    bool setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url) override;
    bool insertCookie(const QNetworkCookie& cookie) override;
    bool deleteCookie(const QNetworkCookie& cookie) override;
    /// @endcond

Q_SIGNALS:
    /// There is something to save.
    void changed();

    /// All cookies are others.
    void loaded();
    /// There is one more at the end of cookies(). A changed cookie is removed, and added again.
    void cookieAdded();
    /// These positions of cookies() are gone.
    void cookiesRemoved(int first, int last);

private:
    void removeExpired();

    TVNC_CookieSetting& store_;
};

} // namespace Tlv

#endif
