#pragma once
// The selection step of the median filters: the value that would stand at index
// (aCount - 1) >> 1 in ascending order (for an even count the lower of the two middle values),
// by quickselect with a median-of-three pivot from the first, middle and last entries of the
// range still open. The values are reordered. Floats compare as floats; a NaN has no defined
// place, but the search stays inside the array.

#include <utility>

#include "XAssert.h"
#include "XTypes.h"

template <typename C>
C XSelectLowerMedian(C * aValues, UInt32 aCount)
{
    XAssertText(aCount != 0, "count > 0");
    const UInt32 k = (aCount - 1) >> 1;
    UInt32 low = 0;
    UInt32 high = aCount - 1;
    for (;;)
    {
        if (high <= low + 1)
        {
            if (high == low + 1 && aValues[high] < aValues[low])
                std::swap(aValues[low], aValues[high]);
            return aValues[k];
        }
        // The pivot, the median of first, middle and last, goes to low + 1; the smaller of the
        // others to low and the larger to high, where they stop the scans.
        std::swap(aValues[low + ((high - low) >> 1)], aValues[low + 1]);
        if (aValues[high] < aValues[low])
            std::swap(aValues[low], aValues[high]);
        if (aValues[high] < aValues[low + 1])
            std::swap(aValues[low + 1], aValues[high]);
        if (aValues[low + 1] < aValues[low])
            std::swap(aValues[low], aValues[low + 1]);
        const C pivot = aValues[low + 1];
        UInt32 i = low + 1;
        UInt32 j = high;
        for (;;)
        {
            do
                ++i;
            while (aValues[i] < pivot);
            do
                --j;
            while (pivot < aValues[j]);
            if (j < i)
                break;
            std::swap(aValues[i], aValues[j]);
        }
        aValues[low + 1] = aValues[j];
        aValues[j] = pivot;
        if (j >= k)
            high = j - 1;
        if (j <= k)
            low = i;
    }
}
