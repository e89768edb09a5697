#include "XPoint.h"

#include "XGeometryRounding.h"

XPoint::XPoint(const XPointT<float> & aPoint)
    : XPointT<SInt32>(XRoundHalfUp(aPoint.x), XRoundHalfUp(aPoint.y))
{
}
