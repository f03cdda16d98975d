#ifndef TLVLIB_XML_TVNG_RECORDS_H
#define TLVLIB_XML_TVNG_RECORDS_H

#include "tlvlib/xml/TVNC_XMLNode.h"
#include "tlvlib/xml/TVNC_XMLSetting.h"

#include <QtCore/QList>

/**
 * @file
 * What the stores do with their records, beyond the operations of the setting base. Internal to the library;
 * not installed.
 */

/// The attribute set docInfo="1.0" that the root of every document has.
QXmlStreamAttributes TVNG_docInfo();

/// Names the root for saving and makes docInfo="1.0" its only attribute. Null does nothing.
void TVNG_nameRoot(TVNC_XMLNode* pc_root, QString& name);

/**
 * A record that is being added in front of the others, through the base's addXMLChild(). It is in the
 * document at once, but stays there only when it is kept: when memory runs out on the way, it goes again.
 */
class TVNC_NewRecord
{
public:
    /// Adds the record, with empty text. Without a root it belongs to no document, and goes in any case.
    TVNC_NewRecord(TVNC_XMLSetting& setting, QString& name);
    ~TVNC_NewRecord();

    /// Null when there was no memory for the record itself.
    TVNC_XMLNode* node() const { return pc_record_; }

    /// False when there was no memory for the record or one of its fields.
    bool isComplete() const { return b_complete_; }

    /// Adds a text element at the end of a record that is there.
    void addField(QString& name, QString text, char c_textType);

    /// Leaves the record in the document, whether it is complete or not.
    void keep() { b_kept_ = true; }

private:
    Q_DISABLE_COPY(TVNC_NewRecord)

    TVNC_XMLSetting& setting_;
    TVNC_XMLNode* const pc_record_;
    bool b_complete_;
    bool b_kept_;
};

/// Copies the text of a record's element. False where there is none of the name; @a text stays as it was
/// then.
bool TVNG_copyField(TVNC_XMLNode& record, QString& name, QString& text);

/// Deletes the record of a number, through the base's deleteXMLNodeByID(), and numbers the others anew.
void TVNG_deleteRecord(TVNC_XMLSetting& setting, int si_number);

/// The record of a number; null without a root or without such a record.
TVNC_XMLNode* TVNG_recordByNumber(TVNC_XMLSetting& setting, int si_number);

/**
 * The records of the numbers from 0 to @a si_count - 1, in this order, each as TVNG_recordByNumber() finds
 * it, or null: for going through all of them without a search for each.
 */
QList<TVNC_XMLNode*> TVNG_recordsByNumber(TVNC_XMLSetting& setting, int si_count);

#endif
