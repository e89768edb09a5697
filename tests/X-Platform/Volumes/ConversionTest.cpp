// CopyIn between every pair of voxel types, with the values of the conversion table worked
// out by hand; the scaled copy's nearest-lower indices; the region rules of the copier; and
// the dispatch that sends a mask destination to the mask conversion first.

#include <gtest/gtest.h>

#include <string>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPImageRenderer.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XInternalError.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeTestSupport.h"

namespace
{
const X3DRect kRow5(0, 0, 0, 5, 1, 1);
const X3DRect kRow1(0, 0, 0, 1, 1, 1);

// Copies aSource whole into a new volume of class D of the same bounds.
template <class D, class S>
std::vector<typename D::XVoxel> Converted(const S & aSource)
{
    D dest(aSource.GetBounds());
    dest.CopyIn(aSource, aSource.GetBounds(), aSource.GetBounds(), nullptr);
    return XGetVoxels(dest);
}

// Grey colours of class C, one per grey level.
template <class C, class T>
std::vector<C> Greys(std::initializer_list<T> aGreys)
{
    std::vector<C> colours;
    for (T grey : aGreys)
        colours.push_back(C(grey));
    return colours;
}
const auto Greys32 = Greys<XARGB32Colour, UInt8>;
const auto Greys32BGRA = Greys<XBGRA32Colour, UInt8>;
const auto Greys48 = Greys<XRGB48Colour, UInt16>;
} // namespace

TEST(Conversion, FromGrey8)
{
    const auto source = XMakeVolume<XGrey8Volume>(kRow5, {0, 1, 127, 128, 255});
    EXPECT_EQ(Converted<XMaskVolume>(source), (std::vector<UInt8>{0, 1, 127, 128, 255}));
    EXPECT_EQ(Converted<XGrey8Volume>(source), (std::vector<UInt8>{0, 1, 127, 128, 255}));
    EXPECT_EQ(Converted<XGrey16Volume>(source), (std::vector<UInt16>{0, 257, 32639, 32896, 65535}));
    EXPECT_EQ(Converted<XARGB32Volume>(source), Greys32({0, 1, 127, 128, 255}));
    EXPECT_EQ(Converted<XBGRA32Volume>(source), Greys32BGRA({0, 1, 127, 128, 255}));
    EXPECT_EQ(Converted<XFPVolume>(source), (std::vector<float>{0.0f, 1.0f, 127.0f, 128.0f, 255.0f}));
    EXPECT_EQ(Converted<XRGB48Volume>(source), Greys48({0, 257, 32639, 32896, 65535}));
    // A mask converts as a Grey8.
    const auto mask = XMakeVolume<XMaskVolume>(kRow5, {0, 1, 127, 128, 255});
    EXPECT_EQ(Converted<XGrey16Volume>(mask), (std::vector<UInt16>{0, 257, 32639, 32896, 65535}));
}

TEST(Conversion, FromGrey16TakesTheHighByteForEightBits)
{
    const auto source = XMakeVolume<XGrey16Volume>(kRow5, {0, 255, 256, 32768, 65535});
    EXPECT_EQ(Converted<XGrey8Volume>(source), (std::vector<UInt8>{0, 0, 1, 128, 255}));
    // Into a mask: the high byte as well, not a threshold.
    EXPECT_EQ(Converted<XMaskVolume>(source), (std::vector<UInt8>{0, 0, 1, 128, 255}));
    EXPECT_EQ(Converted<XGrey16Volume>(source), (std::vector<UInt16>{0, 255, 256, 32768, 65535}));
    EXPECT_EQ(Converted<XARGB32Volume>(source), Greys32({0, 0, 1, 128, 255}));
    EXPECT_EQ(Converted<XBGRA32Volume>(source), Greys32BGRA({0, 0, 1, 128, 255}));
    EXPECT_EQ(Converted<XFPVolume>(source), (std::vector<float>{0.0f, 255.0f, 256.0f, 32768.0f, 65535.0f}));
    EXPECT_EQ(Converted<XRGB48Volume>(source), Greys48({0, 255, 256, 32768, 65535}));
}

