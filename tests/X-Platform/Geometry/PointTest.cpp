// Points: arithmetic with truncating integer division, ordering, distance, rotation, the
// interpolation between two points and the conversions between the point types.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <type_traits>

#include "X3DPoint.h"
#include "X3DPointF.h"
#include "X3DRect.h"
#include "XPoint.h"
#include "XPointF.h"
#include "XTestSupport.h"

TEST(PointTest, ArithmeticIsElementwiseAndIntegerDivisionTruncates)
{
    EXPECT_EQ(XPoint(), XPoint(0, 0));
    EXPECT_EQ(X3DPoint(), X3DPoint(0, 0, 0));
    EXPECT_EQ(XPoint(7, -7) / XPoint(2, 2), XPoint(3, -3));
    EXPECT_EQ(XPoint(7, -7) / 2, XPoint(3, -3));
    EXPECT_EQ(XPoint(1, 2) + XPoint(10, 20), XPoint(11, 22));
    EXPECT_EQ(XPoint(1, 2) - XPoint(10, 20), XPoint(-9, -18));
    EXPECT_EQ(XPoint(3, -2) * XPoint(4, 5), XPoint(12, -10));
    EXPECT_EQ(X3DPoint(-9, 9, 10) / 4, X3DPoint(-2, 2, 2));
    EXPECT_EQ(X3DPoint(1, 2, 3) * 3, X3DPoint(3, 6, 9));

    XPoint p(1, 1);
    p.Offset(2, -3);
    EXPECT_EQ(p, XPoint(3, -2));
    p.Offset(XPoint(-3, 2));
    EXPECT_EQ(p, XPoint(0, 0));
    X3DPointF q(1.0f, 2.0f, 3.0f);
    q /= 2.0f;
    EXPECT_EQ(q, X3DPointF(0.5f, 1.0f, 1.5f));
}

TEST(PointTest, IntegerFaultsAreInternalErrorsAndLeaveThePoint)
{
    const std::string zero = "divisor != 0";
    EXPECT_EQ(AssertionOf([] { (void)(XPoint(1, 1) / XPoint(0, 1)); }), zero);
    EXPECT_EQ(AssertionOf([] { (void)(XPoint(1, 1) / XPoint(1, 0)); }), zero);
    EXPECT_EQ(AssertionOf([] { (void)(XPoint(1, 1) / 0); }), zero);
    EXPECT_EQ(AssertionOf([] { (void)(X3DPoint(1, 1, 1) / X3DPoint(1, 1, 0)); }), zero);
    XPoint p(6, 8);
    EXPECT_EQ(AssertionOf([&] { p /= XPoint(2, 0); }), zero);
    EXPECT_EQ(p, XPoint(6, 8)); // x is not halved before y is refused
    X3DPoint q(6, 8, 10);
    EXPECT_EQ(AssertionOf([&] { q /= 0; }), zero);
    EXPECT_EQ(q, X3DPoint(6, 8, 10));
    // The smallest value over -1 traps in the processor just as a zero divisor does.
    const SInt32 smallest = std::numeric_limits<SInt32>::min();
    EXPECT_EQ(AssertionOf([&] { (void)(XPoint(smallest, 1) / -1); }), "quotient within range");
    EXPECT_EQ(XPoint(smallest + 1, smallest) / XPoint(-1, 1), XPoint(-(smallest + 1), smallest));

    // Float points divide by IEEE rules; what comes of it cannot become an integer point.
    const XPointF infinite = XPointF(1.0f, -1.0f) / 0.0f;
    EXPECT_EQ(infinite, XPointF(std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()));
    const std::string range = "value finite and within the integer range";
    EXPECT_EQ(AssertionOf([&] { XPoint converted(infinite); }), range);
    EXPECT_EQ(AssertionOf([] { X3DPoint converted(X3DPointF(0.0f, 0.0f, 0.0f) / 0.0f); }), range);
    EXPECT_EQ(AssertionOf([] { X3DPoint converted(XPointF(2147483648.0f, 0.0f), 0); }), range);
    XPoint r(1, 0);
    EXPECT_EQ(AssertionOf([&] { r.Rotate(std::numeric_limits<double>::quiet_NaN()); }), range);
    XPoint far(2147483647, 2147483647); // an eighth of a turn puts y at 2147483647 * sqrt(2)
    EXPECT_EQ(AssertionOf([&] { far.Rotate(std::numbers::pi / 4); }), range);
    EXPECT_EQ(XPoint(XPointF(2147483520.0f, -2147483648.0f)), XPoint(2147483520, smallest));
}

