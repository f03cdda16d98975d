#include "tlvlib/prefs/TVNC_BrowserCommonSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/prefs/TVNC_Preference.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"

namespace {

const char COMMON_FILE[] = "repostry.xml";

/// Every preference of the document, in the order in which a new one gets them.
struct CommonPreferences : public TVNC_PreferenceList
{
    TVNC_ChoicePreference acceptCookie{*this, "cookie", "acceptCookie", TVNG_REFUSE_ACCEPT, 1};
    TVNC_ChoicePreference enableCache{*this, "cache", "enableCache", TVNG_FALSE_TRUE, 1};
    TVNC_ChoicePreference cacheDeleteTiming{*this, "cache", "cacheDeleteTiming", TVNG_DELETE_TIMINGS, 0};
    TVNC_ChoicePreference keyBoardPriority{*this, "keyboard", "priority", TVNG_USB_SOFT, 1};
    TVNC_ChoicePreference enableJavascript{*this, "javascript", "enableJavascript", TVNG_FALSE_TRUE, 1};
    TVNC_ChoicePreference enableFlashPlugin{*this, "plugin", "enableFlashPlugin", TVNG_FALSE_TRUE, 1};
    TVNC_ChoicePreference enableProxy{*this, "proxy", "enableProxy", TVNG_FALSE_TRUE, 0};
    TVNC_TextPreference hostName{*this, "proxy", "hostName", TVNG_DOMAIN_MAX_BYTES, ""};
    TVNC_TextPreference portHTTP{*this, "proxy", "portHTTP", TVNG_PORT_MAX_BYTES, "8080"};
    TVNC_TextPreference portHTTPS{*this, "proxy", "portHTTPS", TVNG_PORT_MAX_BYTES, "8080"};
    TVNC_ChoicePreference enableHTTP11{*this, "proxy", "enableHTTP11", TVNG_FALSE_TRUE, 1};
    TVNC_TextPreference unusedDomain{*this, "proxy", "unusedDomain", TVNG_DOMAIN_MAX_BYTES, ""};
    TVNC_ChoicePreference enableProxyAuth{*this, "proxy", "enableProxyAuth", TVNG_FALSE_TRUE, 0};
    TVNC_BytesPreference proxyUserName{*this, "proxy", "proxyUserName", TVNG_LOGIN_MAX_BYTES};
    TVNC_BytesPreference proxyUserPass{*this, "proxy", "proxyUserPass", TVNG_LOGIN_MAX_BYTES};
    TVNC_ChoicePreference enableSSL30{*this, "security", "enableSSL30", TVNG_FALSE_TRUE, 1};
    TVNC_ChoicePreference enableTLS10{*this, "security", "enableTLS10", TVNG_FALSE_TRUE, 1};
};

const CommonPreferences& commonPreferences()
{
    return TVNG_immortal<CommonPreferences>();
}

} // namespace

TVNC_BrowserCommonSetting::TVNC_BrowserCommonSetting() : c_keyBoardType_(0) {}

TVNC_BrowserCommonSetting::~TVNC_BrowserCommonSetting() {}

TVNC_BrowserCommonSetting* TVNC_BrowserCommonSetting::getInstance()
{
    static TVNC_BrowserCommonSetting instance;
    return &instance;
}

void TVNC_BrowserCommonSetting::loadSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::loadSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserCommonSetting::loadSetting] Common Path is NULL or empty.");
        return;
    }
    TVNG_ifMemory([&] {
        QString path = TVNG_pathIn(*dir, COMMON_FILE);
        load(path);
        commonPreferences().complete(*this, "repostry_common");
        TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::loadSetting] end");
    });
}

void TVNC_BrowserCommonSetting::saveSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::saveSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserCommonSetting::saveSetting] Common Path is NULL or empty.");
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = TVNG_pathIn(*dir, COMMON_FILE);
        QByteArray password("unknown"); // it stays when there is no memory for the answer
        getProxyPasswordStr(&password);
        const TVNC_SecretSave secret(!password.isEmpty());
        save(path);
        TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::saveSetting] end");
    });
}

char TVNC_BrowserCommonSetting::getKeyBoardTypeInfo()
{
    return c_keyBoardType_;
}

void TVNC_BrowserCommonSetting::setKeyBoardTypeInfo(char c_type)
{
    c_keyBoardType_ = c_type;
}

// --- Choices ----------------------------------------------------------------------------------------------

void TVNC_BrowserCommonSetting::setRcvCookieInfo(char c_accept)
{
    commonPreferences().acceptCookie.set(*this, c_accept);
}

