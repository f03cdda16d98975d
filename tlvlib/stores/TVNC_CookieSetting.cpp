#include "tlvlib/stores/TVNC_CookieSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_ClockTime.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

#include <QtCore/QVector>

// The document and its conversion from and to cookie.ini. Nothing of a cookie goes into a log line.

namespace {

/// The names and words in the document.
struct CookieNames
{
    QString root = QEXC_TextCodec::fromSJIS("cookie");
    QString webSiteInfo = QEXC_TextCodec::fromSJIS("webSiteInfo");
    QString website = QEXC_TextCodec::fromSJIS("website");
    QString name = QEXC_TextCodec::fromSJIS("name");
    QString path = QEXC_TextCodec::fromSJIS("path");
    QString secure = QEXC_TextCodec::fromSJIS("secure");
    QString expires = QEXC_TextCodec::fromSJIS("expires");
    QString contents = QEXC_TextCodec::fromSJIS("contents");
    QString isSecure = QEXC_TextCodec::fromSJIS("true");
    QString isNotSecure = QEXC_TextCodec::fromSJIS("false");
    QString expiresFormat = QEXC_TextCodec::fromSJIS(TVNG_EXPIRES_FORMAT);
};

CookieNames& cookieNames()
{
    return TVNG_immortal<CookieNames>();
}

const QString& secureText(const QNetworkCookie& cookie)
{
    return cookie.isSecure() ? cookieNames().isSecure : cookieNames().isNotSecure;
}

TVNS_CookieInfo infoOf(TVNC_XMLNode& entry)
{
    TVNS_CookieInfo info;
    TVNG_copyField(entry, cookieNames().website, info.website);
    TVNG_copyField(entry, cookieNames().name, info.name);
    TVNG_copyField(entry, cookieNames().path, info.path);
    TVNG_copyField(entry, cookieNames().secure, info.secure);
    TVNG_copyField(entry, cookieNames().expires, info.expires);
    TVNG_copyField(entry, cookieNames().contents, info.contents);
    return info;
}

QNetworkCookie cookieOf(const TVNS_CookieInfo& info)
{
    QNetworkCookie cookie;
    cookie.setDomain(info.website);
    cookie.setName(info.name.toUtf8());
    cookie.setPath(info.path);
    cookie.setSecure(info.secure == cookieNames().isSecure);
    // Local time, although what was written came from the network in UTC: the clock time is kept, here and in
    // the files.
    cookie.setExpirationDate(TVNG_acceptedTime(TVNG_clockTime(info.expires, cookieNames().expiresFormat)));
    cookie.setValue(info.contents.toUtf8());
    return cookie;
}

/// In both conversions; it names one of them. The devices' log filters look for it.
void logInvalidParameter()
{
    TVNG_DebugPrint(1, "[TVNC_CookieSetting::convertCookieIniToXML] Invalid Parameter.");
}

} // namespace

TVNC_CookieSetting::TVNC_CookieSetting() : si_maxCount_(0) {}

TVNC_CookieSetting::~TVNC_CookieSetting() {}

TVNC_CookieSetting* TVNC_CookieSetting::getInstance()
{
    static TVNC_CookieSetting instance;
    return &instance;
}

void TVNC_CookieSetting::addCookieInfo(QNetworkCookie& cookie)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::addCookieInfo]");
    TVNC_XMLNode* pc_entry = TVNG_addRecord(*this, cookieNames().webSiteInfo, 1);
    if (!pc_entry)
        return;
    TVNG_addField(*this, pc_entry, cookieNames().website, cookie.domain(), TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_entry, cookieNames().name, QString::fromUtf8(cookie.name().constData()),
                  TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_entry, cookieNames().path, cookie.path(), TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_entry, cookieNames().secure, secureText(cookie), TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_entry, cookieNames().expires,
                  TVNG_clockText(cookie.expirationDate(), cookieNames().expiresFormat), TVNG_CHARACTER_DATA);
    TVNG_addField(*this, pc_entry, cookieNames().contents, QString::fromUtf8(cookie.value().constData()),
                  TVNG_CDATA_SECTION);
    TVNG_releaseDetached(pc_entry);
    // Not numbered here: until then the entry is invisible to getAllCookieInfo(), and the conversion, which
    // removes entries by their positions, relies on it.
}

