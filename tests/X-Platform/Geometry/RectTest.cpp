// 2-D rectangles, integer and float: normalising, the half-open tests, the edge setters, growing
// and combining, placing and scaling, mapping between frames, and the conversions.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "X3DRect.h"
#include "XPointF.h"
#include "XRect.h"
#include "XRectF.h"
#include "XTestSupport.h"

namespace
{
// Compares all four edges in one assertion, so a failure shows the whole rectangle.
testing::AssertionResult HasEdges(const XRect & aRect, SInt32 aLeft, SInt32 aTop, SInt32 aRight, SInt32 aBottom)
{
    if (aRect.GetLeft() == aLeft && aRect.GetTop() == aTop && aRect.GetRight() == aRight &&
        aRect.GetBottom() == aBottom)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << aRect.GetLeft() << ", " << aRect.GetTop() << ", "
                                       << aRect.GetRight() << ", " << aRect.GetBottom() << ")";
}
} // namespace

TEST(RectTest, ConstructorsNormaliseAndExtentsAreHalfOpen)
{
    EXPECT_TRUE(HasEdges(XRect(), 0, 0, 0, 0));
    EXPECT_TRUE(HasEdges(XRect(10, 20, 0, 5), 0, 5, 10, 20));
    EXPECT_TRUE(HasEdges(XRect(XPoint(4, 3), XPoint(1, 2)), 1, 2, 4, 3));

    XRect r(0, 0, 10, 10);
    EXPECT_FALSE(r.Contains(r.GetRight(), r.GetTop()));
    EXPECT_TRUE(r.Contains(r.GetRight() - 1, r.GetTop()));
    EXPECT_FALSE(r.Contains(XPoint(0, 10)));
    EXPECT_TRUE(r.Contains(XRect(0, 0, 10, 10)));
    EXPECT_FALSE(r.Contains(XRect(0, 0, 11, 10)));
    // The integer form truncates a float point toward zero: -0.5 counts as column 0.
    EXPECT_TRUE(r.Contains(XPointF(-0.5f, 0.0f)));
    EXPECT_FALSE(r.Contains(XPointF(-1.0f, 0.0f)));

    XRect big(0, 0, 100000, 100000);
    EXPECT_EQ(big.GetArea(), 10000000000LL);
    EXPECT_EQ(big.GetPerimeter(), 400000);
    EXPECT_EQ(XRectF(0.0f, 0.0f, 2.5f, 2.0f).GetArea(), 5.0f);

    EXPECT_EQ(r.GetTopRight(), XPoint(10, 0));
    EXPECT_EQ(r.GetBotLeft(), XPoint(0, 10));
    EXPECT_EQ(r.GetBotRight(), XPoint(10, 10));
}

TEST(RectTest, EmptyInsideOutAndShape)
{
    XRect r(0, 0, 10, 10);
    r.Grow(-6, 0, false);
    EXPECT_TRUE(HasEdges(r, 6, 0, 4, 10));
    EXPECT_TRUE(r.IsEmptyOrInsideOut());
    EXPECT_FALSE(r.IsEmpty()); // the unsigned width is 0xFFFFFFFE
    EXPECT_TRUE(XRect(3, 3, 3, 9).IsEmpty());

    // Height over width as an unsigned quotient: 2 wide by 3 high and 3 by 4 both give 1.
    EXPECT_TRUE(XRect(0, 0, 2, 3).IsSameShapeAs(XRect(0, 0, 3, 4)));
    EXPECT_FALSE(XRectF(0, 0, 2, 3).IsSameShapeAs(XRectF(0, 0, 3, 4)));
    EXPECT_TRUE(XRect(0, 0, 2, 3).IsSameSizeAs(XRect(5, 5, 7, 8)));
}

