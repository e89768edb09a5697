// brindle import and export on every kind of TIFF stack: the voxels that import makes (read
// back through the library) follow the samples of the file, and a stack exported again holds
// the same samples bit for bit. Calibrations and display ranges from the tags and from ImageJ's
// description.

#include <gtest/gtest.h>

#include <cstring>

#include "XARGB32Volume.h"
#include "XBrindleRun.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XGrey8Volume.h"
#include "XImageRenderer.h"
#include "XRGB48Volume.h"
#include "XTiffFiles.h"

namespace
{
// The voxels that a stack of aSpec must give, x fastest, made from the sample formula.
template <class V>
std::vector<typename V::XVoxel> ExpectedVoxels(const XTiffSpec & aSpec)
{
    std::vector<typename V::XVoxel> voxels;
    for (UInt32 z = 0; z < aSpec.itsPages; ++z)
        for (UInt32 y = 0; y < aSpec.itsHeight; ++y)
            for (UInt32 x = 0; x < aSpec.itsWidth; ++x)
            {
                auto sample = [&](UInt32 c) { return XTiffSampleBits(aSpec, x, y, z, c); };
                using T = typename V::XVoxel;
                if constexpr (std::is_same_v<T, XARGB32Colour>)
                    voxels.push_back(XARGB32Colour(255, UInt8(sample(0)), UInt8(sample(1)), UInt8(sample(2))));
                else if constexpr (std::is_same_v<T, XRGB48Colour>)
                    voxels.push_back(XRGB48Colour(UInt16(sample(0)), UInt16(sample(1)), UInt16(sample(2))));
                else if constexpr (std::is_same_v<T, float>)
                {
                    const UInt32 bits = UInt32(sample(0));
                    float value = 0.0f;
                    std::memcpy(&value, &bits, 4);
                    voxels.push_back(value);
                }
                else
                    voxels.push_back(T(sample(0)));
            }
    return voxels;
}

template <class V>
void ExpectImportedVoxels(const std::string & aPath, const XTiffSpec & aSpec)
{
    const std::unique_ptr<V> volume = XReadVolumeFile<V>(aPath);
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->GetBounds(), X3DRect(aSpec.itsWidth, aSpec.itsHeight, aSpec.itsPages));
    const auto expected = ExpectedVoxels<V>(aSpec);
    const auto voxels = XGetVoxels(*volume);
    if constexpr (std::is_same_v<typename V::XVoxel, float>)
        EXPECT_EQ(0, std::memcmp(voxels.data(), expected.data(), expected.size() * sizeof(float)));
    else
        EXPECT_TRUE(voxels == expected);
}

class TiffRoundTrip : public XBrindleTest, public ::testing::WithParamInterface<XTiffSpec>
{
};

std::vector<XTiffSpec> AllKinds()
{
    struct XKind
    {
        UInt16 itsBits;
        UInt16 itsChannels;
        UInt16 itsFormat;
    };
    const XKind kinds[] = {{8, 1, SAMPLEFORMAT_UINT},   {16, 1, SAMPLEFORMAT_UINT}, {32, 1, SAMPLEFORMAT_UINT},
                           {32, 1, SAMPLEFORMAT_IEEEFP}, {8, 3, SAMPLEFORMAT_UINT},  {16, 3, SAMPLEFORMAT_UINT}};
    std::vector<XTiffSpec> specs;
    for (const XKind & kind : kinds)
        for (bool tiled : {false, true})
            for (bool bigEndian : {false, true})
            {
                XTiffSpec spec;
                spec.itsBits = kind.itsBits;
                spec.itsChannels = kind.itsChannels;
                spec.itsFormat = kind.itsFormat;
                spec.itsTiled = tiled;
                spec.itsBigEndian = bigEndian;
                specs.push_back(spec);
            }
    // Compressed blocks, predictors, and colour samples in separate planes.
    XTiffSpec deflate;
    deflate.itsBigEndian = true;
    deflate.itsCompression = COMPRESSION_ADOBE_DEFLATE;
    specs.push_back(deflate);
    XTiffSpec lzw;
    lzw.itsBits = 8;
    lzw.itsChannels = 3;
    lzw.itsTiled = true;
    lzw.itsCompression = COMPRESSION_LZW;
    lzw.itsPredictor = PREDICTOR_HORIZONTAL;
    specs.push_back(lzw);
    XTiffSpec floats;
    floats.itsBits = 32;
    floats.itsFormat = SAMPLEFORMAT_IEEEFP; // little-endian: libtiff 4.5 mangles big-endian float predictors
    floats.itsCompression = COMPRESSION_ADOBE_DEFLATE;
    floats.itsPredictor = PREDICTOR_FLOATINGPOINT;
    specs.push_back(floats);
    // BigTIFF, with libtiff's 64-bit offsets, in both byte orders.
    for (bool bigEndian : {false, true})
    {
        XTiffSpec big;
        big.itsBigTiff = true;
        big.itsTiled = bigEndian;
        big.itsBigEndian = bigEndian;
        specs.push_back(big);
    }
    for (UInt16 bits : {8, 16})
        for (bool tiled : {false, true})
        {
            XTiffSpec separate;
            separate.itsBits = bits;
            separate.itsChannels = 3;
            separate.itsSeparate = true;
            separate.itsTiled = tiled;
            separate.itsBigEndian = bits == 16;
            specs.push_back(separate);
        }
    return specs;
}
} // namespace

