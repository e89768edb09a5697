#include "XVectorMathToolImp.h"

#include <cmath>

#include "XAssert.h"

namespace
{
// o[i] = aFunction(in[i]...) for i < n. Every input is read before the output is written, so
// an input may be the output.
template <typename Function, typename... Inputs>
inline void Map(float * o, UInt64 n, Function aFunction, const Inputs *... in)
{
    for (UInt64 i = 0; i < n; ++i)
        o[i] = aFunction(in[i]...);
}

// The sum of aTerm(i) for i < n, in the accumulator type Sum.
template <typename Sum, typename Term>
inline Sum Accumulate(UInt64 n, Term aTerm)
{
    Sum sum = 0;
    for (UInt64 i = 0; i < n; ++i)
        sum += aTerm(i);
    return sum;
}

// The same loop over interleaved complex values: aFunction(re, im, ...) gives the result's
// real and imaginary parts.
template <typename Function>
inline void MapComplex(const float * a, const float * b, float * o, UInt64 n, Function aFunction)
{
    for (UInt64 i = 0; i < 2 * n; i += 2)
    {
        const float ar = a[i], ai = a[i + 1];
        const float br = b[i], bi = b[i + 1];
        aFunction(ar, ai, br, bi, o[i], o[i + 1]);
    }
}
} // namespace

XVectorMathToolImp::~XVectorMathToolImp() = default;

void XVectorMathToolImp::VectorAdd(const float * a, float s, float * o, UInt64 n)
{
    Map(o, n, [s](float x) { return x + s; }, a);
}

void XVectorMathToolImp::VectorAdd(const float * a, const float * b, float * o, UInt64 n)
{
    Map(o, n, [](float x, float y) { return x + y; }, a, b);
}

void XVectorMathToolImp::VectorSubtract(const float * a, const float * b, float * o, UInt64 n)
{
    Map(o, n, [](float x, float y) { return x - y; }, a, b);
}

void XVectorMathToolImp::VectorMultiply(const float * a, float s, float * o, UInt64 n)
{
    Map(o, n, [s](float x) { return x * s; }, a);
}

void XVectorMathToolImp::VectorMultiply(const float * a, const float * b, float * o, UInt64 n)
{
    Map(o, n, [](float x, float y) { return x * y; }, a, b);
}

void XVectorMathToolImp::VectorComplexDivide(const float * a, const float * b, float * o,
                                             UInt64 n)
{
    MapComplex(a, b, o, n,
               [](float ar, float ai, float br, float bi, float & outRe, float & outIm) {
                   const float d = br * br + bi * bi;
                   outRe = (ar * br + ai * bi) / d;
                   outIm = (ai * br - ar * bi) / d;
               });
}

void XVectorMathToolImp::VectorComplexMultiply(const float * a, const float * b, float * o,
                                               UInt64 n)
{
    MapComplex(a, b, o, n,
               [](float ar, float ai, float br, float bi, float & outRe, float & outIm) {
                   outRe = ar * br - ai * bi;
                   outIm = ar * bi + ai * br;
               });
}

void XVectorMathToolImp::VectorComplexMagnitude(const float * a, float * o, UInt64 n)
{
    MapComplex(a, a, o, n, [](float ar, float ai, float, float, float & outRe, float & outIm) {
        outRe = ar * ar + ai * ai;
        outIm = 0.f;
    });
}

void XVectorMathToolImp::VectorComplexReciprocal(const float * a, float * o, UInt64 n)
{
    MapComplex(a, a, o, n, [](float ar, float ai, float, float, float & outRe, float & outIm) {
        const float d = ar * ar + ai * ai;
        outRe = ar / d;
        outIm = -ai / d;
    });
}

void XVectorMathToolImp::VectorDivide(const float * a, const float * b, float * o, UInt64 n)
{
    Map(o, n, [](float x, float y) { return x / y; }, a, b);
}

void XVectorMathToolImp::VectorMultiplyAndDivide(const float * a, const float * b,
                                                 const float * c, float * o, UInt64 n)
{
    Map(o, n, [](float x, float y, float z) { return x * y / z; }, a, b, c);
}

