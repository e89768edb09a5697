#pragma once
// What the integer colour types share, written once over the channel type T (8 or 16 bits):
// the measures of a colour and its saturating arithmetic. Derived supplies GetRed, GetGreen,
// GetBlue and SetRGB; alpha, where Derived has one, is never touched here.
//
// Sums and products clamp at the channel maximum (a product is not divided by the maximum, so
// a channel of 2 doubles the other), differences below 1 give 0, and a division by a zero
// channel is a broken precondition. Comparisons other than equality compare the intensity,
// the largest of the three channels: two colours of equal intensity are neither less nor
// greater.

#include "XColourChannelMath.h"
#include "XColourSpaces.h"
#include "XTypes.h"

template <class Derived, typename T>
class XColourArithmeticT
{
    using Math = XColourChannelMath<T>;

public:
    // (red + green + blue) / 3 in integers.
    constexpr T GetAverage() const
    {
        return T((UInt32(Red()) + UInt32(Green()) + UInt32(Blue())) / 3);
    }
    // The largest of red, green and blue.
    constexpr T GetIntensity() const { return Math::Largest(Red(), Green(), Blue()); }
    T GetHue() const
    {
        T hue, saturation, intensity;
        XColourSpaces::RGBToHSI(Red(), Green(), Blue(), hue, saturation, intensity);
        return hue;
    }
    T GetSaturation() const
    {
        T hue, saturation, intensity;
        XColourSpaces::RGBToHSI(Red(), Green(), Blue(), hue, saturation, intensity);
        return saturation;
    }

    // Each colour channel becomes the maximum minus itself.
    constexpr void Invert()
    {
        Self().SetRGB(T(Math::kMax - Red()), T(Math::kMax - Green()), T(Math::kMax - Blue()));
    }
    // Adds to each colour channel, clamped to 0..maximum.
    constexpr void Offset(SInt32 aDelta)
    {
        Self().SetRGB(Math::Offset(Red(), aDelta), Math::Offset(Green(), aDelta),
                      Math::Offset(Blue(), aDelta));
    }

    constexpr Derived & operator+=(const Derived & aColour) { return Apply(aColour, Math::Add); }
    constexpr Derived & operator-=(const Derived & aColour) { return Apply(aColour, Math::Subtract); }
    constexpr Derived & operator*=(const Derived & aColour) { return Apply(aColour, Math::Multiply); }
    Derived & operator/=(const Derived & aColour) { return Apply(aColour, Math::Divide); }
    // Each colour channel times the factor, truncated and clamped to 0..maximum.
    constexpr Derived & operator*=(double aFactor)
    {
        Self().SetRGB(Math::Scale(Red(), aFactor), Math::Scale(Green(), aFactor),
                      Math::Scale(Blue(), aFactor));
        return Self();
    }
    // Multiplies by 1.0 / aDivisor.
    constexpr Derived & operator/=(double aDivisor) { return *this *= 1.0 / aDivisor; }

    friend constexpr Derived operator+(Derived a, const Derived & b) { return a += b; }
    friend constexpr Derived operator-(Derived a, const Derived & b) { return a -= b; }
    friend constexpr Derived operator*(Derived a, const Derived & b) { return a *= b; }
    friend Derived operator/(Derived a, const Derived & b) { return a /= b; }
    friend constexpr Derived operator*(Derived a, double aFactor) { return a *= aFactor; }
    friend constexpr Derived operator*(Derived a, float aFactor) { return a *= double(aFactor); }
    friend constexpr Derived operator/(Derived a, double aDivisor) { return a /= aDivisor; }
    friend constexpr Derived operator/(Derived a, float aDivisor) { return a /= double(aDivisor); }

    friend constexpr bool operator<(const Derived & a, const Derived & b) { return a.GetIntensity() < b.GetIntensity(); }
    friend constexpr bool operator<=(const Derived & a, const Derived & b) { return a.GetIntensity() <= b.GetIntensity(); }
    friend constexpr bool operator>(const Derived & a, const Derived & b) { return a.GetIntensity() > b.GetIntensity(); }
    friend constexpr bool operator>=(const Derived & a, const Derived & b) { return a.GetIntensity() >= b.GetIntensity(); }

private:
    constexpr Derived & Self() { return static_cast<Derived &>(*this); }
    constexpr const Derived & Self() const { return static_cast<const Derived &>(*this); }
    constexpr T Red() const { return Self().GetRed(); }
    constexpr T Green() const { return Self().GetGreen(); }
    constexpr T Blue() const { return Self().GetBlue(); }

    template <typename Operation>
    constexpr Derived & Apply(const Derived & aColour, Operation anOperation)
    {
        Self().SetRGB(anOperation(Red(), aColour.GetRed()), anOperation(Green(), aColour.GetGreen()),
                      anOperation(Blue(), aColour.GetBlue()));
        return Self();
    }
};