TEST(Conversion, FromFloatScalesByTheRenderersAndWrapsIntoColour)
{
    // The default float renderer's input range is 0..1.
    const auto source = XMakeVolume<XFPVolume>(kRow5, {-0.5f, 0.0f, 0.5f, 1.0f, 2.0f});
    // (v - 0) * 255 + 0, clamped to black 0 and white 255, truncated.
    EXPECT_EQ(Converted<XGrey8Volume>(source), (std::vector<UInt8>{0, 0, 127, 255, 255}));
    EXPECT_EQ(Converted<XMaskVolume>(source), (std::vector<UInt8>{0, 0, 127, 255, 255}));
    EXPECT_EQ(Converted<XGrey16Volume>(source), (std::vector<UInt16>{0, 0, 32767, 65535, 65535}));
    // trunc(v * 255) in 8 bits, no clamp: -127 is 129 and 510 is 254.
    EXPECT_EQ(Converted<XARGB32Volume>(source), Greys32({129, 0, 127, 255, 254}));
    EXPECT_EQ(Converted<XBGRA32Volume>(source), Greys32BGRA({129, 0, 127, 255, 254}));
    // trunc(v * 65535) in 16 bits: -32767 is 32769 and 131070 is 65534.
    EXPECT_EQ(Converted<XRGB48Volume>(source), Greys48({32769, 0, 32767, 65535, 65534}));
    EXPECT_EQ(Converted<XFPVolume>(source), (std::vector<float>{-0.5f, 0.0f, 0.5f, 1.0f, 2.0f}));

    // The destination's black and white points: 0.5 of 0..1 onto 100..200 gives 150.
    XFPVolume half(kRow1);
    XSetVoxels(half, {0.5f});
    XGrey8Volume dest(kRow1);
    dest.GetPlaneRenderer().SetBlack(100.0);
    dest.GetPlaneRenderer().SetWhite(200.0);
    dest.CopyIn(half, kRow1, kRow1, nullptr);
    EXPECT_EQ(XGetVoxels(dest), std::vector<UInt8>{150});
}

TEST(Conversion, FromARGB32AndBGRA32)
{
    const auto source = XMakeVolume<XARGB32Volume>(kRow1, {XARGB32Colour(10, 30, 60, 91)});
    // The average (30 + 60 + 91) / 3 = 60; alpha reaches no grey type.
    EXPECT_EQ(Converted<XGrey8Volume>(source), std::vector<UInt8>{60});
    EXPECT_EQ(Converted<XMaskVolume>(source), std::vector<UInt8>{60});
    EXPECT_EQ(Converted<XGrey16Volume>(source), std::vector<UInt16>{15420});
    EXPECT_FLOAT_EQ(Converted<XFPVolume>(source)[0], 0.23529412f);
    EXPECT_EQ(Converted<XRGB48Volume>(source), (std::vector<XRGB48Colour>{XRGB48Colour(7710, 15420, 23387)}));
    // The bytes in the other order, alpha carried along.
    const auto bgra = Converted<XBGRA32Volume>(source);
    EXPECT_EQ(bgra, std::vector<XBGRA32Colour>{XBGRA32Colour(10, 30, 60, 91)});
    const auto back = XMakeVolume<XBGRA32Volume>(kRow1, bgra);
    EXPECT_EQ(Converted<XARGB32Volume>(back), std::vector<XARGB32Colour>{XARGB32Colour(10, 30, 60, 91)});
    EXPECT_EQ(Converted<XGrey16Volume>(back), std::vector<UInt16>{15420});
    // White into RGB48 and back.
    const auto white = XMakeVolume<XARGB32Volume>(kRow1, {XARGB32Colour::kWhite});
    const auto white48 = XMakeVolume<XRGB48Volume>(kRow1, Converted<XRGB48Volume>(white));
    EXPECT_EQ(XGetVoxels(white48), Greys48({65535}));
    EXPECT_EQ(Converted<XARGB32Volume>(white48), std::vector<XARGB32Colour>{XARGB32Colour::kWhite});
}

