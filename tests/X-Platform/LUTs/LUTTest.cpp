// Look-up tables: sizes and true depths, seeds, the range operations with their clamps and
// exact integer arithmetic, resampling assignment, the nearest-entry search and its cache, the
// monotonicity cache, the standard, channel and wavelength tables, and readers on threads.

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "XARGB32Volume.h"
#include "XFloatToColourLUT.h"
#include "XIntToIntLUT.h"
#include "XLUTTestSupport.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
using XColours = std::vector<XARGB32Colour>;
using XBytes = std::vector<UInt8>;

XARGB32Colour Grey(UInt8 aLevel)
{
    return XARGB32Colour(aLevel);
}

XColours Greys(std::initializer_list<UInt8> aLevels)
{
    XColours colours;
    for (UInt8 level : aLevels)
        colours.push_back(Grey(level));
    return colours;
}
} // namespace

TEST(LUT, SizesAndTrueDepthsOfNewTables)
{
    const XIntToColourLUT empty;
    EXPECT_EQ(empty.GetSize(), 0u);
    EXPECT_EQ(empty.GetLastEntry(), 0xFFFFFFFFu);
    EXPECT_EQ(empty.GetTrueDepth(), 0u);
    EXPECT_EQ(empty.GetLastTrueValue(), 0xFFFFFFFFu);
    EXPECT_EQ(empty.GetDataSize(), 0u);

    const std::pair<UInt32, UInt32> depths[] = {{1, 0}, {2, 1}, {18, 4}, {255, 7}, {256, 8}, {65536, 16}, {65537, 16}};
    for (auto [size, depth] : depths)
    {
        const XIntToColourLUT table(size);
        EXPECT_EQ(table.GetTrueDepth(), depth) << size;
        EXPECT_EQ(table.GetLastTrueValue(), size - 1) << size;
    }
    XIntToColourLUT table(18);
    EXPECT_EQ(table.GetDataSize(), 72u);
    EXPECT_EQ(table.GetStreamUsage(), 72u);
    EXPECT_EQ(XGetEntries(table), XColours(18));
    table.SetTrueDepth(12);
    EXPECT_EQ(table.GetLastTrueValue(), 4095u);
    EXPECT_EQ(table.GetLastValueForDepth(), 4095u);
    table.SetLastTrueValue(100);
    EXPECT_EQ(table.GetLastValueForDepth(), 4095u);
    table.SetTrueDepth(32);
    EXPECT_EQ(table.GetLastTrueValue(), 0xFFFFFFFFu);
    EXPECT_EQ(XIntToIntLUT(300).GetDataSize(), 300u);
}

TEST(LUT, EveryWriteTakesASeedAndCopiesKeepIt)
{
    XIntToColourLUT a(4), b(4);
    EXPECT_NE(a.GetSeed(), b.GetSeed());
    const UInt32 first = a.GetSeed();
    {
        XLock lock(a, kLockReadWrite);
        a.SetValue(0, Grey(7));
        EXPECT_NE(a.GetSeed(), first);
        const UInt32 second = a.GetSeed();
        a.SetValue(0, Grey(7));
        EXPECT_NE(a.GetSeed(), second);
    }
    XIntToColourLUT copy(a);
    EXPECT_EQ(copy.GetSeed(), a.GetSeed());
    b = a;
    EXPECT_EQ(b.GetSeed(), a.GetSeed());
    EXPECT_EQ(XGetEntries(b), XGetEntries(a));
    // Copies share nothing visible: a write to one leaves the other alone.
    XSetEntries(copy, {Grey(9)});
    EXPECT_EQ(XGetEntries(a)[0], Grey(7));
    // Assigning another size resamples and takes a seed of its own.
    XIntToColourLUT other(6);
    const UInt32 before = other.GetSeed();
    other = a;
    EXPECT_NE(other.GetSeed(), a.GetSeed());
    EXPECT_NE(other.GetSeed(), before);
}

