// The sample stack generator: its frame, its parts worked out by hand, its determinism, and
// noise of the size it claims around the noise-free values.

#include <gtest/gtest.h>

#include <cmath>

#include "XGrey16Volume.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XSampleRandom.h"
#include "XSampleStack.h"
#include "XVolumeTestSupport.h"

TEST(SampleStack, FrameAndDisplayRange)
{
    const auto volume = XSampleStack().MakeVolume();
    EXPECT_EQ(volume->GetBounds(), X3DRect(256, 256, 32));
    EXPECT_EQ(volume->GetXCalibration(), 0.2);
    EXPECT_EQ(volume->GetYCalibration(), 0.2);
    EXPECT_EQ(volume->GetZCalibration(), 0.5);
    UInt16 lowest = 0;
    UInt16 highest = 0;
    volume->FindMinMax(lowest, highest);
    EXPECT_EQ(volume->GetPlaneRenderer().GetBlack(), lowest);
    EXPECT_EQ(volume->GetPlaneRenderer().GetWhite(), highest);
    // Above the darkest background (180 at the origin) less a few noise deviations; below
    // saturation.
    EXPECT_GT(lowest, 100);
    EXPECT_LT(highest, 10000);
}

TEST(SampleStack, PartsByHand)
{
    EXPECT_EQ(XSampleStack::GetBackground(0, 0, 0), 180.0);
    EXPECT_EQ(XSampleStack::GetBackground(255, 0, 10), 180.0 + 140.0 + 30.0);
    EXPECT_NEAR(XSampleStack::GetBackground(0, 255, 0), 180.0, 1e-9); // sin(pi) is 0

    // Cell 1: centre (64, 72, 15), radius 24 across and 6 deep, level 1200. Half its level on its
    // surface, nothing past 1.6 radii.
    const XSampleStack::XCell & cell = XSampleStack::GetCells().at(0);
    EXPECT_EQ(XSampleStack::GetCellValue(cell, 88, 72, 15), 600.0);
    EXPECT_EQ(XSampleStack::GetCellValue(cell, 64, 72, 21), 600.0);
    EXPECT_NEAR(XSampleStack::GetCellValue(cell, 64, 72, 15), 1200.0, 0.01); // 1200 / (1 + e^-12)
    EXPECT_EQ(XSampleStack::GetCellValue(cell, 64 + 39, 72, 15), 0.0);      // 39 / 24 = 1.625

    // A spot of peak 1000 at (10, 10, 5): exp(-1 / (2 * 1.3^2)) = exp(-0.295858) = 0.743893 one
    // voxel across;
    // exp(-16 / 2) four planes deep, the edge of its reach; nothing beyond.
    const XSampleStack::XSpot spot{10.0, 10.0, 5.0, 1000.0};
    EXPECT_EQ(XSampleStack::GetSpotValue(spot, 10, 10, 5), 1000.0);
    EXPECT_NEAR(XSampleStack::GetSpotValue(spot, 11, 10, 5), 743.893, 0.001);
    EXPECT_NEAR(XSampleStack::GetSpotValue(spot, 10, 10, 9), 0.33546, 1e-5);
    EXPECT_EQ(XSampleStack::GetSpotValue(spot, 10, 10, 10), 0.0);
    EXPECT_EQ(XSampleStack::GetSpotValue(spot, 16, 10, 5), 0.0); // 6 > 4 * 1.3
}

