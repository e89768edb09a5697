// Checked integer division and float-to-integer truncation: the operands the processor traps on
// or the language leaves undefined are internal errors, reported at the caller's line; every
// other operand gives the plain operator's result.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "XCheckedArithmetic.h"
#include "XTestSupport.h"

namespace
{
constexpr SInt32 kSmallest = std::numeric_limits<SInt32>::min();
const std::string kRange = "value finite and within the integer range";
} // namespace

TEST(DivisionGuardTest, QuotientsAndRemaindersTruncateTowardZero)
{
    EXPECT_EQ(XCheckedDivide(-7, 2), -3);
    EXPECT_EQ(XCheckedRemainder(-7, 2), -1);
    EXPECT_EQ(XCheckedRemainder(7, -2), 1);
    EXPECT_EQ(XCheckedDivide(7u, 2u), 3u);
    EXPECT_EQ(XCheckedDivide(kSmallest + 1, -1), 2147483647);
    // The smallest value rem -1 is 0, where the processor's instruction would trap.
    EXPECT_EQ(XCheckedRemainder(kSmallest, -1), 0);
    EXPECT_EQ(XCheckedRemainder(std::numeric_limits<SInt64>::min(), SInt64(-1)), 0);
    EXPECT_EQ(XCheckedDivide(1.0f, 0.0f), std::numeric_limits<float>::infinity());

    EXPECT_EQ(AssertionOf([] { XCheckedDivide(1, 0); }), "divisor != 0");
    EXPECT_EQ(AssertionOf([] { XCheckedDivide(UInt64(1), UInt64(0)); }), "divisor != 0");
    EXPECT_EQ(AssertionOf([] { XCheckedRemainder(1u, 0u); }), "divisor != 0");
    EXPECT_EQ(AssertionOf([] { XCheckedDivide(kSmallest, -1); }), "quotient within range");
    EXPECT_EQ(AssertionOf([] { XCheckedDivide(std::numeric_limits<SInt64>::min(), SInt64(-1)); }),
              "quotient within range");
}

TEST(DivisionGuardTest, TruncationKeepsEveryValueOfTheTypeAndRefusesTheRest)
{
    EXPECT_EQ(XCheckedTruncate<SInt32>(-2147483648.9), kSmallest);
    EXPECT_EQ(XCheckedTruncate<SInt32>(2147483647.9), 2147483647);
    EXPECT_EQ(XCheckedTruncate<UInt32>(-0.9), 0u);
    EXPECT_EQ(XCheckedTruncate<UInt32>(4294967295.5), 4294967295u);
    EXPECT_EQ(XCheckedTruncate<SInt64>(-9223372036854775808.0), std::numeric_limits<SInt64>::min());
    EXPECT_EQ(XCheckedTruncate<UInt8>(255.99), 255);

    const double infinity = std::numeric_limits<double>::infinity();
    for (double value : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 2147483648.0, -2147483649.0})
        EXPECT_EQ(AssertionOf([value] { XCheckedTruncate<SInt32>(value); }), kRange) << value;
    EXPECT_EQ(AssertionOf([] { XCheckedTruncate<UInt32>(-1.0); }), kRange);
    EXPECT_EQ(AssertionOf([] { XCheckedTruncate<UInt32>(4294967296.0); }), kRange);
    EXPECT_EQ(AssertionOf([] { XCheckedTruncate<SInt64>(9223372036854775808.0); }), kRange);
    EXPECT_EQ(AssertionOf([] { XCheckedTruncate<UInt8>(256.0); }), kRange);
}

TEST(DivisionGuardTest, TheReportNamesTheCallersFileAndLine)
{
    int line = 0;
    try
    {
        line = __LINE__ + 1;
        XCheckedDivide(1, 0);
        FAIL() << "no internal error";
    }
    catch (const XInternalError & anError)
    {
        EXPECT_EQ(anError.GetLine(), line);
        EXPECT_NE(anError.GetFile().find("DivisionGuardTest.cpp"), std::string::npos) << anError.GetFile();
    }
}
