#pragma once
// A double truncated toward zero into 32 signed bits as the x86 conversion instruction does it:
// NaN, infinities and values outside the range give -2^31, the processor's "integer
// indefinite". A plain cast is undefined there; formulas that may divide by zero (a resampling
// weight over a zero sum, the logarithm of a zero scale) keep the hardware's answer this way.

#include <cmath>
#include <limits>

#include "XTypes.h"

inline SInt32 XTruncateToSInt32(double aValue)
{
    // The range test fails for NaN as well.
    if (!(aValue > -2147483649.0 && aValue < 2147483648.0))
        return std::numeric_limits<SInt32>::min();
    return static_cast<SInt32>(aValue);
}