TEST(LUT, BlendIsSignedIntegerInterpolationOfEveryByte)
{
    XIntToColourLUT colours(4);
    XSetEntries(colours, {XARGB32Colour(0, 10, 200, 0), Grey(1), Grey(2), XARGB32Colour(255, 20, 0, 255)});
    colours.Blend(0, 3);
    // Division truncates toward zero: 200 - 200 / 3 is 134, not 133.
    EXPECT_EQ(XGetEntries(colours), (XColours{XARGB32Colour(0, 10, 200, 0), XARGB32Colour(85, 13, 134, 85),
                                              XARGB32Colour(170, 16, 67, 170), XARGB32Colour(255, 20, 0, 255)}));
    // Indices clamp to the last entry; a first index above the last does nothing.
    const XColours blended = XGetEntries(colours);
    colours.Blend(5, 0);
    colours.Blend(3, 99);
    EXPECT_EQ(XGetEntries(colours), blended);

    XLUT<UInt8> bytes(4);
    XSetEntries(bytes, {200, 1, 2, 0});
    bytes.Blend(0, 3);
    EXPECT_EQ(XGetEntries(bytes), (XBytes{200, 134, 67, 0}));

    // The byte table of integers blends modulo 256: a falling ramp keeps its end and wraps.
    XIntToIntLUT falling = XMakeTable<XIntToIntLUT>({200, 1, 2, 0});
    falling.Blend(0, 3);
    EXPECT_EQ(XGetEntries(falling), (XBytes{200, 218, 237, 0}));
    XIntToIntLUT rising = XMakeTable<XIntToIntLUT>({10, 1, 2, 40});
    rising.Blend(0, 3);
    EXPECT_EQ(XGetEntries(rising), (XBytes{10, 20, 30, 40}));
}

TEST(LUT, DefaultAndLinearTables)
{
    XLUT<UInt8> bytes(5);
    bytes.MakeDefaultLUT();
    EXPECT_EQ(XGetEntries(bytes), (XBytes{0, 63, 127, 191, 255}));
    XIntToColourLUT colours(3);
    colours.MakeDefaultLUT();
    EXPECT_EQ(XGetEntries(colours), (XColours{XARGB32Colour::kBlack, Grey(127), XARGB32Colour::kWhite}));
    colours.MakeLinearLUT(1, 2, XARGB32Colour(0, 0, 0, 0), XARGB32Colour(0, 0, 0, 9));
    EXPECT_EQ(XGetEntries(colours)[2], XARGB32Colour(0, 0, 0, 9));
    XIntToColourLUT empty;
    empty.MakeDefaultLUT();
    EXPECT_EQ(empty.GetSize(), 0u);
    EXPECT_EQ(AssertionOf([&] { colours.MakeLinearLUT(0, 3, Grey(0), Grey(1)); }), "index < GetSize()");
}

TEST(LUT, ReverseFillAndCopyClampTheirRanges)
{
    XLUT<UInt8> table = XMakeTable<XLUT<UInt8>>({1, 2, 3, 4, 5});
    table.Reverse(1, 10);
    EXPECT_EQ(XGetEntries(table), (XBytes{1, 5, 4, 3, 2}));
    table.Reverse(3, 1);
    table.Fill(3, 99, 9);
    EXPECT_EQ(XGetEntries(table), (XBytes{1, 5, 4, 9, 9}));

    const XLUT<UInt8> source = XMakeTable<XLUT<UInt8>>({10, 20, 30, 40, 50, 60, 70, 80, 90, 100});
    XLUT<UInt8> dest(4);
    dest.CopyDataFrom(source, 0, 9, 0, 3); // shrinking drops entries
    EXPECT_EQ(XGetEntries(dest), (XBytes{10, 40, 70, 100}));
    dest.CopyDataFrom(source, 0, 1, 0, 3); // growing repeats them
    EXPECT_EQ(XGetEntries(dest), (XBytes{10, 10, 10, 20}));
    dest.CopyDataFrom(source, 8, 50, 2, 99);
    EXPECT_EQ(XGetEntries(dest), (XBytes{10, 10, 90, 100}));
    EXPECT_EQ(AssertionOf([&] { dest.CopyDataFrom(source, 0, 9, 1, 1); }), "destFirst < destLast");

    EXPECT_EQ(AssertionOf([&] {
                  XLock lock(dest, kLockReadWrite);
                  dest.SetValue(4, 0);
              }),
              "index < GetSize()");
    // A read lock may share the entries with a copy: writing needs a write lock.
    EXPECT_EQ(AssertionOf([&] {
                  XLock lock(dest, kLockRead);
                  dest.SetValue(0, 0);
              }),
              "table locked for writing");
}

