// Volume streams that carry a look-up table, built by hand in both byte orders: legacy 8-bit,
// 16-bit and floating-point images, and the older integer level (104 version 0) of the current
// form, read by either creator. The table becomes the renderer's settings and the volume
// remembers that it had one. Tables that cannot be used are refused with XException.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "XFPVolume.h"
#include "XFloatToColourLUT.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XIntToIntLUT.h"
#include "XLUTTestSupport.h"
#include "XMaskImageRenderer.h"
#include "XMaskVolume.h"
#include "XStreamBytes.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
const XByteOrder kOrders[] = {kLittleEndian, kBigEndian};

// 256 entries from black to (0, 200, 0), meant for values up to 200: its bright end is entry
// 200, green 200 * 200 / 255 = 156.
XIntToColourLUT GreenRamp()
{
    XIntToColourLUT table(256);
    table.MakeLinearLUT(0, 255, XARGB32Colour::kBlack, XARGB32Colour(0, 200, 0));
    table.SetLastTrueValue(200);
    return table;
}

template <class T>
std::unique_ptr<T> ReadBack(std::vector<UInt8> aBytes, XByteOrder anOrder, bool anOldFormat = false)
{
    XTestMemoryStream stream(std::move(aBytes), anOrder);
    if (anOldFormat)
        stream.SetFormatVersion(1, 0);
    return std::unique_ptr<T>(stream.ReadObjectAs<T>());
}

// The current form of a 3 by 1 integer volume whose level 104 is of version 0, up to the
// table that this level carries.
XStreamBytes & OldIntegerLevel(XStreamBytes & aBytes, UInt32 anObjectWord, const std::vector<UInt8> & aVoxels)
{
    aBytes.Words({anObjectWord, 520, 3, 1, 1, 0, 0, 0}).Doubles({1.0, 1.0, 1.0}).Words({114, 65638, 3, 0});
    return aBytes.Handle(aVoxels).Words({103, 104});
}

// A legacy 8-bit image of 3 by 1 voxels 1, 2, 3, up to its table.
XStreamBytes & LegacyGrey8(XStreamBytes & aBytes)
{
    return aBytes.Words({4, 0, 0, 1, 3}).Byte(1).Handle({1, 2, 3});
}

std::vector<UInt8> Joined(std::vector<UInt8> aFirst, const std::vector<UInt8> & aSecond)
{
    aFirst.insert(aFirst.end(), aSecond.begin(), aSecond.end());
    return aFirst;
}
} // namespace

TEST(LegacyTableStream, LegacyGreyImagesTakeTheirRendererFromTheTable)
{
    for (XByteOrder order : kOrders)
        for (bool withWord : {false, true})
        {
            // The voxels, the level word when the stream holds one, then the table.
            XStreamBytes grey8(order);
            LegacyGrey8(grey8);
            if (withWord)
                grey8.Words({65640});
            const auto volume = ReadBack<XGrey8Volume>(grey8.Bytes(XStoredBytes(GreenRamp(), order)).Get(), order);
            EXPECT_EQ(XGetVoxels(*volume), (std::vector<UInt8>{1, 2, 3}));
            EXPECT_TRUE(volume->HadLegacyLUT());
            EXPECT_EQ(volume->GetLegacyLUT(), nullptr);
            const XImageRenderer & renderer = volume->GetPlaneRenderer();
            EXPECT_EQ(typeid(renderer), typeid(XGrey8ImageRenderer));
            EXPECT_EQ(renderer.GetWhiteColour(), XARGB32Colour(0, 156, 0));
            EXPECT_EQ(renderer.GetBlackColour(), XARGB32Colour::kBlack);
            EXPECT_EQ(renderer.GetWhite(), 200.0);
        }

    // 16 bits, voxels in the stream's order; a palette of four entries meant for 12-bit data
    // gives its last entry as the white colour and 4095 as the white point.
    XIntToColourLUT palette = XMakeTable<XIntToColourLUT>(
        {XARGB32Colour::kBlack, XARGB32Colour(50), XARGB32Colour(100), XARGB32Colour::kRed});
    palette.SetTrueDepth(12);
    for (XByteOrder order : kOrders)
    {
        XTestMemoryStream samples(order);
        samples.Write16(700);
        samples.Write16(4095);
        XStreamBytes grey16(order);
        grey16.Words({3, 0, 0, 1, 2}).Byte(1).Handle(samples.GetBytes()).Bytes(XStoredBytes(palette, order));
        const auto volume = ReadBack<XGrey16Volume>(grey16.Get(), order);
        EXPECT_EQ(XGetVoxels(*volume), (std::vector<UInt16>{700, 4095}));
        EXPECT_TRUE(volume->HadLegacyLUT());
        EXPECT_EQ(volume->GetPlaneRenderer().GetWhiteColour(), XARGB32Colour::kRed);
        EXPECT_EQ(volume->GetPlaneRenderer().GetWhite(), 4095.0);
    }
}

