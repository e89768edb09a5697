#include "X3DRect.h"

#include <algorithm>
#include <cmath>

#include "XAssert.h"
#include "XCheckedArithmetic.h"
#include "XGeometryRounding.h"
#include "XRect.h"
#include "XRectF.h"
#include "XStream.h"

namespace
{
// Extent * factor, truncated toward zero or rounded half up, through a signed value so that a
// negative result wraps instead of being undefined; NaN or a value beyond 64 bits is an
// internal error.
UInt32 TruncatedLength(UInt32 anExtent, double aFactor)
{
    return UInt32(XCheckedTruncate<SInt64>(double(anExtent) * aFactor));
}

UInt32 RoundedLength(UInt32 anExtent, double aFactor)
{
    return UInt32(XCheckedTruncate<SInt64>(std::floor(double(anExtent) * aFactor + 0.5)));
}

// aDest over anExtent, one ratio of ScaleTo: 0 / 0 has none.
double ExtentRatio(UInt32 aDest, UInt32 anExtent)
{
    XAssertText(anExtent != 0 || aDest != 0, "extent != 0 || destination extent != 0");
    return double(aDest) / double(anExtent);
}

// An edge of Map: rounded, then moved by the destination's low edge, in double; the result
// must land in the coordinate range.
SInt32 MapEdge(SInt32 anEdge, SInt32 aSourceLow, UInt32 aSourceExtent, SInt32 aDestLow, UInt32 aDestExtent)
{
    const double scaled = double(SInt64(anEdge) - aSourceLow) * double(aDestExtent) / double(aSourceExtent);
    return XCheckedTruncate<SInt32>(std::floor(scaled + 0.5) + double(aDestLow));
}

// One axis of Map: rounds both edges and does not normalise.
void MapAxis(SInt32 & ioLow, SInt32 & ioHigh, SInt32 aSourceLow, UInt32 aSourceExtent, SInt32 aDestLow,
             UInt32 aDestExtent)
{
    ioLow = MapEdge(ioLow, aSourceLow, aSourceExtent, aDestLow, aDestExtent);
    ioHigh = MapEdge(ioHigh, aSourceLow, aSourceExtent, aDestLow, aDestExtent);
}
} // namespace

X3DRect::X3DRect(const XRect & aRect, SInt32 inFront, SInt32 inBack)
{
    SetSize(aRect.GetLeft(), aRect.GetTop(), inFront, aRect.GetRight(), aRect.GetBottom(), inBack);
}

X3DRect::X3DRect(const XRectF & aRect, SInt32 inFront, SInt32 inBack)
{
    SetSize(XRoundHalfUp(aRect.GetLeft()), XRoundHalfUp(aRect.GetTop()), inFront, XRoundHalfUp(aRect.GetRight()),
            XRoundHalfUp(aRect.GetBottom()), inBack);
}

