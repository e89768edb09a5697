#pragma once
// The quadratic bell: 0.75 - u^2 for u = |x| below 0.5, 0.5 (u - 1.5)^2 below 1.5, else 0.

#include "XResampleFilter.h"

class XBellFilter : public XResampleFilter
{
public:
    double GetFilterSize() const override { return 1.5; }
    double CalcFilterValue(double x) const override;
};