TEST(RectTest, EdgeSettersDragTheOtherEdge)
{
    XRect r(0, 0, 10, 10);
    r.SetRight(-3);
    EXPECT_TRUE(HasEdges(r, -3, 0, -3, 10));
    r.SetBottom(20);
    r.SetLeft(20);
    EXPECT_TRUE(HasEdges(r, 20, 0, 20, 20));
    r.SetTopLeft(XPoint(0, 30));
    EXPECT_TRUE(HasEdges(r, 0, 30, 20, 30));
    r.SetBotRight(XPoint(5, 35));
    EXPECT_TRUE(HasEdges(r, 0, 30, 5, 35));

    XRect w(5, 0, 10, 10);
    w.SetWidth(3);
    EXPECT_TRUE(HasEdges(w, 5, 0, 8, 10));
    // A width that reads as negative wraps the right edge below the left, which then follows.
    w.SetWidth(UInt32(-10));
    EXPECT_TRUE(HasEdges(w, -5, 0, -5, 10));
    w.SetDimensions(XPoint(2, 4));
    EXPECT_TRUE(HasEdges(w, -5, 0, -3, 4));

    XRect m(1, 2, 4, 6);
    m.SetPosition(10, 20);
    EXPECT_TRUE(HasEdges(m, 10, 20, 13, 24));
    m.Offset(XPoint(-10, -20));
    EXPECT_TRUE(HasEdges(m, 0, 0, 3, 4));
    m.Inset(1, 1, 1, 1);
    EXPECT_TRUE(HasEdges(m, 1, 1, 2, 3));

    // Inset raises the left edge first, dragging the right along, then lowers the right.
    XRect n(0, 0, 10, 10);
    n.Inset(15, 2, 0, 4);
    EXPECT_TRUE(HasEdges(n, 15, 2, 15, 6));
}

TEST(RectTest, CentresLinearPositionsAndConstrainedPoints)
{
    EXPECT_EQ(XRect(0, 0, 5, 5).GetHCentre(), 2);
    EXPECT_EQ(XRect(-5, 0, 0, 7).GetCentre(), XPoint(-3, 3));
    EXPECT_EQ(XRectF(0, 0, 5, 5).GetHCentre(), 2.5f);

    XRect r(2, 3, 12, 13);
    EXPECT_EQ(r.GetLinearPos(XPoint(5, 6)), 33u);
    EXPECT_EQ(r.GetPointFromLinearPos(33), XPoint(5, 6));
    EXPECT_EQ(r.GetLinearPos(XPoint(1, 3)), 0xFFFFFFFFu); // unsigned wrap left of the rectangle
    // The float form does not truncate the quotient: x stays at left.
    XPointF f = XRectF(2, 3, 12, 13).GetPointFromLinearPos(33.0f);
    EXPECT_EQ(f.x, 2.0f);
    EXPECT_FLOAT_EQ(f.y, 6.3f);

    XPoint p(-5, 15);
    XRect(0, 0, 10, 10).ConstrainPoint(p);
    EXPECT_EQ(p, XPoint(0, 9));
    XPoint q(7, 7);
    XRect(5, 5, 5, 5).ConstrainPoint(q);
    EXPECT_EQ(q, XPoint(4, 4)); // an empty rectangle leaves left - 1
    XPointT<float> g(9.5f, 20.0f);
    XRectF(0, 0, 10, 10).ConstrainPoint(g);
    EXPECT_EQ(g, XPointF(9.0f, 9.0f)); // the float form subtracts exactly 1
}

TEST(RectTest, GrowShrinkAndCollapseAtTheTruncatedMean)
{
    XRect r(0, 0, 10, 10);
    r.Grow(2, 3);
    EXPECT_TRUE(HasEdges(r, -2, -3, 12, 13));
    XRect c(0, 0, 10, 10);
    c.Grow(-6, 0, true);
    EXPECT_TRUE(HasEdges(c, 5, 0, 5, 10));
    // The mean of -5 and -6 truncates toward zero.
    XRect n(-10, 0, -1, 10);
    n.Grow(-5, 0, true);
    EXPECT_TRUE(HasEdges(n, -5, 0, -5, 10));
    XRect s(0, 0, 4, 4);
    s.Shrink(3, 3);
    EXPECT_TRUE(HasEdges(s, 2, 2, 2, 2));
}

TEST(RectTest, SectLeavesAnEmptyRectangleOnTheNearEdge)
{
    XRect r(0, 0, 10, 10);
    r &= XRect(20, 20, 30, 30);
    EXPECT_TRUE(HasEdges(r, 20, 20, 20, 20));
    EXPECT_TRUE(r.IsEmpty());

    XRect o(0, 0, 10, 10);
    o.Sect(XRect(5, -5, 15, 5));
    EXPECT_TRUE(HasEdges(o, 5, 0, 10, 5));

    XRect inside(0, 0, 10, 10);
    inside.Grow(-6, 0, false); // left 6, right 4
    XRect kept = inside;
    kept.Sect(XRect(0, 0, 10, 10), false);
    EXPECT_TRUE(HasEdges(kept, 6, 0, 4, 10));
    inside.Sect(XRect(0, 0, 10, 10), true);
    EXPECT_TRUE(HasEdges(inside, 5, 0, 5, 10));
}

