#pragma once
// A 2-D point of any coordinate type: a plain value with no base class and no virtual call.
// XPoint (SInt32) and XPointF (float) derive from it. Integer division truncates toward zero; a
// zero divisor (or the smallest value over -1) is an internal error, where the float form gives
// an infinity or NaN.

#include <cmath>
#include <type_traits>

#include "XCheckedArithmetic.h"
#include "XTypes.h"
#include "XVector.h"

template <typename T>
class XPointT
{
public:
    T x = 0;
    T y = 0;

    constexpr XPointT() = default;
    constexpr XPointT(T inX, T inY) : x(inX), y(inY) {}

    constexpr T GetX() const { return x; }
    constexpr T GetY() const { return y; }
    constexpr void SetX(T inX) { x = inX; }
    constexpr void SetY(T inY) { y = inY; }
    constexpr void SetXY(T inX, T inY)
    {
        x = inX;
        y = inY;
    }

    constexpr void Offset(T dx, T dy)
    {
        x += dx;
        y += dy;
    }
    constexpr void Offset(const XPointT & aPoint) { Offset(aPoint.x, aPoint.y); }

    constexpr XPointT & operator+=(const XPointT & aPoint)
    {
        x += aPoint.x;
        y += aPoint.y;
        return *this;
    }
    constexpr XPointT & operator-=(const XPointT & aPoint)
    {
        x -= aPoint.x;
        y -= aPoint.y;
        return *this;
    }
    constexpr XPointT & operator*=(const XPointT & aPoint)
    {
        x *= aPoint.x;
        y *= aPoint.y;
        return *this;
    }
    constexpr XPointT & operator/=(const XPointT & aPoint)
    {
        // Both quotients first, so a refused division leaves the point as it was.
        XPointT quotient(XCheckedDivide(x, aPoint.x), XCheckedDivide(y, aPoint.y));
        return *this = quotient;
    }
    constexpr XPointT & operator*=(T aScalar)
    {
        x *= aScalar;
        y *= aScalar;
        return *this;
    }
    constexpr XPointT & operator/=(T aScalar)
    {
        return *this /= XPointT(aScalar, aScalar);
    }
    constexpr XPointT operator+(const XPointT & aPoint) const { return XPointT(*this) += aPoint; }
    constexpr XPointT operator-(const XPointT & aPoint) const { return XPointT(*this) -= aPoint; }
    constexpr XPointT operator*(const XPointT & aPoint) const { return XPointT(*this) *= aPoint; }
    constexpr XPointT operator/(const XPointT & aPoint) const { return XPointT(*this) /= aPoint; }
    constexpr XPointT operator*(T aScalar) const { return XPointT(*this) *= aScalar; }
    constexpr XPointT operator/(T aScalar) const { return XPointT(*this) /= aScalar; }

    constexpr bool IsEqual(const XPointT & aPoint) const { return x == aPoint.x && y == aPoint.y; }
    constexpr bool operator==(const XPointT & aPoint) const { return IsEqual(aPoint); }
    constexpr bool operator!=(const XPointT & aPoint) const { return !IsEqual(aPoint); }
    // Lexicographic: x first, then y.
    constexpr bool operator<(const XPointT & aPoint) const
    {
        return x < aPoint.x || (x == aPoint.x && y < aPoint.y);
    }
    constexpr bool operator>(const XPointT & aPoint) const { return aPoint < *this; }
    constexpr bool operator<=(const XPointT & aPoint) const { return !(aPoint < *this); }
    constexpr bool operator>=(const XPointT & aPoint) const { return !(*this < aPoint); }

    // Euclidean distance, computed in double.
    double Distance(const XPointT & aPoint) const
    {
        double dx = double(x) - double(aPoint.x);
        double dy = double(y) - double(aPoint.y);
        return std::sqrt(dx * dx + dy * dy);
    }

    // Rotates about the origin by aRadians, in double; the integer form truncates each result
    // toward zero, and a result beyond its range (or a NaN angle) is an internal error.
    void Rotate(double aRadians)
    {
        double c = std::cos(aRadians);
        double s = std::sin(aRadians);
        double rx = double(x) * c - double(y) * s;
        double ry = double(x) * s + double(y) * c;
        if constexpr (std::is_integral_v<T>)
        {
            x = XCheckedTruncate<T>(rx);
            y = XCheckedTruncate<T>(ry);
        }
        else
        {
            x = T(rx);
            y = T(ry);
        }
    }

    // The n points strictly between a and b at equal steps, (b - a) / (n + 1) per axis in float;
    // the integer form truncates each coordinate toward zero. The end points are not included.
    static void InterpolatePoints(const XPointT & a, const XPointT & b, UInt32 n,
                                  XVector<XPointT> & out)
    {
        out.clear();
        out.reserve(n);
        if (n == 0)
            return;
        float divisor = float(n) + 1.0f;
        float stepX = float(b.x - a.x) / divisor;
        float stepY = float(b.y - a.y) / divisor;
        for (UInt32 i = 1; i <= n; ++i)
            out.push_back(XPointT(T(float(a.x) + stepX * float(i)), T(float(a.y) + stepY * float(i))));
    }
};

static_assert(std::is_trivially_copyable_v<XPointT<SInt32>>);
