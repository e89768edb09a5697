#include "WSSE2VectorMathToolImp.h"

#include <emmintrin.h>

#include "XAssert.h"

namespace
{
using XBase = XVectorMathToolImp;

// The group sums in double: lanes 0 and 1, then lanes 2 and 3 of each group's terms widened
// onto one two-lane accumulator, whose lanes are added at the end (high + low).
struct XDoubleLanes
{
    using Sums = __m128d;
    using Sum = double;
    static Sums Zero() { return _mm_setzero_pd(); }
    static Sums Add(Sums someSums, __m128 someTerms)
    {
        someSums = _mm_add_pd(someSums, _mm_cvtps_pd(someTerms));
        return _mm_add_pd(someSums, _mm_cvtps_pd(_mm_movehl_ps(someTerms, someTerms)));
    }
    static Sum Reduce(Sums someSums)
    {
        return _mm_cvtsd_f64(_mm_unpackhi_pd(someSums, someSums)) + _mm_cvtsd_f64(someSums);
    }
};

// XVectorMathToolImp::FastLn of four floats, with the same float operations.
inline __m128 FastLn4(__m128 x)
{
    const __m128i bits = _mm_castps_si128(x);
    const __m128i biased = _mm_and_si128(_mm_srli_epi32(bits, 23), _mm_set1_epi32(255));
    const __m128 exponent = _mm_cvtepi32_ps(_mm_sub_epi32(biased, _mm_set1_epi32(128)));
    const __m128 mantissa = _mm_castsi128_ps(_mm_add_epi32(
        _mm_and_si128(bits, _mm_set1_epi32(0x807FFFFF)), _mm_set1_epi32(0x3F800000)));
    return _mm_mul_ps(_mm_add_ps(exponent, mantissa), _mm_set1_ps(0.6931472f));
}
} // namespace

WSSE2VectorMathToolImp::~WSSE2VectorMathToolImp() = default;

double WSSE2VectorMathToolImp::VectorDotProduct64(const float * a, const float * b, UInt64 n)
{
    if (!IsAligned(a, b))
        return XBase::VectorDotProduct64(a, b, n);
    return AlignedSum<XDoubleLanes>(n, [](__m128 x, __m128 y) { return _mm_mul_ps(x, y); },
                                    [](float x, float y) { return x * y; }, a, b);
}

double WSSE2VectorMathToolImp::VectorSum64(const float * a, UInt64 n)
{
    if (!IsAligned(a))
        return XBase::VectorSum64(a, n);
    return AlignedSum<XDoubleLanes>(n, [](__m128 x) { return x; }, [](float x) { return x; }, a);
}

double WSSE2VectorMathToolImp::VectorDotProductDivide64(const float * a, const float * b,
                                                        const float * c, UInt64 n)
{
    if (!IsAligned(a, b, c))
        return XBase::VectorDotProductDivide64(a, b, c, n);
    return AlignedSum<XDoubleLanes>(n, DotProductDivideTerm,
                                    [](float x, float y, float z) { return x * y / z; }, a, b, c);
}

double WSSE2VectorMathToolImp::VectorChiSquared64(const float * a, const float * b,
                                                  const float * c, UInt64 n)
{
    if (!IsAligned(a, b, c))
        return XBase::VectorChiSquared64(a, b, c, n);
    // Lanes 0 and 1 from a itself, lanes 2 and 3 from the term: kept as it always was.
    return AlignedSum<XDoubleLanes>(
        n,
        [](__m128 x, __m128 y, __m128 z) {
            return _mm_shuffle_ps(x, ChiSquaredTerm(x, y, z), _MM_SHUFFLE(3, 2, 1, 0));
        },
        [](float x, float y, float z) {
            const float d = x - y;
            return d * d / z;
        },
        a, b, c);
}

double WSSE2VectorMathToolImp::VectorSquareMultiplySum64(const float * a, const float * b,
                                                         UInt64 n)
{
    if (!IsAligned(a, b))
        return XBase::VectorSquareMultiplySum64(a, b, n);
    return AlignedSum<XDoubleLanes>(n, SquareMultiplyTerm,
                                    [](float x, float y) { return x * x * y; }, a, b);
}

void WSSE2VectorMathToolImp::VectorCalcSearchVec2_64(const float * a, const float * b, float * o,
                                                     double & outQ, UInt64 n)
{
    if (!IsAligned(a, b, o))
        return XBase::VectorCalcSearchVec2_64(a, b, o, outQ, n);
    outQ = AlignedSearchVec2<XDoubleLanes>(a, b, o, n);
}

void WSSE2VectorMathToolImp::VectorLogBaseX(const float * a, float * o, float aBase, UInt64 n)
{
    if (!IsAligned(a, o))
        return XBase::VectorLogBaseX(a, o, aBase, n);
    XAssert(aBase > 0.f);
    const __m128 scale = _mm_set1_ps(float(1.0 / double(FastLn(aBase))));
    const UInt64 whole = WholeGroups(n);
    for (UInt64 i = 0; i < whole; i += 4)
        _mm_store_ps(o + i, _mm_mul_ps(FastLn4(_mm_load_ps(a + i)), scale));
    XBase::VectorLogBaseX(a + whole, o + whole, aBase, n - whole);
}
