#include "XLanczos3Filter.h"

#include <cmath>
#include <numbers>

namespace
{
double Sinc(double t)
{
    if (t == 0.0)
        return 1.0;
    const double x = std::numbers::pi * t;
    return std::sin(x) / x;
}
} // namespace

double XLanczos3Filter::CalcFilterValue(double x) const
{
    const double u = std::fabs(x);
    return u < 3.0 ? Sinc(u) * Sinc(u / 3.0) : 0.0;
}
