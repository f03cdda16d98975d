#ifndef TLVLIB_STORES_TVNC_COOKIESETTING_H
#define TLVLIB_STORES_TVNC_COOKIESETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtNetwork/QNetworkCookie>

/// One cookie as the document holds it. The order of the members is part of the binary interface.
struct TVNS_CookieInfo
{
    /// The cookie's domain, with its leading dot where it has one.
    QString website;

    /// The cookie's name, its bytes read as UTF-8, up to the first zero byte.
    QString name;

    /// The path on the site for which it counts, such as "/".
    QString path;

    /// "true" or "false"; of an edited document whatever it holds.
    QString secure;

    /// When the cookie expires, "yyyy/MM/dd hh:mm:ss"; empty for one that ends with the browser. Of an edited
    /// document whatever it holds.
    QString expires;

    /// The cookie's value, its bytes read as UTF-8, up to the first zero byte.
    QString contents;
};

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The browser's cookies, in two forms. For the user to look at, a settings document at a path that the
 * application names, which is no backup of the other one:
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <cookie docInfo="1.0">
 *     <webSiteInfo id="000">
 *         <website>.example.com</website>
 *         <name>SID</name>
 *         <path>/</path>
 *         <secure>true</secure>
 *         <expires>2031/05/06 07:08:09</expires>
 *         <contents><![CDATA[31d4d96e407aad42]]></contents>
 *     </webSiteInfo>
 * </cookie>
 * @endcode
 *
 * For the browser's network side, whose cookies have more to them (HttpOnly is not in the document), the file
 * "cookie.ini" with the cookies' raw forms:
 *
 * @code
 * [Cookie]
 * cookies="@ByteArray(\0\0\0\x1\0\0\0;SID=31d4d96e407aad42; HttpOnly; domain=.example.com; path=/)"
 * @endcode
 *
 * The bytes are a QDataStream's: the number of cookies, signed with 32 bits, then a byte array for each.
 *
 * An entry's number is its position. Newly added entries get theirs, from 0, when the document is numbered
 * the next time; until then they have none and are not found. The store starts without a document, and its
 * document is empty again after every conversion.
 *
 * Names and values go into the document as UTF-8, but are compared with it the way C strings are read: by the
 * codec that the process has set for C strings, otherwise as Latin-1. A cookie with other than ASCII
 * characters is therefore never found to be the same as its own entry. Existing files rely on it.
 *
 * Expiry times have no zone in the document. They are written as the cookie has them, which for a cookie from
 * the network is in UTC, and read back as local time.
 *
 * No operation reports failure. Names and values of cookies never reach the log.
 */
class TLVLIB_EXPORT TVNC_CookieSetting : public TVNC_XMLSetting
{
public:
    /// The one store of the process, made on first use.
    static TVNC_CookieSetting* getInstance();

    /**
     * Adds an entry in front, without a number; see above. Nothing is checked: not the expiry, not whether
     * there is an entry for this cookie, not how many there are.
     *
     * Logs at level 3 "[TVNC_CookieSetting::addCookieInfo]".
     */
    void addCookieInfo(QNetworkCookie& cookie);

    /**
     * The entries with the numbers from 0 to the number of entries minus 1, in this order. Texts are those of
     * the document, also where they are no times and no "true" or "false". What an entry lacks is empty. An
     * entry without a number, or with one outside this range, is missing.
     */
    QList<TVNS_CookieInfo> getAllCookieInfo();

    /**
     * Whether a cookie and an entry are the same, value included: domain, name, path, the secure flag and the
     * value, to the letter. The expiry is not compared. See above for other than ASCII characters; of names
     * and values only what stands before a zero byte counts.
     */
    bool isMuchCookieInfo(QNetworkCookie& cookie, TVNS_CookieInfo& info);

    /**
     * Removes the entry numbered @a si_index, if there is one, and numbers all others.
     * Logs at level 3 "[TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:%d".
     */
    void deleteCookieInfo(int si_index);

