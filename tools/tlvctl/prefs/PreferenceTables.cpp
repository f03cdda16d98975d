#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/prefs/Preferences.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>

namespace {

using Common = TVNC_BrowserCommonSetting;
using User = TVNC_BrowserUserSetting;

const QStringList NO_YES{"no", "yes"};
const QStringList NEVER_LOGOUT_TIMEOUT{"never", "logout", "timeout"};

/// What all have: name, meaning, where it stands.
Preference named(const char* name, const char* meaning, const char* group, const char* leaf)
{
    Preference preference;
    preference.name = name;
    preference.meaning = meaning;
    preference.group = group;
    preference.leaf = leaf;
    return preference;
}

/// A choice: name, meaning, where it stands, words for people, words of the document, getter, setter.
template <typename Store, typename Code, typename Result>
Preference choice(const char* name, const char* meaning, const char* group, const char* leaf,
                  const QStringList& words, const char* storedWords, Code (Store::*get)(),
                  Result (Store::*set)(Code), int firstCode = 0)
{
    Preference preference = named(name, meaning, group, leaf);
    preference.words = words;
    preference.storedWords = QString(storedWords).split(' ');
    preference.firstCode = firstCode;
    preference.get = [=] { return words.value((Store::getInstance()->*get)() - firstCode).toUtf8(); };
    preference.set = [=](const QByteArray& value) {
        const int index = static_cast<int>(words.indexOf(QString::fromUtf8(value)));
        (Store::getInstance()->*set)(static_cast<Code>(index + firstCode));
        return index >= 0;
    };
    return preference;
}

/// A text: name, meaning, where it stands, limit in bytes of UTF-8, getter, setter.
template <typename Store>
Preference text(const char* name, const char* meaning, const char* group, const char* leaf, int maxBytes,
                void (Store::*get)(QString*), bool (Store::*set)(QString))
{
    Preference preference = named(name, meaning, group, leaf);
    preference.maxBytes = maxBytes;
    preference.get = [get] {
        QString value;
        (Store::getInstance()->*get)(&value);
        return value.toUtf8();
    };
    preference.set = [set](const QByteArray& value) {
        return (Store::getInstance()->*set)(QString::fromUtf8(value));
    };
    return preference;
}

/// A part of the proxy's login, in bytes.
Preference login(const char* name, const char* meaning, const char* leaf, bool isSecret,
                 void (Common::*get)(QByteArray*), bool (Common::*set)(QByteArray))
{
    Preference preference = named(name, meaning, "proxy", leaf);
    preference.maxBytes = TVNG_LOGIN_MAX_BYTES;
    preference.isBytes = true;
    preference.isSecret = isSecret;
    preference.get = [get] {
        QByteArray value;
        (Common::getInstance()->*get)(&value);
        return value;
    };
    preference.set = [set](const QByteArray& value) { return (Common::getInstance()->*set)(value); };
    return preference;
}

} // namespace

