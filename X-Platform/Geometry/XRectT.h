#pragma once
// A 2-D rectangle of any coordinate type, half-open: right and bottom lie one past the last
// point, the width is right - left, and a point with x == right is outside.
//
// C is the coordinate type, L the length type and A the area type. The library uses two forms:
// XRectT<SInt32, UInt32, SInt64> (under XRect) and XRectT<float, float, float> (under XRectF).
// Constructors, SetSize and the edge setters keep left <= right and top <= bottom; Offset, Map,
// InvertX/InvertY and Grow or Sect without fixing can leave a rectangle inside out, which
// IsEmptyOrInsideOut tells.
//
// The fields are stored in the order left, top, bottom, right, which is the stream order too.

#include <cmath>
#include <utility>

#include "XAssert.h"
#include "XCheckedArithmetic.h"
#include "XPointT.h"
#include "XRectAxis.h"
#include "XTypes.h"

// The flag bits of XRectT::Align. Vertical: top, else bottom, else centre; horizontal: left,
// else right, else centre.
enum XAlignFlags : UInt32
{
    kAlignTop = 1,
    kAlignVCentre = 2,
    kAlignBottom = 4,
    kAlignLeft = 8,
    kAlignHCentre = 16,
    kAlignRight = 32
};

template <typename C, typename L, typename A>
class XRectT
{
    using XAxis = XRectAxis<C, L>;

public:
    using XCoordinate = C;
    using XLength = L;
    using XArea = A;
    using XPointType = XPointT<C>;

    constexpr XRectT() = default;
    constexpr XRectT(C inLeft, C inTop, C inRight, C inBottom) { SetSize(inLeft, inTop, inRight, inBottom); }
    constexpr XRectT(const XPointType & aTopLeft, const XPointType & aBotRight) { SetSize(aTopLeft, aBotRight); }

    // ---- access ----
    constexpr C GetLeft() const { return itsLeft; }
    constexpr C GetTop() const { return itsTop; }
    constexpr C GetRight() const { return itsRight; }
    constexpr C GetBottom() const { return itsBottom; }
    constexpr XPointType GetTopLeft() const { return XPointType(itsLeft, itsTop); }
    constexpr XPointType GetTopRight() const { return XPointType(itsRight, itsTop); }
    constexpr XPointType GetBotLeft() const { return XPointType(itsLeft, itsBottom); }
    constexpr XPointType GetBotRight() const { return XPointType(itsRight, itsBottom); }

    constexpr L GetWidth() const { return XAxis::Extent(itsLeft, itsRight); }
    constexpr L GetHeight() const { return XAxis::Extent(itsTop, itsBottom); }
    constexpr A GetArea() const { return A(GetWidth()) * A(GetHeight()); }
    constexpr A GetPerimeter() const { return 2 * (A(GetWidth()) + A(GetHeight())); }

    // ---- tests ----
    constexpr bool IsEmpty() const { return GetWidth() == 0 || GetHeight() == 0; }
    constexpr bool IsEmptyOrInsideOut() const { return itsTop >= itsBottom || itsLeft >= itsRight; }
    constexpr bool IsEqual(const XRectT & aRect) const
    {
        return itsLeft == aRect.itsLeft && itsTop == aRect.itsTop && itsRight == aRect.itsRight &&
               itsBottom == aRect.itsBottom;
    }
    constexpr bool operator==(const XRectT & aRect) const { return IsEqual(aRect); }
    constexpr bool operator!=(const XRectT & aRect) const { return !IsEqual(aRect); }
    constexpr bool IsSameSizeAs(const XRectT & aRect) const
    {
        return GetWidth() == aRect.GetWidth() && GetHeight() == aRect.GetHeight();
    }
    // Height over width of both equal: in the integer form an unsigned integer quotient, so
    // 3 by 2 and 4 by 3 compare the same, and a zero width is an internal error.
    constexpr bool IsSameShapeAs(const XRectT & aRect) const
    {
        if constexpr (XAxis::kInteger)
            XAssertText(GetWidth() != 0 && aRect.GetWidth() != 0, "width != 0");
        return GetHeight() / GetWidth() == aRect.GetHeight() / aRect.GetWidth();
    }
    constexpr bool Contains(C inX, C inY) const
    {
        return XAxis::Contains(inX, itsLeft, itsRight) && XAxis::Contains(inY, itsTop, itsBottom);
    }
    constexpr bool Contains(const XPointType & aPoint) const { return Contains(aPoint.x, aPoint.y); }
    constexpr bool Contains(const XRectT & aRect) const
    {
        return aRect.itsLeft >= itsLeft && aRect.itsRight <= itsRight && aRect.itsTop >= itsTop &&
               aRect.itsBottom <= itsBottom;
    }

