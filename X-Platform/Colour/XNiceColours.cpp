#include "XNiceColours.h"

#include <array>
#include <span>

#include "XLock.h"

namespace
{
constexpr XARGB32Colour kContrastingColours[] = {
    {0x80, 0x80, 0xff}, {0x80, 0xff, 0x80}, {0xff, 0x80, 0x80}, {0x80, 0xff, 0xff}, {0xff, 0x80, 0xff},
    {0xff, 0xff, 0x80}, {0x40, 0x40, 0xff}, {0x40, 0xff, 0x40}, {0xff, 0x40, 0x40}, {0x40, 0xff, 0xff},
    {0xff, 0x40, 0xff}, {0xff, 0xff, 0x40}, {0x40, 0x80, 0xff}, {0x40, 0x80, 0x80}, {0xff, 0x80, 0x40},
    {0x40, 0xff, 0x80}, {0x80, 0x40, 0xff}, {0x80, 0xff, 0x40}};

constexpr std::array<XARGB32Colour, 256> MakeSystemColours()
{
    constexpr UInt8 kCubeSteps[] = {0xff, 0xcc, 0x99, 0x66, 0x33, 0x00};
    constexpr UInt8 kRampSteps[] = {0xee, 0xdd, 0xbb, 0xaa, 0x88, 0x77, 0x55, 0x44, 0x22, 0x11};
    std::array<XARGB32Colour, 256> colours{};
    std::size_t i = 0;
    for (UInt8 red : kCubeSteps)
        for (UInt8 green : kCubeSteps)
            for (UInt8 blue : kCubeSteps)
                if (red != 0 || green != 0 || blue != 0)
                    colours[i++] = XARGB32Colour(red, green, blue);
    for (UInt8 level : kRampSteps)
        colours[i++] = XARGB32Colour(level, 0, 0);
    for (UInt8 level : kRampSteps)
        colours[i++] = XARGB32Colour(0, level, 0);
    for (UInt8 level : kRampSteps)
        colours[i++] = XARGB32Colour(0, 0, level);
    for (UInt8 level : kRampSteps)
        colours[i++] = XARGB32Colour(level);
    colours[i] = XARGB32Colour::kBlack;
    return colours;
}

constexpr std::array<XARGB32Colour, 256> kSystemColours = MakeSystemColours();

XIntToColourLUT TableOf(std::span<const XARGB32Colour> aColours)
{
    XIntToColourLUT table(UInt32(aColours.size()));
    {
        XLock lock(table, kLockWrite);
        for (UInt32 i = 0; i < aColours.size(); ++i)
            table.SetValue(i, aColours[i]);
    }
    return table;
}
} // namespace

XIntToColourLUT XNiceColours::GetContrastingLUT()
{
    return TableOf(kContrastingColours);
}

XIntToColourLUT XNiceColours::GetSystemColoursLUT()
{
    return TableOf(kSystemColours);
}

XIntToColourLUT XNiceColours::GetWavelengthLUT()
{
    constexpr UInt32 kSize = 256;
    constexpr UInt32 kStep = 400 / kSize;
    std::array<XARGB32Colour, kSize> colours;
    for (UInt32 i = 0; i < kSize; ++i)
    {
        colours[i] = XARGB32Colour::kBlack;
        colours[i].SetWavelength(380.0 + i * kStep);
    }
    colours[kSize - 1] = XARGB32Colour(255, 255, 255, 255);
    return TableOf(colours);
}
