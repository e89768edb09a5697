// Doubles that a grey renderer truncates to an integer: the colour-byte properties keep the low
// byte of the truncated value, the index of a colour must fit the voxel type; NaN, an infinity
// or a value beyond the integer are internal errors.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "XGrey16ImageRenderer.h"
#include "XGrey8ImageRenderer.h"
#include "XTestSupport.h"

TEST(RendererGuardTest, TruncatedDoublesMustFitTheirInteger)
{
    const std::string range = "value finite and within the integer range";
    const double infinity = std::numeric_limits<double>::infinity();
    XGrey8ImageRenderer grey;
    grey.SetProperty(10, 300.0); // black red: 300 keeps its low byte, 44
    grey.SetProperty(11, -1.0);  // black green: -1 keeps 255
    EXPECT_EQ(grey.GetBlackColour(), XARGB32Colour(255, 44, 255, 0));
    EXPECT_EQ(AssertionOf([&] { grey.SetProperty(13, infinity); }), range);
    EXPECT_EQ(AssertionOf([&] { grey.SetProperty(14, 3e9); }), range);
    EXPECT_EQ(grey.GetWhiteColour(), XARGB32Colour(255, 255, 255, 255));

    XARGB32Colour colour;
    XGrey8ImageRenderer ramp;
    ramp.GetColourByIndex(255.9, colour); // truncated to 255, the white point
    EXPECT_EQ(colour, XARGB32Colour(255, 255, 255, 255));
    EXPECT_EQ(AssertionOf([&] { ramp.GetColourByIndex(256.0, colour); }), range);
    EXPECT_EQ(AssertionOf([&] { XGrey16ImageRenderer().GetColourByIndex(std::numeric_limits<double>::quiet_NaN(), colour); }), range);
}
