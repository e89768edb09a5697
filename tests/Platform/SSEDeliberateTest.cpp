// The deliberate properties of the optimised vector kernels, on small hand-worked arrays: the
// start values of the running extrema, the misaligned complex reciprocal, the accumulating
// tail of VectorAddAndMultiply, the chi-squared lanes of SSE2, the root of zero in a group, the
// unchecked scalar division, and four running sums. Each is checked against the portable loop,
// which has none of them.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "WSSE2VectorMathToolImp.h"
#include "WSSEVectorMathToolImp.h"
#include "XInternalError.h"
#include "XTestFloatBuffer.h"
#include "XVectorMathToolImp.h"

namespace
{
XVectorMathToolImp sPortable;
WSSEVectorMathToolImp sSSE;
WSSE2VectorMathToolImp sSSE2;

// The smallest positive normal float, bits 0x00800000.
constexpr float kFloorOfMax = 1.17549435e-38f;
} // namespace

TEST(SSEDeliberate, RunningExtremaStartFromFixedValues)
{
    XTestFloatBuffer negative({-1.f, -2.f, -3.f, -4.f, -5.f});
    for (WSSEVectorMathToolImp * sse : {&sSSE, static_cast<WSSEVectorMathToolImp *>(&sSSE2)})
    {
        EXPECT_EQ(sse->VectorFindMaxValue(negative, 5), kFloorOfMax);
        float outMin = 0.f, outMax = 0.f;
        sse->VectorFindMinMaxValue(negative, outMin, outMax, 5);
        EXPECT_EQ(outMin, -5.f);
        EXPECT_EQ(outMax, kFloorOfMax);
        // n = 0 on an aligned array: the start values themselves.
        EXPECT_EQ(sse->VectorFindMaxValue(negative, 0), kFloorOfMax);
        EXPECT_EQ(sse->VectorFindMinValue(negative, 0), std::numeric_limits<float>::max());
    }
    // The portable loops start from the first element, which they read even for n = 0.
    EXPECT_EQ(sPortable.VectorFindMaxValue(negative, 5), -1.f);
    EXPECT_EQ(sPortable.VectorFindMaxValue(negative, 0), -1.f);
    EXPECT_EQ(sPortable.VectorFindMinValue(negative, 0), -1.f);
    // A misaligned array goes to the portable loop.
    XTestFloatBuffer shifted({-1.f, -2.f, -3.f, -4.f, -5.f}, 1);
    EXPECT_EQ(sSSE.VectorFindMaxValue(shifted, 5), -1.f);
    // Infinities lie beyond the start of the running minimum.
    const float inf = std::numeric_limits<float>::infinity();
    XTestFloatBuffer infinite({inf, inf, inf, inf});
    EXPECT_EQ(sSSE.VectorFindMinValue(infinite, 4), std::numeric_limits<float>::max());
    EXPECT_EQ(sPortable.VectorFindMinValue(infinite, 4), inf);
}

TEST(SSEDeliberate, MisalignedComplexReciprocalGivesTheMagnitude)
{
    // 1 / (3 + 4i) = (3 - 4i) / 25; its squared magnitude is 25.
    XTestFloatBuffer aligned({3.f, 4.f, 3.f, 4.f, 3.f, 4.f}), out(6, 0);
    sSSE.VectorComplexReciprocal(aligned, out, 3);
    for (int k = 0; k < 3; ++k)
    {
        EXPECT_NEAR(out[2 * k], 0.12f, 1e-7f);
        EXPECT_NEAR(out[2 * k + 1], -0.16f, 1e-7f);
    }
    XTestFloatBuffer shifted({3.f, 4.f, 3.f, 4.f, 3.f, 4.f}, 1);
    sSSE2.VectorComplexReciprocal(shifted, out, 3);
    for (int k = 0; k < 3; ++k)
    {
        EXPECT_EQ(out[2 * k], 25.f);
        EXPECT_EQ(out[2 * k + 1], 0.f);
    }
}

