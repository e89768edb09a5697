// The renderers' parameters: defaults per class, the property numbers, the normal state and
// its exceptions for float renderers, carrying an adjustment between classes, the transfer
// function and its inverse, the colour of one voxel, the rainbow table, and the stream forms.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "XARGB32ImageRenderer.h"
#include "XBGRA32ImageRenderer.h"
#include "XFPImageRenderer.h"
#include "XGrey16ImageRenderer.h"
#include "XGrey8ImageRenderer.h"
#include "XMaskImageRenderer.h"
#include "XRGB48ImageRenderer.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
XARGB32Colour ColourOf(const XImageRenderer & aRenderer, const void * aVoxel)
{
    XARGB32Colour colour(1, 2, 3, 4);
    aRenderer.GetColour(aVoxel, colour);
    return colour;
}

template <typename T>
XARGB32Colour GreyColour(const XImageRenderer & aRenderer, T aVoxel)
{
    return ColourOf(aRenderer, &aVoxel);
}
} // namespace

TEST(RendererDefaults, RangesAndWhitePointsPerClass)
{
    EXPECT_EQ(XGrey8ImageRenderer().GetWhite(), 255.0);
    EXPECT_EQ(XGrey16ImageRenderer().GetMaxInputValue(), 65535.0);
    EXPECT_EQ(XRGB48ImageRenderer().GetWhite(), 65535.0);
    EXPECT_EQ(XARGB32ImageRenderer().GetMaxInputValue(), 255.0);
    XFPImageRenderer real;
    EXPECT_EQ(real.GetWhite(), 1.0);
    EXPECT_EQ(real.GetMaxInputValue(), 1.0);
    real.SetBlack(-3.0);
    EXPECT_EQ(real.GetMinInputValue(), -3.0);
    XGrey8ImageRenderer grey;
    EXPECT_EQ(grey.GetBlackColour(), XARGB32Colour::kBlack);
    EXPECT_EQ(grey.GetWhiteColour(), XARGB32Colour::kWhite);
    EXPECT_EQ(grey.GetRendererType(), XImageRenderer::kRampRenderer);
    EXPECT_TRUE(XGrey16ImageRenderer().IsNormal());
    EXPECT_EQ(grey.GetStreamUsage(), 80u);
    // The colour renderers have no end colours.
    XARGB32ImageRenderer colour;
    colour.SetWhiteColour(XARGB32Colour::kRed);
    EXPECT_EQ(colour.GetWhiteColour(), XARGB32Colour::kWhite);
}

TEST(RendererProperties, NumbersOneToEightAndTheColourBytes)
{
    XGrey8ImageRenderer grey;
    for (UInt32 property = 1; property <= 15; ++property)
        EXPECT_EQ(grey.HasProperty(property), property != 9) << property;
    EXPECT_FALSE(XARGB32ImageRenderer().HasProperty(10));
    EXPECT_TRUE(XARGB32ImageRenderer().HasProperty(8));
    XMaskImageRenderer mask;
    EXPECT_FALSE(mask.HasProperty(1));
    EXPECT_FALSE(mask.HasProperty(2));
    EXPECT_FALSE(mask.HasProperty(5));
    EXPECT_TRUE(mask.HasProperty(3));

    grey.SetProperty(6, 0.5);
    grey.SetProperty(12, 77.9);
    grey.SetProperty(13, 10.0);
    grey.SetProperty(9, 5.0);
    EXPECT_EQ(grey.GetRedBalance(), 0.5);
    EXPECT_EQ(grey.GetBlackColour(), XARGB32Colour(255, 0, 0, 77));
    EXPECT_EQ(grey.GetWhiteColour(), XARGB32Colour(255, 10, 255, 255));
    EXPECT_EQ(grey.GetProperty(12), 77.0);
    EXPECT_EQ(grey.GetProperty(9), 0.0);
    grey.SetProperty(3, 2.0);
    EXPECT_EQ(grey.GetGain(), 2.0);
}

