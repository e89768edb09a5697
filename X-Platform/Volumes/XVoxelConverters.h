#pragma once
// How one voxel of a source type becomes one voxel of a destination type: the table of
// conversions between the voxel types, one converter for each pair. XConverterFor<S, D> names
// the converter of a pair; a pair without one (32-bit grey volumes take part in no conversion)
// names void. Keep the table at the end in step with the converters above it.
//
// A converter has Setup(source, destination), run once before a copy, and an inline Convert of
// one voxel. Only the conversions from float and into float need Setup: they take the input
// range from the renderers of the two volumes.

#include <cmath>
#include <limits>
#include <type_traits>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XImageRenderer.h"
#include "XRGB48Colour.h"
#include "XTypes.h"
#include "XVolume.h"

// The low bits of trunc(aValue): what the processor's truncating conversion to a 64-bit integer
// leaves, where a value beyond the 64-bit range (or a NaN) gives the integer indefinite, whose
// low 32 bits are zero.
inline UInt64 XTruncatedLowBits(double aValue)
{
    if (!(std::fabs(aValue) < 9223372036854775808.0))
        return 0x8000000000000000ull;
    return UInt64(SInt64(aValue));
}

struct XStatelessConverter
{
    void Setup(const XVolume &, const XVolume &) {}
};

template <typename T>
struct XAssignmentConverter : XStatelessConverter
{
    T Convert(const T & aVoxel) const { return aVoxel; }
};

// Grey8 and mask sources.
struct XGrey8ToGrey16Converter : XStatelessConverter
{
    UInt16 Convert(UInt8 aVoxel) const { return UInt16(aVoxel * 257); }
};
template <typename D>
struct XGreyToColour32Converter : XStatelessConverter
{
    // 16-bit grey keeps its high byte.
    template <typename S>
    D Convert(S aVoxel) const
    {
        const UInt8 grey = UInt8(aVoxel >> (8 * (sizeof(S) - 1)));
        return D(255, grey, grey, grey);
    }
};
struct XGrey8ToRGB48Converter : XStatelessConverter
{
    XRGB48Colour Convert(UInt8 aVoxel) const { return XRGB48Colour(UInt16(aVoxel * 257)); }
};
// Grey into float: the value itself, no scaling.
struct XGreyToFloatConverter : XStatelessConverter
{
    template <typename S>
    float Convert(S aVoxel) const
    {
        return float(aVoxel);
    }
};

// Grey16 sources.
struct XGrey16ToGrey8Converter : XStatelessConverter
{
    UInt8 Convert(UInt16 aVoxel) const { return UInt8(aVoxel >> 8); }
};
struct XGrey16ToRGB48Converter : XStatelessConverter
{
    XRGB48Colour Convert(UInt16 aVoxel) const { return XRGB48Colour(aVoxel); }
};

// Float into grey: r = (v - min) * scale + black, clamped to black..white and truncated, with
// min of the source's input range and black and white of the destination's renderer.
template <typename D>
class XFloatToGreyConverter
{
public:
    void Setup(const XVolume & aSource, const XVolume & aDest)
    {
        const XImageRenderer & source = aSource.GetPlaneRenderer();
        const XImageRenderer & dest = aDest.GetPlaneRenderer();
        itsMin = source.GetMinInputValue();
        itsBlack = dest.GetBlack();
        itsWhite = dest.GetWhite();
        itsScale = (itsWhite - itsBlack) / (source.GetMaxInputValue() - itsMin);
    }
    D Convert(float aVoxel) const
    {
        double r = (double(aVoxel) - itsMin) * itsScale + itsBlack;
        if (r < itsBlack)
            r = itsBlack;
        else if (r > itsWhite)
            r = itsWhite;
        return D(XTruncatedLowBits(r));
    }

private:
    double itsMin = 0.0, itsScale = 0.0, itsBlack = 0.0, itsWhite = 0.0;
};

