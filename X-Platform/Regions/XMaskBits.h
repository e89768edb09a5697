#pragma once
// Mask bytes eight at a time: a byte is set when it is above 127, that is when its top bit is
// on, so the top bits of a 64-bit word tell which of eight bytes are set. Counting and finding
// the first and last set byte of a row then cost a few instructions per eight voxels.

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
};
