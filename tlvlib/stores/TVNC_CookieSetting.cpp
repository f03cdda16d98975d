#include "tlvlib/stores/TVNC_CookieSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/stores/TVNG_cookieIni.h"
#include "tlvlib/util/TVNG_ClockTime.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

#include <QtCore/QVector>

// The document and its conversion from and to cookie.ini. Nothing of a cookie goes into a log line.

namespace {

/// The names and words in the document.
struct CookieNames
{
    QString root = TVNG_literal("cookie");
    QString webSiteInfo = TVNG_literal("webSiteInfo");
    QString website = TVNG_literal("website");
    QString name = TVNG_literal("name");
    QString path = TVNG_literal("path");
    QString secure = TVNG_literal("secure");
    QString expires = TVNG_literal("expires");
    QString contents = TVNG_literal("contents");
    QString isSecure = TVNG_literal("true");
    QString isNotSecure = TVNG_literal("false");
    QString expiresFormat = TVNG_literal(TVNG_EXPIRES_FORMAT);
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

/// Adds an entry in front, without a number. False when memory did not suffice for all of it.
bool addCookie(TVNC_XMLSetting& setting, const QNetworkCookie& cookie)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::addCookieInfo]");
    TVNC_NewRecord entry(setting, cookieNames().webSiteInfo);
    if (!entry.node())
        return false;
    entry.addField(cookieNames().website, cookie.domain(), TVNG_CHARACTER_DATA);
    entry.addField(cookieNames().name, QString::fromUtf8(cookie.name().constData()), TVNG_CHARACTER_DATA);
    entry.addField(cookieNames().path, cookie.path(), TVNG_CHARACTER_DATA);
    entry.addField(cookieNames().secure, secureText(cookie), TVNG_CHARACTER_DATA);
    entry.addField(cookieNames().expires,
                   TVNG_clockText(cookie.expirationDate(), cookieNames().expiresFormat), TVNG_CHARACTER_DATA);
    entry.addField(cookieNames().contents, QString::fromUtf8(cookie.value().constData()), TVNG_CDATA_SECTION);
    entry.keep();
    return entry.isComplete();
}

QList<TVNS_CookieInfo> allCookies(TVNC_XMLSetting& setting)
{
    const QList<TVNC_XMLNode*> entries = TVNG_recordsByNumber(setting, setting.getXMLNodeCnt());
    QList<TVNS_CookieInfo> infos;
    for (int i = 0; i < entries.size(); ++i) {
        if (entries.at(i))
            infos.append(infoOf(*entries.at(i)));
    }
    return infos;
}

/// As isMuchCookieInfo().
bool isSame(const QNetworkCookie& cookie, const TVNS_CookieInfo& info)
{
    // The bytes are read as C strings although they were written from UTF-8: what is not ASCII never matches,
    // and its entry is replaced by each conversion. Reading UTF-8 here would leave old entries in place.
    const QString domain = cookie.domain();
    const QString name = TVNG_fromCString(cookie.name().constData());
    const QString path = cookie.path();
    const QString value = TVNG_fromCString(cookie.value().constData());
    return domain == info.website && name == info.name && path == info.path &&
           secureText(cookie) == info.secure && value == info.contents;
}

