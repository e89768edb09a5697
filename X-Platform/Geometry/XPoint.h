#pragma once
// The integer 2-D point of the library.

#include "X3DPointT.h"
#include "XPointT.h"
#include "XTypes.h"

class XPoint : public XPointT<SInt32>
{
public:
    constexpr XPoint() = default;
    constexpr XPoint(SInt32 inX, SInt32 inY) : XPointT<SInt32>(inX, inY) {}
    constexpr XPoint(const XPointT<SInt32> & aPoint) : XPointT<SInt32>(aPoint) {}
    // Each coordinate rounded with floor(v + 0.5).
    explicit XPoint(const XPointT<float> & aPoint);
    // Drops z.
    constexpr explicit XPoint(const X3DPointT<SInt32> & aPoint) : XPointT<SInt32>(aPoint.x, aPoint.y) {}
};
