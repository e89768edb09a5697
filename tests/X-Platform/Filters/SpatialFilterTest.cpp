// Convolution: the weights normalised by their float sum, edges that darken, even kernels,
// truncation and wrap-around without a clamp, the ARGB32 passes, and the fast row method against
// the plain rule on random volumes.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XFilterTestSupport.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XSpatialFilterVolumeTool.h"
#include "XTestSupport.h"

namespace
{
// The result of aTool on a volume of class V over aBounds holding aVoxels.
template <class V>
std::vector<typename V::XVoxel> Filtered(XSpatialFilterVolumeTool & aTool, const X3DRect & aBounds,
                                         const std::vector<typename V::XVoxel> & aVoxels)
{
    return XFiltered(aTool, XMakeVolume<V>(aBounds, aVoxels));
}

template <class V>
class SpatialFilterByType : public ::testing::Test
{
};
TYPED_TEST_SUITE(SpatialFilterByType, XFilterGreyTypes);
} // namespace

TEST(SpatialFilter, WeightsAreDividedByTheirFloatSumTakenInArrayOrder)
{
    const float quarters[] = {1.0f, 2.0f, 3.0f, 4.0f};
    const XSpatialFilterVolumeTool tool(quarters, 2, 2, 1, 0.0f);
    EXPECT_EQ(std::vector<float>(tool.GetWeights(), tool.GetWeights() + 4),
              (std::vector<float>{1.0f / 10.0f, 2.0f / 10.0f, 3.0f / 10.0f, 4.0f / 10.0f}));
    // In floats and in this order 1e8 + 1 is 1e8, so the sum is 1 and the weights stay; any
    // other order or a wider sum would give 2.
    const float ordered[] = {1e8f, 1.0f, -1e8f, 1.0f};
    const XSpatialFilterVolumeTool unchanged(ordered, 4, 1, 1, 0.0f);
    EXPECT_EQ(std::vector<float>(unchanged.GetWeights(), unchanged.GetWeights() + 4),
              std::vector<float>(ordered, ordered + 4));
    // An edge detector sums to 0 and keeps its weights.
    const float edge[] = {-1.0f, 2.0f, -1.0f};
    const XSpatialFilterVolumeTool detector(edge, 3, 1, 1, 128.0f);
    EXPECT_EQ(std::vector<float>(detector.GetWeights(), detector.GetWeights() + 3), std::vector<float>(edge, edge + 3));
    EXPECT_EQ(detector.GetBias(), 128.0f);
    EXPECT_EQ(AssertionOf([] { XSpatialFilterVolumeTool(nullptr, 3, 3, 1, 0.0f); }), "weightArray");
}

TEST(SpatialFilter, CopiesShareTheWeights)
{
    const float ones[] = {1.0f, 1.0f};
    const XSpatialFilterVolumeTool origin(ones, 2, 1, 1, 5.0f);
    const XSpatialFilterVolumeTool copy(origin);
    EXPECT_EQ(copy.GetWeights(), origin.GetWeights());
    XSpatialFilterVolumeTool assigned(ones, 1, 1, 1, 0.0f);
    assigned = origin;
    EXPECT_EQ(assigned.GetWeights(), origin.GetWeights());
    EXPECT_EQ(assigned.GetWidth(), 2u);
    EXPECT_EQ(assigned.GetBias(), 5.0f);
}

// 3 x 3 x 1 of ones on a flat 90: each product is 90 * (1/9 as a float), which rounds to 10
// exactly, so the interior keeps 90, edges have six neighbours (60) and corners four (40).
TYPED_TEST(SpatialFilterByType, AFlatImageKeepsItsLevelAndDarkensAtTheEdges)
{
    using T = typename TypeParam::XVoxel;
    const std::vector<float> ones(9, 1.0f);
    XSpatialFilterVolumeTool tool(ones.data(), 3, 3, 1, 0.0f);
    EXPECT_EQ(Filtered<TypeParam>(tool, X3DRect(4, 3, 1), std::vector<T>(12, T(90))),
              (std::vector<T>{40, 60, 60, 40, 60, 90, 90, 60, 40, 60, 60, 40}));
    // A kernel of depth 1 filters each plane by itself: 1/3 times 30, 60 and 90 are 10, 20 and 30.
    const float row[] = {1.0f, 1.0f, 1.0f};
    XSpatialFilterVolumeTool flat(row, 3, 1, 1, 0.0f);
    EXPECT_EQ(Filtered<TypeParam>(flat, X3DRect(2, 1, 2), {30, 60, 90, 90}), (std::vector<T>{30, 30, 60, 60}));
}

