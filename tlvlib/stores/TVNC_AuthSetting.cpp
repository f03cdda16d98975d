#include "tlvlib/stores/TVNC_AuthSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_Base64.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

// No member of a record goes into a log line, neither here nor below.

namespace {

/// The names and words in the document.
struct AuthNames
{
    QString file = TVNG_literal("authinfo.xml");
    QString root = TVNG_literal("authentication");
    QString authInfo = TVNG_literal("authInfo");
    QString hostName = TVNG_literal("hostName");
    QString portNum = TVNG_literal("portNum");
    QString authType = TVNG_literal("authType");
    QString user = TVNG_literal("user");
    QString passwd = TVNG_literal("passwd");

    AuthNames()
    {
        for (unsigned char i = 0; i < TVNG_AUTH_TYPE_COUNT; ++i)
            authTypes[i] = TVNG_literal(TVNG_AUTH_TYPES[i]);
    }
    QString authTypes[TVNG_AUTH_TYPE_COUNT]; ///< the word of each code
};

AuthNames& authNames()
{
    return TVNG_immortal<AuthNames>();
}

/// The word of a code; empty for a code that has none.
QString wordOf(unsigned char uc_authType)
{
    return uc_authType < TVNG_AUTH_TYPE_COUNT ? authNames().authTypes[uc_authType] : QString();
}

/// The code of a word. Words that are none count as "basic".
unsigned char codeOf(const QString& word)
{
    for (unsigned char i = 0; i < TVNG_AUTH_TYPE_COUNT; ++i) {
        if (authNames().authTypes[i] == word)
            return i;
    }
    return 0;
}

/// Copies a text element, if it is there and not too long.
void copyShortText(TVNC_XMLNode& entry, QString& name, int si_maxBytes, QString& out)
{
    QString text;
    if (TVNG_copyField(entry, name, text) && TVNG_fitsUtf8(text, si_maxBytes))
        out = text;
}

/// Copies the bytes of a base64 element, if it is there and not too long.
void copyBytes(TVNC_XMLNode& entry, QString& name, int si_maxBytes, QByteArray& out)
{
    QString base64;
    if (TVNG_copyField(entry, name, base64))
        TVNG_fromBase64(base64, si_maxBytes, out);
}

/// As addAuthInfo(), which setAuthInfo() comes to as well: the log says so.
void addCredentials(TVNC_XMLSetting& setting, const TVNS_AuthInfo* pc_info)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::addAuthInfo]");
    if (!pc_info)
        return;
    TVNC_NewRecord entry(setting, authNames().authInfo);
    if (!entry.node())
        return;
    entry.addField(authNames().hostName, pc_info->hostName, TVNG_CHARACTER_DATA);
    entry.addField(authNames().portNum, pc_info->portNum, TVNG_CHARACTER_DATA);
    entry.addField(authNames().authType, wordOf(pc_info->authType), TVNG_CHARACTER_DATA);
    entry.addField(authNames().user, TVNG_toBase64(pc_info->user), TVNG_CDATA_SECTION);
    entry.addField(authNames().passwd, TVNG_toBase64(pc_info->passwd), TVNG_CDATA_SECTION);
    entry.keep();
    setting.setIDforChildren(TVNC_RecordNumbers::attributeName());
}

} // namespace

TVNC_AuthSetting::TVNC_AuthSetting() : si_maxCount_(0) {}

TVNC_AuthSetting::~TVNC_AuthSetting() {}

TVNC_AuthSetting* TVNC_AuthSetting::getInstance()
{
    static TVNC_AuthSetting instance;
    return &instance;
}

void TVNC_AuthSetting::loadAuthInfo(QString* dir, int si_loadMax)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::loadAuthInfo] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_AuthSetting::loadAuthInfo] Path is empty.");
        return;
    }
    if (si_loadMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_AuthSetting::loadAuthInfo] Error load_max:%d", si_loadMax);
        return;
    }
    TVNG_ifMemory([&] {
        QString path = *dir + authNames().file;
        // Only remembered: entries beyond the maximum are kept. Browsers count the list themselves.
        si_maxCount_ = si_loadMax;
        deleteAllSetting();
        load(path);
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        TVNG_DebugPrint(3, "[TVNC_AuthSetting::loadAuthInfo] end");
    });
}

