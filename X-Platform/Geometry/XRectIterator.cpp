#include "XRectIterator.h"

XRectIterator::XRectIterator(const XRect & aRect, XRectIteratorMode aMode)
    : XRect(aRect), itsCurrent(aRect.GetLeft(), aRect.GetTop()), itsMode(aMode)
{
}

XPoint XRectIterator::GetNext()
{
    XPoint current = itsCurrent;
    if (current == GetLast())
        return current;
    if (WalksRows())
    {
        if (++itsCurrent.x >= itsRight)
        {
            itsCurrent.x = itsLeft;
            ++itsCurrent.y;
        }
    }
    else if (++itsCurrent.y >= itsBottom)
    {
        itsCurrent.y = itsTop;
        ++itsCurrent.x;
    }
    return current;
}

XPoint XRectIterator::GetPrevious()
{
    XPoint current = itsCurrent;
    if (current == GetFirst())
        return current;
    if (WalksRows())
    {
        if (--itsCurrent.x < itsLeft)
        {
            itsCurrent.x = itsRight - 1;
            --itsCurrent.y;
        }
    }
    else if (--itsCurrent.y < itsTop)
    {
        itsCurrent.y = itsBottom - 1;
        --itsCurrent.x;
    }
    return current;
}

void XRectIterator::MoveTo(const XPoint & aPoint)
{
    itsCurrent = aPoint;
    ConstrainPoint(itsCurrent);
}
