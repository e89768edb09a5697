// The resample tool on volumes: each axis enlarged and shrunk, Grey8, masks and both colour
// orders (with the Z pass's low byte), the order of the passes, boxes inside larger volumes,
// lines resampled alone against the whole, the required loss of a level and wrap-round, the
// copy and refusal shortcuts, the reuse of weights, and two threads.

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XIntelCPUInfo.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XTestSupport.h"
#include "XTriangleFilter.h"
#include "XVolumeResampleTool.h"
#include "XVolumeTestSupport.h"

namespace
{
// The voxels of aSource resampled into a new volume of class V over aDestBounds.
template <class V>
std::vector<typename V::XVoxel> Resampled(const V & aSource, const X3DRect & aDestBounds,
                                          XFilterMode aMode = kFilterTriangle)
{
    XVolumeResampleTool tool;
    tool.SetFilter(aMode);
    V dest(aDestBounds);
    tool.ApplyTool(aSource, dest, aSource.GetBounds(), aDestBounds);
    return XGetVoxels(dest);
}

std::vector<UInt8> Grey(const X3DRect & aBounds, const std::vector<UInt8> & aVoxels, const X3DRect & aDestBounds,
                        XFilterMode aMode = kFilterTriangle)
{
    return Resampled(XMakeVolume<XGrey8Volume>(aBounds, aVoxels), aDestBounds, aMode);
}

// A volume of class V whose voxels follow a fixed pseudo-random sequence.
template <class V>
V Noise(const X3DRect & aBounds)
{
    V volume(aBounds);
    std::vector<typename V::XVoxel> voxels;
    UInt32 state = 12345;
    for (UInt64 i = 0; i < aBounds.GetVolume(); ++i)
    {
        state = state * 1103515245u + 12345u;
        if constexpr (sizeof(typename V::XVoxel) == 1)
            voxels.push_back(UInt8(state >> 24));
        else
            voxels.push_back(V::XVoxel::FromARGB(state));
    }
    XSetVoxels(volume, voxels);
    return volume;
}

// Each line of aVolume along an axis, cut out and resampled alone, equals that line of the
// whole resampled into aDestBounds (which changes that axis alone).
template <class V>
void ExpectLinesAgreeWithTheWhole(const V & aVolume, const X3DRect & aDestBounds)
{
    const X3DRect & b = aVolume.GetBounds();
    const auto whole = XMakeVolume<V>(aDestBounds, Resampled(aVolume, aDestBounds));
    const bool alongX = aDestBounds.GetWidth() != b.GetWidth();
    const bool alongY = aDestBounds.GetHeight() != b.GetHeight();
    const bool alongZ = !alongX && !alongY;
    for (SInt32 z = 0; z < SInt32(alongZ ? 1 : b.GetDepth()); ++z)
        for (SInt32 y = 0; y < SInt32(alongY ? 1 : b.GetHeight()); ++y)
            for (SInt32 x = 0; x < SInt32(alongX ? 1 : b.GetWidth()); ++x)
            {
                // The line through (x, y, z) along the resampled axis, in source and result.
                X3DRect line(x, y, z, x + 1, y + 1, z + 1);
                X3DRect result = line;
                if (alongX)
                {
                    line.SetWidth(b.GetWidth());
                    result.SetWidth(aDestBounds.GetWidth());
                }
                else if (alongY)
                {
                    line.SetHeight(b.GetHeight());
                    result.SetHeight(aDestBounds.GetHeight());
                }
                else
                {
                    line.SetDepth(b.GetDepth());
                    result.SetDepth(aDestBounds.GetDepth());
                }
                const std::unique_ptr<XVolume> alone(aVolume.Clone(line));
                alone->OffsetBounds(-line.GetLeft(), -line.GetTop(), -line.GetFront());
                const std::unique_ptr<XVolume> expected(whole.Clone(result));
                expected->OffsetBounds(-result.GetLeft(), -result.GetTop(), -result.GetFront());
                const X3DRect lineDest(result.GetWidth(), result.GetHeight(), result.GetDepth());
                EXPECT_EQ(Resampled(dynamic_cast<const V &>(*alone), lineDest),
                          XGetVoxels(dynamic_cast<const V &>(*expected)))
                    << "line at " << x << ", " << y << ", " << z;
            }
}

// A triangle that counts its evaluations.
class XCountingFilter : public XTriangleFilter
{
public:
    explicit XCountingFilter(UInt32 & aCount) : itsCount(aCount) {}
    double CalcFilterValue(double x) const override
    {
        ++itsCount;
        return XTriangleFilter::CalcFilterValue(x);
    }

private:
    UInt32 & itsCount;
};

// The single passes opened up.
class XOpenResampleTool : public XVolumeResampleTool
{
public:
    using XVolumeResampleTool::Grey8XResample;
    using XVolumeResampleTool::Grey8ZResample;
};
} // namespace