TEST(RectTest, UnionCountsAnEmptyOperandByItsPosition)
{
    XRect r(0, 0, 10, 10);
    r += XRect(100, 100, 100, 100);
    EXPECT_TRUE(HasEdges(r, 0, 0, 100, 100));
    XRect u(5, 5, 6, 6);
    u.Union(XRect(-1, 2, 3, 4));
    EXPECT_TRUE(HasEdges(u, -1, 2, 6, 6));
}

TEST(RectTest, CentringAlignmentAndConstraint)
{
    XRect r(0, 0, 4, 4);
    r.CentreOn(XRect(10, 10, 21, 21));
    EXPECT_TRUE(HasEdges(r, 13, 13, 17, 17));
    // (2 - 5) / 2 truncates to -1.
    XRect big(0, 0, 5, 5);
    big.CentreOn(XRect(0, 0, 2, 2));
    EXPECT_TRUE(HasEdges(big, -1, -1, 4, 4));
    XRect p(0, 0, 5, 4);
    p.CentreOn(XPoint(10, 10));
    EXPECT_TRUE(HasEdges(p, 8, 8, 13, 12));
    XRect h(0, 0, 4, 4);
    h.CentreH(XRect(10, 10, 20, 20));
    EXPECT_TRUE(HasEdges(h, 13, 0, 17, 4));

    XRect a(0, 0, 4, 4);
    a.Align(XRect(10, 10, 20, 20), kAlignBottom | kAlignRight);
    EXPECT_TRUE(HasEdges(a, 16, 16, 20, 20));
    a.Align(XRect(10, 10, 20, 20), kAlignTop | kAlignBottom | kAlignLeft | kAlignRight);
    EXPECT_TRUE(HasEdges(a, 10, 10, 14, 14));
    a.Align(XRect(10, 10, 20, 20), kAlignVCentre | kAlignHCentre);
    EXPECT_TRUE(HasEdges(a, 13, 13, 17, 17));
    a.Align(XRect(0, 0, 1, 1), 0);
    EXPECT_TRUE(HasEdges(a, 13, 13, 17, 17));

    XRect s(-5, 0, 5, 5);
    s.ConstrainWithin(XRect(0, 0, 100, 100));
    EXPECT_TRUE(HasEdges(s, 0, 0, 10, 5));
    XRect t(95, 95, 105, 105);
    t.ConstrainWithin(XRect(0, 0, 100, 100));
    EXPECT_TRUE(HasEdges(t, 90, 90, 100, 100));
    XRect wide(0, 0, 200, 10);
    wide.ConstrainWithin(XRect(0, 0, 100, 100)); // too wide: centred, not resized
    EXPECT_TRUE(HasEdges(wide, -50, 0, 150, 10));
}

TEST(RectTest, ScaleToKeepsTheAspectAndScaleByTruncates)
{
    XRect wide(0, 0, 4, 2);
    wide.ScaleTo(XRect(0, 0, 100, 100));
    EXPECT_TRUE(HasEdges(wide, 0, 25, 100, 75));
    XRect tall(0, 0, 2, 4);
    tall.ScaleTo(XRect(0, 0, 100, 100));
    EXPECT_TRUE(HasEdges(tall, 25, 0, 75, 100));
    XRect odd(0, 0, 3, 2);
    odd.ScaleTo(XRect(0, 0, 10, 10)); // height 10 / 1.5 = 6.67 truncates to 6
    EXPECT_TRUE(HasEdges(odd, 0, 2, 10, 8));

    // Width 10 * 0.55 = 5.5 truncates to 5; height 15, and (10 - 15) / 2 truncates to -2.
    XRect s(0, 0, 10, 10);
    s.ScaleBy(0.55, 1.5);
    EXPECT_TRUE(HasEdges(s, 2, -2, 7, 13));
    XRectF f(0, 0, 10, 10);
    f.ScaleBy(0.55, 1.5);
    EXPECT_FLOAT_EQ(f.GetWidth(), 5.5f);
    EXPECT_FLOAT_EQ(f.GetLeft(), 2.25f);
    EXPECT_FLOAT_EQ(f.GetTop(), -2.5f);
}

