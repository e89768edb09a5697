#include "X3DPointF.h"

#include <cmath>

X3DPointF & X3DPointF::Round()
{
    x = float(std::floor(double(x) + 0.5));
    y = float(std::floor(double(y) + 0.5));
    z = float(std::floor(double(z) + 0.5));
    return *this;
}

X3DPointF & X3DPointF::Floor()
{
    x = std::floor(x);
    y = std::floor(y);
    z = std::floor(z);
    return *this;
}

X3DPointF & X3DPointF::Ceil()
{
    x = std::ceil(x);
    y = std::ceil(y);
    z = std::ceil(z);
    return *this;
}

bool X3DPointF::IsNaN() const
{
    return std::isnan(x) || std::isnan(y) || std::isnan(z);
}
