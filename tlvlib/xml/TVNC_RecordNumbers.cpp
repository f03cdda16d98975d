#include "tlvlib/xml/TVNC_RecordNumbers.h"

#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <QtCore/QMutex>

namespace {

/// "%03d" of a position.
struct Digits
{
    explicit Digits(int si_position)
    {
        for (int i = 2; i >= 0; --i) {
            digits[i] = QLatin1Char(static_cast<char>('0' + si_position % 10));
            si_position /= 10;
        }
    }
    QString toString() const { return QString(digits, 3); }
    QChar digits[3];
};

/// Whether a set consists of the one attribute @a name with these digits as its value.
bool isNumbered(const QXmlStreamAttributes& attributes, const QString& name, const Digits& number)
{
    if (attributes.size() != 1)
        return false;
    const QXmlStreamAttribute& attribute = attributes.at(0);
    if (!attribute.namespaceUri().isEmpty() || !(attribute.qualifiedName() == name))
        return false;
    const auto value = attribute.value();
    return value.size() == 3 && value.at(0) == number.digits[0] && value.at(1) == number.digits[1] &&
           value.at(2) == number.digits[2];
}

} // namespace

const int TVNC_RecordNumbers::LIMIT; // for those that take a reference to it

struct TVNC_RecordNumbers::SharedSets
{
    QMutex mutex;
    /// The attribute name that the sets below were made with. Documents use one name, so one set each is
    /// kept.
    QString attributeName;
    /// Empty until first needed.
    QXmlStreamAttributes sets[LIMIT];
};

TVNC_RecordNumbers::SharedSets& TVNC_RecordNumbers::sharedSets()
{
    // Never destroyed: a store may still be numbered by another static object's destructor.
    static SharedSets* const pc_sets = new SharedSets;
    return *pc_sets;
}

TVNC_RecordNumbers::TVNC_RecordNumbers(const QString& attributeName) : sets(sharedSets())
{
    sets.mutex.lock();
    if (sets.attributeName != attributeName) {
        sets.attributeName = attributeName;
        for (int i = 0; i < LIMIT; ++i)
            sets.sets[i] = QXmlStreamAttributes();
    }
}

TVNC_RecordNumbers::~TVNC_RecordNumbers()
{
    sets.mutex.unlock();
}

QString& TVNC_RecordNumbers::usualName()
{
    // Never destroyed, so that it outlives the stores.
    static QString* const pc_name = new QString(QEXC_TextCodec::fromSJIS("id"));
    return *pc_name;
}

void TVNC_RecordNumbers::give(TVNC_XMLNode& record, int si_position)
{
    QXmlStreamAttributes& set = sets.sets[si_position];
    QXmlStreamAttributes& own = TVNC_NodeAccess::attributes(record);
    if (!set.isEmpty() && own.constData() == set.constData())
        return;
    if (set.isEmpty() && isNumbered(own, sets.attributeName, Digits(si_position)))
        set = own;
    else
        own = shared(si_position);
}

const QXmlStreamAttributes& TVNC_RecordNumbers::shared(int si_position)
{
    QXmlStreamAttributes& set = sets.sets[si_position];
    if (set.isEmpty())
        set.append(sets.attributeName, Digits(si_position).toString());
    return set;
}

bool TVNC_RecordNumbers::read(const QXmlStreamAttributes& attributes, const QString& attributeName,
                              int& si_number)
{
    const auto value = attributes.value(attributeName);
    const int si_size = static_cast<int>(value.size());
    if (si_size == 0)
        return false;
    if (si_size <= 9) { // no overflow
        int si_result = 0;
        int i = 0;
        for (; i < si_size; ++i) {
            const int si_digit = value.at(i).unicode() - '0';
            if (si_digit < 0 || si_digit > 9)
                break;
            si_result = si_result * 10 + si_digit;
        }
        if (i == si_size) {
            si_number = si_result;
            return true;
        }
    }
    bool b_ok = false;
    si_number = TVNG_copyOf(value).toInt(&b_ok, 10);
    return b_ok;
}
