// The 3-D box: normalising constructors, extents and volume, planes and projections, and the
// operations whose rounding differs from the 2-D rectangle's.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "X3DPoint.h"
#include "X3DRect.h"
#include "XRect.h"
#include "XRectF.h"
#include "XTestSupport.h"

namespace
{
testing::AssertionResult HasEdges(const X3DRect & aBox, SInt32 aLeft, SInt32 aTop, SInt32 aFront,
                                  SInt32 aRight, SInt32 aBottom, SInt32 aBack)
{
    if (aBox == X3DRect(aLeft, aTop, aFront, aRight, aBottom, aBack) && aBox.GetLeft() == aLeft &&
        aBox.GetFront() == aFront)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << aBox.GetLeft() << ", " << aBox.GetTop() << ", "
                                       << aBox.GetFront() << ", " << aBox.GetRight() << ", "
                                       << aBox.GetBottom() << ", " << aBox.GetBack() << ")";
}
} // namespace

TEST(BoxTest, ConstructorsNormaliseEachAxis)
{
    EXPECT_TRUE(HasEdges(X3DRect(), 0, 0, 0, 0, 0, 0));
    EXPECT_TRUE(HasEdges(X3DRect(9, 1, 5, 2, 8, 3), 2, 1, 3, 9, 8, 5));
    EXPECT_TRUE(HasEdges(X3DRect(X3DPoint(4, 5, 6), X3DPoint(1, 2, 3)), 1, 2, 3, 4, 5, 6));
    EXPECT_TRUE(HasEdges(X3DRect(XRect(1, 2, 3, 4), 7, 5), 1, 2, 5, 3, 4, 7));
    // floor(v + 0.5) of the x and y edges.
    EXPECT_TRUE(HasEdges(X3DRect(XRectF(0.5f, 1.49f, 2.5f, 3.5f), 4, 2), 1, 1, 2, 3, 4, 4));

    X3DRect sized(5, 6, 7);
    EXPECT_TRUE(HasEdges(sized, 0, 0, 0, 5, 6, 7));
    EXPECT_EQ(sized.GetVolume(), 210u);
    EXPECT_FALSE(sized.Contains(5, 0, 0));
    EXPECT_TRUE(sized.Contains(4, 5, 6));
    EXPECT_FALSE(sized.Contains(X3DPoint(0, 0, 7)));
    // A size that reads as negative lands in the low edge.
    EXPECT_TRUE(HasEdges(X3DRect(UInt32(-3), 2, 1), -3, 0, 0, 0, 2, 1));

    X3DRect big(100000, 100000, 1000);
    EXPECT_EQ(big.GetVolume(), 10000000000000ull);
    EXPECT_TRUE(big.Contains(X3DRect(1, 1, 1, 2, 2, 2)));
    EXPECT_FALSE(big.Contains(X3DRect(0, 0, 0, 1, 1, 1001)));
    EXPECT_TRUE(X3DRect(3, 3, 3, 3, 9, 9).IsEmpty());
    EXPECT_TRUE(X3DRect(0, 0, 0, 2, 3, 4).IsSameSizeAs(X3DRect(5, 5, 5, 7, 8, 9)));
}

