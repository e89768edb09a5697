#include "XBellFilter.h"

#include <cmath>

double XBellFilter::CalcFilterValue(double x) const
{
    const double u = std::fabs(x);
    if (u < 0.5)
        return 0.75 - u * u;
    if (u < 1.5)
        return 0.5 * (u - 1.5) * (u - 1.5);
    return 0.0;
}
