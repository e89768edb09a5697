#pragma once
// The colour of BGRA32 voxels, the display order of Windows bitmaps: blue, green, red, alpha
// in memory. Every operation is that of XColour32T; it converts to and from XARGB32Colour
// channel by channel, alpha carried along.

#include <type_traits>

#include "XARGB32Colour.h"
#include "XColour32T.h"

class XBGRA32Colour : public XColour32T<XBGRA32Colour, 3, 2, 1, 0>
{
public:
    using XColour32T::XColour32T;
    constexpr XBGRA32Colour() = default;
    constexpr explicit XBGRA32Colour(const XARGB32Colour & aColour)
        : XColour32T(aColour.GetAlpha(), aColour.GetRed(), aColour.GetGreen(), aColour.GetBlue())
    {
    }
    constexpr explicit operator XARGB32Colour() const
    {
        return XARGB32Colour(GetAlpha(), GetRed(), GetGreen(), GetBlue());
    }
};

static_assert(sizeof(XBGRA32Colour) == 4 && std::is_trivially_copyable_v<XBGRA32Colour>,
              "a BGRA32 colour is four plain bytes");
