#pragma once
// Linear interpolation: 1 - u for u = |x| below 1, else 0.

#include "XResampleFilter.h"

class XTriangleFilter : public XResampleFilter
{
public:
    double GetFilterSize() const override { return 1.0; }
    double CalcFilterValue(double x) const override;
};