void XVectorMathToolImp::VectorMultiplyAndDivide(const float * a, float s, const float * b,
                                                 float * o, UInt64 n)
{
    Map(o, n, [s](float x, float y) { return s * x / y; }, a, b);
}

void XVectorMathToolImp::VectorMultiplyAndDivide(const float * a, const float * b,
                                                 float aScalar, float * o, UInt64 n)
{
    XAssert(aScalar != 0.f);
    Map(o, n, [aScalar](float x, float y) { return x * y / aScalar; }, a, b);
}

void XVectorMathToolImp::VectorSquare(const float * a, float * o, UInt64 n)
{
    Map(o, n, [](float x) { return x * x; }, a);
}

float XVectorMathToolImp::VectorDotProduct(const float * a, const float * b, UInt64 n)
{
    return Accumulate<float>(n, [=](UInt64 i) { return a[i] * b[i]; });
}

double XVectorMathToolImp::VectorDotProduct64(const float * a, const float * b, UInt64 n)
{
    return Accumulate<double>(n, [=](UInt64 i) { return a[i] * b[i]; });
}

void XVectorMathToolImp::VectorAddAndMultiply(const float * a, const float * b, const float * c,
                                              float * o, UInt64 n)
{
    Map(o, n, [](float x, float y, float z) { return (x + y) * z; }, a, b, c);
}

void XVectorMathToolImp::VectorFillReal(float s, float * o, UInt64 n)
{
    for (UInt64 i = 0; i < n; ++i)
        o[i] = s;
}

void XVectorMathToolImp::VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n)
{
    XAssert(aBase > 0.f);
    const float scale = float(1.0 / double(FastLn(aBase)));
    Map(o, n, [scale](float x) { return FastLn(x) * scale; }, a);
}

void XVectorMathToolImp::VectorSqrt(const float * a, float * o, UInt64 n)
{
    Map(o, n, [](float x) { return std::sqrt(x); }, a);
}

void XVectorMathToolImp::VectorReciprocalSqrt(const float * a, float * o, UInt64 n)
{
    Map(o, n, [](float x) { return float(1.0 / double(std::sqrt(x))); }, a);
}

float XVectorMathToolImp::VectorSum(const float * a, UInt64 n)
{
    return Accumulate<float>(n, [=](UInt64 i) { return a[i]; });
}

double XVectorMathToolImp::VectorSum64(const float * a, UInt64 n)
{
    return Accumulate<double>(n, [=](UInt64 i) { return a[i]; });
}

float XVectorMathToolImp::VectorFindMaxValue(const float * a, UInt64 n)
{
    float largest = a[0];
    for (UInt64 i = 1; i < n; ++i)
        largest = a[i] > largest ? a[i] : largest;
    return largest;
}

float XVectorMathToolImp::VectorFindMinValue(const float * a, UInt64 n)
{
    float smallest = a[0];
    for (UInt64 i = 1; i < n; ++i)
        smallest = a[i] < smallest ? a[i] : smallest;
    return smallest;
}

void XVectorMathToolImp::VectorFindMinMaxValue(const float * a, float & outMin, float & outMax,
                                               UInt64 n)
{
    outMin = XVectorMathToolImp::VectorFindMinValue(a, n);
    outMax = XVectorMathToolImp::VectorFindMaxValue(a, n);
}

void XVectorMathToolImp::VectorReciprocal(const float * a, float * o, UInt64 n)
{
    Map(o, n, [](float x) { return float(1.0 / double(x)); }, a);
}

float XVectorMathToolImp::VectorDotProductDivide(const float * a, const float * b,
                                                 const float * c, UInt64 n)
{
    return Accumulate<float>(n, [=](UInt64 i) { return a[i] * b[i] / c[i]; });
}

double XVectorMathToolImp::VectorDotProductDivide64(const float * a, const float * b,
                                                    const float * c, UInt64 n)
{
    return Accumulate<double>(n, [=](UInt64 i) { return a[i] * b[i] / c[i]; });
}

