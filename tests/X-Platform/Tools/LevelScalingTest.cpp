// The pyramid bookkeeping: scaling relative to the finest axis, the maximum anisotropy at the
// thresholds of its rounding, the levels of a volume at the thresholds of their formula, and
// the anisotropy, axis levels, scaling and bounds of a level.

#include <gtest/gtest.h>

#include "XGrey8Volume.h"
#include "XTestSupport.h"
#include "XVolumeLevelScalingHelper.h"

namespace
{
XMathRectS3 Box(SInt32 x, SInt32 y, SInt32 z, SInt32 aWidth, SInt32 aHeight, SInt32 aDepth)
{
    return XMathRectS3(XMathVectorS3(x, y, z), XMathVectorS3(aWidth, aHeight, aDepth));
}

SInt32 LevelOf(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
{
    XVolumeLevelScalingHelper helper;
    helper.MakeFromTemplateVolume(XGrey8Volume(aWidth, aHeight, aDepth));
    return helper.GetSubdivisionLevel();
}
} // namespace

TEST(LevelScaling, ScalingAndMaximumAnisotropy)
{
    const XVolumeLevelScalingHelper empty;
    EXPECT_EQ(empty.GetBounds(), Box(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(empty.GetScaling(), XMathVectorF3(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(empty.GetMaxAnisotropy(), XMathVectorS3(0, 0, 0));
    EXPECT_EQ(empty.GetSubdivisionLevel(), 0);

    // Divided by the finest axis, wherever it stands: log2 of 2, 4 and 3 rounds to 1, 2, 2.
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(1.0f, 2.0f, 0.5f)).GetScaling(),
              XMathVectorF3(2.0f, 4.0f, 1.0f));
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(1.0f, 2.0f, 0.5f)).GetMaxAnisotropy(),
              XMathVectorS3(1, 2, 0));
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(0.5f, 0.5f, 1.5f)).GetMaxAnisotropy(),
              XMathVectorS3(0, 0, 2));
    // floor(log2(s) + 0.5) turns at the square root of 2 and at 2 sqrt 2 (2.828...).
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(1.41f, 1.0f, 1.42f)).GetMaxAnisotropy(),
              XMathVectorS3(0, 0, 1));
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(2.82f, 1.0f, 2.83f)).GetMaxAnisotropy(),
              XMathVectorS3(1, 0, 2));
    // A negative or zero voxel size has no logarithm.
    EXPECT_EQ(AssertionOf([] { XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(-2.0f, 1.0f, 1.0f)); }),
              "itsMaxAnisotropy.GetLTBitVector() == 0");
    EXPECT_EQ(AssertionOf([] { XVolumeLevelScalingHelper(Box(0, 0, 0, 1, 1, 1), XMathVectorF3(0.0f, 1.0f, 1.0f)); }),
              "itsMaxAnisotropy.GetLTBitVector() == 0");
}

TEST(LevelScaling, LevelOfAVolumeAtTheThresholds)
{
    // floor(ln(2^20 / n) / ln 8) above 2^20 voxels: -1 up to 2^23, -2 from one more.
    EXPECT_EQ(LevelOf(1024, 1024, 1), 0);
    EXPECT_EQ(LevelOf(17, 61681, 1), -1);  // 2^20 + 1
    EXPECT_EQ(LevelOf(256, 256, 128), -1); // 2^23
    EXPECT_EQ(LevelOf(3, 2796203, 1), -2); // 2^23 + 1

    XGrey8Volume volume(X3DRect(-4, 2, 6, 60, 34, 70));
    volume.SetXCalibration(0.2);
    volume.SetYCalibration(0.2);
    volume.SetZCalibration(0.5);
    XVolumeLevelScalingHelper helper;
    helper.MakeFromTemplateVolume(volume);
    EXPECT_EQ(helper.GetBounds(), Box(-4, 2, 6, 64, 32, 64));
    EXPECT_EQ(helper.GetScaling(), XMathVectorF3(1.0f, 1.0f, 2.5f));
    EXPECT_EQ(helper.GetMaxAnisotropy(), XMathVectorS3(0, 0, 1));
    EXPECT_EQ(helper.GetSubdivisionLevel(), 0); // 2^17 voxels
}

TEST(LevelScaling, WhatALevelHolds)
{
    // z voxels three times as deep: z is spared the first two halvings.
    const XVolumeLevelScalingHelper helper(Box(-3, 5, 0, 10, 7, 5), XMathVectorF3(1.0f, 1.0f, 3.0f));
    EXPECT_EQ(helper.GetAnisotropyOfLevel(0), XMathVectorS3(0, 0, 0));
    EXPECT_EQ(helper.GetAnisotropyOfLevel(-1), XMathVectorS3(0, 0, 1));
    EXPECT_EQ(helper.GetAnisotropyOfLevel(-3), XMathVectorS3(0, 0, 2));
    EXPECT_EQ(helper.GetAxisLevelsOfLevel(-3), XMathVectorS3(-3, -3, -1));
    EXPECT_EQ(helper.GetChildSubSampleAxesOfLevel(0), 3u);  // x and y at their maximum of 0
    EXPECT_EQ(helper.GetChildSubSampleAxesOfLevel(-1), 3u);
    EXPECT_EQ(helper.GetChildSubSampleAxesOfLevel(-2), 7u);
    EXPECT_EQ(helper.GetScalingOfLevel(-1), XMathVectorF3(1.0f, 1.0f, 1.5f));
    EXPECT_EQ(helper.GetScalingOfLevel(-3), XMathVectorF3(1.0f, 1.0f, 0.75f));

    // First and last voxels -3 and 6, 5 and 11, 0 and 4, shifted arithmetically right.
    EXPECT_EQ(helper.GetBoundsOfLevel(0), Box(-3, 5, 0, 10, 7, 5));
    EXPECT_EQ(helper.GetBoundsOfLevel(-1), Box(-2, 2, 0, 6, 4, 5));
    EXPECT_EQ(helper.GetBoundsOfLevel(-3), Box(-1, 0, 0, 2, 2, 3));
    // Empty bounds stay empty.
    EXPECT_EQ(XVolumeLevelScalingHelper(Box(0, 0, 0, 0, 4, 4), XMathVectorF3(1.0f, 1.0f, 1.0f)).GetBoundsOfLevel(-1),
              Box(0, 0, 0, 0, 2, 2));

    // Above level 0 no axis is halved, and the scaling doubles.
    EXPECT_EQ(helper.GetAxisLevelsOfLevel(1), XMathVectorS3(0, 0, 0));
    EXPECT_EQ(helper.GetScalingOfLevel(1), XMathVectorF3(2.0f, 2.0f, 6.0f));
    EXPECT_EQ(helper.GetBoundsOfLevel(1), Box(-3, 5, 0, 10, 7, 5));
    EXPECT_EQ(helper.GetChildSubSampleAxesOfLevel(1), 0u);
}
