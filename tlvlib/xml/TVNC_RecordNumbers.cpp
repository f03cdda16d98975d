#include "tlvlib/xml/TVNC_RecordNumbers.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_digits.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <QtCore/QMutex>

namespace {

struct IdName
{
    QString text = QEXC_TextCodec::fromSJIS("id");
};

/// The 999 sets that consist of a number under the usual name, each made when it is first needed.
struct SharedSets
{
    QMutex mutex;
    QXmlStreamAttributes sets[TVNC_RecordNumbers::LIMIT];
};

const int DIGITS = 3;

/// "%03d" of a number.
QString digitsOf(int si_number)
{
    QChar digits[DIGITS];
    for (int i = DIGITS - 1; i >= 0; --i) {
        digits[i] = QLatin1Char(static_cast<char>('0' + si_number % 10));
        si_number /= 10;
    }
    return QString(digits, DIGITS);
}

/// Whether a set consists of a number in three digits, without a prefix.
bool consistsOf(const QXmlStreamAttributes& attributes, int si_number, const QString& attributeName)
{
    if (attributes.size() != 1)
        return false;
    const QXmlStreamAttribute& attribute = attributes.at(0);
    const auto value = attribute.value();
    return value.size() == DIGITS && TVNG_digits(value.data(), DIGITS) == si_number &&
           attribute.namespaceUri().isEmpty() && attribute.qualifiedName() == attributeName;
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
    return (TVNC_NodeAccess::state(parent) & TVNC_NodeAccess::NUMBERED) &&
           attributeName == TVNC_RecordNumbers::attributeName();
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
    QXmlStreamAttributes& set = shared.sets[si_number];
    if (set.isEmpty())
        set.append(attributeName(), digitsOf(si_number));
    return set;
}

void TVNC_RecordNumbers::give(TVNC_XMLNode& record, int si_number)
{
    if (!consistsOf(TVNC_NodeAccess::attributes(record), si_number, attributeName()))
        TVNC_NodeAccess::attributes(record) = attributes(si_number);
}

void TVNC_RecordNumbers::number(TVNC_XMLNode& parent, const QString& name)
{
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(parent);
    const int si_size = qMin(static_cast<int>(children.size()), LIMIT);
    const bool b_usual = name == attributeName();
    bool b_marked = b_usual && !(TVNC_NodeAccess::state(parent) & TVNC_NodeAccess::EXPOSED);
    unmark(&parent);
    for (int i = 0; i < si_size; ++i) {
        TVNC_XMLNode* const pc_child = children.at(i);
        if (!pc_child) {
            TVNG_DebugPrint(1, "[TVNC_XMLSetting::setIDforChildren] 0x%X Why Pass??", TVNG_low32(&parent));
            b_marked = false;
            continue;
        }
        b_marked = b_marked && !(TVNC_NodeAccess::state(*pc_child) & TVNC_NodeAccess::EXPOSED);
        if (b_usual) {
            give(*pc_child, i);
        } else if (!consistsOf(TVNC_NodeAccess::attributes(*pc_child), i, name)) {
            QXmlStreamAttributes set;
            set.append(name, digitsOf(i));
            TVNC_NodeAccess::attributes(*pc_child) = set;
        }
    }
    if (b_marked)
        TVNC_NodeAccess::state(parent) |= TVNC_NodeAccess::NUMBERED;
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

QVector<TVNC_XMLNode*> TVNC_RecordNumbers::findAll(TVNC_XMLNode& parent, int si_count, const QString& name)
{
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(parent);
    QVector<TVNC_XMLNode*> records(qMax(si_count, 0), nullptr);
    int si_first = 0; // the children in front of it are done
    if (isMarked(parent, name)) {
        const int si_numbered = qMin(static_cast<int>(children.size()), LIMIT);
        for (; si_first < si_numbered && si_first < si_count; ++si_first)
            records[si_first] = children.at(si_first);
        if (si_first == si_count)
            return records;
    }
    for (int i = si_first; i < children.size(); ++i) {
        int si_number = 0;
        if (read(children.at(i), name, si_number) && si_number >= 0 && si_number < si_count &&
            !records.at(si_number))
            records[si_number] = children.at(i);
    }
    return records;
}

void TVNC_RecordNumbers::unmark(TVNC_XMLNode* pc_parent)
{
    if (pc_parent)
        TVNC_NodeAccess::state(*pc_parent) &= static_cast<unsigned char>(~TVNC_NodeAccess::NUMBERED);
}

void TVNC_RecordNumbers::expose(TVNC_XMLNode& node)
{
    unmark(&node);
    unmark(node.getXMLNodeParent());
    TVNC_NodeAccess::state(node) |= TVNC_NodeAccess::EXPOSED;
}
