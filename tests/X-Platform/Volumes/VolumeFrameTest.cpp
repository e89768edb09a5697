// The volume frame: storage geometry, scale factors, channels and renderers, cloning with
// copy-on-write, Clone over another rectangle, Resize in its three ways, equality across
// classes and CopyFrom.

#include <gtest/gtest.h>

#include <memory>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16ImageRenderer.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XGrey8ImageRenderer.h"
#include "XInternalError.h"
#include "XMaskImageRenderer.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
std::vector<UInt8> Ramp(std::size_t aCount)
{
    std::vector<UInt8> voxels(aCount);
    for (std::size_t i = 0; i < aCount; ++i)
        voxels[i] = UInt8(i + 1);
    return voxels;
}
} // namespace

TEST(VolumeGeometry, StorageSizesFollowTheRowsAndThe16ByteTail)
{
    XGrey16Volume volume(3, 2, 1);
    EXPECT_EQ(volume.GetRowBytes(), 6u);
    EXPECT_EQ(volume.GetPlaneBytes(), 12u);
    EXPECT_EQ(volume.GetVolumeBytes(), 12u);
    EXPECT_EQ(volume.GetDataSize(), 28u);
    EXPECT_EQ(volume.GetPadVoxels(), 0u);
    EXPECT_EQ(XRGB48Volume(2, 3, 4).GetMemoryUsage(), 2u * 3 * 4 * 6 + 16);

    XGrey16Volume placed(X3DRect(5, -3, 7, 9, 0, 10));
    XLock lock(placed, kLockRead);
    EXPECT_EQ(placed.GetVoxelPtr(5, -3, 7), placed.GetBaseVoxelPtr());
    EXPECT_EQ(placed.GetLayer(0), placed.GetPlane(7));
    EXPECT_EQ(placed.GetPlanePtr(8) - placed.GetLayerPtr(0), SInt64(placed.GetPlaneBytes()));
    EXPECT_EQ(placed.GetVoxelPtr(6, -2, 8) - placed.GetBaseVoxelPtr(), 12 + 4 + 1);
}

TEST(VolumeGeometry, ScaleFactorsAreRelativeToTheHorizontalAxis)
{
    XGrey8Volume volume(1, 1, 1);
    volume.SetXCalibration(2.0);
    volume.SetYCalibration(3.0);
    volume.SetZCalibration(5.0);
    EXPECT_DOUBLE_EQ(volume.GetXScale(kXYPlane), 1.0);
    EXPECT_DOUBLE_EQ(volume.GetYScale(kXZPlane), 1.5);
    EXPECT_DOUBLE_EQ(volume.GetZScale(kXYPlane), 2.5);
    EXPECT_DOUBLE_EQ(volume.GetXScale(kYZPlane), 0.4);
    EXPECT_DOUBLE_EQ(volume.GetYScale(kYZPlane), 0.6);
    EXPECT_DOUBLE_EQ(volume.GetZScale(kYZPlane), 1.0);
    EXPECT_DOUBLE_EQ(volume.GetXScale(XPlaneMode(3)), 0.0);
}

