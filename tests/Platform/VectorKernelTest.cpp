// Every vector kernel of the three implementations (portable, SSE, SSE2) against a plain
// double-precision reference at lengths 0, 1, 3, 4, 5, 17 and 1000, with every array aligned,
// the inputs misaligned, or only the output misaligned; the kernels that have no processor form
// against the portable loops bit for bit; and every element-wise kernel writing over one of its
// own inputs. Where the optimised forms deliberately differ from the portable loops (see
// WSSEVectorMathToolImp.h), the reference follows them.
//
// How far results may differ: single float operations (add, multiply, clamp, fill) are exact;
// divisions and roots within 1e-6 of the value (the optimised groups refine approximate
// reciprocals once); float sums within 1e-5 and double sums of float terms within 1e-6 of the
// sum of the terms' magnitudes (the optimised forms sum in another order).

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "WSSE2VectorMathToolImp.h"
#include "WSSEVectorMathToolImp.h"
#include "XTestFloatBuffer.h"
#include "XVectorMathToolImp.h"

namespace
{
constexpr UInt64 kLengths[] = {0, 1, 3, 4, 5, 17, 1000};
constexpr float kPreset = 7.f;

enum XLayout
{
    kAligned,
    kInputsMisaligned,
    kOutputMisaligned
};

struct XImplementation
{
    XVectorMathToolImp * itsImp;
    const char * itsName;
    bool itsOptimised;
    bool itsSSE2;
};

const std::vector<XImplementation> & Implementations()
{
    static XVectorMathToolImp sPortable;
    static WSSEVectorMathToolImp sSSE;
    static WSSE2VectorMathToolImp sSSE2;
    static const std::vector<XImplementation> sAll = {
        {&sPortable, "portable", false, false}, {&sSSE, "SSE", true, false}, {&sSSE2, "SSE2", true, true}};
    return sAll;
}

float Fraction(double x)
{
    return float(x - std::floor(x));
}

// The arrays of one case: inputs a in [0.5, 2), b in [-2, 2), c in [0.5, 2), and outputs o and
// p preset to kPreset; aWidth floats an element (2 for complex kernels).
struct XArrays
{
    XArrays(UInt64 n, XLayout aLayout, UInt64 aWidth = 1)
        : a(n * aWidth, aLayout == kInputsMisaligned), b(n * aWidth, aLayout == kInputsMisaligned),
          c(n * aWidth, aLayout == kInputsMisaligned), o(n * aWidth, aLayout == kOutputMisaligned),
          p(n * aWidth, aLayout == kOutputMisaligned)
    {
        for (UInt64 i = 0; i < n * aWidth; ++i)
        {
            a[i] = 0.5f + 1.5f * Fraction(0.6180339887 * double(i + 1));
            b[i] = -2.f + 4.f * Fraction(0.7548776662 * double(i + 1));
            c[i] = 0.5f + 1.5f * Fraction(0.5698402910 * double(i + 1));
            o[i] = p[i] = kPreset;
        }
    }
    XTestFloatBuffer a, b, c, o, p;
};

// One implementation at one length and layout.
struct XRun
{
    XImplementation itsImp;
    UInt64 n;
    XLayout itsLayout;

