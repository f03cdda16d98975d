#ifndef TLVLIB_UTIL_TVNG_QUICKSORT_H
#define TLVLIB_UTIL_TVNG_QUICKSORT_H

#include <algorithm>

/**
 * Sorts as the device's Qt does, to the order of equal elements, which files on devices show. (That Qt's own
 * function is gone from later versions, and no standard algorithm leaves equal elements in the same order.)
 * Internal to the library; not installed.
 *
 * The pivot is the median of the first, the middle and the last element, and stands at the end while the
 * others are partitioned from both ends. The two parts are then sorted by themselves; the shorter one first,
 * which has no influence on the result and bounds the depth by the logarithm of the length. Orders that are
 * made for the purpose cost the square of the length, as they do on the device: any way around that would
 * leave equal elements in another order.
 */
template <typename Iterator, typename LessThan>
void TVNG_quickSort(Iterator first, Iterator end, LessThan lessThan)
{
    for (;;) {
        const auto length = end - first;
        if (length < 2)
            return;
        const Iterator last = end - 1;
        if (lessThan(*last, *first))
            std::iter_swap(last, first);
        if (length == 2)
            return;
        const Iterator middle = first + length / 2;
        if (lessThan(*middle, *first))
            std::iter_swap(middle, first);
        if (lessThan(*last, *middle))
            std::iter_swap(last, middle);
        if (length == 3)
            return;

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
            TVNG_quickSort(first, low, lessThan);
            first = low + 1;
        } else {
            TVNG_quickSort(low + 1, end, lessThan);
            end = low;
        }
    }
}

#endif
