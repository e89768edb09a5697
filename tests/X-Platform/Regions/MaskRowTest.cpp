// Finding set bytes in a row of a mask, and rows streamed into a mask.

#include <gtest/gtest.h>

#include <vector>

#include "XIntelCPUInfo.h"
#include "XMaskBits.h"
#include "XMaskRowWriter.h"

TEST(MaskRows, SetBytesAcrossTheEdgesOfWords)
{
    // 127 is clear, 128 set; the set bytes sit just past the first word and in the byte tail.
    std::vector<UInt8> row(37, 127);
    row[8] = 128;
    row[29] = 200;
    EXPECT_EQ(XMaskBits::FirstSet(row.data(), 37), 8u);
    EXPECT_EQ(XMaskBits::LastSet(row.data(), 37), 29u);
    EXPECT_FALSE(XMaskBits::AnySet(row.data(), 8));
    EXPECT_TRUE(XMaskBits::AnySet(row.data(), 9));
    EXPECT_FALSE(XMaskBits::AnySet(row.data() + 30, 7));
    row[36] = 255;
    row[0] = 130;
    EXPECT_EQ(XMaskBits::FirstSet(row.data(), 37), 0u);
    EXPECT_EQ(XMaskBits::LastSet(row.data(), 37), 36u);
    // Runs of one word and shorter.
    EXPECT_EQ(XMaskBits::FirstSet(row.data() + 4, 5), 4u);
    EXPECT_EQ(XMaskBits::LastSet(row.data() + 27, 5), 2u);
    EXPECT_EQ(XMaskBits::LastSet(row.data() + 26, 8), 3u);

    std::vector<UInt8> full(45, 128);
    EXPECT_TRUE(XMaskBits::AllSet(full.data(), 45));
    EXPECT_TRUE(XMaskBits::AllSet(full.data(), 0));
    full[44] = 127;
    EXPECT_FALSE(XMaskBits::AllSet(full.data(), 45));
    EXPECT_TRUE(XMaskBits::AllSet(full.data(), 44));
}

TEST(MaskRows, StreamedRowsAreExactAtEveryAlignment)
{
    if (!XIntelCPUInfo::HasFeature(kCPUFeatureAVX))
        GTEST_SKIP() << "streaming needs AVX";
    std::vector<UInt8> source(200);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = UInt8(i * 37 + 11);
    alignas(64) UInt8 dest[320];
    for (UInt64 offset = 0; offset < 40; ++offset)
        for (UInt64 count : {0, 1, 31, 32, 33, 64, 95, 130, 200})
        {
            std::fill(std::begin(dest), std::end(dest), UInt8(0xEE));
            XMaskRowWriter::Stream(dest + offset, source.data(), count);
            for (UInt64 i = 0; i < 320; ++i)
            {
                const bool inside = i >= offset && i < offset + count;
                ASSERT_EQ(dest[i], inside ? source[i - offset] : UInt8(0xEE)) << offset << " " << count << " " << i;
            }
        }

    // Small masks are written in place, large ones through the row buffer.
    UInt8 row[10] = {};
    EXPECT_EQ(XMaskRowWriter(10, XMaskRowWriter::kStreamBytes - 1).Begin(row), row);
    XMaskRowWriter writer(10, XMaskRowWriter::kStreamBytes);
    UInt8 * buffer = writer.Begin(row);
    ASSERT_NE(buffer, row);
    std::fill(buffer, buffer + 10, UInt8(7));
    writer.End(row);
    EXPECT_EQ(std::vector<UInt8>(row, row + 10), std::vector<UInt8>(10, 7));
}
