#pragma once
// The vector kernels in SSE (single precision, four floats at a time), for XVectorMathTool.
//
// Every operation here has one shape: when any of its arrays, inputs or outputs, is not
// 16-byte aligned, the whole call goes to the portable loop (no peeling to reach alignment);
// otherwise groups of four run over the first n & ~3 elements with aligned loads and stores,
// and the last 0 to 3 elements run in scalar code. So results differ from the portable loops:
//  - divisions (VectorDivide, the three VectorMultiplyAndDivide, VectorReciprocal,
//    VectorDotProductDivide, VectorChiSquared) multiply by the approximate reciprocal of the
//    divisor with one Newton step, r' = r * (2 - r * d), in the groups, and divide truly in the
//    tail; a zero divisor gives NaN in a group;
//  - VectorSqrt multiplies x by the approximate reciprocal root refined as
//    0.5 * (3 - r * x * r) * r, VectorReciprocalSqrt takes that root itself; so the root of 0.0
//    is NaN in a group and 0.0 in the tail;
//  - the complex operations work on four (multiply, magnitude) or two (divide, reciprocal)
//    complex values a group, the latter with the refined reciprocal r' = r - (r * d - 1) * r;
//  - the sums keep four running sums, add them as lane 1 + lane 0 + lane 2 + lane 3 and then
//    add the tail element by element;
//  - VectorFindMaxValue starts from the smallest positive normal float (1.17549435e-38) and
//    VectorFindMinValue from the largest float, not from the first element: an all-negative
//    aligned array reports 1.17549435e-38 as its maximum, and n = 0 returns the start values;
//  - VectorComplexReciprocal, given a misaligned array, runs the portable
//    VectorComplexMagnitude instead of the reciprocal;
//  - VectorAddAndMultiply assigns (a + b) * c in the groups but adds it to o in the tail.
// These are kept on purpose: stored results and callers' comparisons depend on them. The
// portable VectorMultiplyAndDivide(a, b, s, o, n) asserts that s is not zero; this one does not.
//
// The ...64 operations, the logarithm (WSSE2VectorMathToolImp has its own), the entropy and the
// search kernels other than VectorCalcSearchVec2 stay portable here.

#include <xmmintrin.h>

#include <cstdint>

#include "XVectorMathToolImp.h"

class WSSEVectorMathToolImp : public XVectorMathToolImp
{
public:
    WSSEVectorMathToolImp() = default;
    ~WSSEVectorMathToolImp() override;

