// Deflate to and from memory handles: round trips in both forms, the header, and damaged input.

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "XFoundationTestSupport.h"
#include "XZCompressor.h"
#include "XZDecompressor.h"

namespace
{
std::vector<UInt8> Sample(std::size_t aSize, bool aRandom)
{
    std::vector<UInt8> bytes(aSize);
    std::mt19937 random(42);
    for (std::size_t i = 0; i < aSize; ++i)
        bytes[i] = aRandom ? UInt8(random()) : UInt8((i / 100) % 7);
    return bytes;
}
} // namespace

TEST(CompressionTest, RoundTripsInBothFormsWithTheirHeader)
{
    for (bool raw : {false, true})
        for (SInt32 level : {-1, 0, 1, 9})
            for (std::size_t size : {std::size_t(0), std::size_t(1), std::size_t(70000)})
                for (bool random : {false, true})
                {
                    std::vector<UInt8> data = Sample(size, random);
                    XMemoryHandle packed = XZCompressor(raw, level).CompressToMemory(data.data(), UInt32(size));
                    std::vector<UInt8> bytes = ContentsOf(packed);
                    ASSERT_GE(bytes.size(), 8u);
                    // The header: the size little-endian, the form, the tag.
                    EXPECT_EQ(bytes[0] | bytes[1] << 8 | bytes[2] << 16 | UInt32(bytes[3]) << 24, size);
                    EXPECT_EQ(bytes[4], raw ? 2 : 1);
                    EXPECT_EQ(std::string(bytes.begin() + 5, bytes.begin() + 8), "BZC");
                    if (!random && size > 1000 && level != 0)
                    {
                        EXPECT_LT(bytes.size(), size / 20);
                    }
                    EXPECT_EQ(ContentsOf(XZDecompressor().DecompressFromMemory(packed)), data)
                        << raw << " " << level << " " << size;
                }
}

TEST(CompressionTest, DamagedInputRaises)
{
    std::vector<UInt8> data = Sample(20000, true);
    const std::vector<UInt8> good = ContentsOf(XZCompressor().CompressToMemory(data.data(), 20000));
    auto fails = [](const std::vector<UInt8> & aBytes) {
        XMemoryHandle handle(aBytes.size());
        handle.CopyDataFrom(aBytes.data(), 0, aBytes.size());
        return ErrorOf([&] { XZDecompressor().DecompressFromMemory(handle); });
    };
    auto changed = [&](std::size_t anOffset, UInt8 aByte) {
        std::vector<UInt8> bytes = good;
        bytes[anOffset] = aByte;
        return fails(bytes);
    };
    EXPECT_EQ(fails(good), 0u);
    EXPECT_EQ(fails({}), kErrCompression);
    for (std::size_t size : {std::size_t(7), std::size_t(8), good.size() - 1})
        EXPECT_EQ(fails(std::vector<UInt8>(good.begin(), good.begin() + std::ptrdiff_t(size))), kErrCompression);
    EXPECT_EQ(changed(6, 'X'), kErrCompression);          // the tag
    EXPECT_EQ(changed(4, 3), kErrCompression);            // an unknown form
    EXPECT_EQ(changed(4, 2), kErrCompression);            // a zlib stream read as raw deflate
    EXPECT_EQ(changed(0, good[0] ^ 1), kErrCompression);  // one byte more or less than the data holds
    std::vector<UInt8> bytes = good;
    for (std::size_t i = 100; i < 110; ++i)
        bytes[i] ^= 0x5A;
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    bytes.push_back(0); // bytes after the end
    EXPECT_EQ(fails(bytes), kErrCompression);

    // A header that claims 4 GiB from a few bytes fails before any allocation.
    std::vector<UInt8> tiny = ContentsOf(XZCompressor().CompressToMemory("abc", 3));
    tiny[0] = tiny[1] = tiny[2] = tiny[3] = 0xFF;
    EXPECT_EQ(fails(tiny), kErrCompression);

    EXPECT_EQ(ErrorOf([] { XZCompressor(false, 10); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([] { XZCompressor(true, -2); }), kErrBadArgument);
}