char TVNC_BrowserCommonSetting::getRcvCookieInfo()
{
    return static_cast<char>(commonPreferences().acceptCookie.code(*this));
}

void TVNC_BrowserCommonSetting::setUseCacheInfo(char c_use)
{
    commonPreferences().enableCache.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseCacheInfo()
{
    return static_cast<char>(commonPreferences().enableCache.code(*this));
}

void TVNC_BrowserCommonSetting::setCacheDeleteTiming(char c_timing)
{
    commonPreferences().cacheDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserCommonSetting::getCacheDeleteTiming()
{
    return static_cast<char>(commonPreferences().cacheDeleteTiming.code(*this));
}

void TVNC_BrowserCommonSetting::setSWKeyBoardTypeInfo(char c_soft)
{
    commonPreferences().keyBoardPriority.set(*this, c_soft);
}

char TVNC_BrowserCommonSetting::getSWKeyBoardTypeInfo()
{
    return static_cast<char>(commonPreferences().keyBoardPriority.code(*this));
}

void TVNC_BrowserCommonSetting::setUseJavaScriptInfo(char c_use)
{
    commonPreferences().enableJavascript.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseJavaScriptInfo()
{
    return static_cast<char>(commonPreferences().enableJavascript.code(*this));
}

void TVNC_BrowserCommonSetting::setPlayFlashInfo(char c_play)
{
    commonPreferences().enableFlashPlugin.set(*this, c_play);
}

char TVNC_BrowserCommonSetting::getPlayFlashInfo()
{
    return static_cast<char>(commonPreferences().enableFlashPlugin.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyInfo(char c_use)
{
    commonPreferences().enableProxy.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyInfo()
{
    return static_cast<char>(commonPreferences().enableProxy.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyHttpInfo(char c_use)
{
    commonPreferences().enableHTTP11.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyHttpInfo()
{
    return static_cast<char>(commonPreferences().enableHTTP11.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyCertificationInfo(char c_use)
{
    commonPreferences().enableProxyAuth.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyCertificationInfo()
{
    return static_cast<char>(commonPreferences().enableProxyAuth.code(*this));
}

void TVNC_BrowserCommonSetting::setUseSSL30(char c_use)
{
    commonPreferences().enableSSL30.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseSSL30()
{
    return static_cast<char>(commonPreferences().enableSSL30.code(*this));
}

void TVNC_BrowserCommonSetting::setUseTLS10(char c_use)
{
    commonPreferences().enableTLS10.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseTLS10()
{
    return static_cast<char>(commonPreferences().enableTLS10.code(*this));
}

// --- Texts ------------------------------------------------------------------------------------------------

bool TVNC_BrowserCommonSetting::setProxyServerStr(QString host)
{
    return commonPreferences().hostName.set(*this, host);
}

void TVNC_BrowserCommonSetting::getProxyServerStr(QString* pc_host)
{
    commonPreferences().hostName.get(*this, pc_host);
}

bool TVNC_BrowserCommonSetting::setProxyHttpPortStr(QString port)
{
    return commonPreferences().portHTTP.set(*this, port);
}

void TVNC_BrowserCommonSetting::getProxyHttpPortStr(QString* pc_port)
{
    commonPreferences().portHTTP.get(*this, pc_port);
}

bool TVNC_BrowserCommonSetting::setProxyHttpsPortStr(QString port)
{
    return commonPreferences().portHTTPS.set(*this, port);
}

void TVNC_BrowserCommonSetting::getProxyHttpsPortStr(QString* pc_port)
{
    commonPreferences().portHTTPS.get(*this, pc_port);
}

bool TVNC_BrowserCommonSetting::setNoProxyDomainStr(QString domains)
{
    return commonPreferences().unusedDomain.set(*this, domains);
}

void TVNC_BrowserCommonSetting::getNoProxyDomainStr(QString* pc_domains)
{
    commonPreferences().unusedDomain.get(*this, pc_domains);
}

// --- The login for the proxy ------------------------------------------------------------------------------

bool TVNC_BrowserCommonSetting::setProxyAccountStr(QByteArray account)
{
    return commonPreferences().proxyUserName.set(*this, account);
}

void TVNC_BrowserCommonSetting::getProxyAccountStr(QByteArray* pc_account)
{
    commonPreferences().proxyUserName.get(*this, pc_account);
}

bool TVNC_BrowserCommonSetting::setProxyPasswordStr(QByteArray password)
{
    return commonPreferences().proxyUserPass.set(*this, password);
}

void TVNC_BrowserCommonSetting::getProxyPasswordStr(QByteArray* pc_password)
{
    commonPreferences().proxyUserPass.get(*this, pc_password);
}