TEST(PointTest, OrderingIsLexicographic)
{
    EXPECT_TRUE(XPoint(1, 5) < XPoint(2, 0));
    EXPECT_TRUE(XPoint(1, 2) < XPoint(1, 3));
    EXPECT_FALSE(XPoint(1, 3) < XPoint(1, 3));
    EXPECT_TRUE(XPoint(1, 3) <= XPoint(1, 3));
    EXPECT_TRUE(XPoint(2, 0) > XPoint(1, 9));
    EXPECT_TRUE(X3DPoint(1, 1, 1) < X3DPoint(1, 1, 2));
    EXPECT_TRUE(X3DPoint(1, 2, 0) > X3DPoint(1, 1, 9));
    EXPECT_TRUE(X3DPoint(0, 9, 9) < X3DPoint(1, 0, 0));
    EXPECT_TRUE(X3DPoint(4, 4, 4) >= X3DPoint(4, 4, 4));
    EXPECT_NE(X3DPoint(1, 2, 3), X3DPoint(1, 2, 4));
}

TEST(PointTest, DistanceIsDoubleIn2DAndFloatIn3D)
{
    static_assert(std::is_same_v<decltype(XPoint().Distance(XPoint())), double>);
    static_assert(std::is_same_v<decltype(X3DPoint().Distance(X3DPoint())), float>);
    EXPECT_EQ(XPoint(0, 0).Distance(XPoint(3, 4)), 5.0);
    EXPECT_EQ(X3DPoint(1, 1, 1).Distance(X3DPoint(2, 3, 3)), 3.0f);
    EXPECT_DOUBLE_EQ(XPointF(0.5f, 0.0f).Distance(XPointF(0.0f, 0.0f)), 0.5);
}

TEST(PointTest, RotationTruncatesTowardZeroInTheIntegerForm)
{
    // By pi: x' = -3 - 4 sin(pi) is just below -3, y' = 3 sin(pi) - 4 just above -4.
    XPoint p(3, 4);
    p.Rotate(std::numbers::pi);
    EXPECT_EQ(p, XPoint(-3, -3));
    XPointF f(3.0f, 4.0f);
    f.Rotate(std::numbers::pi);
    EXPECT_EQ(f, XPointF(-3.0f, -4.0f));

    XPoint q(10, 0);
    q.Rotate(std::numbers::pi / 2);
    EXPECT_EQ(q, XPoint(0, 10));
}

TEST(PointTest, InterpolationLeavesOutTheEndsAndTruncates)
{
    XVector<XPointT<SInt32>> out;
    XPointT<SInt32>::InterpolatePoints(XPoint(0, 0), XPoint(10, 5), 1, out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0], XPoint(5, 2));

    // Toward zero: the midpoint of 0 and -5 is -2, not -3.
    XPointT<SInt32>::InterpolatePoints(XPoint(0, 0), XPoint(-5, 0), 1, out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0], XPoint(-2, 0));

    XPointT<SInt32>::InterpolatePoints(XPoint(0, 0), XPoint(-8, 8), 3, out);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0], XPoint(-2, 2));
    EXPECT_EQ(out[2], XPoint(-6, 6));

    // n = 0 clears what was there.
    XPointT<SInt32>::InterpolatePoints(XPoint(0, 0), XPoint(9, 9), 0, out);
    EXPECT_TRUE(out.empty());

    XVector<XPointT<float>> fout;
    XPointT<float>::InterpolatePoints(XPointF(0.0f, 0.0f), XPointF(-5.0f, 1.0f), 1, fout);
    ASSERT_EQ(fout.size(), 1u);
    EXPECT_EQ(fout[0], XPointF(-2.5f, 0.5f));

    XVector<X3DPointT<SInt32>> out3;
    X3DPointT<SInt32>::InterpolatePoints(X3DPoint(0, 0, 0), X3DPoint(4, 8, -4), 3, out3);
    ASSERT_EQ(out3.size(), 3u);
    EXPECT_EQ(out3[0], X3DPoint(1, 2, -1));
    EXPECT_EQ(out3[1], X3DPoint(2, 4, -2));
    EXPECT_EQ(out3[2], X3DPoint(3, 6, -3));
}

