#ifndef TLVLIB_UTIL_TVNG_QUICKSORT_H
#define TLVLIB_UTIL_TVNG_QUICKSORT_H

#include <QtCore/QtGlobal>

#include <algorithm>

/**
 * The steps of TVNG_quickSort().
 *
 * @param si_effort how many elements may still be partitioned, each as often as it is
 * @return false, with the elements in any order, when that was not enough
 */
template <typename Iterator, typename LessThan>
bool TVNG_quickSortWithin(qint64& si_effort, Iterator first, Iterator end, LessThan lessThan)
{
    for (;;) {
        const auto si_length = end - first;
        if (si_length < 2)
            return true;
        si_effort -= si_length;
        if (si_effort < 0)
            return false;
        const Iterator last = end - 1;
        if (lessThan(*last, *first))
            std::iter_swap(last, first);
        if (si_length == 2)
            return true;
        const Iterator middle = first + si_length / 2;
        if (lessThan(*middle, *first))
            std::iter_swap(middle, first);
        if (lessThan(*last, *middle))
            std::iter_swap(last, middle);
        if (si_length == 3)
            return true;

        const Iterator pivot = last;
        std::iter_swap(middle, pivot);
        Iterator low = first;
        Iterator high = last - 1;
        while (low < high) {
            while (low < high && lessThan(*low, *pivot))
                ++low;
            while (low < high && lessThan(*pivot, *high))
                --high;
            if (low < high) {
                std::iter_swap(low, high);
                ++low;
                --high;
            }
        }
        if (lessThan(*low, *pivot))
            ++low;
        std::iter_swap(low, pivot);

        if (low - first < end - low) {
            if (!TVNG_quickSortWithin(si_effort, first, low, lessThan))
                return false;
            first = low + 1;
        } else {
            if (!TVNG_quickSortWithin(si_effort, low + 1, end, lessThan))
                return false;
            end = low;
        }
    }
}

/**
 * Sorts as the device's Qt does, to the order of equal elements, which files on devices show. (That Qt's own
 * function is gone from later versions, and no standard algorithm leaves equal elements in the same order.)
 * Internal to the library; not installed.
 *
 * The pivot is the median of the first, the middle and the last element, and stands at the end while the
 * others are partitioned from both ends. The two parts are then sorted by themselves; the shorter one first,
 * which has no influence on the result and bounds the depth by the logarithm of the length.
 *
 * Orders that are made for the purpose cost the square of the length. Up to 1,000 elements that is what they
 * get. A longer list that takes more than the worst 1,000 do, an element, is sorted by the standard library
 * instead, and equal elements may then stand in another order than on the device: a file must not be able to
 * stop the browser.
 */
template <typename Iterator, typename LessThan>
void TVNG_quickSort(Iterator first, Iterator end, LessThan lessThan)
{
    qint64 si_effort = static_cast<qint64>(end - first) * 500;
    if (!TVNG_quickSortWithin(si_effort, first, end, lessThan))
        std::stable_sort(first, end, lessThan);
}

#endif
