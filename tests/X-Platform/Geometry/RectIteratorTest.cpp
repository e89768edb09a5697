// Walks over a rectangle: both modes forward and back, the repeated end points, and MoveTo.

#include <gtest/gtest.h>

#include <vector>

#include "XRectIterator.h"

namespace
{
std::vector<XPoint> Walk(XRectIterator & anIterator, int aCount, bool aForward)
{
    std::vector<XPoint> points;
    for (int i = 0; i < aCount; ++i)
        points.push_back(aForward ? anIterator.GetNext() : anIterator.GetPrevious());
    return points;
}
} // namespace

TEST(RectIteratorTest, RowWalkRepeatsTheLastPoint)
{
    XRectIterator it(XRect(0, 0, 2, 2), kIterateRows);
    EXPECT_EQ(it.GetFirst(), XPoint(0, 0));
    EXPECT_EQ(it.GetLast(), XPoint(1, 1));
    std::vector<XPoint> expected{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {1, 1}, {1, 1}};
    EXPECT_EQ(Walk(it, 6, true), expected);
    // Back from the end: the mirror walk, then (0, 0) for ever.
    std::vector<XPoint> back{{1, 1}, {0, 1}, {1, 0}, {0, 0}, {0, 0}};
    EXPECT_EQ(Walk(it, 5, false), back);
}

TEST(RectIteratorTest, ColumnWalkGoesDownFirst)
{
    XRectIterator it(XRect(0, 0, 2, 2), kIterateColumns);
    std::vector<XPoint> expected{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {1, 1}};
    EXPECT_EQ(Walk(it, 5, true), expected);
    std::vector<XPoint> back{{1, 1}, {1, 0}, {0, 1}, {0, 0}, {0, 0}};
    EXPECT_EQ(Walk(it, 5, false), back);

    // Any mode other than 0 walks columns.
    XRectIterator other(XRect(5, 5, 7, 8), XRectIteratorMode(7));
    std::vector<XPoint> columns{{5, 5}, {5, 6}, {5, 7}, {6, 5}};
    EXPECT_EQ(Walk(other, 4, true), columns);
}

TEST(RectIteratorTest, MoveToClampsAndTheEndsAreReached)
{
    XRectIterator it(XRect(10, 20, 13, 22), kIterateRows);
    EXPECT_EQ(it.GetCurrent(), XPoint(10, 20));
    it.MoveTo(XPoint(100, -100));
    EXPECT_EQ(it.GetCurrent(), XPoint(12, 20));
    std::vector<XPoint> wrap{{12, 20}, {10, 21}};
    EXPECT_EQ(Walk(it, 2, true), wrap);
    it.MoveToEnd();
    EXPECT_EQ(it.GetNext(), XPoint(12, 21));
    EXPECT_EQ(it.GetCurrent(), XPoint(12, 21));
    it.MoveToStart();
    EXPECT_EQ(it.GetPrevious(), XPoint(10, 20));
    EXPECT_EQ(it.GetCurrent(), XPoint(10, 20));

    // Counting a whole walk visits every point once before the repeat.
    XRectIterator count(XRect(-3, -2, 4, 3), kIterateColumns);
    int steps = 1;
    while (count.GetNext() != count.GetLast())
        ++steps;
    EXPECT_EQ(steps, 7 * 5);
}
