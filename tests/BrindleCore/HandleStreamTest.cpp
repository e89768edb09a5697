// Streams over memory handles: every number type in both byte orders, growth, gaps, truncation,
// objects through the registry, flushing on destruction, and copy-on-write of the medium.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "XByteSwap.h"
#include "XHandleStream.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XZCompressor.h"
#include "XZDecompressor.h"

namespace
{
std::vector<UInt8> Contents(const XMemoryHandle & aHandle)
{
    std::vector<UInt8> bytes(aHandle.GetDataSize());
    aHandle.CopyDataTo(bytes.data(), 0, bytes.size());
    return bytes;
}

void WriteEverything(XStream & aStream)
{
    const UInt16 shorts[3] = {0x0102, 0x0304, 0xFFFE};
    const UInt32 longs[2] = {0x01020304, 0xA0B0C0D0};
    aStream.Write8(0xA1);
    aStream.Write16(0x0102);
    aStream.Write32(0x01020304);
    aStream.Write64S(-2);
    aStream.WriteFloat32S(1.5f);
    aStream.WriteFloat64S(-0.25);
    aStream.WriteString("voxels");
    aStream.WriteARGB32(0x80FF4020);
    aStream.WriteBuffer16(shorts, 3);
    aStream.WriteBuffer32(longs, 2);
    aStream.WriteVersion(XVersion(105, 1));
}

void CheckEverything(XStream & aStream)
{
    EXPECT_EQ(aStream.Read8(), 0xA1);
    EXPECT_EQ(aStream.Read16(), 0x0102);
    EXPECT_EQ(aStream.Read32(), 0x01020304u);
    EXPECT_EQ(aStream.Read64S(), -2);
    EXPECT_EQ(aStream.ReadFloat32S(), 1.5f);
    EXPECT_EQ(aStream.ReadFloat64S(), -0.25);
    EXPECT_EQ(aStream.ReadString(), XString("voxels"));
    EXPECT_EQ(aStream.ReadARGB32(), 0x80FF4020u);
    UInt16 shorts[3];
    aStream.ReadBuffer16(shorts, 3);
    EXPECT_EQ(shorts[2], 0xFFFE);
    UInt32 longs[2];
    aStream.ReadBuffer32(longs, 2);
    EXPECT_EQ(longs[1], 0xA0B0C0D0u);
    EXPECT_EQ(aStream.ReadVersion().GetWord(), 65641u);
}
} // namespace

TEST(HandleStreamTest, EveryNumberInBothOrders)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        XMemoryHandle handle;
        {
            XHandleStream stream(handle);
            EXPECT_EQ(stream.GetByteOrder(), GetByteOrderFromPlatform());
            stream.SetByteOrder(order);
            WriteEverything(stream);
        } // the destructor flushes
        const std::vector<UInt8> bytes = Contents(handle);
        ASSERT_EQ(bytes.size(), 1 + 2 + 4 + 8 + 4 + 8 + 10 + 4 + 6 + 8 + 4u);
        // Write32(0x01020304) at offset 3.
        const std::vector<UInt8> word(bytes.begin() + 3, bytes.begin() + 7);
        EXPECT_EQ(word, order == kBigEndian ? (std::vector<UInt8>{1, 2, 3, 4})
                                            : (std::vector<UInt8>{4, 3, 2, 1}));
        EXPECT_EQ(bytes[37], 0x80); // the colour's alpha first in either order

        XHandleStream reader(handle);
        reader.SetByteOrder(order);
        CheckEverything(reader);
        EXPECT_EQ(reader.GetBytesLeft(), 0u);
        EXPECT_THROW(reader.Read8(), XException);
    }
}

TEST(HandleStreamTest, GrowsInStepsAndKeepsEveryByte)
{
    XMemoryHandle handle;
    {
        XHandleStream stream(handle, 1000);
        for (UInt32 i = 0; i < 300000; ++i)
            stream.Write32(i);
        stream.Flush();
        EXPECT_EQ(handle.GetDataSize(), 1200000u);
        EXPECT_GE(handle.GetPaddedSize(), 1200000u);
        EXPECT_LT(handle.GetPaddedSize(), 2400000u + 0x10000); // grown geometrically, not wildly

        // A large block goes to the handle directly.
        std::vector<UInt8> block(3 << 20, 0x77);
        stream.WriteBuffer8(block.data(), block.size());
    }
    EXPECT_EQ(handle.GetDataSize(), 1200000u + (3 << 20));
    XHandleStream reader(handle);
    for (UInt32 i = 0; i < 300000; ++i)
        ASSERT_EQ(reader.Read32(), i);
    std::vector<UInt8> block(3 << 20);
    reader.ReadBuffer8(block.data(), block.size());
    EXPECT_EQ(block.front(), 0x77);
    EXPECT_EQ(block.back(), 0x77);
}

