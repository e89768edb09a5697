#pragma once
// Saturating arithmetic on one colour channel of 8 or 16 bits, shared by the colour types.
// Sums and products clamp at the channel's maximum; differences below 1 give 0. Products are
// plain products, with no division by the maximum, so a channel of 2 doubles the other.

#include <limits>
#include <type_traits>

#include "XAssert.h"
#include "XCheckedArithmetic.h"
#include "XTypes.h"

template <typename T>
struct XColourChannelMath
{
    static_assert(std::is_same_v<T, UInt8> || std::is_same_v<T, UInt16>, "8- or 16-bit channels");
    static constexpr UInt32 kMax = std::numeric_limits<T>::max();

    static constexpr T Add(T a, T b)
    {
        const UInt32 sum = UInt32(a) + UInt32(b);
        return T(sum > kMax ? kMax : sum);
    }
    static constexpr T Multiply(T a, T b)
    {
        // 65535 * 65535 still fits 32 bits.
        const UInt32 product = UInt32(a) * UInt32(b);
        return T(product > kMax ? kMax : product);
    }
    static constexpr T Subtract(T a, T b) { return a > b ? T(a - b) : T(0); }
    static T Divide(T a, T b)
    {
        XAssertText(b != 0, "colour channel divisor != 0");
        return T(a / b);
    }
    // a * aFactor truncated; clamped at the maximum, and at 0 for a negative factor.
    static constexpr T Scale(T a, double aFactor)
    {
        const double value = double(a) * aFactor;
        if (!(value > 0.0))
            return 0;
        return value >= double(kMax) ? T(kMax) : T(value);
    }
    // a + aDelta clamped to 0..maximum.
    static constexpr T Offset(T a, SInt32 aDelta)
    {
        const SInt64 value = SInt64(a) + aDelta;
        return T(value < 0 ? 0 : (value > SInt64(kMax) ? SInt64(kMax) : value));
    }
    // Truncation of aValue * 255.0 (or 65535.0) into the channel without a clamp: the integer
    // part wraps into the channel's bits. NaN, an infinity or a product beyond 64 bits is an
    // internal error.
    static constexpr T FromUnitFloat(double aValue)
    {
        return T(XCheckedTruncate<SInt64>(aValue * double(kMax)));
    }
    static constexpr T Largest(T a, T b, T c) { return a > b ? (a > c ? a : c) : (b > c ? b : c); }
    static constexpr T Smallest(T a, T b, T c) { return a < b ? (a < c ? a : c) : (b < c ? b : c); }
};