QList<TVNS_CookieInfo> TVNC_CookieSetting::getAllCookieInfo()
{
    const QList<TVNC_XMLNode*> entries = TVNG_recordsByNumber(*this, getXMLNodeCnt());
    QList<TVNS_CookieInfo> infos;
    for (int i = 0; i < entries.size(); ++i) {
        if (entries.at(i))
            infos.append(infoOf(*entries.at(i)));
    }
    return infos;
}

bool TVNC_CookieSetting::isMuchCookieInfo(QNetworkCookie& cookie, TVNS_CookieInfo& info)
{
    // The bytes are read as C strings although they were written from UTF-8: what is not ASCII never matches,
    // and its entry is replaced by each conversion. Reading UTF-8 here would leave old entries in place.
    return cookie.domain() == info.website && info.name == TVNG_fromCString(cookie.name().constData()) &&
           cookie.path() == info.path && secureText(cookie) == info.secure &&
           TVNG_fromCString(cookie.value().constData()) == info.contents;
}

void TVNC_CookieSetting::deleteCookieInfo(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:%d", si_index);
    deleteXMLNodeByID(si_index, TVNC_RecordNumbers::attributeName());
    setIDforChildren(TVNC_RecordNumbers::attributeName());
}

void TVNC_CookieSetting::convertCookieXMLToIni(char* pc_xmlPath, char* pc_iniDir)
{
    if (!pc_xmlPath || !pc_iniDir) {
        logInvalidParameter();
        return;
    }
    QString xmlPath = TVNG_fromCString(pc_xmlPath);
    QString iniDir = TVNG_fromCString(pc_iniDir);
    load(xmlPath);
    const QList<TVNS_CookieInfo> infos = getAllCookieInfo();
    QList<QNetworkCookie> cookies;
    for (int i = 0; i < infos.size() && i < TVNG_CONVERTED_MAX; ++i)
        cookies.append(cookieOf(infos.at(i)));
    saveCookieInfo(cookies, &iniDir, TVNG_CONVERTED_MAX);
    deleteAllSetting();
}

void TVNC_CookieSetting::convertCookieIniToXML(char* pc_iniDir, char* pc_xmlPath)
{
    if (!pc_iniDir || !pc_xmlPath) {
        logInvalidParameter();
        return;
    }
    QString iniDir = TVNG_fromCString(pc_iniDir);
    QString xmlPath = TVNG_fromCString(pc_xmlPath);
    QList<QNetworkCookie> cookies = loadCookieInfo(&iniDir, TVNG_CONVERTED_MAX);
    load(xmlPath);
    QList<TVNS_CookieInfo> infos = getAllCookieInfo();

    // Each entry counts for one cookie only: of two equal cookies with one entry, the second is new.
    const int si_infos = qMin(static_cast<int>(infos.size()), TVNG_CONVERTED_MAX);
    QVector<bool> isMatched(si_infos, false);
    QVector<bool> isNew(static_cast<int>(cookies.size()), true);
    for (int i = 0; i < cookies.size(); ++i) {
        for (int j = 0; j < si_infos; ++j) {
            if (!isMatched.at(j) && isMuchCookieInfo(cookies[i], infos[j])) {
                isMatched[j] = true;
                isNew[i] = false;
                break;
            }
        }
    }

    // From the back, so that the positions in front stay. A position is taken for the entry's number, which
    // it is not in a document with gaps. That is kept: the numbers are made good only by the deletion itself.
    for (int j = si_infos - 1; j >= 0; --j) {
        if (!isMatched.at(j))
            deleteCookieInfo(j);
    }
    for (int i = static_cast<int>(cookies.size()) - 1; i >= 0; --i) {
        if (isNew.at(i))
            addCookieInfo(cookies[i]);
    }
    TVNG_nameRoot(getXMLRootNode(), cookieNames().root);
    setIDforChildren(TVNC_RecordNumbers::attributeName());
    const TVNC_SecretSave secret(true);
    save(xmlPath);
    deleteAllSetting();
}
