#include "tlvlib/stores/TVNC_FontListSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/xml/TVNC_XMLNode.h"

namespace {

/// Longer names are stored but never handed out. In bytes of UTF-8.
const int FONT_NAME_MAX = 256;

/// The names in the document, decoded once. Never destroyed, so that they outlive the store.
struct Names
{
    Names()
        : file(QEXC_TextCodec::fromSJIS("fontlist.xml"))
        , root(QEXC_TextCodec::fromSJIS("fontlist"))
        , font(QEXC_TextCodec::fromSJIS("font"))
        , id(QEXC_TextCodec::fromSJIS("id"))
    {
        docInfo.append(QEXC_TextCodec::fromSJIS("docInfo"), QEXC_TextCodec::fromSJIS("1.0"));
    }
    QString file;
    QString root;
    QString font;
    QString id;
    QXmlStreamAttributes docInfo;
};

Names& names()
{
    static Names* const pc_names = new Names;
    return *pc_names;
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
    QString path = dir + names().file;
    load(path);
    setIDforChildren(names().id);
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::loadFontList] end");
}

void TVNC_FontListSetting::saveFontList(QString dir)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] start");
    if (dir.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_FontListSetting::saveFontList] Path is empty.");
        return;
    }
    if (TVNC_XMLNode* pc_root = getXMLRootNode()) {
        pc_root->setName(names().root);
        pc_root->setAttribute(names().docInfo);
    }
    QString path = dir + names().file;
    save(path);
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::saveFontList] end");
}

int TVNC_FontListSetting::getCount()
{
    return getXMLRootNodeChildCntByName(names().id, names().font);
}

QString TVNC_FontListSetting::getFont(int si_index)
{
    TVNG_DebugPrint(3, "[TVNC_FontListSetting::getFont]");
    TVNC_XMLNode* pc_root = getXMLRootNode();
    TVNC_XMLNode* pc_font = pc_root ? pc_root->getXMLNodeChildByID(si_index, names().id) : nullptr;
    // Any numbered element is a font here, whatever its name; only getCount() looks at names.
    if (!pc_font || pc_font->getText().toUtf8().size() > FONT_NAME_MAX)
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
    char c_textType = 0;
    TVNC_XMLNode* pc_root = getXMLRootNode();
    TVNC_XMLNode* pc_font = addXMLChild(pc_root, names().font, name, c_textType, noAttributes, 0);
    if (!pc_root)
        delete pc_font; // belongs to no document
    setIDforChildren(names().id);
}