TEST(RectTest, AlignByValueMovesNegativeEdgesTowardZero)
{
    XRect r(-3, -3, 3, 3);
    r.AlignByValue(8, 8);
    EXPECT_TRUE(HasEdges(r, 0, 0, 8, 8));
    XRect p(9, 17, 15, 24);
    p.AlignByValue(8, 8);
    EXPECT_TRUE(HasEdges(p, 8, 16, 16, 24));
    XRectF f(-3, -3, 3, 3);
    f.AlignByValue(8, 8);
    EXPECT_EQ(f, XRectF(0, 0, 8, 8));
    XRect n(-11, -20, -9, -1);
    // -11 rem 8 is -3, so left goes up to -8; right -9 rem 8 is -1, so right gains 8 - (-1) = 9.
    n.AlignByValue(8, 8);
    EXPECT_TRUE(HasEdges(n, -8, -16, 0, 8));
}

TEST(RectTest, MapScalesOutwardAndMapPointWrapsUnsigned)
{
    XRect r(1, 1, 3, 3);
    r.Map(XRect(0, 0, 10, 10), XRect(100, 100, 103, 103));
    EXPECT_TRUE(HasEdges(r, 100, 100, 101, 101));
    XRect h(5, 5, 5, 5);
    h.Map(XRect(0, 0, 10, 10), XRect(0, 0, 3, 3)); // 1.5: floor low, ceiling high
    EXPECT_TRUE(HasEdges(h, 1, 1, 2, 2));
    XRectF f(1, 1, 3, 3);
    f.Map(XRectF(0, 0, 10, 10), XRectF(100, 100, 103, 103));
    EXPECT_FLOAT_EQ(f.GetLeft(), 100.3f);
    EXPECT_FLOAT_EQ(f.GetRight(), 100.9f);

    XPointT<SInt32> p(5, 5);
    XRect::MapPoint(p, XRect(0, 0, 10, 10), XRect(0, 0, 20, 20));
    EXPECT_EQ(p, XPoint(10, 10));
    // Left of the source: 20 * 0xFFFFFFFF wraps to 0xFFFFFFEC, divided unsigned by 10.
    XPointT<SInt32> left(-1, 0);
    XRect::MapPoint(left, XRect(0, 0, 10, 10), XRect(0, 0, 20, 20));
    EXPECT_EQ(left.x, 429496727);
    XPointT<float> g(-1.0f, 5.0f);
    XRectF::MapPoint(g, XRectF(0, 0, 10, 10), XRectF(0, 0, 20, 20));
    EXPECT_EQ(g, XPointF(-2.0f, 10.0f));

    XRect i(2, 0, 5, 1);
    i.InvertX();
    EXPECT_TRUE(HasEdges(i, -5, 0, -2, 1));
    i.InvertY();
    EXPECT_TRUE(HasEdges(i, -5, -1, -2, 0));
}