TEST(ResampleTool, EachAxisOfGrey8)
{
    // Enlarging with the bell, 2 to 4 (weights worked out in ResampleFilter): 100, 200 give
    // (100 * 49151 + 200 * 16382) >> 16 = 124, then 131, 149, 171; 0, 255 give 63, 79, 127,
    // 183; and a flat 255 comes out at 254.
    EXPECT_EQ(Grey(X3DRect(2, 3, 1), {100, 200, 0, 255, 255, 255}, X3DRect(4, 3, 1), kFilterBell),
              (std::vector<UInt8>{124, 131, 149, 171, 63, 79, 127, 183, 254, 254, 254, 254}));
    EXPECT_EQ(Grey(X3DRect(3, 2, 1), {100, 0, 255, 200, 255, 255}, X3DRect(3, 4, 1), kFilterBell),
              (std::vector<UInt8>{124, 63, 254, 131, 79, 254, 149, 127, 254, 171, 183, 254}));
    EXPECT_EQ(Grey(X3DRect(1, 3, 2), {100, 0, 255, 200, 255, 255}, X3DRect(1, 3, 4), kFilterBell),
              (std::vector<UInt8>{124, 63, 254, 131, 79, 254, 149, 127, 254, 171, 183, 254}));
    // Shrinking with the triangle, 5 to 2: (10 * 16383 + 20 * 32767 + 30 * 16383) >> 16 = 19,
    // and 39.
    const std::vector<UInt8> ramp{10, 20, 30, 40, 50};
    EXPECT_EQ(Grey(X3DRect(5, 1, 1), ramp, X3DRect(2, 1, 1)), (std::vector<UInt8>{19, 39}));
    EXPECT_EQ(Grey(X3DRect(1, 5, 1), ramp, X3DRect(1, 2, 1)), (std::vector<UInt8>{19, 39}));
    EXPECT_EQ(Grey(X3DRect(1, 1, 5), ramp, X3DRect(1, 1, 2)), (std::vector<UInt8>{19, 39}));
    // 3 to 4 with the triangle: 10, (10 + 20) * 32767 >> 16 = 14, 20 less a level, 29.
    EXPECT_EQ(Grey(X3DRect(3, 1, 1), {10, 20, 40}, X3DRect(4, 1, 1)), (std::vector<UInt8>{9, 14, 19, 29}));
    // A mask is a Grey8 volume to the tool.
    EXPECT_EQ(Resampled(XMakeVolume<XMaskVolume>(X3DRect(2, 1, 1), {0, 255}), X3DRect(4, 1, 1), kFilterBell),
              (std::vector<UInt8>{63, 79, 127, 183}));
}

TEST(ResampleTool, ColourChannelsAndTheLowByteOfTheZPass)
{
    // Channels of 100 200 (alpha), 10 50, 20 60 and 30 70, bell 2 to 4, each on its own.
    const UInt8 alpha[] = {124, 131, 149, 171}, red[] = {19, 22, 29, 38}, green[] = {29, 32, 39, 48},
                blue[] = {39, 42, 49, 58};
    const auto argb = [](const X3DRect & aBounds) {
        return XMakeVolume<XARGB32Volume>(aBounds, {XARGB32Colour(100, 10, 20, 30), XARGB32Colour(200, 50, 60, 70)});
    };
    const auto bgra = [](const X3DRect & aBounds) {
        return XMakeVolume<XBGRA32Volume>(aBounds, {XBGRA32Colour(100, 10, 20, 30), XBGRA32Colour(200, 50, 60, 70)});
    };
    for (int i = 0; i < 4; ++i)
    {
        // The X and Y passes weigh all four channels.
        EXPECT_EQ(Resampled(argb(X3DRect(2, 1, 1)), X3DRect(4, 1, 1), kFilterBell)[i],
                  XARGB32Colour(alpha[i], red[i], green[i], blue[i]));
        EXPECT_EQ(Resampled(bgra(X3DRect(1, 2, 1)), X3DRect(1, 4, 1), kFilterBell)[i],
                  XBGRA32Colour(alpha[i], red[i], green[i], blue[i]));
        // The Z pass sets the word's low byte, the first in memory, to 255: alpha in ARGB32,
        // blue in BGRA32, whose alpha it weighs.
        EXPECT_EQ(Resampled(argb(X3DRect(1, 1, 2)), X3DRect(1, 1, 4), kFilterBell)[i],
                  XARGB32Colour(255, red[i], green[i], blue[i]));
        EXPECT_EQ(Resampled(bgra(X3DRect(1, 1, 2)), X3DRect(1, 1, 4), kFilterBell)[i],
                  XBGRA32Colour(alpha[i], red[i], green[i], 255));
    }
}