    void VectorAdd(const float * a, float s, float * o, UInt64 n) override;
    void VectorAdd(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorSubtract(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorMultiply(const float * a, float s, float * o, UInt64 n) override;
    void VectorMultiply(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorComplexDivide(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorComplexMultiply(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorComplexMagnitude(const float * a, float * o, UInt64 n) override;
    void VectorComplexReciprocal(const float * a, float * o, UInt64 n) override;
    void VectorDivide(const float * a, const float * b, float * o, UInt64 n) override;
    void VectorMultiplyAndDivide(const float * a, const float * b, const float * c, float * o,
                                 UInt64 n) override;
    void VectorMultiplyAndDivide(const float * a, float s, const float * b, float * o,
                                 UInt64 n) override;
    void VectorMultiplyAndDivide(const float * a, const float * b, float aScalar, float * o,
                                 UInt64 n) override;
    void VectorSquare(const float * a, float * o, UInt64 n) override;
    float VectorDotProduct(const float * a, const float * b, UInt64 n) override;
    void VectorAddAndMultiply(const float * a, const float * b, const float * c, float * o,
                              UInt64 n) override;
    void VectorFillReal(float s, float * o, UInt64 n) override;
    void VectorSqrt(const float * a, float * o, UInt64 n) override;
    void VectorReciprocalSqrt(const float * a, float * o, UInt64 n) override;
    float VectorSum(const float * a, UInt64 n) override;
    float VectorFindMaxValue(const float * a, UInt64 n) override;
    float VectorFindMinValue(const float * a, UInt64 n) override;
    void VectorFindMinMaxValue(const float * a, float & outMin, float & outMax, UInt64 n) override;
    void VectorReciprocal(const float * a, float * o, UInt64 n) override;
    float VectorDotProductDivide(const float * a, const float * b, const float * c,
                                 UInt64 n) override;
    void VectorClampBelow(const float * a, float * o, float s, UInt64 n) override;
    void VectorClampAbove(const float * a, float * o, float s, UInt64 n) override;
    float VectorChiSquared(const float * a, const float * b, const float * c, UInt64 n) override;
    void VectorScalarSubtract(const float * a, const float * b, float s, float t, float * o,
                              UInt64 n) override;
    float VectorSquareMultiplySum(const float * a, const float * b, UInt64 n) override;
    void VectorCalcSearchVec2(const float * a, const float * b, float * o, float & outQ,
                              UInt64 n) override;
    // Four samples a step on aligned planes; any misaligned plane sends the call to the
    // portable form.
    void VectorTransform(float ** somePlanes, SInt32 someDimension, XMiniSquareMatrix aMatrix,
                         UInt64 n) override;

protected:
    // True when every pointer is 16-byte aligned.
    template <typename... Pointers>
    static bool IsAligned(const Pointers *... somePointers)
    {
        return ((reinterpret_cast<std::uintptr_t>(somePointers) | ... | 0u) & 15u) == 0;
    }
    // The elements handled in whole groups of four.
    static UInt64 WholeGroups(UInt64 n) { return n & ~UInt64(3); }
    // 1 / d from the approximate reciprocal r with one Newton step: r * (2 - r * d).
    static __m128 Reciprocal(__m128 d)
    {
        const __m128 r = _mm_rcp_ps(d);
        return _mm_mul_ps(r, _mm_sub_ps(_mm_set1_ps(2.f), _mm_mul_ps(r, d)));
    }
    // The group terms that the SSE2 double sums share with the float sums.
    static __m128 DotProductDivideTerm(__m128 a, __m128 b, __m128 c)
    {
        return _mm_mul_ps(_mm_mul_ps(a, b), Reciprocal(c));
    }
    static __m128 ChiSquaredTerm(__m128 a, __m128 b, __m128 c)
    {
        const __m128 d = _mm_sub_ps(a, b);
        return _mm_mul_ps(_mm_mul_ps(d, d), Reciprocal(c));
    }
    static __m128 SquareMultiplyTerm(__m128 a, __m128 b)
    {
        return _mm_mul_ps(_mm_mul_ps(a, a), b);
    }

    // How the group sums accumulate: four running float sums, added at the end as
    // lane 1 + lane 0 + lane 2 + lane 3. WSSE2VectorMathToolImp has a policy of its own in
    // double; a policy gives Sums, Sum, Zero, Add(sums, four terms) and Reduce(sums).
    struct XFloatLanes
    {
        using Sums = __m128;
        using Sum = float;
        static Sums Zero() { return _mm_setzero_ps(); }
        static Sums Add(Sums someSums, __m128 someTerms) { return _mm_add_ps(someSums, someTerms); }
        static Sum Reduce(Sums someSums)
        {
            alignas(16) float lanes[4];
            _mm_store_ps(lanes, someSums);
            return ((lanes[1] + lanes[0]) + lanes[2]) + lanes[3];
        }
    };

    // The sum of aGroup over the whole groups of the aligned arrays, then of aSingle over the
    // tail, element by element.
    template <typename Lanes, typename Group, typename Single, typename... Inputs>
    static typename Lanes::Sum AlignedSum(UInt64 n, Group aGroup, Single aSingle,
                                          const Inputs *... in)
    {
        const UInt64 whole = WholeGroups(n);
        typename Lanes::Sums sums = Lanes::Zero();
        for (UInt64 i = 0; i < whole; i += 4)
            sums = Lanes::Add(sums, aGroup(_mm_load_ps(in + i)...));
        typename Lanes::Sum sum = Lanes::Reduce(sums);
        for (UInt64 i = whole; i < n; ++i)
            sum += aSingle(in[i]...);
        return sum;
    }

    // VectorCalcSearchVec2 on aligned arrays: o = a * b, and the sum of o * a.
    template <typename Lanes>
    static typename Lanes::Sum AlignedSearchVec2(const float * a, const float * b, float * o,
                                                 UInt64 n)
    {
        const UInt64 whole = WholeGroups(n);
        typename Lanes::Sums sums = Lanes::Zero();
        for (UInt64 i = 0; i < whole; i += 4)
        {
            const __m128 x = _mm_load_ps(a + i);
            const __m128 product = _mm_mul_ps(x, _mm_load_ps(b + i));
            _mm_store_ps(o + i, product);
            sums = Lanes::Add(sums, _mm_mul_ps(product, x));
        }
        typename Lanes::Sum sum = Lanes::Reduce(sums);
        for (UInt64 i = whole; i < n; ++i)
        {
            const float x = a[i];
            const float product = x * b[i];
            o[i] = product;
            sum += product * x;
        }
        return sum;
    }
};