std::vector<Preference> commonPreferences()
{
    return {
        choice("cookies.accept", "cookies are accepted", "cookie", "acceptCookie", NO_YES, TVNG_REFUSE_ACCEPT,
               &Common::getRcvCookieInfo, &Common::setRcvCookieInfo),
        choice("cache.enabled", "the disk cache is used", "cache", "enableCache", NO_YES, TVNG_FALSE_TRUE,
               &Common::getUseCacheInfo, &Common::setUseCacheInfo),
        choice("cache.clear", "when the disk cache is emptied", "cache", "cacheDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TVNG_DELETE_TIMINGS, &Common::getCacheDeleteTiming,
               &Common::setCacheDeleteTiming),
        choice("keyboard.priority", "which keyboard has priority, at USB or on the screen", "keyboard",
               "priority", {"usb", "soft"}, TVNG_USB_SOFT, &Common::getSWKeyBoardTypeInfo,
               &Common::setSWKeyBoardTypeInfo),
        choice("javascript.enabled", "pages may run JavaScript", "javascript", "enableJavascript", NO_YES,
               TVNG_FALSE_TRUE, &Common::getUseJavaScriptInfo, &Common::setUseJavaScriptInfo),
        choice("flash.enabled", "the Flash plug-in plays", "plugin", "enableFlashPlugin", NO_YES,
               TVNG_FALSE_TRUE, &Common::getPlayFlashInfo, &Common::setPlayFlashInfo),
        choice("proxy.enabled", "the proxy is used", "proxy", "enableProxy", NO_YES, TVNG_FALSE_TRUE,
               &Common::getUseProxyInfo, &Common::setUseProxyInfo),
        text("proxy.host", "the proxy's host", "proxy", "hostName", TVNG_DOMAIN_MAX_BYTES,
             &Common::getProxyServerStr, &Common::setProxyServerStr),
        text("proxy.http-port", "the proxy's port for HTTP", "proxy", "portHTTP", TVNG_PORT_MAX_BYTES,
             &Common::getProxyHttpPortStr, &Common::setProxyHttpPortStr),
        text("proxy.https-port", "the proxy's port for HTTPS", "proxy", "portHTTPS", TVNG_PORT_MAX_BYTES,
             &Common::getProxyHttpsPortStr, &Common::setProxyHttpsPortStr),
        choice("proxy.http11", "HTTP/1.1 is used through the proxy", "proxy", "enableHTTP11", NO_YES,
               TVNG_FALSE_TRUE, &Common::getUseProxyHttpInfo, &Common::setUseProxyHttpInfo),
        text("proxy.bypass", "domains for which the proxy is not used", "proxy", "unusedDomain",
             TVNG_DOMAIN_MAX_BYTES, &Common::getNoProxyDomainStr, &Common::setNoProxyDomainStr),
        choice("proxy.auth", "the proxy asks for a login", "proxy", "enableProxyAuth", NO_YES,
               TVNG_FALSE_TRUE, &Common::getUseProxyCertificationInfo, &Common::setUseProxyCertificationInfo),
        login("proxy.user", "the proxy's user name", "proxyUserName", false, &Common::getProxyAccountStr,
              &Common::setProxyAccountStr),
        login("proxy.password", "the proxy's password", "proxyUserPass", true, &Common::getProxyPasswordStr,
              &Common::setProxyPasswordStr),
        choice("security.ssl30", "SSL 3.0 may be used", "security", "enableSSL30", NO_YES, TVNG_FALSE_TRUE,
               &Common::getUseSSL30, &Common::setUseSSL30),
        choice("security.tls10", "TLS 1.0 may be used", "security", "enableTLS10", NO_YES, TVNG_FALSE_TRUE,
               &Common::getUseTLS10, &Common::setUseTLS10),
    };
}

std::vector<Preference> userPreferences()
{
    const QStringList zooms = QString(TVNG_ZOOMS).split(' ');
    return {
        text("page.home", "the home page", "pageInfo", "home", TVNG_TEXT_MAX_BYTES, &User::getHomePage,
             &User::setHomePage),
        choice("page.startup", "what is shown first, the home page or the last one", "pageInfo", "startup",
               {"home", "last"}, TVNG_START_UPS, &User::getStartUp, &User::setStartUp),
        text("page.last", "the page that was shown last", "pageInfo", "lastPageURL", TVNG_TEXT_MAX_BYTES,
             &User::getLastPage, &User::setLastPage),
        choice("page.zoom", "the zoom of pages", "pageInfo", "Zoom", zooms, TVNG_ZOOMS, &User::getZoomInfo,
               &User::setZoomInfo, TVNG_ZOOM_FIRST),
        choice("cookies.clear", "when cookies are deleted", "cookie", "cookieDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TVNG_DELETE_TIMINGS, &User::getCookieDeleteTiming,
               &User::setCookieDeleteTiming),
        choice("auth.clear", "when logins for servers are deleted", "authInfo", "authInfoDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TVNG_DELETE_TIMINGS, &User::getCertificationDeleteTiming,
               &User::setCertificationDeleteTiming),
        text("page.font", "the font of pages", "font", "fontName", TVNG_TEXT_MAX_BYTES, &User::getFontName,
             &User::setFontName),
    };
}
