#include "tlvlib/xml/TVNG_Records.h"

#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"

QXmlStreamAttributes TVNG_docInfo()
{
    QXmlStreamAttributes docInfo;
    docInfo.append(QEXC_TextCodec::fromSJIS("docInfo"), QEXC_TextCodec::fromSJIS("1.0"));
    return docInfo;
}

void TVNG_nameRoot(TVNC_XMLNode* pc_root, QString& name)
{
    if (!pc_root)
        return;
    QXmlStreamAttributes docInfo = TVNG_docInfo();
    pc_root->setName(name);
    pc_root->setAttribute(docInfo);
}

TVNC_XMLNode* TVNG_addRecord(TVNC_XMLSetting& setting, QString& name, char c_prepend)
{
    QString noText;
    char c_textType = TVNG_CHARACTER_DATA;
    QXmlStreamAttributes noAttributes;
    return setting.addXMLChild(setting.getXMLRootNode(), name, noText, c_textType, noAttributes, c_prepend);
}

void TVNG_addField(TVNC_XMLSetting& setting, TVNC_XMLNode* pc_record, QString& name, QString text,
                   char c_textType)
{
    QXmlStreamAttributes noAttributes;
    setting.addXMLChild(pc_record, name, text, c_textType, noAttributes, 0);
}

void TVNG_copyField(TVNC_XMLNode& record, QString& name, QString& text)
{
    if (TVNC_XMLNode* pc_field = record.getXMLNodeChildByName(name))
        text = pc_field->getText();
}

void TVNG_releaseDetached(TVNC_XMLNode* pc_record)
{
    if (pc_record && !pc_record->getXMLNodeParent())
        delete pc_record;
}

TVNC_XMLNode* TVNG_recordByNumber(TVNC_XMLSetting& setting, int si_number)
{
    TVNC_XMLNode* pc_root = setting.getXMLRootNode();
    return pc_root ? TVNC_RecordNumbers::find(*pc_root, si_number, TVNC_RecordNumbers::attributeName())
                   : nullptr;
}

QList<TVNC_XMLNode*> TVNG_recordsByNumber(TVNC_XMLSetting& setting, int si_count)
{
    TVNC_XMLNode* pc_root = setting.getXMLRootNode();
    if (!pc_root)
        return QList<TVNC_XMLNode*>(); // and the count is 0
    return TVNC_RecordNumbers::findAll(*pc_root, si_count, TVNC_RecordNumbers::attributeName());
}