TEST(Conversion, FromRGB48)
{
    const auto source = XMakeVolume<XRGB48Volume>(kRow1, {XRGB48Colour(1000, 30000, 65535)});
    EXPECT_EQ(Converted<XARGB32Volume>(source), std::vector<XARGB32Colour>{XARGB32Colour(3, 117, 255)});
    EXPECT_EQ(Converted<XBGRA32Volume>(source), std::vector<XBGRA32Colour>{XBGRA32Colour(3, 117, 255)});
    // 96535 / 768 = 125 and 96535 / 3 = 32178.
    EXPECT_EQ(Converted<XGrey8Volume>(source), std::vector<UInt8>{125});
    EXPECT_EQ(Converted<XGrey16Volume>(source), std::vector<UInt16>{32178});
    EXPECT_FLOAT_EQ(Converted<XFPVolume>(source)[0], 0.49100481f);
    EXPECT_EQ(Converted<XRGB48Volume>(source), std::vector<XRGB48Colour>{XRGB48Colour(1000, 30000, 65535)});
    const auto white = XMakeVolume<XRGB48Volume>(kRow1, Greys48({65535}));
    EXPECT_EQ(Converted<XGrey8Volume>(white), std::vector<UInt8>{255});
}

TEST(Conversion, ThirtyTwoBitGreyCopiesOnlyIntoItsOwnClass)
{
    const auto source = XMakeVolume<XGrey32Volume>(kRow5, {0, 1, 70000, 4000000000u, 5});
    EXPECT_EQ(Converted<XGrey32Volume>(source), (std::vector<UInt32>{0, 1, 70000, 4000000000u, 5}));
    EXPECT_THROW(Converted<XGrey8Volume>(source), XInternalError);
    const auto grey = XMakeVolume<XGrey8Volume>(kRow5, {1, 2, 3, 4, 5});
    EXPECT_THROW(Converted<XGrey32Volume>(grey), XInternalError);
}

TEST(ScaledCopy, TakesTheNearestLowerSourceVoxel)
{
    const auto source = XMakeVolume<XGrey8Volume>(X3DRect(4, 2, 1), {10, 20, 30, 40, 50, 60, 70, 80});
    // Enlarged to 8 by 3: x index floor(i * 4 / 8), y index floor(j * 2 / 3).
    XGrey8Volume large(X3DRect(8, 3, 1));
    large.CopyIn(source, source.GetBounds(), large.GetBounds(), nullptr);
    EXPECT_EQ(XGetVoxels(large), (std::vector<UInt8>{10, 10, 20, 20, 30, 30, 40, 40, 10, 10, 20, 20, 30, 30, 40, 40,
                                                     50, 50, 60, 60, 70, 70, 80, 80}));
    // Shrunk to 3 by 1 into a 16-bit volume: x index floor(i * 4 / 3) = 0, 1, 2.
    XGrey16Volume small(X3DRect(3, 1, 1));
    small.CopyIn(source, source.GetBounds(), small.GetBounds(), nullptr);
    EXPECT_EQ(XGetVoxels(small), (std::vector<UInt16>{10 * 257, 20 * 257, 30 * 257}));
}

TEST(ScaledCopy, WorksInAbsoluteCoordinatesAndOnlyInsideTheDestination)
{
    // A source with origin (5, 5, 5) into a destination with origin (-1, 0, 0); the
    // destination rectangle reaches one voxel out of the destination on the left.
    auto source = XMakeVolume<XGrey8Volume>(X3DRect(5, 5, 5, 8, 6, 6), {1, 2, 3});
    XGrey8Volume dest(X3DRect(-1, 0, 0, 2, 1, 1));
    dest.Fill(9);
    dest.CopyIn(source, source.GetBounds(), X3DRect(-2, 0, 0, 1, 1, 1), nullptr);
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{2, 3, 9}));
}

