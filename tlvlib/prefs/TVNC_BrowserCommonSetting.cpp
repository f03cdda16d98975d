#include "tlvlib/prefs/TVNC_BrowserCommonSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/prefs/TVNC_Preference.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_immortal.h"

namespace {

/// The words of the choices, in the order of their codes.
const char REFUSE_ACCEPT[] = "refuse accept";
const char FALSE_TRUE[] = "false true";
const char USB_SOFT[] = "usb soft";

/// In bytes of UTF-8.
const int DOMAIN_MAX_BYTES = 253;
const int PORT_MAX_BYTES = 5;

/// In bytes before they become base64.
const int LOGIN_MAX_BYTES = 80;

/// Every preference of the document, in the order in which a new one gets them.
struct Preferences : public TVNC_PreferenceList
{
    TVNC_ChoicePreference acceptCookie{*this, "cookie", "acceptCookie", REFUSE_ACCEPT, 1};
    TVNC_ChoicePreference enableCache{*this, "cache", "enableCache", FALSE_TRUE, 1};
    TVNC_ChoicePreference cacheDeleteTiming{*this, "cache", "cacheDeleteTiming", TVNG_DELETE_TIMINGS, 0};
    TVNC_ChoicePreference keyBoardPriority{*this, "keyboard", "priority", USB_SOFT, 1};
    TVNC_ChoicePreference enableJavascript{*this, "javascript", "enableJavascript", FALSE_TRUE, 1};
    TVNC_ChoicePreference enableFlashPlugin{*this, "plugin", "enableFlashPlugin", FALSE_TRUE, 1};
    TVNC_ChoicePreference enableProxy{*this, "proxy", "enableProxy", FALSE_TRUE, 0};
    TVNC_TextPreference hostName{*this, "proxy", "hostName", DOMAIN_MAX_BYTES, ""};
    TVNC_TextPreference portHTTP{*this, "proxy", "portHTTP", PORT_MAX_BYTES, "8080"};
    TVNC_TextPreference portHTTPS{*this, "proxy", "portHTTPS", PORT_MAX_BYTES, "8080"};
    TVNC_ChoicePreference enableHTTP11{*this, "proxy", "enableHTTP11", FALSE_TRUE, 1};
    TVNC_TextPreference unusedDomain{*this, "proxy", "unusedDomain", DOMAIN_MAX_BYTES, ""};
    TVNC_ChoicePreference enableProxyAuth{*this, "proxy", "enableProxyAuth", FALSE_TRUE, 0};
    TVNC_BytesPreference proxyUserName{*this, "proxy", "proxyUserName", LOGIN_MAX_BYTES};
    TVNC_BytesPreference proxyUserPass{*this, "proxy", "proxyUserPass", LOGIN_MAX_BYTES};
    TVNC_ChoicePreference enableSSL30{*this, "security", "enableSSL30", FALSE_TRUE, 1};
    TVNC_ChoicePreference enableTLS10{*this, "security", "enableTLS10", FALSE_TRUE, 1};
};

const Preferences& preferences()
{
    return TVNG_immortal<Preferences>();
}

QString pathIn(const QString& dir)
{
    return dir + QEXC_TextCodec::fromSJIS("repostry.xml");
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
    QString path = pathIn(*dir);
    load(path);
    preferences().complete(*this, "repostry_common");
    TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::loadSetting] end");
}

void TVNC_BrowserCommonSetting::saveSetting(QString* dir)
{
    TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::saveSetting] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_BrowserCommonSetting::saveSetting] Common Path is NULL or empty.");
        return;
    }
    QString path = pathIn(*dir);
    QByteArray password;
    getProxyPasswordStr(&password);
    const TVNC_SecretSave secret(!password.isEmpty());
    save(path);
    TVNG_DebugPrint(3, "[TVNC_BrowserCommonSetting::saveSetting] end");
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
    preferences().acceptCookie.set(*this, c_accept);
}

char TVNC_BrowserCommonSetting::getRcvCookieInfo()
{
    return static_cast<char>(preferences().acceptCookie.code(*this));
}

