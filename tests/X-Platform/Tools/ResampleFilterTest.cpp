// The resampling filters and the tables of weights that the resample tool builds from them:
// supports, kernel values, fixed-point weights with their floors, the srcSize - 1 denominator,
// dropped samples when shrinking, mirrored ones when enlarging, and the choice of mode 0.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "XBSplineFilter.h"
#include "XBellFilter.h"
#include "XLanczos3Filter.h"
#include "XSimpleFilter.h"
#include "XTestSupport.h"
#include "XTriangleFilter.h"
#include "XVolumeResampleTool.h"

namespace
{
using XSamples = std::vector<std::pair<SInt32, SInt32>>;

// The tool with its table building opened up.
class XOpenResampleTool : public XVolumeResampleTool
{
public:
    using XVolumeResampleTool::CalcFilterValue;
    using XVolumeResampleTool::GetFilterSize;

    std::vector<XSamples> Table(SInt32 aSrcSize, SInt32 aDstSize, SInt64 anOffset = 0, SInt64 aStride = 1)
    {
        XContributions contributions;
        CalculateFilterContributions(aSrcSize, aDstSize, anOffset, aStride, contributions);
        std::vector<XSamples> table;
        for (const auto & samples : contributions)
        {
            table.emplace_back();
            for (const XContribution & sample : samples)
                table.back().emplace_back(sample.itsOffset, sample.itsWeight);
        }
        return table;
    }
};

std::vector<XSamples> TableOf(XFilterMode aMode, SInt32 aSrcSize, SInt32 aDstSize, SInt64 anOffset = 0,
                              SInt64 aStride = 1)
{
    XOpenResampleTool tool;
    tool.SetFilter(aMode);
    return tool.Table(aSrcSize, aDstSize, anOffset, aStride);
}
} // namespace

TEST(ResampleFilter, SupportsAndKernels)
{
    const XSimpleFilter simple;
    EXPECT_EQ(simple.GetFilterSize(), 1.0);
    EXPECT_EQ(simple.CalcFilterValue(0.0), 1.0);
    EXPECT_EQ(simple.CalcFilterValue(0.5), 0.5);        // (1 - 3) / 4 + 1
    EXPECT_EQ(simple.CalcFilterValue(-0.25), 0.84375);  // (0.5 - 3) / 16 + 1
    EXPECT_EQ(simple.CalcFilterValue(1.0), 0.0);

    const XTriangleFilter triangle;
    EXPECT_EQ(triangle.GetFilterSize(), 1.0);
    EXPECT_EQ(triangle.CalcFilterValue(-0.25), 0.75);
    EXPECT_EQ(triangle.CalcFilterValue(1.0), 0.0);

    const XBellFilter bell;
    EXPECT_EQ(bell.GetFilterSize(), 1.5);
    EXPECT_EQ(bell.CalcFilterValue(0.25), 0.6875);  // 0.75 - 1/16
    EXPECT_EQ(bell.CalcFilterValue(0.5), 0.5);      // the outer piece from 0.5 on
    EXPECT_EQ(bell.CalcFilterValue(-1.0), 0.125);
    EXPECT_EQ(bell.CalcFilterValue(1.5), 0.0);

    const XBSplineFilter bspline;
    EXPECT_EQ(bspline.GetFilterSize(), 2.0);
    EXPECT_DOUBLE_EQ(bspline.CalcFilterValue(0.0), 2.0 / 3.0);
    EXPECT_DOUBLE_EQ(bspline.CalcFilterValue(0.5), 0.0625 - 0.25 + 2.0 / 3.0);
    EXPECT_DOUBLE_EQ(bspline.CalcFilterValue(-1.0), 1.0 / 6.0);
    EXPECT_DOUBLE_EQ(bspline.CalcFilterValue(1.5), 0.125 / 6.0);
    EXPECT_EQ(bspline.CalcFilterValue(2.0), 0.0);

    const XLanczos3Filter lanczos;
    EXPECT_EQ(lanczos.GetFilterSize(), 3.0);
    EXPECT_EQ(lanczos.CalcFilterValue(0.0), 1.0);
    // sinc(1.5) sinc(0.5) = (-1 / 1.5 pi) (1 / 0.5 pi): a negative lobe.
    EXPECT_NEAR(lanczos.CalcFilterValue(-1.5), -1.0 / (0.75 * std::numbers::pi * std::numbers::pi), 1e-15);
    // sinc(0.5) sinc(1/6) = (2 / pi) (3 / pi).
    EXPECT_NEAR(lanczos.CalcFilterValue(0.5), 6.0 / (std::numbers::pi * std::numbers::pi), 1e-15);
    EXPECT_EQ(lanczos.CalcFilterValue(3.0), 0.0);
}

