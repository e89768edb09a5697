// Hue, saturation and intensity at the sector boundaries and inside sectors, in 8 and 16 bits,
// and the colour of wavelengths at the ends of each range. Expected values are worked out by
// hand from the hexcone formulas and the wavelength table.

#include <gtest/gtest.h>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XColourSpaces.h"
#include "XRGB48Colour.h"

namespace
{
struct XHSICase
{
    UInt8 hue, saturation, intensity, red, green, blue;
};

void ExpectHSIToRGB(const XHSICase & aCase)
{
    XARGB32Colour colour(33, 0, 0, 0);
    colour.SetHSI(aCase.hue, aCase.saturation, aCase.intensity);
    EXPECT_EQ(colour.GetARGB(), XARGB32Colour(33, aCase.red, aCase.green, aCase.blue).GetARGB())
        << "hue " << int(aCase.hue) << " saturation " << int(aCase.saturation) << " intensity "
        << int(aCase.intensity);
}

UInt32 WavelengthWord(double aWavelength, UInt8 anAlpha = 255)
{
    XARGB32Colour colour(anAlpha, 9, 9, 9);
    colour.SetWavelength(aWavelength);
    return colour.GetARGB();
}
} // namespace

TEST(HSI, SectorBoundariesAndInteriorsBothWays)
{
    // Whole sectors: hue 0 and 255 (x = 6 wraps to 0) red, 85 green, 170 blue.
    ExpectHSIToRGB({0, 255, 255, 255, 0, 0});
    ExpectHSIToRGB({255, 255, 255, 255, 0, 0});
    ExpectHSIToRGB({85, 255, 255, 0, 255, 0});
    ExpectHSIToRGB({170, 255, 200, 0, 0, 200});
    // Sector 3: p = trunc(0.498 * 200) = 99, q = trunc((1 - 0.0118 * 0.502) * 200) = 198.
    ExpectHSIToRGB({128, 128, 200, 99, 198, 200});
    // Sector 5: q = trunc((1 - 0.4118) * 100) = 58.
    ExpectHSIToRGB({230, 255, 100, 100, 0, 58});
    // Sector 1: x = 1.2, q = trunc(0.8 * 255) = 204.
    ExpectHSIToRGB({51, 255, 255, 204, 255, 0});
    // No saturation: the grey of the intensity.
    ExpectHSIToRGB({200, 0, 77, 77, 77, 77});

    // And back from red, green and blue.
    EXPECT_EQ(XARGB32Colour(255, 0, 0).GetHue(), 0);
    EXPECT_EQ(XARGB32Colour(255, 0, 0).GetSaturation(), 255);
    EXPECT_EQ(XARGB32Colour(0, 255, 0).GetHue(), 85);
    EXPECT_EQ(XARGB32Colour(0, 0, 255).GetHue(), 170);
    // Red largest with a negative hue: (-128/255) / 6 + 1 = 0.9163, times 255 is 233.67.
    EXPECT_EQ(XARGB32Colour(255, 0, 128).GetHue(), 233);
    // S = trunc(150 / 200 * 255) = 191; H = trunc(1/3 / 6 * 255) = 14.
    EXPECT_EQ(XBGRA32Colour(200, 100, 50).GetSaturation(), 191);
    EXPECT_EQ(XBGRA32Colour(200, 100, 50).GetHue(), 14);
    EXPECT_EQ(XARGB32Colour(100, 100, 100).GetHue(), 0);
    EXPECT_EQ(XARGB32Colour(100, 100, 100).GetSaturation(), 0);
    EXPECT_EQ(XARGB32Colour(0, 0, 0).GetSaturation(), 0);

    UInt8 hue, saturation, intensity;
    XARGB32Colour::RGBToHSI(0, 100, 200, hue, saturation, intensity);
    // Blue largest: ((0 - 100/255) / (200/255) + 4) / 6 = 0.5833, times 255 is 148.75.
    EXPECT_EQ(hue, 148);
    EXPECT_EQ(saturation, 255);
    EXPECT_EQ(intensity, 200);
}

TEST(HSI, SixteenBitChannelsUseTheirOwnRange)
{
    EXPECT_EQ(XRGB48Colour(65535, 0, 0).GetHue(), 0);
    EXPECT_EQ(XRGB48Colour(65535, 0, 0).GetSaturation(), 65535);
    EXPECT_EQ(XRGB48Colour(0, 0, 65535).GetHue(), 43690);
    // S = trunc(30000 / 40000 * 65535) = 49151.
    EXPECT_EQ(XRGB48Colour(40000, 20000, 10000).GetSaturation(), 49151);

    UInt16 red, green, blue;
    // x = 32768 * 6 / 65535 = 3.00005, sector 3, q = trunc((1 - 0.0000458 * 1) * 1000) = 999.
    XColourSpaces::HSIToRGB<UInt16>(32768, 65535, 1000, red, green, blue);
    EXPECT_EQ(red, 0);
    EXPECT_EQ(green, 999);
    EXPECT_EQ(blue, 1000);
}

TEST(Wavelength, RangeLimitsAndTableEnds)
{
    // 380: red 1, blue 1, factor 0.3, so trunc(76.5).
    EXPECT_EQ(WavelengthWord(380.0), 0xff4c004cu);
    // 400: red 2/3, factor 0.65: trunc(110.5) and trunc(165.75).
    EXPECT_EQ(WavelengthWord(400.0), 0xff6e00a5u);
    EXPECT_EQ(WavelengthWord(440.0), 0xff0000ffu);
    EXPECT_EQ(WavelengthWord(490.0), 0xff00ffffu);
    EXPECT_EQ(WavelengthWord(510.0), 0xff00ff00u);
    EXPECT_EQ(WavelengthWord(580.0), 0xffffff00u);
    EXPECT_EQ(WavelengthWord(645.0), 0xffff0000u);
    EXPECT_EQ(WavelengthWord(700.0), 0xffff0000u);
    // 740: factor 40 * 0.7 / 80 + 0.3 = 0.65.
    EXPECT_EQ(WavelengthWord(740.0), 0xffa50000u);
    EXPECT_EQ(WavelengthWord(780.0), 0xff4c0000u);
    // Outside the range black, alpha left alone.
    EXPECT_EQ(WavelengthWord(781.0, 17), 0x11000000u);
    EXPECT_EQ(WavelengthWord(379.5, 17), 0x11000000u);
}
