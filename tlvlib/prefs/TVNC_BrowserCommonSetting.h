#ifndef TLVLIB_PREFS_TVNC_BROWSERCOMMONSETTING_H
#define TLVLIB_PREFS_TVNC_BROWSERCOMMONSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The preferences of the device, whoever uses it, in the file "repostry.xml". All of them, with their
 * defaults:
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <repostry_common docInfo="1.0">
 *     <cookie>
 *         <acceptCookie>accept</acceptCookie>
 *     </cookie>
 *     <cache>
 *         <enableCache>true</enableCache>
 *         <cacheDeleteTiming>notDelete</cacheDeleteTiming>
 *     </cache>
 *     <keyboard>
 *         <priority>soft</priority>
 *     </keyboard>
 *     <javascript>
 *         <enableJavascript>true</enableJavascript>
 *     </javascript>
 *     <plugin>
 *         <enableFlashPlugin>true</enableFlashPlugin>
 *     </plugin>
 *     <proxy>
 *         <enableProxy>false</enableProxy>
 *         <hostName/>
 *         <portHTTP>8080</portHTTP>
 *         <portHTTPS>8080</portHTTPS>
 *         <enableHTTP11>true</enableHTTP11>
 *         <unusedDomain/>
 *         <enableProxyAuth>false</enableProxyAuth>
 *         <proxyUserName/>
 *         <proxyUserPass/>
 *     </proxy>
 *     <security>
 *         <enableSSL30>true</enableSSL30>
 *         <enableTLS10>true</enableTLS10>
 *     </security>
 * </repostry_common>
 * @endcode
 *
 * Loading fills in what is missing. Nothing is saved but by saveSetting(). What the file holds is not
 * repaired: a value that cannot be used is answered as told below and stays in the file until it is set.
 *
 * Before the first loadSetting() there is no document: setters change nothing, those with a result return
 * false; getters of texts and bytes leave their output as it was, all others return the default. Nothing but
 * loading and saving writes to the log.
 *
 * The name of the root and that of the user's preferences are crossed, "repostry_common" here in
 * "repostry.xml" and "repostry" there in "repostry_private.xml", and stay so: every device has such files.
 */
class TLVLIB_EXPORT TVNC_BrowserCommonSetting : public TVNC_XMLSetting
{
public:
    /// The one store of the process, made on first use.
    static TVNC_BrowserCommonSetting* getInstance();

    /**
     * Replaces the preferences by those of @a dir + "repostry.xml"; the directory ends in "/". Missing ones,
     * all when the file is missing, get their defaults. A root of another name is renamed and keeps its
     * children.
     *
     * Logs at level 3 "[TVNC_BrowserCommonSetting::loadSetting] start" and "... end". A null or empty
     * directory changes nothing and logs at level 2 "[TVNC_BrowserCommonSetting::loadSetting] Common Path is
     * NULL or empty.".
     */
    void loadSetting(QString* dir);

    /**
     * Writes the preferences to @a dir + "repostry.xml", as TVNG_SetSafeSave() has it. Before the first load
     * the file stays as it was. With a password for the proxy, a safe save makes a file that did not exist
     * for its owner alone.
     *
     * Logs at level 3 "[TVNC_BrowserCommonSetting::saveSetting] start" and "... end". A null or empty
     * directory writes nothing and logs at level 2 "[TVNC_BrowserCommonSetting::saveSetting] Common Path is
     * NULL or empty.".
     */
    void saveSetting(QString* dir);

    /**
     * A code for the type of the keyboard, for the application's own use. It is in no document: 0 at first,
     * afterwards what was set, across loads.
     */
    char getKeyBoardTypeInfo();
    /// @copydoc getKeyBoardTypeInfo
    void setKeyBoardTypeInfo(char c_type);

    /// @name Switches that are on unless they are off
    /// 0 sets to off and any other value to on. They read as 0 when the text in the document is exactly the
    /// word for off, and as 1 for any other text.
    /// @{

    /// Whether cookies are accepted: "accept" or "refuse". By custom a browser that refuses sends none
    /// either.
    void setRcvCookieInfo(char c_accept);
    /// @copydoc setRcvCookieInfo
    char getRcvCookieInfo();

    /// Whether the disk cache is used: "true" or "false".
    void setUseCacheInfo(char c_use);
    /// @copydoc setUseCacheInfo
    char getUseCacheInfo();