TEST(RendererNormal, TestsNormaliseAndTheFloatExceptions)
{
    XGrey16ImageRenderer wide;
    wide.SetWhite(4095.0);
    EXPECT_FALSE(wide.IsNormal());
    EXPECT_TRUE(wide.IsNormalExceptForWhitePoint());
    wide.SetWhiteColour(XARGB32Colour(0, 255, 255, 255));
    EXPECT_TRUE(wide.IsNormalExceptForWhitePoint()); // alpha is not compared
    wide.SetBlackColour(XARGB32Colour(1, 0, 0));
    EXPECT_FALSE(wide.IsNormalExceptForWhitePoint());
    wide.SetGamma(0.5);
    wide.SetRendererType(XImageRenderer::kRainbowRenderer);
    wide.Normalise();
    EXPECT_TRUE(wide.IsNormal());
    EXPECT_EQ(wide.GetWhite(), 65535.0);
    EXPECT_EQ(wide.GetRendererType(), XImageRenderer::kRainbowRenderer);

    // Black is compared with 0, not with the minimum input.
    XFPImageRenderer real;
    EXPECT_FALSE(real.IsNormal());
    EXPECT_TRUE(real.IsNormalExceptForWhitePoint());
    real.SetWhite(255.0);
    EXPECT_TRUE(real.IsNormal());
    real.SetBlack(1.0);
    EXPECT_FALSE(real.IsNormalExceptForWhitePoint());
    real.Normalise();
    EXPECT_EQ(real.GetBlack(), 1.0);
}

TEST(RendererCopyProperties, RescalesBlackAndWhiteBetweenClasses)
{
    XGrey16ImageRenderer wide;
    wide.SetBlack(4096.0);
    wide.SetWhite(8192.0);
    wide.SetGamma(0.8);
    wide.SetWhiteColour(XARGB32Colour::kGreen);
    XGrey8ImageRenderer grey;
    grey.CopyProperties(wide);
    EXPECT_DOUBLE_EQ(grey.GetBlack(), 4096.0 / 65535.0 * 255.0);
    EXPECT_DOUBLE_EQ(grey.GetWhite(), 8192.0 / 65535.0 * 255.0);
    EXPECT_EQ(grey.GetGamma(), 0.8);
    EXPECT_EQ(grey.GetWhiteColour(), XARGB32Colour::kGreen);
    // Within one class the points are copied as they are.
    XGrey16ImageRenderer same;
    same.CopyProperties(wide);
    EXPECT_EQ(same.GetBlack(), 4096.0);
    // A float renderer takes the points unscaled: they are its own input range.
    XFPImageRenderer real;
    real.CopyProperties(wide);
    EXPECT_EQ(real.GetBlack(), 4096.0);
    EXPECT_EQ(real.GetWhite(), 8192.0);
    // A mask offers no points: the target keeps its own.
    XGrey8ImageRenderer fromMask;
    XMaskImageRenderer mask;
    mask.SetGain(3.0);
    fromMask.CopyProperties(mask);
    EXPECT_EQ(fromMask.GetWhite(), 255.0);
    EXPECT_EQ(fromMask.GetGain(), 3.0);
}

TEST(RendererTransfer, LuminanceAndItsInverse)
{
    XGrey16ImageRenderer wide;
    wide.SetBlack(1000.0);
    wide.SetWhite(3000.0);
    EXPECT_EQ(wide.GetLuminance(2000.0), 127);
    EXPECT_EQ(wide.GetLuminance(999.0), 0);
    EXPECT_EQ(wide.GetLuminance(5000.0), 255);
    EXPECT_EQ(wide.GetLuminance(std::numeric_limits<double>::quiet_NaN()), 255);
    wide.SetGamma(2.0);
    EXPECT_EQ(wide.GetLuminance(2000.0), 63);
    EXPECT_DOUBLE_EQ(wide.GetValueForLuminance(63.75), 2000.0);
    // Without a range the offset alone decides.
    XGrey8ImageRenderer flat;
    flat.SetBlack(100.0);
    flat.SetWhite(100.0);
    flat.SetOffset(0.5);
    EXPECT_EQ(flat.GetLuminance(0.0), 127);
    EXPECT_EQ(flat.GetLuminance(200.0), 127);
    // A mask's luminance is that of its end colours.
    XMaskImageRenderer mask;
    mask.SetWhiteColour(XARGB32Colour(90, 90, 30));
    EXPECT_EQ(mask.GetLuminance(128.0), 70);
    EXPECT_EQ(mask.GetLuminance(127.0), 0);
}