void XVectorMathToolImp::VectorClampBelow(const float * a, float * o, float s, UInt64 n)
{
    Map(o, n, [s](float x) { return x > s ? x : s; }, a);
}

void XVectorMathToolImp::VectorClampAbove(const float * a, float * o, float s, UInt64 n)
{
    Map(o, n, [s](float x) { return x < s ? x : s; }, a);
}

void XVectorMathToolImp::VectorWeightedEntropy(const float * a, float & outEntropy,
                                               float & outWeight, UInt64 n)
{
    outEntropy = Accumulate<float>(n, [=](UInt64 i) { return FastLn(a[i]) * a[i]; });
    outWeight = XVectorMathToolImp::VectorSum(a, n);
}

void XVectorMathToolImp::VectorWeightedEntropy64(const float * a, double & outEntropy,
                                                 double & outWeight, UInt64 n)
{
    outEntropy = Accumulate<double>(n, [=](UInt64 i) { return std::log(a[i]) * a[i]; });
    outWeight = XVectorMathToolImp::VectorSum64(a, n);
}

float XVectorMathToolImp::VectorChiSquared(const float * a, const float * b, const float * c,
                                           UInt64 n)
{
    return Accumulate<float>(n, [=](UInt64 i) {
        const float d = a[i] - b[i];
        return d * d / c[i];
    });
}

double XVectorMathToolImp::VectorChiSquared64(const float * a, const float * b, const float * c,
                                              UInt64 n)
{
    return Accumulate<double>(n, [=](UInt64 i) {
        const float d = a[i] - b[i];
        return d * d / c[i];
    });
}

void XVectorMathToolImp::VectorScalarSubtract(const float * a, const float * b, float s, float t,
                                              float * o, UInt64 n)
{
    Map(o, n, [s, t](float x, float y) { return s * x - t * y; }, a, b);
}

float XVectorMathToolImp::VectorSquareMultiplySum(const float * a, const float * b, UInt64 n)
{
    return Accumulate<float>(n, [=](UInt64 i) { return a[i] * a[i] * b[i]; });
}

double XVectorMathToolImp::VectorSquareMultiplySum64(const float * a, const float * b, UInt64 n)
{
    return Accumulate<double>(n, [=](UInt64 i) { return a[i] * a[i] * b[i]; });
}

void XVectorMathToolImp::VectorSearchDerivatives(const float * a, const float * b,
                                                 const float * c, float s, float & outD1,
                                                 float & outD2, UInt64 n)
{
    outD1 = Accumulate<float>(n, [=](UInt64 i) { return a[i] * b[i]; });
    outD2 = Accumulate<float>(n, [=](UInt64 i) { return a[i] * VectorCalcGradS(c[i], s); });
}

void XVectorMathToolImp::VectorSearchDerivatives64(const float * a, const float * b,
                                                   const float * c, double s, double & outD1,
                                                   double & outD2, UInt64 n)
{
    const float scale = float(s);
    outD1 = Accumulate<double>(n, [=](UInt64 i) { return a[i] * b[i]; });
    outD2 = Accumulate<double>(n, [=](UInt64 i) { return a[i] * VectorCalcGradS(c[i], scale); });
}

