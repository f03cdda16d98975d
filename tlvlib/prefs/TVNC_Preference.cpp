#include "tlvlib/prefs/TVNC_Preference.h"

#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_Base64.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_NamePool.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_XMLSetting.h"
#include "tlvlib/xml/TVNG_Records.h"

#include <cstring>

namespace {

/// The first child of a name. Null without one, and for null.
TVNC_XMLNode* childNamed(TVNC_XMLNode* pc_node, const char* pc_name)
{
    const QLatin1String name(pc_name);
    for (int i = 0; pc_node && i < TVNC_NodeAccess::children(*pc_node).size(); ++i) {
        TVNC_XMLNode* pc_child = TVNC_NodeAccess::children(*pc_node).at(i);
        if (pc_child && TVNC_NodeAccess::name(*pc_child) == name)
            return pc_child;
    }
    return nullptr;
}

} // namespace

// --- Any preference ---------------------------------------------------------------------------------------

TVNC_Preference::TVNC_Preference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf)
    : pc_group_(pc_group), pc_leaf_(pc_leaf), pc_next_(nullptr)
{
    (list.pc_last_ ? list.pc_last_->pc_next_ : list.pc_first_) = this;
    list.pc_last_ = this;
}

TVNC_XMLNode* TVNC_Preference::find(TVNC_XMLSetting& setting) const
{
    return childNamed(childNamed(setting.getXMLRootNode(), pc_group_), pc_leaf_);
}

TVNC_XMLNode* TVNC_Preference::writeGroup(TVNC_XMLSetting& setting) const
{
    return setting.setElement(setting.getXMLRootNode(), TVNG_literal(pc_group_), QString(),
                              QXmlStreamAttributes(), TVNG_CHARACTER_DATA, 0);
}

void TVNC_Preference::writeLeaf(TVNC_XMLSetting& setting, TVNC_XMLNode* pc_group, const QString& text,
                                char c_textType) const
{
    setting.setElement(pc_group, TVNG_literal(pc_leaf_), text, QXmlStreamAttributes(), c_textType, 0);
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
    QString rootName = TVNG_literal(pc_rootName);
    if (pc_root->getName() != rootName)
        TVNG_nameRoot(pc_root, rootName);
    for (const TVNC_Preference* pc_one = pc_first_; pc_one; pc_one = pc_one->pc_next_) {
        if (!pc_one->find(setting))
            pc_one->setDefault(setting);
    }
}

// --- One of several words ---------------------------------------------------------------------------------

TVNC_ChoicePreference::TVNC_ChoicePreference(TVNC_PreferenceList& list, const char* pc_group,
                                             const char* pc_leaf, const char* pc_words, int si_default,
                                             int si_firstCode)
    : TVNC_Preference(list, pc_group, pc_leaf)
    , pc_words_(pc_words)
    , si_default_(si_default)
    , si_firstCode_(si_firstCode)
{
}

int TVNC_ChoicePreference::code(TVNC_XMLSetting& setting) const
{
    return TVNG_ifMemory(si_default_, [&] {
        TVNC_XMLNode* pc_leaf = find(setting);
        if (!pc_leaf)
            return si_default_;
        const int si_index = indexOf(TVNC_NodeAccess::text(*pc_leaf));
        return si_index < 0 ? si_default_ : si_firstCode_ + si_index;
    });
}

void TVNC_ChoicePreference::set(TVNC_XMLSetting& setting, char c_code) const
{
    TVNG_ifMemory([&] { writeWord(setting, static_cast<unsigned char>(c_code)); });
}

void TVNC_ChoicePreference::writeWord(TVNC_XMLSetting& setting, int si_code) const
{
    int si_size = 0;
    const char* pc_word = word(si_code - si_firstCode_, si_size);
    if (!pc_word)
        pc_word = word(si_default_ - si_firstCode_, si_size);
    write(setting, QString::fromLatin1(pc_word, si_size), TVNG_CHARACTER_DATA);
}

