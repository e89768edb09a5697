#pragma once
// The rounding the coordinate types use when a float coordinate becomes an integer one:
// floor(v + 0.5), computed in double, so that halves go up (-2.5 becomes -2). A value that is
// NaN or rounds outside the 32-bit range (a float divided by zero, say) is an internal error.

#include <cmath>
#include <source_location>

#include "XCheckedArithmetic.h"
#include "XTypes.h"

inline SInt32 XRoundHalfUp(double aValue, std::source_location aWhere = std::source_location::current())
{
    return XCheckedTruncate<SInt32>(std::floor(aValue + 0.5), aWhere);
}
