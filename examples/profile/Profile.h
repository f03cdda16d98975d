#ifndef EXAMPLES_PROFILE_PROFILE_H
#define EXAMPLES_PROFILE_PROFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// Where the example's files are. Directories end in "/": the stores append their file names to them as they
/// are.
struct Profile
{
    explicit Profile(const QString& dir) : common(dir + "/common/"), user(dir + "/user/") {}

    QString common; ///< of the device
    QString user;   ///< of one user
    QString thumbnails() const { return user + "thumbnail/"; }

    /// The conversions take C strings.
    QByteArray cookieDocument() const { return (user + "cookies.xml").toLatin1(); }
    QByteArray cookieDir() const { return user.toLatin1(); }
};

/// How many records this browser keeps. The stores take it at load and at save.
const int BOOKMARK_MAX = 100;
const int HISTORY_MAX = 200;
const int AUTH_MAX = 50;
const int COOKIE_MAX = 20;

#endif
