#include "tlvlib/prefs/TVNC_BrowserUserSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/prefs/TVNC_Preference.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"

namespace {

const char USER_FILE[] = "repostry_private.xml";

const int ZOOM_DEFAULT = 6;

const char BLANK_PAGE[] = "about:blank";

/// Every preference of the document, in the order in which a new one gets them.
struct UserPreferences : public TVNC_PreferenceList
{
    TVNC_TextPreference home{
        *this, "pageInfo", "home", TVNG_TEXT_MAX_BYTES, BLANK_PAGE, TVNC_TextPreference::EMPTY_IS_DEFAULT};
    TVNC_ChoicePreference startup{*this, "pageInfo", "startup", TVNG_START_UPS, 0};
    TVNC_TextPreference lastPageURL{*this,         "pageInfo",
                                    "lastPageURL", TVNG_TEXT_MAX_BYTES,
                                    BLANK_PAGE,    TVNC_TextPreference::EMPTY_IS_DEFAULT};
    TVNC_ChoicePreference zoom{*this, "pageInfo", "Zoom", TVNG_ZOOMS, ZOOM_DEFAULT, TVNG_ZOOM_FIRST};
    TVNC_ChoicePreference cookieDeleteTiming{*this, "cookie", "cookieDeleteTiming", TVNG_DELETE_TIMINGS, 0};
    TVNC_ChoicePreference authInfoDeleteTiming{*this, "authInfo", "authInfoDeleteTiming", TVNG_DELETE_TIMINGS,
                                               0};
    TVNC_TextPreference fontName{*this, "font", "fontName", TVNG_TEXT_MAX_BYTES, ""};
};

const UserPreferences& userPreferences()
{
    return TVNG_immortal<UserPreferences>();
}

} // namespace

TVNC_BrowserUserSetting::TVNC_BrowserUserSetting() {}

TVNC_BrowserUserSetting::~TVNC_BrowserUserSetting() {}

TVNC_BrowserUserSetting* TVNC_BrowserUserSetting::getInstance()
{
    static TVNC_BrowserUserSetting instance;
    return &instance;
}

void TVNC_BrowserUserSetting::loadSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::loadSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::loadSetting] User Path is NULL or empty.");
        return;
    }
    TVNG_ifMemory([&] {
        QString path = TVNG_pathIn(*dir, USER_FILE);
        load(path);
        userPreferences().complete(*this, "repostry");
        TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::loadSetting] end");
    });
}

void TVNC_BrowserUserSetting::saveSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::saveSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::saveSetting] User Path is NULL or empty.");
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = TVNG_pathIn(*dir, USER_FILE);
        save(path);
        TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::saveSetting] end");
    });
}

void TVNC_BrowserUserSetting::setStartUp(char c_startUp)
{
    userPreferences().startup.set(*this, c_startUp);
}

char TVNC_BrowserUserSetting::getStartUp()
{
    return static_cast<char>(userPreferences().startup.code(*this));
}

void TVNC_BrowserUserSetting::setCookieDeleteTiming(char c_timing)
{
    userPreferences().cookieDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserUserSetting::getCookieDeleteTiming()
{
    return static_cast<char>(userPreferences().cookieDeleteTiming.code(*this));
}

void TVNC_BrowserUserSetting::setCertificationDeleteTiming(char c_timing)
{
    userPreferences().authInfoDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserUserSetting::getCertificationDeleteTiming()
{
    return static_cast<char>(userPreferences().authInfoDeleteTiming.code(*this));
}

bool TVNC_BrowserUserSetting::setHomePage(QString url)
{
    return userPreferences().home.set(*this, url);
}

void TVNC_BrowserUserSetting::getHomePage(QString* pc_url)
{
    if (!pc_url)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getHomePage] Parameter is NULL.");
    userPreferences().home.get(*this, pc_url);
}

bool TVNC_BrowserUserSetting::setLastPage(QString url)
{
    return userPreferences().lastPageURL.set(*this, url);
}

void TVNC_BrowserUserSetting::getLastPage(QString* pc_url)
{
    if (!pc_url)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getLastPage] Parameter is NULL.");
    userPreferences().lastPageURL.get(*this, pc_url);
}

bool TVNC_BrowserUserSetting::setFontName(QString name)
{
    return userPreferences().fontName.set(*this, name);
}

void TVNC_BrowserUserSetting::getFontName(QString* pc_name)
{
    if (!pc_name)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getFontName] Parameter is NULL.");
    userPreferences().fontName.get(*this, pc_name);
}

bool TVNC_BrowserUserSetting::setZoomInfo(short si_code)
{
    return userPreferences().zoom.setOrRefuse(*this, si_code);
}

short TVNC_BrowserUserSetting::getZoomInfo()
{
    return static_cast<short>(userPreferences().zoom.code(*this));
}
