#ifndef EXAMPLES_KIOSK_BROWSERSTATE_H
#define EXAMPLES_KIOSK_BROWSERSTATE_H

#include "Bookmarks.h"
#include "CookieJar.h"
#include "History.h"
#include "Logins.h"
#include "Profile.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>

#include <QtCore/QStringList>

#include <vector>

/// When collected data goes, in the words of the preferences.
enum class Timing { NEVER = 0, LOG_OUT = 1, TIMEOUT = 2 };

/// Everything that the browser keeps. The preferences are asked directly: the library has them once.
class BrowserState : public QObject
{
    Q_OBJECT

public:
    explicit BrowserState(const Profile& profile);

    void load();

    /// Writes what has changed and is not written yet.
    void save();

    /// A file that could not be saved, and why; empty when there is none.
    QString saveProblem() const;

    void savePreferences();

    /// Deletes what the preferences say for this occasion, and saves everything. The last page stays.
    void end(Timing timing);

    /// The fonts that the user may choose from.
    QStringList fonts() const;

    /// The page to begin with.
    QString firstPage() const;

    /// The page to come back to the next time. One that is too long for the store is not remembered.
    void setLastPage(const QString& url);

    static TVNC_BrowserCommonSetting& common() { return *TVNC_BrowserCommonSetting::getInstance(); }
    static TVNC_BrowserUserSetting& user() { return *TVNC_BrowserUserSetting::getInstance(); }

    const Profile& profile() const { return profile_; }
    Bookmarks bookmarks;
    History history;
    Logins logins;
    CookieJar cookies;

signals:
    /// Preferences were changed and saved.
    void preferencesChanged();

    /// Something was saved, or could not be.
    void saved();

private:
    void loadFonts();

    Profile profile_;
    DelayedSave savingPreferences_;
    DelayedSave savingFonts_;
    const std::vector<DelayedSave*> savings_; ///< these, and those of the stores
};

#endif
