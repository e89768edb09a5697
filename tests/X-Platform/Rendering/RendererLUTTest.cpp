// Renderers as palettes and palettes as renderers: the 8-bit table through the ramp shader's
// fixed point, the generic table through GetColour with its depth from the white point, the
// mask's two colours, and a palette reduced to its bright end.

#include <gtest/gtest.h>

#include "XARGB32ImageRenderer.h"
#include "XFPImageRenderer.h"
#include "XFloatToColourLUT.h"
#include "XGrey16ImageRenderer.h"
#include "XImagingErrors.h"
#include "XLock.h"
#include "XMaskImageRenderer.h"
#include "XTestSupport.h"

namespace
{
XARGB32Colour Entry(const XIntToColourLUT & aTable, UInt32 anIndex)
{
    XLock lock(aTable, kLockRead);
    return aTable.IndexToValue(anIndex);
}

XARGB32Colour Grey(UInt8 aLevel)
{
    return XARGB32Colour(aLevel);
}
} // namespace

TEST(RendererLUT, Grey8TableComesFromTheRampShader)
{
    const XIntToColourLUT normal = XGrey8ImageRenderer().GetLUT();
    EXPECT_EQ(normal.GetSize(), 256u);
    EXPECT_EQ(normal.GetTrueDepth(), 8u);
    EXPECT_EQ(Entry(normal, 0), XARGB32Colour::kBlack);
    EXPECT_EQ(Entry(normal, 128), Grey(128));
    EXPECT_EQ(Entry(normal, 255), XARGB32Colour::kWhite);

    // Luminance 255 on a ramp from 10 to 250: slope trunc(240 / 255 * 65536) = 61680, and
    // (61680 * 255) >> 16 = 239, so 249 where GetColour says 250.
    XGrey8ImageRenderer renderer;
    renderer.SetGain(0.0);
    renderer.SetOffset(1.0);
    renderer.SetBlackColour(Grey(10));
    renderer.SetWhiteColour(Grey(250));
    EXPECT_EQ(Entry(renderer.GetLUT(), 77), Grey(249));
    UInt8 voxel = 77;
    XARGB32Colour slow;
    renderer.GetColour(&voxel, slow);
    EXPECT_EQ(slow, Grey(250));
    // Luminance 127: (61680 * 127) >> 16 = 119, plus 10. A rainbow type makes no difference.
    renderer.SetOffset(0.5);
    renderer.SetRendererType(XImageRenderer::kRainbowRenderer);
    EXPECT_EQ(Entry(renderer.GetLUT(), 200), Grey(129));
}

TEST(RendererLUT, GenericTableLeavesOutTheLastInputAndTakesItsDepthFromWhite)
{
    XGrey16ImageRenderer renderer;
    XIntToColourLUT table = renderer.GetLUT();
    EXPECT_EQ(table.GetSize(), 65535u);
    EXPECT_EQ(table.GetTrueDepth(), 16u);
    EXPECT_EQ(table.GetLastTrueValue(), 65535u);
    EXPECT_EQ(Entry(table, 256), Grey(0));
    EXPECT_EQ(Entry(table, 257), Grey(1)); // 257 / 65535 is 1 / 255
    EXPECT_EQ(Entry(table, 65534), Grey(254));
    renderer.SetWhite(4096.0);
    table = renderer.GetLUT();
    EXPECT_EQ(table.GetTrueDepth(), 12u);
    EXPECT_EQ(Entry(table, 4096), XARGB32Colour::kWhite);
    renderer.SetWhite(4097.0);
    EXPECT_EQ(renderer.GetLUT().GetLastTrueValue(), 8191u);
    renderer.SetWhite(0.0);
    EXPECT_EQ(renderer.GetLUT().GetTrueDepth(), 1u);

    // A float renderer's input range is its black and white: 0 to 1 makes one entry.
    XFPImageRenderer real;
    EXPECT_EQ(real.GetLUT().GetSize(), 1u);
    real.SetWhite(1e9);
    EXPECT_EQ(ErrorOf([&] { real.GetLUT(); }), UInt32(kErrBadArgument));
}

