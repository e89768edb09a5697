// Arithmetic with its wrap-around and the deliberate zeroing of integer division by a value,
// the functions, the statistics over visible voxels, FindGainOffset with and without fractions,
// and trilinear sampling of grey and colour volumes.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "XARGB32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XGrey8Volume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
const X3DRect kRow3(0, 0, 0, 3, 1, 1);
}

TEST(NumberArithmetic, IntegersWrapAndDivisionByAValueGoesThroughTheReciprocal)
{
    auto grey = XMakeVolume<XGrey8Volume>(kRow3, {250, 5, 100});
    grey += 10;
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{4, 15, 110}));
    grey -= 20;
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{240, 251, 90}));
    grey *= 2;
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{224, 246, 180}));
    grey /= 1;
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{224, 246, 180}));
    // 1.0 / 2 becomes 0 in the voxel type: the volume is zeroed.
    grey /= 2;
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{0, 0, 0}));
    EXPECT_EQ(AssertionOf([&] { grey /= 0; }), "value != 0");

    auto real = XMakeVolume<XFPVolume>(kRow3, {1.0f, -3.0f, 0.5f});
    real /= 2.0f;
    EXPECT_EQ(XGetVoxels(real), (std::vector<float>{0.5f, -1.5f, 0.25f}));
}

TEST(NumberArithmetic, VolumeOperandsAndTheirChecks)
{
    auto a = XMakeVolume<XGrey16Volume>(kRow3, {65535, 10, 7});
    const auto b = XMakeVolume<XGrey16Volume>(kRow3, {2, 20, 3});
    a += b;
    EXPECT_EQ(XGetVoxels(a), (std::vector<UInt16>{1, 30, 10}));
    a -= b;
    EXPECT_EQ(XGetVoxels(a), (std::vector<UInt16>{65535, 10, 7}));
    a *= b;
    EXPECT_EQ(XGetVoxels(a), (std::vector<UInt16>{65534, 200, 21}));
    a /= b;
    EXPECT_EQ(XGetVoxels(a), (std::vector<UInt16>{32767, 10, 7}));
    const auto zero = XMakeVolume<XGrey16Volume>(kRow3, {1, 0, 1});
    EXPECT_EQ(AssertionOf([&] { a /= zero; }), "divisor voxel != 0");
    const XGrey16Volume other(X3DRect(4, 1, 1));
    EXPECT_EQ(AssertionOf([&] { a += other; }), "v.GetBounds().IsSameSizeAs( this->GetBounds() )");
}

TEST(NumberArithmetic, FunctionsAndSubtractAndClamp)
{
    auto grey = XMakeVolume<XGrey8Volume>(X3DRect(4, 1, 1), {0, 1, 100, 6});
    auto roots = grey;
    roots.Sqrt();
    EXPECT_EQ(XGetVoxels(roots), (std::vector<UInt8>{0, 1, 10, 2}));
    auto logs = grey;
    // log(0) is minus infinity, which truncates to the integer indefinite: low bits 0.
    logs.Log();
    EXPECT_EQ(XGetVoxels(logs), (std::vector<UInt8>{0, 0, 4, 1}));
    auto exps = grey;
    // exp(6) = 403.4: the low 8 bits of 403 are 147.
    exps.Exp();
    EXPECT_EQ(XGetVoxels(exps), (std::vector<UInt8>{1, 2, 0, 147}));

    grey.SubtractAndClamp(5);
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{0, 0, 95, 1}));
    auto real = XMakeVolume<XFPVolume>(kRow3, {5.0f, 12.5f, std::numeric_limits<float>::quiet_NaN()});
    real.SubtractAndClamp(10.0f);
    EXPECT_EQ(XGetVoxels(real), (std::vector<float>{0.0f, 2.5f, 0.0f}));
}

TEST(NumberStatistics, OverTheVisibleVoxels)
{
    const auto grey = XMakeVolume<XGrey8Volume>(X3DRect(2, 2, 1), {1, 2, 9, 0});
    EXPECT_EQ(grey.FindMin(), 0);
    EXPECT_EQ(grey.FindMax(), 9);
    UInt8 low = 0, high = 0;
    grey.FindMinMax(low, high);
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 9);
    EXPECT_EQ(grey.FindSum(), 12.0);
    EXPECT_EQ(grey.FindMean(), 3);
    EXPECT_EQ(XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {1, 2}).FindMean(), 1);

    const auto real = XMakeVolume<XFPVolume>(kRow3, {-1.5f, 2.0f, -0.5f});
    EXPECT_EQ(real.FindSum(), 0.0);
    EXPECT_EQ(real.FindAbsSum(), 4.0);
    EXPECT_FLOAT_EQ(real.FindMean(), 0.0f);
    EXPECT_EQ(real.FindMin(), -1.5f);

    const auto wide = XMakeVolume<XGrey32Volume>(kRow3, {4000000000u, 1, 2});
    EXPECT_EQ(wide.FindSum(), 4000000003.0);
    EXPECT_EQ(XGrey8Volume(X3DRect(0, 0, 0)).FindSum(), 0.0);

    const auto a = XMakeVolume<XGrey8Volume>(kRow3, {5, 1, 200});
    const auto b = XMakeVolume<XGrey8Volume>(kRow3, {1, 5, 0});
    EXPECT_EQ(a.FindAbsoluteDifference(b), 208.0);
}