void TVNC_AuthSetting::saveAuthInfo(QString* dir, int si_saveMax)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::saveAuthInfo] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_AuthSetting::saveAuthInfo] Path is empty.");
        return;
    }
    // Only tested: all entries are written. Browsers that pass a small number here rely on losing none.
    if (si_saveMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_AuthSetting::saveAuthInfo] Error save_max:%d", si_saveMax);
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = *dir + authNames().file;
        TVNG_nameRoot(getXMLRootNode(), authNames().root);
        const TVNC_SecretSave secret(true);
        save(path);
        TVNG_DebugPrint(3, "[TVNC_AuthSetting::saveAuthInfo] end");
    });
}

int TVNC_AuthSetting::setAuthInfo(TVNS_AuthInfo* pc_info)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::setAuthInfo]");
    return TVNG_ifMemory(0, [&] {
        if (!pc_info || !TVNG_fitsUtf8(pc_info->hostName, TVNG_HOST_NAME_MAX_BYTES) ||
            !TVNG_fitsUtf8(pc_info->portNum, TVNG_PORT_NUM_MAX_BYTES) ||
            pc_info->user.size() > TVNG_USER_MAX_BYTES || pc_info->passwd.size() > TVNG_PASSWD_MAX_BYTES)
            return 0;
        addCredentials(*this, pc_info);
        return 1;
    });
}

void TVNC_AuthSetting::addAuthInfo(TVNS_AuthInfo* pc_info)
{
    TVNG_ifMemory([&] { addCredentials(*this, pc_info); });
}

int TVNC_AuthSetting::updateAuthInfo(TVNS_AuthInfo* pc_info)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::updateAuthInfo]");
    int si_kept = getXMLNodeCnt();
    if (si_kept > si_maxCount_)
        si_kept = si_maxCount_;
    // Before the new entry is looked at, and also while there is room: browsers call this when their own
    // count says that the list is full, and rely on one entry being gone afterwards.
    deleteAuthInfo(si_kept - 1);
    return setAuthInfo(pc_info);
}

int TVNC_AuthSetting::getAuthInfo(int si_index, TVNS_AuthInfo* pc_out)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::getAuthInfo]");
    return TVNG_ifMemory(0, [&] {
        // Any numbered element is an entry here, whatever its name; only getAuthInfoCnt() looks at names.
        TVNC_XMLNode* pc_entry = pc_out ? TVNG_recordByNumber(*this, si_index) : nullptr;
        if (!pc_entry)
            return 0;
        // What is missing or too long keeps the caller's value, and the result stays 1: browsers set defaults
        // beforehand.
        TVNS_AuthInfo info = *pc_out;
        QString authType;
        copyShortText(*pc_entry, authNames().hostName, TVNG_HOST_NAME_MAX_BYTES, info.hostName);
        copyShortText(*pc_entry, authNames().portNum, TVNG_PORT_NUM_MAX_BYTES, info.portNum);
        TVNG_copyField(*pc_entry, authNames().authType, authType);
        info.authType = codeOf(authType);
        copyBytes(*pc_entry, authNames().user, TVNG_USER_MAX_BYTES, info.user);
        copyBytes(*pc_entry, authNames().passwd, TVNG_PASSWD_MAX_BYTES, info.passwd);
        *pc_out = info;
        return 1;
    });
}

int TVNC_AuthSetting::getAuthInfoCnt()
{
    return TVNG_ifMemory(0, [&] {
        return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), authNames().authInfo);
    });
}

void TVNC_AuthSetting::deleteAuthInfo(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:%d", si_index);
    TVNG_ifMemory([&] { TVNG_deleteRecord(*this, si_index); });
}