    // ---- setting ----
    constexpr void SetSize(C inLeft, C inTop, C inRight, C inBottom)
    {
        itsLeft = inLeft;
        itsTop = inTop;
        itsRight = inRight;
        itsBottom = inBottom;
        XAxis::Normalise(itsLeft, itsRight);
        XAxis::Normalise(itsTop, itsBottom);
    }
    constexpr void SetSize(const XPointType & aTopLeft, const XPointType & aBotRight)
    {
        SetSize(aTopLeft.x, aTopLeft.y, aBotRight.x, aBotRight.y);
    }
    // Setting a low edge raises the high edge to at least that value, and the other way round.
    constexpr void SetLeft(C aValue) { XAxis::SetLow(itsLeft, itsRight, aValue); }
    constexpr void SetTop(C aValue) { XAxis::SetLow(itsTop, itsBottom, aValue); }
    constexpr void SetRight(C aValue) { XAxis::SetHigh(itsLeft, itsRight, aValue); }
    constexpr void SetBottom(C aValue) { XAxis::SetHigh(itsTop, itsBottom, aValue); }
    constexpr void SetTopLeft(const XPointType & aPoint)
    {
        SetLeft(aPoint.x);
        SetTop(aPoint.y);
    }
    constexpr void SetBotRight(const XPointType & aPoint)
    {
        SetRight(aPoint.x);
        SetBottom(aPoint.y);
    }
    // right = left + width, then left = min(left, right); the same for the height.
    constexpr void SetWidth(L aWidth) { XAxis::SetExtent(itsLeft, itsRight, aWidth); }
    constexpr void SetHeight(L aHeight) { XAxis::SetExtent(itsTop, itsBottom, aHeight); }
    constexpr void SetDimensions(L aWidth, L aHeight)
    {
        SetWidth(aWidth);
        SetHeight(aHeight);
    }
    constexpr void SetDimensions(const XPointType & aSize) { SetDimensions(L(aSize.x), L(aSize.y)); }
    // Moves the top-left corner, keeping the size.
    constexpr void SetPosition(C inX, C inY)
    {
        XAxis::MoveTo(itsLeft, itsRight, inX);
        XAxis::MoveTo(itsTop, itsBottom, inY);
    }
    constexpr void SetPosition(const XPointType & aPoint) { SetPosition(aPoint.x, aPoint.y); }
    constexpr void Offset(C dx, C dy)
    {
        XAxis::Offset(itsLeft, itsRight, dx);
        XAxis::Offset(itsTop, itsBottom, dy);
    }
    constexpr void Offset(const XPointType & aPoint) { Offset(aPoint.x, aPoint.y); }

    // ---- positions ----
    // left + ((right - left) >> 1) in unsigned arithmetic; left + width * 0.5 in the float form.
    constexpr C GetHCentre() const { return XAxis::AddLength(itsLeft, XAxis::Half(GetWidth())); }
    constexpr C GetVCentre() const { return XAxis::AddLength(itsTop, XAxis::Half(GetHeight())); }
    constexpr XPointType GetCentre() const { return XPointType(GetHCentre(), GetVCentre()); }
    // width * (y - top) + (x - left), unsigned 32-bit in the integer form.
    constexpr L GetLinearPos(const XPointType & aPoint) const
    {
        return GetWidth() * XAxis::Extent(itsTop, aPoint.y) + XAxis::Extent(itsLeft, aPoint.x);
    }
    // y = top + pos / width, x = left + pos mod width, unsigned in the integer form, where a
    // zero width is an internal error. In the float form the quotient is not truncated: y is
    // fractional and x stays at left.
    constexpr XPointType GetPointFromLinearPos(L aPosition) const
    {
        L width = GetWidth();
        if constexpr (XAxis::kInteger)
        {
            XAssertText(width != 0, "width != 0");
            return XPointType(XAxis::AddLength(itsLeft, aPosition % width),
                              XAxis::AddLength(itsTop, aPosition / width));
        }
        else
            return XPointType(itsLeft, itsTop + aPosition / width);
    }
    // x into [left, right - 1] and y into [top, bottom - 1]; below the low edge goes to the low
    // edge, so on an empty rectangle a point ends at left - 1.
    constexpr void ConstrainPoint(XPointType & ioPoint) const
    {
        ioPoint.x = XAxis::Constrain(ioPoint.x, itsLeft, itsRight);
        ioPoint.y = XAxis::Constrain(ioPoint.y, itsTop, itsBottom);
    }