TEST(ResampleTool, SmallestSourceExtentGoesFirst)
{
    // 3 x 2 to 2 x 4: y (2) is resampled before x (3). Taking x first would give 63, not 62,
    // in the last voxel, since each pass drops its fraction.
    EXPECT_EQ(Grey(X3DRect(3, 2, 1), {192, 255, 0, 255, 0, 192}, X3DRect(2, 4, 1)),
              (std::vector<UInt8>{190, 253, 206, 190, 222, 126, 238, 62}));
    // Mode 0 chooses at each axis: the bell enlarges y from 3 to 4, then the smooth step
    // shrinks x from 9 to 2 (the bell on both would give 107, 182, ...).
    const std::vector<UInt8> rows{0,   32,  64,  96,  128, 160, 192, 224, 255, 255, 0,   255, 0,  255,
                                  0,   255, 0,   255, 10,  10,  10,  10,  200, 200, 200, 200, 200};
    EXPECT_EQ(Grey(X3DRect(9, 3, 1), rows, X3DRect(2, 4, 1), kFilterAutomatic),
              (std::vector<UInt8>{83, 173, 99, 159, 112, 146, 86, 161}));
    // Three axes at once, one voxel to a 2 x 2 x 2 cube: the infinite scale leaves each pass a
    // weight sum of 65535 / 65536, one level lost per pass.
    EXPECT_EQ(Grey(X3DRect(1, 1, 1), {200}, X3DRect(2, 2, 2)), std::vector<UInt8>(8, 197));
}

TEST(ResampleTool, LinesResampledAloneAgreeWithTheWhole)
{
    // Strips of 32 rows (8 for colour) in the X pass and blocks of 32 bytes in the others,
    // each with a remainder.
    ExpectLinesAgreeWithTheWhole(Noise<XGrey8Volume>(X3DRect(37, 45, 2)), X3DRect(20, 45, 2));
    ExpectLinesAgreeWithTheWhole(Noise<XGrey8Volume>(X3DRect(70, 9, 2)), X3DRect(70, 13, 2));
    ExpectLinesAgreeWithTheWhole(Noise<XGrey8Volume>(X3DRect(35, 2, 7)), X3DRect(35, 2, 3));
    ExpectLinesAgreeWithTheWhole(Noise<XARGB32Volume>(X3DRect(11, 19, 2)), X3DRect(17, 19, 2));
    ExpectLinesAgreeWithTheWhole(Noise<XBGRA32Volume>(X3DRect(9, 5, 3)), X3DRect(9, 5, 5));
}

TEST(ResampleTool, BaselineAndAVX2KernelsAgree)
{
    // Each axis and kind, the Lanczos filter for negative weights and many taps; remainders of
    // blocks and strips included. On a machine without AVX2 both runs take the baseline.
    struct XCase
    {
        X3DRect itsSource;
        X3DRect itsDest;
    };
    const XCase cases[] = {{X3DRect(37, 45, 3), X3DRect(20, 45, 3)},
                           {X3DRect(70, 9, 2), X3DRect(70, 13, 2)},
                           {X3DRect(35, 6, 7), X3DRect(35, 6, 3)},
                           {X3DRect(13, 11, 9), X3DRect(29, 5, 4)}};
    for (const XCase & aCase : cases)
        for (const XFilterMode mode : {kFilterTriangle, kFilterLanczos3})
        {
            const auto grey = Noise<XGrey8Volume>(aCase.itsSource);
            const auto colour = Noise<XBGRA32Volume>(aCase.itsSource);
            const auto wideGrey = Resampled(grey, aCase.itsDest, mode);
            const auto wideColour = Resampled(colour, aCase.itsDest, mode);
            XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX2, false);
            const auto baselineGrey = Resampled(grey, aCase.itsDest, mode);
            const auto baselineColour = Resampled(colour, aCase.itsDest, mode);
            XIntelCPUInfo::ResetFeatures();
            EXPECT_EQ(baselineGrey, wideGrey);
            EXPECT_EQ(baselineColour, wideColour);
        }
}

