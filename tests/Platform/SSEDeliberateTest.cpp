// The deliberate properties of the optimised vector kernels, on small hand-worked arrays: the
// start values of the running extrema, the root of zero in a group, the unchecked scalar
// division, the refined reciprocal of a group, and four running sums. Each is checked against
// the portable loop, which has none of them. (The misaligned complex reciprocal, the
// accumulating tail of VectorAddAndMultiply and the chi-squared lanes of SSE2 are checked
// against references at every length in VectorKernelTest.)

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "WSSE2VectorMathToolImp.h"
#include "WSSEVectorMathToolImp.h"
#include "XTestFloatBuffer.h"
#include "XTestSupport.h"
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
    EXPECT_EQ(AssertionOf([&] { sPortable.VectorMultiplyAndDivide(a, a, 0.f, out, 5); }), "aScalar != 0.f");
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
