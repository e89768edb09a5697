#pragma once
// A vector of at most kMaxSize floats, held in place: it allocates nothing and is copied by
// value. The companion of XMiniSquareMatrix, e.g. one pixel of up to 8 channels in spectral
// unmixing. Broken preconditions (sizes, indices) are internal errors.

#include "XTypes.h"

class XMiniSquareMatrix;

class XMiniVector
{
public:
    static constexpr SInt32 kMaxSize = 8;

    // A vector of theSize zeros; theSize at most kMaxSize.
    explicit XMiniVector(SInt32 theSize = 0);

    SInt32 GetSize() const { return itsSize; }
    float & operator[](SInt32 idx);
    float operator[](SInt32 idx) const;

    XMiniVector & operator*=(float aScale);

    // The sum of squares (not its root: see GetLength).
    float GetMagnitude() const;
    // The Euclidean length, the root of GetMagnitude.
    float GetLength() const;
    // The sum of this[i]^2 / anOther[i], a chi-squared-like measure against anOther.
    float GetNormalisedMagnitude(const XMiniVector & anOther) const;
    // Replaces the vector by aMatrix times it, in float; the sizes must agree.
    void PreMultiply(const XMiniSquareMatrix & aMatrix);

private:
    SInt32 itsSize;
    float itsValues[kMaxSize];
};
