#ifndef TLVLIB_STORES_TVNG_COOKIEINI_H
#define TLVLIB_STORES_TVNG_COOKIEINI_H

#include <QtCore/QList>
#include <QtNetwork/QNetworkCookie>

/**
 * @file
 * The file cookie.ini, for TVNC_CookieSetting. When memory runs out, both throw std::bad_alloc, so that a
 * conversion does not take a file that it could not read for one without cookies. Internal to the library;
 * not installed.
 */

/// Does what saveCookieInfo() does.
void TVNG_saveCookieIni(const QList<QNetworkCookie>& cookies, QString* dir, int si_saveMax);

/// Does what loadCookieInfo() does, and remembers @a si_loadMax in @a si_maxCount.
QList<QNetworkCookie> TVNG_loadCookieIni(QString* dir, int si_loadMax, int& si_maxCount);

#endif
