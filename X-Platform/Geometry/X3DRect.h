#pragma once
// The integer 3-D box that bounds every volume, half-open on each axis: right, bottom and back
// lie one past the last voxel. Storable.
//
// The fields are stored in the order left, right, top, bottom, front, back, which is the stream
// order too (unlike XRect's left, top, bottom, right).
//
// Stream form (class 100, version 0): the class word, then the six fields as signed 32-bit
// values.

#include "X3DPoint.h"
#include "XRectAxis.h"
#include "XStorable.h"
#include "XTypes.h"

class XRect;
class XRectF;
class XStream;

class X3DRect : public XStorable
{
    using XAxis = XRectAxis<SInt32, UInt32>;

public:
    static constexpr UInt32 kClassID = 100;

    X3DRect() = default;
    X3DRect(SInt32 inLeft, SInt32 inTop, SInt32 inFront, SInt32 inRight, SInt32 inBottom, SInt32 inBack)
    {
        SetSize(inLeft, inTop, inFront, inRight, inBottom, inBack);
    }
    // Origin 0; a size that reads as negative lands in the low edge, with the high edge 0.
    X3DRect(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    {
        SetSize(0, 0, 0, SInt32(aWidth), SInt32(aHeight), SInt32(aDepth));
    }
    X3DRect(const X3DPoint & aLow, const X3DPoint & aHigh)
    {
        SetSize(aLow.x, aLow.y, aLow.z, aHigh.x, aHigh.y, aHigh.z);
    }
    X3DRect(const XRect & aRect, SInt32 inFront, SInt32 inBack);
    // x and y edges rounded with floor(v + 0.5).
    X3DRect(const XRectF & aRect, SInt32 inFront, SInt32 inBack);
    // Reads the class word and the fields as they are, without normalising: XException 1005 for
    // another class, 1015 for a newer version.
    explicit X3DRect(XStream & aStream);

    // ---- access ----
    SInt32 GetLeft() const { return itsLeft; }
    SInt32 GetRight() const { return itsRight; }
    SInt32 GetTop() const { return itsTop; }
    SInt32 GetBottom() const { return itsBottom; }
    SInt32 GetFront() const { return itsFront; }
    SInt32 GetBack() const { return itsBack; }
    UInt32 GetWidth() const { return XAxis::Extent(itsLeft, itsRight); }
    UInt32 GetHeight() const { return XAxis::Extent(itsTop, itsBottom); }
    UInt32 GetDepth() const { return XAxis::Extent(itsFront, itsBack); }
    UInt64 GetVolume() const { return UInt64(GetWidth()) * UInt64(GetHeight()) * UInt64(GetDepth()); }
    X3DPoint GetOrigin() const { return X3DPoint(itsLeft, itsTop, itsFront); }
    // (left + right) / 2 and so on, signed division truncating toward zero.
    X3DPoint GetCentre() const
    {
        return X3DPoint(XAxis::Mean(itsLeft, itsRight), XAxis::Mean(itsTop, itsBottom),
                        XAxis::Mean(itsFront, itsBack));
    }

    // ---- tests ----
    bool IsEmpty() const { return GetWidth() == 0 || GetHeight() == 0 || GetDepth() == 0; }
    bool IsEqual(const X3DRect & aBox) const
    {
        return itsLeft == aBox.itsLeft && itsRight == aBox.itsRight && itsTop == aBox.itsTop &&
               itsBottom == aBox.itsBottom && itsFront == aBox.itsFront && itsBack == aBox.itsBack;
    }
    bool operator==(const X3DRect & aBox) const { return IsEqual(aBox); }
    bool operator!=(const X3DRect & aBox) const { return !IsEqual(aBox); }
    bool IsSameSizeAs(const X3DRect & aBox) const
    {
        return GetWidth() == aBox.GetWidth() && GetHeight() == aBox.GetHeight() && GetDepth() == aBox.GetDepth();
    }
    bool Contains(SInt32 inX, SInt32 inY, SInt32 inZ) const
    {
        return XAxis::Contains(inX, itsLeft, itsRight) && XAxis::Contains(inY, itsTop, itsBottom) &&
               XAxis::Contains(inZ, itsFront, itsBack);
    }
    bool Contains(const X3DPoint & aPoint) const { return Contains(aPoint.x, aPoint.y, aPoint.z); }
    bool Contains(const X3DRect & aBox) const
    {
        return aBox.itsLeft >= itsLeft && aBox.itsRight <= itsRight && aBox.itsTop >= itsTop &&
               aBox.itsBottom <= itsBottom && aBox.itsFront >= itsFront && aBox.itsBack <= itsBack;
    }

    // ---- setting ----
    void SetSize(SInt32 inLeft, SInt32 inTop, SInt32 inFront, SInt32 inRight, SInt32 inBottom, SInt32 inBack);
    // Setting a low edge raises the high edge to at least that value, and the other way round.
    void SetLeft(SInt32 aValue) { XAxis::SetLow(itsLeft, itsRight, aValue); }
    void SetTop(SInt32 aValue) { XAxis::SetLow(itsTop, itsBottom, aValue); }
    void SetFront(SInt32 aValue) { XAxis::SetLow(itsFront, itsBack, aValue); }
    void SetRight(SInt32 aValue) { XAxis::SetHigh(itsLeft, itsRight, aValue); }
    void SetBottom(SInt32 aValue) { XAxis::SetHigh(itsTop, itsBottom, aValue); }
    void SetBack(SInt32 aValue) { XAxis::SetHigh(itsFront, itsBack, aValue); }
    // high = low + extent, then low = min(low, high), per axis.
    void SetWidth(UInt32 aWidth) { XAxis::SetExtent(itsLeft, itsRight, aWidth); }
    void SetHeight(UInt32 aHeight) { XAxis::SetExtent(itsTop, itsBottom, aHeight); }
    void SetDepth(UInt32 aDepth) { XAxis::SetExtent(itsFront, itsBack, aDepth); }
    void SetDimensions(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    // Moves the low corner, keeping the size.
    void SetPosition(SInt32 inX, SInt32 inY, SInt32 inZ);
    void SetPosition(const X3DPoint & aPoint) { SetPosition(aPoint.x, aPoint.y, aPoint.z); }
    void Offset(SInt32 dx, SInt32 dy, SInt32 dz);
    void Offset(const X3DPoint & aPoint) { Offset(aPoint.x, aPoint.y, aPoint.z); }

    // ---- planes and projections ----
    X3DRect GetXYPlane(SInt32 inZ) const { return X3DRect(itsLeft, itsTop, inZ, itsRight, itsBottom, inZ + 1); }
    X3DRect GetXZPlane(SInt32 inY) const { return X3DRect(itsLeft, inY, itsFront, itsRight, inY + 1, itsBack); }
    X3DRect GetYZPlane(SInt32 inX) const { return X3DRect(inX, itsTop, itsFront, inX + 1, itsBottom, itsBack); }
    XRect GetXYBounds() const;
    XRect GetXZBounds() const;
    // z runs along the rectangle's x: (front, top, back, bottom).
    XRect GetYZBounds() const;

    // Each coordinate into [low, high - 1]; below the low edge goes to the low edge.
    void ConstrainPoint(X3DPoint & ioPoint) const
    {
        ioPoint.x = XAxis::Constrain(ioPoint.x, itsLeft, itsRight);
        ioPoint.y = XAxis::Constrain(ioPoint.y, itsTop, itsBottom);
        ioPoint.z = XAxis::Constrain(ioPoint.z, itsFront, itsBack);
    }

    // ---- growing and combining ----
    // Moves each edge outward; an axis that became inside out always collapses at its mean.
    void Grow(SInt32 dx, SInt32 dy, SInt32 dz);
    void Shrink(SInt32 dx, SInt32 dy, SInt32 dz) { Grow(-dx, -dy, -dz); }
    // Clamps each edge into aBox's interval, collapsing an inside-out axis at its mean.
    void Sect(const X3DRect & aBox);
    // The smallest low and largest high edges: an empty operand still counts by its position.
    void Union(const X3DRect & aBox);
    X3DRect & operator+=(const X3DRect & aBox)
    {
        Union(aBox);
        return *this;
    }
    X3DRect & operator|=(const X3DRect & aBox)
    {
        Union(aBox);
        return *this;
    }
    X3DRect & operator&=(const X3DRect & aBox)
    {
        Sect(aBox);
        return *this;
    }

    // ---- placing ----
    void CentreH(const X3DRect & aBox) { XAxis::Centre(itsLeft, itsRight, aBox.itsLeft, aBox.itsRight); }
    void CentreV(const X3DRect & aBox) { XAxis::Centre(itsTop, itsBottom, aBox.itsTop, aBox.itsBottom); }
    void CentreZ(const X3DRect & aBox) { XAxis::Centre(itsFront, itsBack, aBox.itsFront, aBox.itsBack); }
    // The low corner onto aBox's, then by half the difference of the extents on each axis.
    void CentreOn(const X3DRect & aBox);
    // Low edges at the point minus half of each extent (shifted), size kept.
    void CentreOn(const X3DPoint & aPoint);
    // Slides the box inside aBox without resizing it; on an axis where it is not smaller than
    // aBox it is centred instead.
    void ConstrainWithin(const X3DRect & aBox);
    // The largest box of the same proportions that fits aBox (the smallest of the three ratios
    // of extents), lengths truncated, centred on aBox. A box with no extent, or with a zero
    // extent where aBox has one too, has no scale: an internal error.
    void ScaleTo(const X3DRect & aBox);
    // Scales about the centre: the new extent is floor(extent * factor + 0.5), and the low edge
    // moves by half the change (signed, truncating). A NaN or infinite factor is an internal
    // error.
    void ScaleBy(double aScaleX, double aScaleY, double aScaleZ);
    // Carries the box from the frame aSource to the frame aDest, rounding both edges with
    // floor(edge * dest extent / source extent + 0.5) in double; not normalised afterwards. A
    // source with a zero extent, or an edge landing outside the 32-bit range, is an internal
    // error.
    void Map(const X3DRect & aSource, const X3DRect & aDest);

    // ---- storable ----
    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    X3DRect * Clone() const override { return new X3DRect(*this); }
    UInt64 GetStreamUsage() const override { return 24; }
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_X3DRect(XStream & aStream, XOptions anOptions);
    void WriteStream2_X3DRect(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;

    SInt32 itsLeft = 0;
    SInt32 itsRight = 0;
    SInt32 itsTop = 0;
    SInt32 itsBottom = 0;
    SInt32 itsFront = 0;
    SInt32 itsBack = 0;
};