    // ---- growing and combining ----
    // Moves each edge outward by dx or dy; with aFix an axis that became inside out collapses
    // to zero extent at the truncated mean of its edges.
    constexpr void Grow(C dx, C dy, bool aFix = true)
    {
        XAxis::Grow(itsLeft, itsRight, dx, aFix);
        XAxis::Grow(itsTop, itsBottom, dy, aFix);
    }
    constexpr void Shrink(C dx, C dy) { Grow(-dx, -dy, true); }
    constexpr void Inset(C inLeft, C inTop, C inRight, C inBottom)
    {
        SetLeft(itsLeft + inLeft);
        SetTop(itsTop + inTop);
        SetRight(itsRight - inRight);
        SetBottom(itsBottom - inBottom);
    }
    // Clamps each edge into the other's interval on that axis; with aFix an inside-out axis
    // collapses at its mean. Disjoint rectangles leave an empty one on the near edge of aRect.
    constexpr void Sect(const XRectT & aRect, bool aFix = true)
    {
        XAxis::Sect(itsLeft, itsRight, aRect.itsLeft, aRect.itsRight, aFix);
        XAxis::Sect(itsTop, itsBottom, aRect.itsTop, aRect.itsBottom, aFix);
    }
    // The smallest low and largest high edges: an empty operand still counts by its position.
    constexpr void Union(const XRectT & aRect)
    {
        XAxis::Union(itsLeft, itsRight, aRect.itsLeft, aRect.itsRight);
        XAxis::Union(itsTop, itsBottom, aRect.itsTop, aRect.itsBottom);
    }
    constexpr XRectT & operator+=(const XRectT & aRect)
    {
        Union(aRect);
        return *this;
    }
    constexpr XRectT & operator&=(const XRectT & aRect)
    {
        Sect(aRect, true);
        return *this;
    }