    XVectorMathToolImp & Imp() const { return *itsImp.itsImp; }
    // True when the optimised groups run: an optimised implementation with every array that
    // the kernel uses aligned.
    bool Groups(bool anOutputUsed = true) const
    {
        return itsImp.itsOptimised &&
               (itsLayout == kAligned || (itsLayout == kOutputMisaligned && !anOutputUsed));
    }
    UInt64 Whole() const { return n & ~UInt64(3); }
};

template <typename Check>
void ForEachRun(Check aCheck)
{
    for (const XImplementation & imp : Implementations())
        for (UInt64 n : kLengths)
            for (XLayout layout : {kAligned, kInputsMisaligned, kOutputMisaligned})
            {
                SCOPED_TRACE(std::string(imp.itsName) + " n=" + std::to_string(n) + " layout=" +
                             std::to_string(int(layout)));
                aCheck(XRun{imp, n, layout});
            }
}

// Every o[i] against aReference(i): the reference rounded to float when aTolerance is 0, else
// within aTolerance times aScale(i).
::testing::AssertionResult Matches(const float * o, UInt64 aCount,
                                   const std::function<double(UInt64)> & aReference,
                                   double aTolerance,
                                   const std::function<double(UInt64)> & aScale = nullptr)
{
    for (UInt64 i = 0; i < aCount; ++i)
    {
        const double expected = aReference(i);
        const double scale = aScale ? aScale(i) : std::fabs(expected);
        const bool ok = aTolerance == 0.0 ? o[i] == float(expected)
                                          : std::fabs(double(o[i]) - expected) <= aTolerance * scale;
        if (!ok)
            return ::testing::AssertionFailure()
                   << "element " << i << ": " << o[i] << ", expected " << expected;
    }
    return ::testing::AssertionSuccess();
}

// A sum against its reference, within aTolerance of the sum of the terms' magnitudes.
void ExpectSum(double aSum, double anExpected, double aMagnitude, double aTolerance)
{
    EXPECT_LE(std::fabs(aSum - anExpected), aTolerance * aMagnitude)
        << aSum << ", expected " << anExpected;
}

constexpr double kFloatSum = 1e-5;
constexpr double kDoubleSum = 1e-6;
constexpr double kApproximate = 1e-6;

// The fast logarithm from its description, in double: log2 interpolated linearly between
// powers of two, the mantissa taking the sign of x, times ln 2 in single precision.
double FastLnReference(float x)
{
    const double magnitude = std::fabs(double(x));
    const int e = std::ilogb(magnitude);
    const double mantissa = magnitude / std::ldexp(1.0, e);
    return (e - 1 + (x < 0 ? -mantissa : mantissa)) * double(0.6931472f);
}

double GradientReference(float x, float s)
{
    return -((FastLnReference(x * s) + 1.0) * s);
}

// The size of x * g(x, s) before the logarithm and 1 cancel: the scale of its rounding errors.
double GradientScale(float x, float s)
{
    return x * (std::fabs(FastLnReference(x * s)) + 1.0) * s;
}

// The sum of aTerm(i) and of its magnitudes.
struct XSum
{
    double itsSum = 0.0;
    double itsMagnitude = 0.0;
};

XSum SumOf(UInt64 n, const std::function<double(UInt64)> & aTerm)
{
    XSum sum;
    for (UInt64 i = 0; i < n; ++i)
    {
        sum.itsSum += aTerm(i);
        sum.itsMagnitude += std::fabs(aTerm(i));
    }
    return sum;
}
} // namespace

TEST(VectorKernels, SingleOperationsRoundLikeTheFloatUnit)
{
    ForEachRun([](const XRun & r) {
        XArrays d(r.n, r.itsLayout);
        const UInt64 n = r.n;
        r.Imp().VectorAdd(d.a, 1.25f, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return d.a[i] + 1.25; }, 0.0));
        r.Imp().VectorAdd(d.a, d.b, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(d.a[i]) + d.b[i]; }, 0.0));
        r.Imp().VectorSubtract(d.a, d.b, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(d.a[i]) - d.b[i]; }, 0.0));
        r.Imp().VectorMultiply(d.a, -0.3f, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return d.a[i] * double(-0.3f); }, 0.0));
        r.Imp().VectorMultiply(d.a, d.b, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(d.a[i]) * d.b[i]; }, 0.0));
        r.Imp().VectorSquare(d.b, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(d.b[i]) * d.b[i]; }, 0.0));
        r.Imp().VectorClampBelow(d.b, d.o, 0.25f, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return std::max(d.b[i], 0.25f); }, 0.0));
        r.Imp().VectorClampAbove(d.b, d.o, 0.25f, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return std::min(d.b[i], 0.25f); }, 0.0));
        r.Imp().VectorFillReal(-3.5f, d.p, n);
        EXPECT_TRUE(Matches(d.p, n, [](UInt64) { return -3.5; }, 0.0));
    });
}

