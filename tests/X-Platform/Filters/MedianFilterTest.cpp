// Median and hybrid median: worked values on tiny volumes of each type (corners, edges, even
// and larger sizes, the hybrid's sets at the faces), the channel passes, and the fast paths
// (sorting networks, sliding histograms) against the plain rule on random volumes.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XFilterTestSupport.h"
#include "XGrey16Volume.h"
#include "XHybridMedianFilterVolumeTool.h"
#include "XMaskVolume.h"
#include "XMedianFilterVolumeTool.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"

namespace
{
// 9 1 5 / 3 7 2 / 8 4 6 in one plane.
template <class V>
V Plane()
{
    return XMakeVolume<V>(X3DRect(3, 3, 1), {9, 1, 5, 3, 7, 2, 8, 4, 6});
}

// A 3 x 3 x 3 cube around a centre of 100: the lines through it hold 1, 2 (x), 3, 4 (y) and
// 6, 7 (z), the diagonals of the xy plane 8 to 11, of the xz plane 12 to 15, of the yz plane
// 16 to 19, the body diagonals 20.
template <class V>
V Cube()
{
    using T = typename V::XVoxel;
    V cube(X3DRect(3, 3, 3));
    XLock lock(cube, kLockWrite);
    const auto set = [&](SInt32 dx, SInt32 dy, SInt32 dz, int aValue) { cube.SetVoxel(1 + dx, 1 + dy, 1 + dz, T(aValue)); };
    for (SInt32 dz = -1; dz <= 1; dz += 2)
        for (SInt32 dy = -1; dy <= 1; dy += 2)
            for (SInt32 dx = -1; dx <= 1; dx += 2)
                set(dx, dy, dz, 20);
    set(0, 0, 0, 100);
    set(-1, 0, 0, 1), set(1, 0, 0, 2), set(0, -1, 0, 3), set(0, 1, 0, 4), set(0, 0, -1, 6), set(0, 0, 1, 7);
    set(-1, -1, 0, 8), set(1, 1, 0, 9), set(1, -1, 0, 10), set(-1, 1, 0, 11);
    set(-1, 0, -1, 12), set(1, 0, 1, 13), set(1, 0, -1, 14), set(-1, 0, 1, 15);
    set(0, -1, -1, 16), set(0, 1, 1, 17), set(0, 1, -1, 18), set(0, -1, 1, 19);
    return cube;
}

template <class V>
class MedianByType : public ::testing::Test
{
};
TYPED_TEST_SUITE(MedianByType, XFilterGreyTypes);
} // namespace

// Corners take the lower middle of 4 values, edges of 6; the centre the median of 9.
TYPED_TEST(MedianByType, OnePlaneTakesOnlyTheVoxelsInside)
{
    using T = typename TypeParam::XVoxel;
    XMedianFilterVolumeTool three(3);
    EXPECT_EQ(XFiltered(three, Plane<TypeParam>()), (std::vector<T>{3, 3, 2, 4, 5, 4, 4, 4, 4}));
    // Size 2 reaches back one voxel: a voxel and its neighbours before it.
    XMedianFilterVolumeTool two(2);
    EXPECT_EQ(XFiltered(two, Plane<TypeParam>()), (std::vector<T>{9, 1, 1, 3, 3, 2, 3, 4, 4}));
    // Size 4 from -2 to +1: the lower rows and columns see less.
    XMedianFilterVolumeTool four(4);
    EXPECT_EQ(XFiltered(four, Plane<TypeParam>()), (std::vector<T>{3, 3, 3, 4, 5, 5, 4, 5, 5}));
    XMedianFilterVolumeTool five(5);
    EXPECT_EQ(XFiltered(five, Plane<TypeParam>()), std::vector<T>(9, T(5)));
    XMedianFilterVolumeTool one(1);
    EXPECT_EQ(XFiltered(one, Plane<TypeParam>()), XGetVoxels(Plane<TypeParam>()));
}

