#pragma once
// A box of N dimensions as a plain value: its origin and its size, each an XMathVector.
// XMathRectS3 (three signed 32-bit integers each) and XMathRectF3 (three floats) are the forms
// in use. Nothing is normalised: a size below zero is kept as it is.

#include "XMathVector.h"

template <typename T, int N>
class XMathRect
{
public:
    using XVector = XMathVector<T, N>;

    constexpr XMathRect() = default;
    constexpr XMathRect(const XVector & anOrigin, const XVector & aSize) : itsOrigin(anOrigin), itsSize(aSize) {}

    constexpr const XVector & GetOrigin() const { return itsOrigin; }
    constexpr const XVector & GetSize() const { return itsSize; }
    constexpr void SetOrigin(const XVector & anOrigin) { itsOrigin = anOrigin; }
    constexpr void SetSize(const XVector & aSize) { itsSize = aSize; }

    friend constexpr bool operator==(const XMathRect & a, const XMathRect & b)
    {
        return a.itsOrigin == b.itsOrigin && a.itsSize == b.itsSize;
    }

private:
    XVector itsOrigin;
    XVector itsSize;
};

using XMathRectS3 = XMathRect<SInt32, 3>;
using XMathRectF3 = XMathRect<float, 3>;