    // ---- placing ----
    constexpr void CentreH(const XRectT & aRect) { XAxis::Centre(itsLeft, itsRight, aRect.itsLeft, aRect.itsRight); }
    constexpr void CentreV(const XRectT & aRect) { XAxis::Centre(itsTop, itsBottom, aRect.itsTop, aRect.itsBottom); }
    constexpr void CentreOn(const XRectT & aRect)
    {
        CentreH(aRect);
        CentreV(aRect);
    }
    // left = x - (width >> 1), top = y - (height >> 1), size kept.
    constexpr void CentreOn(const XPointType & aPoint)
    {
        SetPosition(aPoint.x - C(XAxis::Half(GetWidth())), aPoint.y - C(XAxis::Half(GetHeight())));
    }
    // Slides the rectangle inside aRect without resizing it; on an axis where it is not
    // smaller than aRect it is centred instead.
    constexpr void ConstrainWithin(const XRectT & aRect)
    {
        XAxis::ConstrainWithin(itsLeft, itsRight, aRect.itsLeft, aRect.itsRight);
        XAxis::ConstrainWithin(itsTop, itsBottom, aRect.itsTop, aRect.itsBottom);
    }
    // The largest rectangle of this aspect ratio that fits aRect, centred on it; lengths are
    // truncated toward zero in the integer form. The height comes from width / ratio, so a zero
    // width, which has no ratio to divide by, is an internal error in the integer form.
    void ScaleTo(const XRectT & aRect)
    {
        if constexpr (XAxis::kInteger)
            XAssertText(GetWidth() != 0, "width != 0");
        double ratio = double(GetWidth()) / double(GetHeight());
        *this = aRect;
        SetHeight(ToLength(double(GetWidth()) / ratio));
        CentreOn(aRect);
        if (itsTop < aRect.itsTop)
        {
            *this = aRect;
            SetWidth(ToLength(double(GetHeight()) * ratio));
            CentreOn(aRect);
        }
    }
    // Scales about the centre: the new extent is extent * factor, truncated in the integer
    // form (a NaN or infinite factor is an internal error there), and the low edge moves by half
    // the change (signed, truncating).
    void ScaleBy(double aScaleX, double aScaleY)
    {
        XAxis::Resize(itsLeft, itsRight, ToLength(double(GetWidth()) * aScaleX));
        XAxis::Resize(itsTop, itsBottom, ToLength(double(GetHeight()) * aScaleY));
    }
    // Flags of XAlignFlags; the size is kept.
    constexpr void Align(const XRectT & aRect, UInt32 aFlags)
    {
        if (aFlags & kAlignTop)
            XAxis::MoveTo(itsTop, itsBottom, aRect.itsTop);
        else if (aFlags & kAlignBottom)
            XAxis::MoveTo(itsTop, itsBottom, aRect.itsBottom - C(GetHeight()));
        else if (aFlags & kAlignVCentre)
            CentreV(aRect);
        if (aFlags & kAlignLeft)
            XAxis::MoveTo(itsLeft, itsRight, aRect.itsLeft);
        else if (aFlags & kAlignRight)
            XAxis::MoveTo(itsLeft, itsRight, aRect.itsRight - C(GetWidth()));
        else if (aFlags & kAlignHCentre)
            CentreH(aRect);
    }
    // Low edges down and high edges up to multiples of the steps, by the remainder of
    // truncating division: negative coordinates move toward zero. A zero step is an internal
    // error in the integer form.
    void AlignByValue(C aStepX, C aStepY)
    {
        if constexpr (XAxis::kInteger)
            XAssertText(aStepX != 0 && aStepY != 0, "step != 0");
        XAxis::AlignByValue(itsLeft, itsRight, aStepX);
        XAxis::AlignByValue(itsTop, itsBottom, aStepY);
    }
    // Carries the rectangle from the frame aSource to the frame aDest. The integer form scales
    // outward (floor of the low edges, ceiling of the high edges, in double); the float form
    // does not round. Then normalises. A source with a zero extent has no scale: an internal
    // error, as is an integer edge that lands outside the 32-bit range.
    void Map(const XRectT & aSource, const XRectT & aDest)
    {
        XAssertText(aSource.GetWidth() != 0 && aSource.GetHeight() != 0, "source extent != 0");
        MapAxis(itsLeft, itsRight, aSource.itsLeft, aSource.GetWidth(), aDest.itsLeft, aDest.GetWidth());
        MapAxis(itsTop, itsBottom, aSource.itsTop, aSource.GetHeight(), aDest.itsTop, aDest.GetHeight());
    }
    // x' = (dest.width * (x - source.left)) / source.width + dest.left, and the same for y. The
    // integer form works in unsigned 32-bit arithmetic, so the product wraps and a point left of
    // the source gives a large value; the float form works in float. A source with a zero
    // extent is an internal error.
    static constexpr void MapPoint(XPointType & ioPoint, const XRectT & aSource, const XRectT & aDest)
    {
        XAssertText(aSource.GetWidth() != 0 && aSource.GetHeight() != 0, "source extent != 0");
        ioPoint.x = MapValue(ioPoint.x, aSource.itsLeft, aSource.GetWidth(), aDest.itsLeft, aDest.GetWidth());
        ioPoint.y = MapValue(ioPoint.y, aSource.itsTop, aSource.GetHeight(), aDest.itsTop, aDest.GetHeight());
    }
    // left and right become the smaller and the larger of -left and -right.
    constexpr void InvertX() { XAxis::Invert(itsLeft, itsRight); }
    constexpr void InvertY() { XAxis::Invert(itsTop, itsBottom); }

protected:
    // A computed length: truncated toward zero in the integer form (through a signed value,
    // so a negative result wraps instead of being undefined).
    static constexpr L ToLength(double aValue)
    {
        if constexpr (XAxis::kInteger)
            return L(XCheckedTruncate<SInt64>(aValue));
        else
            return L(aValue);
    }

    static void MapAxis(C & ioLow, C & ioHigh, C aSourceLow, L aSourceExtent, C aDestLow, L aDestExtent)
    {
        if constexpr (XAxis::kInteger)
        {
            // All in double up to the last step, which must land in the coordinate range.
            double scale = double(aDestExtent);
            double low = std::floor(double(SInt64(ioLow) - aSourceLow) * scale / double(aSourceExtent));
            double high = std::ceil(double(SInt64(ioHigh) - aSourceLow) * scale / double(aSourceExtent));
            if (low > high)
                std::swap(low, high);
            ioLow = XCheckedTruncate<C>(low + double(aDestLow));
            ioHigh = XCheckedTruncate<C>(high + double(aDestLow));
        }
        else
        {
            ioLow = (ioLow - aSourceLow) * aDestExtent / aSourceExtent;
            ioHigh = (ioHigh - aSourceLow) * aDestExtent / aSourceExtent;
            XAxis::Normalise(ioLow, ioHigh);
            ioLow += aDestLow;
            ioHigh += aDestLow;
        }
    }

    static constexpr C MapValue(C aValue, C aSourceLow, L aSourceExtent, C aDestLow, L aDestExtent)
    {
        if constexpr (XAxis::kInteger)
            return C(aDestExtent * (L(aValue) - L(aSourceLow)) / aSourceExtent + L(aDestLow));
        else
            return aDestExtent * (aValue - aSourceLow) / aSourceExtent + aDestLow;
    }

    C itsLeft = 0;
    C itsTop = 0;
    C itsBottom = 0;
    C itsRight = 0;
};