    /// Which keyboard has priority: "soft", the one on the screen, as 1, or "usb" as 0.
    void setSWKeyBoardTypeInfo(char c_soft);
    /// @copydoc setSWKeyBoardTypeInfo
    char getSWKeyBoardTypeInfo();

    /// Whether pages may run JavaScript: "true" or "false".
    void setUseJavaScriptInfo(char c_use);
    /// @copydoc setUseJavaScriptInfo
    char getUseJavaScriptInfo();

    /// Whether the Flash plug-in plays: "true" or "false".
    void setPlayFlashInfo(char c_play);
    /// @copydoc setPlayFlashInfo
    char getPlayFlashInfo();

    /// Whether HTTP/1.1 is used through the proxy: "true" or "false".
    void setUseProxyHttpInfo(char c_use);
    /// @copydoc setUseProxyHttpInfo
    char getUseProxyHttpInfo();

    /// Whether SSL 3.0 may be used: "true" or "false".
    void setUseSSL30(char c_use);
    /// @copydoc setUseSSL30
    char getUseSSL30();

    /// Whether TLS 1.0 may be used: "true" or "false".
    void setUseTLS10(char c_use);
    /// @copydoc setUseTLS10
    char getUseTLS10();

    /// @}
    /// @name Switches that are off unless they are on
    /// 1 alone sets to on, any other value to off. They read as 1 when the text in the document is exactly
    /// "true", and as 0 for any other text.
    /// @{

    /// Whether the proxy is used.
    void setUseProxyInfo(char c_use);
    /// @copydoc setUseProxyInfo
    char getUseProxyInfo();

    /// Whether the proxy asks for a login.
    void setUseProxyCertificationInfo(char c_use);
    /// @copydoc setUseProxyCertificationInfo
    char getUseProxyCertificationInfo();

    /// @}

    /// When the disk cache is emptied: 0 "notDelete", 1 "logout" (the user ends the use), 2 "timeout" (nobody
    /// has used the browser for a while). Any other code, and any other text in the document, stands for 0.
    /// Emptying it is the application's work.
    void setCacheDeleteTiming(char c_timing);
    /// @copydoc setCacheDeleteTiming
    char getCacheDeleteTiming();

    /// @name Texts
    /// A setter returns false for a text longer than its limit, in bytes of UTF-8, and changes nothing then.
    /// A getter answers a longer text in the document, and a missing one, as told. Null does nothing. A text
    /// of blanks alone comes back as empty from a file, and a carriage return as a line feed.
    /// @{

    /// The proxy's host name, up to 253 bytes; otherwise empty.
    bool setProxyServerStr(QString host);
    /// @copydoc setProxyServerStr
    void getProxyServerStr(QString* pc_host);

    /// The proxy's port for HTTP, any text of up to 5 bytes; otherwise "8080". A text that is no port stands
    /// for no proxy, by custom.
    bool setProxyHttpPortStr(QString port);
    /// @copydoc setProxyHttpPortStr
    void getProxyHttpPortStr(QString* pc_port);

    /// The proxy's port for HTTPS, any text of up to 5 bytes; otherwise "8080".
    bool setProxyHttpsPortStr(QString port);
    /// @copydoc setProxyHttpsPortStr
    void getProxyHttpsPortStr(QString* pc_port);

    /// The domains for which the proxy is not used, up to 253 bytes; otherwise empty. By custom separated by
    /// commas, semicolons or blanks; each, with or without a dot in front, stands for itself and for what
    /// ends in a dot and it.
    bool setNoProxyDomainStr(QString domains);
    /// @copydoc setNoProxyDomainStr
    void getNoProxyDomainStr(QString* pc_domains);

    /// @}
    /// @name The login for the proxy
    /// Raw bytes, by custom UTF-8, at most 80, in the document as base64 and in no way protected. A setter
    /// returns false for more, and changes nothing then. A getter answers more in the document, and a missing
    /// element, as empty. Null does nothing.
    /// @{

    /// The user's name, at most 80 bytes.
    bool setProxyAccountStr(QByteArray account);
    /// @copydoc setProxyAccountStr
    void getProxyAccountStr(QByteArray* pc_account);

    /// The password, at most 80 bytes.
    bool setProxyPasswordStr(QByteArray password);
    /// @copydoc setProxyPasswordStr
    void getProxyPasswordStr(QByteArray* pc_password);

    /// @}

private:
    TVNC_BrowserCommonSetting();
    ~TVNC_BrowserCommonSetting();

    char c_keyBoardType_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
