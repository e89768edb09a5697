// What the commands make when they succeed: info's lines, conversions and tools on tiny volumes
// worked out by hand, the sample stack, the demo's files, help, --quiet, and writing over the
// input.

#include <gtest/gtest.h>

#include <fstream>

#include "XARGB32Volume.h"
#include "XBrindleRun.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XPngFiles.h"
#include "XRGB48Volume.h"
#include "XSampleStack.h"
#include "XTiffFiles.h"

namespace
{
class Commands : public XBrindleTest
{
protected:
    // 3 x 2 x 1 of 16-bit grey: 1 2 3 over 4 5 6.
    void WriteSmall(const std::string & aName)
    {
        XGrey16Volume volume(X3DRect(3, 2, 1));
        XSetVoxels<UInt16>(volume, {1, 2, 3, 4, 5, 6});
        XWriteVolumeFile(volume, PathOf(aName));
    }

    template <class V>
    std::vector<typename V::XVoxel> VoxelsOf(const std::string & aName, UInt32 * outWidth = nullptr)
    {
        const auto volume = XReadVolumeFile<V>(PathOf(aName));
        if (outWidth != nullptr)
            *outWidth = volume->GetWidth();
        return XGetVoxels(*volume);
    }
};
} // namespace

TEST_F(Commands, InfoTellsFrameRendererAndStatistics)
{
    XGrey16Volume volume(X3DRect(5, 6, 7, 8, 8, 9));
    XSetVoxels<UInt16>(volume, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    volume.SetXCalibration(0.25);
    volume.SetYCalibration(0.5);
    volume.SetZCalibration(2.0);
    XWriteVolumeFile(volume, PathOf("v.bvol"), kBigEndian);
    const XBrindleResult info = Run({"info", "v.bvol"});
    ASSERT_EQ(info.itsStatus, 0) << info;
    EXPECT_EQ(info.itsOut, "file         v.bvol\n"
                           "class        XGrey16Volume (16-bit Grayscale Image)\n"
                           "voxels       16-bit unsigned grey\n"
                           "size         3 x 2 x 2 (12 voxels, 0.0 MiB)\n"
                           "bounds       x 5..8, y 6..8, z 7..9\n"
                           "origin       5, 6, 7\n"
                           "calibration  0.25 x 0.5 x 2\n"
                           "renderer     black 0, white 65535, gamma 1, gain 1, offset 0\n"
                           "minimum      1\n"
                           "maximum      12\n"
                           "mean         6.5\n");

    XARGB32Volume colour(X3DRect(2, 1, 1));
    XSetVoxels<XARGB32Colour>(colour, {XARGB32Colour(1, 2, 3), XARGB32Colour(3, 6, 9)});
    XWriteVolumeFile(colour, PathOf("c.bvol"));
    const XBrindleResult colourInfo = Run({"info", "c.bvol"});
    EXPECT_NE(colourInfo.itsOut.find("minimum      red 1, green 2, blue 3\n"
                                     "maximum      red 3, green 6, blue 9\n"
                                     "mean         red 2, green 4, blue 6\n"),
              std::string::npos)
        << colourInfo;
}

TEST_F(Commands, ConvertUsesTheLibrarysConversions)
{
    XGrey16Volume grey(X3DRect(4, 1, 1));
    XSetVoxels<UInt16>(grey, {0, 255, 256, 65535});
    XWriteVolumeFile(grey, PathOf("g.bvol"));
    ASSERT_EQ(Run({"convert", "g.bvol", "g8.bvol", "--type", "grey8"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XGrey8Volume>("g8.bvol"), (std::vector<UInt8>{0, 0, 1, 255}));
    ASSERT_EQ(Run({"convert", "g.bvol", "rgb.bvol", "--type=rgb48"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XRGB48Volume>("rgb.bvol"),
              (std::vector<XRGB48Colour>{XRGB48Colour(0), XRGB48Colour(255), XRGB48Colour(256), XRGB48Colour(65535)}));
    ASSERT_EQ(Run({"convert", "g.bvol", "argb.bvol", "--type", "argb32"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XARGB32Volume>("argb.bvol"),
              (std::vector<XARGB32Colour>{XARGB32Colour(0), XARGB32Colour(0), XARGB32Colour(1), XARGB32Colour(255)}));

    // Into float the values stay, and so does the display range (seen in the TIFF's description).
    ASSERT_EQ(Run({"convert", "g.bvol", "f.tif", "--type", "float"}).itsStatus, 0);
    EXPECT_NE(XReadTiff(PathOf("f.tif")).itsDescription.find("min=0\nmax=65535\n"), std::string::npos);
    ASSERT_EQ(Run({"convert", "g.bvol", "f.bvol", "--type", "float"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XFPVolume>("f.bvol"), (std::vector<float>{0.0f, 255.0f, 256.0f, 65535.0f}));

    // Float -1, 0, 2, 3 shown over -1..3 into grey16: trunc((v + 1) * 65535 / 4).
    XMakeRowTiff<float>(PathOf("r.tif"), {-1.0f, 0.0f, 2.0f, 3.0f}, SAMPLEFORMAT_IEEEFP);
    ASSERT_EQ(Run({"convert", "r.tif", "r16.bvol", "--type", "grey16"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XGrey16Volume>("r16.bvol"), (std::vector<UInt16>{0, 16383, 49151, 65535}));
}

TEST_F(Commands, ToolsMoveAndInvertVoxels)
{
    WriteSmall("s.bvol");
    struct XCase
    {
        const char * itsTool;
        UInt32 itsWidth;
        std::vector<UInt16> itsVoxels;
    };
    const XCase cases[] = {{"flip-h", 3, {3, 2, 1, 6, 5, 4}},
                           {"flip-v", 3, {4, 5, 6, 1, 2, 3}},
                           {"rotate-180", 3, {6, 5, 4, 3, 2, 1}},
                           // (x, y) goes to (1 - y, x): the left column, read upwards, is the top row.
                           {"rotate-cw", 2, {4, 1, 5, 2, 6, 3}},
                           {"rotate-ccw", 2, {3, 6, 2, 5, 1, 4}},
                           {"invert", 3, {65534, 65533, 65532, 65531, 65530, 65529}}};
    for (const XCase & aCase : cases)
    {
        const XBrindleResult result = Run({aCase.itsTool, "s.bvol", "out.bvol"});
        ASSERT_EQ(result.itsStatus, 0) << aCase.itsTool << ": " << result;
        UInt32 width = 0;
        EXPECT_EQ(VoxelsOf<XGrey16Volume>("out.bvol", &width), aCase.itsVoxels) << aCase.itsTool;
        EXPECT_EQ(width, aCase.itsWidth) << aCase.itsTool;
    }

    // A command may write over its input, and straight into a PNG.
    ASSERT_EQ(Run({"flip-h", "s.bvol", "s.bvol"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XGrey16Volume>("s.bvol"), (std::vector<UInt16>{3, 2, 1, 6, 5, 4}));
    ASSERT_EQ(Run({"flip-v", "s.bvol", "s.png"}).itsStatus, 0);
    EXPECT_EQ(XReadPng(PathOf("s.png")).itsSamples, (std::vector<UInt32>{6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(Files(), (std::vector<std::string>{"out.bvol", "s.bvol", "s.png"}));
}

// On 1 2 3 over 4 5 6: the median of the voxels inside each 3 x 3 cube (the lower middle of an
// even count), the brightest and darkest of the face neighbours, the mean of nine by truncation,
// and an edge detector with a bias.
TEST_F(Commands, FiltersMakeTheirValuesByHand)
{
    WriteSmall("s.bvol");
    std::ofstream(PathOf("edge.txt")) << "3 1 1\n-1 2 -1\n";
    struct XCase
    {
        std::vector<std::string> itsArguments;
        std::vector<UInt16> itsVoxels;
    };
    const XCase cases[] = {{{"median", "s.bvol", "out.bvol"}, {2, 3, 3, 2, 3, 3}},
                           {{"median", "s.bvol", "out.bvol", "--size", "1"}, {1, 2, 3, 4, 5, 6}},
                           {{"dilate", "s.bvol", "out.bvol"}, {4, 5, 6, 5, 6, 6}},
                           {{"dilate", "s.bvol", "out.bvol", "--element", "box"}, {5, 6, 6, 5, 6, 6}},
                           {{"dilate", "s.bvol", "out.bvol", "--element", "box", "--iterations", "2"}, {6, 6, 6, 6, 6, 6}},
                           {{"erode", "s.bvol", "out.bvol"}, {1, 1, 2, 1, 2, 3}},
                           // One plane: the points in z lie outside.
                           {{"erode", "s.bvol", "out.bvol", "--edge-black"}, {0, 0, 0, 0, 0, 0}},
                           // 12, 21 and 16 ninths; the kernel is flat on one plane.
                           {{"convolve", "s.bvol", "out.bvol", "--mean", "3"}, {1, 2, 1, 1, 2, 1}},
                           {{"convolve", "s.bvol", "out.bvol", "--kernel", "edge.txt", "--bias", "100"},
                            {100, 100, 104, 103, 100, 107}}};
    for (const XCase & aCase : cases)
    {
        const XBrindleResult result = Run(aCase.itsArguments);
        ASSERT_EQ(result.itsStatus, 0) << aCase.itsArguments[0] << ": " << result;
        EXPECT_EQ(VoxelsOf<XGrey16Volume>("out.bvol"), aCase.itsVoxels) << aCase.itsArguments[0];
    }

    // The hybrid median changes only the centre of this plane: its seven medians are 3, 3, 4, 4,
    // 7, 7, 7.
    XGrey8Volume plane(X3DRect(3, 3, 1));
    XSetVoxels<UInt8>(plane, {9, 1, 5, 3, 7, 2, 8, 4, 6});
    XWriteVolumeFile(plane, PathOf("p.bvol"));
    ASSERT_EQ(Run({"median", "p.bvol", "h.bvol", "--hybrid"}).itsStatus, 0);
    EXPECT_EQ(VoxelsOf<XGrey8Volume>("h.bvol"), (std::vector<UInt8>{9, 1, 5, 3, 4, 2, 8, 4, 6}));
    const XBrindleResult gaussian = Run({"convolve", "p.bvol", "g.png", "--gaussian", "0.8"});
    EXPECT_EQ(gaussian.itsStatus, 0) << gaussian;
    EXPECT_EQ(XReadPng(PathOf("g.png")).itsWidth, 3u);
}

TEST_F(Commands, SampleWritesTheBuiltInStack)
{
    const XBrindleResult result = Run({"sample", "sample.bvol"});
    ASSERT_EQ(result.itsStatus, 0) << result;
    EXPECT_EQ(result.itsOut, "wrote sample.bvol (grey16, 256 x 256 x 32)\n");
    const auto written = XReadVolumeFile<XGrey16Volume>(PathOf("sample.bvol"));
    EXPECT_EQ(written->GetBounds(), X3DRect(256, 256, 32));
    EXPECT_EQ(written->GetXCalibration(), 0.2);
    EXPECT_EQ(written->GetYCalibration(), 0.2);
    EXPECT_EQ(written->GetZCalibration(), 0.5);
    // The same in every process, and another seed gives another stack.
    EXPECT_TRUE(*written == *XSampleStack().MakeVolume());
    ASSERT_EQ(Run({"--quiet", "sample", "seven.bvol", "--seed", "7"}).itsStatus, 0);
    const auto seven = XReadVolumeFile<XGrey16Volume>(PathOf("seven.bvol"));
    EXPECT_TRUE(*seven == *XSampleStack(7).MakeVolume());
    EXPECT_FALSE(*seven == *written);
}

TEST_F(Commands, DemoWritesItsFilesAndReport)
{
    const XBrindleResult result = Run({"demo", "out"});
    ASSERT_EQ(result.itsStatus, 0) << result;
    const std::string report = XReadText(itsFolder / "out" / "report.txt");
    EXPECT_EQ(result.itsOut, report);
    EXPECT_NE(report.find("\nChecks: 24 passed, 0 failed\n"), std::string::npos) << report;
    for (const char * name : {"sample.bvol", "sample.tif", "sample-grey8.bvol", "sample-float.bvol", "sample-median-xy-16.png"})
        EXPECT_TRUE(std::filesystem::exists(itsFolder / "out" / name)) << name;
    const XPngPicture xz = XReadPng((itsFolder / "out" / "plane-xz-70.png").string());
    EXPECT_EQ(xz.itsWidth, 256u);
    EXPECT_EQ(xz.itsHeight, 80u);
    EXPECT_EQ(xz.itsBits, 8);
    const XPngPicture inverted = XReadPng((itsFolder / "out" / "sample-invert-xy-16.png").string());
    EXPECT_EQ(inverted.itsWidth, 256u);
    const XPngPicture half = XReadPng((itsFolder / "out" / "sample-half-xy-8.png").string());
    EXPECT_EQ(half.itsWidth, 128u);
    EXPECT_EQ(half.itsHeight, 128u);

    // Quiet, into the default folder.
    const XBrindleResult quiet = Run({"demo", "--quiet"});
    EXPECT_EQ(quiet.itsStatus, 0);
    EXPECT_EQ(quiet.itsOut, "");
    EXPECT_TRUE(std::filesystem::exists(itsFolder / "brindle-demo" / "report.txt"));
}

TEST_F(Commands, HelpVersionAndSelfCheck)
{
    const XBrindleResult usage = Run({"--help"});
    EXPECT_EQ(usage.itsStatus, 0);
    for (const char * name : {"info", "import", "export", "convert", "flip-h", "flip-v", "rotate-cw", "rotate-ccw",
                              "rotate-180", "invert", "resample", "median", "dilate", "erode", "convolve", "sample", "demo",
                              "self-check"})
    {
        EXPECT_NE(usage.itsOut.find(std::string("\n  ") + name + " "), std::string::npos) << name;
        const XBrindleResult help = Run({name, "--help"});
        EXPECT_EQ(help.itsStatus, 0) << name;
        EXPECT_EQ(help.itsOut.rfind(std::string("usage: brindle ") + name, 0), 0u) << help;
        EXPECT_EQ(Run({"help", name}).itsOut, help.itsOut);
    }
    EXPECT_EQ(Run({"--version"}).itsOut.rfind("brindle 0.", 0), 0u);
    const XBrindleResult check = Run({"self-check"});
    EXPECT_EQ(check.itsStatus, 0) << check;
    EXPECT_NE(check.itsOut.find("All checks passed.\n"), std::string::npos);
}
