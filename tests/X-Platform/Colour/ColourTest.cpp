// The 32-bit and 48-bit colours: layout, words, float channels, saturating arithmetic,
// alpha operations, comparisons and streaming. Expected values are worked out by hand from
// the rules in the headers.

#include <gtest/gtest.h>

#include <cstring>

#include "XARGB32Colour.h"
#include "XBGRA32Colour.h"
#include "XInternalError.h"
#include "XRGB48Colour.h"
#include "XRGBFloat32Colour.h"
#include "XTestMemoryStream.h"

namespace
{
template <class Colour>
std::vector<UInt8> MemoryOf(const Colour & aColour)
{
    std::vector<UInt8> bytes(sizeof(Colour));
    std::memcpy(bytes.data(), &aColour, sizeof(Colour));
    return bytes;
}

template <class Colour>
void ExpectRGB(const Colour & aColour, UInt32 aRed, UInt32 aGreen, UInt32 aBlue)
{
    EXPECT_EQ(aColour.GetRed(), aRed);
    EXPECT_EQ(aColour.GetGreen(), aGreen);
    EXPECT_EQ(aColour.GetBlue(), aBlue);
}

template <class Colour>
class Colour32Test : public ::testing::Test
{
};
using Colour32Types = ::testing::Types<XARGB32Colour, XBGRA32Colour>;
TYPED_TEST_SUITE(Colour32Test, Colour32Types);
} // namespace

TEST(ColourLayout, ChannelsLieInTheirMemoryOrderAndConversionsCarryAlpha)
{
    EXPECT_EQ(MemoryOf(XARGB32Colour(0x11, 0x22, 0x33, 0x44)), (std::vector<UInt8>{0x11, 0x22, 0x33, 0x44}));
    EXPECT_EQ(MemoryOf(XBGRA32Colour(0x11, 0x22, 0x33, 0x44)), (std::vector<UInt8>{0x44, 0x33, 0x22, 0x11}));
    EXPECT_EQ(MemoryOf(XRGB48Colour(0x0102, 0x0304, 0x0506)).size(), 6u);
    EXPECT_EQ(MemoryOf(XARGB32Colour()), (std::vector<UInt8>{0, 0, 0, 0}));
    // A conversion carries alpha and lays the bytes out anew.
    const XBGRA32Colour bgra(XARGB32Colour(10, 20, 30, 40));
    EXPECT_EQ(MemoryOf(bgra), (std::vector<UInt8>{40, 30, 20, 10}));
    EXPECT_EQ(static_cast<XARGB32Colour>(bgra), XARGB32Colour(10, 20, 30, 40));
    XARGB32Colour reformatted(0x11, 0x22, 0x33, 0x44);
    reformatted.ReformatToRGBA();
    EXPECT_EQ(MemoryOf(reformatted), (std::vector<UInt8>{0x22, 0x33, 0x44, 0x11}));
}

TYPED_TEST(Colour32Test, ConstructorsAndWords)
{
    using C = TypeParam;
    const C grey(77);
    EXPECT_EQ(grey.GetARGB(), 0xff4d4d4du);
    EXPECT_EQ(C(1, 2, 3).GetAlpha(), 255);

    const C colour(0x11, 0x22, 0x33, 0x44);
    EXPECT_EQ(colour.GetARGB(), 0x11223344u);
    EXPECT_EQ(colour.GetBGRA(), 0x44332211u);
    EXPECT_EQ(colour.GetRGBA(), 0x22334411u);
    EXPECT_EQ(colour.GetColourRef(), 0x00443322u);
    EXPECT_EQ(C::FromARGB(0x11223344u), colour);

    C fromRef;
    fromRef.SetColourRef(0x00443322u);
    EXPECT_EQ(fromRef.GetARGB(), 0xff223344u);

    C all(9, 1, 2, 3);
    all.SetAll(40);
    EXPECT_EQ(all.GetARGB(), 0x09282828u);
}

TYPED_TEST(Colour32Test, FloatChannelsTruncateWithoutClamp)
{
    TypeParam colour;
    colour.SetRedFloat(1.0f);
    colour.SetGreenFloat(0.5f);
    colour.SetBlueFloat(2.0f); // 510 wraps to 254
    colour.SetAlphaFloat(0.999f); // 254.745 truncates
    ExpectRGB(colour, 255, 127, 254);
    EXPECT_EQ(colour.GetAlpha(), 254);
    EXPECT_FLOAT_EQ(colour.GetRedFloat(), 1.0f);
    EXPECT_FLOAT_EQ(colour.GetGreenFloat(), 127.0f / 255.0f);

    float gl[4];
    TypeParam(51, 0, 102, 255).GetGL(gl);
    EXPECT_FLOAT_EQ(gl[0], 0.0f);
    EXPECT_FLOAT_EQ(gl[1], 0.4f);
    EXPECT_FLOAT_EQ(gl[2], 1.0f);
    EXPECT_FLOAT_EQ(gl[3], 0.2f);
}