/// Removes the first entries that are none of the cookies, and adds the cookies that have no entry.
void bringUpTo(TVNC_CookieSetting& setting, const QList<QNetworkCookie>& cookies)
{
    const QList<TVNS_CookieInfo> infos = allCookies(setting);

    // Each entry counts for one cookie only: of two equal cookies with one entry, the second is new.
    const int si_infos = qMin(static_cast<int>(infos.size()), TVNG_CONVERTED_MAX);
    QVector<bool> isMatched(si_infos, false);
    QVector<bool> isNew(static_cast<int>(cookies.size()), true);
    for (int i = 0; i < cookies.size(); ++i) {
        for (int j = 0; j < si_infos; ++j) {
            if (!isMatched.at(j) && isSame(cookies.at(i), infos.at(j))) {
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
            setting.deleteCookieInfo(j);
    }
    for (int i = static_cast<int>(cookies.size()) - 1; i >= 0; --i) {
        if (isNew.at(i) && !addCookie(setting, cookies.at(i)))
            qBadAlloc(); // what is not complete replaces no file
    }
}

/// Loads the document of a conversion. When memory runs out, it throws: a conversion that took no document
/// for an empty one would empty the other file.
void loadToConvert(TVNC_XMLSetting& setting, QString& path)
{
    setting.load(path);
    if (!path.isEmpty() && !setting.getXMLRootNode())
        qBadAlloc();
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
    // Not numbered here: until then the entry is invisible to getAllCookieInfo(), and the conversion, which
    // removes entries by their positions, relies on it.
    TVNG_ifMemory([&] { addCookie(*this, cookie); });
}

QList<TVNS_CookieInfo> TVNC_CookieSetting::getAllCookieInfo()
{
    return TVNG_ifMemory(QList<TVNS_CookieInfo>(), [&] { return allCookies(*this); });
}

bool TVNC_CookieSetting::isMuchCookieInfo(QNetworkCookie& cookie, TVNS_CookieInfo& info)
{
    return TVNG_ifMemory(false, [&] { return isSame(cookie, info); });
}

void TVNC_CookieSetting::deleteCookieInfo(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::deleteCookieInfo] si_XMLNum:%d", si_index);
    TVNG_ifMemory([&] { TVNG_deleteRecord(*this, si_index); });
}

void TVNC_CookieSetting::saveCookieInfo(QList<QNetworkCookie> cookies, QString* dir, int si_saveMax)
{
    TVNG_saveIfMemory([&] { TVNG_saveCookieIni(cookies, dir, si_saveMax); });
}

QList<QNetworkCookie> TVNC_CookieSetting::loadCookieInfo(QString* dir, int si_loadMax)
{
    return TVNG_ifMemory(QList<QNetworkCookie>(),
                         [&] { return TVNG_loadCookieIni(dir, si_loadMax, si_maxCount_); });
}

void TVNC_CookieSetting::convertCookieXMLToIni(char* pc_xmlPath, char* pc_iniDir)
{
    if (!pc_xmlPath || !pc_iniDir) {
        logInvalidParameter();
        return;
    }
    TVNG_saveIfMemory([&] {
        QString xmlPath = TVNG_fromCString(pc_xmlPath);
        QString iniDir = TVNG_fromCString(pc_iniDir);
        loadToConvert(*this, xmlPath);
        const QList<TVNS_CookieInfo> infos = allCookies(*this);
        QList<QNetworkCookie> cookies;
        for (int i = 0; i < infos.size() && i < TVNG_CONVERTED_MAX; ++i)
            cookies.append(cookieOf(infos.at(i)));
        TVNG_saveCookieIni(cookies, &iniDir, TVNG_CONVERTED_MAX);
    });
    deleteAllSetting();
}

void TVNC_CookieSetting::convertCookieIniToXML(char* pc_iniDir, char* pc_xmlPath)
{
    if (!pc_iniDir || !pc_xmlPath) {
        logInvalidParameter();
        return;
    }
    TVNG_saveIfMemory([&] {
        QString iniDir = TVNG_fromCString(pc_iniDir);
        QString xmlPath = TVNG_fromCString(pc_xmlPath);
        const QList<QNetworkCookie> cookies = TVNG_loadCookieIni(&iniDir, TVNG_CONVERTED_MAX, si_maxCount_);
        loadToConvert(*this, xmlPath);
        bringUpTo(*this, cookies);
        TVNG_nameRoot(getXMLRootNode(), cookieNames().root);
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        const TVNC_SecretSave secret(true);
        save(xmlPath);
    });
    deleteAllSetting();
}
