#include "XSimpleFilter.h"

#include <cmath>

double XSimpleFilter::CalcFilterValue(double x) const
{
    const double u = std::fabs(x);
    return u < 1.0 ? (2.0 * u - 3.0) * (u * u) + 1.0 : 0.0;
}
