#include "X3DPoint.h"

#include "X3DRect.h"
#include "XGeometryRounding.h"

X3DPoint::X3DPoint(const X3DPointT<float> & aPoint)
    : X3DPointT<SInt32>(XRoundHalfUp(aPoint.x), XRoundHalfUp(aPoint.y), XRoundHalfUp(aPoint.z))
{
}

X3DPoint::X3DPoint(const XPointT<float> & aPoint, SInt32 inZ)
    : X3DPointT<SInt32>(XRoundHalfUp(aPoint.x), XRoundHalfUp(aPoint.y), inZ)
{
}

void X3DPoint::KeepWithin(const X3DRect & aBox)
{
    aBox.ConstrainPoint(*this);
}