int TVNC_ChoicePreference::indexOf(const QString& text) const
{
    int si_size = 0;
    for (int i = 0; const char* pc_word = word(i, si_size); ++i) {
        if (TVNC_NamePool::equals(text, pc_word, si_size))
            return i;
    }
    return -1;
}

const char* TVNC_ChoicePreference::word(int si_index, int& si_size) const
{
    const char* pc_word = pc_words_;
    for (int i = 0;; ++i) {
        si_size = static_cast<int>(std::strcspn(pc_word, " "));
        if (i == si_index)
            return pc_word;
        if (!pc_word[si_size])
            return nullptr;
        pc_word += si_size + 1;
    }
}

bool TVNC_ChoicePreference::setOrRefuse(TVNC_XMLSetting& setting, int si_code) const
{
    // The group first: it is there afterwards, and without text, also when the code is refused. Files written
    // by other versions are compared with it.
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_group = writeGroup(setting);
        int si_size = 0;
        const char* const pc_word = word(si_code - si_firstCode_, si_size);
        if (!pc_group || !pc_word)
            return false;
        writeLeaf(setting, pc_group, QString::fromLatin1(pc_word, si_size), TVNG_CHARACTER_DATA);
        return true;
    });
}

void TVNC_ChoicePreference::setDefault(TVNC_XMLSetting& setting) const
{
    writeWord(setting, si_default_);
}

// --- A text -----------------------------------------------------------------------------------------------

TVNC_TextPreference::TVNC_TextPreference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf,
                                         int si_maxBytes, const char* pc_default, Emptiness emptiness)
    : TVNC_Preference(list, pc_group, pc_leaf)
    , pc_default_(pc_default)
    , si_maxBytes_(si_maxBytes)
    , emptiness_(emptiness)
{
}

void TVNC_TextPreference::get(TVNC_XMLSetting& setting, QString* pc_out) const
{
    if (!pc_out || !setting.getXMLRootNode())
        return;
    TVNG_ifMemory([&] {
        TVNC_XMLNode* pc_leaf = find(setting);
        const QString text = pc_leaf ? TVNC_NodeAccess::text(*pc_leaf) : QString();
        const bool b_usable =
            pc_leaf && TVNG_fitsUtf8(text, si_maxBytes_) && (emptiness_ == MAY_BE_EMPTY || !text.isEmpty());
        *pc_out = b_usable ? text : QString::fromLatin1(pc_default_);
    });
}

bool TVNC_TextPreference::set(TVNC_XMLSetting& setting, const QString& text) const
{
    return TVNG_ifMemory(false, [&] {
        return TVNG_fitsUtf8(text, si_maxBytes_) && write(setting, text, TVNG_CHARACTER_DATA);
    });
}

void TVNC_TextPreference::setDefault(TVNC_XMLSetting& setting) const
{
    set(setting, QString::fromLatin1(pc_default_));
}

// --- Bytes ------------------------------------------------------------------------------------------------

TVNC_BytesPreference::TVNC_BytesPreference(TVNC_PreferenceList& list, const char* pc_group,
                                           const char* pc_leaf, int si_maxBytes)
    : TVNC_Preference(list, pc_group, pc_leaf), si_maxBytes_(si_maxBytes)
{
}

void TVNC_BytesPreference::get(TVNC_XMLSetting& setting, QByteArray* pc_out) const
{
    if (!pc_out || !setting.getXMLRootNode())
        return;
    TVNG_ifMemory([&] {
        TVNC_XMLNode* pc_leaf = find(setting);
        QByteArray bytes;
        if (pc_leaf)
            TVNG_fromBase64(TVNC_NodeAccess::text(*pc_leaf), si_maxBytes_, bytes);
        *pc_out = bytes;
    });
}

bool TVNC_BytesPreference::set(TVNC_XMLSetting& setting, const QByteArray& bytes) const
{
    return TVNG_ifMemory(false, [&] {
        if (bytes.size() > si_maxBytes_)
            return false;
        return write(setting, TVNG_toBase64(bytes), TVNG_CDATA_SECTION);
    });
}

void TVNC_BytesPreference::setDefault(TVNC_XMLSetting& setting) const
{
    set(setting, QByteArray());
}
