#pragma once
// The smooth step: (2u - 3)u^2 + 1 for u = |x| below 1, else 0.

#include "XResampleFilter.h"

class XSimpleFilter : public XResampleFilter
{
public:
    double GetFilterSize() const override { return 1.0; }
    double CalcFilterValue(double x) const override;
};
