// The voxel-moving tools: flips of every voxel size, the three rotations with their centred
// destinations, in-place application through a clone, and the invert tool with the maximum it
// keeps.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XFlipHVolumeTool.h"
#include "XFlipVVolumeTool.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XInvertVolumeTool.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XRotate180VolumeTool.h"
#include "XRotate90CCWVolumeTool.h"
#include "XRotate90CWVolumeTool.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
template <class V>
std::vector<typename V::XVoxel> Applied(X1To1VolumeTool & aTool, const V & aVolume, X3DRect * outBounds = nullptr)
{
    std::unique_ptr<XVolume> result(aTool.ApplyTool(aVolume));
    if (outBounds != nullptr)
        *outBounds = result->GetBounds();
    return XGetVoxels(dynamic_cast<const V &>(*result));
}

std::vector<XRGB48Colour> Deep(std::initializer_list<UInt16> aValues)
{
    std::vector<XRGB48Colour> colours;
    for (UInt16 value : aValues)
        colours.push_back(XRGB48Colour(value, UInt16(value + 1), UInt16(value + 2)));
    return colours;
}
} // namespace

TEST(Flip, VerticalAndHorizontal)
{
    XFlipVVolumeTool flipV;
    XFlipHVolumeTool flipH;
    // 3 by 2 by 2.
    const X3DRect box(3, 2, 2);
    const auto grey = XMakeVolume<XGrey8Volume>(box, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    EXPECT_EQ(Applied(flipV, grey), (std::vector<UInt8>{4, 5, 6, 1, 2, 3, 10, 11, 12, 7, 8, 9}));
    EXPECT_EQ(Applied(flipH, grey), (std::vector<UInt8>{3, 2, 1, 6, 5, 4, 9, 8, 7, 12, 11, 10}));
    // Other voxel sizes: below, against the mapping of each voxel.
    const auto deep = XMakeVolume<XRGB48Volume>(X3DRect(2, 2, 1), Deep({10, 20, 30, 40}));
    EXPECT_EQ(Applied(flipH, deep), Deep({20, 10, 40, 30}));
    EXPECT_EQ(Applied(flipV, deep), Deep({30, 40, 10, 20}));
}

TEST(Flip, KeepsTheFrameAndWorksInPlaceThroughAClone)
{
    auto volume = XMakeVolume<XGrey16Volume>(X3DRect(5, 6, 7, 6, 8, 8), {1, 2});
    volume.SetXCalibration(0.25);
    volume.GetPlaneRenderer().SetWhite(4095.0);
    XFlipVVolumeTool flip;
    std::unique_ptr<XVolume> flipped(flip.ApplyTool(volume));
    EXPECT_EQ(flipped->GetBounds(), volume.GetBounds());
    EXPECT_EQ(flipped->GetXCalibration(), 0.25);
    EXPECT_EQ(flipped->GetPlaneRenderer().GetWhite(), 4095.0);
    flip.ApplyToolInPlace(volume);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt16>{2, 1}));
    // An empty volume makes an empty result.
    XGrey8Volume flat(X3DRect(4, 0, 2));
    std::unique_ptr<XVolume> empty(flip.ApplyTool(flat));
    EXPECT_EQ(empty->GetBounds(), flat.GetBounds());
}

TEST(Rotate, NinetyDegreesTurnsAndCentresTheBox)
{
    const auto row = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {1, 2, 3});
    XRotate90CWVolumeTool clockwise;
    XRotate90CCWVolumeTool counter;
    X3DRect bounds;
    EXPECT_EQ(Applied(clockwise, row, &bounds), (std::vector<UInt8>{1, 2, 3}));
    // Centred on (0, 0)-(3, 1): left 0 + (3 - 1) / 2, top 0 + (1 - 3) / 2.
    EXPECT_EQ(bounds, X3DRect(1, -1, 0, 2, 2, 1));
    EXPECT_EQ(Applied(counter, row), (std::vector<UInt8>{3, 2, 1}));

    // 2 by 3, two planes of 16-bit voxels: (x, y) goes to (2 - y, x) clockwise, (y, 1 - x) counter.
    const auto plane = XMakeVolume<XGrey16Volume>(X3DRect(2, 3, 2), {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    EXPECT_EQ(Applied(clockwise, plane), (std::vector<UInt16>{5, 3, 1, 6, 4, 2, 11, 9, 7, 12, 10, 8}));
    EXPECT_EQ(Applied(counter, plane), (std::vector<UInt16>{2, 4, 6, 1, 3, 5, 8, 10, 12, 7, 9, 11}));
    const auto colours = XMakeVolume<XRGB48Volume>(X3DRect(2, 1, 1), Deep({1, 2}));
    EXPECT_EQ(Applied(clockwise, colours), Deep({1, 2}));
}

TEST(Rotate, HalfTurnTwiceRestoresAndInPlaceNeedsSquarePlanes)
{
    const auto argb = XMakeVolume<XARGB32Volume>(
        X3DRect(2, 2, 1), {XARGB32Colour(1), XARGB32Colour(2), XARGB32Colour(3), XARGB32Colour(4)});
    XRotate180VolumeTool half;
    EXPECT_EQ(Applied(half, argb), (std::vector<XARGB32Colour>{XARGB32Colour(4), XARGB32Colour(3), XARGB32Colour(2), XARGB32Colour(1)}));
    std::unique_ptr<XVolume> once(half.ApplyTool(argb));
    std::unique_ptr<XVolume> twice(half.ApplyTool(*once));
    EXPECT_TRUE(*twice == argb);

    auto mask = XMakeVolume<XMaskVolume>(X3DRect(2, 2, 1), {0, 255, 255, 0});
    XRotate90CWVolumeTool clockwise;
    clockwise.ApplyToolInPlace(mask);
    EXPECT_EQ(XGetVoxels(mask), (std::vector<UInt8>{255, 0, 0, 255}));
    auto oblong = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {1, 2, 3});
    EXPECT_EQ(AssertionOf([&] { clockwise.ApplyToolInPlace(oblong); }),
              "inSrc.GetBounds().GetWidth() == inDest.GetBounds().GetHeight()");
    EXPECT_EQ(XGetVoxels(oblong), (std::vector<UInt8>{1, 2, 3}));
    // Rotating into a volume of one's own.
    XGrey8Volume target(X3DRect(1, 3, 1));
    clockwise.RotateCopy(oblong, target);
    EXPECT_EQ(XGetVoxels(target), (std::vector<UInt8>{1, 2, 3}));
    EXPECT_EQ(ErrorOf([&] { delete half.ApplyTool(XGrey32Volume(X3DRect(1, 1, 1))); }), 2500u);
}

