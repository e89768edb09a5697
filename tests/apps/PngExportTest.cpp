// brindle export to PNG, read back with libpng: one plane, grey or RGB, 8 or 16 bits, with the
// mapping of each voxel type worked out by hand.

#include <gtest/gtest.h>

#include "XARGB32Volume.h"
#include "XBrindleRun.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XGrey8Volume.h"
#include "XPngFiles.h"
#include "XRGB48Volume.h"
#include "XTiffFiles.h"

namespace
{
std::vector<UInt32> Samples(const XPngPicture & aPicture)
{
    return aPicture.itsSamples;
}

} // namespace

using PngExport = XBrindleTest;

TEST_F(PngExport, GreyPlanesKeepTheirValuesOrWidenThem)
{
    // 3 x 2 x 2 at origin (5, 6, 7): plane 1 is z = 8.
    XGrey16Volume wide(X3DRect(5, 6, 7, 8, 8, 9));
    XSetVoxels<UInt16>(wide, {1, 2, 3, 4, 5, 6, 100, 0x1234, 0xFFFF, 0, 7, 0x8000});
    wide.SetXCalibration(0.5);
    wide.SetYCalibration(0.25);
    XWriteVolumeFile(wide, PathOf("wide.bvol"));
    ASSERT_EQ(Run({"export", "wide.bvol", "wide.png", "--plane", "1"}).itsStatus, 0);
    const XPngPicture picture = XReadPng(PathOf("wide.png"));
    EXPECT_EQ(picture.itsWidth, 3u);
    EXPECT_EQ(picture.itsHeight, 2u);
    EXPECT_EQ(picture.itsBits, 16);
    EXPECT_EQ(picture.itsColourType, PNG_COLOR_TYPE_GRAY);
    EXPECT_EQ(Samples(picture), (std::vector<UInt32>{100, 0x1234, 0xFFFF, 0, 7, 0x8000}));
    // 0.5 and 0.25 micrometres: 2 and 4 million pixels a metre.
    EXPECT_EQ(picture.itsXPerMetre, 2000000u);
    EXPECT_EQ(picture.itsYPerMetre, 4000000u);

    XGrey8Volume narrow(X3DRect(4, 1, 1));
    XSetVoxels<UInt8>(narrow, {0, 1, 128, 255});
    XWriteVolumeFile(narrow, PathOf("narrow.bvol"));
    ASSERT_EQ(Run({"export", "narrow.bvol", "narrow.png"}).itsStatus, 0);
    EXPECT_EQ(XReadPng(PathOf("narrow.png")).itsBits, 8);
    EXPECT_EQ(Samples(XReadPng(PathOf("narrow.png"))), (std::vector<UInt32>{0, 1, 128, 255}));
    ASSERT_EQ(Run({"export", "narrow.bvol", "widened.png", "--bits", "16"}).itsStatus, 0);
    EXPECT_EQ(Samples(XReadPng(PathOf("widened.png"))), (std::vector<UInt32>{0, 257, 32896, 65535}));
}

TEST_F(PngExport, WiderAndFloatGreyIsScaledFromBlackToWhite)
{
    // Black 1000, white 3000: 1500 is a quarter of the way (63.75), 2000 half (127.5, rounded up).
    XMakeRowTiff<UInt16>(PathOf("row.tif"), {500, 1000, 1500, 2000, 4000}, SAMPLEFORMAT_UINT,
                         "ImageJ=1.54f\nmin=1000\nmax=3000\n");
    const XBrindleResult result = Run({"export", "row.tif", "row.png", "--bits", "8"});
    ASSERT_EQ(result.itsStatus, 0) << result;
    EXPECT_EQ(Samples(XReadPng(PathOf("row.png"))), (std::vector<UInt32>{0, 0, 64, 128, 255}));

    // Float -1, 0, 2, 3 over its own range -1..3: 0, 16383.75, 49151.25, 65535.
    XMakeRowTiff<float>(PathOf("f.tif"), {-1.0f, 0.0f, 2.0f, 3.0f}, SAMPLEFORMAT_IEEEFP);
    ASSERT_EQ(Run({"export", "f.tif", "f.png"}).itsStatus, 0);
    EXPECT_EQ(XReadPng(PathOf("f.png")).itsBits, 16);
    EXPECT_EQ(Samples(XReadPng(PathOf("f.png"))), (std::vector<UInt32>{0, 16384, 49151, 65535}));

    // 32-bit grey has no renderer: its own 10..110 takes the part of black..white.
    XGrey32Volume deep(X3DRect(4, 1, 1));
    XSetVoxels<UInt32>(deep, {10, 20, 30, 110});
    XWriteVolumeFile(deep, PathOf("deep.bvol"));
    ASSERT_EQ(Run({"export", "deep.bvol", "deep.png"}).itsStatus, 0);
    EXPECT_EQ(Samples(XReadPng(PathOf("deep.png"))), (std::vector<UInt32>{0, 6554, 13107, 65535}));
}

TEST_F(PngExport, ColourPlanesAreRGBWithoutAlpha)
{
    XARGB32Volume colour(X3DRect(2, 1, 1));
    XSetVoxels<XARGB32Colour>(colour, {XARGB32Colour(7, 1, 2, 3), XARGB32Colour(255, 200, 100, 0)});
    XWriteVolumeFile(colour, PathOf("colour.bvol"));
    ASSERT_EQ(Run({"export", "colour.bvol", "colour.png"}).itsStatus, 0);
    const XPngPicture picture = XReadPng(PathOf("colour.png"));
    EXPECT_EQ(picture.itsColourType, PNG_COLOR_TYPE_RGB);
    EXPECT_EQ(picture.itsBits, 8);
    EXPECT_EQ(Samples(picture), (std::vector<UInt32>{1, 2, 3, 200, 100, 0}));
    ASSERT_EQ(Run({"export", "colour.bvol", "colour16.png", "--bits=16"}).itsStatus, 0);
    EXPECT_EQ(Samples(XReadPng(PathOf("colour16.png"))), (std::vector<UInt32>{257, 514, 771, 51400, 25700, 0}));

    XRGB48Volume deep(X3DRect(2, 1, 1));
    XSetVoxels<XRGB48Colour>(deep, {XRGB48Colour(0x1234, 0xFF00, 1), XRGB48Colour(65535, 256, 255)});
    XWriteVolumeFile(deep, PathOf("deep.bvol"));
    ASSERT_EQ(Run({"export", "deep.bvol", "deep.png"}).itsStatus, 0);
    EXPECT_EQ(XReadPng(PathOf("deep.png")).itsBits, 16);
    EXPECT_EQ(Samples(XReadPng(PathOf("deep.png"))), (std::vector<UInt32>{0x1234, 0xFF00, 1, 65535, 256, 255}));
    ASSERT_EQ(Run({"export", "deep.bvol", "deep8.png", "--bits", "8"}).itsStatus, 0);
    EXPECT_EQ(Samples(XReadPng(PathOf("deep8.png"))), (std::vector<UInt32>{0x12, 0xFF, 0, 255, 1, 0}));
}