TEST(NumberStatistics, GainAndOffsetStretchTheRange)
{
    std::vector<UInt8> ramp;
    for (UInt8 v = 10; v <= 60; ++v)
        ramp.push_back(v);
    const auto grey = XMakeVolume<XGrey8Volume>(X3DRect(UInt32(ramp.size()), 1, 1), ramp);
    float gain = 0.0f, offset = 0.0f;
    grey.FindGainOffset(255, gain, offset, 0.0f, 0.0f);
    EXPECT_EQ(gain, 5.0f);
    EXPECT_EQ(offset, -10.0f);

    // 10 voxels of 0, 980 of 1000 and 10 of 2570: bin width 2570 / 257 = 10, so the top
    // voxels fall in bin 257, outside the 256 counters. Leaving out 1 % at the bottom takes bin
    // 0 (min 10); at the top the walk passes 155 empty bins and bin 100 (max 2570 - 1560).
    std::vector<UInt16> voxels(10, 0);
    voxels.insert(voxels.end(), 980, 1000);
    voxels.insert(voxels.end(), 10, 2570);
    const auto wide = XMakeVolume<XGrey16Volume>(X3DRect(1000, 1, 1), voxels);
    wide.FindGainOffset(65535, gain, offset, 0.01f, 0.01f);
    EXPECT_EQ(offset, -10.0f);
    EXPECT_EQ(gain, 65.0f);
    // Integer volumes with a range below 257 must not be asked for fractions.
    EXPECT_EQ(AssertionOf([&] { grey.FindGainOffset(255, gain, offset, 0.1f, 0.0f); }), "binWidth != 0");

    // Float volumes raise a negative minimum to 0.
    const auto real = XMakeVolume<XFPVolume>(kRow3, {-5.0f, 0.0f, 10.0f});
    real.FindGainOffset(20.0f, gain, offset, 0.0f, 0.0f);
    EXPECT_EQ(gain, 2.0f);
    EXPECT_EQ(offset, 0.0f);
}

TEST(Interpolation, TrilinearWithTheUpperNeighbourClamped)
{
    const auto real = XMakeVolume<XFPVolume>(X3DRect(2, 2, 2), {0.0f, 2.0f, 4.0f, 6.0f, 8.0f, 10.0f, 12.0f, 14.0f});
    XLock lock(real, kLockRead);
    EXPECT_FLOAT_EQ(real.GetInterpolatedVoxel(1.0f, 1.0f, 1.0f), 14.0f);
    EXPECT_FLOAT_EQ(real.GetInterpolatedVoxel(0.5f, 0.5f, 0.5f), 7.0f);
    EXPECT_FLOAT_EQ(real.GetInterpolatedVoxel(0.25f, 0.0f, 0.0f), 0.5f);
    // Past the last voxel the upper neighbour stays at the last one: 2 + 0.5 * (2 - 2).
    EXPECT_FLOAT_EQ(real.GetInterpolatedVoxel(1.5f, 0.0f, 0.0f), 2.0f);

    const auto colour = XMakeVolume<XARGB32Volume>(X3DRect(2, 1, 1), {XARGB32Colour(0, 0, 0), XARGB32Colour(100, 200, 50)});
    XLock colourLock(colour, kLockRead);
    EXPECT_EQ(colour.GetInterpolatedVoxel(0.5f, 0.0f, 0.0f), XMathVectorF3(50.0f, 100.0f, 25.0f));
    const auto deep = XMakeVolume<XRGB48Volume>(X3DRect(1, 1, 2), {XRGB48Colour(1000), XRGB48Colour(3000)});
    XLock deepLock(deep, kLockRead);
    EXPECT_EQ(deep.GetInterpolatedVoxel(0.0f, 0.0f, 0.5f), XMathVectorF3(2000.0f, 2000.0f, 2000.0f));
}