namespace
{
// Checks each tool on a plane large enough for the vector blocks and their ragged edges against
// the mapping of each voxel done one at a time.
template <class V>
void CheckAgainstMapping(std::function<typename V::XVoxel(UInt32)> aValue)
{
    const UInt32 width = 37, height = 29, depth = 2;
    std::vector<typename V::XVoxel> voxels;
    for (UInt32 i = 0; i < width * height * depth; ++i)
        voxels.push_back(aValue(i));
    const auto volume = XMakeVolume<V>(X3DRect(width, height, depth), voxels);
    auto at = [&](UInt32 x, UInt32 y, UInt32 z) { return voxels[(z * height + y) * width + x]; };
    std::vector<typename V::XVoxel> clockwise, counter, half, mirrored, upsideDown;
    for (UInt32 z = 0; z < depth; ++z)
    {
        // Destination (x', y') of the quarter turns is a height by width plane.
        for (UInt32 y = 0; y < width; ++y)
            for (UInt32 x = 0; x < height; ++x)
            {
                clockwise.push_back(at(y, height - 1 - x, z));
                counter.push_back(at(width - 1 - y, x, z));
            }
        for (UInt32 y = 0; y < height; ++y)
            for (UInt32 x = 0; x < width; ++x)
            {
                half.push_back(at(width - 1 - x, height - 1 - y, z));
                mirrored.push_back(at(width - 1 - x, y, z));
                upsideDown.push_back(at(x, height - 1 - y, z));
            }
    }
    XRotate90CWVolumeTool cw;
    XRotate90CCWVolumeTool ccw;
    XRotate180VolumeTool turn;
    XFlipHVolumeTool flip;
    XFlipVVolumeTool flipV;
    EXPECT_TRUE(Applied(cw, volume) == clockwise);
    EXPECT_TRUE(Applied(ccw, volume) == counter);
    EXPECT_TRUE(Applied(turn, volume) == half);
    EXPECT_TRUE(Applied(flip, volume) == mirrored);
    EXPECT_TRUE(Applied(flipV, volume) == upsideDown);
}
} // namespace

TEST(Rotate, LargePlanesOfEveryVoxelSizeMatchTheMapping)
{
    CheckAgainstMapping<XGrey8Volume>([](UInt32 i) { return UInt8(i * 7 + 3); });
    CheckAgainstMapping<XGrey16Volume>([](UInt32 i) { return UInt16(i * 977 + 5); });
    CheckAgainstMapping<XFPVolume>([](UInt32 i) { return float(i) * 0.5f; });
    CheckAgainstMapping<XRGB48Volume>([](UInt32 i) { return XRGB48Colour(UInt16(i), UInt16(i * 3), UInt16(i * 5)); });
}

TEST(Invert, AgainstTheMaximumItKeeps)
{
    XInvertVolumeTool invert;
    EXPECT_TRUE(std::isnan(invert.GetMaxVoxelValue()));
    invert.SetMaxVoxelValue(100.0);
    const auto grey = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {200, 0, 100});
    EXPECT_EQ(Applied(invert, grey), (std::vector<UInt8>{156, 100, 0}));

    XInvertVolumeTool fresh;
    const auto argb = XMakeVolume<XARGB32Volume>(X3DRect(1, 1, 1), {XARGB32Colour(7, 10, 20, 255)});
    EXPECT_EQ(Applied(fresh, argb), std::vector<XARGB32Colour>{XARGB32Colour(7, 245, 235, 0)});
    EXPECT_EQ(fresh.GetMaxVoxelValue(), 255.0);
    // The maximum stays with the tool: 255 goes on serving for 16-bit voxels.
    const auto wide = XMakeVolume<XGrey16Volume>(X3DRect(2, 1, 1), {100, 300});
    EXPECT_EQ(Applied(fresh, wide), (std::vector<UInt16>{155, 65491}));

    XInvertVolumeTool deepTool;
    auto deep = XMakeVolume<XRGB48Volume>(X3DRect(1, 1, 1), {XRGB48Colour(0, 1, 65535)});
    deepTool.ApplyToolInPlace(deep);
    EXPECT_EQ(XGetVoxels(deep), std::vector<XRGB48Colour>{XRGB48Colour(65535, 65534, 0)});
    EXPECT_EQ(deepTool.GetMaxVoxelValue(), 65535.0);
    EXPECT_EQ(ErrorOf([&] { delete deepTool.ApplyTool(XBGRA32Volume(X3DRect(1, 1, 1))); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { delete deepTool.ApplyTool(XFPVolume(X3DRect(1, 1, 1))); }), 2500u);
}
