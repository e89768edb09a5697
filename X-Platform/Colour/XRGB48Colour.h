#pragma once
// The colour of RGB48 voxels: red, green and blue of 16 bits each, no alpha, six bytes.
// Its measures and arithmetic are those of XColourArithmeticT with 65535 as the channel
// maximum; hue and saturation run over 0..65535 too.

#include <type_traits>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XColourArithmeticT.h"
#include "XTypes.h"

class XRGB48Colour : public XColourArithmeticT<XRGB48Colour, UInt16>
{
public:
    // Black.
    constexpr XRGB48Colour() = default;
    // The grey of that level.
    constexpr explicit XRGB48Colour(UInt16 aGrey) : itsRed(aGrey), itsGreen(aGrey), itsBlue(aGrey) {}
    constexpr XRGB48Colour(UInt16 aRed, UInt16 aGreen, UInt16 aBlue)
        : itsRed(aRed), itsGreen(aGreen), itsBlue(aBlue)
    {
    }

    constexpr UInt16 GetRed() const { return itsRed; }
    constexpr UInt16 GetGreen() const { return itsGreen; }
    constexpr UInt16 GetBlue() const { return itsBlue; }
    constexpr void SetRed(UInt16 aValue) { itsRed = aValue; }
    constexpr void SetGreen(UInt16 aValue) { itsGreen = aValue; }
    constexpr void SetBlue(UInt16 aValue) { itsBlue = aValue; }
    constexpr void SetRGB(UInt16 aRed, UInt16 aGreen, UInt16 aBlue)
    {
        itsRed = aRed;
        itsGreen = aGreen;
        itsBlue = aBlue;
    }
    constexpr void SetAll(UInt16 aValue) { SetRGB(aValue, aValue, aValue); }

    // The high byte of each channel, alpha 255.
    constexpr XARGB32Colour GetARGB32() const
    {
        return XARGB32Colour(UInt8(itsRed >> 8), UInt8(itsGreen >> 8), UInt8(itsBlue >> 8));
    }
    constexpr XBGRA32Colour GetBGRA32() const
    {
        return XBGRA32Colour(UInt8(itsRed >> 8), UInt8(itsGreen >> 8), UInt8(itsBlue >> 8));
    }
    // The words of those colours: 0xFFRRGGBB and 0xBBGGRRFF of the high bytes.
    constexpr UInt32 GetARGB() const { return GetARGB32().GetARGB(); }
    constexpr UInt32 GetBGRA() const { return GetARGB32().GetBGRA(); }

    // The average of red, green and blue.
    constexpr explicit operator unsigned short() const { return GetAverage(); }

    friend constexpr bool operator==(const XRGB48Colour & a, const XRGB48Colour & b)
    {
        return a.itsRed == b.itsRed && a.itsGreen == b.itsGreen && a.itsBlue == b.itsBlue;
    }
    friend constexpr bool operator!=(const XRGB48Colour & a, const XRGB48Colour & b) { return !(a == b); }

private:
    UInt16 itsRed = 0;
    UInt16 itsGreen = 0;
    UInt16 itsBlue = 0;
};

static_assert(sizeof(XRGB48Colour) == 6 && std::is_trivially_copyable_v<XRGB48Colour>,
              "an RGB48 colour is three plain 16-bit channels");