// Float into 32-bit colour: g = trunc((v - min) * (255 / (max - min))), whose low 8 bits go to
// red, green and blue without any clamp; alpha 255.
template <typename D>
class XFloatToColour32Converter
{
public:
    void Setup(const XVolume & aSource, const XVolume &)
    {
        const XImageRenderer & source = aSource.GetPlaneRenderer();
        itsMin = source.GetMinInputValue();
        itsFactor = 255.0 / (source.GetMaxInputValue() - itsMin);
    }
    D Convert(float aVoxel) const
    {
        const UInt8 grey = UInt8(XTruncatedLowBits((double(aVoxel) - itsMin) * itsFactor));
        return D(255, grey, grey, grey);
    }

private:
    double itsMin = 0.0, itsFactor = 0.0;
};

// Float into RGB48: the same in 32-bit floats with 65535, the low 16 bits to each channel.
class XFloatToRGB48Converter
{
public:
    void Setup(const XVolume & aSource, const XVolume &)
    {
        const XImageRenderer & source = aSource.GetPlaneRenderer();
        itsMin = float(source.GetMinInputValue());
        itsFactor = 65535.0f / (float(source.GetMaxInputValue()) - itsMin);
    }
    XRGB48Colour Convert(float aVoxel) const
    {
        return XRGB48Colour(UInt16(XTruncatedLowBits(double((aVoxel - itsMin) * itsFactor))));
    }

private:
    float itsMin = 0.0f, itsFactor = 0.0f;
};

// Between the two 32-bit colour orders: the same channels, alpha carried along.
template <typename S, typename D>
struct XColour32ReorderConverter : XStatelessConverter
{
    D Convert(const S & aVoxel) const
    {
        return D(aVoxel.GetAlpha(), aVoxel.GetRed(), aVoxel.GetGreen(), aVoxel.GetBlue());
    }
};
using XARGB32ToBGRA32Converter = XColour32ReorderConverter<XARGB32Colour, XBGRA32Colour>;
using XBGRA32ToARGB32Converter = XColour32ReorderConverter<XBGRA32Colour, XARGB32Colour>;

// 32-bit colour into grey: a = (red + green + blue) / 3; Grey16 takes a * 256 + a.
template <typename S>
struct XColour32ToGrey8Converter : XStatelessConverter
{
    UInt8 Convert(const S & aVoxel) const { return aVoxel.GetAverage(); }
};
template <typename S>
struct XColour32ToGrey16Converter : XStatelessConverter
{
    UInt16 Convert(const S & aVoxel) const { return UInt16(aVoxel.GetAverage() * 257); }
};
template <typename S>
struct XColour32ToRGB48Converter : XStatelessConverter
{
    XRGB48Colour Convert(const S & aVoxel) const
    {
        return XRGB48Colour(UInt16(aVoxel.GetRed() * 257), UInt16(aVoxel.GetGreen() * 257),
                            UInt16(aVoxel.GetBlue() * 257));
    }
};
// Colour into float: a * ((max - min) / channel maximum) + min, with the input range of the
// destination's renderer; a is the average of red, green and blue.
template <typename S>
class XColourToFloatConverter
{
public:
    void Setup(const XVolume &, const XVolume & aDest)
    {
        const XImageRenderer & dest = aDest.GetPlaneRenderer();
        itsMin = dest.GetMinInputValue();
        itsFactor = (dest.GetMaxInputValue() - itsMin) / kChannelMax;
    }
    float Convert(const S & aVoxel) const { return float(double(aVoxel.GetAverage()) * itsFactor + itsMin); }

private:
    static constexpr double kChannelMax = double(std::numeric_limits<decltype(S().GetRed())>::max());
    double itsMin = 0.0, itsFactor = 0.0;
};

// RGB48 sources.
template <typename D>
struct XRGB48ToColour32Converter : XStatelessConverter
{
    D Convert(const XRGB48Colour & aVoxel) const
    {
        return D(UInt8(aVoxel.GetRed() >> 8), UInt8(aVoxel.GetGreen() >> 8), UInt8(aVoxel.GetBlue() >> 8));
    }
};
using XRGB48ToARGB32Converter = XRGB48ToColour32Converter<XARGB32Colour>;
using XRGB48ToBGRA32Converter = XRGB48ToColour32Converter<XBGRA32Colour>;
struct XRGB48ToGrey8Converter : XStatelessConverter
{
    UInt8 Convert(const XRGB48Colour & aVoxel) const
    {
        return UInt8((UInt32(aVoxel.GetRed()) + aVoxel.GetGreen() + aVoxel.GetBlue()) / 768);
    }
};
struct XRGB48ToGrey16Converter : XStatelessConverter
{
    UInt16 Convert(const XRGB48Colour & aVoxel) const { return aVoxel.GetAverage(); }
};

