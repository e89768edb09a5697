#pragma once
// Walks the points of a rectangle, along rows (x fastest) or down columns (y fastest).
//
// The walk has no end mark: GetNext at the last point returns it again and stays, GetPrevious
// at the first point likewise. A caller compares with GetLast (or GetFirst) or counts.

#include "XPoint.h"
#include "XRect.h"
#include "XTypes.h"

enum XRectIteratorMode : UInt32
{
    kIterateRows = 0,    // x increases fastest
    kIterateColumns = 1  // y increases fastest (any value but 0 walks columns)
};

class XRectIterator : public XRect
{
public:
    // The walk starts at the rectangle's top-left corner.
    XRectIterator(const XRect & aRect, XRectIteratorMode aMode = kIterateRows);

    XRectIterator * Clone() const override { return new XRectIterator(*this); }

    XRectIteratorMode GetMode() const { return itsMode; }
    const XPoint & GetCurrent() const { return itsCurrent; }

    // (left, top) and (right - 1, bottom - 1); neither moves the walk.
    XPoint GetFirst() const { return XPoint(itsLeft, itsTop); }
    XPoint GetLast() const { return XPoint(itsRight - 1, itsBottom - 1); }

    // Returns the current point, then steps forward (or back); at the last (or first) point it
    // stays.
    XPoint GetNext();
    XPoint GetPrevious();

    // Moves to the point clamped into the rectangle as ConstrainPoint does.
    void MoveTo(const XPoint & aPoint);
    void MoveToStart() { MoveTo(GetFirst()); }
    void MoveToEnd() { MoveTo(GetLast()); }

private:
    bool WalksRows() const { return itsMode == kIterateRows; }

    XPoint itsCurrent;
    XRectIteratorMode itsMode;
};