TEST(VectorKernels, DivisionsRootsAndCompoundsWithinAMillionth)
{
    ForEachRun([](const XRun & r) {
        XArrays d(r.n, r.itsLayout);
        const UInt64 n = r.n;
        const float * a = d.a;
        const float * b = d.b;
        const float * c = d.c;
        r.Imp().VectorDivide(a, c, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(a[i]) / c[i]; }, kApproximate));
        r.Imp().VectorMultiplyAndDivide(a, b, c, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(a[i]) * b[i] / c[i]; }, kApproximate));
        r.Imp().VectorMultiplyAndDivide(a, 1.5f, c, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return 1.5 * a[i] / c[i]; }, kApproximate));
        r.Imp().VectorMultiplyAndDivide(a, b, 1.5f, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return double(a[i]) * b[i] / 1.5; }, kApproximate));
        r.Imp().VectorReciprocal(c, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return 1.0 / c[i]; }, kApproximate));
        r.Imp().VectorSqrt(a, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return std::sqrt(double(a[i])); }, kApproximate));
        r.Imp().VectorReciprocalSqrt(a, d.o, n);
        EXPECT_TRUE(Matches(d.o, n, [&](UInt64 i) { return 1.0 / std::sqrt(double(a[i])); }, kApproximate));
        r.Imp().VectorScalarSubtract(a, b, 1.5f, -0.75f, d.o, n);
        EXPECT_TRUE(Matches(
            d.o, n, [&](UInt64 i) { return 1.5 * a[i] + 0.75 * b[i]; }, kApproximate,
            [&](UInt64 i) { return 1.5 * a[i] + 0.75 * std::fabs(b[i]); }));
        r.Imp().VectorLogBaseX(a, d.o, 10.f, n);
        EXPECT_TRUE(Matches(
            d.o, n, [&](UInt64 i) { return FastLnReference(a[i]) / FastLnReference(10.f); },
            kApproximate));
        // The optimised groups assign (a + b) * c, their tail adds it to what o held.
        r.Imp().VectorAddAndMultiply(a, b, c, d.p, n);
        EXPECT_TRUE(Matches(
            d.p, n,
            [&](UInt64 i) {
                const double value = (double(a[i]) + b[i]) * c[i];
                return r.Groups() && i >= r.Whole() ? kPreset + value : value;
            },
            kApproximate, [&](UInt64 i) { return (a[i] + std::fabs(b[i])) * c[i] + kPreset; }));
    });
}

TEST(VectorKernels, ComplexOperations)
{
    ForEachRun([](const XRun & r) {
        XArrays d(r.n, r.itsLayout, 2);
        const UInt64 n = r.n;
        const float * a = d.a;
        const float * b = d.b;
        const float * c = d.c;
        // Element 2k is the real part, 2k + 1 the imaginary part of complex value k.
        auto re = [](UInt64 i) { return i & ~UInt64(1); };
        auto im = [](UInt64 i) { return i | 1; };
        auto isRe = [](UInt64 i) { return i % 2 == 0; };
        auto squared = [&](const float * x, UInt64 i) {
            return double(x[re(i)]) * x[re(i)] + double(x[im(i)]) * x[im(i)];
        };

        r.Imp().VectorComplexMultiply(a, b, d.o, n);
        EXPECT_TRUE(Matches(
            d.o, 2 * n,
            [&](UInt64 i) {
                return isRe(i) ? double(a[re(i)]) * b[re(i)] - double(a[im(i)]) * b[im(i)]
                               : double(a[re(i)]) * b[im(i)] + double(a[im(i)]) * b[re(i)];
            },
            kApproximate, [&](UInt64 i) { return std::sqrt(squared(a, i) * squared(b, i)); }));

        r.Imp().VectorComplexDivide(a, c, d.o, n);
        EXPECT_TRUE(Matches(
            d.o, 2 * n,
            [&](UInt64 i) {
                const double numerator = isRe(i)
                    ? double(a[re(i)]) * c[re(i)] + double(a[im(i)]) * c[im(i)]
                    : double(a[im(i)]) * c[re(i)] - double(a[re(i)]) * c[im(i)];
                return numerator / squared(c, i);
            },
            kApproximate, [&](UInt64 i) { return std::sqrt(squared(a, i) / squared(c, i)); }));

        r.Imp().VectorComplexMagnitude(b, d.o, n);
        EXPECT_TRUE(Matches(
            d.o, 2 * n, [&](UInt64 i) { return isRe(i) ? squared(b, i) : 0.0; }, kApproximate,
            [&](UInt64 i) { return squared(b, i); }));

        // An optimised form given a misaligned array gives the magnitude instead.
        r.Imp().VectorComplexReciprocal(c, d.p, n);
        const bool magnitude = r.itsImp.itsOptimised && r.itsLayout != kAligned;
        EXPECT_TRUE(Matches(
            d.p, 2 * n,
            [&](UInt64 i) {
                if (magnitude)
                    return isRe(i) ? squared(c, i) : 0.0;
                return (isRe(i) ? c[i] : -c[i]) / squared(c, i);
            },
            kApproximate,
            [&](UInt64 i) { return magnitude ? squared(c, i) : 1.0 / std::sqrt(squared(c, i)); }));
    });
}

