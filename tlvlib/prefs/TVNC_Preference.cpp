#include "tlvlib/prefs/TVNC_Preference.h"

#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_Base64.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/xml/TVNC_XMLNode.h"
#include "tlvlib/xml/TVNC_XMLSetting.h"
#include "tlvlib/xml/TVNG_Records.h"

#include <QtCore/QStringList>

// --- Any preference ---------------------------------------------------------------------------------------

TVNC_Preference::TVNC_Preference(QVector<const TVNC_Preference*>& list, const char* pc_group,
                                 const char* pc_leaf)
    : group_(QEXC_TextCodec::fromSJIS(pc_group)), leaf_(QEXC_TextCodec::fromSJIS(pc_leaf))
{
    list.append(this);
}

TVNC_XMLNode* TVNC_Preference::find(TVNC_XMLSetting& setting) const
{
    return setting.getGrandchildNode(group_, leaf_);
}

TVNC_XMLNode* TVNC_Preference::writeGroup(TVNC_XMLSetting& setting) const
{
    return setting.setElement(setting.getXMLRootNode(), group_, QString(), QXmlStreamAttributes(),
                              TVNG_CHARACTER_DATA, 0);
}

void TVNC_Preference::writeLeaf(TVNC_XMLSetting& setting, TVNC_XMLNode* pc_group, const QString& text,
                                char c_textType) const
{
    setting.setElement(pc_group, leaf_, text, QXmlStreamAttributes(), c_textType, 0);
}

bool TVNC_Preference::write(TVNC_XMLSetting& setting, const QString& text, char c_textType) const
{
    TVNC_XMLNode* pc_group = writeGroup(setting);
    if (!pc_group)
        return false;
    writeLeaf(setting, pc_group, text, c_textType);
    return true;
}

void TVNC_PreferenceList::complete(TVNC_XMLSetting& setting, const char* pc_rootName) const
{
    TVNC_XMLNode* pc_root = setting.getXMLRootNode();
    if (!pc_root)
        return;
    QString rootName = QEXC_TextCodec::fromSJIS(pc_rootName);
    if (pc_root->getName() != rootName)
        TVNG_nameRoot(pc_root, rootName);
    for (int i = 0; i < size(); ++i) {
        if (!at(i)->find(setting))
            at(i)->setDefault(setting);
    }
}

// --- One of several words ---------------------------------------------------------------------------------

const char TVNG_DELETE_TIMINGS[] = "notDelete logout timeout";

TVNC_ChoicePreference::TVNC_ChoicePreference(QVector<const TVNC_Preference*>& list, const char* pc_group,
                                             const char* pc_leaf, const char* pc_words, int si_default,
                                             int si_firstCode)
    : TVNC_Preference(list, pc_group, pc_leaf)
    , words_(QEXC_TextCodec::fromSJIS(pc_words).split(QLatin1Char(' ')).toVector())
    , si_default_(si_default)
    , si_firstCode_(si_firstCode)
{
}

int TVNC_ChoicePreference::code(TVNC_XMLSetting& setting) const
{
    TVNC_XMLNode* pc_leaf = find(setting);
    const int si_index = pc_leaf ? static_cast<int>(words_.indexOf(pc_leaf->getText())) : -1;
    return si_index < 0 ? si_default_ : si_firstCode_ + si_index;
}

void TVNC_ChoicePreference::set(TVNC_XMLSetting& setting, char c_code) const
{
    writeWord(setting, static_cast<unsigned char>(c_code));
}

void TVNC_ChoicePreference::writeWord(TVNC_XMLSetting& setting, int si_code) const
{
    const QString theDefault = words_.at(si_default_ - si_firstCode_);
    write(setting, words_.value(si_code - si_firstCode_, theDefault), TVNG_CHARACTER_DATA);
}

bool TVNC_ChoicePreference::setOrRefuse(TVNC_XMLSetting& setting, int si_code) const
{
    // The group first: it is there afterwards, and without text, also when the code is refused. Files written
    // by other versions are compared with it.
    TVNC_XMLNode* pc_group = writeGroup(setting);
    const int si_index = si_code - si_firstCode_;
    if (!pc_group || si_index < 0 || si_index >= words_.size())
        return false;
    writeLeaf(setting, pc_group, words_.at(si_index), TVNG_CHARACTER_DATA);
    return true;
}

void TVNC_ChoicePreference::setDefault(TVNC_XMLSetting& setting) const
{
    writeWord(setting, si_default_);
}

// --- A text -----------------------------------------------------------------------------------------------

TVNC_TextPreference::TVNC_TextPreference(QVector<const TVNC_Preference*>& list, const char* pc_group,
                                         const char* pc_leaf, int si_maxBytes, const char* pc_default,
                                         Emptiness emptiness)
    : TVNC_Preference(list, pc_group, pc_leaf)
    , default_(QEXC_TextCodec::fromSJIS(pc_default))
    , si_maxBytes_(si_maxBytes)
    , emptiness_(emptiness)
{
}

void TVNC_TextPreference::get(TVNC_XMLSetting& setting, QString* pc_out) const
{
    if (!pc_out || !setting.getXMLRootNode())
        return;
    TVNC_XMLNode* pc_leaf = find(setting);
    const bool b_usable = pc_leaf && TVNG_fitsUtf8(pc_leaf->getText(), si_maxBytes_) &&
                          (emptiness_ == MAY_BE_EMPTY || !pc_leaf->getText().isEmpty());
    *pc_out = b_usable ? pc_leaf->getText() : default_;
}

bool TVNC_TextPreference::set(TVNC_XMLSetting& setting, const QString& text) const
{
    return TVNG_fitsUtf8(text, si_maxBytes_) && write(setting, text, TVNG_CHARACTER_DATA);
}

void TVNC_TextPreference::setDefault(TVNC_XMLSetting& setting) const
{
    set(setting, default_);
}

// --- Bytes ------------------------------------------------------------------------------------------------

TVNC_BytesPreference::TVNC_BytesPreference(QVector<const TVNC_Preference*>& list, const char* pc_group,
                                           const char* pc_leaf, int si_maxBytes)
    : TVNC_Preference(list, pc_group, pc_leaf), si_maxBytes_(si_maxBytes)
{
}

void TVNC_BytesPreference::get(TVNC_XMLSetting& setting, QByteArray* pc_out) const
{
    if (!pc_out || !setting.getXMLRootNode())
        return;
    TVNC_XMLNode* pc_leaf = find(setting);
    if (!pc_leaf || !TVNG_fromBase64(pc_leaf->getText(), si_maxBytes_, *pc_out))
        *pc_out = QByteArray();
}

bool TVNC_BytesPreference::set(TVNC_XMLSetting& setting, const QByteArray& bytes) const
{
    return bytes.size() <= si_maxBytes_ && write(setting, TVNG_toBase64(bytes), TVNG_CDATA_SECTION);
}

void TVNC_BytesPreference::setDefault(TVNC_XMLSetting& setting) const
{
    set(setting, QByteArray());
}
