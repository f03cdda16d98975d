#ifndef TLVLIB_XML_TVNC_RECORDNUMBERS_H
#define TLVLIB_XML_TVNC_RECORDNUMBERS_H

#include <QtCore/QString>
#include <QtCore/QXmlStreamAttributes>

class TVNC_XMLNode;

/**
 * The record numbers of a document: the attribute (every store names it "id") that holds a record's position
 * as three digits, "000" to "998". Internal to the library; not installed.
 *
 * There are only 999 such attribute sets for one attribute name. They are built once, when first needed, and
 * shared by all records of all documents, so that numbering a list again, as happens after every insertion,
 * touches nothing where the number stands already.
 *
 * An object of this class gives out numbers. It holds the lock on the shared sets while it lives.
 */
class TVNC_RecordNumbers
{
public:
    /// How many records of a document can have a number.
    static const int LIMIT = 999;

    /// The attribute name of every store, "id".
    static QString& usualName();

    explicit TVNC_RecordNumbers(const QString& attributeName);
    ~TVNC_RecordNumbers();

    /// Makes the number of @a si_position (0 to 998) the record's whole attribute set. The mark of a numbered
    /// list is the caller's to set; see TVNC_NodeAccess.
    void give(TVNC_XMLNode& record, int si_position);

    /// The attribute set that consists of the number @a si_position (0 to 998).
    const QXmlStreamAttributes& shared(int si_position);

    /**
     * Reads a number from an attribute set, without allocating anything for the numbers that this library
     * writes. What counts as a number is what QString::toInt() takes: " 7 " and "+7" are 7; "7.0", "0x7" and
     * "" are none.
     *
     * @return false when the attribute is absent or holds no number
     */
    static bool read(const QXmlStreamAttributes& attributes, const QString& attributeName, int& si_number);

private:
    Q_DISABLE_COPY(TVNC_RecordNumbers)

    struct SharedSets;
    static SharedSets& sharedSets();

    SharedSets& sets;
};

#endif