TYPED_TEST(MedianByType, TheCubeIsThreeDimensional)
{
    using T = typename TypeParam::XVoxel;
    // Every voxel of 2 x 2 x 2 sees all eight: the lower middle is the fourth smallest.
    XMedianFilterVolumeTool three(3);
    const auto small = XMakeVolume<TypeParam>(X3DRect(2, 2, 2), {8, 3, 6, 1, 7, 2, 5, 4});
    EXPECT_EQ(XFiltered(three, small), std::vector<T>(8, T(4)));
    // The centre of the cube: 1 .. 4, 6 .. 19, eight 20s and 100; the 14th smallest is 15.
    const std::unique_ptr<XVolume> result(three.ApplyTool(Cube<TypeParam>()));
    XLock lock(*result, kLockRead);
    EXPECT_EQ(dynamic_cast<const TypeParam &>(*result).GetVoxel(1, 1, 1), T(15));
}

// Sub-medians at the centre of the plane (7): 3, 3, 4, 4, 7, 7, 7 -> 4; at the corner (9):
// 3, 9, 9, 9, 7, 9, 9 -> 9; at the top edge (1): 5, 1, 1, 1, 2, 1, 1 -> 1. At the centre of the
// cube: 3, 6, 6, 6, 10, 14, 18 -> 6.
TYPED_TEST(MedianByType, TheHybridTakesTheMedianOfItsSevenSets)
{
    using T = typename TypeParam::XVoxel;
    XHybridMedianFilterVolumeTool hybrid(3);
    const std::vector<T> plane = XFiltered(hybrid, Plane<TypeParam>());
    EXPECT_EQ(plane[4], T(4));
    EXPECT_EQ(plane[0], T(9));
    EXPECT_EQ(plane[1], T(1));
    const std::unique_ptr<XVolume> result(hybrid.ApplyTool(Cube<TypeParam>()));
    XLock lock(*result, kLockRead);
    EXPECT_EQ(dynamic_cast<const TypeParam &>(*result).GetVoxel(1, 1, 1), T(6));
}

TEST(MedianFilter, AConstantVolumeStaysAndSizesAreKeptOrRaised)
{
    const auto flat = XMakeVolume<XGrey16Volume>(X3DRect(5, 4, 3), std::vector<UInt16>(60, 777));
    for (UInt32 size : {1u, 2u, 3u, 4u, 7u})
    {
        XMedianFilterVolumeTool median(size);
        XHybridMedianFilterVolumeTool hybrid(size);
        EXPECT_EQ(XFiltered(median, flat), XGetVoxels(flat)) << size;
        EXPECT_EQ(XFiltered(hybrid, flat), XGetVoxels(flat)) << size;
    }
    EXPECT_EQ(XMedianFilterVolumeTool(4).GetSize(), 4u);
    EXPECT_EQ(XHybridMedianFilterVolumeTool(4).GetSize(), 5u);
    EXPECT_EQ(XHybridMedianFilterVolumeTool(5).GetSize(), 5u);
    EXPECT_EQ(XHybridMedianFilterVolumeTool(0).GetSize(), 1u);
    XMedianFilterVolumeTool none(0);
    EXPECT_EQ(AssertionOf([&] { delete none.ApplyTool(flat); }), "size > 0");
}

