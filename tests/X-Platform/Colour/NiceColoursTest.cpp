// The ready-made palettes, at their ends, their seams and their middles.

#include <gtest/gtest.h>

#include "XLock.h"
#include "XNiceColours.h"

namespace
{
// Entry i of aTable as alpha, red, green, blue.
XARGB32Colour Entry(const XIntToColourLUT & aTable, UInt32 anIndex)
{
    XLock lock(aTable, kLockRead);
    return aTable.IndexToValue(anIndex);
}
} // namespace

TEST(NiceColours, ContrastingColours)
{
    const XIntToColourLUT table = XNiceColours::GetContrastingLUT();
    EXPECT_EQ(table.GetSize(), 18u);
    EXPECT_EQ(table.GetTrueDepth(), 4u);
    EXPECT_EQ(table.GetLastTrueValue(), 17u);
    EXPECT_EQ(Entry(table, 0), XARGB32Colour(0xff, 0x80, 0x80, 0xff));
    EXPECT_EQ(Entry(table, 5), XARGB32Colour(0xff, 0xff, 0xff, 0x80));
    EXPECT_EQ(Entry(table, 8), XARGB32Colour(0xff, 0xff, 0x40, 0x40));
    EXPECT_EQ(Entry(table, 13), XARGB32Colour(0xff, 0x40, 0x80, 0x80));
    EXPECT_EQ(Entry(table, 17), XARGB32Colour(0xff, 0x80, 0xff, 0x40));
}

TEST(NiceColours, SystemColoursCubeRampsAndBlack)
{
    const XIntToColourLUT table = XNiceColours::GetSystemColoursLUT();
    EXPECT_EQ(table.GetSize(), 256u);
    // The cube, red outermost, each step from ff down to 00, black left out.
    EXPECT_EQ(Entry(table, 0), XARGB32Colour(0xff, 0xff, 0xff));
    EXPECT_EQ(Entry(table, 1), XARGB32Colour(0xff, 0xff, 0xcc));
    EXPECT_EQ(Entry(table, 6), XARGB32Colour(0xff, 0xcc, 0xff));
    EXPECT_EQ(Entry(table, 108), XARGB32Colour(0x66, 0xff, 0xff));
    EXPECT_EQ(Entry(table, 214), XARGB32Colour(0x00, 0x00, 0x33));
    // The ramps of red, green, blue and grey, ee down to 11, then black.
    EXPECT_EQ(Entry(table, 215), XARGB32Colour(0xee, 0x00, 0x00));
    EXPECT_EQ(Entry(table, 224), XARGB32Colour(0x11, 0x00, 0x00));
    EXPECT_EQ(Entry(table, 229), XARGB32Colour(0x00, 0x88, 0x00));
    EXPECT_EQ(Entry(table, 235), XARGB32Colour(0x00, 0x00, 0xee));
    EXPECT_EQ(Entry(table, 245), XARGB32Colour(0xee, 0xee, 0xee));
    EXPECT_EQ(Entry(table, 254), XARGB32Colour(0x11, 0x11, 0x11));
    EXPECT_EQ(Entry(table, 255), XARGB32Colour(0xff, 0x00, 0x00, 0x00));
}

TEST(NiceColours, WavelengthsFrom380ToWhite)
{
    const XIntToColourLUT table = XNiceColours::GetWavelengthLUT();
    EXPECT_EQ(table.GetSize(), 256u);
    EXPECT_EQ(Entry(table, 0), XARGB32Colour(255, 76, 0, 76));   // 380 nm, dimmed to 0.3
    EXPECT_EQ(Entry(table, 60), XARGB32Colour(255, 0, 0, 255));  // 440 nm
    EXPECT_EQ(Entry(table, 130), XARGB32Colour(255, 0, 255, 0)); // 510 nm
    EXPECT_EQ(Entry(table, 254), XARGB32Colour(255, 255, 43, 0)); // 634 nm: green 11 / 65
    EXPECT_EQ(Entry(table, 255), XARGB32Colour(255, 255, 255, 255));
    // Each call builds a table of its own.
    const XIntToColourLUT again = XNiceColours::GetWavelengthLUT();
    EXPECT_NE(again.GetSeed(), table.GetSeed());
    EXPECT_EQ(Entry(again, 130), Entry(table, 130));
}