TEST(BoxTest, PlanesBoundsAndCentre)
{
    X3DRect box(1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(HasEdges(box.GetXYPlane(7), 1, 2, 7, 4, 5, 8));
    EXPECT_TRUE(HasEdges(box.GetXZPlane(7), 1, 7, 3, 4, 8, 6));
    EXPECT_TRUE(HasEdges(box.GetYZPlane(7), 7, 2, 3, 8, 5, 6));
    EXPECT_EQ(box.GetXYBounds(), XRect(1, 2, 4, 5));
    EXPECT_EQ(box.GetXZBounds(), XRect(1, 3, 4, 6));
    XRect yz = box.GetYZBounds(); // z along the rectangle's x
    EXPECT_EQ(yz.GetLeft(), 3);
    EXPECT_EQ(yz.GetTop(), 2);
    EXPECT_EQ(yz.GetRight(), 6);
    EXPECT_EQ(yz.GetBottom(), 5);
    EXPECT_EQ(box.GetOrigin(), X3DPoint(1, 2, 3));

    // Signed division of the sum: (-5 + 0) / 2 is -2, where the 2-D form gives -5 + (5 >> 1).
    EXPECT_EQ(X3DRect(-5, 0, 0, 0, 10, 3).GetCentre(), X3DPoint(-2, 5, 1));
    EXPECT_EQ(XRect(-5, 0, 0, 10).GetHCentre(), -3);

    X3DPoint p(-1, 99, 3);
    box.ConstrainPoint(p);
    EXPECT_EQ(p, X3DPoint(1, 4, 3));
}

TEST(BoxTest, SettersMovesAndEdges)
{
    X3DRect box(0, 0, 0, 10, 10, 10);
    box.SetBack(-2);
    EXPECT_TRUE(HasEdges(box, 0, 0, -2, 10, 10, -2));
    box.SetFront(5);
    EXPECT_TRUE(HasEdges(box, 0, 0, 5, 10, 10, 5));
    box.SetDimensions(2, 3, 4);
    EXPECT_TRUE(HasEdges(box, 0, 0, 5, 2, 3, 9));
    box.SetPosition(X3DPoint(10, 20, 30));
    EXPECT_TRUE(HasEdges(box, 10, 20, 30, 12, 23, 34));
    box.Offset(-10, -20, -30);
    EXPECT_TRUE(HasEdges(box, 0, 0, 0, 2, 3, 4));
}

TEST(BoxTest, GrowAlwaysCollapsesAndSectAlwaysFixes)
{
    X3DRect g(0, 0, 0, 10, 10, 10);
    g.Grow(-6, 1, 0);
    EXPECT_TRUE(HasEdges(g, 5, -1, 0, 5, 11, 10));
    X3DRect s(0, 0, 0, 4, 4, 4);
    s.Shrink(1, 3, 0);
    EXPECT_TRUE(HasEdges(s, 1, 2, 0, 3, 2, 4));

    X3DRect a(0, 0, 0, 10, 10, 10);
    a &= X3DRect(20, 20, 20, 30, 30, 30);
    EXPECT_TRUE(HasEdges(a, 20, 20, 20, 20, 20, 20));
    X3DRect u(0, 0, 0, 1, 1, 1);
    u |= X3DRect(50, 50, 50, 50, 50, 50);
    EXPECT_TRUE(HasEdges(u, 0, 0, 0, 50, 50, 50));
    u += X3DRect(-1, 0, 0, 0, 0, 0);
    EXPECT_TRUE(HasEdges(u, -1, 0, 0, 50, 50, 50));
}

TEST(BoxTest, CentringScalingAndMappingRoundAsTheBoxDoes)
{
    X3DRect c(0, 0, 0, 4, 4, 4);
    c.CentreOn(X3DRect(10, 10, 10, 21, 21, 15));
    EXPECT_TRUE(HasEdges(c, 13, 13, 10, 17, 17, 14));
    X3DRect p(0, 0, 0, 5, 4, 3);
    p.CentreOn(X3DPoint(10, 10, 10));
    EXPECT_TRUE(HasEdges(p, 8, 8, 9, 13, 12, 12));
    X3DRect w(-5, 95, 0, 5, 105, 200);
    w.ConstrainWithin(X3DRect(0, 0, 0, 100, 100, 100));
    EXPECT_TRUE(HasEdges(w, 0, 90, -50, 10, 100, 150));

    // Smallest ratio 100 / 8 = 12.5: extents 25, 50, 100, then centred.
    X3DRect t(0, 0, 0, 2, 4, 8);
    t.ScaleTo(X3DRect(0, 0, 0, 100, 100, 100));
    EXPECT_TRUE(HasEdges(t, 37, 25, 0, 62, 75, 100));

    // Width 10 * 0.55 = 5.5 rounds to 6 here, where the 2-D form truncates to 5.
    X3DRect s(0, 0, 0, 10, 10, 10);
    s.ScaleBy(0.55, 1.5, 1.0);
    EXPECT_TRUE(HasEdges(s, 2, -2, 0, 8, 13, 10));

    // 5 * 3 / 10 = 1.5 rounds to 2 on both edges (the 2-D form gives 1 and 2).
    X3DRect m(5, 1, 0, 5, 3, 10);
    m.Map(X3DRect(0, 0, 0, 10, 10, 10), X3DRect(100, 100, 100, 103, 103, 103));
    EXPECT_TRUE(HasEdges(m, 102, 100, 100, 102, 101, 103));
}

TEST(BoxTest, ZeroExtentsAndEdgesBeyondTheCoordinatesAreInternalErrors)
{
    X3DRect b(1, 1, 1, 2, 2, 2);
    EXPECT_EQ(AssertionOf([&] { b.Map(X3DRect(0, 0, 0, 10, 0, 10), X3DRect(0, 0, 0, 5, 5, 5)); }),
              "source extent != 0");
    EXPECT_TRUE(HasEdges(b, 1, 1, 1, 2, 2, 2)); // x is not mapped before y is refused
    const std::string range = "value finite and within the integer range";
    X3DRect wide(0, 0, 0, 2, 1, 1); // 2 * 2000000000 / 1 does not fit a coordinate
    EXPECT_EQ(AssertionOf([&] { wide.Map(X3DRect(0, 0, 0, 1, 1, 1), X3DRect(0, 0, 0, 2000000000, 1, 1)); }), range);
    // Edges 4e9 away from the source's left edge map exactly; the difference needs 64 bits.
    X3DRect far(2000000000, 0, 0, 2000000001, 1, 1);
    const X3DRect frame(-2000000000, 0, 0, 2000000002, 1, 1);
    far.Map(frame, frame);
    EXPECT_TRUE(HasEdges(far, 2000000000, 0, 0, 2000000001, 1, 1));

    // ScaleTo: 0 / 0 has no ratio, and a box with no extent at all no finite scale; a flat box
    // scales on its other axes (ratios infinite, 2, 2) and stays flat, centred.
    EXPECT_EQ(AssertionOf([] { X3DRect(0, 0, 0, 0, 5, 5).ScaleTo(X3DRect(0, 0, 0, 0, 10, 10)); }),
              "extent != 0 || destination extent != 0");
    EXPECT_EQ(AssertionOf([] { X3DRect().ScaleTo(X3DRect(0, 0, 0, 10, 10, 10)); }), "scale is finite");
    X3DRect flat(0, 0, 0, 0, 5, 5);
    flat.ScaleTo(X3DRect(0, 0, 0, 10, 10, 10));
    EXPECT_TRUE(HasEdges(flat, 5, 0, 0, 5, 10, 10));

    // ScaleBy rounds into a 32-bit length: a width of 3e9 stays as it is, NaN is refused.
    X3DRect broad(-1500000000, 0, 0, 1500000000, 1, 1);
    broad.ScaleBy(1.0, 1.0, 1.0);
    EXPECT_TRUE(HasEdges(broad, -1500000000, 0, 0, 1500000000, 1, 1));
    EXPECT_EQ(AssertionOf([&] { broad.ScaleBy(1.0, 1.0, std::numeric_limits<double>::quiet_NaN()); }), range);
    EXPECT_EQ(AssertionOf([] { X3DRect(XRectF(0, 0, 1, 3e9f), 0, 1); }), range);
}
