#ifndef TLVLIB_STORES_TVNC_AUTHSETTING_H
#define TLVLIB_STORES_TVNC_AUTHSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * What the browser has been given to log in to one server. The order of the members is part of the binary
 * interface. A plain structure: @a authType has no value until it is given one.
 */
struct TVNS_AuthInfo
{
    /// The server's host name, at most 256 bytes of UTF-8. One of blanks alone comes back as empty from a
    /// file, and a carriage return as a line feed; in the port, too.
    QString hostName;

    /// The port number as text, at most 5 bytes of UTF-8. Any text is taken. By custom never empty: "80" or
    /// "443" where the address has none.
    QString portNum;

    /// The scheme that the server asks for: 0 "basic", 1 "digest", 2 "NTLM". Any other code is stored without
    /// a word and read as 0.
    unsigned char authType;

    /// The user name: raw bytes, zero bytes included, at most 272. By custom UTF-8.
    QByteArray user;

    /// The password: raw bytes, zero bytes included, at most 272. By custom UTF-8.
    QByteArray passwd;
};

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The credentials for servers that ask for a login, newest first, in the file "authinfo.xml":
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <authentication docInfo="1.0">
 *     <authInfo id="000">
 *         <hostName>www.example.com</hostName>
 *         <portNum>443</portNum>
 *         <authType>digest</authType>
 *         <user><![CDATA[YWxpY2U=]]></user>
 *         <passwd><![CDATA[c2VjcmV0]]></passwd>
 *     </authInfo>
 * </authentication>
 * @endcode
 *
 * User name and password are base64 of their bytes and in no way protected: who can read the file has the
 * passwords. Nothing of a record ever reaches the log.
 *
 * An entry's number is its position and changes with every addition and deletion; new entries get number 0.
 * At most 999 entries have a number. The list starts without a document: before the first loadAuthInfo()
 * there are no entries, and what is added is lost.
 *
 * The list does not bound itself. The browser does, by calling updateAuthInfo() instead of setAuthInfo() when
 * the list is full:
 *
 * @code
 * TVNC_AuthSetting* auth = TVNC_AuthSetting::getInstance();
 * auth->loadAuthInfo(&directory, 100);
 * int added = auth->getAuthInfoCnt() < 100 ? auth->setAuthInfo(&info) : auth->updateAuthInfo(&info);
 * auth->saveAuthInfo(&directory, 100);
 * @endcode
 *
 * Directories end in "/": the file name is appended as it is. Nothing is reported as an error beyond the
 * results and log lines told below.
 */
class TLVLIB_EXPORT TVNC_AuthSetting : public TVNC_XMLSetting
{
public:
    /// The one store of the process, made on first use.
    static TVNC_AuthSetting* getInstance();

    /**
     * Replaces the entries by those of @a dir + "authinfo.xml" and numbers them. A missing file gives an
     * empty list. All entries are kept, however many: @a si_loadMax, at least 1, is only remembered for
     * updateAuthInfo().
     *
     * Logs at level 3 "[TVNC_AuthSetting::loadAuthInfo] start" and "... end". A null or empty directory
     * changes nothing and logs at level 2 "[TVNC_AuthSetting::loadAuthInfo] Path is empty."; so does a
     * maximum below 1 with "[TVNC_AuthSetting::loadAuthInfo] Error load_max:%d".
     */
    void loadAuthInfo(QString* dir, int si_loadMax);

    /**
     * Writes all entries to @a dir + "authinfo.xml", in the mode of TVNG_SetSafeSave(), where a file that did
     * not exist is made for its owner alone. @a si_saveMax must be at least 1 and has no other effect. Before
     * the first load the file stays as it was.
     *
     * Logs at level 3 "[TVNC_AuthSetting::saveAuthInfo] start" and "... end". A null or empty directory
     * writes nothing and logs at level 2 "[TVNC_AuthSetting::saveAuthInfo] Path is empty."; so does a maximum
     * below 1 with "[TVNC_AuthSetting::saveAuthInfo] Error save_max:%d".
     */
    void saveAuthInfo(QString* dir, int si_saveMax);

    /**
     * Adds an entry in front, as number 0, unless @a pc_info is null or one of its members is longer than
     * told at TVNS_AuthInfo. An entry for the same server and user is not looked for: the older one stays
     * behind the new one. Nothing is saved.
     *
     * Logs at level 3 "[TVNC_AuthSetting::setAuthInfo]", then what addAuthInfo() logs. A refusal has no line
     * of its own.
     *
     * @return 1 when the entry was acceptable, 0 when it was refused. Before the first load, and when there
     * is no memory for an element, it is 1, too, although the entry is lost.
     */
    int setAuthInfo(TVNS_AuthInfo* pc_info);

    /**
     * Adds an entry in front without looking at its lengths; setAuthInfo() is the checked way in. Members
     * over their limit are stored and saved, but getAuthInfo() does not hand them out. Null does nothing.
     *
     * Logs at level 3 "[TVNC_AuthSetting::addAuthInfo]".
     */
    void addAuthInfo(TVNS_AuthInfo* pc_info);

    /**
     * Removes the oldest kept entry, then does what setAuthInfo() does. For a list that is full: an entry
     * goes even when there is room, and it stays removed when the new one is refused.
     *
     * The oldest kept entry is the last of the list, but never one behind the maximum of loadAuthInfo(): with
     * five entries and a maximum of three the third goes. Where that would be the 1000th or a later one,
     * which have no number, none is removed.
     *
     * Logs at level 3 "[TVNC_AuthSetting::updateAuthInfo]", then what deleteAuthInfo() and setAuthInfo() log;
     * the number deleted from an empty list is -1.
     *
     * @return the result of setAuthInfo()
     */
    int updateAuthInfo(TVNS_AuthInfo* pc_info);

    /**
     * Fills @a pc_out from the entry numbered @a si_index. A member whose element is missing or over its
     * limit keeps the value that the caller gave it, with 1 as the result all the same; only @a authType is
     * always set, to 0 unless the stored word is exactly "digest" or "NTLM". Base64 is read leniently: what
     * is no letter of its alphabet is skipped.
     *
     * Logs at level 3 "[TVNC_AuthSetting::getAuthInfo]".
     *
     * @return 1 when there is such an entry, 0 when there is none or @a pc_out is null
     */
    int getAuthInfo(int si_index, TVNS_AuthInfo* pc_out);

    /// How many entries have a number: at most 999. Time grows with the number of entries.
    int getAuthInfoCnt();

    /**
     * Removes the entry numbered @a si_index, if there is one, and renumbers the rest.
     * Logs at level 3 "[TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:%d".
     */
    void deleteAuthInfo(int si_index);

private:
    TVNC_AuthSetting();
    ~TVNC_AuthSetting();

    /// The maximum of the last accepted load; 0 before. Only updateAuthInfo() reads it.
    int si_maxCount_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
