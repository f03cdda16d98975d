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
 * Adds a record with empty text, through the base's addXMLChild().
 *
 * @param c_prepend 0 puts it last, any other value first
 * @return the record; null when memory ran out. Without a root it belongs to no document: hand it to
 *         TVNG_releaseDetached() when it is complete.
 */
TVNC_XMLNode* TVNG_addRecord(TVNC_XMLSetting& setting, QString& name, char c_prepend);

/// Adds a text element at the end of a record, through the base's addXMLChild(). Failures are not reported.
void TVNG_addField(TVNC_XMLSetting& setting, TVNC_XMLNode* pc_record, QString& name, QString text,
                   char c_textType);

/// Copies the text of a record's element. Where there is none of the name, @a text stays as it was.
void TVNG_copyField(TVNC_XMLNode& record, QString& name, QString& text);

/// Deletes a record that could not be hung under a root, so that it is not leaked; keeps any other.
void TVNG_releaseDetached(TVNC_XMLNode* pc_record);

/// The record of a number; null without a root or without such a record.
TVNC_XMLNode* TVNG_recordByNumber(TVNC_XMLSetting& setting, int si_number);

/**
 * The records of the numbers from 0 to @a si_count - 1, in this order, each as TVNG_recordByNumber() finds
 * it, or null: for going through all of them without a search for each.
 */
QList<TVNC_XMLNode*> TVNG_recordsByNumber(TVNC_XMLSetting& setting, int si_count);

#endif