TEST(VolumeKinds, ChannelsDescriptionsAndRenderers)
{
    XGrey8Volume grey(1, 1, 1);
    EXPECT_EQ(grey.GetChannelCount(), 1u);
    EXPECT_EQ(grey.GetChannelName(1), XString("1"));
    EXPECT_EQ(AssertionOf([&] { grey.GetChannelName(2); }), "channel == 1");
    XARGB32Volume colour(1, 1, 1);
    EXPECT_EQ(colour.GetChannelCount(), 3u);
    EXPECT_EQ(colour.GetChannelName(3), XString("Blue"));
    EXPECT_EQ(XRGB48Volume(1, 1, 1).GetChannelName(1), XString("Red"));
    EXPECT_EQ(AssertionOf([&] { colour.GetChannelName(4); }), "false");

    EXPECT_EQ(XMaskVolume(1, 1, 1).GetDescription(), XString("1-bit Mask Image"));
    EXPECT_EQ(XGrey16Volume(1, 1, 1).GetDescription(), XString("16-bit Grayscale Image"));
    EXPECT_EQ(XBGRA32Volume(1, 1, 1).GetDescription(), XString("Millions of Colors Image"));
    EXPECT_EQ(XRGB48Volume(1, 1, 1).GetDescription(), XString("48-bit Color Image"));
    EXPECT_EQ(XFPVolume(1, 1, 1).GetDescription(), XString("Floating-point Image"));
    EXPECT_EQ(XGrey32Volume(1, 1, 1).GetDescription(), XString("32-bit Grayscale Image"));

    // The exact class of the default renderer, not an is-a test.
    XMaskVolume mask(1, 1, 1);
    EXPECT_TRUE(mask.IsPlaneRendererSupported(XMaskImageRenderer()));
    EXPECT_FALSE(mask.IsPlaneRendererSupported(XGrey8ImageRenderer()));
    EXPECT_FALSE(grey.IsPlaneRendererSupported(XMaskImageRenderer()));
    EXPECT_TRUE(grey.IsPlaneRendererSupported(grey.GetPlaneRenderer()));
    EXPECT_FALSE(XGrey32Volume(1, 1, 1).HasPlaneRenderer());
    EXPECT_DOUBLE_EQ(XGrey16Volume(1, 1, 1).GetPlaneRenderer().GetWhite(), 65535.0);

    // Setting a volume's own renderer does nothing; another is cloned.
    XImageRenderer * own = &grey.GetPlaneRenderer();
    grey.SetPlaneRenderer(*own);
    EXPECT_EQ(&grey.GetPlaneRenderer(), own);
    XGrey8ImageRenderer other;
    other.SetWhite(99.0);
    grey.SetPlaneRenderer(other);
    EXPECT_NE(&grey.GetPlaneRenderer(), &other);
    EXPECT_DOUBLE_EQ(grey.GetPlaneRenderer().GetWhite(), 99.0);
}

TEST(VolumeClone, CopiesShareVoxelsUntilOneSideWrites)
{
    auto original = XMakeVolume<XGrey16Volume>(X3DRect(2, 2, 1), {1, 2, 3, 4});
    original.SetZCalibration(3.5);
    original.GetPlaneRenderer().SetWhite(4095.0);
    std::unique_ptr<XGrey16Volume> clone(original.Clone());
    EXPECT_EQ(clone->GetZCalibration(), 3.5);
    EXPECT_EQ(clone->GetPlaneRenderer().GetWhite(), 4095.0);
    EXPECT_NE(&clone->GetPlaneRenderer(), &original.GetPlaneRenderer());
    {
        XLock lock(*clone, kLockReadWrite);
        clone->SetVoxel(0, 0, 0, 100);
    }
    EXPECT_EQ(XGetVoxels(original), (std::vector<UInt16>{1, 2, 3, 4}));
    original.Fill(7);
    EXPECT_EQ(XGetVoxels(*clone), (std::vector<UInt16>{100, 2, 3, 4}));
}

TEST(VolumeClone, CloneOverAnotherRectangleZeroesWhatLiesOutside)
{
    auto volume = XMakeVolume<XGrey8Volume>(X3DRect(5, 5, 5, 7, 7, 7), Ramp(8));
    std::unique_ptr<XVolume> clone(volume.Clone(X3DRect(4, 5, 5, 7, 6, 6)));
    EXPECT_EQ(clone->GetBounds(), X3DRect(4, 5, 5, 7, 6, 6));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*clone)), (std::vector<UInt8>{0, 1, 2}));
    std::unique_ptr<XVolume> wide(volume.Clone(X3DRect(0, 0, 0, 10, 10, 10)));
    XGrey8Volume & grey = dynamic_cast<XGrey8Volume &>(*wide);
    XLock lock(grey, kLockRead);
    EXPECT_EQ(grey.GetVoxel(6, 6, 6), 8);
    EXPECT_EQ(grey.GetVoxel(4, 5, 5), 0);
    EXPECT_EQ(grey.GetVoxel(9, 9, 9), 0);

    std::unique_ptr<XVolume> empty(volume.CloneWithoutCopy(X3DRect(2, 2, 2)));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*empty)), std::vector<UInt8>(8, 0));
}

