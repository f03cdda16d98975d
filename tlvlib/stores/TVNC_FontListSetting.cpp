#include "tlvlib/stores/TVNC_FontListSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

namespace {

/// The names in the document.
struct FontNames
{
    QString file = QEXC_TextCodec::fromSJIS("fontlist.xml");
    QString root = QEXC_TextCodec::fromSJIS("fontlist");
    QString font = QEXC_TextCodec::fromSJIS("font");
};

FontNames& fontNames()
{
    return TVNG_immortal<FontNames>();
}

} // namespace

TVNC_FontListSetting::TVNC_FontListSetting() {}

TVNC_FontListSetting::~TVNC_FontListSetting() {}

TVNC_FontListSetting* TVNC_FontListSetting::getInstance()
{
    static TVNC_FontListSetting instance;
    return &instance;
}

void TVNC_FontListSetting::loadFontList(QString dir)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::loadFontList] start");
    if (dir.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::loadFontList] Path is empty.");
        return;
    }
    deleteAllSetting();
    QString path = dir + fontNames().file;
    load(path);
    setIDforChildren(TVNC_RecordNumbers::attributeName());
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::loadFontList] end");
}

void TVNC_FontListSetting::saveFontList(QString dir)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] start");
    if (dir.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::saveFontList] Path is empty.");
        return;
    }
    TVNG_nameRoot(getXMLRootNode(), fontNames().root);
    QString path = dir + fontNames().file;
    save(path);
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] end");
}

int TVNC_FontListSetting::getCount()
{
    return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), fontNames().font);
}

QString TVNC_FontListSetting::getFont(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::getFont]");
    TVNC_XMLNode* pc_font = TVNG_recordByNumber(*this, si_index);
    // Any numbered element is a font here, whatever its name; only getCount() looks at names.
    if (!pc_font || !TVNG_fitsUtf8(pc_font->getText(), TVNG_FONT_NAME_MAX_BYTES))
        return QString();
    return pc_font->getText();
}

void TVNC_FontListSetting::addFont(QString name)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::addFont]");
    if (name.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::addFont] FontName is empty.");
        return;
    }
    QXmlStreamAttributes noAttributes;
    char c_textType = TVNG_CHARACTER_DATA;
    TVNG_releaseDetached(addXMLChild(getXMLRootNode(), fontNames().font, name, c_textType, noAttributes, 0));
    setIDforChildren(TVNC_RecordNumbers::attributeName());
}