TEST(VectorKernels, SumsWithinTheirAccumulationBounds)
{
    ForEachRun([](const XRun & r) {
        XArrays d(r.n, r.itsLayout);
        const UInt64 n = r.n;
        const float * a = d.a;
        const float * b = d.b;
        const float * c = d.c;
        auto product = [&](UInt64 i) { return double(a[i]) * b[i]; };
        auto quotient = [&](UInt64 i) { return double(a[i]) * b[i] / c[i]; };
        auto chi = [&](UInt64 i) { return (double(a[i]) - b[i]) * (double(a[i]) - b[i]) / c[i]; };
        auto squareTimes = [&](UInt64 i) { return double(a[i]) * a[i] * b[i]; };

        XSum s = SumOf(n, product);
        ExpectSum(r.Imp().VectorDotProduct(a, b, n), s.itsSum, s.itsMagnitude, kFloatSum);
        ExpectSum(r.Imp().VectorDotProduct64(a, b, n), s.itsSum, s.itsMagnitude, kDoubleSum);
        s = SumOf(n, [&](UInt64 i) { return double(b[i]); });
        ExpectSum(r.Imp().VectorSum(b, n), s.itsSum, s.itsMagnitude, kFloatSum);
        ExpectSum(r.Imp().VectorSum64(b, n), s.itsSum, s.itsMagnitude, kDoubleSum);
        s = SumOf(n, quotient);
        ExpectSum(r.Imp().VectorDotProductDivide(a, b, c, n), s.itsSum, s.itsMagnitude, kFloatSum);
        ExpectSum(r.Imp().VectorDotProductDivide64(a, b, c, n), s.itsSum, s.itsMagnitude, kDoubleSum);
        s = SumOf(n, squareTimes);
        ExpectSum(r.Imp().VectorSquareMultiplySum(a, b, n), s.itsSum, s.itsMagnitude, kFloatSum);
        ExpectSum(r.Imp().VectorSquareMultiplySum64(a, b, n), s.itsSum, s.itsMagnitude, kDoubleSum);
        s = SumOf(n, chi);
        ExpectSum(r.Imp().VectorChiSquared(a, b, c, n), s.itsSum, s.itsMagnitude, kFloatSum);
        // SSE2 groups add a itself for lanes 0 and 1 of each group.
        if (r.itsImp.itsSSE2 && r.Groups(false))
            s = SumOf(n, [&](UInt64 i) { return i < r.Whole() && i % 4 < 2 ? double(a[i]) : chi(i); });
        ExpectSum(r.Imp().VectorChiSquared64(a, b, c, n), s.itsSum, s.itsMagnitude, kDoubleSum);
    });
}

