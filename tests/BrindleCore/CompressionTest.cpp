// Deflate to and from memory handles: round trips in both forms, the header, and damaged input.

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "XException.h"
#include "XLock.h"
#include "XZCompressor.h"
#include "XZDecompressor.h"
#include "XTestSupport.h"

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

std::vector<UInt8> Contents(const XMemoryHandle & aHandle)
{
    std::vector<UInt8> bytes(aHandle.GetDataSize());
    aHandle.CopyDataTo(bytes.data(), 0, bytes.size());
    return bytes;
}

XMemoryHandle HandleOf(const std::vector<UInt8> & aBytes)
{
    XMemoryHandle handle(aBytes.size());
    handle.CopyDataFrom(aBytes.data(), 0, aBytes.size());
    return handle;
}

} // namespace

TEST(CompressionTest, RoundTripsInBothForms)
{
    for (bool raw : {false, true})
    {
        for (SInt32 level : {-1, 0, 1, 9})
        {
            for (std::size_t size : {std::size_t(0), std::size_t(1), std::size_t(70000)})
            {
                for (bool random : {false, true})
                {
                    std::vector<UInt8> data = Sample(size, random);
                    XMemoryHandle packed =
                        XZCompressor(raw, level).CompressToMemory(data.data(), UInt32(size));
                    std::vector<UInt8> bytes = Contents(packed);
                    ASSERT_GE(bytes.size(), 8u);
                    // The header: size little-endian, the form, the tag.
                    UInt32 stated = UInt32(bytes[0]) | UInt32(bytes[1]) << 8 |
                                    UInt32(bytes[2]) << 16 | UInt32(bytes[3]) << 24;
                    EXPECT_EQ(stated, size);
                    EXPECT_EQ(bytes[4], raw ? 2 : 1);
                    EXPECT_EQ(std::string(bytes.begin() + 5, bytes.begin() + 8), "BZC");
                    if (!random && size > 1000 && level != 0)
                    {
                        EXPECT_LT(bytes.size(), size / 20);
                    }
                    XMemoryHandle back = XZDecompressor().DecompressFromMemory(packed);
                    EXPECT_EQ(Contents(back), data) << raw << " " << level << " " << size;
                }
            }
        }
    }
}

TEST(CompressionTest, DamagedInputRaises)
{
    std::vector<UInt8> data = Sample(20000, true);
    const std::vector<UInt8> good = Contents(XZCompressor().CompressToMemory(data.data(), 20000));
    auto fails = [](const std::vector<UInt8> & aBytes) {
        return ErrorOf([&] { XZDecompressor().DecompressFromMemory(HandleOf(aBytes)); });
    };
    EXPECT_EQ(fails(good), 0u);
    EXPECT_EQ(fails({}), kErrCompression);
    EXPECT_EQ(fails(std::vector<UInt8>(good.begin(), good.begin() + 7)), kErrCompression);
    EXPECT_EQ(fails(std::vector<UInt8>(good.begin(), good.begin() + 8)), kErrCompression);
    EXPECT_EQ(fails(std::vector<UInt8>(good.begin(), good.end() - 1)), kErrCompression);

    std::vector<UInt8> bytes = good;
    bytes[6] = 'X'; // tag
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    bytes[4] = 3; // unknown form
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    bytes[4] = 2; // a zlib stream read as raw deflate
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    bytes[0] ^= 1; // one byte more or less than the data holds
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    for (std::size_t i = 100; i < 110; ++i)
        bytes[i] ^= 0x5A;
    EXPECT_EQ(fails(bytes), kErrCompression);
    bytes = good;
    bytes.push_back(0); // bytes after the end
    EXPECT_EQ(fails(bytes), kErrCompression);

    // A header that claims 4 GiB from a few bytes fails before any allocation.
    std::vector<UInt8> tiny = Contents(XZCompressor().CompressToMemory("abc", 3));
    tiny[0] = tiny[1] = tiny[2] = tiny[3] = 0xFF;
    EXPECT_EQ(fails(tiny), kErrCompression);

    EXPECT_EQ(ErrorOf([] { XZCompressor(false, 10); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([] { XZCompressor(true, -2); }), kErrBadArgument);
}
