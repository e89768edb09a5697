// Extension with synthetic margins: each axis's ramp, the sample m away taken also where the
// margins differ, the high side adding to R, each axis seeing the one before, and the trim back.

#include <gtest/gtest.h>

#include <memory>

#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XTestSupport.h"
#include "XVolumeExtensionTool.h"
#include "XVolumeTestSupport.h"

namespace
{
std::vector<float> Extended(const XVolume & aVolume, const X3DRect & aBounds)
{
    const std::unique_ptr<XFPVolume> extended(XVolumeExtensionTool::CreateXYZExtendedVolume(aVolume, aBounds));
    EXPECT_EQ(extended->GetBounds(), aBounds);
    return XGetVoxels(*extended);
}
} // namespace

TEST(ExtensionTool, MarginsOfOneAxis)
{
    // 1, 3 with two on each side: m = 2, step 1/4, L = 1 and R = 3. The low side runs
    // 2 (R - L) / 4 + 1 = 2, then 1.5, into L; the high side 3 + 2 * 3/4 = 4.5, then 3 + 2 * 2/4 = 4.
    const auto pair = XMakeVolume<XFPVolume>(X3DRect(2, 1, 1), {1.0f, 3.0f});
    EXPECT_EQ(Extended(pair, X3DRect(-2, 0, 0, 4, 1, 1)), (std::vector<float>{2.0f, 1.5f, 1.0f, 3.0f, 4.5f, 4.0f}));
    // No low margin: m is still 2, so L = 5 and R = 7 are the samples two in from each end.
    const auto ramp = XMakeVolume<XFPVolume>(X3DRect(4, 1, 1), {1.0f, 3.0f, 5.0f, 7.0f});
    EXPECT_EQ(Extended(ramp, X3DRect(0, 0, 0, 6, 1, 1)), (std::vector<float>{1.0f, 3.0f, 5.0f, 7.0f, 8.5f, 8.0f}));
    // The same along y and along z.
    const auto column = XMakeVolume<XFPVolume>(X3DRect(1, 2, 1), {1.0f, 3.0f});
    EXPECT_EQ(Extended(column, X3DRect(0, -2, 0, 1, 4, 1)), (std::vector<float>{2.0f, 1.5f, 1.0f, 3.0f, 4.5f, 4.0f}));
    const auto stack = XMakeVolume<XFPVolume>(X3DRect(1, 1, 2), {1.0f, 3.0f});
    EXPECT_EQ(Extended(stack, X3DRect(0, 0, -2, 1, 1, 4)), (std::vector<float>{2.0f, 1.5f, 1.0f, 3.0f, 4.5f, 4.0f}));
}

TEST(ExtensionTool, EachAxisSeesTheOneBeforeAndTheTrimGivesTheSourceBack)
{
    // Rows 1 2 4 and 3 6 9 of 16-bit grey, one margin each side in x and y, one in front.
    auto source = XMakeVolume<XGrey16Volume>(X3DRect(3, 2, 1), {1, 2, 4, 3, 6, 9});
    source.SetXCalibration(0.25);
    source.SetZCalibration(2.0);
    const X3DRect bounds(-1, -1, -1, 4, 3, 1);
    const std::unique_ptr<XFPVolume> extended(XVolumeExtensionTool::CreateXYZExtendedVolume(source, bounds));
    EXPECT_EQ(extended->GetXCalibration(), 0.25);
    EXPECT_EQ(extended->GetZCalibration(), 2.0);
    // x: m = 1, step 1/2; row 1 2 4 becomes 2.5 1 2 4 5.5, row 3 6 9 becomes 6 3 6 9 12.
    // y over those full rows: L the first row, R the second; top = (R - L) / 2 + L and
    // bottom = (R - L) / 2 + R, column by column.
    // z: n = 2 and m = 1, so R is the sample at n - m - 1 = 0, the front margin itself, still
    // zero: the front plane becomes (0 - P) / 2 + P, half the plane.
    const std::vector<float> plane{4.25f, 2.0f, 4.0f, 6.5f, 8.75f, 2.5f, 1.0f, 2.0f, 4.0f,  5.5f,
                                   6.0f,  3.0f, 6.0f, 9.0f, 12.0f, 7.75f, 4.0f, 8.0f, 11.5f, 15.25f};
    std::vector<float> expected;
    for (float value : plane)
        expected.push_back(value / 2.0f);
    expected.insert(expected.end(), plane.begin(), plane.end());
    EXPECT_EQ(XGetVoxels(*extended), expected);

    const std::unique_ptr<XFPVolume> trimmed(
        XVolumeExtensionTool::CreateXYZTrimmedVolume(*extended, source.GetBounds()));
    EXPECT_EQ(XGetVoxels(*trimmed), (std::vector<float>{1.0f, 2.0f, 4.0f, 3.0f, 6.0f, 9.0f}));
    EXPECT_EQ(trimmed->GetXCalibration(), 0.25);
}

TEST(ExtensionTool, BoundsThatDoNotHoldTheSource)
{
    const auto pair = XMakeVolume<XFPVolume>(X3DRect(2, 1, 1), {1.0f, 3.0f});
    EXPECT_EQ(AssertionOf([&] { XVolumeExtensionTool::CreateXYZExtendedVolume(pair, X3DRect(1, 0, 0, 4, 1, 1)); }),
              "inExtendedBounds.Contains( originalBounds )");
    // A source without voxels leaves the margins zero.
    const XFPVolume none(X3DRect(0, 0, 0, 0, 1, 1));
    EXPECT_EQ(Extended(none, X3DRect(-1, 0, 0, 1, 1, 1)), (std::vector<float>{0.0f, 0.0f}));
}
