// A stack past 4 GiB: export writes it as BigTIFF by itself, and import reads it back whole.
// It writes about 13 GB of files, so it runs only in builds configured with
// -DBRINDLE_LONG_TESTS=ON.

#include <gtest/gtest.h>

#include <fstream>

#include "XBrindleRun.h"
#include "XGrey8Volume.h"
#include "XLock.h"

namespace
{
// 2048 x 2048 x 1030 voxels of 8 bits: 4 320 133 120 bytes, past 4 GiB (4 294 967 296).
constexpr UInt32 kWidth = 2048;
constexpr UInt32 kHeight = 2048;
constexpr UInt32 kDepth = 1030;

UInt8 Expected(UInt32 x, UInt32 y, UInt32 z)
{
    return UInt8(x + 3 * y + 7 * z);
}

// The byte order and version word that open a TIFF file.
std::string Head(const std::string & aPath)
{
    std::ifstream file(aPath, std::ios::binary);
    std::string head(4, '\0');
    file.read(head.data(), 4);
    return head;
}
} // namespace

using LongTiff = XBrindleTest;

TEST_F(LongTiff, StacksPast4GiBGoOutAsBigTiffAndComeBackWhole)
{
    if (!BRINDLE_LONG_TESTS)
        GTEST_SKIP() << "a long test: configure with -DBRINDLE_LONG_TESTS=ON";
    {
        XGrey8Volume volume(X3DRect(kWidth, kHeight, kDepth));
        {
            XLock lock(volume, kLockWrite);
            for (UInt32 z = 0; z < kDepth; ++z)
                for (UInt32 y = 0; y < kHeight; ++y)
                {
                    UInt8 * row = volume.GetLayerPtr(SInt32(z)) + UInt64(y) * volume.GetRowBytes();
                    for (UInt32 x = 0; x < kWidth; ++x)
                        row[x] = Expected(x, y, z);
                }
        }
        XWriteVolumeFile(volume, PathOf("big.bvol"));
    }
    const XBrindleResult exported = Run({"--quiet", "export", "big.bvol", "big.tif"});
    ASSERT_EQ(exported.itsStatus, 0) << exported;
    EXPECT_EQ(Head(PathOf("big.tif")), std::string("II\x2B\0", 4));
    std::filesystem::remove(PathOf("big.bvol"));

    const XBrindleResult imported = Run({"--quiet", "import", "big.tif", "back.bvol"});
    ASSERT_EQ(imported.itsStatus, 0) << imported;
    std::filesystem::remove(PathOf("big.tif"));
    const auto back = XReadVolumeFile<XGrey8Volume>(PathOf("back.bvol"));
    ASSERT_EQ(back->GetBounds(), X3DRect(kWidth, kHeight, kDepth));
    XLock lock(*back, kLockRead);
    UInt64 wrong = 0;
    for (UInt32 z = 0; z < kDepth; ++z)
        for (UInt32 y = 0; y < kHeight; ++y)
        {
            const UInt8 * row = back->GetLayerPtr(SInt32(z)) + UInt64(y) * back->GetRowBytes();
            for (UInt32 x = 0; x < kWidth; ++x)
                wrong += row[x] != Expected(x, y, z);
        }
    EXPECT_EQ(wrong, 0u);
}
