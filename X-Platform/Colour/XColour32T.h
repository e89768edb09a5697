#pragma once
// A 32-bit colour of four 8-bit channels, alpha, red, green and blue, whose order in memory is
// given by the four byte indices. XARGB32Colour and XBGRA32Colour are its two forms: they
// share every operation and differ only in where each channel lies.
//
// The colour is a plain value of four bytes with no virtual call, made to sit in voxel arrays.
// The arithmetic of XColourArithmeticT works on red, green and blue and leaves alpha alone;
// the operations here say where they touch alpha.

#include <cstring>

#include "XColourArithmeticT.h"
#include "XColourChannelMath.h"
#include "XColourSpaces.h"
#include "XTypes.h"

template <class Derived, int kAlphaIndex, int kRedIndex, int kGreenIndex, int kBlueIndex>
class XColour32T : public XColourArithmeticT<Derived, UInt8>
{
    using Math = XColourChannelMath<UInt8>;

public:
    // All four channels zero.
    constexpr XColour32T() = default;
    // The grey of that level, opaque.
    constexpr explicit XColour32T(UInt8 aGrey) { SetARGB(255, aGrey, aGrey, aGrey); }
    // Opaque.
    constexpr XColour32T(UInt8 aRed, UInt8 aGreen, UInt8 aBlue) { SetARGB(255, aRed, aGreen, aBlue); }
    constexpr XColour32T(UInt8 anAlpha, UInt8 aRed, UInt8 aGreen, UInt8 aBlue)
    {
        SetARGB(anAlpha, aRed, aGreen, aBlue);
    }

    // The colour whose ARGB word (0xAARRGGBB) is given.
    static constexpr Derived FromARGB(UInt32 anARGB)
    {
        Derived colour;
        colour.SetARGB(anARGB);
        return colour;
    }

    constexpr UInt8 GetAlpha() const { return itsBytes[kAlphaIndex]; }
    constexpr UInt8 GetRed() const { return itsBytes[kRedIndex]; }
    constexpr UInt8 GetGreen() const { return itsBytes[kGreenIndex]; }
    constexpr UInt8 GetBlue() const { return itsBytes[kBlueIndex]; }
    constexpr void SetAlpha(UInt8 aValue) { itsBytes[kAlphaIndex] = aValue; }
    constexpr void SetRed(UInt8 aValue) { itsBytes[kRedIndex] = aValue; }
    constexpr void SetGreen(UInt8 aValue) { itsBytes[kGreenIndex] = aValue; }
    constexpr void SetBlue(UInt8 aValue) { itsBytes[kBlueIndex] = aValue; }
    constexpr void SetRGB(UInt8 aRed, UInt8 aGreen, UInt8 aBlue)
    {
        SetRed(aRed);
        SetGreen(aGreen);
        SetBlue(aBlue);
    }
    constexpr void SetARGB(UInt8 anAlpha, UInt8 aRed, UInt8 aGreen, UInt8 aBlue)
    {
        SetAlpha(anAlpha);
        SetRGB(aRed, aGreen, aBlue);
    }
    // From the word 0xAARRGGBB.
    constexpr void SetARGB(UInt32 anARGB)
    {
        SetARGB(UInt8(anARGB >> 24), UInt8(anARGB >> 16), UInt8(anARGB >> 8), UInt8(anARGB));
    }
    // Red, green and blue to one value; alpha stays.
    constexpr void SetAll(UInt8 aValue) { SetRGB(aValue, aValue, aValue); }

    // Channel / 255.
    constexpr float GetAlphaFloat() const { return float(GetAlpha()) / 255.0f; }
    constexpr float GetRedFloat() const { return float(GetRed()) / 255.0f; }
    constexpr float GetGreenFloat() const { return float(GetGreen()) / 255.0f; }
    constexpr float GetBlueFloat() const { return float(GetBlue()) / 255.0f; }
    // truncate(value * 255.0) with no clamp: a value outside 0..1 wraps in 8 bits.
    constexpr void SetAlphaFloat(float aValue) { SetAlpha(Math::FromUnitFloat(aValue)); }
    constexpr void SetRedFloat(float aValue) { SetRed(Math::FromUnitFloat(aValue)); }
    constexpr void SetGreenFloat(float aValue) { SetGreen(Math::FromUnitFloat(aValue)); }
    constexpr void SetBlueFloat(float aValue) { SetBlue(Math::FromUnitFloat(aValue)); }
    constexpr void SetRGBFloat(float aRed, float aGreen, float aBlue)
    {
        SetRedFloat(aRed);
        SetGreenFloat(aGreen);
        SetBlueFloat(aBlue);
    }
    constexpr void SetARGBFloat(float anAlpha, float aRed, float aGreen, float aBlue)
    {
        SetAlphaFloat(anAlpha);
        SetRGBFloat(aRed, aGreen, aBlue);
    }
    constexpr void SetAllFloat(float aValue) { SetRGBFloat(aValue, aValue, aValue); }

