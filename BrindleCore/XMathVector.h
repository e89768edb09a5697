#pragma once
// A small fixed-size vector of numbers, a plain value: XMathVectorF3 (three floats),
// XMathVectorDF3 (three doubles) and XMathVectorS3 (three signed 32-bit integers) are the
// forms in use. Arithmetic is element by element in T.

#include <cstddef>

#include "XAssert.h"
#include "XTypes.h"

template <typename T, int N>
class XMathVector
{
public:
    constexpr XMathVector() = default;
    constexpr XMathVector(T aX, T aY, T aZ) requires(N == 3) : itsElements{aX, aY, aZ} {}

    constexpr T & operator[](int anIndex) { return itsElements[anIndex]; }
    constexpr const T & operator[](int anIndex) const { return itsElements[anIndex]; }
    constexpr T GetX() const { return itsElements[0]; }
    constexpr T GetY() const { return itsElements[1]; }
    constexpr T GetZ() const requires(N >= 3) { return itsElements[2]; }

    constexpr XMathVector & operator+=(const XMathVector & aVector) { return Apply(aVector, [](T & a, T b) { a += b; }); }
    constexpr XMathVector & operator-=(const XMathVector & aVector) { return Apply(aVector, [](T & a, T b) { a -= b; }); }
    constexpr XMathVector & operator*=(T aScalar)
    {
        for (T & element : itsElements)
            element *= aScalar;
        return *this;
    }
    friend constexpr XMathVector operator+(XMathVector a, const XMathVector & b) { return a += b; }
    friend constexpr XMathVector operator-(XMathVector a, const XMathVector & b) { return a -= b; }
    friend constexpr XMathVector operator*(XMathVector a, T aScalar) { return a *= aScalar; }
    friend constexpr bool operator==(const XMathVector & a, const XMathVector & b)
    {
        for (int i = 0; i < N; ++i)
            if (!(a.itsElements[i] == b.itsElements[i]))
                return false;
        return true;
    }

    constexpr T GetElementMin() const
    {
        T result = itsElements[0];
        for (T element : itsElements)
            result = element < result ? element : result;
        return result;
    }
    constexpr T GetElementMax() const
    {
        T result = itsElements[0];
        for (T element : itsElements)
            result = element > result ? element : result;
        return result;
    }
    // Bit i set where element i is below zero.
    constexpr UInt32 GetLTBitVector() const
    {
        UInt32 bits = 0;
        for (int i = 0; i < N; ++i)
            if (itsElements[i] < T(0))
                bits |= 1u << i;
        return bits;
    }

private:
    template <typename Operation>
    constexpr XMathVector & Apply(const XMathVector & aVector, Operation anOperation)
    {
        for (int i = 0; i < N; ++i)
            anOperation(itsElements[i], aVector.itsElements[i]);
        return *this;
    }

    T itsElements[N] = {};
};

using XMathVectorF3 = XMathVector<float, 3>;
using XMathVectorDF3 = XMathVector<double, 3>;
using XMathVectorS3 = XMathVector<SInt32, 3>;
