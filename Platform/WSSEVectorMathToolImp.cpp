#include "WSSEVectorMathToolImp.h"

#include <cmath>
#include <limits>

namespace
{
using XBase = XVectorMathToolImp;

// Runs aGroup over the whole groups of four, o = aGroup(in...), when every array is 16-byte
// aligned, and returns the number of elements done: n & ~3, or 0 for misaligned arrays, which
// the portable loop then takes whole. Each group is loaded before it is stored, so an input
// may be the output.
template <typename Group, typename... Inputs>
inline UInt64 AlignedGroups(float * o, UInt64 n, Group aGroup, const Inputs *... in)
{
    if (((reinterpret_cast<std::uintptr_t>(o) | ... | reinterpret_cast<std::uintptr_t>(in)) & 15u) != 0)
        return 0;
    const UInt64 whole = n & ~UInt64(3);
    for (UInt64 i = 0; i < whole; i += 4)
        _mm_store_ps(o + i, aGroup(_mm_load_ps(in + i)...));
    return whole;
}

// Four running extrema from aStart: aGroup picks per lane, aBetter tells whether its first
// argument replaces the second; then the tail. The array must be aligned.
template <typename Group, typename Better>
inline float AlignedExtreme(const float * a, UInt64 n, float aStart, Group aGroup, Better aBetter)
{
    const UInt64 whole = n & ~UInt64(3);
    __m128 running = _mm_set1_ps(aStart);
    for (UInt64 i = 0; i < whole; i += 4)
        running = aGroup(_mm_load_ps(a + i), running);
    alignas(16) float lanes[4];
    _mm_store_ps(lanes, running);
    float extreme = lanes[0];
    for (int k = 1; k < 4; ++k)
        extreme = aBetter(lanes[k], extreme) ? lanes[k] : extreme;
    for (UInt64 i = whole; i < n; ++i)
        extreme = aBetter(a[i], extreme) ? a[i] : extreme;
    return extreme;
}

// The start values of the running extrema: the smallest positive normal float for the maximum,
// the largest float for the minimum (bits 0x00800000 and 0x7F7FFFFF).
constexpr float kMaxStart = std::numeric_limits<float>::min();
constexpr float kMinStart = std::numeric_limits<float>::max();

inline bool Greater(float x, float y) { return x > y; }
inline bool Less(float x, float y) { return x < y; }
// Lane by lane x > y ? x : y and x < y ? x : y, as the portable loops choose.
inline __m128 Max(__m128 x, __m128 y) { return _mm_max_ps(x, y); }
inline __m128 Min(__m128 x, __m128 y) { return _mm_min_ps(x, y); }

// Four interleaved complex values at p as their real and imaginary parts.
inline void Deinterleave(const float * p, __m128 & outRe, __m128 & outIm)
{
    const __m128 low = _mm_load_ps(p), high = _mm_load_ps(p + 4);
    outRe = _mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
    outIm = _mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1));
}

inline void Interleave(float * p, __m128 aRe, __m128 anIm)
{
    _mm_store_ps(p, _mm_unpacklo_ps(aRe, anIm));
    _mm_store_ps(p + 4, _mm_unpackhi_ps(aRe, anIm));
}

// Within interleaved pairs: (x0, x1, x2, x3) -> (x1, x0, x3, x2).
inline __m128 SwapPairs(__m128 x) { return _mm_shuffle_ps(x, x, _MM_SHUFFLE(2, 3, 0, 1)); }

// Two complex values: 1 / |x|^2 in both lanes of each, from the approximate reciprocal refined
// as r - (r * d - 1) * r.
inline __m128 ReciprocalSquaredMagnitude(__m128 x)
{
    const __m128 squares = _mm_mul_ps(x, x);
    const __m128 d = _mm_add_ps(squares, SwapPairs(squares));
    const __m128 r = _mm_rcp_ps(d);
    return _mm_sub_ps(r, _mm_mul_ps(_mm_sub_ps(_mm_mul_ps(r, d), _mm_set1_ps(1.f)), r));
}

// 1 / sqrt(x) from the approximate reciprocal root r refined as 0.5 * (3 - r * x * r) * r.
inline __m128 ReciprocalRoot(__m128 x)
{
    const __m128 r = _mm_rsqrt_ps(x);
    const __m128 correction = _mm_sub_ps(_mm_set1_ps(3.f), _mm_mul_ps(_mm_mul_ps(r, x), r));
    return _mm_mul_ps(_mm_mul_ps(_mm_set1_ps(0.5f), correction), r);
}

