#include "tlvlib/stores/TVNC_FontListSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_Utf8.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"

namespace {

/// The names in the document.
struct FontNames
{
    QString file = TVNG_literal("fontlist.xml");
    QString root = TVNG_literal("fontlist");
    QString font = TVNG_literal("font");
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
    TVNG_ifMemory([&] {
        QString path = dir + fontNames().file;
        deleteAllSetting();
        load(path);
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        TVNG_DebugPrint(3, "[TVNC_FontListSetting::loadFontList] end");
    });
}

void TVNC_FontListSetting::saveFontList(QString dir)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] start");
    if (dir.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::saveFontList] Path is empty.");
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = dir + fontNames().file;
        TVNG_nameRoot(getXMLRootNode(), fontNames().root);
        save(path);
        TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] end");
    });
}

int TVNC_FontListSetting::getCount()
{
    return TVNG_ifMemory(0, [&] {
        return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), fontNames().font);
    });
}

QString TVNC_FontListSetting::getFont(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::getFont]");
    return TVNG_ifMemory(QString(), [&] {
        TVNC_XMLNode* pc_font = TVNG_recordByNumber(*this, si_index);
        // Any numbered element is a font here, whatever its name; only getCount() looks at names.
        const QString name = pc_font ? TVNC_NodeAccess::text(*pc_font) : QString();
        return TVNG_fitsUtf8(name, TVNG_FONT_NAME_MAX_BYTES) ? name : QString();
    });
}

void TVNC_FontListSetting::addFont(QString name)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::addFont]");
    if (name.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::addFont] FontName is empty.");
        return;
    }
    TVNG_ifMemory([&] {
        QXmlStreamAttributes noAttributes;
        char c_textType = TVNG_CHARACTER_DATA;
        TVNC_XMLNode* pc_font =
            addXMLChild(getXMLRootNode(), fontNames().font, name, c_textType, noAttributes, 0);
        if (pc_font && !pc_font->getXMLNodeParent())
            delete pc_font; // without a root it belongs to no document
        setIDforChildren(TVNC_RecordNumbers::attributeName());
    });
}