TEST(VectorKernels, EntropyAndSearchKernels)
{
    ForEachRun([](const XRun & r) {
        XArrays d(r.n, r.itsLayout);
        const UInt64 n = r.n;
        const float * a = d.a;
        const float * b = d.b;
        const float * c = d.c;
        const float s = 0.75f;
        const XSum weight = SumOf(n, [&](UInt64 i) { return double(a[i]); });

        float e = -1.f, w = -1.f;
        r.Imp().VectorWeightedEntropy(a, e, w, n);
        XSum x = SumOf(n, [&](UInt64 i) { return FastLnReference(a[i]) * a[i]; });
        ExpectSum(e, x.itsSum, x.itsMagnitude, kFloatSum);
        ExpectSum(w, weight.itsSum, weight.itsMagnitude, kFloatSum);
        double e64 = -1.0, w64 = -1.0;
        r.Imp().VectorWeightedEntropy64(a, e64, w64, n);
        x = SumOf(n, [&](UInt64 i) { return std::log(double(a[i])) * a[i]; });
        ExpectSum(e64, x.itsSum, x.itsMagnitude, kDoubleSum);
        ExpectSum(w64, weight.itsSum, weight.itsMagnitude, kDoubleSum);

        float d1 = -1.f, d2 = -1.f;
        double d1_64 = -1.0, d2_64 = -1.0;
        r.Imp().VectorSearchDerivatives(a, b, c, s, d1, d2, n);
        r.Imp().VectorSearchDerivatives64(a, b, c, double(s), d1_64, d2_64, n);
        x = SumOf(n, [&](UInt64 i) { return double(a[i]) * b[i]; });
        ExpectSum(d1, x.itsSum, x.itsMagnitude, kFloatSum);
        ExpectSum(d1_64, x.itsSum, x.itsMagnitude, kDoubleSum);
        x = SumOf(n, [&](UInt64 i) { return a[i] * GradientReference(c[i], s); });
        ExpectSum(d2, x.itsSum, x.itsMagnitude, kFloatSum);
        ExpectSum(d2_64, x.itsSum, x.itsMagnitude, kDoubleSum);

        // t = g(a, s); o = a * t; q = sum(o * t).
        auto vec1 = [&](UInt64 i) { return a[i] * GradientReference(a[i], s); };
        auto q1 = [&](UInt64 i) { return vec1(i) * GradientReference(a[i], s); };
        float q = -1.f;
        double q64 = -1.0;
        x = SumOf(n, q1);
        auto vec1Scale = [&](UInt64 i) { return GradientScale(a[i], s); };
        r.Imp().VectorCalcSearchVec1(a, d.o, s, q, n);
        EXPECT_TRUE(Matches(d.o, n, vec1, kApproximate, vec1Scale));
        ExpectSum(q, x.itsSum, x.itsMagnitude, kFloatSum);
        r.Imp().VectorCalcSearchVec1_64(a, d.p, s, q64, n);
        EXPECT_TRUE(Matches(d.p, n, vec1, kApproximate, vec1Scale));
        ExpectSum(q64, x.itsSum, x.itsMagnitude, kDoubleSum);

        // o = a * b; q = sum(o * a).
        auto vec2 = [&](UInt64 i) { return double(a[i]) * b[i]; };
        x = SumOf(n, [&](UInt64 i) { return vec2(i) * a[i]; });
        r.Imp().VectorCalcSearchVec2(a, b, d.o, q, n);
        EXPECT_TRUE(Matches(d.o, n, vec2, 0.0));
        ExpectSum(q, x.itsSum, x.itsMagnitude, kFloatSum);
        r.Imp().VectorCalcSearchVec2_64(a, b, d.p, q64, n);
        EXPECT_TRUE(Matches(d.p, n, vec2, 0.0));
        ExpectSum(q64, x.itsSum, x.itsMagnitude, kDoubleSum);

        // Both at once, the gradient taken on the second input.
        auto vec1c = [&](UInt64 i) { return c[i] * GradientReference(c[i], s); };
        const XSum sum1 = SumOf(n, [&](UInt64 i) { return vec1c(i) * GradientReference(c[i], s); });
        const XSum sum2 = SumOf(n, [&](UInt64 i) { return double(a[i]) * c[i] * a[i]; });
        float q1f = -1.f, q2f = -1.f;
        double q1d = -1.0, q2d = -1.0;
        for (bool wide : {false, true})
        {
            if (wide)
                r.Imp().VectorCalcSearchVecs1And2_64(a, c, d.o, d.p, s, q1d, q2d, n);
            else
                r.Imp().VectorCalcSearchVecs1And2(a, c, d.o, d.p, s, q1f, q2f, n);
            EXPECT_TRUE(Matches(d.o, n, vec1c, kApproximate,
                                [&](UInt64 i) { return GradientScale(c[i], s); }));
            EXPECT_TRUE(Matches(d.p, n, [&](UInt64 i) { return double(a[i]) * c[i]; }, 0.0));
        }
        ExpectSum(q1f, sum1.itsSum, sum1.itsMagnitude, kFloatSum);
        ExpectSum(q2f, sum2.itsSum, sum2.itsMagnitude, kFloatSum);
        ExpectSum(q1d, sum1.itsSum, sum1.itsMagnitude, kDoubleSum);
        ExpectSum(q2d, sum2.itsSum, sum2.itsMagnitude, kDoubleSum);
    });
}

TEST(VectorKernels, LogarithmAgreesBitForBitWithThePortableLoop)
{
    // Also on zero, negative, denormal, infinite and NaN inputs, where the fast logarithm
    // gives what its bit formula gives.
    const float specials[] = {0.f, -0.f, -3.f, 1e-40f, std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(), 1.f, 65536.f};
    ForEachRun([&](const XRun & r) {
        XArrays d(r.n, r.itsLayout);
        for (UInt64 i = 0; i < r.n; i += 3)
            d.a[i] = specials[(i / 3) % 8];
        r.Imp().VectorLogBaseX(d.a, d.o, 3.f, r.n);
        Implementations()[0].itsImp->VectorLogBaseX(d.a, d.p, 3.f, r.n);
        for (UInt64 i = 0; i < r.n; ++i)
            ASSERT_EQ(std::bit_cast<UInt32>(d.o[i]), std::bit_cast<UInt32>(d.p[i])) << i;
    });
}

