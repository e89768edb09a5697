// Dilate and erode: the default element and its growth, the edge rule, the voxel itself always
// taking part, colour levels with ties kept by the element's order, float comparisons, zero
// iterations, and the row method against the plain rule on random volumes.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XDilateFilterVolumeTool.h"
#include "XErodeFilterVolumeTool.h"
#include "XFPVolume.h"
#include "XFilterTestSupport.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"

namespace
{
// The voxels of 5 x 5 x 5 that lie within aDistance of the centre by |dx| + |dy| + |dz|.
template <typename T>
std::vector<T> Diamond(int aDistance, T aValue)
{
    std::vector<T> voxels;
    for (int z = 0; z < 5; ++z)
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x)
                voxels.push_back(std::abs(x - 2) + std::abs(y - 2) + std::abs(z - 2) <= aDistance ? aValue : T(0));
    return voxels;
}

const XVector<X3DPoint> kRight = {X3DPoint(1, 0, 0)};

template <class V>
class MorphologyByType : public ::testing::Test
{
};
TYPED_TEST_SUITE(MorphologyByType, XFilterGreyTypes);
} // namespace

TYPED_TEST(MorphologyByType, TheFaceNeighboursGrowACrossAndThenADiamond)
{
    using T = typename TypeParam::XVoxel;
    const auto dot = XMakeVolume<TypeParam>(X3DRect(5, 5, 5), Diamond<T>(0, T(200)));
    XDilateFilterVolumeTool once(1, {});
    EXPECT_EQ(once.GetStructuringElement(), XDilateFilterVolumeTool::GetFaceNeighbours());
    EXPECT_EQ(XFiltered(once, dot), Diamond<T>(1, T(200)));
    XDilateFilterVolumeTool twice(2, {});
    EXPECT_EQ(XFiltered(twice, dot), Diamond<T>(2, T(200)));
    // Erosion takes the diamond back to the dot, the cross first.
    const auto diamond = XMakeVolume<TypeParam>(X3DRect(5, 5, 5), Diamond<T>(2, T(200)));
    XErodeFilterVolumeTool erode(1, {}, false);
    EXPECT_EQ(XFiltered(erode, diamond), Diamond<T>(1, T(200)));
}

TYPED_TEST(MorphologyByType, TheEdgeRuleEatsFromTheFaces)
{
    using T = typename TypeParam::XVoxel;
    const auto flat = XMakeVolume<TypeParam>(X3DRect(4, 4, 4), std::vector<T>(64, T(50)));
    XErodeFilterVolumeTool keep(1, {}, false);
    EXPECT_EQ(XFiltered(keep, flat), XGetVoxels(flat));
    // The outer shell goes black; the inner 2 x 2 x 2 stays.
    XErodeFilterVolumeTool eat(1, {}, true);
    const std::vector<T> eaten = XFiltered(eat, flat);
    for (int i = 0; i < 64; ++i)
    {
        const int x = i % 4, y = i / 4 % 4, z = i / 16;
        const bool inner = x % 3 != 0 && y % 3 != 0 && z % 3 != 0;
        EXPECT_EQ(eaten[i], inner ? T(50) : T(0)) << x << "," << y << "," << z;
    }
    // On a single plane the points in z lie outside: everything goes black.
    const auto plane = XMakeVolume<TypeParam>(X3DRect(3, 3, 1), std::vector<T>(9, T(50)));
    EXPECT_EQ(XFiltered(eat, plane), std::vector<T>(9, T(0)));
    // Looking down only: the last row goes black.
    XErodeFilterVolumeTool down(1, XVector<X3DPoint>{X3DPoint(0, 1, 0)}, true);
    EXPECT_EQ(XFiltered(down, plane), (std::vector<T>{50, 50, 50, 50, 50, 50, 0, 0, 0}));
}

// The element (1, 0, 0) alone: the voxel itself still takes part.
TYPED_TEST(MorphologyByType, TheVoxelItselfAlwaysTakesPart)
{
    using T = typename TypeParam::XVoxel;
    const auto row = XMakeVolume<TypeParam>(X3DRect(3, 1, 1), {5, 9, 2});
    XDilateFilterVolumeTool dilate(1, kRight);
    EXPECT_EQ(XFiltered(dilate, row), (std::vector<T>{9, 9, 2}));
    XErodeFilterVolumeTool erode(1, kRight, false);
    EXPECT_EQ(XFiltered(erode, row), (std::vector<T>{5, 2, 2}));
    XErodeFilterVolumeTool edge(1, kRight, true);
    EXPECT_EQ(XFiltered(edge, row), (std::vector<T>{5, 2, 0}));
    // Zero iterations leave the new destination as it was; in place, the volume as it was.
    XDilateFilterVolumeTool none(0, kRight);
    EXPECT_EQ(XFiltered(none, row), std::vector<T>(3, T(0)));
    auto same = row;
    none.ApplyToolInPlace(same);
    EXPECT_EQ(XGetVoxels(same), (std::vector<T>{5, 9, 2}));
    // Two iterations go through the working volume: the 9 moves on.
    auto twice = row;
    XDilateFilterVolumeTool(2, XVector<X3DPoint>{X3DPoint(-1, 0, 0)}).ApplyToolInPlace(twice);
    EXPECT_EQ(XGetVoxels(twice), (std::vector<T>{5, 9, 9}));
}

