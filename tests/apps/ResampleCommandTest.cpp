// brindle resample: the new grid from --size and --scale, the filters by name, the class and
// calibrations of the result, and its failures.

#include <gtest/gtest.h>

#include "XARGB32Volume.h"
#include "XBrindleRun.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XPngFiles.h"

namespace
{
constexpr int kBadInput = 1;
constexpr int kBadCommandLine = 2;

class Resample : public XBrindleTest
{
protected:
    void SetUp() override
    {
        XBrindleTest::SetUp();
        // 100 200 along x, voxel size 0.5 x 1 x 2.
        XGrey8Volume pair(X3DRect(2, 1, 1));
        XSetVoxels<UInt8>(pair, {100, 200});
        pair.SetXCalibration(0.5);
        pair.SetZCalibration(2.0);
        XWriteVolumeFile(pair, PathOf("pair.bvol"));
        XGrey8Volume ramp(X3DRect(5, 1, 1));
        XSetVoxels<UInt8>(ramp, {10, 20, 30, 40, 50});
        XWriteVolumeFile(ramp, PathOf("ramp.bvol"));
    }

    void ExpectFailure(const std::vector<std::string> & anArguments, int aStatus, const std::string & aText)
    {
        const std::vector<std::string> before = Files();
        const XBrindleResult result = Run(anArguments);
        EXPECT_TRUE(result.FailedWith(aStatus, "resample", aText)) << result;
        EXPECT_EQ(Files(), before);
    }
};
} // namespace

TEST_F(Resample, SizeScaleAndFilters)
{
    // The bell, 2 to 4 (worked out in the library's tests): 124 131 149 171; the voxel size
    // along x halves as the grid doubles.
    const XBrindleResult bell = Run({"resample", "pair.bvol", "out.bvol", "--size", "4x1x1", "--filter", "bell"});
    ASSERT_EQ(bell.itsStatus, 0) << bell;
    EXPECT_EQ(bell.itsOut, "wrote out.bvol (grey8, 4 x 1 x 1)\n");
    const auto enlarged = XReadVolumeFile<XGrey8Volume>(PathOf("out.bvol"));
    EXPECT_EQ(XGetVoxels(*enlarged), (std::vector<UInt8>{124, 131, 149, 171}));
    EXPECT_EQ(enlarged->GetXCalibration(), 0.25);
    EXPECT_EQ(enlarged->GetYCalibration(), 1.0);
    EXPECT_EQ(enlarged->GetZCalibration(), 2.0);

    // --scale 0.4 turns 5 into floor(2 + 0.5) = 2, and keeps the one row and plane. The
    // triangle and the default smooth step weigh 1/4 1/2 1/4 alike here: 19 and 39.
    for (const char * filter : {"triangle", ""})
    {
        std::vector<std::string> arguments{"resample", "ramp.bvol", "half.bvol", "--scale=0.4"};
        if (*filter != '\0')
            arguments.insert(arguments.end(), {"--filter", filter});
        ASSERT_EQ(Run(arguments).itsStatus, 0) << filter;
        const auto reduced = XReadVolumeFile<XGrey8Volume>(PathOf("half.bvol"));
        EXPECT_EQ(XGetVoxels(*reduced), (std::vector<UInt8>{19, 39})) << filter;
        EXPECT_EQ(reduced->GetXCalibration(), 2.5) << filter;
    }
    // One factor per axis, and every filter by name.
    for (const char * filter : {"simple", "triangle", "bell", "bspline", "lanczos3"})
    {
        ASSERT_EQ(Run({"resample", "ramp.bvol", "out.bvol", "--scale", "2,3,1", "--filter", filter}).itsStatus, 0);
        EXPECT_EQ(XReadVolumeFile<XGrey8Volume>(PathOf("out.bvol"))->GetBounds(), X3DRect(10, 3, 1)) << filter;
    }
}

TEST_F(Resample, ColourAndPng)
{
    XARGB32Volume colour(X3DRect(2, 1, 1));
    XSetVoxels<XARGB32Colour>(colour, {XARGB32Colour(100, 10, 20, 30), XARGB32Colour(200, 50, 60, 70)});
    XWriteVolumeFile(colour, PathOf("colour.bvol"));
    ASSERT_EQ(Run({"resample", "colour.bvol", "out.bvol", "--size", "4x1x1", "--filter", "bell"}).itsStatus, 0);
    EXPECT_EQ(XGetVoxels(*XReadVolumeFile<XARGB32Volume>(PathOf("out.bvol")))[1], XARGB32Colour(131, 22, 32, 42));
    // Straight into a PNG of the first plane.
    ASSERT_EQ(Run({"resample", "pair.bvol", "out.png", "--size", "4x1x1", "--filter", "bell"}).itsStatus, 0);
    EXPECT_EQ(XReadPng(PathOf("out.png")).itsSamples, (std::vector<UInt32>{124, 131, 149, 171}));
}

TEST_F(Resample, Failures)
{
    XGrey16Volume wide(X3DRect(2, 2, 2));
    XWriteVolumeFile(wide, PathOf("wide.bvol"));
    ExpectFailure({"resample", "wide.bvol", "out.bvol", "--size", "4x4x4"}, kBadInput,
                  "this tool does not handle volumes of the type 16-bit Grayscale Image; resample takes 8-bit");
    ExpectFailure({"resample", "missing.bvol", "out.bvol", "--size", "4x4x4"}, kBadInput, "missing.bvol");

    const std::string grid = "give the new grid as --size WxHxD or --scale S[,SY,SZ]";
    ExpectFailure({"resample", "pair.bvol", "out.bvol"}, kBadCommandLine, grid);
    ExpectFailure({"resample", "pair.bvol", "out.bvol", "--size", "4x1x1", "--scale", "2"}, kBadCommandLine, grid);
    for (const char * size : {"4x1", "4x0x1", "4x1x1x1", "4xax1", "-4x1x1", "4x1x2147483648", ""})
        ExpectFailure({"resample", "pair.bvol", "out.bvol", "--size", size}, kBadCommandLine,
                      std::string("option '--size' needs three whole numbers in 1..2147483647 as WxHxD, not '") +
                          size + "'");
    for (const char * scale : {"0", "-1", "1,2", "nan", "inf", "2,,3", "1e400"})
        ExpectFailure({"resample", "pair.bvol", "out.bvol", "--scale", scale}, kBadCommandLine,
                      std::string("option '--scale' needs one or three numbers above 0 as S or SX,SY,SZ, not '") +
                          scale + "'");
    ExpectFailure({"resample", "pair.bvol", "out.bvol", "--size", "4x1x1", "--filter", "cubic"}, kBadCommandLine,
                  "unknown filter 'cubic' (simple|triangle|bell|bspline|lanczos3)");
    // Absurd grids end before anything is allocated.
    ExpectFailure({"resample", "pair.bvol", "out.bvol", "--size", "100000x100000x100000"}, kBadCommandLine,
                  "the grid 100000x100000x100000 is too large");
    ExpectFailure({"resample", "pair.bvol", "out.bvol", "--scale", "1e10"}, kBadCommandLine,
                  "option '--scale' makes an extent of more than 2147483647 voxels");
    ExpectFailure({"resample", "pair.bvol", "out.bvol", "--scale", "65536,65536,2"}, kBadCommandLine,
                  "is too large");
}