TEST(PointTest, ConversionsRoundHalfUpOrConvertExactly)
{
    EXPECT_EQ(XPoint(XPointF(2.5f, -2.5f)), XPoint(3, -2));
    EXPECT_EQ(XPoint(XPointF(0.49f, -0.51f)), XPoint(0, -1));
    EXPECT_EQ(X3DPoint(X3DPointF(0.49f, -0.5f, 1.5f)), X3DPoint(0, 0, 2));
    EXPECT_EQ(X3DPoint(XPointF(1.5f, -1.5f), 7), X3DPoint(2, -1, 7));
    EXPECT_EQ(X3DPoint(XPoint(1, 2), 3), X3DPoint(1, 2, 3));
    EXPECT_EQ(X3DPointF(XPoint(1, 2), 3), X3DPointF(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(XPointF(XPoint(3, -4)), XPointF(3.0f, -4.0f));
    EXPECT_EQ(X3DPointF(X3DPoint(3, -4, 5)), X3DPointF(3.0f, -4.0f, 5.0f));
    EXPECT_EQ(XPoint(X3DPoint(1, 2, 3)), XPoint(1, 2));
    EXPECT_EQ(XPointF(X3DPointF(1.5f, 2.5f, 3.5f)), XPointF(1.5f, 2.5f));
    EXPECT_EQ(X3DPointT<SInt32>(XPointT<SInt32>(1, 2)), X3DPoint(1, 2, 0));

    X3DPoint p(1, 2, 3);
    EXPECT_EQ(p.GetXY(), XPoint(1, 2));
    EXPECT_EQ(p.GetXZ(), XPoint(1, 3));
    EXPECT_EQ(p.GetYZ(), XPoint(3, 2)); // z runs horizontally
}

TEST(PointTest, RoundFloorCeilAndNaN)
{
    XPointF p(-1.5f, 2.5f);
    EXPECT_EQ(XPointF(p).Round(), XPointF(-1.0f, 3.0f));
    EXPECT_EQ(XPointF(p).Floor(), XPointF(-2.0f, 2.0f));
    EXPECT_EQ(XPointF(p).Ceil(), XPointF(-1.0f, 3.0f));
    X3DPointF q(-0.5f, 0.49f, -2.5f);
    EXPECT_EQ(X3DPointF(q).Round(), X3DPointF(0.0f, 0.0f, -2.0f));
    EXPECT_EQ(X3DPointF(q).Floor(), X3DPointF(-1.0f, 0.0f, -3.0f));
    EXPECT_EQ(X3DPointF(q).Ceil(), X3DPointF(-0.0f, 1.0f, -2.0f));

    float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(p.IsNaN());
    EXPECT_TRUE(XPointF(1.0f, nan).IsNaN());
    EXPECT_TRUE(X3DPointF(1.0f, 2.0f, nan).IsNaN());
    EXPECT_FALSE(q.IsNaN());
}

TEST(PointTest, KeepWithinClampsIntoTheBox)
{
    X3DRect box(0, 0, 0, 10, 10, 10);
    X3DPoint p(-5, 20, 5);
    p.KeepWithin(box);
    EXPECT_EQ(p, X3DPoint(0, 9, 5));
}
