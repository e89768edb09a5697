#include "XTriangleFilter.h"

#include <cmath>

double XTriangleFilter::CalcFilterValue(double x) const
{
    const double u = std::fabs(x);
    return u < 1.0 ? 1.0 - u : 0.0;
}
