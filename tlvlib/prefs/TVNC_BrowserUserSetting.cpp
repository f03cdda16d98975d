#include "tlvlib/prefs/TVNC_BrowserUserSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/prefs/TVNC_Preference.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_immortal.h"

namespace {

/// The words of the choices, in the order of their codes.
const char STARTUPS[] = "homepage lastpage";
const char ZOOMS[] = "0.5 0.6 0.7 0.8 0.9 1.0 1.1 1.2 1.3 1.4 1.5";

const int ZOOM_FIRST = 1;
const int ZOOM_DEFAULT = 6;

/// In bytes of UTF-8.
const int TEXT_MAX_BYTES = 256;

const char BLANK_PAGE[] = "about:blank";

/// Every preference of the document, in the order in which a new one gets them.
struct Preferences : public TVNC_PreferenceList
{
    TVNC_TextPreference home{*this,          "pageInfo", "home",
                             TEXT_MAX_BYTES, BLANK_PAGE, TVNC_TextPreference::EMPTY_IS_DEFAULT};
    TVNC_ChoicePreference startup{*this, "pageInfo", "startup", STARTUPS, 0};
    TVNC_TextPreference lastPageURL{*this,          "pageInfo", "lastPageURL",
                                    TEXT_MAX_BYTES, BLANK_PAGE, TVNC_TextPreference::EMPTY_IS_DEFAULT};
    TVNC_ChoicePreference zoom{*this, "pageInfo", "Zoom", ZOOMS, ZOOM_DEFAULT, ZOOM_FIRST};
    TVNC_ChoicePreference cookieDeleteTiming{*this, "cookie", "cookieDeleteTiming", TVNG_DELETE_TIMINGS, 0};
    TVNC_ChoicePreference authInfoDeleteTiming{*this, "authInfo", "authInfoDeleteTiming", TVNG_DELETE_TIMINGS,
                                               0};
    TVNC_TextPreference fontName{*this, "font", "fontName", TEXT_MAX_BYTES, ""};
};

const Preferences& preferences()
{
    return TVNG_immortal<Preferences>();
}

QString pathIn(const QString& dir)
{
    return dir + QEXC_TextCodec::fromSJIS("repostry_private.xml");
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
    QString path = pathIn(*dir);
    load(path);
    preferences().complete(*this, "repostry");
    TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::loadSetting] end");
}

void TVNC_BrowserUserSetting::saveSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::saveSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::saveSetting] User Path is NULL or empty.");
        return;
    }
    QString path = pathIn(*dir);
    save(path);
    TVNG_DebugPrint(3, "[TVNC_BrowserUserSetting::saveSetting] end");
}

void TVNC_BrowserUserSetting::setStartUp(char c_startUp)
{
    preferences().startup.set(*this, c_startUp);
}

char TVNC_BrowserUserSetting::getStartUp()
{
    return static_cast<char>(preferences().startup.code(*this));
}

void TVNC_BrowserUserSetting::setCookieDeleteTiming(char c_timing)
{
    preferences().cookieDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserUserSetting::getCookieDeleteTiming()
{
    return static_cast<char>(preferences().cookieDeleteTiming.code(*this));
}

void TVNC_BrowserUserSetting::setCertificationDeleteTiming(char c_timing)
{
    preferences().authInfoDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserUserSetting::getCertificationDeleteTiming()
{
    return static_cast<char>(preferences().authInfoDeleteTiming.code(*this));
}

bool TVNC_BrowserUserSetting::setHomePage(QString url)
{
    return preferences().home.set(*this, url);
}

void TVNC_BrowserUserSetting::getHomePage(QString* pc_url)
{
    if (!pc_url)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getHomePage] Parameter is NULL.");
    preferences().home.get(*this, pc_url);
}

bool TVNC_BrowserUserSetting::setLastPage(QString url)
{
    return preferences().lastPageURL.set(*this, url);
}

void TVNC_BrowserUserSetting::getLastPage(QString* pc_url)
{
    if (!pc_url)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getLastPage] Parameter is NULL.");
    preferences().lastPageURL.get(*this, pc_url);
}

bool TVNC_BrowserUserSetting::setFontName(QString name)
{
    return preferences().fontName.set(*this, name);
}

void TVNC_BrowserUserSetting::getFontName(QString* pc_name)
{
    if (!pc_name)
        TVNG_DebugPrint(2, "[TVNC_BrowserUserSetting::getFontName] Parameter is NULL.");
    preferences().fontName.get(*this, pc_name);
}

bool TVNC_BrowserUserSetting::setZoomInfo(short si_code)
{
    return preferences().zoom.setOrRefuse(*this, si_code);
}

short TVNC_BrowserUserSetting::getZoomInfo()
{
    return static_cast<short>(preferences().zoom.code(*this));
}
