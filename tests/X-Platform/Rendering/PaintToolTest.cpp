// Painting a colour into each voxel type, into a box and a masked region.

#include <gtest/gtest.h>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPImageRenderer.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XMaskVolume.h"
#include "XPaintVolumeTool.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

TEST(PaintTool, ConvertsTheColourForEachVoxelType)
{
    XPaintVolumeTool paint;
    const X3DRect box(2, 1, 1);
    const XARGB32Colour colour(7, 30, 60, 91);
    XGrey8Volume grey(box);
    paint.FillRect(grey, box, colour);
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{60, 60}));
    XGrey16Volume wide(box);
    paint.FillRect(wide, box, XARGB32Colour::kWhite);
    EXPECT_EQ(XGetVoxels(wide), (std::vector<UInt16>{65535, 65535}));
    paint.FillRect(grey, box, XARGB32Colour(1, 1, 0));
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{0, 0}));
    XARGB32Volume argb(box);
    paint.FillRect(argb, box, colour);
    EXPECT_EQ(XGetVoxels(argb), std::vector<XARGB32Colour>(2, colour));
    XBGRA32Volume bgra(box);
    paint.FillRect(bgra, box, colour);
    EXPECT_EQ(XGetVoxels(bgra), std::vector<XBGRA32Colour>(2, XBGRA32Colour(colour)));
    XRGB48Volume deep(box);
    paint.FillRect(deep, box, colour);
    EXPECT_EQ(XGetVoxels(deep), std::vector<XRGB48Colour>(2, XRGB48Colour(7710, 15420, 23387)));
    // Float: the grey where the renderer shows it; white lands on the maximum input.
    XFPVolume real(box);
    real.GetPlaneRenderer().SetBlack(-10.0);
    real.GetPlaneRenderer().SetWhite(500.0);
    paint.FillRect(real, box, XARGB32Colour::kWhite);
    EXPECT_FLOAT_EQ(XGetVoxels(real)[0], 500.0f);
    paint.FillRect(real, box, XARGB32Colour(51, 51, 51));
    EXPECT_FLOAT_EQ(XGetVoxels(real)[0], 51.0f * (510.0f / 255.0f) - 10.0f);
    XGrey32Volume other(box);
    EXPECT_EQ(ErrorOf([&] { paint.FillRect(other, box, colour); }), 2500u);
}

TEST(PaintTool, PaintsTheVoxelsThatTheRegionHolds)
{
    XPaintVolumeTool paint;
    XMaskVolume volume(X3DRect(4, 1, 1));
    const X3DRegion region(XMakeVolume<XMaskVolume>(X3DRect(1, 0, 0, 5, 1, 1), {255, 100, 255, 255}));
    paint.FillRegion(volume, region, XARGB32Colour::kWhite);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{0, 255, 0, 255}));
    // A region that misses the volume changes nothing.
    paint.FillRect(volume, X3DRect(10, 10, 10, 12, 12, 12), XARGB32Colour::kBlack);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{0, 255, 0, 255}));
}