TEST(RendererColour, RampRainbowAndColourChannels)
{
    XGrey8ImageRenderer grey;
    EXPECT_EQ(GreyColour<UInt8>(grey, 200), XARGB32Colour(200, 200, 200));
    grey.SetBlackColour(XARGB32Colour(0, 100, 0, 0));
    grey.SetWhiteColour(XARGB32Colour(0, 200, 50, 255));
    grey.SetColourBalance(1.0, 2.0, 0.5);
    // Balanced ends: red 100..200, green 0..100, blue 0..127; luminance 51 of 255.
    EXPECT_EQ(GreyColour<UInt8>(grey, 51), XARGB32Colour(255, 120, 20, 25));

    XGrey16ImageRenderer rainbow;
    rainbow.SetRendererType(XImageRenderer::kRainbowRenderer);
    rainbow.SetBlack(1000.0);
    rainbow.SetWhite(1255.0);
    EXPECT_EQ(GreyColour<UInt16>(rainbow, 999), XBaseGreyImageRenderer::kRainbowLUT[0]);
    EXPECT_EQ(GreyColour<UInt16>(rainbow, 1100), XBaseGreyImageRenderer::kRainbowLUT[100]);
    EXPECT_EQ(GreyColour<UInt16>(rainbow, 9000), XBaseGreyImageRenderer::kRainbowLUT[255]);
    rainbow.SetRendererType(XImageRenderer::XRendererType(7));
    EXPECT_EQ(GreyColour<UInt16>(rainbow, 1100), XARGB32Colour(1, 2, 3, 4));

    XFPImageRenderer real;
    EXPECT_EQ(GreyColour<float>(real, 0.5f), XARGB32Colour(127, 127, 127));

    XARGB32ImageRenderer colour;
    colour.SetGain(2.0);
    colour.SetColourBalance(0.5, 1.0, 1.0);
    const XARGB32Colour voxel(9, 200, 60, 0);
    // Gain 2: 200 clamps to 255, then the red balance halves it; 60 gives 120.
    EXPECT_EQ(ColourOf(colour, &voxel), XARGB32Colour(255, 127, 120, 0));
    XRGB48ImageRenderer deep;
    deep.SetWhite(4095.0);
    const XRGB48Colour deepVoxel(4095, 2048, 0);
    EXPECT_EQ(ColourOf(deep, &deepVoxel), XARGB32Colour(255, 127, 0));
}

TEST(RendererColour, RainbowTableRunsFrom420To650Nanometres)
{
    const XVector<XARGB32Colour> & table = XBaseGreyImageRenderer::kRainbowLUT;
    ASSERT_EQ(table.size(), 256u);
    EXPECT_EQ(table[0], XARGB32Colour::kBlack);
    XARGB32Colour first;
    first.SetARGB(255, 0, 0, 0);
    first.SetWavelength(float(1.0 / 255.0 * 230.0 + 420.0));
    EXPECT_EQ(table[1], first);
    EXPECT_EQ(table[255], XARGB32Colour(255, 0, 0));
}

