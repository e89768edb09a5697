#pragma once
// The integer 3-D point of the library.

#include "X3DPointT.h"
#include "XPointT.h"
#include "XTypes.h"

class X3DRect;

class X3DPoint : public X3DPointT<SInt32>
{
public:
    constexpr X3DPoint() = default;
    constexpr X3DPoint(SInt32 inX, SInt32 inY, SInt32 inZ) : X3DPointT<SInt32>(inX, inY, inZ) {}
    constexpr X3DPoint(const X3DPointT<SInt32> & aPoint) : X3DPointT<SInt32>(aPoint) {}
    // Exact: the 2-D point in the plane inZ.
    constexpr X3DPoint(const XPointT<SInt32> & aPoint, SInt32 inZ) : X3DPointT<SInt32>(aPoint, inZ) {}
    // Each coordinate rounded with floor(v + 0.5).
    explicit X3DPoint(const X3DPointT<float> & aPoint);
    // x and y rounded with floor(v + 0.5); z as given.
    X3DPoint(const XPointT<float> & aPoint, SInt32 inZ);

    // Clamps the point into the box as X3DRect::ConstrainPoint does.
    void KeepWithin(const X3DRect & aBox);
};