TYPED_TEST(Colour32Test, MeasuresAndAdjustments)
{
    using C = TypeParam;
    EXPECT_EQ(C(10, 20, 31).GetAverage(), 20);
    EXPECT_EQ(static_cast<unsigned char>(C(255, 255, 254)), 254);
    EXPECT_EQ(C(10, 200, 31).GetIntensity(), 200);

    C inverted(7, 0, 100, 255);
    inverted.Invert();
    EXPECT_EQ(inverted.GetARGB(), 0x07ff9b00u);

    C offset(9, 5, 100, 250);
    offset.Offset(-10);
    EXPECT_EQ(offset.GetARGB(), 0x09005af0u);
    offset.Offset(20);
    EXPECT_EQ(offset.GetARGB(), 0x09146effu);
}

TYPED_TEST(Colour32Test, SaturatingArithmeticLeavesAlpha)
{
    using C = TypeParam;
    EXPECT_EQ((C(9, 200, 10, 0) += C(1, 100, 20, 0)).GetARGB(), 0x09ff1e00u);
    EXPECT_EQ((C(9, 100, 30, 5) -= C(1, 200, 10, 5)).GetARGB(), 0x09001400u);
    // A product is not divided by 255: a channel of 2 doubles.
    EXPECT_EQ((C(9, 2, 3, 0) *= C(1, 100, 100, 7)).GetARGB(), 0x09c8ff00u);
    EXPECT_EQ((C(9, 100, 7, 255) /= C(1, 3, 7, 2)).GetARGB(), 0x0921017fu);
    EXPECT_EQ((C(9, 100, 200, 3) * 1.5).GetARGB(), 0x0996ff04u);
    EXPECT_EQ((C(9, 101, 0, 255) / 2.0).GetARGB(), 0x0932007fu);
    EXPECT_EQ((C(9, 101, 0, 255) / 2.0f).GetARGB(), 0x0932007fu);
    EXPECT_EQ((C(9, 101, 50, 255) * -1.0).GetARGB(), 0x09000000u);
    EXPECT_EQ(C(1, 2, 3) + C(1, 2, 3), C(2, 4, 6));
    C colour(1, 2, 3);
    EXPECT_THROW(colour /= C(1, 0, 1), XInternalError); // a zero channel is a broken precondition
}

TYPED_TEST(Colour32Test, AlphaOperations)
{
    using C = TypeParam;
    C combined(255, 1, 2, 3);
    combined.CombineAlpha(255);
    EXPECT_EQ(combined.GetAlpha(), 254);

    C premultiplied(255, 255, 128, 0);
    premultiplied.PremultiplyAlpha();
    EXPECT_EQ(premultiplied.GetARGB(), 0xfffe7f00u);
    C half(128, 100, 255, 1);
    half.PremultiplyAlpha();
    EXPECT_EQ(half.GetARGB(), 0x80327f00u);

    // (200 * 128 + 100 * 127) >> 8 = 149; an opaque colour over this one replaces it but for
    // the loss of the shift by 8.
    C blended(40, 100, 0, 255);
    blended.BlendRGBWith(C(128, 200, 255, 0));
    EXPECT_EQ(blended.GetARGB(), 0x28957f7eu);
    C covered(40, 100, 0, 255);
    covered.BlendRGBWith(C(255, 200, 255, 0));
    EXPECT_EQ(covered.GetARGB(), 0x28c7fe00u);

    C mip(10, 5, 200, 7);
    mip.MIPCompositeRGBFrom(C(20, 6, 100, 9));
    EXPECT_EQ(mip.GetARGB(), 0x0a06c809u);
    mip.MIPCompositeARGBFrom(C(20, 0, 0, 0));
    EXPECT_EQ(mip.GetAlpha(), 20);

    C rotated(0x11, 0x22, 0x33, 0x44);
    rotated.ReformatToRGBA();
    EXPECT_EQ(rotated.GetARGB(), 0x22334411u);
}

TYPED_TEST(Colour32Test, OrderingComparesIntensityOnly)
{
    using C = TypeParam;
    const C red(255, 0, 0), blue(0, 0, 255);
    EXPECT_FALSE(red < blue || blue < red || red > blue);
    EXPECT_TRUE(red <= blue && red >= blue);
    EXPECT_TRUE(red != blue); // equality compares every channel
    EXPECT_TRUE(C(10, 0, 0) < C(0, 11, 0));
    EXPECT_FALSE(C(1, 10, 10, 10) == C(2, 10, 10, 10));
}

