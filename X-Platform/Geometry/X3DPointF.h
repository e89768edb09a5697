#pragma once
// The floating-point 3-D point of the library.

#include "X3DPointT.h"
#include "XPointT.h"
#include "XTypes.h"

class X3DPointF : public X3DPointT<float>
{
public:
    constexpr X3DPointF() = default;
    constexpr X3DPointF(float inX, float inY, float inZ) : X3DPointT<float>(inX, inY, inZ) {}
    constexpr X3DPointF(const X3DPointT<float> & aPoint) : X3DPointT<float>(aPoint) {}
    // Exact conversion of each coordinate to float.
    constexpr explicit X3DPointF(const X3DPointT<SInt32> & aPoint)
        : X3DPointT<float>(float(aPoint.x), float(aPoint.y), float(aPoint.z))
    {
    }
    // Exact: the 2-D point in the plane inZ.
    constexpr X3DPointF(const XPointT<SInt32> & aPoint, SInt32 inZ)
        : X3DPointT<float>(float(aPoint.x), float(aPoint.y), float(inZ))
    {
    }

    // Each coordinate to floor(v + 0.5), floor(v) or ceil(v), in place; the point is returned.
    X3DPointF & Round();
    X3DPointF & Floor();
    X3DPointF & Ceil();
    // True when any coordinate is NaN.
    bool IsNaN() const;
};
