#ifndef TLVLIB_BROWSER_PROFILE_H
#define TLVLIB_BROWSER_PROFILE_H

#include <tlvlib/browser/BookmarkModel.h>
#include <tlvlib/browser/CookieJar.h>
#include <tlvlib/browser/CookieModel.h>
#include <tlvlib/browser/HistoryModel.h>
#include <tlvlib/browser/LoginHandler.h>
#include <tlvlib/browser/LoginModel.h>
#include <tlvlib/browser/ProxyFactory.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>

#include <QtCore/QStringList>

#include <memory>

class QNetworkAccessManager;

namespace Tlv {

/// A file of a profile that was damaged when the profile was opened.
struct Damage
{
    QString file; ///< its path
    QString text; ///< what is wrong, what is kept and what is lost, in words for a person
    QString copy; ///< where the damaged file is kept as it was; empty when it could not be copied yet
};

/**
 * Everything that a browser keeps, opened, saved and closed:
 *
 * @code
 * Tlv::Profile profile;
 * if (!profile.open("/data/browser"))
 *     qFatal("%s", qPrintable(profile.errorString()));
 * QNetworkAccessManager network;
 * profile.attach(&network); // cookies, proxies, logins
 * view.setModel(profile.bookmarks());
 * QObject::connect(&profile, &Tlv::Profile::saveFailed, ...);
 * @endcode
 *
 * A profile is two directories: the user's with "repostry_private.xml", "bookmark.xml" and "thumbnail/",
 * "visit.xml", "authinfo.xml", "cookie.ini" and "cookies.xml", the device's with "repostry.xml" and
 * "fontlist.xml". They are made where they are missing, for their owner alone, and held with the lock file
 * "tlvlib.lock" in each while the profile is open; a second process is refused.
 *
 * The stores of the library are one for each process. So is an open profile, all from one thread. To change
 * the user, open another profile with the same object.
 *
 * What changes is saved 0.3 seconds after the last change, and no later than 3 seconds after the first;
 * what is left when the profile is closed, when it is destroyed, and when the application quits. Every save
 * is a safe one (TVNG_SetSafeSave()): a file is as it was before or after, and failures are told. What could
 * not be saved is tried again with the next change.
 *
 * A damaged file is loaded as far as it goes. Nothing of it is overwritten before a copy is kept: without
 * room for one the file is not saved, and saveFailed() says so.
 */
class TLVLIB_BROWSER_EXPORT Profile : public QObject
{
    Q_OBJECT
    /// @cond
    Q_PROPERTY(Tlv::BookmarkModel* bookmarks READ bookmarks CONSTANT)
    Q_PROPERTY(Tlv::HistoryModel* history READ history CONSTANT)
    Q_PROPERTY(Tlv::LoginModel* logins READ logins CONSTANT)
    Q_PROPERTY(Tlv::CookieModel* cookies READ cookies CONSTANT)
    /// @endcond

public:
    /// Of a user's directory, in bytes, with the "/" at its end: the paths of pictures have at most 256.
    static constexpr int MaximumUserDirectory = 236;

    /// Of a directory that holds both, in bytes, without a "/" at its end.
    static constexpr int MaximumDirectory = 225;

    /// Why a profile could not be opened.
    enum Error {
        NoError,         ///< it could
        PathError,       ///< too long, or not ASCII
        PermissionError, ///< cannot be made, or cannot be written
        InUseError       ///< another process has it, or another Profile of this one
    };
    Q_ENUM(Error)

    /// When the use of the browser ends, in the codes of the preferences.
    enum Occasion {
        LogOut = 1, ///< somebody has said so
        Timeout = 2 ///< nobody was here for a while
    };
    Q_ENUM(Occasion)

    /// A profile that is not open.
    explicit Profile(QObject* parent = nullptr);

    /// Closes the profile.
    ~Profile() override;

    /// Opens the directories "user/" and "common/" below a directory.
    bool open(const QString& dir);

    /**
     * Opens a user's and the device's directory, after closing what was open before. Switches safe saving on,
     * for good; looks for damage; then loads all stores. Writes no file but the locks, copies of damaged
     * files, and a missing "cookie.ini" from its document; a new profile's preferences and fonts follow a
     * moment later.
     *
     * @return false when that cannot be; error() and errorString() tell why
     */
    bool open(const QString& userDir, const QString& deviceDir);

    /// Saves what is left to be saved and gives the directories free. The models keep what they show; the
    /// attached managers forget the logins that they have used.
    void close();

    /// Whether it is open.
    bool isOpen() const;
    /// Why the last open() failed.
    Error error() const;
    /// The same in words for a person; empty when it did not.
    QString errorString() const;

    /// What was damaged at the last open().
    QList<Damage> damages() const;

    /// What could not be saved up to now, and why, in words for a person; empty when there is nothing.
    QString saveError() const;

    /// @name The directories
    /// With "/" at their ends; empty before the first open().
    /// @{

    /// The user's.
    QString userDirectory() const;
    /// The device's.
    QString deviceDirectory() const;

    /// @}
    /// @name The pieces
    /// They are there from the beginning, and filled by open().
    /// @{
    BookmarkModel* bookmarks() const;   ///< the bookmarks
    HistoryModel* history() const;      ///< the visits
    LoginModel* logins() const;         ///< the logins
    CookieModel* cookies() const;       ///< the cookies, to be shown
    CookieJar* cookieJar() const;       ///< the cookies, for managers
    LoginHandler* loginHandler() const; ///< what servers and proxies ask
    /// @}

    /// The fonts that the user may choose from. On the first start those of the machine, if the application
    /// is one with a GUI.
    QStringList fonts() const;

    /// @name The preferences
    /// Asked directly. Call savePreferences() after a change.
    /// @{
    static TVNC_BrowserCommonSetting& devicePreferences(); ///< those of the device
    static TVNC_BrowserUserSetting& userPreferences();     ///< those of the user
    /// @}

    /// Has both preferences saved, and emits preferencesChanged().
    void savePreferences();

    /// The page to begin with: the last one or the home page, as the preferences say.
    QString startPage() const;

    /// The page to come back to the next time. An address over 256 bytes of UTF-8 is not remembered.
    void setLastPage(const QString& url);

    /// Gives a manager the cookies, the proxies and the logins. Delete the manager before the profile.
    void attach(QNetworkAccessManager* manager);

    /// Saves now what is left to be saved. @return false when something of it failed; see saveFailed()
    bool save();

    /**
     * Deletes what the preferences say for this occasion (cookies, logins, the disk cache) and saves. A
     * preference of "never" deletes nothing, one for the other occasion neither. Cookies go from memory and
     * from both files, session cookies with them; logins also from what the attached managers remember.
     * Bookmarks, history and preferences stay.
     */
    void endUse(Occasion occasion);

Q_SIGNALS:
    /// A save failed; the text is for a person. Once for each file and reason, until it has been saved again.
    void saveFailed(const QString& error);
    /// saveError() is another one, or none.
    void saveErrorChanged();
    /// savePreferences() was called.
    void preferencesChanged();

private:
    struct Private;
    const std::unique_ptr<Private> d;
};

} // namespace Tlv

#endif