TEST(LUT, AssignmentOfAnotherSizeResamples)
{
    const XLUT<UInt8> source = XMakeTable<XLUT<UInt8>>({0, 10, 20, 30, 40});
    XLUT<UInt8> smaller(3), larger(9), single(1);
    smaller = source;
    EXPECT_EQ(XGetEntries(smaller), (XBytes{0, 20, 40}));
    larger = source;
    EXPECT_EQ(XGetEntries(larger), (XBytes{0, 0, 10, 10, 20, 20, 30, 30, 40}));
    EXPECT_EQ(AssertionOf([&] { single = source; }), "own last > 0");

    // Colour tables resample by their true depths, not their sizes, and fill the rest.
    XIntToColourLUT colours = XMakeTable<XIntToColourLUT>(Greys({1, 2, 3, 4, 5}));
    colours.SetTrueDepth(1);
    XIntToColourLUT own(8);
    own.SetTrueDepth(2);
    own = colours;
    EXPECT_EQ(XGetEntries(own), Greys({1, 1, 1, 2, 2, 2, 2, 2}));
    EXPECT_EQ(own.GetTrueDepth(), 2u);
    EXPECT_EQ(own.GetLastTrueValue(), 3u);
    // Equal sizes take the other's depth.
    XIntToColourLUT same(5);
    same = colours;
    EXPECT_EQ(same.GetTrueDepth(), 1u);
    EXPECT_EQ(XGetEntries(same), XGetEntries(colours));
}

TEST(LUT, ValueToIndexFindsTheFirstNearestEntryAndCachesIt)
{
    XLUT<UInt8> bytes = XMakeTable<XLUT<UInt8>>({10, 50, 52, 40});
    {
        XLock lock(bytes, kLockReadWrite);
        EXPECT_EQ(bytes.ValueToIndex(255), 2u);
        EXPECT_EQ(bytes.ValueToIndex(40), 3u);
        EXPECT_EQ(bytes.ValueToIndex(45), 1u); // 50 and 40 are both 5 away: the first wins
        // A write through the reference leaves the cache: the same value answers from it.
        bytes.IndexToValue(0) = 45;
        EXPECT_EQ(bytes.ValueToIndex(45), 1u);
        bytes.SetValue(3, 0);
        EXPECT_EQ(bytes.ValueToIndex(45), 0u);
    }
    EXPECT_EQ(AssertionOf([&] { bytes.ValueToIndex(7); }), "table locked");
    EXPECT_EQ(XLUT<UInt8>(0).ValueToIndex(7), 0u);

    // Colours: how far the value lies above the entry, so the first entry at least as bright
    // wins, even when a darker one is nearer.
    XIntToColourLUT ramp = XMakeTable<XIntToColourLUT>(Greys({0, 30, 60, 90, 120, 150}));
    XLock lock(ramp, kLockReadWrite);
    EXPECT_EQ(ramp.ValueToIndex(XARGB32Colour(255, 100, 100, 100)), 4u);
    // The cache ignores alpha.
    ramp.IndexToValue(3) = Grey(100);
    EXPECT_EQ(ramp.ValueToIndex(XARGB32Colour(0, 100, 100, 100)), 4u);
    // A sum of 1 above entry 3 divides to a distance of 0 and ends the search there.
    EXPECT_EQ(ramp.ValueToIndex(XARGB32Colour(255, 101, 100, 100)), 3u);
    EXPECT_EQ(ramp.ValueToIndex(XARGB32Colour(255, 200, 0, 255)), 5u);
}