void TVNC_BrowserCommonSetting::setUseCacheInfo(char c_use)
{
    preferences().enableCache.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseCacheInfo()
{
    return static_cast<char>(preferences().enableCache.code(*this));
}

void TVNC_BrowserCommonSetting::setCacheDeleteTiming(char c_timing)
{
    preferences().cacheDeleteTiming.set(*this, c_timing);
}

char TVNC_BrowserCommonSetting::getCacheDeleteTiming()
{
    return static_cast<char>(preferences().cacheDeleteTiming.code(*this));
}

void TVNC_BrowserCommonSetting::setSWKeyBoardTypeInfo(char c_soft)
{
    preferences().keyBoardPriority.set(*this, c_soft);
}

char TVNC_BrowserCommonSetting::getSWKeyBoardTypeInfo()
{
    return static_cast<char>(preferences().keyBoardPriority.code(*this));
}

void TVNC_BrowserCommonSetting::setUseJavaScriptInfo(char c_use)
{
    preferences().enableJavascript.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseJavaScriptInfo()
{
    return static_cast<char>(preferences().enableJavascript.code(*this));
}

void TVNC_BrowserCommonSetting::setPlayFlashInfo(char c_play)
{
    preferences().enableFlashPlugin.set(*this, c_play);
}

char TVNC_BrowserCommonSetting::getPlayFlashInfo()
{
    return static_cast<char>(preferences().enableFlashPlugin.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyInfo(char c_use)
{
    preferences().enableProxy.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyInfo()
{
    return static_cast<char>(preferences().enableProxy.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyHttpInfo(char c_use)
{
    preferences().enableHTTP11.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyHttpInfo()
{
    return static_cast<char>(preferences().enableHTTP11.code(*this));
}

void TVNC_BrowserCommonSetting::setUseProxyCertificationInfo(char c_use)
{
    preferences().enableProxyAuth.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseProxyCertificationInfo()
{
    return static_cast<char>(preferences().enableProxyAuth.code(*this));
}

void TVNC_BrowserCommonSetting::setUseSSL30(char c_use)
{
    preferences().enableSSL30.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseSSL30()
{
    return static_cast<char>(preferences().enableSSL30.code(*this));
}

void TVNC_BrowserCommonSetting::setUseTLS10(char c_use)
{
    preferences().enableTLS10.set(*this, c_use);
}

char TVNC_BrowserCommonSetting::getUseTLS10()
{
    return static_cast<char>(preferences().enableTLS10.code(*this));
}

// --- Texts ------------------------------------------------------------------------------------------------

bool TVNC_BrowserCommonSetting::setProxyServerStr(QString host)
{
    return preferences().hostName.set(*this, host);
}

void TVNC_BrowserCommonSetting::getProxyServerStr(QString* pc_host)
{
    preferences().hostName.get(*this, pc_host);
}

bool TVNC_BrowserCommonSetting::setProxyHttpPortStr(QString port)
{
    return preferences().portHTTP.set(*this, port);
}

void TVNC_BrowserCommonSetting::getProxyHttpPortStr(QString* pc_port)
{
    preferences().portHTTP.get(*this, pc_port);
}

bool TVNC_BrowserCommonSetting::setProxyHttpsPortStr(QString port)
{
    return preferences().portHTTPS.set(*this, port);
}

void TVNC_BrowserCommonSetting::getProxyHttpsPortStr(QString* pc_port)
{
    preferences().portHTTPS.get(*this, pc_port);
}

bool TVNC_BrowserCommonSetting::setNoProxyDomainStr(QString domains)
{
    return preferences().unusedDomain.set(*this, domains);
}

void TVNC_BrowserCommonSetting::getNoProxyDomainStr(QString* pc_domains)
{
    preferences().unusedDomain.get(*this, pc_domains);
}

// --- The login for the proxy ------------------------------------------------------------------------------

bool TVNC_BrowserCommonSetting::setProxyAccountStr(QByteArray account)
{
    return preferences().proxyUserName.set(*this, account);
}

void TVNC_BrowserCommonSetting::getProxyAccountStr(QByteArray* pc_account)
{
    preferences().proxyUserName.get(*this, pc_account);
}

bool TVNC_BrowserCommonSetting::setProxyPasswordStr(QByteArray password)
{
    return preferences().proxyUserPass.set(*this, password);
}

void TVNC_BrowserCommonSetting::getProxyPasswordStr(QByteArray* pc_password)
{
    preferences().proxyUserPass.get(*this, pc_password);
}
