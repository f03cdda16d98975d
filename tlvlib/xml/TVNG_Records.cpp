#include "tlvlib/xml/TVNG_Records.h"

#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"

QString& TVNG_idName()
{
    return TVNC_RecordNumbers::usualName();
}

void TVNG_nameRoot(TVNC_XMLNode* pc_root, QString& name)
{
    if (!pc_root)
        return;
    QXmlStreamAttributes docInfo;
    docInfo.append(QEXC_TextCodec::fromSJIS("docInfo"), QEXC_TextCodec::fromSJIS("1.0"));
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

void TVNG_releaseDetached(TVNC_XMLNode* pc_record)
{
    if (pc_record && !pc_record->getXMLNodeParent())
        delete pc_record;
}

TVNC_XMLNode* TVNG_recordByNumber(TVNC_XMLSetting& setting, int si_number)
{
    TVNC_XMLNode* pc_root = setting.getXMLRootNode();
    return pc_root ? pc_root->getXMLNodeChildByID(si_number, TVNG_idName()) : nullptr;
}

QVector<TVNC_XMLNode*> TVNG_recordsByNumber(TVNC_XMLSetting& setting, int si_count)
{
    QVector<TVNC_XMLNode*> records(qMax(si_count, 0), nullptr);
    TVNC_XMLNode* pc_root = setting.getXMLRootNode();
    if (!pc_root)
        return records;
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*pc_root);
    if (TVNC_NodeAccess::isNumbered(*pc_root)) {
        const int si_numbered = qMin(static_cast<int>(children.size()), TVNC_RecordNumbers::LIMIT);
        for (int i = 0; i < si_numbered && i < si_count; ++i)
            records[i] = children.at(i);
        if (si_count <= si_numbered)
            return records;
    }
    for (int i = 0; i < children.size(); ++i) {
        TVNC_XMLNode* pc_child = children.at(i);
        int si_number = 0;
        if (!pc_child ||
            !TVNC_RecordNumbers::read(TVNC_NodeAccess::attributes(*pc_child), TVNG_idName(), si_number))
            continue;
        if (si_number >= 0 && si_number < si_count && !records.at(si_number))
            records[si_number] = pc_child;
    }
    return records;
}