namespace
{
// The results of a kernel as bit patterns, scalars and output arrays in the order given.
struct XOutput
{
    const float * itsData;
    UInt64 itsCount;
};

struct XBits : std::vector<UInt64>
{
    XBits & operator<<(float aValue)
    {
        push_back(std::bit_cast<UInt32>(aValue));
        return *this;
    }
    XBits & operator<<(double aValue)
    {
        push_back(std::bit_cast<UInt64>(aValue));
        return *this;
    }
    XBits & operator<<(XOutput anOutput)
    {
        for (UInt64 i = 0; i < anOutput.itsCount; ++i)
            *this << anOutput.itsData[i];
        return *this;
    }
};

::testing::AssertionResult SameBits(const XBits & someBits, const XBits & someExpected)
{
    if (someBits.size() != someExpected.size())
        return ::testing::AssertionFailure() << someBits.size() << " results, expected " << someExpected.size();
    for (std::size_t i = 0; i < someBits.size(); ++i)
        if (someBits[i] != someExpected[i])
            return ::testing::AssertionFailure() << "result " << i << ": bits " << someBits[i]
                                                 << ", expected " << someExpected[i];
    return ::testing::AssertionSuccess();
}

// A kernel that must give the portable loop's bits: on every implementation, or (itsSSEOnly)
// on the SSE one, which keeps the portable ...64 sums that SSE2 replaces.
struct XPortableKernel
{
    const char * itsName;
    bool itsSSEOnly;
    std::function<XBits(XVectorMathToolImp &, XArrays &, UInt64)> itsRun;
};

const std::vector<XPortableKernel> & PortableKernels()
{
    using I = XVectorMathToolImp;
    using D = XArrays;
    static const std::vector<XPortableKernel> sKernels = {
        {"WeightedEntropy", false, [](I & m, D & d, UInt64 n) { float e = 0, w = 0; m.VectorWeightedEntropy(d.a, e, w, n); return XBits() << e << w; }},
        {"WeightedEntropy64", false, [](I & m, D & d, UInt64 n) { double e = 0, w = 0; m.VectorWeightedEntropy64(d.a, e, w, n); return XBits() << e << w; }},
        {"SearchDerivatives", false, [](I & m, D & d, UInt64 n) { float d1 = 0, d2 = 0; m.VectorSearchDerivatives(d.a, d.b, d.c, 0.75f, d1, d2, n); return XBits() << d1 << d2; }},
        {"SearchDerivatives64", false, [](I & m, D & d, UInt64 n) { double d1 = 0, d2 = 0; m.VectorSearchDerivatives64(d.a, d.b, d.c, 0.75, d1, d2, n); return XBits() << d1 << d2; }},
        {"CalcSearchVec1", false, [](I & m, D & d, UInt64 n) { float q = 0; m.VectorCalcSearchVec1(d.a, d.o, 0.75f, q, n); return XBits() << q << XOutput{d.o, n}; }},
        {"CalcSearchVec1_64", false, [](I & m, D & d, UInt64 n) { double q = 0; m.VectorCalcSearchVec1_64(d.a, d.o, 0.75f, q, n); return XBits() << q << XOutput{d.o, n}; }},
        {"CalcSearchVecs1And2", false, [](I & m, D & d, UInt64 n) { float q1 = 0, q2 = 0; m.VectorCalcSearchVecs1And2(d.a, d.c, d.o, d.p, 0.75f, q1, q2, n); return XBits() << q1 << q2 << XOutput{d.o, n} << XOutput{d.p, n}; }},
        {"CalcSearchVecs1And2_64", false, [](I & m, D & d, UInt64 n) { double q1 = 0, q2 = 0; m.VectorCalcSearchVecs1And2_64(d.a, d.c, d.o, d.p, 0.75f, q1, q2, n); return XBits() << q1 << q2 << XOutput{d.o, n} << XOutput{d.p, n}; }},
        {"DotProduct64", true, [](I & m, D & d, UInt64 n) { return XBits() << m.VectorDotProduct64(d.a, d.b, n); }},
        {"Sum64", true, [](I & m, D & d, UInt64 n) { return XBits() << m.VectorSum64(d.b, n); }},
        {"DotProductDivide64", true, [](I & m, D & d, UInt64 n) { return XBits() << m.VectorDotProductDivide64(d.a, d.b, d.c, n); }},
        {"ChiSquared64", true, [](I & m, D & d, UInt64 n) { return XBits() << m.VectorChiSquared64(d.a, d.b, d.c, n); }},
        {"SquareMultiplySum64", true, [](I & m, D & d, UInt64 n) { return XBits() << m.VectorSquareMultiplySum64(d.a, d.b, n); }},
        {"CalcSearchVec2_64", true, [](I & m, D & d, UInt64 n) { double q = 0; m.VectorCalcSearchVec2_64(d.a, d.b, d.o, q, n); return XBits() << q << XOutput{d.o, n}; }},
    };
    return sKernels;
}
} // namespace

