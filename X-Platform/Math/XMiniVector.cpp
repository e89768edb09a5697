#include "XMiniVector.h"

#include <cmath>

#include "XAssert.h"
#include "XMiniSquareMatrix.h"

XMiniVector::XMiniVector(SInt32 theSize) : itsSize(theSize), itsValues{}
{
    XAssert(theSize <= kMaxSize);
    XAssertText(theSize >= 0, "theSize >= 0");
}

float & XMiniVector::operator[](SInt32 idx)
{
    XAssertText(idx >= 0 && idx < itsSize, "idx<size");
    return itsValues[idx];
}

float XMiniVector::operator[](SInt32 idx) const
{
    XAssertText(idx >= 0 && idx < itsSize, "idx<size");
    return itsValues[idx];
}

XMiniVector & XMiniVector::operator*=(float aScale)
{
    for (SInt32 i = 0; i < itsSize; ++i)
        itsValues[i] *= aScale;
    return *this;
}

float XMiniVector::GetMagnitude() const
{
    float sum = 0.f;
    for (SInt32 i = 0; i < itsSize; ++i)
        sum += itsValues[i] * itsValues[i];
    return sum;
}

float XMiniVector::GetLength() const
{
    return std::sqrt(GetMagnitude());
}

float XMiniVector::GetNormalisedMagnitude(const XMiniVector & anOther) const
{
    XAssert(anOther.GetSize() == GetSize());
    float sum = 0.f;
    for (SInt32 i = 0; i < itsSize; ++i)
        sum += itsValues[i] * itsValues[i] / anOther.itsValues[i];
    return sum;
}

void XMiniVector::PreMultiply(const XMiniSquareMatrix & aMatrix)
{
    XAssertText(aMatrix.GetSize() == GetSize(), "matrix.GetSize() == GetSize()");
    float product[kMaxSize];
    for (SInt32 r = 0; r < itsSize; ++r)
    {
        float sum = 0.f;
        for (SInt32 c = 0; c < itsSize; ++c)
            sum += aMatrix.Get(r, c) * itsValues[c];
        product[r] = sum;
    }
    for (SInt32 r = 0; r < itsSize; ++r)
        itsValues[r] = product[r];
}