TEST(LegacyTableStream, OlderIntegerLevelCarriesATableForEitherCreator)
{
    for (XByteOrder order : kOrders)
        for (bool oldFormat : {false, true})
        {
            XStreamBytes grey8(order);
            OldIntegerLevel(grey8, 65641, {1, 2, 3}).Bytes(XStoredBytes(GreenRamp(), order)).Words({65641});
            const auto volume = ReadBack<XGrey8Volume>(grey8.Get(), order, oldFormat);
            EXPECT_EQ(XGetVoxels(*volume), (std::vector<UInt8>{1, 2, 3}));
            EXPECT_TRUE(volume->HadLegacyLUT());
            EXPECT_EQ(volume->GetPlaneRenderer().GetWhiteColour(), XARGB32Colour(0, 156, 0));

            // A mask keeps its own renderer, which takes the colour of the table's bright end.
            XStreamBytes mask(order);
            OldIntegerLevel(mask, 115, {0, 255, 0}).Bytes(XStoredBytes(GreenRamp(), order)).Words({65641, 115});
            const auto maskVolume = ReadBack<XMaskVolume>(mask.Get(), order, oldFormat);
            EXPECT_EQ(typeid(maskVolume->GetPlaneRenderer()), typeid(XMaskImageRenderer));
            EXPECT_EQ(maskVolume->GetPlaneRenderer().GetWhiteColour(), XARGB32Colour(0, 156, 0));
            EXPECT_TRUE(maskVolume->HadLegacyLUT());

            // Without a table (a null object) nothing changes.
            XStreamBytes plain(order);
            OldIntegerLevel(plain, 65641, {1, 2, 3}).Words({0, 65641});
            const auto plainVolume = ReadBack<XGrey8Volume>(plain.Get(), order, oldFormat);
            EXPECT_FALSE(plainVolume->HadLegacyLUT());
            EXPECT_TRUE(plainVolume->GetPlaneRenderer().IsNormal());
        }

    // A volume without a renderer keeps the table, and so do its copies.
    XStreamBytes grey32;
    OldIntegerLevel(grey32, 0, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0});
    XTestMemoryStream stream(grey32.Bytes(XStoredBytes(GreenRamp())).Get(), kLittleEndian);
    stream.Seek(4);
    const XGrey32Volume wide(stream);
    ASSERT_NE(wide.GetLegacyLUT(), nullptr);
    EXPECT_EQ(XGetEntries(*XGrey32Volume(wide).GetLegacyLUT()), XGetEntries(GreenRamp()));
    EXPECT_FALSE(wide.HadLegacyLUT());
}

TEST(LegacyTableStream, LegacyFloatImageTakesItsRangeFromTheTable)
{
    XFloatToColourLUT range(-1.0, 3.0);
    for (XByteOrder order : kOrders)
    {
        // The voxels are as they lay in memory.
        std::vector<UInt8> voxel(sizeof(float));
        const float value = 2.5f;
        std::memcpy(voxel.data(), &value, sizeof value);
        XStreamBytes real(order);
        real.Words({2, 0, 0, 1, 1}).Byte(1).Handle(voxel).Words({65643});
        const auto volume = ReadBack<XFPVolume>(real.Bytes(XStoredBytes(range, order)).Get(), order);
        EXPECT_EQ(XGetVoxels(*volume), std::vector<float>{2.5f});
        EXPECT_TRUE(volume->HadLegacyLUT());
        const XImageRenderer & renderer = volume->GetPlaneRenderer();
        EXPECT_EQ(renderer.GetBlack(), -1.0);
        EXPECT_EQ(renderer.GetWhite(), 3.0);
        EXPECT_EQ(renderer.GetWhiteColour(), XARGB32Colour::kWhite);
        EXPECT_EQ(renderer.GetBlackColour(), XARGB32Colour(0));
    }
    // A table of colours alone is the wrong class there.
    XStreamBytes wrong;
    wrong.Words({2, 0, 0, 1, 1}).Byte(1).Handle({0, 0, 0, 0}).Bytes(XStoredBytes(GreenRamp()));
    EXPECT_EQ(ErrorOf([&] { ReadBack<XFPVolume>(wrong.Get(), kLittleEndian); }), UInt32(kErrWrongClass));
}

TEST(LegacyTableStream, TablesThatCannotServeAreRefused)
{
    auto legacy = [] {
        XStreamBytes bytes;
        LegacyGrey8(bytes);
        return bytes.Get();
    };
    auto errorReading = [](std::vector<UInt8> aBytes) {
        UInt32 error = 0;
        EXPECT_EQ(AssertionOf([&] { error = ErrorOf([&] { ReadBack<XStorable>(aBytes, kLittleEndian); }); }), "");
        return error;
    };
    // Another kind of table, an empty one, and one cut short.
    EXPECT_EQ(errorReading(Joined(legacy(), XStoredBytes(XIntToIntLUT(4)))),
              UInt32(kErrWrongClass));
    EXPECT_EQ(errorReading(Joined(legacy(), XStoredBytes(XIntToColourLUT()))),
              UInt32(kErrBadArgument));
    std::vector<UInt8> cut = Joined(legacy(), XStoredBytes(GreenRamp()));
    cut.resize(cut.size() - 6);
    EXPECT_NE(errorReading(cut), 0u);
    // Entries that do not fill the count.
    EXPECT_EQ(errorReading(Joined(legacy(), XStreamBytes().Words({65559, 65559, 2}).Handle({1, 2, 3, 4}).Words({1, 1}).Get())),
              UInt32(kErrDamagedStream));
}

TEST(LegacyTableStream, IntegerVolumesHandTheirRendererATable)
{
    XGrey8Volume grey8(2, 1, 1);
    grey8.ApplyLUT(GreenRamp());
    EXPECT_EQ(grey8.GetPlaneRenderer().GetWhite(), 200.0);
    EXPECT_FALSE(grey8.HadLegacyLUT());
    const XIntToColourLUT back = grey8.GetLUT();
    EXPECT_EQ(back.GetSize(), 256u);
    // Through the ramp shader: slope trunc(156 / 255 * 65536) = 40092, (40092 * 255) >> 16 = 155.
    EXPECT_EQ(XGetEntries(back)[255], XARGB32Colour(0, 155, 0));
    EXPECT_EQ(XGrey16Volume(1, 1, 1).GetLUT().GetSize(), 65535u);
    EXPECT_EQ(AssertionOf([] { XGrey32Volume(1, 1, 1).GetLUT(); }), "itsPlaneRenderer");
}