TEST(VectorKernels, KernelsWithoutProcessorFormsGiveThePortableBits)
{
    XVectorMathToolImp & portable = *Implementations()[0].itsImp;
    ForEachRun([&](const XRun & r) {
        // On this data the processor's own sums differ from the portable ones in the last
        // bits, so a kernel that summed through them would differ too.
        if (r.Groups() && r.n == 1000)
        {
            XArrays d(r.n, r.itsLayout);
            EXPECT_NE(r.Imp().VectorSum(d.a, r.n), portable.VectorSum(d.a, r.n));
            EXPECT_NE(r.Imp().VectorDotProduct(d.a, d.b, r.n), portable.VectorDotProduct(d.a, d.b, r.n));
        }
        for (const XPortableKernel & kernel : PortableKernels())
        {
            if (kernel.itsSSEOnly && (!r.itsImp.itsOptimised || r.itsImp.itsSSE2))
                continue;
            SCOPED_TRACE(kernel.itsName);
            XArrays mine(r.n, r.itsLayout), reference(r.n, r.itsLayout);
            EXPECT_TRUE(SameBits(kernel.itsRun(r.Imp(), mine, r.n), kernel.itsRun(portable, reference, r.n)));
        }
    });
}

TEST(VectorKernels, ExtremesOfNonEmptyArrays)
{
    ForEachRun([](const XRun & r) {
        if (r.n == 0)
            return; // told apart by implementation in the tests of the optimised forms
        XArrays d(r.n, r.itsLayout);
        float largest = d.b[0], smallest = d.b[0];
        for (UInt64 i = 1; i < r.n; ++i)
            largest = std::max(largest, d.b[i]), smallest = std::min(smallest, d.b[i]);
        EXPECT_EQ(r.Imp().VectorFindMaxValue(d.b, r.n), largest);
        EXPECT_EQ(r.Imp().VectorFindMinValue(d.b, r.n), smallest);
        float outMin = 0.f, outMax = 0.f;
        r.Imp().VectorFindMinMaxValue(d.b, outMin, outMax, r.n);
        EXPECT_EQ(outMin, smallest);
        EXPECT_EQ(outMax, largest);
    });
}

namespace
{
// An element-wise kernel on inputs x, y, z and output o of n elements; aWidth floats each.
struct XElementWise
{
    const char * itsName;
    UInt64 itsWidth;
    std::function<void(XVectorMathToolImp &, const float *, const float *, const float *, float *, UInt64)> itsRun;
};

const std::vector<XElementWise> & ElementWiseKernels()
{
    using I = XVectorMathToolImp;
    using P = const float *;
    static const std::vector<XElementWise> sKernels = {
        {"Add scalar", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorAdd(x, 2.f, o, n); }},
        {"Add", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorAdd(x, y, o, n); }},
        {"Subtract", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorSubtract(x, y, o, n); }},
        {"Multiply scalar", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorMultiply(x, 3.f, o, n); }},
        {"Multiply", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorMultiply(x, y, o, n); }},
        {"ComplexDivide", 2, [](I & m, P x, P, P z, float * o, UInt64 n) { m.VectorComplexDivide(x, z, o, n); }},
        {"ComplexMultiply", 2, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorComplexMultiply(x, y, o, n); }},
        {"ComplexMagnitude", 2, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorComplexMagnitude(x, o, n); }},
        {"ComplexReciprocal", 2, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorComplexReciprocal(x, o, n); }},
        {"Divide", 1, [](I & m, P x, P, P z, float * o, UInt64 n) { m.VectorDivide(x, z, o, n); }},
        {"MultiplyAndDivide abc", 1, [](I & m, P x, P y, P z, float * o, UInt64 n) { m.VectorMultiplyAndDivide(x, y, z, o, n); }},
        {"MultiplyAndDivide asb", 1, [](I & m, P x, P, P z, float * o, UInt64 n) { m.VectorMultiplyAndDivide(x, 2.f, z, o, n); }},
        {"MultiplyAndDivide abs", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorMultiplyAndDivide(x, y, 3.f, o, n); }},
        {"Square", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorSquare(x, o, n); }},
        {"AddAndMultiply", 1, [](I & m, P x, P y, P z, float * o, UInt64 n) { m.VectorAddAndMultiply(x, y, z, o, n); }},
        {"LogBaseX", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorLogBaseX(x, o, 3.f, n); }},
        {"Sqrt", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorSqrt(x, o, n); }},
        {"ReciprocalSqrt", 1, [](I & m, P x, P, P, float * o, UInt64 n) { m.VectorReciprocalSqrt(x, o, n); }},
        {"Reciprocal", 1, [](I & m, P, P, P z, float * o, UInt64 n) { m.VectorReciprocal(z, o, n); }},
        {"ClampBelow", 1, [](I & m, P, P y, P, float * o, UInt64 n) { m.VectorClampBelow(y, o, 0.f, n); }},
        {"ClampAbove", 1, [](I & m, P, P y, P, float * o, UInt64 n) { m.VectorClampAbove(y, o, 0.f, n); }},
        {"ScalarSubtract", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { m.VectorScalarSubtract(x, y, 2.f, 0.5f, o, n); }},
        {"CalcSearchVec1", 1, [](I & m, P x, P, P, float * o, UInt64 n) { float q; m.VectorCalcSearchVec1(x, o, 0.5f, q, n); }},
        {"CalcSearchVec2", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { float q; m.VectorCalcSearchVec2(x, y, o, q, n); }},
        {"CalcSearchVec2_64", 1, [](I & m, P x, P y, P, float * o, UInt64 n) { double q; m.VectorCalcSearchVec2_64(x, y, o, q, n); }},
    };
    return sKernels;
}
} // namespace