TEST(RendererLUT, MaskTableHasTwoColours)
{
    XMaskImageRenderer mask;
    mask.SetGain(0.5);
    const XIntToColourLUT table = mask.GetLUT();
    EXPECT_EQ(Entry(table, 127), XARGB32Colour::kBlack);
    EXPECT_EQ(Entry(table, 128), Grey(127));
    EXPECT_EQ(Entry(table, 255), Grey(127));
}

TEST(RendererLUT, PalettesBecomeRampsToTheirBrightEnd)
{
    XGrey16ImageRenderer deep(XIntToColourLUT::GetStandardLUT(12));
    EXPECT_EQ(deep.GetWhite(), 4095.0);
    EXPECT_EQ(deep.GetWhiteColour(), XARGB32Colour::kWhite);
    EXPECT_EQ(deep.GetBlack(), 0.0);

    // A falling palette: the 8-bit renderer takes its bright first entry, the 16-bit one the
    // entry at the last true value.
    XIntToColourLUT falling(256);
    falling.MakeLinearLUT(0, 255, XARGB32Colour::kRed, XARGB32Colour::kBlack);
    XGrey8ImageRenderer grey8;
    grey8.SetRendererType(XImageRenderer::kRainbowRenderer);
    grey8.ApplyLUT(falling);
    EXPECT_EQ(grey8.GetWhiteColour(), XARGB32Colour::kRed);
    EXPECT_EQ(grey8.GetBlackColour(), XARGB32Colour::kBlack);
    EXPECT_EQ(grey8.GetWhite(), 255.0);
    EXPECT_EQ(grey8.GetRendererType(), XImageRenderer::kRampRenderer);
    EXPECT_EQ(XGrey16ImageRenderer(falling).GetWhiteColour(), XARGB32Colour::kBlack);

    // A last true value past a small palette: the colour of its last entry, the white point
    // as stated.
    XIntToColourLUT small = XIntToColourLUT::GetStandardLUT(8);
    XIntToColourLUT palette(18);
    palette.CopyDataFrom(small, 0, 255, 0, 17);
    palette.SetLastTrueValue(4095);
    const XGrey8ImageRenderer fromPalette(palette);
    EXPECT_EQ(fromPalette.GetWhiteColour(), XARGB32Colour::kWhite);
    EXPECT_EQ(fromPalette.GetWhite(), 4095.0);
    // A renderer's own table gives it back its settings.
    EXPECT_TRUE(XGrey8ImageRenderer(XGrey8ImageRenderer().GetLUT()).IsNormal());

    EXPECT_EQ(ErrorOf([] { XGrey8ImageRenderer renderer((XIntToColourLUT())); }), UInt32(kErrBadArgument));
}

TEST(RendererLUT, FloatRenderersTakeTablesOfRealValuesOnly)
{
    const XFloatToColourLUT range(2.0, 6.0);
    const XFPImageRenderer real(range);
    EXPECT_EQ(real.GetBlack(), 2.0);
    EXPECT_EQ(real.GetWhite(), 6.0);
    EXPECT_EQ(real.GetBlackColour(), XARGB32Colour::kBlack);
    EXPECT_EQ(real.GetWhiteColour(), XARGB32Colour::kWhite);

    XFPImageRenderer other;
    EXPECT_EQ(ErrorOf([&] { other.ApplyLUT(XIntToColourLUT::GetStandardLUT(8)); }), UInt32(kErrNoLUT));
    EXPECT_EQ(ErrorOf([&] { other.ApplyLUT(XFloatToColourLUT(XIntToColourLUT())); }), UInt32(kErrBadArgument));
    // Renderers of colour volumes have no table either way.
    XARGB32ImageRenderer colour;
    EXPECT_EQ(ErrorOf([&] { colour.GetLUT(); }), UInt32(kErrNoLUT));
    EXPECT_EQ(ErrorOf([&] { colour.ApplyLUT(range); }), UInt32(kErrNoLUT));
}