// Weights 0.25 and 0.75, centred at entry 1: entry 0 reads the voxel before.
TYPED_TEST(SpatialFilterByType, AnEvenKernelReachesFurtherOnTheLowSide)
{
    using T = typename TypeParam::XVoxel;
    const float weights[] = {1.0f, 3.0f};
    XSpatialFilterVolumeTool alongX(weights, 2, 1, 1, 0.0f);
    EXPECT_EQ(Filtered<TypeParam>(alongX, X3DRect(4, 1, 1), {100, 200, 40, 4}), (std::vector<T>{75, 175, 80, 13}));
    XSpatialFilterVolumeTool alongZ(weights, 1, 1, 2, 0.0f);
    EXPECT_EQ(Filtered<TypeParam>(alongZ, X3DRect(X3DPoint(5, 6, 7), X3DPoint(6, 7, 10)), {100, 200, 40}),
              (std::vector<T>{75, 175, 80}));
}

TEST(SpatialFilter, ResultsAreTruncatedAndWrapWithoutAClamp)
{
    // Weights -1, 3, -1 sum to 1. On 0, 200, 0 the middle is 600 and the ends -200.
    const float sharpen[] = {-1.0f, 3.0f, -1.0f};
    XSpatialFilterVolumeTool tool(sharpen, 3, 1, 1, 0.0f);
    EXPECT_EQ(Filtered<XGrey8Volume>(tool, X3DRect(3, 1, 1), {0, 200, 0}), (std::vector<UInt8>{56, 88, 56}));
    EXPECT_EQ(Filtered<XGrey16Volume>(tool, X3DRect(3, 1, 1), {0, 200, 0}), (std::vector<UInt16>{65336, 600, 65336}));
    EXPECT_EQ(Filtered<XFPVolume>(tool, X3DRect(3, 1, 1), {0, 200, 0}), (std::vector<float>{-200, 600, -200}));

    // An edge detector with a bias: flat parts show the bias, the ends see one neighbour less.
    const float edge[] = {-1.0f, 2.0f, -1.0f};
    XSpatialFilterVolumeTool detector(edge, 3, 1, 1, 128.0f);
    EXPECT_EQ(Filtered<XGrey8Volume>(detector, X3DRect(5, 1, 1), {90, 90, 90, 90, 90}),
              (std::vector<UInt8>{218, 128, 128, 128, 218}));
    // trunc goes towards zero: -0.75 becomes 0, not -1 (255); 2.5 becomes 2.
    XSpatialFilterVolumeTool below(edge, 3, 1, 1, -0.75f);
    EXPECT_EQ(Filtered<XGrey8Volume>(below, X3DRect(3, 1, 1), {7, 7, 7}), (std::vector<UInt8>{6, 0, 6}));
    EXPECT_EQ(Filtered<XFPVolume>(below, X3DRect(3, 1, 1), {7, 7, 7}), (std::vector<float>{6.25f, -0.75f, 6.25f}));
    XSpatialFilterVolumeTool above(edge, 3, 1, 1, 2.5f);
    EXPECT_EQ(Filtered<XGrey16Volume>(above, X3DRect(3, 1, 1), {7, 7, 7}), (std::vector<UInt16>{9, 2, 9}));
}

// 1/3 times 30, 60, 90 (alpha), 3, 6, 9 (red) and 12, 24, 36 (green) are exact thirds.
TEST(SpatialFilter, ColourIsFilteredAtAlphaRedAndGreenAndBlueKeepsTheDestination)
{
    const float row[] = {1.0f, 1.0f, 1.0f};
    XSpatialFilterVolumeTool tool(row, 3, 1, 1, 0.0f);
    const std::vector<XARGB32Colour> voxels = {XARGB32Colour(30, 3, 12, 77), XARGB32Colour(60, 6, 24, 88),
                                               XARGB32Colour(90, 9, 36, 99)};
    EXPECT_EQ(Filtered<XARGB32Volume>(tool, X3DRect(3, 1, 1), voxels),
              (std::vector<XARGB32Colour>{XARGB32Colour(30, 3, 12, 0), XARGB32Colour(60, 6, 24, 0),
                                          XARGB32Colour(50, 5, 20, 0)}));
    // In place the destination is a clone of the source, so blue stays as it was.
    auto volume = XMakeVolume<XARGB32Volume>(X3DRect(3, 1, 1), voxels);
    tool.ApplyToolInPlace(volume);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<XARGB32Colour>{XARGB32Colour(30, 3, 12, 77), XARGB32Colour(60, 6, 24, 88),
                                                               XARGB32Colour(50, 5, 20, 99)}));
}