TEST_P(TiffRoundTrip, ImportGivesTheSamplesAndExportGivesThemBackBitForBit)
{
    const XTiffSpec & spec = GetParam();
    ASSERT_TRUE(XMakeTiff(PathOf("in.tif"), spec));
    const XBrindleResult imported = Run({"import", "in.tif", "out.bvol"});
    ASSERT_EQ(imported.itsStatus, 0) << imported;
    EXPECT_EQ(imported.itsError, "");

    const bool colour = spec.itsChannels == 3;
    if (spec.itsFormat == SAMPLEFORMAT_IEEEFP)
        ExpectImportedVoxels<XFPVolume>(PathOf("out.bvol"), spec);
    else if (colour && spec.itsBits == 8)
        ExpectImportedVoxels<XARGB32Volume>(PathOf("out.bvol"), spec);
    else if (colour)
        ExpectImportedVoxels<XRGB48Volume>(PathOf("out.bvol"), spec);
    else if (spec.itsBits == 8)
        ExpectImportedVoxels<XGrey8Volume>(PathOf("out.bvol"), spec);
    else if (spec.itsBits == 16)
        ExpectImportedVoxels<XGrey16Volume>(PathOf("out.bvol"), spec);
    else
        ExpectImportedVoxels<XGrey32Volume>(PathOf("out.bvol"), spec);

    const XBrindleResult exported = Run({"export", "out.bvol", "back.tif"});
    ASSERT_EQ(exported.itsStatus, 0) << exported;
    const XTiffPages original = XReadTiff(PathOf("in.tif"));
    const XTiffPages back = XReadTiff(PathOf("back.tif"));
    ASSERT_EQ(back.itsPages.size(), spec.itsPages);
    EXPECT_EQ(back.itsWidth, spec.itsWidth);
    EXPECT_EQ(back.itsHeight, spec.itsHeight);
    EXPECT_EQ(back.itsBits, spec.itsBits);
    EXPECT_EQ(back.itsChannels, spec.itsChannels);
    EXPECT_EQ(back.itsFormat, spec.itsFormat);
    EXPECT_EQ(back.itsPhotometric, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    EXPECT_TRUE(back.itsPages == original.itsPages);
    EXPECT_EQ(Files(), (std::vector<std::string>{"back.tif", "in.tif", "out.bvol"}));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, TiffRoundTrip, ::testing::ValuesIn(AllKinds()),
                         [](const ::testing::TestParamInfo<XTiffSpec> & anInfo) { return anInfo.param.Name(); });

using TiffImport = XBrindleTest;

TEST_F(TiffImport, MinIsWhiteIsInvertedAndPaletteGivesTheIndices)
{
    XTiffSpec white;
    white.itsPhotometric = PHOTOMETRIC_MINISWHITE;
    ASSERT_TRUE(XMakeTiff(PathOf("white.tif"), white));
    ASSERT_EQ(Run({"import", "white.tif", "white.bvol"}).itsStatus, 0);
    const auto inverted = XReadVolumeFile<XGrey16Volume>(PathOf("white.bvol"));
    XLock lock(*inverted, kLockRead);
    // (x, y, z) = (2, 3, 1): 2 * 1031 + 3 * 257 + 4099 + 3 = 6935, stored white-is-zero.
    EXPECT_EQ(inverted->GetVoxel(2, 3, 1), 65535 - 6935);

    XTiffSpec palette;
    palette.itsBits = 8;
    palette.itsPhotometric = PHOTOMETRIC_PALETTE;
    ASSERT_TRUE(XMakeTiff(PathOf("palette.tif"), palette));
    ASSERT_EQ(Run({"import", "palette.tif", "palette.bvol"}).itsStatus, 0);
    const auto indices = XReadVolumeFile<XGrey8Volume>(PathOf("palette.bvol"));
    XLock indexLock(*indices, kLockRead);
    // 2 * 7 + 3 * 13 + 29 = 82.
    EXPECT_EQ(indices->GetVoxel(2, 3, 1), 82);
}

TEST_F(TiffImport, CalibrationsComeFromTheResolutionTagsAndImageJsSpacing)
{
    // ImageJ: pixels per micrometre without a unit, the z step as spacing, the display range.
    XTiffSpec imageJ;
    imageJ.itsXResolution = 5.0f;
    imageJ.itsYResolution = 4.0f;
    imageJ.itsDescription = "ImageJ=1.54f\nimages=3\nslices=3\nunit=micron\nspacing=0.5\nmin=100\nmax=3000\n";
    ASSERT_TRUE(XMakeTiff(PathOf("imagej.tif"), imageJ));
    ASSERT_EQ(Run({"import", "imagej.tif", "imagej.bvol"}).itsStatus, 0);
    const auto volume = XReadVolumeFile<XGrey16Volume>(PathOf("imagej.bvol"));
    EXPECT_EQ(volume->GetXCalibration(), 0.2);
    EXPECT_EQ(volume->GetYCalibration(), 0.25);
    EXPECT_EQ(volume->GetZCalibration(), 0.5);
    const XBrindleResult info = Run({"info", "imagej.tif"});
    EXPECT_NE(info.itsOut.find("calibration  0.2 x 0.25 x 0.5\n"), std::string::npos) << info;
    EXPECT_NE(info.itsOut.find("renderer     black 100, white 3000,"), std::string::npos) << info;

    // Nanometres in ImageJ's unit: 0.05 pixels a nanometre is 20 nm, 0.02 micrometres.
    XTiffSpec nanometres;
    nanometres.itsXResolution = 0.05f;
    nanometres.itsYResolution = 0.05f;
    nanometres.itsDescription = "ImageJ=1.54f\nunit=nm\nspacing=100\n";
    ASSERT_TRUE(XMakeTiff(PathOf("nm.tif"), nanometres));
    ASSERT_EQ(Run({"import", "nm.tif", "nm.bvol"}).itsStatus, 0);
    const auto fine = XReadVolumeFile<XGrey16Volume>(PathOf("nm.bvol"));
    EXPECT_EQ(fine->GetXCalibration(), 0.02);
    EXPECT_DOUBLE_EQ(fine->GetZCalibration(), 0.1);

    // Centimetres and inches: 5000 pixels a centimetre is 2 micrometres; 25400 a inch is 1.
    XTiffSpec centimetres;
    centimetres.itsXResolution = 5000.0f;
    centimetres.itsYResolution = 5000.0f;
    centimetres.itsResolutionUnit = RESUNIT_CENTIMETER;
    ASSERT_TRUE(XMakeTiff(PathOf("cm.tif"), centimetres));
    ASSERT_EQ(Run({"import", "cm.tif", "cm.bvol"}).itsStatus, 0);
    const auto coarse = XReadVolumeFile<XGrey16Volume>(PathOf("cm.bvol"));
    EXPECT_EQ(coarse->GetXCalibration(), 2.0);
    EXPECT_EQ(coarse->GetZCalibration(), 1.0); // no spacing: left at 1
    XTiffSpec inches = centimetres;
    inches.itsXResolution = 25400.0f;
    inches.itsYResolution = 12700.0f;
    inches.itsResolutionUnit = RESUNIT_INCH;
    ASSERT_TRUE(XMakeTiff(PathOf("inch.tif"), inches));
    ASSERT_EQ(Run({"import", "inch.tif", "inch.bvol"}).itsStatus, 0);
    const auto inch = XReadVolumeFile<XGrey16Volume>(PathOf("inch.bvol"));
    EXPECT_EQ(inch->GetXCalibration(), 1.0);
    EXPECT_EQ(inch->GetYCalibration(), 2.0);

    // Without tags every calibration stays 1.
    ASSERT_TRUE(XMakeTiff(PathOf("bare.tif"), XTiffSpec()));
    ASSERT_EQ(Run({"import", "bare.tif", "bare.bvol"}).itsStatus, 0);
    const auto bare = XReadVolumeFile<XGrey16Volume>(PathOf("bare.bvol"));
    EXPECT_EQ(bare->GetXCalibration(), 1.0);
    EXPECT_EQ(bare->GetZCalibration(), 1.0);
}

TEST_F(TiffImport, ExportedStacksCarryTheirCalibrationsForImageJAndForImport)
{
    XGrey16Volume volume(X3DRect(3, 2, 2));
    XSetVoxels<UInt16>(volume, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    volume.SetXCalibration(0.3);
    volume.SetYCalibration(0.3);
    volume.SetZCalibration(1.5);
    XWriteVolumeFile(volume, PathOf("v.bvol"));
    ASSERT_EQ(Run({"export", "v.bvol", "v.tif"}).itsStatus, 0);
    const XTiffPages pages = XReadTiff(PathOf("v.tif"));
    EXPECT_EQ(pages.itsResolutionUnit, RESUNIT_NONE);
    EXPECT_FLOAT_EQ(pages.itsXResolution, 1.0f / 0.3f);
    EXPECT_EQ(pages.itsDescription.rfind("ImageJ=", 0), 0u);
    EXPECT_NE(pages.itsDescription.find("\nimages=2\nslices=2\nunit=micron\nspacing=1.5\nmin=0\nmax=65535\n"),
              std::string::npos)
        << pages.itsDescription;

    // The resolution is a float fraction in the file; import rounds 1 / (1 / 0.3) back to 0.3.
    ASSERT_EQ(Run({"import", "v.tif", "w.bvol"}).itsStatus, 0);
    const auto back = XReadVolumeFile<XGrey16Volume>(PathOf("w.bvol"));
    EXPECT_TRUE(*back == volume);
    EXPECT_EQ(back->GetXCalibration(), 0.3);
    EXPECT_EQ(back->GetZCalibration(), 1.5);
}

TEST_F(TiffImport, FloatStacksShowTheirDataRange)
{
    // Values -1, 0, 2 and 3 in a 4 x 1 x 1 float stack without a display range.
    XMakeRowTiff<float>(PathOf("f.tif"), {-1.0f, 0.0f, 2.0f, 3.0f}, SAMPLEFORMAT_IEEEFP);
    const XBrindleResult info = Run({"info", "f.tif"});
    ASSERT_EQ(info.itsStatus, 0) << info;
    EXPECT_NE(info.itsOut.find("renderer     black -1, white 3,"), std::string::npos) << info;
    EXPECT_NE(info.itsOut.find("minimum      -1\nmaximum      3\nmean         1\n"), std::string::npos) << info;
}

TEST_F(TiffImport, BigTiffOnRequestHoldsTheSameStack)
{
    XGrey16Volume volume(X3DRect(3, 2, 2));
    XSetVoxels<UInt16>(volume, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    volume.SetXCalibration(0.25);
    volume.SetZCalibration(2.0);
    XWriteVolumeFile(volume, PathOf("v.bvol"));
    ASSERT_EQ(Run({"export", "v.bvol", "classic.tif"}).itsStatus, 0);
    ASSERT_EQ(Run({"export", "v.bvol", "big.tif", "--bigtiff"}).itsStatus, 0);
    // The version word after the byte order: 42 for classic TIFF, 43 for BigTIFF.
    EXPECT_EQ(XReadText(PathOf("classic.tif")).substr(0, 4), std::string("II\x2A\0", 4));
    EXPECT_EQ(XReadText(PathOf("big.tif")).substr(0, 4), std::string("II\x2B\0", 4));
    EXPECT_TRUE(XReadTiff(PathOf("big.tif")).itsPages == XReadTiff(PathOf("classic.tif")).itsPages);

    ASSERT_EQ(Run({"import", "big.tif", "back.bvol"}).itsStatus, 0);
    const auto back = XReadVolumeFile<XGrey16Volume>(PathOf("back.bvol"));
    EXPECT_TRUE(*back == volume);
    EXPECT_EQ(back->GetXCalibration(), 0.25);
    EXPECT_EQ(back->GetZCalibration(), 2.0);

    const XBrindleResult png = Run({"export", "v.bvol", "v.png", "--bigtiff"});
    EXPECT_TRUE(png.FailedWith(2, "export", "option '--bigtiff' is for TIFF files only")) << png;
}
