#ifndef TOOLS_TLVCTL_COOKIES_COOKIEJAR_H
#define TOOLS_TLVCTL_COOKIES_COOKIEJAR_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtNetwork/QNetworkCookie>

#include <vector>

/**
 * @file
 * The file cookies.txt of curl, wget and many others: a cookie a line, in seven fields with tabs between
 * them, and "#HttpOnly_" before those that scripts do not get to see.
 */

/// Why such a file cannot hold a cookie, to follow "it"; empty when it can.
QString problemWithJar(const QNetworkCookie& cookie);

QByteArray writeJar(const std::vector<QNetworkCookie>& cookies);

/// The cookies of such a file in its order. Appends a line to @a leftOut for each that is none.
std::vector<QNetworkCookie> readJar(const QByteArray& bytes, QStringList& leftOut);

#endif