TEST(CopyRegion, BoxRegionWritesOnlyItsBox)
{
    const auto source = XMakeVolume<XGrey8Volume>(kRow5, {1, 2, 3, 4, 5});
    XGrey8Volume dest(kRow5);
    const X3DRegion box(X3DRect(1, 0, 0, 3, 1, 1));
    dest.CopyIn(source, kRow5, kRow5, &box);
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{0, 2, 3, 0, 0}));
    // A box that holds the whole rectangle takes the row copy: everything.
    const X3DRegion wide(X3DRect(-5, -5, -5, 10, 10, 10));
    XGrey8Volume all(kRow5);
    all.CopyIn(source, kRow5, kRow5, &wide);
    EXPECT_EQ(XGetVoxels(all), (std::vector<UInt8>{1, 2, 3, 4, 5}));
}

TEST(CopyRegion, MaskedRegionWritesWhereTheMaskByteIsAbove127)
{
    const auto source = XMakeVolume<XGrey16Volume>(kRow5, {256, 512, 768, 1024, 1280});
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(0, 0, 0, 4, 1, 1), {255, 127, 128, 0});
    const X3DRegion region(mask);
    ASSERT_TRUE(region.IsComplex());
    XGrey8Volume dest(kRow5);
    dest.Fill(7);
    dest.CopyIn(source, kRow5, kRow5, &region);
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{1, 7, 3, 7, 7}));
}

TEST(CopyRegion, RegionReachingOutsideTheVolumeStaysInside)
{
    const auto source = XMakeVolume<XGrey8Volume>(X3DRect(0, 0, 0, 3, 1, 1), {1, 2, 3});
    const auto mask = XMakeVolume<XMaskVolume>(X3DRect(-2, 0, 0, 2, 1, 1), {255, 0, 255, 255});
    const X3DRegion region(mask);
    XGrey8Volume dest(X3DRect(0, 0, 0, 3, 1, 1));
    dest.CopyIn(source, source.GetBounds(), dest.GetBounds(), &region);
    EXPECT_EQ(XGetVoxels(dest), (std::vector<UInt8>{1, 2, 0}));
}

namespace
{
// A Grey8 source that records which conversion the destination asked for.
class XRecordingGrey8 : public XGrey8Volume
{
public:
    using XGrey8Volume::XGrey8Volume;
    mutable std::string itsCalled;

protected:
    void CopyOutMask(XMaskVolume &, const X3DRect &, const X3DRect &, const X3DRegion *) const override
    {
        itsCalled += "mask ";
    }
    void CopyOutGrey8(XGrey8Volume &, const X3DRect &, const X3DRect &, const X3DRegion *) const override
    {
        itsCalled += "grey8 ";
    }
    void CopyOutFP(XFPVolume &, const X3DRect &, const X3DRect &, const X3DRegion *) const override
    {
        itsCalled += "fp ";
    }
};
} // namespace

TEST(CopyDispatch, TheDestinationIsAskedForAMaskBeforeGrey8)
{
    const XRecordingGrey8 source(kRow1);
    XMaskVolume mask(kRow1);
    XGrey8Volume grey(kRow1);
    XFPVolume real(kRow1);
    mask.CopyIn(source, kRow1, kRow1, nullptr);
    grey.CopyIn(source, kRow1, kRow1, nullptr);
    real.CopyIn(source, kRow1, kRow1, nullptr);
    EXPECT_EQ(source.itsCalled, "mask grey8 fp ");
    // A 32-bit grey destination is none of the seven: the default asserts for another class.
    XGrey32Volume other(kRow1);
    EXPECT_THROW(other.CopyIn(XGrey8Volume(kRow1), kRow1, kRow1, nullptr), XInternalError);
}
