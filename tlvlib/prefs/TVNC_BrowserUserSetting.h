#ifndef TLVLIB_PREFS_TVNC_BROWSERUSERSETTING_H
#define TLVLIB_PREFS_TVNC_BROWSERUSERSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QString>

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The preferences of one user, in the file "repostry_private.xml". All of them, with their defaults:
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <repostry docInfo="1.0">
 *     <pageInfo>
 *         <home>about:blank</home>
 *         <startup>homepage</startup>
 *         <lastPageURL>about:blank</lastPageURL>
 *         <Zoom>1.0</Zoom>
 *     </pageInfo>
 *     <cookie>
 *         <cookieDeleteTiming>notDelete</cookieDeleteTiming>
 *     </cookie>
 *     <authInfo>
 *         <authInfoDeleteTiming>notDelete</authInfoDeleteTiming>
 *     </authInfo>
 *     <font>
 *         <fontName/>
 *     </font>
 * </repostry>
 * @endcode
 *
 * Loading fills in what is missing. Nothing is saved but by saveSetting(). What the file holds is not
 * repaired: a value that cannot be used is answered as told below and stays in the file until it is set.
 *
 * Before the first loadSetting() there is no document: setters change nothing, those with a result return
 * false; getters of texts leave their output as it was, all others return the default. Beside loading and
 * saving, only the getters of texts write to the log, and only for null.
 */
class TLVLIB_EXPORT TVNC_BrowserUserSetting : public TVNC_XMLSetting
{
public:
    /// The one store of the process, made on first use. For another user, load another directory.
    static TVNC_BrowserUserSetting* getInstance();

    /**
     * Replaces the preferences by those of @a dir + "repostry_private.xml"; the directory ends in "/".
     * Missing ones, all when the file is missing, get their defaults. A root of another name is renamed and
     * keeps its children.
     *
     * Logs at level 3 "[TVNC_BrowserUserSetting::loadSetting] start" and "... end". A null or empty directory
     * changes nothing and logs at level 2 "[TVNC_BrowserUserSetting::loadSetting] User Path is NULL or
     * empty.".
     */
    void loadSetting(QString* dir);

    /**
     * Writes the preferences to @a dir + "repostry_private.xml", as TVNG_SetSafeSave() has it. Before the
     * first load the file stays as it was.
     *
     * Logs at level 3 "[TVNC_BrowserUserSetting::saveSetting] start" and "... end". A null or empty directory
     * writes nothing and logs at level 2 "[TVNC_BrowserUserSetting::saveSetting] User Path is NULL or
     * empty.".
     */
    void saveSetting(QString* dir);

    /// What is shown first: 1 the last page ("lastpage"), 0 the home page ("homepage"). Any other code, and
    /// any other text in the document, stands for 0.
    void setStartUp(char c_startUp);
    /// @copydoc setStartUp
    char getStartUp();

    /// @name When what the browser has collected is deleted
    /// 0 "notDelete", 1 "logout" (the user ends the use), 2 "timeout" (nobody has used the browser for a
    /// while). Any other code, and any other text in the document, stands for 0. Deleting is the
    /// application's work.
    /// @{

    /// For cookies.
    void setCookieDeleteTiming(char c_timing);
    /// @copydoc setCookieDeleteTiming
    char getCookieDeleteTiming();

    /// For the logins for servers.
    void setCertificationDeleteTiming(char c_timing);
    /// @copydoc setCertificationDeleteTiming
    char getCertificationDeleteTiming();

    /// @}
    /// @name Texts
    /// Up to 256 bytes of UTF-8. A setter returns false for a longer text and changes nothing then; an empty
    /// one is accepted. A text of blanks alone comes back as empty from a file, and a carriage return as a
    /// line feed. For null, a getter logs at level 2 "[TVNC_BrowserUserSetting::getHomePage] Parameter is
    /// NULL.", with its own name.
    /// @{

    /// The home page's address. Answered as "about:blank" when it is missing, too long or empty.
    bool setHomePage(QString url);
    /// @copydoc setHomePage
    void getHomePage(QString* pc_url);

    /// The address of the page that was shown last. Answered as "about:blank" when it is missing, too long or
    /// empty.
    bool setLastPage(QString url);
    /// @copydoc setLastPage
    void getLastPage(QString* pc_url);

    /// The name of the font. Answered as empty when it is missing or too long.
    bool setFontName(QString name);
    /// @copydoc setFontName
    void getFontName(QString* pc_name);

    /// @}

    /**
     * The zoom of pages: the codes 1 to 11 stand for "0.5", "0.6" and so on up to "1.5". Any other text in
     * the document is read as 6, which is "1.0" and the default. Any other code is refused; the group
     * "pageInfo" is created, or its text emptied, all the same.
     *
     * @return false for a code that is refused, and before the first load
     */
    bool setZoomInfo(short si_code);
    /// @copydoc setZoomInfo
    short getZoomInfo();

private:
    TVNC_BrowserUserSetting();
    ~TVNC_BrowserUserSetting();
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