    // The channels as one word, the first named in the top byte.
    constexpr UInt32 GetARGB() const { return Word(GetAlpha(), GetRed(), GetGreen(), GetBlue()); }
    constexpr UInt32 GetBGRA() const { return Word(GetBlue(), GetGreen(), GetRed(), GetAlpha()); }
    constexpr UInt32 GetRGBA() const { return Word(GetRed(), GetGreen(), GetBlue(), GetAlpha()); }
    // The 0x00BBGGRR form of Windows: red in the low byte.
    constexpr UInt32 GetColourRef() const { return Word(0, GetBlue(), GetGreen(), GetRed()); }
    // From 0x00BBGGRR; alpha becomes 255.
    constexpr void SetColourRef(UInt32 aColourRef)
    {
        SetARGB(255, UInt8(aColourRef), UInt8(aColourRef >> 8), UInt8(aColourRef >> 16));
    }

    // The average of red, green and blue.
    constexpr explicit operator unsigned char() const { return this->GetAverage(); }

    // Red, green and blue from hue, saturation and intensity; alpha stays.
    void SetHSI(UInt8 aHue, UInt8 aSaturation, UInt8 anIntensity)
    {
        UInt8 red, green, blue;
        HSIToRGB(aHue, aSaturation, anIntensity, red, green, blue);
        SetRGB(red, green, blue);
    }
    static void HSIToRGB(UInt8 inHue, UInt8 inSaturation, UInt8 inIntensity, UInt8 & outRed,
                         UInt8 & outGreen, UInt8 & outBlue)
    {
        XColourSpaces::HSIToRGB(inHue, inSaturation, inIntensity, outRed, outGreen, outBlue);
    }
    static void RGBToHSI(UInt8 inRed, UInt8 inGreen, UInt8 inBlue, UInt8 & outHue,
                         UInt8 & outSaturation, UInt8 & outIntensity)
    {
        XColourSpaces::RGBToHSI(inRed, inGreen, inBlue, outHue, outSaturation, outIntensity);
    }

    // The colour of a wavelength in nanometres; outside 380..780 black. Alpha stays.
    void SetWavelength(double aWavelength)
    {
        UInt8 red = 0, green = 0, blue = 0;
        XColourSpaces::WavelengthToRGB(aWavelength, red, green, blue);
        SetRGB(red, green, blue);
    }
    // Red, green, blue and alpha as floats of 0..1, in that order, for a graphics library.
    void GetGL(float * outRGBA) const
    {
        outRGBA[0] = GetRedFloat();
        outRGBA[1] = GetGreenFloat();
        outRGBA[2] = GetBlueFloat();
        outRGBA[3] = GetAlphaFloat();
    }

    // alpha = (alpha * a) >> 8, so 255 with 255 gives 254.
    constexpr void CombineAlpha(UInt8 anAlpha) { SetAlpha(UInt8((UInt32(GetAlpha()) * anAlpha) >> 8)); }
    // Blends the other colour over this one by the other's alpha t:
    // channel = (other * t + channel * (255 - t)) >> 8. Alpha stays.
    constexpr void BlendRGBWith(const Derived & anOther)
    {
        const UInt32 t = anOther.GetAlpha();
        const UInt32 u = 255 - t;
        SetRGB(UInt8((anOther.GetRed() * t + GetRed() * u) >> 8),
               UInt8((anOther.GetGreen() * t + GetGreen() * u) >> 8),
               UInt8((anOther.GetBlue() * t + GetBlue() * u) >> 8));
    }
    // channel = (channel * alpha) >> 8, so 255 at alpha 255 gives 254.
    constexpr void PremultiplyAlpha()
    {
        const UInt32 alpha = GetAlpha();
        SetRGB(UInt8((GetRed() * alpha) >> 8), UInt8((GetGreen() * alpha) >> 8),
               UInt8((GetBlue() * alpha) >> 8));
    }
    // The larger of each colour channel of the two; alpha stays.
    constexpr void MIPCompositeRGBFrom(const Derived & anOther)
    {
        SetRGB(Larger(GetRed(), anOther.GetRed()), Larger(GetGreen(), anOther.GetGreen()),
               Larger(GetBlue(), anOther.GetBlue()));
    }
    // The larger of each of the four channels.
    constexpr void MIPCompositeARGBFrom(const Derived & anOther)
    {
        MIPCompositeRGBFrom(anOther);
        SetAlpha(Larger(GetAlpha(), anOther.GetAlpha()));
    }
    // Rotates the ARGB word left by 8 bits: red moves to alpha, green to red, blue to green and
    // alpha to blue. An ARGB32 colour then lies in memory as red, green, blue, alpha.
    constexpr void ReformatToRGBA()
    {
        const UInt32 word = GetARGB();
        SetARGB((word << 8) | (word >> 24));
    }

    // The same four channels.
    friend constexpr bool operator==(const Derived & a, const Derived & b) { return a.GetARGB() == b.GetARGB(); }
    friend constexpr bool operator!=(const Derived & a, const Derived & b) { return !(a == b); }

private:
    static constexpr UInt32 Word(UInt8 aTop, UInt8 aSecond, UInt8 aThird, UInt8 aLow)
    {
        return (UInt32(aTop) << 24) | (UInt32(aSecond) << 16) | (UInt32(aThird) << 8) | UInt32(aLow);
    }
    static constexpr UInt8 Larger(UInt8 a, UInt8 b) { return a > b ? a : b; }

    UInt8 itsBytes[4] = {0, 0, 0, 0};
};