TEST(SSEDeliberate, AddAndMultiplyTailAccumulates)
{
    XTestFloatBuffer a({1.f, 2.f, 3.f, 4.f, 5.f, 6.f}), b({1.f, 1.f, 1.f, 1.f, 1.f, 1.f}),
        c({2.f, 2.f, 2.f, 2.f, 2.f, 2.f});
    XTestFloatBuffer o({100.f, 100.f, 100.f, 100.f, 100.f, 100.f});
    sSSE.VectorAddAndMultiply(a, b, c, o, 6);
    const float sse[] = {4.f, 6.f, 8.f, 10.f, 112.f, 114.f};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(o[i], sse[i]) << i;
    sPortable.VectorAddAndMultiply(a, b, c, o, 6);
    EXPECT_EQ(o[4], 12.f);
}

TEST(SSEDeliberate, ChiSquared64GroupsAddTheInputInLanesZeroAndOne)
{
    // Terms (a - 0)^2 / 1: 1, 4, 9, 16, 25. SSE2 groups add a (1 and 2) for lanes 0 and 1:
    // 1 + 2 + 9 + 16 + 25 = 53; the portable loop and the SSE class: 55.
    XTestFloatBuffer a({1.f, 2.f, 3.f, 4.f, 5.f}), b(5, 0), c({1.f, 1.f, 1.f, 1.f, 1.f});
    EXPECT_NEAR(sSSE2.VectorChiSquared64(a, b, c, 5), 53.0, 1e-5);
    EXPECT_EQ(sSSE.VectorChiSquared64(a, b, c, 5), 55.0);
    EXPECT_EQ(sPortable.VectorChiSquared64(a, b, c, 5), 55.0);
    EXPECT_NEAR(sSSE2.VectorChiSquared(a, b, c, 5), 55.f, 1e-5f);
}

TEST(SSEDeliberate, RootOfZeroIsNaNInAGroupAndZeroInTheTail)
{
    XTestFloatBuffer zeros(5, 0), out(5, 0);
    sSSE.VectorSqrt(zeros, out, 5);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(std::isnan(out[i])) << i;
    EXPECT_EQ(out[4], 0.f);
    sPortable.VectorSqrt(zeros, out, 5);
    EXPECT_EQ(out[0], 0.f);
}

TEST(SSEDeliberate, OnlyThePortableFormChecksTheScalarDivisor)
{
    XTestFloatBuffer a({1.f, 2.f, 3.f, 4.f, 5.f}), out(5, 0);
    EXPECT_NO_THROW(sSSE.VectorMultiplyAndDivide(a, a, 0.f, out, 5));
    EXPECT_EQ(out[4], std::numeric_limits<float>::infinity());
    try
    {
        sPortable.VectorMultiplyAndDivide(a, a, 0.f, out, 5);
        ADD_FAILURE() << "no internal error";
    }
    catch (const XInternalError & anError)
    {
        EXPECT_EQ(anError.GetExpression(), "aScalar != 0.f");
    }
}

TEST(SSEDeliberate, GroupsDivideByRefinedReciprocalTailDividesTruly)
{
    XTestFloatBuffer ones({1.f, 1.f, 1.f, 1.f, 1.f}), threes({3.f, 3.f, 3.f, 3.f, 3.f}), out(5, 0);
    sSSE.VectorDivide(ones, threes, out, 5);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(out[i], 1.f / 3.f, 1e-7f) << i;
    EXPECT_EQ(out[4], 1.f / 3.f);
}

TEST(SSEDeliberate, FourRunningSums)
{
    // Lanes hold 1e8 - 1e8, 1 + 1, 1 + 1, 1 + 1: 6. In order, each 1 added to 1e8 is lost to
    // rounding (floats near 1e8 are 8 apart): 1e8 - 1e8 + 1 + 1 + 1 = 3.
    XTestFloatBuffer a({1e8f, 1.f, 1.f, 1.f, -1e8f, 1.f, 1.f, 1.f}), ones(8, 0);
    for (int i = 0; i < 8; ++i)
        ones[i] = 1.f;
    EXPECT_EQ(sSSE.VectorSum(a, 8), 6.f);
    EXPECT_EQ(sSSE.VectorDotProduct(a, ones, 8), 6.f);
    EXPECT_EQ(sPortable.VectorSum(a, 8), 3.f);
    // The double sums of SSE2 keep every 1.
    EXPECT_EQ(sSSE2.VectorSum64(a, 8), 6.0);
    EXPECT_EQ(sPortable.VectorSum64(a, 8), 6.0);
}
