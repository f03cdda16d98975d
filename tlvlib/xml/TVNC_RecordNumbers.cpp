#include "tlvlib/xml/TVNC_RecordNumbers.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <QtCore/QMutex>

namespace {

struct IdName
{
    QString text = TVNG_literal("id");
};

/// "%03d" of a number.
QString digitsOf(int si_number)
{
    QChar digits[TVNC_RecordNumbers::DIGITS];
    TVNG_putDigits(digits, TVNC_RecordNumbers::DIGITS, si_number);
    return QString(digits, TVNC_RecordNumbers::DIGITS);
}

/// Whether a set consists of a number in three digits, without a prefix.
bool consistsOf(const QXmlStreamAttributes& attributes, int si_number, const QString& attributeName)
{
    if (attributes.size() != 1)
        return false;
    const QXmlStreamAttribute& attribute = attributes.at(0);
    const auto value = attribute.value();
    if (TVNC_RecordNumbers::ofDigits(value.data(), static_cast<int>(value.size())) != si_number)
        return false;
    const auto namespaceUri = attribute.namespaceUri();
    const auto qualifiedName = attribute.qualifiedName();
    return namespaceUri.isEmpty() && qualifiedName == attributeName;
}

/**
 * The 999 sets that consist of a number under the usual name, each made when it is first needed. The lock is
 * held for moments, never while anything is read, written or logged.
 */
struct SharedSets
{
    QMutex mutex;
    QXmlStreamAttributes sets[TVNC_RecordNumbers::LIMIT];

    const QXmlStreamAttributes& at(int si_number)
    {
        QXmlStreamAttributes& set = sets[si_number];
        if (set.isEmpty())
            set.append(TVNC_RecordNumbers::attributeName(), digitsOf(si_number));
        return set;
    }

    void give(TVNC_XMLNode& record, int si_number)
    {
        QXmlStreamAttributes& own = TVNC_NodeAccess::attributes(record);
        const bool b_shared = !own.isEmpty() && own.constData() == sets[si_number].constData();
        if (!b_shared && !consistsOf(own, si_number, TVNC_RecordNumbers::attributeName()))
            own = at(si_number);
    }
};

/// Numbers under any other name, without sharing.
void giveUnder(const QString& name, TVNC_XMLNode& record, int si_number)
{
    if (consistsOf(TVNC_NodeAccess::attributes(record), si_number, name))
        return;
    QXmlStreamAttributes set;
    set.append(name, digitsOf(si_number));
    TVNC_NodeAccess::attributes(record) = set;
}

/// Reads the number of a record. Returns false for one without a number, and for null.
bool read(TVNC_XMLNode* pc_record, const QString& attributeName, int& si_number)
{
    if (!pc_record)
        return false;
    const auto value = TVNC_NodeAccess::attributes(*pc_record).value(attributeName);
    const int si_size = static_cast<int>(value.size());
    if (si_size == 0)
        return false;
    if (si_size <= 9) { // no overflow
        si_number = TVNG_digits(value.data(), si_size);
        if (si_number >= 0)
            return true;
    }
    bool b_ok = false;
    si_number = TVNG_copyOf(value).toInt(&b_ok, 10);
    return b_ok;
}

bool isMarked(TVNC_XMLNode& parent, const QString& attributeName)
{
    return TVNC_NodeAccess::isNumbered(parent) && attributeName == TVNC_RecordNumbers::attributeName();
}

} // namespace

const int TVNC_RecordNumbers::LIMIT; // for those that take a reference to it

QString& TVNC_RecordNumbers::attributeName()
{
    return TVNG_immortal<IdName>().text;
}

QXmlStreamAttributes TVNC_RecordNumbers::attributes(int si_number)
{
    SharedSets& shared = TVNG_immortal<SharedSets>();
    QMutexLocker lock(&shared.mutex);
    return shared.at(si_number);
}

void TVNC_RecordNumbers::give(TVNC_XMLNode& record, int si_number)
{
    SharedSets& shared = TVNG_immortal<SharedSets>();
    QMutexLocker lock(&shared.mutex);
    shared.give(record, si_number);
}

void TVNC_RecordNumbers::number(TVNC_XMLNode& parent, const QString& name)
{
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(parent);
    bool b_marked = name == attributeName() && !TVNC_NodeAccess::isExposed(parent);
    TVNC_NodeAccess::unmark(parent);
    for (int i = 0; i < children.size() && i < LIMIT; ++i) {
        if (children.at(i)) {
            b_marked = b_marked && !TVNC_NodeAccess::isExposed(*children.at(i));
        } else {
            b_marked = false;
            TVNG_DebugPrint(1, "[TVNC_XMLSetting::setIDforChildren] 0x%X Why Pass??", TVNG_low32(&parent));
        }
    }
    SharedSets* const pc_shared = name == attributeName() ? &TVNG_immortal<SharedSets>() : nullptr;
    QMutexLocker lock(pc_shared ? &pc_shared->mutex : nullptr);
    for (int i = 0; i < children.size() && i < LIMIT; ++i) {
        if (!children.at(i))
            continue;
        if (pc_shared)
            pc_shared->give(*children.at(i), i);
        else
            giveUnder(name, *children.at(i), i);
    }
    if (b_marked)
        TVNC_NodeAccess::setNumbered(parent);
}

TVNC_XMLNode* TVNC_RecordNumbers::find(TVNC_XMLNode& parent, int si_number, const QString& name)
{
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(parent);
    if (si_number >= 0 && si_number < LIMIT && isMarked(parent, name))
        return si_number < children.size() ? children.at(si_number) : nullptr;
    for (int i = 0; i < children.size(); ++i) {
        int si_borne = 0;
        if (read(children.at(i), name, si_borne) && si_borne == si_number)
            return children.at(i);
    }
    return nullptr;
}

QList<TVNC_XMLNode*> TVNC_RecordNumbers::findAll(TVNC_XMLNode& parent, int si_count, const QString& name)
{
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(parent);
    if (isMarked(parent, name) && si_count == children.size() && si_count <= LIMIT)
        return children;
    QList<TVNC_XMLNode*> records;
    records.reserve(si_count);
    for (int i = 0; i < si_count; ++i)
        records.append(nullptr);
    for (int i = 0; i < children.size(); ++i) {
        int si_number = 0;
        if (read(children.at(i), name, si_number) && si_number >= 0 && si_number < si_count &&
            !records.at(si_number))
            records[si_number] = children.at(i);
    }
    return records;
}

// This is an operation of the node's interface. It stands here because only this source knows what a number
// is.
TVNC_XMLNode* TVNC_XMLNode::getXMLNodeChildByID(int si_id, QString& attributeName)
{
    TVNC_XMLNode* pc_child = nullptr;
    TVNG_hasMemoryFor([&] { pc_child = TVNC_RecordNumbers::find(*this, si_id, attributeName); });
    return pc_child;
}
