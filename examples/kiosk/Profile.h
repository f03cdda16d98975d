#ifndef EXAMPLES_KIOSK_PROFILE_H
#define EXAMPLES_KIOSK_PROFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Where the browser keeps its state: what belongs to the device in one directory, what belongs to its user in
 * another one.
 */
struct Profile
{
    /// The user's thumbnails have the longest paths, and the bookmark store takes 256 bytes of UTF-8.
    static const int PATH_MAX_BYTES = 256 - 31; // less "/user/thumbnail/" and "000001.PNG", and some room

    /**
     * Makes the directories where they are missing, for their owner alone.
     *
     * @return why the directory cannot be used, and what to do; empty when it can
     */
    QString open(const QString& dir);

    // Directories end in "/": the stores append their file names to them as they are.
    QString common; ///< repostry.xml, fontlist.xml
    QString user;   ///< everything else

    QString thumbnails() const { return user + "thumbnail/"; }

    /// The conversions of cookies take C strings, and only ASCII.
    QByteArray cookieDir() const { return user.toLatin1(); }
    QByteArray cookieDocument() const { return (user + "cookies.xml").toLatin1(); }
};

/// How many records this browser keeps. The stores are told at load and at save.
const int BOOKMARK_MAX = 100;
const int HISTORY_MAX = 200;
const int AUTH_MAX = 50;
const int COOKIE_MAX = 20; // what the conversions of cookies take

/// The only directory that the library empties.
const char CACHE_DIR[] = "/ata07/Talvenor/cache/";

#endif