TEST(VectorKernels, OutputMayBeAnyInput)
{
    // The same kernel with o apart (preset to the input it will replace) and with o the input
    // itself must give the same bits.
    for (const XImplementation & imp : Implementations())
        for (const XElementWise & kernel : ElementWiseKernels())
            for (UInt64 n : {UInt64(17), UInt64(1000)})
                for (XLayout layout : {kAligned, kInputsMisaligned})
                    for (int replaced = 0; replaced < 3; ++replaced)
                    {
                        SCOPED_TRACE(std::string(imp.itsName) + " " + kernel.itsName + " n=" +
                                     std::to_string(n) + " input " + std::to_string(replaced));
                        XArrays apart(n, layout, kernel.itsWidth), inPlace(n, layout, kernel.itsWidth);
                        XTestFloatBuffer * inputs[] = {&apart.a, &apart.b, &apart.c};
                        XTestFloatBuffer * same[] = {&inPlace.a, &inPlace.b, &inPlace.c};
                        for (UInt64 i = 0; i < n * kernel.itsWidth; ++i)
                            apart.o[i] = (*inputs[replaced])[i];
                        kernel.itsRun(*imp.itsImp, apart.a, apart.b, apart.c, apart.o, n);
                        kernel.itsRun(*imp.itsImp, inPlace.a, inPlace.b, inPlace.c,
                                      *same[replaced], n);
                        EXPECT_TRUE(Matches(*same[replaced], n * kernel.itsWidth,
                                            [&](UInt64 i) { return apart.o[i]; }, 0.0));
                    }
}

TEST(VectorKernels, TwoOutputSearchKernelMayWriteOverItsInputs)
{
    for (const XImplementation & imp : Implementations())
    {
        SCOPED_TRACE(imp.itsName);
        const UInt64 n = 17;
        XArrays apart(n, kAligned), inPlace(n, kAligned);
        float q1 = 0.f, q2 = 0.f, r1 = 0.f, r2 = 0.f;
        imp.itsImp->VectorCalcSearchVecs1And2(apart.a, apart.b, apart.o, apart.p, 0.5f, q1, q2, n);
        // o1 over b and o2 over a: each output replaces the input the other one needs.
        imp.itsImp->VectorCalcSearchVecs1And2(inPlace.a, inPlace.b, inPlace.b, inPlace.a, 0.5f, r1, r2, n);
        EXPECT_TRUE(Matches(inPlace.b, n, [&](UInt64 i) { return apart.o[i]; }, 0.0));
        EXPECT_TRUE(Matches(inPlace.a, n, [&](UInt64 i) { return apart.p[i]; }, 0.0));
        EXPECT_EQ(q1, r1);
        EXPECT_EQ(q2, r2);
    }
}