TEST(LUT, MonotonicityByTheBrightestChannelWithItsCache)
{
    XIntToColourLUT falling = XMakeTable<XIntToColourLUT>(Greys({200, 150, 150, 10}));
    EXPECT_TRUE(falling.IsMonotonic(XIntToColourLUT::kEitherDirection));
    {
        // Without a new seed the answer for the direction found (falling) comes from the cache.
        XLock lock(falling, kLockReadWrite);
        falling.IndexToValue(3) = Grey(250);
    }
    EXPECT_TRUE(falling.IsMonotonic(XIntToColourLUT::kDecreasing));
    EXPECT_FALSE(falling.IsMonotonic(XIntToColourLUT::kIncreasing));
    EXPECT_FALSE(falling.IsMonotonic(XIntToColourLUT::kDecreasing));
    XSetEntries(falling, Greys({200, 150, 150, 0}));
    EXPECT_FALSE(falling.IsMonotonic(XIntToColourLUT::kIncreasing));
    EXPECT_TRUE(falling.IsMonotonic(XIntToColourLUT::kDecreasing));

    // The level is the largest channel: red falls here, the level rises.
    const XIntToColourLUT channels = XMakeTable<XIntToColourLUT>(
        {XARGB32Colour(255, 10, 0, 0), XARGB32Colour(255, 0, 20, 0), XARGB32Colour(255, 0, 0, 20)});
    EXPECT_TRUE(channels.IsMonotonic(XIntToColourLUT::kIncreasing));
    EXPECT_FALSE(channels.IsMonotonic(XIntToColourLUT::kDecreasing));
    // Alpha plays no part; one level is monotonic every way, and so is an empty table.
    const XIntToColourLUT flat = XMakeTable<XIntToColourLUT>({XARGB32Colour(0, 5, 5, 5), XARGB32Colour(255, 5, 5, 5)});
    for (UInt32 direction : {0u, 1u, 2u})
    {
        EXPECT_TRUE(flat.IsMonotonic(direction));
        EXPECT_TRUE(XIntToColourLUT().IsMonotonic(direction));
    }
    EXPECT_EQ(AssertionOf([&] { flat.IsMonotonic(3); }), "direction < 3");
    // A copy takes the cached answer along with the seed.
    XIntToColourLUT copy(falling);
    {
        XLock lock(copy, kLockReadWrite);
        copy.IndexToValue(3) = Grey(250);
    }
    EXPECT_TRUE(copy.IsMonotonic(XIntToColourLUT::kDecreasing));
}

TEST(LUT, StandardTables)
{
    const XIntToColourLUT & twelve = XIntToColourLUT::GetStandardLUT(12);
    EXPECT_EQ(&XIntToColourLUT::GetStandardLUT(12), &twelve);
    EXPECT_EQ(twelve.GetSize(), 65536u);
    EXPECT_EQ(twelve.GetTrueDepth(), 12u);
    EXPECT_EQ(twelve.GetLastTrueValue(), 4095u);
    const XColours entries = XGetEntries(twelve);
    EXPECT_EQ(entries[0], XARGB32Colour::kBlack);
    EXPECT_EQ(entries[1], XARGB32Colour::kBlack); // 255 / 4095 truncates to 0
    EXPECT_EQ(entries[2048], Grey(127));
    EXPECT_EQ(entries[4095], XARGB32Colour::kWhite);
    EXPECT_EQ(entries[4096], XARGB32Colour::kWhite);
    EXPECT_EQ(entries[65535], XARGB32Colour::kWhite);

    EXPECT_EQ(&XIntToColourLUT::GetStandardLUT(17), &XIntToColourLUT::GetStandardLUT(8));
    EXPECT_EQ(XGetEntries(XIntToColourLUT::GetStandardLUT(8))[100], Grey(100));
    const XColours one = XGetEntries(XIntToColourLUT::GetStandardLUT(1));
    EXPECT_EQ(one.size(), 256u);
    EXPECT_EQ(XColours(one.begin(), one.begin() + 3),
              (XColours{XARGB32Colour::kBlack, XARGB32Colour::kWhite, XARGB32Colour::kWhite}));
    EXPECT_EQ(AssertionOf([] { XIntToColourLUT::GetStandardLUT(0); }), "bitDepth > 0");

    const XBytes four = XGetEntries(XIntToIntLUT::GetStandardLUT(4));
    EXPECT_EQ(four.size(), 256u);
    EXPECT_EQ(XBytes(four.begin() + 14, four.begin() + 17), (XBytes{238, 255, 0}));
    const XBytes sixteen = XGetEntries(XIntToIntLUT::GetStandardLUT(16));
    EXPECT_EQ(sixteen[32768], 127);
    EXPECT_EQ(sixteen[65535], 255);
    EXPECT_EQ(AssertionOf([] { XIntToIntLUT::GetStandardLUT(0); }), "bitDepth > 0");
    EXPECT_EQ(AssertionOf([] { XIntToIntLUT::GetStandardLUT(17); }), "bitDepth <= 16");

    XIntToColourLUT::DisposeStandardLUTs();
    XIntToIntLUT::DisposeStandardLUTs();
    EXPECT_EQ(XGetEntries(XIntToColourLUT::GetStandardLUT(12))[2048], Grey(127));
}

