// Float channels of the 32-bit colours: a value whose truncation cannot be taken (NaN, an
// infinity that a zero divisor gives) is an internal error; a large finite one still wraps into
// the channel's bits.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XTestSupport.h"

TEST(ColourGuardTest, FloatChannelsRefuseWhatCannotBeTruncated)
{
    const std::string range = "value finite and within the integer range";
    const float infinity = std::numeric_limits<float>::infinity();
    XARGB32Colour argb(255, 1, 2, 3);
    EXPECT_EQ(AssertionOf([&] { argb.SetRedFloat(infinity); }), range);
    EXPECT_EQ(AssertionOf([&] { argb.SetAlphaFloat(std::numeric_limits<float>::quiet_NaN()); }), range);
    XBGRA32Colour bgra;
    EXPECT_EQ(AssertionOf([&] { bgra.SetRGBFloat(0.0f, 0.0f, -infinity); }), range);
    // 10000001 * 255 = 2550000255, whose low byte is 127.
    argb.SetRedFloat(10000001.0f);
    EXPECT_EQ(argb, XARGB32Colour(255, 127, 2, 3));
}