TEST(RectTest, ZeroExtentsAndStepsAreInternalErrorsAndLeaveTheRectangle)
{
    const std::string width = "width != 0", source = "source extent != 0";
    EXPECT_EQ(AssertionOf([] { (void)XRect(0, 0, 0, 5).IsSameShapeAs(XRect(0, 0, 1, 1)); }), width);
    EXPECT_EQ(AssertionOf([] { (void)XRect(0, 0, 1, 1).IsSameShapeAs(XRect(0, 0, 0, 5)); }), width);
    EXPECT_EQ(AssertionOf([] { (void)XRect(0, 0, 0, 3).GetPointFromLinearPos(5); }), width);
    XRect a(3, 3, 17, 17);
    EXPECT_EQ(AssertionOf([&] { a.AlignByValue(0, 8); }), "step != 0");
    EXPECT_EQ(AssertionOf([&] { a.AlignByValue(8, 0); }), "step != 0");
    EXPECT_TRUE(HasEdges(a, 3, 3, 17, 17)); // x is not aligned before the y step is refused
    XPointT<SInt32> p(5, 5);
    EXPECT_EQ(AssertionOf([&] { XRect::MapPoint(p, XRect(0, 0, 0, 10), XRect(0, 0, 5, 5)); }), source);
    EXPECT_EQ(AssertionOf([&] { XRect::MapPoint(p, XRect(0, 0, 10, 0), XRect(0, 0, 5, 5)); }), source);
    EXPECT_EQ(p, XPoint(5, 5));
    XRect m(1, 1, 2, 2);
    EXPECT_EQ(AssertionOf([&] { m.Map(XRect(0, 0, 0, 10), XRect(0, 0, 5, 5)); }), source);
    EXPECT_TRUE(HasEdges(m, 1, 1, 2, 2));
    XRectF f(1, 1, 2, 2);
    EXPECT_EQ(AssertionOf([&] { f.Map(XRectF(0, 0, 10, 0), XRectF(0, 0, 5, 5)); }), source);
    EXPECT_EQ(f, XRectF(1, 1, 2, 2));
    XPointT<float> g(1.0f, 1.0f);
    EXPECT_EQ(AssertionOf([&] { XRectF::MapPoint(g, XRectF(0, 0, 0, 10), XRectF(0, 0, 5, 5)); }), source);
    // ScaleTo divides by width / height: no width, no ratio. No height gives a flat result.
    EXPECT_EQ(AssertionOf([] { XRect(0, 0, 0, 4).ScaleTo(XRect(0, 0, 100, 100)); }), width);
    XRect flat(0, 0, 4, 0);
    flat.ScaleTo(XRect(0, 0, 100, 100));
    EXPECT_TRUE(HasEdges(flat, 0, 50, 100, 50));
    // The smallest coordinate rem -1 is 0, where the processor's instruction would trap.
    const SInt32 smallest = std::numeric_limits<SInt32>::min();
    XRect n(smallest, 0, 5, 5);
    n.AlignByValue(-1, 1);
    EXPECT_TRUE(HasEdges(n, smallest, 0, 5, 5));
}

TEST(RectTest, FloatResultsBeyondTheCoordinatesAreInternalErrors)
{
    const std::string range = "value finite and within the integer range";
    const double infinity = std::numeric_limits<double>::infinity();
    XRect s(0, 0, 10, 10);
    EXPECT_EQ(AssertionOf([&] { s.ScaleBy(infinity, 1.0); }), range);
    EXPECT_EQ(AssertionOf([&] { s.ScaleBy(1.0, std::numeric_limits<double>::quiet_NaN()); }), range);
    EXPECT_EQ(AssertionOf([&] { (void)s.Contains(XPointF(1.0f, 0.0f) / 0.0f); }), range);
    EXPECT_EQ(AssertionOf([] { XRect r(XRectF(0, 0, 3e9f, 1)); }), range);
    // 2 * 2000000000 / 1 does not fit a coordinate.
    XRect b(0, 0, 2, 1);
    EXPECT_EQ(AssertionOf([&] { b.Map(XRect(0, 0, 1, 1), XRect(0, 0, 2000000000, 1)); }), range);
    // Edges 4e9 away from the source's left edge map exactly; the difference needs 64 bits.
    XRect far(2000000000, 0, 2000000001, 1);
    far.Map(XRect(-2000000000, 0, 2000000002, 1), XRect(-2000000000, 0, 2000000002, 1));
    EXPECT_TRUE(HasEdges(far, 2000000000, 0, 2000000001, 1));
}

TEST(RectTest, ConversionsBetweenTheRectangleTypes)
{
    EXPECT_TRUE(HasEdges(XRect(XRectF(0.5f, -0.5f, 2.49f, 3.5f)), 1, 0, 2, 4));
    EXPECT_TRUE(HasEdges(XRect(XRectF(3.5f, 0, -0.6f, 1)), -1, 0, 4, 1)); // normalised after rounding
    EXPECT_EQ(XRectF(XRect(1, 2, 3, 4)), XRectF(1, 2, 3, 4));
    XRectT<float, float, float> asFloat = XRect(-1, 2, 3, 4);
    EXPECT_EQ(asFloat.GetLeft(), -1.0f);
    EXPECT_TRUE(HasEdges(XRect(X3DRect(1, 2, 3, 4, 5, 6)), 1, 2, 4, 5));
    EXPECT_EQ(XRectF(X3DRect(1, 2, 3, 4, 5, 6)), XRectF(1, 2, 4, 5));

    XRectF f(0.2f, 0.7f, 3.5f, 4.5f);
    EXPECT_EQ(XRectF(f).RoundIn(), XRectF(1, 1, 3, 4));
    EXPECT_EQ(XRectF(f).RoundOut(), XRectF(0, 0, 4, 5));
    EXPECT_EQ(XRectF(f).Round(), XRectF(0, 1, 4, 5));
}
