#ifndef TOOLS_TLVCTL_RECORDS_RECORD_H
#define TOOLS_TLVCTL_RECORDS_RECORD_H

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QSet>
#include <QtCore/QString>

#include <optional>
#include <vector>

/**
 * @file
 * What holds for the records of every store.
 */

/// How many records of a document the stores number, from 0 on.
const int NUMBERED_MAX = 999;

/// What keeps a record from being one like any other.
struct Flaw
{
    const char* name;    ///< for JSON
    QString explanation; ///< fit for a terminal
};

/// A record of a list, whatever its store.
struct ListedRecord
{
    std::optional<int> number;
    int filePosition = 0; ///< among the records of the file, from 0 on
    QString label;        ///< what stands behind the number where its flaws are told, fit for a terminal
    std::vector<Flaw> flaws;
};

/**
 * The number by which a store finds a record; none if another one with it stands before.
 *
 * @param taken the numbers of the records before; the record's own is added
 */
std::optional<int> numberOf(TVNC_XMLNode& record, QSet<int>& taken);

/// A number as the file has it, "007", with dashes where there is none.
QString numberText(const std::optional<int>& number);

/// How many of the first 999 records have another number in the file than loading will give them.
int countRenumbered(TVNC_XMLNode* root);

/// Begins the record of a node with its number and its place. A lacking number is its first flaw.
void beginRecord(ListedRecord& record, TVNC_XMLNode& node, QSet<int>& taken, size_t filePosition);

/// All records of a document, in its order. What each holds by itself is left to @a read.
template <typename Record, typename Read>
std::vector<Record> readRecords(TVNC_XMLNode& root, Read read)
{
    std::vector<Record> records;
    QSet<int> taken;
    for (TVNC_XMLNode* node : root.getXMLNodeChildren()) {
        Record record;
        beginRecord(record, *node, taken, records.size());
        read(*node, record);
        records.push_back(std::move(record));
    }
    return records;
}

/// What stands before the explanation of a record's flaws: "003" or "--- (record 1001 of the file)".
QString recordName(const ListedRecord& record);

QString explanationsOf(const std::vector<Flaw>& flaws);
QStringList namesOf(const std::vector<Flaw>& flaws);

/// The element of a record; null where there is none.
TVNC_XMLNode* childOf(TVNC_XMLNode& record, const char* element);

/// The text of an element; nothing where there is no such element.
std::optional<QString> textOf(TVNC_XMLNode& record, const char* element);

/// @param effect what becomes of that, such as ": read as empty"
Flaw missingElement(const char* element, const QString& effect = QString());

/// A record that is no element of the store's name. Adds nothing to one that is.
void checkName(TVNC_XMLNode& record, const char* element, const Flaw& otherwise, std::vector<Flaw>& flaws);

/// Whether a text is no longer than the store hands out. One that is has the flaw, told with both numbers.
bool checkLength(const QString& text, int maxBytes, const Flaw& tooLong, std::vector<Flaw>& flaws);

/// What the store answers for the text of an element; @a otherwise when it is too long.
QString answeredText(TVNC_XMLNode& record, const char* element, int maxBytes, const Flaw& tooLong,
                     const QString& otherwise, std::vector<Flaw>& flaws);

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

/// As above, for a text that must not be empty.
QString problemWithName(const QString& text, int maxBytes);

#endif