namespace
{
// t = g(a, s); o = a * t; the sum of o * t, in the accumulator type Sum.
template <typename Sum, typename Gradient>
inline Sum SearchVec1(const float * a, float * o, UInt64 n, Gradient aGradient)
{
    Sum sum = 0;
    for (UInt64 i = 0; i < n; ++i)
    {
        const float x = a[i];
        const float t = aGradient(x);
        const float out = x * t;
        o[i] = out;
        sum += out * t;
    }
    return sum;
}

// o = a * b; the sum of o * a, in the accumulator type Sum.
template <typename Sum>
inline Sum SearchVec2(const float * a, const float * b, float * o, UInt64 n)
{
    Sum sum = 0;
    for (UInt64 i = 0; i < n; ++i)
    {
        const float x = a[i];
        const float out = x * b[i];
        o[i] = out;
        sum += out * x;
    }
    return sum;
}

// t = g(b, s); o1 = b * t; o2 = a * b; the sums of o1 * t and o2 * a, in the type Sum. One
// pass, both inputs read before either output is written, so that any input may be either
// output.
template <typename Sum, typename Gradient>
inline void SearchVecs1And2(const float * a, const float * b, float * o1, float * o2, UInt64 n,
                            Gradient aGradient, Sum & outQ1, Sum & outQ2)
{
    Sum q1 = 0, q2 = 0;
    for (UInt64 i = 0; i < n; ++i)
    {
        const float x = a[i], y = b[i];
        const float t = aGradient(y);
        const float out1 = y * t, out2 = x * y;
        o1[i] = out1;
        o2[i] = out2;
        q1 += out1 * t;
        q2 += out2 * x;
    }
    outQ1 = q1;
    outQ2 = q2;
}
} // namespace

void XVectorMathToolImp::VectorCalcSearchVec1(const float * a, float * o, float s, float & outQ,
                                              UInt64 n)
{
    outQ = SearchVec1<float>(a, o, n, [s](float x) { return VectorCalcGradS(x, s); });
}

void XVectorMathToolImp::VectorCalcSearchVec1_64(const float * a, float * o, float s,
                                                 double & outQ, UInt64 n)
{
    outQ = SearchVec1<double>(a, o, n, [s](float x) { return VectorCalcGradS(x, s); });
}

void XVectorMathToolImp::VectorCalcSearchVec2(const float * a, const float * b, float * o,
                                              float & outQ, UInt64 n)
{
    outQ = SearchVec2<float>(a, b, o, n);
}

void XVectorMathToolImp::VectorCalcSearchVec2_64(const float * a, const float * b, float * o,
                                                 double & outQ, UInt64 n)
{
    outQ = SearchVec2<double>(a, b, o, n);
}

void XVectorMathToolImp::VectorCalcSearchVecs1And2(const float * a, const float * b, float * o1,
                                                   float * o2, float s, float & outQ1,
                                                   float & outQ2, UInt64 n)
{
    SearchVecs1And2(a, b, o1, o2, n, [s](float y) { return VectorCalcGradS(y, s); }, outQ1,
                    outQ2);
}

void XVectorMathToolImp::VectorCalcSearchVecs1And2_64(const float * a, const float * b,
                                                      float * o1, float * o2, float s,
                                                      double & outQ1, double & outQ2, UInt64 n)
{
    SearchVecs1And2(a, b, o1, o2, n, [s](float y) { return VectorCalcGradS(y, s); }, outQ1,
                    outQ2);
}

void XVectorMathToolImp::CheckTransformDimension(SInt32 someDimension,
                                                 const XMiniSquareMatrix & aMatrix)
{
    XAssertText(someDimension >= 0 && someDimension <= aMatrix.GetSize(),
                "dimension <= matrix.GetSize()");
}

void XVectorMathToolImp::VectorTransform(float ** somePlanes, SInt32 someDimension,
                                         XMiniSquareMatrix aMatrix, UInt64 n)
{
    CheckTransformDimension(someDimension, aMatrix);
    constexpr SInt32 kMax = XMiniSquareMatrix::kMaxSize;
    float m[kMax][kMax];
    for (SInt32 r = 0; r < someDimension; ++r)
        for (SInt32 c = 0; c < someDimension; ++c)
            m[r][c] = aMatrix.Get(r, c);
    for (UInt64 i = 0; i < n; ++i)
    {
        float x[kMax];
        for (SInt32 c = 0; c < someDimension; ++c)
            x[c] = somePlanes[c][i];
        for (SInt32 r = 0; r < someDimension; ++r)
        {
            float sum = m[r][0] * x[0];
            for (SInt32 c = 1; c < someDimension; ++c)
                sum += m[r][c] * x[c];
            somePlanes[r][i] = sum;
        }
    }
    for (SInt32 c = 0; c < someDimension; ++c)
        somePlanes[c] += n;
}