TEST(ResampleTool, BoxesInsideLargerVolumes)
{
    // The source box is the middle of a 4 x 3 volume at (10, 20, 30); the destination box a
    // row inside a volume at (-5, -5, 0) of 7s, the rest of which stays.
    XGrey8Volume source(X3DRect(10, 20, 30, 14, 23, 31));
    source.Fill(9);
    {
        XLock lock(source, kLockReadWrite);
        source.SetVoxel(11, 21, 30, 100);
        source.SetVoxel(12, 21, 30, 200);
    }
    XGrey8Volume dest(X3DRect(-5, -5, 0, 1, -3, 1));
    dest.Fill(7);
    XVolumeResampleTool tool;
    tool.SetFilter(kFilterBell);
    tool.ApplyTool(source, dest, X3DRect(11, 21, 30, 13, 22, 31), X3DRect(-4, -4, 0, 0, -3, 1));
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{7, 7, 7, 7, 7, 7, 7, 124, 131, 149, 171, 7}));
}

TEST(ResampleTool, LossOfALevelAndWrapRound)
{
    // A flat 255: every weight sum stays below 65536.
    EXPECT_EQ(Grey(X3DRect(4, 1, 1), std::vector<UInt8>(4, 255), X3DRect(7, 1, 1)), std::vector<UInt8>(7, 254));
    // A step enlarged by Lanczos: the undershoot before it wraps to 233 and 234, the overshoot
    // after it to 20 and 21 (276 and 277 less 256).
    EXPECT_EQ(Grey(X3DRect(6, 1, 1), {0, 0, 0, 255, 255, 255}, X3DRect(11, 1, 1), kFilterLanczos3),
              (std::vector<UInt8>{0, 5, 4, 233, 234, 59, 195, 20, 21, 250, 249}));
}

TEST(ResampleTool, CopiesRefusalsAndBrokenPreconditions)
{
    XVolumeResampleTool tool;
    tool.SetFilter(kFilterTriangle);
    // Boxes of one size: a plain copy, for any pair of types.
    const auto wide = XMakeVolume<XGrey16Volume>(X3DRect(2, 1, 1), {0x1234, 0xABCD});
    XGrey8Volume narrow(X3DRect(5, 0, 0, 7, 1, 1));
    tool.ApplyTool(wide, narrow, wide.GetBounds(), narrow.GetBounds());
    EXPECT_EQ(XGetVoxels(narrow), (std::vector<UInt8>{0x12, 0xAB}));
    // An empty box: nothing at all, not even a refusal.
    XGrey16Volume wider(X3DRect(3, 1, 1));
    tool.ApplyTool(wide, wider, wide.GetBounds(), X3DRect(0, 0, 0, 3, 0, 1));
    tool.ApplyTool(wide, wider, X3DRect(), wider.GetBounds());
    EXPECT_EQ(XGetVoxels(wider), (std::vector<UInt16>{0, 0, 0}));
    // Mixed pairs are refused, also of types that the tool takes.
    XARGB32Volume colour(X3DRect(3, 1, 1));
    const auto grey = XMakeVolume<XGrey8Volume>(X3DRect(2, 1, 1), {1, 2});
    EXPECT_EQ(ErrorOf([&] { tool.ApplyTool(grey, colour, grey.GetBounds(), colour.GetBounds()); }), 2500u);

    // Boxes outside their volumes, and single passes given boxes that differ elsewhere.
    XGrey8Volume three(X3DRect(3, 1, 1));
    EXPECT_EQ(AssertionOf([&] { tool.ApplyTool(grey, three, X3DRect(1, 0, 0, 3, 1, 1), three.GetBounds()); }),
              "srcVolume.GetBounds().Contains( srcRect )");
    EXPECT_EQ(AssertionOf([&] { tool.ApplyTool(grey, three, grey.GetBounds(), X3DRect(4, 1, 1)); }),
              "destVolume.GetBounds().Contains( destRect )");
    XOpenResampleTool open;
    open.SetFilter(kFilterTriangle);
    XGrey8Volume tall(X3DRect(2, 3, 1)), square(X3DRect(3, 3, 1));
    EXPECT_EQ(AssertionOf([&] { open.Grey8XResample(grey, tall, grey.GetBounds(), tall.GetBounds()); }),
              "destRect.GetWidth() != srcRect.GetWidth()");
    EXPECT_EQ(AssertionOf([&] { open.Grey8XResample(grey, square, grey.GetBounds(), square.GetBounds()); }),
              "destRect.GetHeight() == srcRect.GetHeight()");
    EXPECT_EQ(AssertionOf([&] { open.Grey8ZResample(grey, three, grey.GetBounds(), three.GetBounds()); }),
              "destRect.GetWidth() == srcRect.GetWidth()");
    EXPECT_EQ(AssertionOf([&] { open.Grey8ZResample(grey, tall, grey.GetBounds(), tall.GetBounds()); }),
              "destRect.GetHeight() == srcRect.GetHeight()");
}

