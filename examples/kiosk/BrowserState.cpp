#include "BrowserState.h"

#include <tlvlib/thumbs/TVNC_NetworkDiskCache.h>

#include <QtCore/QFileInfo>
#include <QtGui/QFontDatabase>

BrowserState::BrowserState(const Profile& profile)
    : bookmarks(profile)
    , history(profile)
    , logins(profile)
    , cookies(profile)
    , profile_(profile)
    , savingPreferences_({[this] { common().saveSetting(&profile_.common); },
                          [this] { user().saveSetting(&profile_.user); }})
    , savingFonts_({[this] { TVNC_FontListSetting::getInstance()->saveFontList(profile_.common); }})
    , savings_{&savingPreferences_, &savingFonts_,    &bookmarks.saving(),
               &history.saving(),   &logins.saving(), &cookies.saving()}
{
    for (const DelayedSave* saving : savings_)
        connect(saving, &DelayedSave::tried, this, &BrowserState::saved);
}

void BrowserState::load()
{
    common().loadSetting(&profile_.common);
    user().loadSetting(&profile_.user);
    loadFonts();
    bookmarks.load();
    history.load();
    logins.load();
    cookies.load();
}

void BrowserState::loadFonts()
{
    TVNC_FontListSetting& list = *TVNC_FontListSetting::getInstance();
    list.loadFontList(profile_.common);
    if (list.getCount() > 0)
        return;
    // The first start on this device.
    for (const QString& family : QFontDatabase().families())
        list.addFont(family);
    savingFonts_.schedule();
}

void BrowserState::save()
{
    for (DelayedSave* saving : savings_)
        saving->flush();
}

QString BrowserState::saveProblem() const
{
    for (const DelayedSave* saving : savings_) {
        if (!saving->problem().isEmpty())
            return saving->problem();
    }
    return QString();
}

void BrowserState::savePreferences()
{
    savingPreferences_.schedule();
    savingPreferences_.flush();
    emit preferencesChanged();
}

void BrowserState::end(Timing timing)
{
    const auto isDue = [timing](char code) { return static_cast<int>(timing) == code; };
    if (isDue(user().getCookieDeleteTiming()))
        cookies.clear();
    if (isDue(user().getCertificationDeleteTiming()))
        logins.clear();
    if (isDue(common().getCacheDeleteTiming()) && QFileInfo(CACHE_DIR).isDir())
        TVNC_NetworkDiskCache::getInstance()->clear();
    save();
}

QStringList BrowserState::fonts() const
{
    TVNC_FontListSetting& list = *TVNC_FontListSetting::getInstance();
    QStringList names;
    for (int i = 0; i < list.getCount(); ++i)
        names.append(list.getFont(i));
    return names;
}

QString BrowserState::firstPage() const
{
    QString url;
    if (user().getStartUp())
        user().getLastPage(&url);
    else
        user().getHomePage(&url);
    return url;
}

void BrowserState::setLastPage(const QString& url)
{
    if (user().setLastPage(url))
        savingPreferences_.schedule();
}
