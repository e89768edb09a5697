#pragma once
// The floating-point 2-D point of the library.

#include "X3DPointT.h"
#include "XPointT.h"
#include "XTypes.h"

class XPointF : public XPointT<float>
{
public:
    constexpr XPointF() = default;
    constexpr XPointF(float inX, float inY) : XPointT<float>(inX, inY) {}
    constexpr XPointF(const XPointT<float> & aPoint) : XPointT<float>(aPoint) {}
    // Exact conversion of each coordinate to float.
    constexpr explicit XPointF(const XPointT<SInt32> & aPoint)
        : XPointT<float>(float(aPoint.x), float(aPoint.y))
    {
    }
    // Drops z.
    constexpr explicit XPointF(const X3DPointT<float> & aPoint) : XPointT<float>(aPoint.x, aPoint.y) {}

    // Each coordinate to floor(v + 0.5), floor(v) or ceil(v), in place; the point is returned.
    XPointF & Round();
    XPointF & Floor();
    XPointF & Ceil();
    // True when either coordinate is NaN.
    bool IsNaN() const;
};
