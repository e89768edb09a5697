#pragma once
// Mask bytes eight at a time: a byte is set when it is above 127, that is when its top bit is
// on, so the top bits of a 64-bit word tell which of eight bytes are set. Counting and finding
// the first and last set byte of a row then cost a few instructions per eight voxels. Whether
// any or every byte of a run is set gathers the top bits in one byte, a loop that the compiler
// widens to the vector unit (run it under XRunWidestKernel for the widest one).

#include <bit>
#include <cstring>

#include "XTypes.h"

struct XMaskBits
{
    static constexpr UInt64 kTopBits = 0x8080808080808080ull;
    static constexpr bool kUsable = std::endian::native == std::endian::little;

    // The top bits of eight bytes; byte i of the run is bit 8i + 7.
    static UInt64 Of(const UInt8 * aBytes)
    {
        UInt64 word;
        std::memcpy(&word, aBytes, 8);
        return word & kTopBits;
    }
    static UInt32 Count(UInt64 aBits) { return UInt32(std::popcount(aBits)); }
    static UInt32 First(UInt64 aBits) { return UInt32(std::countr_zero(aBits)) / 8; }
    static UInt32 Last(UInt64 aBits) { return UInt32(63 - std::countl_zero(aBits)) / 8; }

    static bool AnySet(const UInt8 * aBytes, UInt64 aCount)
    {
        UInt8 bits = 0;
        for (UInt64 i = 0; i < aCount; ++i)
            bits |= aBytes[i];
        return bits > 127;
    }
    // True for an empty run.
    static bool AllSet(const UInt8 * aBytes, UInt64 aCount)
    {
        UInt8 bits = 0xFF;
        for (UInt64 i = 0; i < aCount; ++i)
            bits &= aBytes[i];
        return bits > 127;
    }
    // The index of the first and of the last set byte of a run that holds one.
    static UInt64 FirstSet(const UInt8 * aBytes, UInt64 aCount)
    {
        UInt64 i = 0;
        if constexpr (kUsable)
            for (; i + 8 <= aCount; i += 8)
                if (const UInt64 bits = Of(aBytes + i); bits != 0)
                    return i + First(bits);
        while (aBytes[i] <= 127)
            ++i;
        return i;
    }
    static UInt64 LastSet(const UInt8 * aBytes, UInt64 aCount)
    {
        UInt64 end = aCount;
        if constexpr (kUsable)
            for (; end >= 8; end -= 8)
                if (const UInt64 bits = Of(aBytes + end - 8); bits != 0)
                    return end - 8 + Last(bits);
        while (aBytes[end - 1] <= 127)
            --end;
        return end - 1;
    }
};
