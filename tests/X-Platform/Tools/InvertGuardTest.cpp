// The invert tool's maximum becomes a 32-bit integer through a 64-bit truncation when the tool
// runs: beyond 32 bits it wraps, but an infinity (a maximum divided by zero) or NaN cannot be
// truncated and is an internal error.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "XGrey8Volume.h"
#include "XInvertVolumeTool.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

TEST(InvertGuardTest, TheMaximumMustTruncateToAnInteger)
{
    XInvertVolumeTool invert;
    invert.SetMaxVoxelValue(4294967396.0); // 2^32 + 100 wraps to 100
    auto grey = XMakeVolume<XGrey8Volume>(X3DRect(3, 1, 1), {200, 0, 100});
    invert.ApplyToolInPlace(grey);
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{156, 100, 0}));

    invert.SetMaxVoxelValue(std::numeric_limits<double>::infinity());
    EXPECT_EQ(AssertionOf([&] { invert.ApplyToolInPlace(grey); }), "value finite and within the integer range");
    EXPECT_EQ(XGetVoxels(grey), (std::vector<UInt8>{156, 100, 0}));
}