// The table: the converter of each pair of voxel types (S source, D destination).
template <typename S, typename D>
struct XConverterFor
{
    using type = void;
};
template <typename T>
struct XConverterFor<T, T>
{
    using type = XAssignmentConverter<T>;
};
template <>
struct XConverterFor<UInt8, UInt16> { using type = XGrey8ToGrey16Converter; };
template <>
struct XConverterFor<UInt8, XARGB32Colour> { using type = XGreyToColour32Converter<XARGB32Colour>; };
template <>
struct XConverterFor<UInt8, XBGRA32Colour> { using type = XGreyToColour32Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<UInt8, float> { using type = XGreyToFloatConverter; };
template <>
struct XConverterFor<UInt8, XRGB48Colour> { using type = XGrey8ToRGB48Converter; };
template <>
struct XConverterFor<UInt16, UInt8> { using type = XGrey16ToGrey8Converter; };
template <>
struct XConverterFor<UInt16, XARGB32Colour> { using type = XGreyToColour32Converter<XARGB32Colour>; };
template <>
struct XConverterFor<UInt16, XBGRA32Colour> { using type = XGreyToColour32Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<UInt16, float> { using type = XGreyToFloatConverter; };
template <>
struct XConverterFor<UInt16, XRGB48Colour> { using type = XGrey16ToRGB48Converter; };
template <>
struct XConverterFor<float, UInt8> { using type = XFloatToGreyConverter<UInt8>; };
template <>
struct XConverterFor<float, UInt16> { using type = XFloatToGreyConverter<UInt16>; };
template <>
struct XConverterFor<float, XARGB32Colour> { using type = XFloatToColour32Converter<XARGB32Colour>; };
template <>
struct XConverterFor<float, XBGRA32Colour> { using type = XFloatToColour32Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<float, XRGB48Colour> { using type = XFloatToRGB48Converter; };
template <>
struct XConverterFor<XARGB32Colour, XBGRA32Colour> { using type = XARGB32ToBGRA32Converter; };
template <>
struct XConverterFor<XBGRA32Colour, XARGB32Colour> { using type = XBGRA32ToARGB32Converter; };
template <>
struct XConverterFor<XARGB32Colour, UInt8> { using type = XColour32ToGrey8Converter<XARGB32Colour>; };
template <>
struct XConverterFor<XARGB32Colour, UInt16> { using type = XColour32ToGrey16Converter<XARGB32Colour>; };
template <>
struct XConverterFor<XARGB32Colour, float> { using type = XColourToFloatConverter<XARGB32Colour>; };
template <>
struct XConverterFor<XARGB32Colour, XRGB48Colour> { using type = XColour32ToRGB48Converter<XARGB32Colour>; };
template <>
struct XConverterFor<XBGRA32Colour, UInt8> { using type = XColour32ToGrey8Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<XBGRA32Colour, UInt16> { using type = XColour32ToGrey16Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<XBGRA32Colour, float> { using type = XColourToFloatConverter<XBGRA32Colour>; };
template <>
struct XConverterFor<XBGRA32Colour, XRGB48Colour> { using type = XColour32ToRGB48Converter<XBGRA32Colour>; };
template <>
struct XConverterFor<XRGB48Colour, XARGB32Colour> { using type = XRGB48ToARGB32Converter; };
template <>
struct XConverterFor<XRGB48Colour, XBGRA32Colour> { using type = XRGB48ToBGRA32Converter; };
template <>
struct XConverterFor<XRGB48Colour, UInt8> { using type = XRGB48ToGrey8Converter; };
template <>
struct XConverterFor<XRGB48Colour, UInt16> { using type = XRGB48ToGrey16Converter; };
template <>
struct XConverterFor<XRGB48Colour, float> { using type = XColourToFloatConverter<XRGB48Colour>; };