TEST(RendererStream, LevelsAndTheOlderForm)
{
    XGrey8ImageRenderer grey;
    grey.SetGamma(0.5);
    grey.SetBlackColour(XARGB32Colour(1, 2, 3, 4));
    grey.SetRendererType(XImageRenderer::kRainbowRenderer);
    XTestMemoryStream stream(kBigEndian);
    stream.WriteObject(grey);
    stream.SeekTo(0);
    EXPECT_EQ(stream.Read32(), 12005u);
    EXPECT_EQ(stream.Read32(), 12001u);
    for (double expected : {0.0, 1.0, 0.5, 0.0, 255.0, 1.0, 1.0, 1.0})
        EXPECT_EQ(stream.ReadFloat64S(), expected);
    EXPECT_EQ(stream.Read32(), 143074u);
    EXPECT_EQ(stream.Read32(), 1u);
    EXPECT_EQ(stream.Read32(), 12003u);
    EXPECT_EQ(stream.Read32(), 0x01020304u);
    EXPECT_EQ(stream.Read32(), 0xFFFFFFFFu);
    EXPECT_EQ(stream.Read32(), 12005u);
    EXPECT_EQ(stream.GetBytesLeft(), 0u);
    stream.SeekTo(0);
    std::unique_ptr<XGrey8ImageRenderer> back(stream.ReadObjectAs<XGrey8ImageRenderer>());
    EXPECT_EQ(back->GetGamma(), 0.5);
    EXPECT_EQ(back->GetBlackColour(), XARGB32Colour(1, 2, 3, 4));
    EXPECT_EQ(back->GetRendererType(), XImageRenderer::kRainbowRenderer);

    XMaskImageRenderer mask;
    XTestMemoryStream maskStream(kLittleEndian);
    maskStream.WriteObject(mask);
    EXPECT_EQ(maskStream.GetBytes().size(), 4u * 2 + 64 + 4 * 5 + 4 * 2);
    maskStream.SeekTo(0);
    EXPECT_NE(std::unique_ptr<XMaskImageRenderer>(maskStream.ReadObjectAs<XMaskImageRenderer>()), nullptr);

    XRGB48ImageRenderer deep;
    XTestMemoryStream deepStream(kLittleEndian);
    deepStream.WriteObject(deep);
    EXPECT_EQ(deepStream.GetBytes().size(), 4u + 4 + 64 + 4);
    deepStream.SeekTo(0);
    EXPECT_EQ(std::unique_ptr<XRGB48ImageRenderer>(deepStream.ReadObjectAs<XRGB48ImageRenderer>())->GetWhite(),
              65535.0);

    // The older form, read by the stream constructor: the numbers, then the two colours as plain
    // numbers in the stream's order; no type.
    XTestMemoryStream old(kLittleEndian);
    old.Write32(12001);
    for (double value : {0.0, 1.0, 1.0, 0.0, 200.0, 1.0, 1.0, 1.0})
        old.WriteFloat64S(value);
    old.Write32(0xFF102030);
    old.Write32(0xFFFFFF00);
    old.SeekTo(0);
    XGrey8ImageRenderer older(old);
    EXPECT_EQ(older.GetWhite(), 200.0);
    EXPECT_EQ(older.GetBlackColour(), XARGB32Colour(255, 0x10, 0x20, 0x30));
    EXPECT_EQ(older.GetWhiteColour(), XARGB32Colour::kYellow);
    EXPECT_EQ(older.GetRendererType(), XImageRenderer::kRampRenderer);
}

TEST(RendererStream, WrongAndNewerLevelsAreRefused)
{
    XGrey16ImageRenderer wide;
    XTestMemoryStream stream(kLittleEndian);
    stream.WriteObject(wide);
    std::vector<UInt8> bytes = stream.GetBytes();
    auto patchedError = [&](std::size_t anOffset, UInt32 aWord) {
        std::vector<UInt8> copy = bytes;
        std::memcpy(copy.data() + anOffset, &aWord, 4);
        XTestMemoryStream in(copy, kLittleEndian);
        return ErrorOf([&] { std::unique_ptr<XStorable> object(in.ReadStorable()); });
    };
    EXPECT_EQ(patchedError(4, 34), 1005u);
    EXPECT_EQ(patchedError(4 + 4 + 64, 3 * 65536 + 12002), 1015u);
    EXPECT_EQ(patchedError(bytes.size() - 4, 12005), 1005u);
    // Version 1 of the grey level carries no type.
    std::vector<UInt8> noType(bytes.begin(), bytes.begin() + 72);
    XTestMemoryStream shorter(kLittleEndian);
    shorter.WriteBuffer8(noType.data(), noType.size());
    shorter.Write32(65536 + 12002);
    shorter.Write32(12003);
    shorter.Write32(0xFF000000);
    shorter.Write32(0xFFFFFFFF);
    shorter.Write32(12006);
    shorter.SeekTo(0);
    std::unique_ptr<XGrey16ImageRenderer> back(shorter.ReadObjectAs<XGrey16ImageRenderer>());
    EXPECT_EQ(back->GetRendererType(), XImageRenderer::kRampRenderer);
}