TEST(ResampleTool, EveryVolumeClassIsResampledOrRefused)
{
    // A result, or XException 2500: nothing else, whatever the class.
    const auto outcome = [](auto aVolume) {
        decltype(aVolume) dest(X3DRect(2, 3, 1));
        XVolumeResampleTool tool;
        return ErrorOf([&] { tool.ApplyTool(aVolume, dest, aVolume.GetBounds(), dest.GetBounds()); });
    };
    const X3DRect box(3, 2, 2);
    EXPECT_EQ(outcome(XGrey8Volume(box)), 0u);
    EXPECT_EQ(outcome(XMaskVolume(box)), 0u);
    EXPECT_EQ(outcome(XARGB32Volume(box)), 0u);
    EXPECT_EQ(outcome(XBGRA32Volume(box)), 0u);
    EXPECT_EQ(outcome(XGrey16Volume(box)), 2500u);
    EXPECT_EQ(outcome(XGrey32Volume(box)), 2500u);
    EXPECT_EQ(outcome(XFPVolume(box)), 2500u);
    EXPECT_EQ(outcome(XRGB48Volume(box)), 2500u);
}

TEST(ResampleTool, WeightsAreReusedForImagesOfOneSize)
{
    UInt32 count = 0;
    XVolumeResampleTool tool;
    tool.SetFilter(kFilterCustom, new XCountingFilter(count));
    const auto first = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {10, 20, 40});
    const auto second = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {40, 20, 10});
    XGrey8Volume dest(X3DRect(4, 1, 1));
    tool.ApplyTool(first, dest, first.GetBounds(), dest.GetBounds());
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{9, 14, 19, 29}));
    const UInt32 once = count;
    EXPECT_GT(once, 0u);
    tool.ApplyTool(second, dest, second.GetBounds(), dest.GetBounds());
    EXPECT_EQ(count, once);
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{39, 29, 19, 14}));
    // Another size, or another filter, computes them again.
    XGrey8Volume five(X3DRect(5, 1, 1));
    tool.ApplyTool(second, five, second.GetBounds(), five.GetBounds());
    EXPECT_GT(count, once);
    tool.SetFilter(kFilterBell);
    tool.ApplyTool(first, dest, first.GetBounds(), dest.GetBounds());
    EXPECT_EQ(XGetVoxels(dest)[0], 12); // (10 * 49151 + 20 * 16382) >> 16
}

TEST(ResampleTool, ToolsOnTwoThreadsShareASource)
{
    const auto source = Noise<XGrey8Volume>(X3DRect(64, 48, 6));
    const X3DRect target(40, 60, 5);
    const std::vector<UInt8> expected = Resampled(source, target);
    std::vector<UInt8> results[2];
    std::thread threads[2];
    for (int t = 0; t < 2; ++t)
        threads[t] = std::thread([&, t] {
            for (int repeat = 0; repeat < 5; ++repeat)
                results[t] = Resampled(source, target);
        });
    for (std::thread & thread : threads)
        thread.join();
    EXPECT_EQ(results[0], expected);
    EXPECT_EQ(results[1], expected);
}
