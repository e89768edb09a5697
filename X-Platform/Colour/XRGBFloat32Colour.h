#pragma once
// A colour of three 32-bit floats, red, green and blue, in plain float arithmetic: no clamp
// and no range. The tests of a kind of colour compare exactly.

#include <type_traits>

#include "XTypes.h"

class XRGBFloat32Colour
{
public:
    // Black.
    constexpr XRGBFloat32Colour() = default;
    constexpr XRGBFloat32Colour(float aRed, float aGreen, float aBlue)
        : itsRed(aRed), itsGreen(aGreen), itsBlue(aBlue)
    {
    }

    constexpr float GetRed() const { return itsRed; }
    constexpr float GetGreen() const { return itsGreen; }
    constexpr float GetBlue() const { return itsBlue; }
    constexpr float GetMaxComponent() const;
    constexpr float GetMinComponent() const;

    // All three channels zero.
    constexpr bool IsBlack() const { return itsRed == 0.0f && itsGreen == 0.0f && itsBlue == 0.0f; }
    // All three channels equal; black is grey too.
    constexpr bool IsGrey() const { return itsRed == itsGreen && itsGreen == itsBlue; }
    // Only that channel is non-zero.
    constexpr bool IsRed() const { return itsRed != 0.0f && itsGreen == 0.0f && itsBlue == 0.0f; }
    constexpr bool IsGreen() const { return itsRed == 0.0f && itsGreen != 0.0f && itsBlue == 0.0f; }
    constexpr bool IsBlue() const { return itsRed == 0.0f && itsGreen == 0.0f && itsBlue != 0.0f; }
    // Exactly one channel is non-zero.
    constexpr bool IsPrimary() const { return IsRed() || IsGreen() || IsBlue(); }

    constexpr XRGBFloat32Colour & operator+=(const XRGBFloat32Colour & aColour)
    {
        itsRed += aColour.itsRed;
        itsGreen += aColour.itsGreen;
        itsBlue += aColour.itsBlue;
        return *this;
    }
    constexpr XRGBFloat32Colour & operator*=(const XRGBFloat32Colour & aColour)
    {
        itsRed *= aColour.itsRed;
        itsGreen *= aColour.itsGreen;
        itsBlue *= aColour.itsBlue;
        return *this;
    }
    // Adds the value to each channel.
    constexpr XRGBFloat32Colour & operator+=(float aValue) { return *this += XRGBFloat32Colour(aValue, aValue, aValue); }
    constexpr XRGBFloat32Colour & operator*=(float aValue) { return *this *= XRGBFloat32Colour(aValue, aValue, aValue); }

    friend constexpr XRGBFloat32Colour operator+(XRGBFloat32Colour a, const XRGBFloat32Colour & b) { return a += b; }
    friend constexpr XRGBFloat32Colour operator*(XRGBFloat32Colour a, const XRGBFloat32Colour & b) { return a *= b; }
    friend constexpr XRGBFloat32Colour operator+(XRGBFloat32Colour a, float aValue) { return a += aValue; }
    friend constexpr XRGBFloat32Colour operator*(XRGBFloat32Colour a, float aValue) { return a *= aValue; }
    friend constexpr bool operator==(const XRGBFloat32Colour & a, const XRGBFloat32Colour & b)
    {
        return a.itsRed == b.itsRed && a.itsGreen == b.itsGreen && a.itsBlue == b.itsBlue;
    }
    friend constexpr bool operator!=(const XRGBFloat32Colour & a, const XRGBFloat32Colour & b) { return !(a == b); }

private:
    float itsRed = 0.0f;
    float itsGreen = 0.0f;
    float itsBlue = 0.0f;
};

constexpr float XRGBFloat32Colour::GetMaxComponent() const
{
    const float larger = itsRed > itsGreen ? itsRed : itsGreen;
    return larger > itsBlue ? larger : itsBlue;
}

constexpr float XRGBFloat32Colour::GetMinComponent() const
{
    const float smaller = itsRed < itsGreen ? itsRed : itsGreen;
    return smaller < itsBlue ? smaller : itsBlue;
}

static_assert(sizeof(XRGBFloat32Colour) == 12 && std::is_trivially_copyable_v<XRGBFloat32Colour>,
              "a float colour is three plain floats");
