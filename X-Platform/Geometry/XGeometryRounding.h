#pragma once
// The rounding the coordinate types use when a float coordinate becomes an integer one:
// floor(v + 0.5), computed in double, so that halves go up (-2.5 becomes -2).

#include <cmath>

#include "XTypes.h"

inline SInt32 XRoundHalfUp(double aValue)
{
    return SInt32(std::floor(aValue + 0.5));
}
