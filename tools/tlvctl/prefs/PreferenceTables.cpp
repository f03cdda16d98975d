#include "tools/tlvctl/prefs/PreferenceTables.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>

namespace {

using Common = TVNC_BrowserCommonSetting;
using User = TVNC_BrowserUserSetting;

const QStringList NO_YES{"no", "yes"};
const QStringList FALSE_TRUE{"false", "true"};
const QStringList NEVER_LOGOUT_TIMEOUT{"never", "logout", "timeout"};
const QStringList TIMINGS{"notDelete", "logout", "timeout"};

/// A choice: name, meaning, where it stands, words for people, words of the document, getter, setter.
template <typename Store, typename Code, typename Result>
Preference choice(const char* name, const char* meaning, const char* group, const char* leaf,
                  const QStringList& words, const QStringList& storedWords, Code (Store::*get)(),
                  Result (Store::*set)(Code), int firstCode = 0)
{
    Preference preference;
    preference.name = name;
    preference.meaning = meaning;
    preference.group = group;
    preference.leaf = leaf;
    preference.words = words;
    preference.storedWords = storedWords;
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
    Preference preference;
    preference.name = name;
    preference.meaning = meaning;
    preference.group = group;
    preference.leaf = leaf;
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
    Preference preference;
    preference.name = name;
    preference.meaning = meaning;
    preference.group = "proxy";
    preference.leaf = leaf;
    preference.maxBytes = 80;
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
        choice("cookies.accept", "cookies are accepted", "cookie", "acceptCookie", NO_YES,
               {"refuse", "accept"}, &Common::getRcvCookieInfo, &Common::setRcvCookieInfo),
        choice("cache.enabled", "the disk cache is used", "cache", "enableCache", NO_YES, FALSE_TRUE,
               &Common::getUseCacheInfo, &Common::setUseCacheInfo),
        choice("cache.clear", "when the disk cache is emptied", "cache", "cacheDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TIMINGS, &Common::getCacheDeleteTiming, &Common::setCacheDeleteTiming),
        choice("keyboard.priority", "which keyboard has priority, at USB or on the screen", "keyboard",
               "priority", {"usb", "soft"}, {"usb", "soft"}, &Common::getSWKeyBoardTypeInfo,
               &Common::setSWKeyBoardTypeInfo),
        choice("javascript.enabled", "pages may run JavaScript", "javascript", "enableJavascript", NO_YES,
               FALSE_TRUE, &Common::getUseJavaScriptInfo, &Common::setUseJavaScriptInfo),
        choice("flash.enabled", "the Flash plug-in plays", "plugin", "enableFlashPlugin", NO_YES, FALSE_TRUE,
               &Common::getPlayFlashInfo, &Common::setPlayFlashInfo),
        choice("proxy.enabled", "the proxy is used", "proxy", "enableProxy", NO_YES, FALSE_TRUE,
               &Common::getUseProxyInfo, &Common::setUseProxyInfo),
        text("proxy.host", "the proxy's host", "proxy", "hostName", 253, &Common::getProxyServerStr,
             &Common::setProxyServerStr),
        text("proxy.http-port", "the proxy's port for HTTP", "proxy", "portHTTP", 5,
             &Common::getProxyHttpPortStr, &Common::setProxyHttpPortStr),
        text("proxy.https-port", "the proxy's port for HTTPS", "proxy", "portHTTPS", 5,
             &Common::getProxyHttpsPortStr, &Common::setProxyHttpsPortStr),
        choice("proxy.http11", "HTTP/1.1 is used through the proxy", "proxy", "enableHTTP11", NO_YES,
               FALSE_TRUE, &Common::getUseProxyHttpInfo, &Common::setUseProxyHttpInfo),
        text("proxy.bypass", "domains for which the proxy is not used", "proxy", "unusedDomain", 253,
             &Common::getNoProxyDomainStr, &Common::setNoProxyDomainStr),
        choice("proxy.auth", "the proxy asks for a login", "proxy", "enableProxyAuth", NO_YES, FALSE_TRUE,
               &Common::getUseProxyCertificationInfo, &Common::setUseProxyCertificationInfo),
        login("proxy.user", "the proxy's user name", "proxyUserName", false, &Common::getProxyAccountStr,
              &Common::setProxyAccountStr),
        login("proxy.password", "the proxy's password", "proxyUserPass", true, &Common::getProxyPasswordStr,
              &Common::setProxyPasswordStr),
        choice("security.ssl30", "SSL 3.0 may be used", "security", "enableSSL30", NO_YES, FALSE_TRUE,
               &Common::getUseSSL30, &Common::setUseSSL30),
        choice("security.tls10", "TLS 1.0 may be used", "security", "enableTLS10", NO_YES, FALSE_TRUE,
               &Common::getUseTLS10, &Common::setUseTLS10),
    };
}

std::vector<Preference> userPreferences()
{
    const QStringList zooms{"0.5", "0.6", "0.7", "0.8", "0.9", "1.0", "1.1", "1.2", "1.3", "1.4", "1.5"};
    return {
        text("page.home", "the home page", "pageInfo", "home", 256, &User::getHomePage, &User::setHomePage),
        choice("page.startup", "what is shown first, the home page or the last one", "pageInfo", "startup",
               {"home", "last"}, {"homepage", "lastpage"}, &User::getStartUp, &User::setStartUp),
        text("page.last", "the page that was shown last", "pageInfo", "lastPageURL", 256, &User::getLastPage,
             &User::setLastPage),
        choice("page.zoom", "the zoom of pages", "pageInfo", "Zoom", zooms, zooms, &User::getZoomInfo,
               &User::setZoomInfo, 1),
        choice("cookies.clear", "when cookies are deleted", "cookie", "cookieDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TIMINGS, &User::getCookieDeleteTiming, &User::setCookieDeleteTiming),
        choice("auth.clear", "when logins for servers are deleted", "authInfo", "authInfoDeleteTiming",
               NEVER_LOGOUT_TIMEOUT, TIMINGS, &User::getCertificationDeleteTiming,
               &User::setCertificationDeleteTiming),
        text("page.font", "the font of pages", "font", "fontName", 256, &User::getFontName,
             &User::setFontName),
    };
}
