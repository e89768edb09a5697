#pragma once
// The portable implementation of the vector kernels behind XVectorMathTool, and the base of
// the processor-specific ones (WSSEVectorMathToolImp, WSSE2VectorMathToolImp), which override
// what they speed up and fall back on these loops for the rest.
//
// A vector is a pointer to n consecutive floats; complex vectors hold interleaved (re, im)
// pairs and n counts complex values. a, b, c are inputs, o the output, s and t scalars. Every
// element-wise operation may have its inputs and output be the same array (element for
// element). Sums in float accumulate in float, the ...64 forms in double. Divisions by zero,
// logarithms of non-positive values and the like yield what the floating-point unit gives.
//
// The virtual operations are declared in the order of the library's table of operations,
// numbered below.
//
// The logarithm, entropy and search kernels (19, 32, 33, 39 to 42, 45, 46) give these loops'
// bits on every implementation, and so does every ...64 operation on WSSEVectorMathToolImp.
// So no body here calls a virtual operation: a processor's VectorSum or VectorDotProduct sums
// in another order, and a call through it would change the last bits of those kernels. Reuse
// a loop of this class by its qualified name (XVectorMathToolImp::VectorSum).

#include <bit>
#include <cstdint>

#include "XMiniSquareMatrix.h"
#include "XTypes.h"

class XVectorMathToolImp
{
public:
    XVectorMathToolImp() = default;
    XVectorMathToolImp(const XVectorMathToolImp &) = delete;
    XVectorMathToolImp & operator=(const XVectorMathToolImp &) = delete;
    virtual ~XVectorMathToolImp();

    // The cheap logarithm of the entropy kernels: log2 interpolated linearly between powers
    // of two (exact at powers of two only), times the single-precision ln 2. With b the bits
    // of x: E = ((b >> 23) & 255) - 128, m the float of bits (b & 0x807FFFFF) + 0x3F800000 (x's
    // mantissa with exponent 127, sign kept), fastln(x) = (E + m) * 0.6931472f. Callers
    // compare results across implementations, so this must not be replaced by logf.
    static float FastLn(float x)
    {
        const UInt32 bits = std::bit_cast<UInt32>(x);
        const float exponent = float(SInt32((bits >> 23) & 255u) - 128);
        const float mantissa = std::bit_cast<float>((bits & 0x807FFFFFu) + 0x3F800000u);
        return (exponent + mantissa) * 0.6931472f;
    }

