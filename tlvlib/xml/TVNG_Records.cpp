#include "tlvlib/xml/TVNG_Records.h"

#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"

namespace {

TVNC_XMLNode* newRecord(TVNC_XMLSetting& setting, QString& name)
{
    QString noText;
    char c_textType = TVNG_CHARACTER_DATA;
    QXmlStreamAttributes noAttributes;
    return setting.addXMLChild(setting.getXMLRootNode(), name, noText, c_textType, noAttributes, 1);
}

} // namespace

QXmlStreamAttributes TVNG_docInfo()
{
    QXmlStreamAttributes docInfo;
    docInfo.append(TVNG_literal("docInfo"), TVNG_literal("1.0"));
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

TVNC_NewRecord::TVNC_NewRecord(TVNC_XMLSetting& setting, QString& name)
    : setting_(setting), pc_record_(newRecord(setting, name)), b_complete_(pc_record_), b_kept_(false)
{
}

TVNC_NewRecord::~TVNC_NewRecord()
{
    if (pc_record_ && !(b_kept_ && pc_record_->getXMLNodeParent()))
        delete pc_record_;
}

void TVNC_NewRecord::addField(QString& name, QString text, char c_textType)
{
    QXmlStreamAttributes noAttributes;
    if (!setting_.addXMLChild(pc_record_, name, text, c_textType, noAttributes, 0))
        b_complete_ = false;
}

bool TVNG_copyField(TVNC_XMLNode& record, QString& name, QString& text)
{
    TVNC_XMLNode* pc_field = record.getXMLNodeChildByName(name);
    if (pc_field)
        text = TVNC_NodeAccess::text(*pc_field);
    return pc_field != nullptr;
}

void TVNG_deleteRecord(TVNC_XMLSetting& setting, int si_number)
{
    setting.deleteXMLNodeByID(si_number, TVNC_RecordNumbers::attributeName());
    setting.setIDforChildren(TVNC_RecordNumbers::attributeName());
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
