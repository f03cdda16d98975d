#ifndef TOOLS_TLVCTL_RECORDS_RECORD_H
#define TOOLS_TLVCTL_RECORDS_RECORD_H

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QSet>
#include <QtCore/QString>

#include <optional>

/**
 * @file
 * What holds for the records of every store.
 */

/// How many records of a document the stores number, from 0 on.
const int NUMBERED_MAX = 999;

/**
 * The number by which a store finds a record; none if another one with it stands before.
 *
 * @param taken the numbers of the records before; the record's own is added
 */
std::optional<int> numberOf(TVNC_XMLNode& record, QSet<int>& taken);

/// A number as the file has it, "007", with dashes where there is none.
QString numberText(const std::optional<int>& number);

/// How many bytes of UTF-8 a text takes, which is what the stores' limits count.
qint64 utf8Size(const QString& text);

/// Whether a text is the same when it was written and read again: some characters are not, and blanks alone.
bool survivesSaving(const QString& text);

/**
 * Why a text cannot be a value of the store, to follow its name; empty when it can.
 *
 * @param maxBytes the store's limit in bytes of UTF-8; negative for none
 */
QString problemWithText(const QString& text, int maxBytes);

#endif
