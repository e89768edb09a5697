// Fills with and without regions and an other value, the colour-key fill with its walk that
// starts at the volume's first voxel, the alpha fill, and the brightest voxel of a column for
// each voxel type.

#include <gtest/gtest.h>

#include <limits>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeTestSupport.h"

namespace
{
const X3DRect kRow4(0, 0, 0, 4, 1, 1);

X3DRegion MaskedRegion(const X3DRect & aBox, const std::vector<UInt8> & aMask)
{
    return X3DRegion(XMakeVolume<XMaskVolume>(aBox, aMask));
}
} // namespace

TEST(Fill, WithoutARegionEveryVoxelAndNoOtherValue)
{
    XGrey16Volume volume(X3DRect(2, 2, 2));
    const UInt16 other = 9;
    volume.Fill(300, nullptr, &other);
    EXPECT_EQ(XGetVoxels(volume), std::vector<UInt16>(8, 300));
}

TEST(Fill, RegionWithOtherValueSetsTheWholeVolume)
{
    XGrey8Volume volume(X3DRect(5, 2, 1));
    const UInt8 other = 1;
    // A box region inside, a masked region, a region that reaches outside the volume.
    const X3DRegion box(X3DRect(1, 1, 0, 3, 2, 1));
    volume.Fill(7, &box, &other);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{1, 1, 1, 1, 1, 1, 7, 7, 1, 1}));
    const X3DRegion masked = MaskedRegion(X3DRect(1, 0, 0, 4, 1, 1), {255, 100, 128});
    volume.Fill(7, &masked, &other);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{1, 7, 1, 7, 1, 1, 1, 1, 1, 1}));
    const X3DRegion outside(X3DRect(-3, 1, -2, 2, 9, 9));
    volume.Fill(7, &outside, &other);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{1, 1, 1, 1, 1, 7, 7, 1, 1, 1}));
}

TEST(Fill, RegionAloneChangesOnlyItsVoxels)
{
    auto volume = XMakeVolume<XFPVolume>(X3DRect(2, 0, 0, 6, 1, 1), {1.0f, 2.0f, 3.0f, 4.0f});
    const X3DRegion masked = MaskedRegion(X3DRect(3, 0, 0, 6, 1, 1), {255, 0, 200});
    volume.Fill(-1.0f, &masked);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<float>{1.0f, -1.0f, 3.0f, -1.0f}));
    const X3DRegion outside(X3DRect(-10, -10, -10, 4, 10, 10));
    volume.Fill(0.5f, &outside);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<float>{0.5f, 0.5f, 3.0f, -1.0f}));
}

TEST(ColourKeyFill, KeyedVoxelsTakeTheNewValueOthersTheOtherValue)
{
    auto volume = XMakeVolume<XGrey8Volume>(kRow4, {5, 6, 5, 7});
    volume.ColourKeyFill(9, 5);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{9, 6, 9, 7}));
    const UInt8 other = 0;
    volume.ColourKeyFill(1, 9, nullptr, &other);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{1, 0, 1, 0}));

    auto colours = XMakeVolume<XARGB32Volume>(X3DRect(2, 1, 1), {XARGB32Colour::kRed, XARGB32Colour::kBlue});
    colours.ColourKeyFill(XARGB32Colour::kGreen, XARGB32Colour::kBlue);
    EXPECT_EQ(XGetVoxels(colours), (std::vector<XARGB32Colour>{XARGB32Colour::kRed, XARGB32Colour::kGreen}));
}

