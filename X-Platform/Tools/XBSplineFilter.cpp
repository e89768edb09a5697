#include "XBSplineFilter.h"

#include <cmath>

double XBSplineFilter::CalcFilterValue(double x) const
{
    const double u = std::fabs(x);
    if (u < 1.0)
        return 0.5 * (u * u * u) - u * u + 2.0 / 3.0;
    if (u < 2.0)
        return (2.0 - u) * (2.0 - u) * (2.0 - u) / 6.0;
    return 0.0;
}