TEST(ColourStream, ARGB32IsFourBytesInEitherOrder)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        XTestMemoryStream stream(order);
        XWriteARGB32(stream, XARGB32Colour(0x11, 0x22, 0x33, 0x44));
        XWriteARGB32(stream, XARGB32Colour::kOrange);
        EXPECT_EQ(stream.GetBytes(), (std::vector<UInt8>{0x11, 0x22, 0x33, 0x44, 0xff, 0xff, 0x7f, 0x00}));
        stream.SeekTo(0);
        EXPECT_EQ(XReadARGB32(stream), XARGB32Colour(0x11, 0x22, 0x33, 0x44));
        EXPECT_EQ(XReadARGB32(stream), XARGB32Colour::kOrange);
    }
}

TEST(RGB48Colour, HighBytesAndSixteenBitArithmetic)
{
    const XRGB48Colour colour(0x1234, 0xabcd, 0x00ff);
    EXPECT_EQ(colour.GetARGB32(), XARGB32Colour(0x12, 0xab, 0x00));
    EXPECT_EQ(colour.GetBGRA32().GetARGB(), 0xff12ab00u);
    EXPECT_EQ(colour.GetARGB(), 0xff12ab00u);
    EXPECT_EQ(colour.GetBGRA(), 0x00ab12ffu);
    EXPECT_EQ(XRGB48Colour(10, 20, 31).GetAverage(), 20);
    EXPECT_EQ(static_cast<unsigned short>(XRGB48Colour(65535, 65535, 65534)), 65534);
    EXPECT_EQ(colour.GetIntensity(), 0xabcd);

    ExpectRGB(XRGB48Colour(60000, 5, 2) + XRGB48Colour(10000, 5, 0), 65535, 10, 2);
    ExpectRGB(XRGB48Colour(100, 5, 2) - XRGB48Colour(200, 5, 1), 0, 0, 1);
    ExpectRGB(XRGB48Colour(2, 300, 1) * XRGB48Colour(30000, 300, 7), 60000, 65535, 7);
    ExpectRGB(XRGB48Colour(1000, 7, 9) / XRGB48Colour(3, 7, 2), 333, 1, 4);
    ExpectRGB(XRGB48Colour(1000, 50000, 3) * 1.5, 1500, 65535, 4);
    ExpectRGB(XRGB48Colour(1001, 0, 65535) / 2.0, 500, 0, 32767);

    XRGB48Colour inverted(0, 1000, 65535);
    inverted.Invert();
    ExpectRGB(inverted, 65535, 64535, 0);
    XRGB48Colour offset(5, 1000, 65530);
    offset.Offset(-10);
    ExpectRGB(offset, 0, 990, 65520);
    offset.Offset(100);
    ExpectRGB(offset, 100, 1090, 65535);

    EXPECT_FALSE(XRGB48Colour(65535, 0, 0) < XRGB48Colour(0, 0, 65535));
    EXPECT_FALSE(XRGB48Colour(65535, 0, 0) == XRGB48Colour(0, 0, 65535));
    EXPECT_TRUE(XRGB48Colour(1, 2, 3) == XRGB48Colour(1, 2, 3));
    XRGB48Colour divided(1, 1, 1);
    EXPECT_THROW(divided /= XRGB48Colour(1, 1, 0), XInternalError);
}

TEST(RGBFloat32Colour, PlainFloatArithmeticAndKinds)
{
    const XRGBFloat32Colour colour(0.5f, -2.0f, 3.0f);
    EXPECT_EQ(colour.GetMaxComponent(), 3.0f);
    EXPECT_EQ(colour.GetMinComponent(), -2.0f);
    EXPECT_EQ(colour + XRGBFloat32Colour(1.0f, 1.0f, 1.0f), XRGBFloat32Colour(1.5f, -1.0f, 4.0f));
    EXPECT_EQ(colour * 300.0f, XRGBFloat32Colour(150.0f, -600.0f, 900.0f));

    EXPECT_TRUE(XRGBFloat32Colour().IsBlack());
    EXPECT_TRUE(XRGBFloat32Colour(0.2f, 0.2f, 0.2f).IsGrey());
    EXPECT_TRUE(XRGBFloat32Colour(0.0f, 0.7f, 0.0f).IsGreen());
    EXPECT_TRUE(XRGBFloat32Colour(0.0f, 0.0f, 0.7f).IsPrimary());
    EXPECT_FALSE(XRGBFloat32Colour(0.1f, 0.0f, 0.7f).IsPrimary());
    EXPECT_FALSE(XRGBFloat32Colour().IsPrimary());
}
