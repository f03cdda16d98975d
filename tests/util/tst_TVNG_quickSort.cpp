#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include "tlvlib/util/TVNG_quickSort.h"

#include <QtCore/QVector>

/// The sort by itself. That it leaves equal elements as the device's Qt does is a test of the history store.
class tst_TVNG_quickSort : public QObject
{
    Q_OBJECT

private slots:
    void everythingIsSorted_data();
    void everythingIsSorted();
    void effortMaySufficeOrNot();
    void noOrderCostsTheSquareOfTheLength_data();
    void noOrderCostsTheSquareOfTheLength();
};

void tst_TVNG_quickSort::everythingIsSorted_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("different");
    const int si_lengths[] = {0, 1, 2, 3, 4, 5, 10, 100, 999, 1000, 1001, 20000};
    for (size_t i = 0; i < sizeof si_lengths / sizeof si_lengths[0]; ++i) {
        QTest::newRow(qPrintable(QString::fromLatin1("%1 numbers").arg(si_lengths[i])))
            << si_lengths[i] << 1000000;
        QTest::newRow(qPrintable(QString::fromLatin1("%1 of three").arg(si_lengths[i])))
            << si_lengths[i] << 3;
        QTest::newRow(qPrintable(QString::fromLatin1("%1 equal").arg(si_lengths[i]))) << si_lengths[i] << 1;
    }
}

void tst_TVNG_quickSort::everythingIsSorted()
{
    QFETCH(int, length);
    QFETCH(int, different);
    Random random(static_cast<quint32>(length));
    QVector<quint32> numbers;
    for (int i = 0; i < length; ++i)
        numbers.append(random.next(static_cast<quint32>(different)));
    QVector<quint32> expected = numbers;
    std::sort(expected.begin(), expected.end());
    QVector<quint32> ascending = expected;
    QVector<quint32> descending = expected;
    std::reverse(descending.begin(), descending.end());
    TVNG_quickSort(numbers.begin(), numbers.end(), std::less<quint32>());
    QVERIFY(numbers == expected);
    TVNG_quickSort(ascending.begin(), ascending.end(), std::less<quint32>());
    QVERIFY(ascending == expected);
    TVNG_quickSort(descending.begin(), descending.end(), std::less<quint32>());
    QVERIFY(descending == expected);
}

void tst_TVNG_quickSort::effortMaySufficeOrNot()
{
    QVector<quint32> expected;
    for (quint32 i = 0; i < 100; ++i)
        expected.append(i);
    int si_sufficed = 0;
    for (int si_effort = 0; si_effort < 2000; ++si_effort) {
        Random random(4);
        QVector<quint32> numbers = expected;
        for (int i = 99; i > 0; --i)
            qSwap(numbers[i], numbers[static_cast<int>(random.next(static_cast<quint32>(i) + 1))]);
        qint64 effort = si_effort;
        const bool b_sorted =
            TVNG_quickSortWithin(effort, numbers.begin(), numbers.end(), std::less<quint32>());
        QCOMPARE(b_sorted, effort >= 0);
        QCOMPARE(numbers == expected, b_sorted);
        // What sufficed once suffices from then on; nothing is sorted with less than a look at every element.
        QVERIFY(b_sorted ? si_effort >= 100 : si_sufficed == 0);
        si_sufficed += b_sorted ? 1 : 0;
        std::sort(numbers.begin(), numbers.end());
        QVERIFY(numbers == expected); // none got lost
    }
    QVERIFY(si_sufficed > 0);
}

/**
 * Finds the worst order of a quicksort while it runs: elements have no value until two of them are compared,
 * and whatever is likely to be the pivot then gets the smallest value that is left.
 */
struct Adversary
{
    explicit Adversary(int si_length) : values(si_length, UNKNOWN), si_known(0), si_pivot(0), comparisons(0)
    {
    }

    bool isLess(int si_one, int si_other)
    {
        ++comparisons;
        if (values.at(si_one) == UNKNOWN && values.at(si_other) == UNKNOWN)
            values[si_one == si_pivot ? si_one : si_other] = si_known++;
        if (values.at(si_one) == UNKNOWN)
            si_pivot = si_one;
        else if (values.at(si_other) == UNKNOWN)
            si_pivot = si_other;
        return values.at(si_one) < values.at(si_other);
    }

    enum { UNKNOWN = 0x7FFFFFFF };
    QVector<int> values;
    int si_known;
    int si_pivot;
    qint64 comparisons;
};

struct ByAdversary
{
    Adversary* pc_adversary;
    bool operator()(int si_one, int si_other) const { return pc_adversary->isLess(si_one, si_other); }
};

void tst_TVNG_quickSort::noOrderCostsTheSquareOfTheLength_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("1000") << 1000;
    QTest::newRow("10000") << 10000;
    QTest::newRow("40000") << 40000;
}

void tst_TVNG_quickSort::noOrderCostsTheSquareOfTheLength()
{
    QFETCH(int, length);
    Adversary adversary(length);
    const ByAdversary lessThan = {&adversary};
    QVector<int> numbers;
    for (int i = 0; i < length; ++i)
        numbers.append(i);
    TVNG_quickSort(numbers.begin(), numbers.end(), lessThan);
    QVERIFY2(adversary.comparisons < 600LL * length,
             qPrintable(QString::number(adversary.comparisons / length)));
    // It does find orders that are bad.
    QVERIFY2(adversary.comparisons > 100LL * length,
             qPrintable(QString::number(adversary.comparisons / length)));
    for (int i = 1; i < length; ++i)
        QVERIFY(adversary.values.at(numbers.at(i - 1)) <= adversary.values.at(numbers.at(i)));
}

TLVLIB_TEST_MAIN(tst_TVNG_quickSort)
#include "tst_TVNG_quickSort.moc"
