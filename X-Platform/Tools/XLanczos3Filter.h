#pragma once
// Lanczos of three lobes: sinc(u) sinc(u / 3) for u = |x| below 3, else 0, with
// sinc(t) = sin(pi t) / (pi t) and sinc(0) = 1. Its negative lobes can take a sum below zero.

#include "XResampleFilter.h"

class XLanczos3Filter : public XResampleFilter
{
public:
    double GetFilterSize() const override { return 3.0; }
    double CalcFilterValue(double x) const override;
};
