#pragma once
// The rules of one axis of a rectangle or box, on its low and high edge: every 2-D rectangle and
// 3-D box operation that treats its axes alike is written once here and applied per axis.
//
// C is the coordinate type and L the length type. In the integer form (SInt32 coordinates,
// UInt32 lengths) an extent is the unsigned difference of the edges and an edge plus a length
// wraps as unsigned 32-bit arithmetic does; halving a difference of extents is signed division
// truncating toward zero. In the float form all of it is plain float arithmetic.

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "XCheckedArithmetic.h"
#include "XTypes.h"

template <typename C, typename L>
struct XRectAxis
{
    static constexpr bool kInteger = std::is_integral_v<C>;

    static constexpr L Extent(C aLow, C aHigh)
    {
        if constexpr (kInteger)
            return L(aHigh) - L(aLow);
        else
            return aHigh - aLow;
    }

    static constexpr C AddLength(C aCoord, L aLength)
    {
        if constexpr (kInteger)
            return C(L(aCoord) + aLength);
        else
            return aCoord + aLength;
    }

    // Half of an extent: a shift in the integer form.
    static constexpr L Half(L aLength)
    {
        if constexpr (kInteger)
            return aLength >> 1;
        else
            return aLength * 0.5f;
    }

    // (aFirst - aSecond) / 2, signed and truncating toward zero in the integer form.
    static constexpr C HalfDifference(L aFirst, L aSecond)
    {
        if constexpr (kInteger)
            return C((SInt64(aFirst) - SInt64(aSecond)) / 2);
        else
            return (aFirst - aSecond) / 2;
    }

    // The signed mean of two edges, truncating toward zero in the integer form.
    static constexpr C Mean(C aLow, C aHigh)
    {
        if constexpr (kInteger)
            return C((SInt64(aLow) + SInt64(aHigh)) / 2);
        else
            return (aLow + aHigh) / 2;
    }

    static constexpr C Negate(C aValue)
    {
        if constexpr (kInteger)
            return C(-SInt64(aValue));
        else
            return -aValue;
    }

    static constexpr void Normalise(C & ioLow, C & ioHigh)
    {
        if (ioLow > ioHigh)
            std::swap(ioLow, ioHigh);
    }

    // An inside-out axis collapses to zero extent at the mean of its edges.
    static constexpr void Collapse(C & ioLow, C & ioHigh)
    {
        if (ioLow > ioHigh)
            ioLow = ioHigh = Mean(ioLow, ioHigh);
    }

    // Setting one edge drags the other along, so the axis never turns inside out.
    static constexpr void SetLow(C & ioLow, C & ioHigh, C aValue)
    {
        ioLow = aValue;
        ioHigh = std::max(ioHigh, aValue);
    }
    static constexpr void SetHigh(C & ioLow, C & ioHigh, C aValue)
    {
        ioHigh = aValue;
        ioLow = std::min(ioLow, aValue);
    }

    // high = low + extent, then low = min(low, high).
    static constexpr void SetExtent(C & ioLow, C & ioHigh, L anExtent)
    {
        ioHigh = AddLength(ioLow, anExtent);
        ioLow = std::min(ioLow, ioHigh);
    }

    // Moves the low edge to aValue keeping the extent.
    static constexpr void MoveTo(C & ioLow, C & ioHigh, C aValue)
    {
        L extent = Extent(ioLow, ioHigh);
        ioLow = aValue;
        ioHigh = AddLength(aValue, extent);
    }

    static constexpr void Offset(C & ioLow, C & ioHigh, C aDelta)
    {
        ioLow += aDelta;
        ioHigh += aDelta;
    }

    static constexpr void Grow(C & ioLow, C & ioHigh, C aDelta, bool aFix)
    {
        ioLow -= aDelta;
        ioHigh += aDelta;
        if (aFix)
            Collapse(ioLow, ioHigh);
    }

    // Clamps both edges into the other interval; two disjoint intervals leave an empty one on
    // the near edge of the other.
    static constexpr void Sect(C & ioLow, C & ioHigh, C anOtherLow, C anOtherHigh, bool aFix)
    {
        ioLow = std::clamp(ioLow, std::min(anOtherLow, anOtherHigh), anOtherHigh);
        ioHigh = std::clamp(ioHigh, std::min(anOtherLow, anOtherHigh), anOtherHigh);
        if (aFix)
            Collapse(ioLow, ioHigh);
    }

    // The smallest low and the largest high, with no special case for an empty operand.
    static constexpr void Union(C & ioLow, C & ioHigh, C anOtherLow, C anOtherHigh)
    {
        ioLow = std::min(ioLow, anOtherLow);
        ioHigh = std::max(ioHigh, anOtherHigh);
    }

    // Moves onto the other's low edge, then by half the difference of the extents.
    static constexpr void Centre(C & ioLow, C & ioHigh, C anOtherLow, C anOtherHigh)
    {
        C shift = HalfDifference(Extent(anOtherLow, anOtherHigh), Extent(ioLow, ioHigh));
        MoveTo(ioLow, ioHigh, anOtherLow);
        Offset(ioLow, ioHigh, shift);
    }

    // Slides a smaller axis into the other without resizing it; a larger or equal one is
    // centred on the other.
    static constexpr void ConstrainWithin(C & ioLow, C & ioHigh, C anOtherLow, C anOtherHigh)
    {
        if (Extent(ioLow, ioHigh) < Extent(anOtherLow, anOtherHigh))
        {
            if (ioLow < anOtherLow)
                Offset(ioLow, ioHigh, anOtherLow - ioLow);
            if (ioHigh > anOtherHigh)
                Offset(ioLow, ioHigh, anOtherHigh - ioHigh);
        }
        else
        {
            Centre(ioLow, ioHigh, anOtherLow, anOtherHigh);
        }
    }

    // A value below the low edge goes to the low edge, otherwise to at most high - 1 (also in
    // the float form), so on an empty axis it ends at low - 1.
    static constexpr C Constrain(C aValue, C aLow, C aHigh)
    {
        if (aValue < aLow)
            return aLow;
        if constexpr (kInteger)
            return std::min(C(SInt64(aHigh) - 1), aValue);
        else
            return std::min(aHigh - C(1), aValue);
    }

    static constexpr bool Contains(C aValue, C aLow, C aHigh) { return aLow <= aValue && aValue < aHigh; }

    // The edges become the smaller and the larger of their negations.
    static constexpr void Invert(C & ioLow, C & ioHigh)
    {
        C low = Negate(ioLow);
        C high = Negate(ioHigh);
        ioLow = std::min(low, high);
        ioHigh = std::max(low, high);
    }

    // The remainder of truncating division (fmod in the float form): a negative edge moves
    // toward zero, not outward.
    static C Remainder(C aValue, C aStep)
    {
        if constexpr (kInteger)
            return XCheckedRemainder(aValue, aStep);
        else
            return std::fmod(aValue, aStep);
    }

    static void AlignByValue(C & ioLow, C & ioHigh, C aStep)
    {
        ioLow -= Remainder(ioLow, aStep);
        C rest = Remainder(ioHigh, aStep);
        if (rest != 0)
            ioHigh += aStep - rest;
        Normalise(ioLow, ioHigh);
    }

    // A new extent about the centre: the low edge moves by half the change of the extent.
    static constexpr void Resize(C & ioLow, C & ioHigh, L aNewExtent)
    {
        ioLow += HalfDifference(Extent(ioLow, ioHigh), aNewExtent);
        SetExtent(ioLow, ioHigh, aNewExtent);
    }
};