TEST(LUT, ChannelAndWavelengthTables)
{
    XIntToColourLUT table(256);
    table.MakeChannelLUT(kRedChannel | kBlueChannel);
    XColours entries = XGetEntries(table);
    EXPECT_EQ(entries[0], XARGB32Colour(255, 0, 0, 0));
    EXPECT_EQ(entries[51], XARGB32Colour(255, 51, 0, 51));
    EXPECT_EQ(entries[255], XARGB32Colour(255, 255, 0, 255));

    // Over the true depth only: 12 bits of a 16-bit table.
    XIntToColourLUT deep(65536);
    deep.SetTrueDepth(12);
    deep.MakeChannelLUT(kGreenChannel);
    entries = XGetEntries(deep);
    EXPECT_EQ(entries[1000], XARGB32Colour(255, 0, 62, 0));
    EXPECT_EQ(entries[4095], XARGB32Colour(255, 0, 255, 0));
    EXPECT_EQ(entries[5000], XARGB32Colour());
    XIntToColourLUT single(1);
    EXPECT_EQ(AssertionOf([&] { single.MakeChannelLUT(kRedChannel); }), "GetLastValueForDepth() > 0");

    // 380 nm is (76, 0, 76); the ramp from black reaches it at the last value for the depth.
    table.MakeWavelengthLUT(380.0);
    entries = XGetEntries(table);
    EXPECT_EQ(entries[0], XARGB32Colour::kBlack);
    EXPECT_EQ(entries[128], XARGB32Colour(255, 38, 0, 38));
    EXPECT_EQ(entries[255], XARGB32Colour(255, 76, 0, 76));
    // Clamped ends, and no blend backwards: 500 nm is (0, 255, 127).
    table.Wavelength(500.0, 300, 2);
    entries = XGetEntries(table);
    EXPECT_EQ(entries[2], XARGB32Colour(255, 0, 255, 127));
    EXPECT_EQ(entries[255], XARGB32Colour::kBlack);
    EXPECT_EQ(entries[128], XARGB32Colour(255, 38, 0, 38));
}

TEST(LUT, ImageAndVectorOfColours)
{
    XColours greys;
    for (UInt8 i = 0; i < 8; ++i)
        greys.push_back(Grey(i));
    const XIntToColourLUT table = XMakeTable<XIntToColourLUT>(greys);
    const std::unique_ptr<XARGB32Volume> image(table.GetImageOfLUT(4, 2));
    EXPECT_EQ(image->GetBounds(), X3DRect(4, 2, 1));
    EXPECT_EQ(XGetVoxels(*image), Greys({0, 2, 4, 6, 0, 2, 4, 6}));
    const std::unique_ptr<XARGB32Volume> standard(XIntToColourLUT::GetStandardLUT(16).GetImageOfLUT());
    EXPECT_EQ(standard->GetBounds(), X3DRect(256, 50, 1));
    EXPECT_EQ(XGetVoxels(*standard)[255], Grey(254)); // entry 65280: 65280 * 255 / 65535

    EXPECT_EQ(XIntToColourLUT::GetStandardLUT(16).GetVectorOfColours().size(), 256u);
    EXPECT_EQ(table.GetVectorOfColours(), XVector<XARGB32Colour>(greys));
}

