// Masks applied to volumes: AND cuts the volume to the mask's box and clears what the mask does
// not hold; XOR on 8-bit volumes follows its table.

#include <gtest/gtest.h>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XBooleanVolumeTool.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

TEST(BooleanTool, AndCutsToTheMaskAndClearsWhatItDoesNotHold)
{
    XBooleanVolumeTool boolean;
    const auto source = XMakeVolume<XGrey16Volume>(X3DRect(4, 1, 1), {10, 20, 30, 40});
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(1, 0, 0, 6, 1, 1), {255, 127, 128, 0, 255});
    XGrey16Volume dest(X3DRect(4, 1, 1));
    boolean.AndVolumes(source, mask, dest);
    EXPECT_EQ(dest.GetBounds(), X3DRect(1, 0, 0, 4, 1, 1));
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt16>{20, 0, 40}));
    // Colour voxels become opaque black; in place the source is the destination.
    auto colour = XMakeVolume<XARGB32Volume>(X3DRect(2, 1, 1), {XARGB32Colour(9, 1, 2, 3), XARGB32Colour(9, 4, 5, 6)});
    const auto half = XMakeVolume<XMaskVolume>(X3DRect(2, 1, 1), {0, 255});
    boolean.AndVolumes(colour, half, colour);
    EXPECT_EQ(XGetVoxels(colour), (std::vector<XARGB32Colour>{XARGB32Colour::kBlack, XARGB32Colour(9, 4, 5, 6)}));
    XBGRA32Volume bgra(X3DRect(2, 1, 1));
    EXPECT_EQ(ErrorOf([&] { boolean.AndVolumes(bgra, half, bgra); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { boolean.AndVolumes(dest, dest, dest); }), 2500u);
}

TEST(BooleanTool, XorFollowsItsTableOnEightBitVolumes)
{
    XBooleanVolumeTool boolean;
    // a: clear, clear, set, set against m: clear, set, clear, set.
    auto volume = XMakeVolume<XGrey8Volume>(X3DRect(5, 1, 1), {0, 10, 200, 255, 200});
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(4, 1, 1), {0, 130, 100, 255});
    boolean.XorVolumes(volume, mask, volume);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt8>{0, 130, 200, 0, 200}));
    XGrey16Volume wide(X3DRect(4, 1, 1));
    EXPECT_EQ(ErrorOf([&] { boolean.XorVolumes(wide, mask, wide); }), 2500u);
}