TEST(SampleStack, SpotsAreDrawnFromTheSeed)
{
    const XSampleStack stack;
    const XSampleStack same(XSampleStack::kSeed);
    const XSampleStack other(1);
    ASSERT_EQ(stack.GetSpots().size(), 320u);
    bool allSame = true;
    bool anyOther = false;
    for (std::size_t i = 0; i < stack.GetSpots().size(); ++i)
    {
        const XSampleStack::XSpot & a = stack.GetSpots()[i];
        const XSampleStack::XSpot & b = same.GetSpots()[i];
        allSame = allSame && a.itsX == b.itsX && a.itsY == b.itsY && a.itsZ == b.itsZ && a.itsPeak == b.itsPeak;
        anyOther = anyOther || a.itsX != other.GetSpots()[i].itsX;
        // Inside the margins, so that each spot's reach stays in the stack.
        EXPECT_TRUE(a.itsX >= 6.0 && a.itsX < 250.0 && a.itsY >= 6.0 && a.itsY < 250.0 && a.itsZ >= 3.0 &&
                    a.itsZ < 29.0 && a.itsPeak >= 300.0 && a.itsPeak < 1500.0);
    }
    EXPECT_TRUE(allSame);
    EXPECT_TRUE(anyOther);
    EXPECT_TRUE(*stack.MakeVolume() == *same.MakeVolume());
    EXPECT_FALSE(*stack.MakeVolume() == *other.MakeVolume());
}

TEST(SampleStack, NoiseAroundTheExpectedValues)
{
    // Over two planes, the residuals scaled by their claimed deviation sqrt(64 + value) have mean
    // about 0 and variance about 1 (rounding adds 1/12 to the variance, a little).
    const XSampleStack stack;
    const auto volume = stack.MakeVolume();
    XLock lock(*volume, kLockRead);
    double sum = 0.0;
    double squares = 0.0;
    UInt32 count = 0;
    for (SInt32 z : {9, 20})
        for (SInt32 y = 0; y < 256; ++y)
            for (SInt32 x = 0; x < 256; ++x)
            {
                const double expected = stack.GetExpectedValue(x, y, z);
                const double scaled = (volume->GetVoxel(x, y, z) - expected) / std::sqrt(64.0 + expected);
                sum += scaled;
                squares += scaled * scaled;
                ++count;
            }
    const double mean = sum / count;
    EXPECT_NEAR(mean, 0.0, 0.02);
    EXPECT_NEAR(squares / count - mean * mean, 1.0, 0.03);
}

TEST(SampleStack, CellsStandOutOfTheBackground)
{
    // At each cell's centre, the mean of 5 x 5 voxels less the background is about the level
    // (spots can only add).
    const XSampleStack stack;
    const auto volume = stack.MakeVolume();
    XLock lock(*volume, kLockRead);
    for (const XSampleStack::XCell & cell : XSampleStack::GetCells())
    {
        const SInt32 cx = SInt32(cell.itsX);
        const SInt32 cy = SInt32(cell.itsY);
        const SInt32 cz = SInt32(cell.itsZ);
        double sum = 0.0;
        for (SInt32 y = cy - 2; y <= cy + 2; ++y)
            for (SInt32 x = cx - 2; x <= cx + 2; ++x)
                sum += volume->GetVoxel(x, y, cz) - XSampleStack::GetBackground(x, y, cz);
        EXPECT_GT(sum / 25.0, 0.95 * cell.itsLevel) << cell.itsX;
    }
}

TEST(SampleRandom, KnownSequenceAndUniformRange)
{
    // splitmix64 of seed 0 gives the state words 0xE220A8397B1DCDAF (its published first output)
    // and 0x6E789E6AA1B965F4, ...; xoshiro256** first returns rotl(s1 * 5, 7) * 9 of the second.
    XSampleRandom a(0);
    EXPECT_EQ(a.Next(), 0x99EC5F36CB75F2B4ull);
    XSampleRandom random(42);
    double lowest = 1.0;
    double highest = 0.0;
    for (int i = 0; i < 10000; ++i)
    {
        const double u = random.NextUniform(2.0, 3.0);
        lowest = std::min(lowest, u - 2.0);
        highest = std::max(highest, u - 2.0);
    }
    EXPECT_GE(lowest, 0.0);
    EXPECT_LT(lowest, 0.01);
    EXPECT_LT(highest, 1.0);
    EXPECT_GT(highest, 0.99);
}