TEST(ResampleFilter, ModesAndTheirFilters)
{
    XOpenResampleTool tool;
    EXPECT_EQ(tool.GetFilterMode(), kFilterAutomatic);
    // Mode 0 has no filter until a table is made.
    EXPECT_EQ(AssertionOf([&] { tool.GetFilterSize(); }), "itsFilter");
    EXPECT_EQ(AssertionOf([&] { tool.CalcFilterValue(0.0); }), "itsFilter");
    const double sizes[] = {1.0, 1.0, 1.5, 2.0, 3.0};
    for (SInt32 mode = 1; mode <= 5; ++mode)
    {
        tool.SetFilter(XFilterMode(mode));
        EXPECT_EQ(tool.GetFilterMode(), mode);
        EXPECT_EQ(tool.GetFilterSize(), sizes[mode - 1]);
    }
    // Unknown modes are stored as 0, and drop the filter held.
    tool.SetFilter(XFilterMode(9));
    EXPECT_EQ(tool.GetFilterMode(), kFilterAutomatic);
    EXPECT_EQ(AssertionOf([&] { tool.GetFilterSize(); }), "itsFilter");
    tool.SetFilter(XFilterMode(-1));
    EXPECT_EQ(tool.GetFilterMode(), kFilterAutomatic);

    // Mode 6 adopts the caller's filter, and needs one.
    EXPECT_EQ(AssertionOf([&] { tool.SetFilter(kFilterCustom, nullptr); }), "aFilter");
    tool.SetFilter(kFilterCustom, new XLanczos3Filter());
    EXPECT_EQ(tool.GetFilterMode(), kFilterCustom);
    EXPECT_EQ(tool.GetFilterSize(), 3.0);

    // Mode 0 picks per table: the smooth step to shrink, the bell to enlarge.
    tool.SetFilter(kFilterAutomatic);
    tool.Table(5, 2);
    EXPECT_EQ(tool.GetFilterSize(), 1.0);
    EXPECT_EQ(tool.CalcFilterValue(0.25), 0.84375);
    tool.Table(3, 4);
    EXPECT_EQ(tool.GetFilterSize(), 1.5);
}

TEST(ResampleFilter, EnlargingCentresOnIOverScaleAndMirrorsAtTheEdges)
{
    // 3 to 4: scale = 4 / (3 - 1) = 2, centres 0, 0.5, 1, 1.5. Halves give 0.5 * 65535 floored,
    // 32767, and a flat voxel loses a level: 2 * 32767 < 65536.
    EXPECT_EQ(TableOf(kFilterTriangle, 3, 4),
              (std::vector<XSamples>{{{0, 65535}}, {{0, 32767}, {1, 32767}}, {{1, 65535}}, {{1, 32767}, {2, 32767}}}));
    // Offsets are j * stride + offset.
    EXPECT_EQ(TableOf(kFilterTriangle, 3, 4, 5, 10),
              (std::vector<XSamples>{{{5, 65535}}, {{5, 32767}, {15, 32767}}, {{15, 65535}}, {{15, 32767}, {25, 32767}}}));
    // 2 to 4 with the bell: scale 4, centres 0, 0.25, 0.5, 0.75. Weights 0.125, 0.75, 0.03125,
    // 0.6875, 0.28125 become 8191, 49151, 2047, 45055, 18431; j = -1 is read at 1, and j = 2 at
    // 2 * 2 - 2 - 1 = 1. Every sum is 1 here, so normalising keeps the weights.
    EXPECT_EQ(TableOf(kFilterBell, 2, 4), (std::vector<XSamples>{{{1, 8191}, {0, 49151}, {1, 8191}},
                                                                      {{1, 2047}, {0, 45055}, {1, 18431}},
                                                                      {{0, 32767}, {1, 32767}},
                                                                      {{0, 18431}, {1, 45055}, {1, 2047}}}));
    // A source of one sample: the scale is infinite, every centre 0, and the bell's outer
    // samples mirror back onto the one sample.
    EXPECT_EQ(TableOf(kFilterBell, 1, 2),
              (std::vector<XSamples>{{{0, 8191}, {0, 49151}, {0, 8191}}, {{0, 8191}, {0, 49151}, {0, 8191}}}));
    // Lanczos at whole centres: sin(pi) is a hair above zero in doubles and sin(2 pi) a hair
    // below, so the samples one away weigh 0 and those two away -1: they are kept, since their
    // values are not zero.
    const auto lanczos = TableOf(kFilterLanczos3, 5, 4);  // scale 1: centres 0..3
    EXPECT_EQ(lanczos[2], (XSamples{{0, -1}, {1, 0}, {2, 65535}, {3, 0}, {4, -1}}));
}

TEST(ResampleFilter, ShrinkingWidensTheFilterAndDropsOutsideSamples)
{
    // 5 to 2: scale 0.5, the triangle two samples wide, centres 1 and 3, weights 1/4 1/2 1/4.
    EXPECT_EQ(TableOf(kFilterTriangle, 5, 2),
              (std::vector<XSamples>{{{0, 16383}, {1, 32767}, {2, 16383}}, {{2, 16383}, {3, 32767}, {4, 16383}}}));
    // 9 to 2: scale 0.25, centres 2 and 6, four samples each side. The samples at -1 and 9 fall
    // outside and are dropped, so the kept values 1/8 3/16 1/4 3/16 1/8 1/16 sum to 15/16 and
    // each floor(v * 65535) is scaled by 16/15 and floored again: 8191 -> 8737, 12287 -> 13106,
    // 16383 -> 17475, 4095 -> 4368.
    const std::vector<XSamples> triangle{{{0, 8737}, {1, 13106}, {2, 17475}, {3, 13106}, {4, 8737}, {5, 4368}},
                                         {{3, 4368}, {4, 8737}, {5, 13106}, {6, 17475}, {7, 13106}, {8, 8737}}};
    EXPECT_EQ(TableOf(kFilterTriangle, 9, 2), triangle);
    EXPECT_EQ(TableOf(kFilterAutomatic, 9, 2)[0].size(), 6u);
    // The smooth step over the same: 1/8 27/128 1/4 27/128 1/8 5/128, summing to 123/128.
    EXPECT_EQ(TableOf(kFilterSimple, 9, 2)[0],
              (XSamples{{0, 8523}, {1, 14384}, {2, 17048}, {3, 14384}, {4, 8523}, {5, 2663}}));
    // No destination samples, no table.
    EXPECT_TRUE(TableOf(kFilterTriangle, 4, 0).empty());
}