// The imaginary lanes negated: the conjugates of two complex values.
inline __m128 Conjugate(__m128 x) { return _mm_xor_ps(x, _mm_set_ps(-0.f, 0.f, -0.f, 0.f)); }
} // namespace

WSSEVectorMathToolImp::~WSSEVectorMathToolImp() = default;

void WSSEVectorMathToolImp::VectorAdd(const float * a, float s, float * o, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(o, n, [scalar](__m128 x) { return _mm_add_ps(x, scalar); }, a);
    XBase::VectorAdd(a + k, s, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorAdd(const float * a, const float * b, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, [](__m128 x, __m128 y) { return _mm_add_ps(x, y); }, a, b);
    XBase::VectorAdd(a + k, b + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorSubtract(const float * a, const float * b, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, [](__m128 x, __m128 y) { return _mm_sub_ps(x, y); }, a, b);
    XBase::VectorSubtract(a + k, b + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorMultiply(const float * a, float s, float * o, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(o, n, [scalar](__m128 x) { return _mm_mul_ps(x, scalar); }, a);
    XBase::VectorMultiply(a + k, s, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorMultiply(const float * a, const float * b, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, [](__m128 x, __m128 y) { return _mm_mul_ps(x, y); }, a, b);
    XBase::VectorMultiply(a + k, b + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorComplexDivide(const float * a, const float * b, float * o,
                                                UInt64 n)
{
    // Two complex values a group, in interleaved form: a * conj(b) / |b|^2.
    const UInt64 k = AlignedGroups(
        o, 2 * n,
        [](__m128 x, __m128 y) {
            const __m128 yRe = _mm_shuffle_ps(y, y, _MM_SHUFFLE(2, 2, 0, 0));
            const __m128 yIm = _mm_shuffle_ps(y, y, _MM_SHUFFLE(3, 3, 1, 1));
            const __m128 numerator =
                _mm_add_ps(_mm_mul_ps(x, yRe), Conjugate(_mm_mul_ps(SwapPairs(x), yIm)));
            return _mm_mul_ps(numerator, ReciprocalSquaredMagnitude(y));
        },
        a, b);
    XBase::VectorComplexDivide(a + k, b + k, o + k, n - k / 2);
}

void WSSEVectorMathToolImp::VectorComplexMultiply(const float * a, const float * b, float * o,
                                                  UInt64 n)
{
    if (!IsAligned(a, b, o))
        return XBase::VectorComplexMultiply(a, b, o, n);
    const UInt64 whole = WholeGroups(n);
    for (UInt64 i = 0; i < 2 * whole; i += 8)
    {
        __m128 ar, ai, br, bi;
        Deinterleave(a + i, ar, ai);
        Deinterleave(b + i, br, bi);
        Interleave(o + i, _mm_sub_ps(_mm_mul_ps(ar, br), _mm_mul_ps(ai, bi)),
                   _mm_add_ps(_mm_mul_ps(ar, bi), _mm_mul_ps(ai, br)));
    }
    XBase::VectorComplexMultiply(a + 2 * whole, b + 2 * whole, o + 2 * whole, n - whole);
}

void WSSEVectorMathToolImp::VectorComplexMagnitude(const float * a, float * o, UInt64 n)
{
    if (!IsAligned(a, o))
        return XBase::VectorComplexMagnitude(a, o, n);
    const UInt64 whole = WholeGroups(n);
    for (UInt64 i = 0; i < 2 * whole; i += 8)
    {
        __m128 ar, ai;
        Deinterleave(a + i, ar, ai);
        Interleave(o + i, _mm_add_ps(_mm_mul_ps(ar, ar), _mm_mul_ps(ai, ai)), _mm_setzero_ps());
    }
    XBase::VectorComplexMagnitude(a + 2 * whole, o + 2 * whole, n - whole);
}

void WSSEVectorMathToolImp::VectorComplexReciprocal(const float * a, float * o, UInt64 n)
{
    // Misaligned arrays get the portable magnitude, not the reciprocal: kept as it always was.
    if (!IsAligned(a, o))
        return XBase::VectorComplexMagnitude(a, o, n);
    const UInt64 k = AlignedGroups(
        o, 2 * n,
        [](__m128 x) { return _mm_mul_ps(Conjugate(x), ReciprocalSquaredMagnitude(x)); }, a);
    XBase::VectorComplexReciprocal(a + k, o + k, n - k / 2);
}

void WSSEVectorMathToolImp::VectorDivide(const float * a, const float * b, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(
        o, n, [](__m128 x, __m128 y) { return _mm_mul_ps(x, Reciprocal(y)); }, a, b);
    XBase::VectorDivide(a + k, b + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorMultiplyAndDivide(const float * a, const float * b,
                                                    const float * c, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, DotProductDivideTerm, a, b, c);
    XBase::VectorMultiplyAndDivide(a + k, b + k, c + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorMultiplyAndDivide(const float * a, float s, const float * b,
                                                    float * o, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(
        o, n, [scalar](__m128 x, __m128 y) { return _mm_mul_ps(_mm_mul_ps(scalar, x), Reciprocal(y)); },
        a, b);
    XBase::VectorMultiplyAndDivide(a + k, s, b + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorMultiplyAndDivide(const float * a, const float * b,
                                                    float aScalar, float * o, UInt64 n)
{
    if (!IsAligned(a, b, o))
        return XBase::VectorMultiplyAndDivide(a, b, aScalar, o, n);
    // No check of the scalar here (the portable form asserts): the tail divides by itself.
    const __m128 reciprocal = Reciprocal(_mm_set1_ps(aScalar));
    const UInt64 k = AlignedGroups(
        o, n, [reciprocal](__m128 x, __m128 y) { return _mm_mul_ps(_mm_mul_ps(x, y), reciprocal); },
        a, b);
    for (UInt64 i = k; i < n; ++i)
        o[i] = a[i] * b[i] / aScalar;
}

void WSSEVectorMathToolImp::VectorSquare(const float * a, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, [](__m128 x) { return _mm_mul_ps(x, x); }, a);
    XBase::VectorSquare(a + k, o + k, n - k);
}

float WSSEVectorMathToolImp::VectorDotProduct(const float * a, const float * b, UInt64 n)
{
    if (!IsAligned(a, b))
        return XBase::VectorDotProduct(a, b, n);
    return AlignedSum<XFloatLanes>(n, [](__m128 x, __m128 y) { return _mm_mul_ps(x, y); },
                                   [](float x, float y) { return x * y; }, a, b);
}

void WSSEVectorMathToolImp::VectorAddAndMultiply(const float * a, const float * b,
                                                 const float * c, float * o, UInt64 n)
{
    if (!IsAligned(a, b, c, o))
        return XBase::VectorAddAndMultiply(a, b, c, o, n);
    const UInt64 k = AlignedGroups(
        o, n, [](__m128 x, __m128 y, __m128 z) { return _mm_mul_ps(_mm_add_ps(x, y), z); }, a, b, c);
    // The tail adds to o where the groups assign: kept as it always was.
    for (UInt64 i = k; i < n; ++i)
        o[i] += (a[i] + b[i]) * c[i];
}

void WSSEVectorMathToolImp::VectorFillReal(float s, float * o, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(o, n, [scalar]() { return scalar; });
    XBase::VectorFillReal(s, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorSqrt(const float * a, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(
        o, n, [](__m128 x) { return _mm_mul_ps(ReciprocalRoot(x), x); }, a);
    XBase::VectorSqrt(a + k, o + k, n - k);
}

void WSSEVectorMathToolImp::VectorReciprocalSqrt(const float * a, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, ReciprocalRoot, a);
    XBase::VectorReciprocalSqrt(a + k, o + k, n - k);
}

float WSSEVectorMathToolImp::VectorSum(const float * a, UInt64 n)
{
    if (!IsAligned(a))
        return XBase::VectorSum(a, n);
    return AlignedSum<XFloatLanes>(n, [](__m128 x) { return x; }, [](float x) { return x; }, a);
}

float WSSEVectorMathToolImp::VectorFindMaxValue(const float * a, UInt64 n)
{
    if (!IsAligned(a))
        return XBase::VectorFindMaxValue(a, n);
    return AlignedExtreme(a, n, kMaxStart, Max, Greater);
}

float WSSEVectorMathToolImp::VectorFindMinValue(const float * a, UInt64 n)
{
    if (!IsAligned(a))
        return XBase::VectorFindMinValue(a, n);
    return AlignedExtreme(a, n, kMinStart, Min, Less);
}

void WSSEVectorMathToolImp::VectorFindMinMaxValue(const float * a, float & outMin,
                                                  float & outMax, UInt64 n)
{
    if (!IsAligned(a))
        return XBase::VectorFindMinMaxValue(a, outMin, outMax, n);
    outMin = AlignedExtreme(a, n, kMinStart, Min, Less);
    outMax = AlignedExtreme(a, n, kMaxStart, Max, Greater);
}

void WSSEVectorMathToolImp::VectorReciprocal(const float * a, float * o, UInt64 n)
{
    const UInt64 k = AlignedGroups(o, n, Reciprocal, a);
    XBase::VectorReciprocal(a + k, o + k, n - k);
}

float WSSEVectorMathToolImp::VectorDotProductDivide(const float * a, const float * b,
                                                    const float * c, UInt64 n)
{
    if (!IsAligned(a, b, c))
        return XBase::VectorDotProductDivide(a, b, c, n);
    return AlignedSum<XFloatLanes>(
        n, DotProductDivideTerm, [](float x, float y, float z) { return x * y / z; }, a, b, c);
}

void WSSEVectorMathToolImp::VectorClampBelow(const float * a, float * o, float s, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(o, n, [scalar](__m128 x) { return Max(x, scalar); }, a);
    XBase::VectorClampBelow(a + k, o + k, s, n - k);
}

void WSSEVectorMathToolImp::VectorClampAbove(const float * a, float * o, float s, UInt64 n)
{
    const __m128 scalar = _mm_set1_ps(s);
    const UInt64 k = AlignedGroups(o, n, [scalar](__m128 x) { return Min(x, scalar); }, a);
    XBase::VectorClampAbove(a + k, o + k, s, n - k);
}

float WSSEVectorMathToolImp::VectorChiSquared(const float * a, const float * b, const float * c,
                                              UInt64 n)
{
    if (!IsAligned(a, b, c))
        return XBase::VectorChiSquared(a, b, c, n);
    return AlignedSum<XFloatLanes>(n, ChiSquaredTerm,
                                   [](float x, float y, float z) {
                                       const float d = x - y;
                                       return d * d / z;
                                   },
                                   a, b, c);
}

void WSSEVectorMathToolImp::VectorScalarSubtract(const float * a, const float * b, float s,
                                                 float t, float * o, UInt64 n)
{
    const __m128 sv = _mm_set1_ps(s), tv = _mm_set1_ps(t);
    const UInt64 k = AlignedGroups(
        o, n,
        [sv, tv](__m128 x, __m128 y) { return _mm_sub_ps(_mm_mul_ps(sv, x), _mm_mul_ps(tv, y)); },
        a, b);
    XBase::VectorScalarSubtract(a + k, b + k, s, t, o + k, n - k);
}

float WSSEVectorMathToolImp::VectorSquareMultiplySum(const float * a, const float * b, UInt64 n)
{
    if (!IsAligned(a, b))
        return XBase::VectorSquareMultiplySum(a, b, n);
    return AlignedSum<XFloatLanes>(n, SquareMultiplyTerm,
                                   [](float x, float y) { return x * x * y; }, a, b);
}

void WSSEVectorMathToolImp::VectorCalcSearchVec2(const float * a, const float * b, float * o,
                                                 float & outQ, UInt64 n)
{
    if (!IsAligned(a, b, o))
        return XBase::VectorCalcSearchVec2(a, b, o, outQ, n);
    outQ = AlignedSearchVec2<XFloatLanes>(a, b, o, n);
}

void WSSEVectorMathToolImp::VectorTransform(float ** somePlanes, SInt32 someDimension,
                                            XMiniSquareMatrix aMatrix, UInt64 n)
{
    CheckTransformDimension(someDimension, aMatrix);
    for (SInt32 c = 0; c < someDimension; ++c)
        if (!IsAligned(somePlanes[c]))
            return XBase::VectorTransform(somePlanes, someDimension, aMatrix, n);
    constexpr SInt32 kMax = XMiniSquareMatrix::kMaxSize;
    __m128 m[kMax][kMax];
    for (SInt32 r = 0; r < someDimension; ++r)
        for (SInt32 c = 0; c < someDimension; ++c)
            m[r][c] = _mm_set1_ps(aMatrix.Get(r, c));
    const UInt64 whole = WholeGroups(n);
    for (UInt64 i = 0; i < whole; i += 4)
    {
        __m128 x[kMax];
        for (SInt32 c = 0; c < someDimension; ++c)
            x[c] = _mm_load_ps(somePlanes[c] + i);
        for (SInt32 r = 0; r < someDimension; ++r)
        {
            __m128 sum = _mm_mul_ps(m[r][0], x[0]);
            for (SInt32 c = 1; c < someDimension; ++c)
                sum = _mm_add_ps(sum, _mm_mul_ps(m[r][c], x[c]));
            _mm_store_ps(somePlanes[r] + i, sum);
        }
    }
    for (SInt32 c = 0; c < someDimension; ++c)
        somePlanes[c] += whole;
    XBase::VectorTransform(somePlanes, someDimension, aMatrix, n - whole);
}
