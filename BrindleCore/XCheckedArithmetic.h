#pragma once
// Integer division, remainder and float-to-integer truncation of a caller's values, with the
// faults that the processor traps on or the language leaves undefined reported through the
// internal-error path instead: a zero divisor, the smallest signed value divided by -1, and a
// float that is NaN, infinite or beyond the integer type. Valid operands give exactly what the
// plain operators give. Meant for single values; a loop checks its divisor once, before it
// starts. A fault is reported at the caller's line.

#include <limits>
#include <source_location>
#include <type_traits>

#include "XInternalError.h"

inline void XCheckedArithmeticAssert(bool aCondition, const char * aText, const std::source_location & aWhere)
{
    if (!aCondition)
        BrindleInternalError(aText, aWhere.file_name(), int(aWhere.line()));
}

// A floating-point quotient is left to IEEE rules (a zero divisor gives an infinity or NaN), so
// templates over both kinds of number can divide through this one call.
template <typename T>
constexpr T XCheckedDivide(T aDividend, T aDivisor, std::source_location aWhere = std::source_location::current())
{
    static_assert(std::is_arithmetic_v<T>, "a number");
    if constexpr (std::is_integral_v<T>)
    {
        XCheckedArithmeticAssert(aDivisor != 0, "divisor != 0", aWhere);
        if constexpr (std::is_signed_v<T>)
            XCheckedArithmeticAssert(aDivisor != -1 || aDividend != std::numeric_limits<T>::min(),
                                     "quotient within range", aWhere);
    }
    return T(aDividend / aDivisor);
}

// The remainder of truncating division. By -1 it is 0 for every dividend, also for the
// smallest, on which the processor's instruction would trap.
template <typename T>
constexpr T XCheckedRemainder(T aDividend, T aDivisor,
                              std::source_location aWhere = std::source_location::current())
{
    static_assert(std::is_integral_v<T>, "integer remainder only");
    XCheckedArithmeticAssert(aDivisor != 0, "divisor != 0", aWhere);
    if constexpr (std::is_signed_v<T>)
        if (aDivisor == -1)
            return 0;
    return T(aDividend % aDivisor);
}

// aValue truncated toward zero into the integer type I. NaN, an infinity or a value whose
// truncation lies outside I (what a zero float divisor or an absurd factor yields) is a broken
// precondition.
template <typename I>
constexpr I XCheckedTruncate(double aValue, std::source_location aWhere = std::source_location::current())
{
    static_assert(std::is_integral_v<I>, "an integer result");
    // One past the largest value and the smallest value, both exact in double.
    constexpr double kHigh = double(std::numeric_limits<I>::max() / 2 + 1) * 2.0;
    constexpr double kLow = double(std::numeric_limits<I>::min());
    // Values just below kLow truncate onto it; for 64 bits kLow - 1 rounds to kLow itself, hence
    // the equality.
    const bool aboveLow = aValue > kLow - 1.0 || aValue == kLow;
    XCheckedArithmeticAssert(aboveLow && aValue < kHigh, "value finite and within the integer range", aWhere);
    return I(aValue);
}
