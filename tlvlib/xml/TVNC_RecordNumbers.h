#ifndef TLVLIB_XML_TVNC_RECORDNUMBERS_H
#define TLVLIB_XML_TVNC_RECORDNUMBERS_H

#include "tlvlib/util/TVNG_digits.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QXmlStreamAttributes>

class TVNC_XMLNode;

/**
 * The numbers of a document's records: the attribute (every store names it "id") that holds a record's
 * position among its siblings as three digits, "000" to "998". Internal to the library; not installed.
 *
 * What counts as a number is what QString::toInt() takes: " 7 " and "+7" are 7; "7.0", "0x7" and "" are none.
 * Of several records with the same number only the first one bears it.
 *
 * A list is marked as numbered while its first 999 children bear the numbers of their positions. A look-up by
 * number is then one by position. Every change through a node's interface takes the mark away. The interface
 * hands out references, too, through which a node changes without notice: a node that has handed one out is
 * exposed for the rest of its life, and neither an exposed list nor one with an exposed child is ever marked.
 */
class TVNC_RecordNumbers
{
public:
    /// How many records of a document can have a number.
    static const int LIMIT = 999;

    /// How many digits a number is written with.
    static const int DIGITS = 3;

    /// The number that a value written by the library is: three digits below "999"; -1 for any other value.
    template <typename Character>
    static int ofDigits(const Character* pc_value, int si_size)
    {
        const int si_number = si_size == DIGITS ? TVNG_digits(pc_value, DIGITS) : -1;
        return si_number < LIMIT ? si_number : -1;
    }

    /// The attribute name of every store, "id".
    static QString& attributeName();

    /**
     * Numbers the first 999 children by their positions and marks the list. Each child loses every other
     * attribute. Nothing is allocated for a child that has its number already.
     *
     * Logs each null child at level 1 as "[TVNC_XMLSetting::setIDforChildren] 0x%X Why Pass??" with the
     * address of the parent.
     */
    static void number(TVNC_XMLNode& parent, const QString& attributeName);

    /// Makes the number @a si_number (0 to 998) the record's only attribute.
    static void give(TVNC_XMLNode& record, int si_number);

    /// The attribute set that consists of the number @a si_number (0 to 998). All records of all documents
    /// share it, and any thread may ask for it.
    static QXmlStreamAttributes attributes(int si_number);

    /// The child that bears a number, or null. It allocates nothing, unless it has to ask Qt what a value of
    /// other characters than up to nine digits means.
    static TVNC_XMLNode* find(TVNC_XMLNode& parent, int si_number, const QString& attributeName);

    /// The children that bear the numbers from 0 to @a si_count - 1, in this order; null where there is none.
    /// It allocates nothing when the children of a marked list are just these: each visit of a page calls it.
    static QList<TVNC_XMLNode*> findAll(TVNC_XMLNode& parent, int si_count, const QString& attributeName);
};

#endif
