#pragma once
// A 3-D point of any coordinate type: a plain value with no base class and no virtual call.
// X3DPoint (SInt32) and X3DPointF (float) derive from it.

#include <cmath>
#include <type_traits>

#include "XCheckedArithmetic.h"
#include "XPointT.h"
#include "XTypes.h"
#include "XVector.h"

template <typename T>
class X3DPointT
{
public:
    T x = 0;
    T y = 0;
    T z = 0;

    constexpr X3DPointT() = default;
    constexpr X3DPointT(T inX, T inY, T inZ) : x(inX), y(inY), z(inZ) {}
    // A 2-D point in the plane z (0 unless given).
    constexpr explicit X3DPointT(const XPointT<T> & aPoint, T inZ = 0)
        : x(aPoint.x), y(aPoint.y), z(inZ)
    {
    }

    constexpr T GetX() const { return x; }
    constexpr T GetY() const { return y; }
    constexpr T GetZ() const { return z; }
    constexpr void SetX(T inX) { x = inX; }
    constexpr void SetY(T inY) { y = inY; }
    constexpr void SetZ(T inZ) { z = inZ; }
    constexpr void SetXYZ(T inX, T inY, T inZ)
    {
        x = inX;
        y = inY;
        z = inZ;
    }

    // Projections onto the three planes. GetYZ gives z first: in the YZ plane z runs
    // horizontally.
    constexpr XPointT<T> GetXY() const { return XPointT<T>(x, y); }
    constexpr XPointT<T> GetXZ() const { return XPointT<T>(x, z); }
    constexpr XPointT<T> GetYZ() const { return XPointT<T>(z, y); }

    constexpr X3DPointT & operator+=(const X3DPointT & aPoint)
    {
        x += aPoint.x;
        y += aPoint.y;
        z += aPoint.z;
        return *this;
    }
    constexpr X3DPointT & operator-=(const X3DPointT & aPoint)
    {
        x -= aPoint.x;
        y -= aPoint.y;
        z -= aPoint.z;
        return *this;
    }
    constexpr X3DPointT & operator*=(const X3DPointT & aPoint)
    {
        x *= aPoint.x;
        y *= aPoint.y;
        z *= aPoint.z;
        return *this;
    }
    constexpr X3DPointT & operator/=(const X3DPointT & aPoint)
    {
        // All quotients first, so a refused division leaves the point as it was.
        X3DPointT quotient(XCheckedDivide(x, aPoint.x), XCheckedDivide(y, aPoint.y), XCheckedDivide(z, aPoint.z));
        return *this = quotient;
    }
    constexpr X3DPointT & operator*=(T aScalar)
    {
        x *= aScalar;
        y *= aScalar;
        z *= aScalar;
        return *this;
    }
    constexpr X3DPointT & operator/=(T aScalar)
    {
        return *this /= X3DPointT(aScalar, aScalar, aScalar);
    }
    constexpr X3DPointT operator+(const X3DPointT & aPoint) const { return X3DPointT(*this) += aPoint; }
    constexpr X3DPointT operator-(const X3DPointT & aPoint) const { return X3DPointT(*this) -= aPoint; }
    constexpr X3DPointT operator*(const X3DPointT & aPoint) const { return X3DPointT(*this) *= aPoint; }
    constexpr X3DPointT operator/(const X3DPointT & aPoint) const { return X3DPointT(*this) /= aPoint; }
    constexpr X3DPointT operator*(T aScalar) const { return X3DPointT(*this) *= aScalar; }
    constexpr X3DPointT operator/(T aScalar) const { return X3DPointT(*this) /= aScalar; }

    constexpr bool IsEqual(const X3DPointT & aPoint) const
    {
        return x == aPoint.x && y == aPoint.y && z == aPoint.z;
    }
    constexpr bool operator==(const X3DPointT & aPoint) const { return IsEqual(aPoint); }
    constexpr bool operator!=(const X3DPointT & aPoint) const { return !IsEqual(aPoint); }
    // Lexicographic: x first, then y, then z.
    constexpr bool operator<(const X3DPointT & aPoint) const
    {
        if (x != aPoint.x)
            return x < aPoint.x;
        if (y != aPoint.y)
            return y < aPoint.y;
        return z < aPoint.z;
    }
    constexpr bool operator>(const X3DPointT & aPoint) const { return aPoint < *this; }
    constexpr bool operator<=(const X3DPointT & aPoint) const { return !(aPoint < *this); }
    constexpr bool operator>=(const X3DPointT & aPoint) const { return !(*this < aPoint); }

    // Euclidean distance, computed in double and returned as float.
    float Distance(const X3DPointT & aPoint) const
    {
        double dx = double(x) - double(aPoint.x);
        double dy = double(y) - double(aPoint.y);
        double dz = double(z) - double(aPoint.z);
        return float(std::sqrt(dx * dx + dy * dy + dz * dz));
    }

    // The n points strictly between a and b at equal steps, (b - a) / (n + 1) per axis in float;
    // the integer form truncates each coordinate toward zero. The end points are not included.
    static void InterpolatePoints(const X3DPointT & a, const X3DPointT & b, UInt32 n,
                                  XVector<X3DPointT> & out)
    {
        out.clear();
        out.reserve(n);
        if (n == 0)
            return;
        float divisor = float(n) + 1.0f;
        float stepX = float(b.x - a.x) / divisor;
        float stepY = float(b.y - a.y) / divisor;
        float stepZ = float(b.z - a.z) / divisor;
        for (UInt32 i = 1; i <= n; ++i)
        {
            float f = float(i);
            out.push_back(X3DPointT(T(float(a.x) + stepX * f), T(float(a.y) + stepY * f),
                                    T(float(a.z) + stepZ * f)));
        }
    }
};

static_assert(std::is_trivially_copyable_v<X3DPointT<SInt32>>);