    /**
     * Replaces the file @a dir + "cookie.ini" by one with these cookies. All are written, however many, with
     * everything they have; @a si_saveMax must be at least 1 and has no other effect. The directory ends in
     * "/". Missing directories are made by Qt 5, and there must be write access to the directory: another
     * file is written there and renamed, with a "cookie.ini.lock" beside it meanwhile. The document is not
     * touched.
     *
     * Logs at level 3 "[TVNC_CookieSetting::saveCookieInfo] start" and "... end". A null or empty directory
     * writes nothing and logs at level 2 "[TVNC_CookieSetting::saveCookieInfo] Path is NULL or empty."; so
     * does a maximum below 1 with "[TVNC_CookieSetting::saveCookieInfo] Error save_max:%d". In the mode that
     * TVNG_SetSafeSave() switches on, a file that did not exist is made for its owner alone, and one that
     * could not be written is logged at level 2 as "[TVNC_CookieSetting::saveCookieInfo] Couldn't replace
     * cookie.ini.".
     */
    void saveCookieInfo(QList<QNetworkCookie> cookies, QString* dir, int si_saveMax);

    /**
     * The cookies of the file @a dir + "cookie.ini", expired ones included; none when there is no such file.
     * All are read, whatever @a si_loadMax, at least 1, which is only remembered. The file need not hold as
     * many cookies as it says: reading ends with its data, and an entry that is no cookie is left out. The
     * document is not touched.
     *
     * Logs at level 3 "[TVNC_CookieSetting::loadCookieInfo] start" and "... end". A null or empty directory
     * gives none and logs at level 2 "[TVNC_CookieSetting::loadCookieInfo] Path is NULL or empty."; so does a
     * maximum below 1 with "[TVNC_CookieSetting::loadCookieInfo] Error load_max:%d".
     */
    QList<QNetworkCookie> loadCookieInfo(QString* dir, int si_loadMax);

    /**
     * Writes the first 20 entries of the document at @a pc_xmlPath into the file @a pc_iniDir + "cookie.ini",
     * replacing it; without a document a file without cookies. An expiry that cannot be read makes a cookie
     * that ends with the browser. The document's file stays as it is.
     *
     * Logs what load, saveCookieInfo() and deleteAllSetting() log. A null argument does nothing and logs at
     * level 1 "[TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.". Empty paths are not null:
     * an empty document path takes the document that the store holds, and an empty directory writes nothing.
     *
     * @param pc_xmlPath the document's full path, in ASCII
     * @param pc_iniDir the directory, in ASCII and with "/" at its end
     */
    void convertCookieXMLToIni(char* pc_xmlPath, char* pc_iniDir);

    /**
     * Brings the document at @a pc_xmlPath up to the cookies of the file @a pc_iniDir + "cookie.ini". Of the
     * first 20 entries, those that are the same as a cookie stay as they are and where they are, with their
     * old expiry; the others are removed. All other cookies are added in front, in the order of the file.
     * Entries behind the first 20 stay.
     *
     * The entry removed is the one whose number is the position in getAllCookieInfo(): another one, when the
     * numbers in the file have gaps.
     *
     * Logs what its steps log. A null argument does nothing and logs at level 1
     * "[TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.". Empty paths are not null: without a
     * directory there are no cookies. Without a document path the document that the store holds is brought up
     * to the cookies, written nowhere, and then emptied as always.
     *
     * @param pc_iniDir the directory, in ASCII and with "/" at its end
     * @param pc_xmlPath the document's full path, in ASCII
     */
    void convertCookieIniToXML(char* pc_iniDir, char* pc_xmlPath);

private:
    TVNC_CookieSetting();
    ~TVNC_CookieSetting();

    /// The maximum of the last accepted load of cookie.ini; 0 before. Nothing reads it, but it is part of the
    /// layout.
    int si_maxCount_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