TEST(HandleStreamTest, GapsReadAsZeroAndTruncateCuts)
{
    XMemoryHandle handle(4);
    handle.Clear(0xEE);
    {
        XHandleStream stream(handle);
        stream.SeekTo(10000);
        stream.Write8(5);
        stream.Flush();
        EXPECT_EQ(handle.GetDataSize(), 10001u);
        stream.SeekTo(6);
        stream.Truncate();
    }
    EXPECT_EQ(Contents(handle), (std::vector<UInt8>{0xEE, 0xEE, 0xEE, 0xEE, 0, 0}));

    XMemoryHandle big;
    {
        XHandleStream stream(big);
        stream.SeekTo(5 << 20);
        std::vector<UInt8> block(1 << 20, 3);
        stream.WriteBuffer8(block.data(), block.size());
    }
    EXPECT_EQ(big.GetDataSize(), UInt64(6) << 20);
    EXPECT_EQ(big.GetByte(0), 0);
    EXPECT_EQ(big.GetByte((5 << 20) - 1), 0);
    EXPECT_EQ(big.GetByte(5 << 20), 3);
}

TEST(HandleStreamTest, ObjectsThroughTheRegistry)
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle inner(64);
    inner.Clear(9);
    inner.SetCompression(XMemoryHandle::kDeflate);
    XMemoryHandle medium;
    {
        XHandleStream stream(medium);
        stream.WriteObject(inner);
        stream.WriteObject(nullptr);
        stream.WriteObject(XMemoryHandle(3));
    }
    XHandleStream reader(medium);
    std::unique_ptr<XMemoryHandle> first(reader.ReadObjectAs<XMemoryHandle>());
    std::unique_ptr<XMemoryHandle> second(reader.ReadObjectAs<XMemoryHandle>());
    std::unique_ptr<XMemoryHandle> third(reader.ReadObjectAs<XMemoryHandle>());
    ASSERT_TRUE(first);
    EXPECT_TRUE(*first == inner);
    EXPECT_EQ(first->GetCompression(), XMemoryHandle::kDeflate);
    EXPECT_FALSE(second);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->GetDataSize(), 3u);
    EXPECT_EQ(reader.GetBytesLeft(), 0u);
}

TEST(HandleStreamTest, WritingLeavesCopiesOfTheMediumAlone)
{
    XMemoryHandle medium(8);
    medium.Clear(1);
    XMemoryHandle copy(medium);
    {
        XHandleStream stream(medium);
        stream.Write32(0xFFFFFFFF);
        stream.SeekTo(8);
        stream.Write8(2);
    }
    EXPECT_EQ(Contents(copy), std::vector<UInt8>(8, 1));
    EXPECT_EQ(medium.GetDataSize(), 9u);
    EXPECT_EQ(medium.GetByte(0), 0xFF);
    EXPECT_EQ(medium.GetByte(5), 1);
}

TEST(HandleStreamTest, CompressedObjectAsTheRegionsStoreIt)
{
    // An object to a handle stream, the handle compressed, the compressed handle written as an
    // object, and all the way back.
    XMemoryHandle::RegisterClass();
    XMemoryHandle payload(5000);
    for (UInt64 i = 0; i < 5000; i += 7)
        payload.SetByte(i, UInt8(i));
    XMemoryHandle plain;
    {
        XHandleStream stream(plain);
        stream.WriteObject(payload);
    }
    XMemoryHandle packed;
    {
        XLock lock(plain, kLockRead);
        packed = XZCompressor(false, -1).CompressToMemory(plain.GetData(),
                                                          UInt32(plain.GetDataSize()));
    }
    EXPECT_LT(packed.GetDataSize(), plain.GetDataSize());
    XMemoryHandle outer;
    {
        XHandleStream stream(outer);
        stream.WriteObject(packed);
    }
    XHandleStream reader(outer);
    std::unique_ptr<XMemoryHandle> packedBack(reader.ReadObjectAs<XMemoryHandle>());
    XMemoryHandle plainBack = XZDecompressor().DecompressFromMemory(*packedBack);
    XHandleStream inner(plainBack);
    std::unique_ptr<XMemoryHandle> payloadBack(inner.ReadObjectAs<XMemoryHandle>());
    EXPECT_TRUE(*payloadBack == payload);
}
