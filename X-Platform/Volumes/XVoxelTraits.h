#pragma once
// What the volume code needs to know of each voxel type: how its bytes turn over between byte
// orders, how brightness is compared, and whether equal voxels are equal bytes.

#include <limits>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XByteSwap.h"
#include "XRGB48Colour.h"
#include "XTypes.h"

template <typename T>
struct XVoxelTraits;

// Integer voxels: brighter is larger, starting from 0.
template <typename T>
struct XIntegerVoxelTraits
{
    static constexpr XByteSwapMode kSwapMode = sizeof(T) == 1 ? kSwapNone : (sizeof(T) == 2 ? kSwap16 : kSwap32);
    static constexpr bool kBytewiseEqual = true;
    static constexpr T Darkest() { return T(0); }
    static constexpr bool IsBrighter(T aValue, T aBest) { return aValue > aBest; }
};

template <>
struct XVoxelTraits<UInt8> : XIntegerVoxelTraits<UInt8>
{
};
template <>
struct XVoxelTraits<UInt16> : XIntegerVoxelTraits<UInt16>
{
};
template <>
struct XVoxelTraits<UInt32> : XIntegerVoxelTraits<UInt32>
{
};

// Float voxels: brighter is larger, starting from minus infinity; equality is that of floats.
template <>
struct XVoxelTraits<float>
{
    static constexpr XByteSwapMode kSwapMode = kSwap32;
    static constexpr bool kBytewiseEqual = false;
    static constexpr float Darkest() { return -std::numeric_limits<float>::infinity(); }
    static constexpr bool IsBrighter(float aValue, float aBest) { return aValue > aBest; }
};

// ARGB32 and RGB48: brighter has the larger largest channel.
template <>
struct XVoxelTraits<XARGB32Colour>
{
    static constexpr XByteSwapMode kSwapMode = kSwapNone;
    static constexpr bool kBytewiseEqual = true;
    static constexpr XARGB32Colour Darkest() { return XARGB32Colour(); }
    static constexpr bool IsBrighter(const XARGB32Colour & aValue, const XARGB32Colour & aBest)
    {
        return aValue.GetIntensity() > aBest.GetIntensity();
    }
};

template <>
struct XVoxelTraits<XRGB48Colour>
{
    static constexpr XByteSwapMode kSwapMode = kSwap16;
    static constexpr bool kBytewiseEqual = true;
    static constexpr XRGB48Colour Darkest() { return XRGB48Colour(); }
    static constexpr bool IsBrighter(const XRGB48Colour & aValue, const XRGB48Colour & aBest)
    {
        return aValue.GetIntensity() > aBest.GetIntensity();
    }
};

// BGRA32: brighter when any of blue, green and red is above that byte of the best.
template <>
struct XVoxelTraits<XBGRA32Colour>
{
    static constexpr XByteSwapMode kSwapMode = kSwapNone;
    static constexpr bool kBytewiseEqual = true;
    static constexpr XBGRA32Colour Darkest() { return XBGRA32Colour(); }
    static constexpr bool IsBrighter(const XBGRA32Colour & aValue, const XBGRA32Colour & aBest)
    {
        return aValue.GetBlue() > aBest.GetBlue() || aValue.GetGreen() > aBest.GetGreen() ||
               aValue.GetRed() > aBest.GetRed();
    }
};