X3DRect::X3DRect(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

void X3DRect::SetSize(SInt32 inLeft, SInt32 inTop, SInt32 inFront, SInt32 inRight, SInt32 inBottom, SInt32 inBack)
{
    itsLeft = inLeft;
    itsRight = inRight;
    itsTop = inTop;
    itsBottom = inBottom;
    itsFront = inFront;
    itsBack = inBack;
    XAxis::Normalise(itsLeft, itsRight);
    XAxis::Normalise(itsTop, itsBottom);
    XAxis::Normalise(itsFront, itsBack);
}

void X3DRect::SetDimensions(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
{
    SetWidth(aWidth);
    SetHeight(aHeight);
    SetDepth(aDepth);
}

void X3DRect::SetPosition(SInt32 inX, SInt32 inY, SInt32 inZ)
{
    XAxis::MoveTo(itsLeft, itsRight, inX);
    XAxis::MoveTo(itsTop, itsBottom, inY);
    XAxis::MoveTo(itsFront, itsBack, inZ);
}

void X3DRect::Offset(SInt32 dx, SInt32 dy, SInt32 dz)
{
    XAxis::Offset(itsLeft, itsRight, dx);
    XAxis::Offset(itsTop, itsBottom, dy);
    XAxis::Offset(itsFront, itsBack, dz);
}

XRect X3DRect::GetXYBounds() const
{
    return XRect(itsLeft, itsTop, itsRight, itsBottom);
}

XRect X3DRect::GetXZBounds() const
{
    return XRect(itsLeft, itsFront, itsRight, itsBack);
}

XRect X3DRect::GetYZBounds() const
{
    return XRect(itsFront, itsTop, itsBack, itsBottom);
}

void X3DRect::Grow(SInt32 dx, SInt32 dy, SInt32 dz)
{
    XAxis::Grow(itsLeft, itsRight, dx, true);
    XAxis::Grow(itsTop, itsBottom, dy, true);
    XAxis::Grow(itsFront, itsBack, dz, true);
}

void X3DRect::Sect(const X3DRect & aBox)
{
    XAxis::Sect(itsLeft, itsRight, aBox.itsLeft, aBox.itsRight, true);
    XAxis::Sect(itsTop, itsBottom, aBox.itsTop, aBox.itsBottom, true);
    XAxis::Sect(itsFront, itsBack, aBox.itsFront, aBox.itsBack, true);
}

void X3DRect::Union(const X3DRect & aBox)
{
    XAxis::Union(itsLeft, itsRight, aBox.itsLeft, aBox.itsRight);
    XAxis::Union(itsTop, itsBottom, aBox.itsTop, aBox.itsBottom);
    XAxis::Union(itsFront, itsBack, aBox.itsFront, aBox.itsBack);
}

void X3DRect::CentreOn(const X3DRect & aBox)
{
    CentreH(aBox);
    CentreV(aBox);
    CentreZ(aBox);
}

void X3DRect::CentreOn(const X3DPoint & aPoint)
{
    SetPosition(aPoint.x - SInt32(XAxis::Half(GetWidth())), aPoint.y - SInt32(XAxis::Half(GetHeight())),
                aPoint.z - SInt32(XAxis::Half(GetDepth())));
}

void X3DRect::ConstrainWithin(const X3DRect & aBox)
{
    XAxis::ConstrainWithin(itsLeft, itsRight, aBox.itsLeft, aBox.itsRight);
    XAxis::ConstrainWithin(itsTop, itsBottom, aBox.itsTop, aBox.itsBottom);
    XAxis::ConstrainWithin(itsFront, itsBack, aBox.itsFront, aBox.itsBack);
}

void X3DRect::ScaleTo(const X3DRect & aBox)
{
    double scale = std::min({ExtentRatio(aBox.GetWidth(), GetWidth()), ExtentRatio(aBox.GetHeight(), GetHeight()),
                             ExtentRatio(aBox.GetDepth(), GetDepth())});
    // A zero extent gives an infinite ratio, which the others outweigh; a box with no extent at
    // all has no finite scale.
    XAssertText(std::isfinite(scale), "scale is finite");
    SetDimensions(TruncatedLength(GetWidth(), scale), TruncatedLength(GetHeight(), scale),
                  TruncatedLength(GetDepth(), scale));
    CentreOn(aBox);
}

void X3DRect::ScaleBy(double aScaleX, double aScaleY, double aScaleZ)
{
    XAxis::Resize(itsLeft, itsRight, RoundedLength(GetWidth(), aScaleX));
    XAxis::Resize(itsTop, itsBottom, RoundedLength(GetHeight(), aScaleY));
    XAxis::Resize(itsFront, itsBack, RoundedLength(GetDepth(), aScaleZ));
}

void X3DRect::Map(const X3DRect & aSource, const X3DRect & aDest)
{
    XAssertText(!aSource.IsEmpty(), "source extent != 0");
    MapAxis(itsLeft, itsRight, aSource.itsLeft, aSource.GetWidth(), aDest.itsLeft, aDest.GetWidth());
    MapAxis(itsTop, itsBottom, aSource.itsTop, aSource.GetHeight(), aDest.itsTop, aDest.GetHeight());
    MapAxis(itsFront, itsBack, aSource.itsFront, aSource.GetDepth(), aDest.itsFront, aDest.GetDepth());
}

void X3DRect::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_X3DRect(aStream, anOptions);
}

void X3DRect::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_X3DRect(aStream, anOptions);
}

void X3DRect::ReadStream2_X3DRect(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void X3DRect::WriteStream2_X3DRect(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void X3DRect::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    itsLeft = SInt32(aStream.Read32());
    itsRight = SInt32(aStream.Read32());
    itsTop = SInt32(aStream.Read32());
    itsBottom = SInt32(aStream.Read32());
    itsFront = SInt32(aStream.Read32());
    itsBack = SInt32(aStream.Read32());
}

void X3DRect::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.Write32(UInt32(itsLeft));
    aStream.Write32(UInt32(itsRight));
    aStream.Write32(UInt32(itsTop));
    aStream.Write32(UInt32(itsBottom));
    aStream.Write32(UInt32(itsFront));
    aStream.Write32(UInt32(itsBack));
}