// x0 sees x0 and x1 (the lower of two), x1 all three, x2 x1 and x2, channel by channel. In a
// row the hybrid keeps each voxel: its line sets hold it at least twice out of four or three.
TEST(MedianFilter, ColourGoesChannelByChannelAndAlphaKeepsTheDestination)
{
    const auto colour = XMakeVolume<XARGB32Volume>(
        X3DRect(3, 1, 1), {XARGB32Colour(10, 1, 200, 7), XARGB32Colour(20, 9, 100, 3), XARGB32Colour(30, 5, 150, 5)});
    XMedianFilterVolumeTool median(3);
    XHybridMedianFilterVolumeTool hybrid(3);
    EXPECT_EQ(XFiltered(median, colour), (std::vector<XARGB32Colour>{XARGB32Colour(0, 1, 100, 3), XARGB32Colour(0, 5, 150, 5),
                                                                     XARGB32Colour(0, 5, 100, 3)}));
    EXPECT_EQ(XFiltered(hybrid, colour), (std::vector<XARGB32Colour>{XARGB32Colour(0, 1, 200, 7), XARGB32Colour(0, 9, 100, 3),
                                                                     XARGB32Colour(0, 5, 150, 5)}));
    auto inPlace = colour;
    median.ApplyToolInPlace(inPlace);
    EXPECT_EQ(XGetVoxels(inPlace), (std::vector<XARGB32Colour>{XARGB32Colour(10, 1, 100, 3), XARGB32Colour(20, 5, 150, 5),
                                                                XARGB32Colour(30, 5, 100, 3)}));
    EXPECT_EQ(XGetVoxels(colour)[1], XARGB32Colour(20, 9, 100, 3));

    const auto deep = XMakeVolume<XRGB48Volume>(
        X3DRect(3, 1, 1), {XRGB48Colour(1000, 60000, 7), XRGB48Colour(9000, 100, 3), XRGB48Colour(5000, 150, 5)});
    EXPECT_EQ(XFiltered(median, deep), (std::vector<XRGB48Colour>{XRGB48Colour(1000, 100, 3), XRGB48Colour(5000, 150, 5),
                                                                  XRGB48Colour(5000, 100, 3)}));
    EXPECT_EQ(XFiltered(hybrid, deep), XGetVoxels(deep));

    // A mask is filtered as 8-bit grey; BGRA32 is refused.
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(3, 1, 1), {255, 0, 255});
    EXPECT_EQ(XFiltered(median, mask), (std::vector<UInt8>{0, 255, 0}));
    EXPECT_EQ(ErrorOf([&] { delete median.ApplyTool(XBGRA32Volume(X3DRect(2, 1, 1))); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { delete hybrid.ApplyTool(XBGRA32Volume(X3DRect(2, 1, 1))); }), 2500u);
}

// Wide and narrow rows (under and over a vector's lanes), one voxel wide, one plane deep, at
// origins of their own; few levels so that ties abound, and the whole 16-bit range for the
// histogram's coarse steps.
TEST(MedianFilter, TheFastPathsGiveThePlainRuleOnRandomVolumes)
{
    const X3DRect boxes[] = {X3DRect(X3DPoint(-3, 2, 1), X3DPoint(67, 7, 5)), X3DRect(X3DPoint(4, 0, 0), X3DPoint(5, 6, 3)),
                             X3DRect(2, 3, 2), X3DRect(X3DPoint(0, -2, 9), X3DPoint(40, 3, 10))};
    UInt32 seed = 10;
    for (const X3DRect & box : boxes)
    {
        const auto grey8 = XRandomVolume<XGrey8Volume>(box, ++seed, 30);
        const auto grey16 = XRandomVolume<XGrey16Volume>(box, ++seed, 40);
        const auto wide16 = XRandomVolume<XGrey16Volume>(box, ++seed);
        const auto real = XRandomVolume<XFPVolume>(box, ++seed);
        const auto colour = XRandomVolume<XARGB32Volume>(box, ++seed, 20);
        const auto deep = XRandomVolume<XRGB48Volume>(box, ++seed);
        const auto expectEveryPathAgrees = [&](X1To1VolumeTool & aTool, UInt32 aSize) {
            EXPECT_TRUE(XEveryPathAgrees(aTool, grey8)) << aSize;
            EXPECT_TRUE(XEveryPathAgrees(aTool, grey16)) << aSize;
            EXPECT_TRUE(XEveryPathAgrees(aTool, wide16)) << aSize;
            EXPECT_TRUE(XEveryPathAgrees(aTool, real)) << aSize;
            EXPECT_TRUE(XEveryPathAgrees(aTool, colour)) << aSize;
            EXPECT_TRUE(XEveryPathAgrees(aTool, deep)) << aSize;
        };
        for (UInt32 size : {1u, 2u, 3u, 4u, 5u})
        {
            XMedianFilterVolumeTool median(size);
            expectEveryPathAgrees(median, size);
        }
        for (UInt32 size : {3u, 5u})
        {
            XHybridMedianFilterVolumeTool hybrid(size);
            expectEveryPathAgrees(hybrid, size);
        }
    }
}