TEST(SpatialFilter, InPlaceReadsOnlyTheOriginalVoxelsAndOtherTypesAreRefused)
{
    const float weights[] = {1.0f, 3.0f};
    XSpatialFilterVolumeTool tool(weights, 2, 1, 1, 0.0f);
    auto volume = XMakeVolume<XGrey16Volume>(X3DRect(4, 1, 1), {100, 200, 40, 4});
    tool.ApplyToolInPlace(volume);
    EXPECT_EQ(XGetVoxels(volume), (std::vector<UInt16>{75, 175, 80, 13}));
    // A mask is filtered as 8-bit grey.
    const std::unique_ptr<XVolume> mask(tool.ApplyTool(XMakeVolume<XMaskVolume>(X3DRect(2, 1, 1), {0, 255})));
    EXPECT_EQ(XGetVoxels(dynamic_cast<const XMaskVolume &>(*mask)), (std::vector<UInt8>{0, 191}));
    EXPECT_EQ(ErrorOf([&] { delete tool.ApplyTool(XRGB48Volume(X3DRect(2, 1, 1))); }), 2500u);
    EXPECT_EQ(ErrorOf([&] { delete tool.ApplyTool(XBGRA32Volume(X3DRect(2, 1, 1))); }), 2500u);
}

// Rows, edges and corners of random volumes, with odd, even and overshooting kernels reaching
// past the volume, 3-D and flat.
TEST(SpatialFilter, TheRowMethodGivesThePlainRuleBitForBit)
{
    const X3DRect box(X3DPoint(-3, 2, 1), X3DPoint(38, 9, 6));
    const auto grey8 = XRandomVolume<XGrey8Volume>(box, 1);
    const auto grey16 = XRandomVolume<XGrey16Volume>(box, 2);
    const auto real = XRandomVolume<XFPVolume>(box, 3);
    const auto colour = XRandomVolume<XARGB32Volume>(box, 4);
    struct XKernel
    {
        UInt32 itsWidth, itsHeight, itsDepth;
        float itsBias;
    };
    const XKernel kernels[] = {{3, 3, 3, 0.0f}, {2, 4, 1, 0.5f}, {5, 1, 2, -3.0f}, {1, 1, 7, 0.0f}, {9, 3, 3, 1.0f}};
    std::mt19937 random(5);
    for (const XKernel & k : kernels)
    {
        std::vector<float> weights(k.itsWidth * k.itsHeight * k.itsDepth);
        for (float & weight : weights)
            weight = float(SInt32(random() % 41) - 12) / 7.0f;
        XSpatialFilterVolumeTool tool(weights.data(), k.itsWidth, k.itsHeight, k.itsDepth, k.itsBias);
        EXPECT_TRUE(XEveryPathAgrees(tool, grey8)) << k.itsWidth << "x" << k.itsHeight << "x" << k.itsDepth;
        EXPECT_TRUE(XEveryPathAgrees(tool, grey16)) << k.itsWidth << "x" << k.itsHeight << "x" << k.itsDepth;
        EXPECT_TRUE(XEveryPathAgrees(tool, real)) << k.itsWidth << "x" << k.itsHeight << "x" << k.itsDepth;
        EXPECT_TRUE(XEveryPathAgrees(tool, colour)) << k.itsWidth << "x" << k.itsHeight << "x" << k.itsDepth;
    }
    // Weights that are not finite make NaNs: the edges then go by the plain rule.
    const float infinite[] = {1.0f, 2.0f, std::numeric_limits<float>::infinity(), 1.0f, 0.0f, -1.0f};
    XSpatialFilterVolumeTool tool(infinite, 3, 2, 1, 0.0f);
    EXPECT_TRUE(XEveryPathAgrees(tool, grey16));
    EXPECT_TRUE(XEveryPathAgrees(tool, real));
}