TEST(ColourKeyFill, RegionWalkStartsAtTheVolumesFirstVoxel)
{
    // The region holds x = 1 and 2, but the voxel pointer starts at x = 0: voxels 0 and 1 are
    // the ones looked at. This is how the fill has always behaved.
    auto volume = XMakeVolume<XGrey8Volume>(kRow4, {5, 5, 5, 5});
    const X3DRegion box(X3DRect(1, 0, 0, 3, 1, 1));
    volume.ColourKeyFill(9, 5, &box);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{9, 9, 5, 5}));
    // With the box at the volume's corner the two agree.
    auto second = XMakeVolume<XGrey8Volume>(kRow4, {5, 5, 5, 5});
    const X3DRegion corner = MaskedRegion(X3DRect(0, 0, 0, 3, 1, 1), {255, 0, 255});
    second.ColourKeyFill(9, 5, &corner);
    EXPECT_EQ(XGetVoxels(second), (std::vector<UInt8>{9, 5, 9, 5}));
}

TEST(FillAlphaChannel, AlphaOnlyAndRegionRule)
{
    auto volume = XMakeVolume<XBGRA32Volume>(kRow4, std::vector<XBGRA32Colour>(4, XBGRA32Colour(10, 20, 30, 40)));
    volume.FillAlphaChannel(128, nullptr, 0);
    EXPECT_EQ(XGetVoxels(volume), std::vector<XBGRA32Colour>(4, XBGRA32Colour(128, 20, 30, 40)));
    const X3DRegion masked = MaskedRegion(X3DRect(1, 0, 0, 4, 1, 1), {255, 0, 128});
    volume.FillAlphaChannel(1, &masked, 2);
    const std::vector<XBGRA32Colour> voxels = XGetVoxels(volume);
    EXPECT_EQ(voxels[0].GetAlpha(), 128);
    EXPECT_EQ(voxels[1].GetAlpha(), 1);
    EXPECT_EQ(voxels[2].GetAlpha(), 2);
    EXPECT_EQ(voxels[3].GetAlpha(), 1);
    EXPECT_EQ(voxels[3].GetRed(), 20);
}

TEST(BrightestZPoint, FirstOfEqualsAndTheRulePerType)
{
    XGrey8Volume zeros(X3DRect(0, 0, 4, 1, 1, 7));
    EXPECT_EQ(zeros.GetBrightestZPoint(0, 0), 4);
    const auto grey = XMakeVolume<XGrey16Volume>(X3DRect(1, 1, 4), {3, 9, 9, 1});
    EXPECT_EQ(grey.GetBrightestZPoint(0, 0), 1);
    const auto negative = XMakeVolume<XFPVolume>(X3DRect(1, 1, 3), {-5.0f, -1.0f, -1.0f});
    EXPECT_EQ(negative.GetBrightestZPoint(0, 0), 1);
    // ARGB32 compares the largest channel; BGRA32 any channel on its own.
    const auto argb = XMakeVolume<XARGB32Volume>(X3DRect(1, 1, 2), {XARGB32Colour(10, 0, 0), XARGB32Colour(0, 5, 0)});
    EXPECT_EQ(argb.GetBrightestZPoint(0, 0), 0);
    const auto bgra = XMakeVolume<XBGRA32Volume>(X3DRect(1, 1, 2), {XBGRA32Colour(10, 0, 0), XBGRA32Colour(0, 5, 0)});
    EXPECT_EQ(bgra.GetBrightestZPoint(0, 0), 1);
    const auto rgb48 = XMakeVolume<XRGB48Volume>(X3DRect(1, 1, 2), {XRGB48Colour(1, 2, 3), XRGB48Colour(0, 0, 4)});
    EXPECT_EQ(rgb48.GetBrightestZPoint(0, 0), 1);
    XGrey8Volume flat(X3DRect(0, 0, 3, 1, 1, 3));
    EXPECT_EQ(flat.GetBrightestZPoint(0, 0), 3);
}

TEST(MaskThreshold, AboveTheLevelBecomes255)
{
    auto mask = XMakeVolume<XMaskVolume>(X3DRect(4, 1, 1), {127, 128, 0, 255});
    mask.Threshold(127);
    EXPECT_EQ(XGetVoxels(mask), (std::vector<UInt8>{0, 255, 0, 255}));
}