TEST(VolumeResize, SameSizeMovesTheBoundsAndKeepsTheVoxels)
{
    const auto volume = XMakeVolume<XGrey8Volume>(X3DRect(8, 8, 1), std::vector<UInt8>(64, 5));
    const X3DRect moved(10, 20, 30, 18, 28, 31);
    for (XScaleType type : {kScaleToFit, kCentreUnscaled})
    {
        std::unique_ptr<XVolume> result(volume.Resize(moved, type));
        EXPECT_EQ(result->GetBounds(), moved);
        EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*result)), std::vector<UInt8>(64, 5));
    }
    std::unique_ptr<XVolume> apart(volume.Resize(moved, kKeepCoordinates));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*apart)), std::vector<UInt8>(64, 0));
    EXPECT_EQ(AssertionOf([&] { delete volume.Resize(moved, XScaleType(3)); }), "false");
}

TEST(VolumeResize, ScaledCentredOrKeptInPlace)
{
    const auto row = XMakeVolume<XGrey8Volume>(X3DRect(4, 1, 1), {1, 2, 3, 4});
    std::unique_ptr<XVolume> scaled(row.Resize(X3DRect(8, 1, 1), kScaleToFit));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*scaled)), (std::vector<UInt8>{1, 1, 2, 2, 3, 3, 4, 4}));
    // Centred into 2 voxels: the middle two. Into 6 voxels: one zero on each side.
    std::unique_ptr<XVolume> narrow(row.Resize(X3DRect(2, 1, 1), kCentreUnscaled));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*narrow)), (std::vector<UInt8>{2, 3}));
    std::unique_ptr<XVolume> widened(row.Resize(X3DRect(6, 1, 1), kCentreUnscaled));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*widened)), (std::vector<UInt8>{0, 1, 2, 3, 4, 0}));
    // Kept at its coordinates: the overlap of x 2..3.
    std::unique_ptr<XVolume> kept(row.Resize(X3DRect(2, 0, 0, 6, 1, 1), kKeepCoordinates));
    EXPECT_EQ(XGetVoxels(dynamic_cast<XGrey8Volume &>(*kept)), (std::vector<UInt8>{3, 4, 0, 0}));
}

TEST(VolumeEquality, ComparesBoundsThenVoxelsConvertingOtherClasses)
{
    const auto a = XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {1, 2});
    const auto b = XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {1, 3});
    const auto moved = XMakeVolume<XGrey8Volume>(X3DRect(1, 0, 0, 3, 1, 1), {1, 2});
    EXPECT_TRUE(a == a);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != moved);
    // The other volume is converted into this one's class: 257 >> 8 is 1.
    const auto wide = XMakeVolume<XGrey16Volume>(X3DRect(2, 1, 1), {257, 512});
    EXPECT_TRUE(a == wide);
    EXPECT_FALSE(wide == a);
    const auto nan = XMakeVolume<XFPVolume>(X3DRect(1, 1, 1), {std::numeric_limits<float>::quiet_NaN()});
    EXPECT_FALSE(nan == nan);
}

TEST(VolumeCopyFrom, TakesTheVoxelsWithoutCopying)
{
    auto source = XMakeVolume<XGrey8Volume>(X3DRect(10, 10, 10, 12, 11, 11), {4, 5});
    XGrey8Volume target(2, 1, 1);
    target.CopyFrom(source);
    EXPECT_EQ(XGetVoxels(target), (std::vector<UInt8>{4, 5}));
    EXPECT_TRUE(target.GetStorage().IsShared());
    source.Fill(1);
    EXPECT_EQ(XGetVoxels(target), (std::vector<UInt8>{4, 5}));
    XGrey8Volume wrong(3, 1, 1);
    EXPECT_EQ(AssertionOf([&] { wrong.CopyFrom(source); }), "src.GetBounds().IsSameSizeAs( GetBounds() )");
    XGrey16Volume other(2, 1, 1);
    EXPECT_EQ(AssertionOf([&] { other.CopyFrom(source); }), "src.GetVersion().IsA( GetVersion() )");
}
