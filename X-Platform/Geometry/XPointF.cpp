#include "XPointF.h"

#include <cmath>

XPointF & XPointF::Round()
{
    x = float(std::floor(double(x) + 0.5));
    y = float(std::floor(double(y) + 0.5));
    return *this;
}

XPointF & XPointF::Floor()
{
    x = std::floor(x);
    y = std::floor(y);
    return *this;
}

XPointF & XPointF::Ceil()
{
    x = std::ceil(x);
    y = std::ceil(y);
    return *this;
}

bool XPointF::IsNaN() const
{
    return std::isnan(x) || std::isnan(y);
}
