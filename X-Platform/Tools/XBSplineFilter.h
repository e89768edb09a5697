#pragma once
// The cubic B-spline: 0.5u^3 - u^2 + 2/3 for u = |x| below 1, (2 - u)^3 / 6 below 2, else 0.

#include "XResampleFilter.h"

class XBSplineFilter : public XResampleFilter
{
public:
    double GetFilterSize() const override { return 2.0; }
    double CalcFilterValue(double x) const override;
};