// Levels: the voxel 10, both neighbours 20. The earlier of equal levels wins; alpha moves with
// its voxel.
TEST(Morphology, ColourVoxelsGoByTheirLevelAndTiesKeepTheEarlier)
{
    const XARGB32Colour left(7, 0, 20, 0), middle(255, 10, 0, 0), right(9, 0, 0, 20);
    const auto row = XMakeVolume<XARGB32Volume>(X3DRect(3, 1, 1), {left, middle, right});
    XDilateFilterVolumeTool faces(1, {});
    EXPECT_EQ(XFiltered(faces, row)[1], left);
    XDilateFilterVolumeTool rightFirst(1, XVector<X3DPoint>{X3DPoint(1, 0, 0), X3DPoint(-1, 0, 0)});
    EXPECT_EQ(XFiltered(rightFirst, row)[1], right);
    // Erosion: the left voxel (20) meets the middle (10); the right one too.
    XErodeFilterVolumeTool erode(1, {}, false);
    EXPECT_EQ(XFiltered(erode, row), (std::vector<XARGB32Colour>{middle, middle, middle}));
    XErodeFilterVolumeTool edge(1, {}, true);
    EXPECT_EQ(XFiltered(edge, row), std::vector<XARGB32Colour>(3, XARGB32Colour::kBlack));
    EXPECT_EQ(ErrorOf([&] { delete faces.ApplyTool(XRGB48Volume(X3DRect(2, 1, 1))); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { delete edge.ApplyTool(XBGRA32Volume(X3DRect(2, 1, 1))); }), 2500u);
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(3, 1, 1), {0, 255, 0});
    EXPECT_EQ(XFiltered(faces, mask), std::vector<UInt8>(3, 255));
}

// A NaN neither replaces nor is replaced; of zeros the earlier stays, sign and all.
TEST(Morphology, FloatsCompareAsFloats)
{
    const float nan = std::nanf("");
    const auto row = XMakeVolume<XFPVolume>(X3DRect(4, 1, 1), {nan, 1.0f, -0.0f, 0.0f});
    XDilateFilterVolumeTool dilate(1, kRight);
    const std::vector<float> grown = XFiltered(dilate, row);
    EXPECT_TRUE(std::isnan(grown[0]));
    EXPECT_EQ(grown[1], 1.0f);
    EXPECT_TRUE(std::signbit(grown[2]));
    EXPECT_FALSE(std::signbit(grown[3]));
    XErodeFilterVolumeTool erode(1, kRight, false);
    const std::vector<float> eroded = XFiltered(erode, row);
    EXPECT_TRUE(std::isnan(eroded[0]));
    EXPECT_EQ(std::bit_cast<UInt32>(eroded[1]), std::bit_cast<UInt32>(-0.0f));
    EXPECT_EQ(std::bit_cast<UInt32>(eroded[2]), std::bit_cast<UInt32>(-0.0f));
    EXPECT_EQ(std::bit_cast<UInt32>(eroded[3]), std::bit_cast<UInt32>(0.0f));
}

// Elements with and without the origin, repeated points, points beyond the volume; edge rule
// on and off; one and two iterations.
TEST(Morphology, TheRowMethodGivesThePlainRuleOnRandomVolumes)
{
    XVector<X3DPoint> box;
    for (SInt32 z = -1; z <= 1; ++z)
        for (SInt32 y = -1; y <= 1; ++y)
            for (SInt32 x = -1; x <= 1; ++x)
                box.push_back(X3DPoint(x, y, z));
    const XVector<X3DPoint> odd = {X3DPoint(2, -1, 0), X3DPoint(-40, 0, 0), X3DPoint(0, 0, 1), X3DPoint(2, -1, 0),
                                   X3DPoint(-1, 3, -2)};
    const X3DRect box1(X3DPoint(-3, 2, 1), X3DPoint(45, 8, 5));
    const X3DRect box2(X3DPoint(0, 0, 0), X3DPoint(2, 3, 4));
    UInt32 seed = 40;
    for (const X3DRect & bounds : {box1, box2})
    {
        const auto grey8 = XRandomVolume<XGrey8Volume>(bounds, ++seed, 20);
        const auto grey16 = XRandomVolume<XGrey16Volume>(bounds, ++seed);
        const auto real = XRandomVolume<XFPVolume>(bounds, ++seed);
        const auto colour = XRandomVolume<XARGB32Volume>(bounds, ++seed, 6);
        const XVector<X3DPoint> across = {X3DPoint(0, 1, 0), X3DPoint(0, 0, -1)};
        for (const XVector<X3DPoint> & element : {XVector<X3DPoint>(), box, odd, across})
            for (UInt32 iterations : {1u, 2u})
            {
                XDilateFilterVolumeTool dilate(iterations, element);
                EXPECT_TRUE(XEveryPathAgrees(dilate, grey8));
                EXPECT_TRUE(XEveryPathAgrees(dilate, grey16));
                EXPECT_TRUE(XEveryPathAgrees(dilate, real));
                EXPECT_TRUE(XEveryPathAgrees(dilate, colour));
                for (bool edgeRule : {false, true})
                {
                    XErodeFilterVolumeTool erode(iterations, element, edgeRule);
                    EXPECT_TRUE(XEveryPathAgrees(erode, grey8));
                    EXPECT_TRUE(XEveryPathAgrees(erode, grey16));
                    EXPECT_TRUE(XEveryPathAgrees(erode, real));
                    EXPECT_TRUE(XEveryPathAgrees(erode, colour));
                }
            }
    }
}
