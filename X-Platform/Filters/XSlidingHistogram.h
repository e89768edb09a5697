#pragma once
// The histogram of the values of a window that slides along a row, for 8 and 16-bit channels:
// values come in and go out one at a time, and Select finds the value at a given index in
// ascending order. It keeps a position and the count of the values below it, and moves the
// position from where the last answer was, so that neighbouring windows cost little. For 16 bits
// a coarse histogram of the high bytes lets the position skip 256 values at a time.
//
// Its tables (1 KiB for 8 bits, 257 KiB for 16) are made once; a window that empties again
// leaves them clean for the next.

#include <type_traits>
#include <vector>

#include "XTypes.h"

template <typename C>
class XSlidingHistogram
{
    static_assert(std::is_same_v<C, UInt8> || std::is_same_v<C, UInt16>, "8 or 16-bit values");
    static constexpr bool kCoarse = sizeof(C) == 2;

public:
    XSlidingHistogram() : itsCounts(UInt32(1) << (8 * sizeof(C))), itsCoarse(kCoarse ? 256 : 0) {}

    void Add(C aValue)
    {
        ++itsCounts[aValue];
        if constexpr (kCoarse)
            ++itsCoarse[aValue >> 8];
        itsBelow += aValue < itsPosition ? 1 : 0;
    }

    void Remove(C aValue)
    {
        --itsCounts[aValue];
        if constexpr (kCoarse)
            --itsCoarse[aValue >> 8];
        itsBelow -= aValue < itsPosition ? 1 : 0;
    }

    // The value at index anIndex in ascending order; anIndex is below the count of values held.
    C Select(UInt32 anIndex)
    {
        while (itsBelow > anIndex)
        {
            if constexpr (kCoarse)
                if ((itsPosition & 255) == 0 && itsBelow - itsCoarse[(itsPosition >> 8) - 1] > anIndex)
                {
                    itsPosition -= 256;
                    itsBelow -= itsCoarse[itsPosition >> 8];
                    continue;
                }
            --itsPosition;
            itsBelow -= itsCounts[itsPosition];
        }
        while (itsBelow + itsCounts[itsPosition] <= anIndex)
        {
            if constexpr (kCoarse)
                if ((itsPosition & 255) == 0 && itsBelow + itsCoarse[itsPosition >> 8] <= anIndex)
                {
                    itsBelow += itsCoarse[itsPosition >> 8];
                    itsPosition += 256;
                    continue;
                }
            itsBelow += itsCounts[itsPosition];
            ++itsPosition;
        }
        return C(itsPosition);
    }

private:
    std::vector<UInt32> itsCounts;
    std::vector<UInt32> itsCoarse;
    UInt32 itsPosition = 0; // Select's last answer
    UInt32 itsBelow = 0;    // the count of values below itsPosition
};