    // 1 o = a + s
    virtual void VectorAdd(const float * a, float s, float * o, UInt64 n);
    // 2 o = a + b
    virtual void VectorAdd(const float * a, const float * b, float * o, UInt64 n);
    // 3 o = a - b
    virtual void VectorSubtract(const float * a, const float * b, float * o, UInt64 n);
    // 4 o = a * s
    virtual void VectorMultiply(const float * a, float s, float * o, UInt64 n);
    // 5 o = a * b
    virtual void VectorMultiply(const float * a, const float * b, float * o, UInt64 n);
    // 6 complex o = a / b
    virtual void VectorComplexDivide(const float * a, const float * b, float * o, UInt64 n);
    // 7 complex o = a * b
    virtual void VectorComplexMultiply(const float * a, const float * b, float * o, UInt64 n);
    // 8 complex o = a * conj(a): the squared magnitude and a zero imaginary part
    virtual void VectorComplexMagnitude(const float * a, float * o, UInt64 n);
    // 9 complex o = 1 / a = conj(a) / |a|^2
    virtual void VectorComplexReciprocal(const float * a, float * o, UInt64 n);
    // 10 o = a / b
    virtual void VectorDivide(const float * a, const float * b, float * o, UInt64 n);
    // 11 o = a * b / c
    virtual void VectorMultiplyAndDivide(const float * a, const float * b, const float * c,
                                         float * o, UInt64 n);
    // 12 o = s * a / b
    virtual void VectorMultiplyAndDivide(const float * a, float s, const float * b, float * o,
                                         UInt64 n);
    // 13 o = a * b / s; s must not be zero (asserted here, not in the processor forms)
    virtual void VectorMultiplyAndDivide(const float * a, const float * b, float aScalar,
                                         float * o, UInt64 n);
    // 14 o = a * a
    virtual void VectorSquare(const float * a, float * o, UInt64 n);
    // 15 sum(a * b)
    virtual float VectorDotProduct(const float * a, const float * b, UInt64 n);
    // 16 sum(a * b), each product in float, the sum in double
    virtual double VectorDotProduct64(const float * a, const float * b, UInt64 n);
    // 17 o = (a + b) * c
    virtual void VectorAddAndMultiply(const float * a, const float * b, const float * c,
                                      float * o, UInt64 n);
    // 18 o = s
    virtual void VectorFillReal(float s, float * o, UInt64 n);
    // 19 o = fastln(a) * (1 / fastln(aBase)), the reciprocal formed in double; aBase > 0
    virtual void VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n);
    // 20 o = sqrt(a)
    virtual void VectorSqrt(const float * a, float * o, UInt64 n);
    // 21 o = 1 / sqrt(a), the division in double
    virtual void VectorReciprocalSqrt(const float * a, float * o, UInt64 n);
    // 22 sum(a)
    virtual float VectorSum(const float * a, UInt64 n);
    // 23 sum(a) in double
    virtual double VectorSum64(const float * a, UInt64 n);
    // 24, 25 The largest and smallest element. They start from a[0], which is read even when
    // n is 0 (the pointer must then still be valid).
    virtual float VectorFindMaxValue(const float * a, UInt64 n);
    virtual float VectorFindMinValue(const float * a, UInt64 n);
    // 26 both at once
    virtual void VectorFindMinMaxValue(const float * a, float & outMin, float & outMax, UInt64 n);
    // 27 o = 1 / a, the division in double
    virtual void VectorReciprocal(const float * a, float * o, UInt64 n);
    // 28 sum(a * b / c)
    virtual float VectorDotProductDivide(const float * a, const float * b, const float * c,
                                         UInt64 n);
    // 29 the same, each term in float, the sum in double
    virtual double VectorDotProductDivide64(const float * a, const float * b, const float * c,
                                            UInt64 n);
    // 30 o = max(a, s)
    virtual void VectorClampBelow(const float * a, float * o, float s, UInt64 n);
    // 31 o = min(a, s)
    virtual void VectorClampAbove(const float * a, float * o, float s, UInt64 n);
    // 32 outEntropy = sum(fastln(a) * a), outWeight = sum(a)
    virtual void VectorWeightedEntropy(const float * a, float & outEntropy, float & outWeight,
                                       UInt64 n);
    // 33 the same with logf (not fastln), summed in double
    virtual void VectorWeightedEntropy64(const float * a, double & outEntropy,
                                         double & outWeight, UInt64 n);
    // 34 sum((a - b)^2 / c)
    virtual float VectorChiSquared(const float * a, const float * b, const float * c, UInt64 n);
    // 35 the same summed in double
    virtual double VectorChiSquared64(const float * a, const float * b, const float * c,
                                      UInt64 n);
    // 36 o = s * a - t * b
    virtual void VectorScalarSubtract(const float * a, const float * b, float s, float t,
                                      float * o, UInt64 n);
    // 37 sum(a * a * b)
    virtual float VectorSquareMultiplySum(const float * a, const float * b, UInt64 n);
    // 38 the same summed in double
    virtual double VectorSquareMultiplySum64(const float * a, const float * b, UInt64 n);
    // 39 outD1 = sum(a * b), outD2 = sum(a * g(c, s)), g = VectorCalcGradS
    virtual void VectorSearchDerivatives(const float * a, const float * b, const float * c,
                                         float s, float & outD1, float & outD2, UInt64 n);
    // 40 the same summed in double; s is narrowed to float for g
    virtual void VectorSearchDerivatives64(const float * a, const float * b, const float * c,
                                           double s, double & outD1, double & outD2, UInt64 n);
    // 41 t = g(a, s); o = a * t; outQ = sum(o * t)
    virtual void VectorCalcSearchVec1(const float * a, float * o, float s, float & outQ,
                                      UInt64 n);
    // 42 the same with outQ summed in double
    virtual void VectorCalcSearchVec1_64(const float * a, float * o, float s, double & outQ,
                                         UInt64 n);
    // 43 o = a * b; outQ = sum(o * a)
    virtual void VectorCalcSearchVec2(const float * a, const float * b, float * o, float & outQ,
                                      UInt64 n);
    // 44 the same with outQ summed in double
    virtual void VectorCalcSearchVec2_64(const float * a, const float * b, float * o,
                                         double & outQ, UInt64 n);
    // 45 t = g(b, s); o1 = b * t; outQ1 = sum(o1 * t); o2 = a * b; outQ2 = sum(o2 * a)
    virtual void VectorCalcSearchVecs1And2(const float * a, const float * b, float * o1,
                                           float * o2, float s, float & outQ1, float & outQ2,
                                           UInt64 n);
    // 46 the same with the sums in double
    virtual void VectorCalcSearchVecs1And2_64(const float * a, const float * b, float * o1,
                                              float * o2, float s, double & outQ1,
                                              double & outQ2, UInt64 n);
    // 47 For each of n samples, the values x of someDimension planes at one position become
    // aMatrix x (row r: the sum over c of M[r][c] * x[c], in that order). Every pointer of
    // somePlanes is advanced past its plane: on return each points at plane + n.
    virtual void VectorTransform(float ** somePlanes, SInt32 someDimension,
                                 XMiniSquareMatrix aMatrix, UInt64 n);

protected:
    // The entropy gradient of the search kernels: -((fastln(aValue * aScale) + 1.0) * aScale),
    // the outer arithmetic in double.
    static float VectorCalcGradS(float aValue, float aScale)
    {
        return float(-((double(FastLn(aValue * aScale)) + 1.0) * double(aScale)));
    }
    // Checks the dimension of VectorTransform against its matrix.
    static void CheckTransformDimension(SInt32 someDimension, const XMiniSquareMatrix & aMatrix);
};