TEST(LUT, RealValuesThroughTheFloatTable)
{
    XFloatToColourLUT unit;
    EXPECT_EQ(unit.GetMin(), 0.0);
    EXPECT_EQ(unit.GetMax(), 1.0);
    XLock lock(unit, kLockRead);
    auto colour = [&](double v) {
        XARGB32Colour out;
        unit.ValueToColour(v, out);
        return out;
    };
    EXPECT_EQ(colour(2.0), XARGB32Colour::kWhite);
    EXPECT_EQ(colour(1.0), XARGB32Colour::kWhite);
    EXPECT_EQ(colour(-1.0), XARGB32Colour::kBlack);
    EXPECT_EQ(colour(std::nan("")), XARGB32Colour::kBlack);
    EXPECT_EQ(colour(0.5), Grey(127));
    EXPECT_EQ(unit.ValueToIndex(2.0), 255u);
    EXPECT_DOUBLE_EQ(unit.IndexToValue(300), 1.0);
    EXPECT_DOUBLE_EQ(unit.IndexToValue(51), 0.2);

    XFloatToColourLUT range(0.0, 2.0);
    XLock rangeLock(range, kLockRead);
    EXPECT_EQ(range.ValueToIndex(1.0), 127u); // 1 * 127.5
    EXPECT_DOUBLE_EQ(range.IndexToValue(2), 4.0 / 255.0);
    EXPECT_DOUBLE_EQ(range.ColourToValue(Grey(128)), 128.0 * 2.0 / 255.0);
    range.SetMin(1.0);
    EXPECT_EQ(range.ValueToIndex(1.5), 127u);
    EXPECT_EQ(range.ValueToIndex(0.0), 0u);
    range.SetMax(3.0);
    EXPECT_DOUBLE_EQ(range.IndexToValue(255), 3.0);
}

TEST(LUT, FloatTableCopiesItsRangeOnlyFromFloatTables)
{
    const XIntToColourLUT plain(XIntToColourLUT::GetStandardLUT(8));
    const XFloatToColourLUT five(5.0, 10.0);
    const XIntToColourLUT & fiveAsPlain = five;
    EXPECT_EQ(XFloatToColourLUT(plain).GetMax(), 1.0);
    EXPECT_EQ(XFloatToColourLUT(fiveAsPlain).GetMin(), 5.0);
    EXPECT_EQ(XFloatToColourLUT(fiveAsPlain).GetMax(), 10.0);
    XFloatToColourLUT assigned(2.0, 3.0);
    assigned = plain; // the range stays, unlike the constructor's
    EXPECT_EQ(assigned.GetMin(), 2.0);
    EXPECT_EQ(assigned.GetMax(), 3.0);
    assigned = fiveAsPlain;
    EXPECT_EQ(assigned.GetMax(), 10.0);
    XLock lock(assigned, kLockRead);
    EXPECT_EQ(assigned.ValueToIndex(7.5), 127u);
    EXPECT_EQ(assigned.GetSeed(), five.GetSeed());
}

TEST(LUT, ReadersOnThreadsSeeTheTableAsItIs)
{
    XIntToColourLUT ramp(XIntToColourLUT::GetStandardLUT(8));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&ramp, t] {
            for (UInt32 i = 0; i < 2000; ++i)
            {
                const UInt8 level = UInt8(i * 7 + t);
                XLock lock(ramp, kLockRead);
                // The first entry at least as bright as a grey of a ramp is that grey.
                EXPECT_EQ(ramp.ValueToIndex(Grey(level)), level);
                EXPECT_EQ(ramp.IsMonotonic(i % 3), i % 3 != XIntToColourLUT::kDecreasing);
            }
        });
    // A writer that stores what is there moves the seed, and so empties both caches.
    for (UInt32 i = 0; i < 200; ++i)
    {
        XLock lock(ramp, kLockReadWrite);
        ramp.SetValue(i % 256, Grey(UInt8(i % 256)));
    }
    for (std::thread & thread : threads)
        thread.join();
}
