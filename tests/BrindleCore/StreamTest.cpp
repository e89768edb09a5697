// Streams over memory, memory handles and files: every value in both byte orders, the info
// header, positions, damaged input, growth and gaps of handle streams, objects through the
// registry, and the buffered file stream against a model.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "XFile.h"
#include "XFileStream.h"
#include "XFoundationTestSupport.h"
#include "XHandleStream.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XTestMemoryStream.h"
#include "XZCompressor.h"
#include "XZDecompressor.h"

namespace
{
std::vector<UInt8> Bytes(std::initializer_list<int> aList)
{
    std::vector<UInt8> out;
    for (int value : aList)
        out.push_back(static_cast<UInt8>(value));
    return out;
}

void WriteEverything(XStream & aStream)
{
    const UInt16 shorts[2] = {0x0102, 0x0304};
    const UInt32 longs[1] = {0x05060708};
    aStream.Write8(0xA1);
    aStream.Write16(0x0102);
    aStream.Write32(0x01020304);
    aStream.Write64S(-2);
    aStream.WriteFloat32S(1.0f);
    aStream.WriteFloat64S(-0.5);
    aStream.WriteString(XString("h\xC3\xA9"));
    aStream.WriteARGB32(0x80FF4020);
    aStream.WriteBuffer16(shorts, 2);
    aStream.WriteBuffer32(longs, 1);
    aStream.WriteBuffer8("ab", 2);
    aStream.WriteVersion(XVersion(105, 1));
}

// What WriteEverything writes: numbers, lengths and 16- and 32-bit blocks in the stream's order;
// the colour alpha first and the characters as they are in either order.
std::vector<UInt8> ExpectedBytes(XByteOrder anOrder)
{
    if (anOrder == kBigEndian)
        return Bytes({0xA1, 1, 2, 1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE,
                      0x3F, 0x80, 0, 0, 0xBF, 0xE0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 'h', 0xC3, 0xA9,
                      0x80, 0xFF, 0x40, 0x20, 1, 2, 3, 4, 5, 6, 7, 8, 'a', 'b', 0, 1, 0, 105});
    return Bytes({0xA1, 2, 1, 4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                  0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0xE0, 0xBF, 3, 0, 0, 0, 'h', 0xC3, 0xA9,
                  0x80, 0xFF, 0x40, 0x20, 2, 1, 4, 3, 8, 7, 6, 5, 'a', 'b', 105, 0, 1, 0});
}

void CheckEverything(XStream & aStream)
{
    EXPECT_EQ(aStream.Read8(), 0xA1);
    EXPECT_EQ(aStream.Read16(), 0x0102);
    EXPECT_EQ(aStream.Read32(), 0x01020304u);
    EXPECT_EQ(aStream.Read64S(), -2);
    EXPECT_EQ(aStream.ReadFloat32S(), 1.0f);
    EXPECT_EQ(aStream.ReadFloat64S(), -0.5);
    EXPECT_EQ(aStream.ReadString(), XString("h\xC3\xA9"));
    EXPECT_EQ(aStream.ReadARGB32(), 0x80FF4020u);
    UInt16 shorts[2];
    aStream.ReadBuffer16(shorts, 2);
    EXPECT_EQ(shorts[1], 0x0304);
    UInt32 longs[1];
    aStream.ReadBuffer32(longs, 1);
    EXPECT_EQ(longs[0], 0x05060708u);
    char text[2];
    aStream.ReadBuffer8(text, 2);
    EXPECT_EQ(text[1], 'b');
    EXPECT_EQ(aStream.ReadVersion().GetWord(), 65641u);
    EXPECT_EQ(aStream.GetBytesLeft(), 0u);
}
} // namespace

TEST(StreamTest, EveryValueRoundTripsThroughEachMediumInBothOrders)
{
    XTemporaryFolder folder;
    for (XByteOrder order : {kBigEndian, kLittleEndian})
    {
        XTestMemoryStream memory(order, 16); // a buffer smaller than what goes through it
        WriteEverything(memory);
        EXPECT_EQ(memory.GetBytes(), ExpectedBytes(order));
        memory.SeekTo(0);
        CheckEverything(memory);

        XMemoryHandle handle;
        {
            XHandleStream writer(handle);
            EXPECT_EQ(writer.GetByteOrder(), GetByteOrderFromPlatform());
            writer.SetByteOrder(order);
            WriteEverything(writer);
        } // the destructor flushes
        EXPECT_EQ(ContentsOf(handle), ExpectedBytes(order));
        XHandleStream reader(handle);
        reader.SetByteOrder(order);
        CheckEverything(reader);
        EXPECT_THROW(reader.Read8(), XException);

        {
            XFileStream writer(folder.Spec("stream"), kCreate, 32, order);
            writer.WriteStreamInfo();
            WriteEverything(writer);
        }
        XFileStream fileReader(folder.Spec("stream"), kReadOnly);
        fileReader.ReadStreamInfo(); // the reader learns the order from the header
        EXPECT_EQ(fileReader.GetByteOrder(), order);
        CheckEverything(fileReader);
    }
}

TEST(StreamTest, LargeSwappedBlocksRoundTrip)
{
    // More units than one swap chunk, so that the chunk boundaries are crossed.
    std::vector<UInt16> shorts(10001);
    std::vector<UInt32> longs(5003);
    for (std::size_t i = 0; i < shorts.size(); ++i)
        shorts[i] = static_cast<UInt16>(i * 7919);
    for (std::size_t i = 0; i < longs.size(); ++i)
        longs[i] = static_cast<UInt32>(i * 2654435761u);
    XTestMemoryStream stream(kBigEndian, 1000);
    stream.WriteBuffer16(shorts.data(), shorts.size());
    stream.WriteBuffer32(longs.data(), longs.size());
    std::vector<UInt8> bytes = stream.GetBytes();
    EXPECT_EQ(bytes[2 * 5000], UInt8(shorts[5000] >> 8));
    EXPECT_EQ(bytes[2 * 10001 + 4 * 4097 + 3], UInt8(longs[4097]));
    stream.SeekTo(0);
    std::vector<UInt16> shortsBack(shorts.size());
    std::vector<UInt32> longsBack(longs.size());
    stream.ReadBuffer16(shortsBack.data(), shortsBack.size());
    stream.ReadBuffer32(longsBack.data(), longsBack.size());
    EXPECT_EQ(shortsBack, shorts);
    EXPECT_EQ(longsBack, longs);
}

TEST(StreamTest, InfoHeaderCarriesOrderAndVersion)
{
    XTestMemoryStream writer(kBigEndian);
    writer.WriteStreamInfo();
    writer.Write32(7);
    std::vector<UInt8> bytes = writer.GetBytes();
    EXPECT_EQ(bytes, Bytes({'B', 'R', 'N', 'D', 'M', 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 7}));

    XTestMemoryStream reader(bytes, kLittleEndian);
    reader.ReadStreamInfo();
    EXPECT_EQ(reader.GetByteOrder(), kBigEndian);
    EXPECT_EQ(reader.GetFormatMajorVersion(), 2u);
    EXPECT_EQ(reader.Read32(), 7u);

    auto errorWith = [&](std::size_t anOffset, UInt8 aByte) {
        std::vector<UInt8> changed = bytes;
        changed[anOffset] = aByte;
        XTestMemoryStream damaged(changed, kLittleEndian);
        return ErrorOf([&] { damaged.ReadStreamInfo(); });
    };
    EXPECT_EQ(errorWith(0, 'X'), UInt32(kErrDamagedStream)); // the magic word
    EXPECT_EQ(errorWith(11, 3), 1015u);                       // a newer format
}

TEST(StreamTest, PositionsExtentPeekAndTruncate)
{
    XTestMemoryStream stream(kLittleEndian, 16);
    for (UInt32 i = 0; i < 10; ++i)
        stream.Write32(i);
    EXPECT_EQ(stream.GetExtent(), 40);
    stream.SeekTo(8);
    stream.Seek(4);
    EXPECT_EQ(stream.GetPosition(), 12);
    UInt8 peeked[8];
    EXPECT_EQ(stream.PeekBuffer8(peeked, 8), 8u);
    EXPECT_EQ(peeked[0], 3);
    EXPECT_EQ(peeked[4], 4);
    EXPECT_EQ(stream.GetPosition(), 12);
    stream.SeekTo(36);
    EXPECT_EQ(stream.PeekBuffer8(peeked, 8), 4u);
    stream.SeekTo(20);
    stream.Truncate();
    EXPECT_EQ(stream.GetExtent(), 20);
    EXPECT_EQ(stream.GetBytes().size(), 20u);
    stream.SeekTo(16);
    EXPECT_EQ(stream.Read32(), 4u);
    EXPECT_THROW(stream.Read8(), XException);
    EXPECT_THROW(stream.SeekTo(-1), XException);
}

TEST(StreamTest, DamagedLengthsAndMissingFilesFailWithoutAllocating)
{
    // A string that claims 4 GiB - 1 bytes in a stream of 8.
    XTestMemoryStream stream(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b', 'c', 'd'}), kLittleEndian);
    EXPECT_EQ(ErrorOf([&] { stream.ReadString(); }), UInt32(kErrDamagedStream));
    XTestMemoryStream shortStream(Bytes({1, 2, 3}), kLittleEndian);
    EXPECT_EQ(ErrorOf([&] { shortStream.Read32(); }), UInt32(kErrEndOfStream));
    EXPECT_EQ(ErrorOf([] { XFileStream(XFileSpec(XString("/nonexistent-folder/none")), kReadOnly); }),
              UInt32(kErrFileIO));
}

TEST(StreamTest, FileSpecIsStorable)
{
    XFileSpec spec(XString("/data/stacks/cell 1.brs"));
    EXPECT_EQ(spec.GetName(), "cell 1.brs");
    EXPECT_EQ(spec.GetFolder(), "/data/stacks");
    XTestMemoryStream stream(kLittleEndian);
    spec.WriteStream2(stream, 0);
    EXPECT_EQ(stream.GetBytes().size(), spec.GetStreamUsage());
    stream.SeekTo(0);
    EXPECT_EQ(XFileSpec(stream), spec);
}

// Random writes, reads and seeks of every size, on a stream with a small buffer, agree with a
// plain byte vector: this walks every path between the window and the file.
TEST(FileStreamTest, BufferedStreamAgreesWithAModel)
{
    XTemporaryFolder folder;
    std::mt19937 random(12345);
    std::vector<UInt8> model;
    XFileStream stream(folder.Spec("model"), kCreate, 64);
    SInt64 position = 0;
    for (int step = 0; step < 3000; ++step)
    {
        UInt32 kind = random() % 4;
        UInt64 size = random() % 4 == 0 ? random() % 300 : random() % 9;
        std::vector<UInt8> data(size);
        if (kind == 0 || model.empty())
        {
            for (UInt8 & byte : data)
                byte = static_cast<UInt8>(random());
            stream.WriteBuffer8(data.data(), size);
            if (UInt64(position) + size > model.size())
                model.resize(std::size_t(position) + size);
            std::copy(data.begin(), data.end(), model.begin() + position);
            position += SInt64(size);
        }
        else if (kind == 1 && UInt64(position) + size <= model.size())
        {
            stream.ReadBuffer8(data.data(), size);
            ASSERT_TRUE(std::equal(data.begin(), data.end(), model.begin() + position)) << "step " << step;
            position += SInt64(size);
        }
        else if (kind == 1)
        {
            EXPECT_THROW(stream.ReadBuffer8(data.data(), size), XException);
            position = stream.GetPosition();
        }
        else
        {
            position = SInt64(random() % (model.size() + 1));
            stream.SeekTo(position);
        }
        ASSERT_EQ(stream.GetPosition(), position);
        ASSERT_EQ(stream.GetExtent(), SInt64(model.size()));
    }
    stream.Flush();
    std::vector<UInt8> onDisk(model.size());
    EXPECT_EQ(stream.GetFile().ReadAt(0, onDisk.data(), onDisk.size()), model.size());
    EXPECT_EQ(onDisk, model);
}

// Large reads whose buffer and file offset are skewed within a cache line are copied from a
// mapping of the file, in windows; reads past the end come back short through the plain path.
TEST(FileStreamTest, LargeSkewedReadsReturnTheFileBytes)
{
    XTemporaryFolder folder;
    constexpr UInt64 kSize = (64ull << 20) + 3 * 4096 + 123; // more than one mapping window
    std::vector<UInt8> bytes(kSize);
    for (UInt64 i = 0; i < kSize; ++i)
        bytes[i] = static_cast<UInt8>((i * 2654435761ull) >> 13);
    XFile file(folder.Spec("large"), kCreate);
    file.WriteAt(0, bytes.data(), kSize);

    std::vector<UInt8> read(kSize + 64);
    for (SInt64 offset : {SInt64(37), SInt64(4096 + 5)})
    {
        UInt64 count = kSize - UInt64(offset);
        UInt8 * dest = read.data() + 3;
        ASSERT_EQ(file.ReadAt(offset, dest, count), count);
        EXPECT_TRUE(std::equal(dest, dest + count, bytes.begin() + offset));
        // Asking for more than there is gives what there is.
        std::fill(read.begin(), read.end(), UInt8(0));
        ASSERT_EQ(file.ReadAt(offset, dest, count + 40), count);
        EXPECT_TRUE(std::equal(dest, dest + count, bytes.begin() + offset));
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

TEST(HandleStreamTest, GapsReadAsZeroTruncateCutsAndCopiesOfTheMediumStayAlone)
{
    XMemoryHandle handle(4);
    handle.Clear(0xEE);
    XMemoryHandle copy(handle);
    {
        XHandleStream stream(handle);
        stream.SeekTo(10000);
        stream.Write8(5);
        stream.Flush();
        EXPECT_EQ(handle.GetDataSize(), 10001u);
        stream.SeekTo(1);
        stream.Write8(0);
        stream.SeekTo(6);
        stream.Truncate();
    }
    EXPECT_EQ(ContentsOf(handle), (std::vector<UInt8>{0xEE, 0, 0xEE, 0xEE, 0, 0}));
    EXPECT_EQ(ContentsOf(copy), std::vector<UInt8>(4, 0xEE));

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

TEST(HandleStreamTest, ObjectsAndACompressedObjectAsTheRegionsStoreIt)
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle payload(5000);
    for (UInt64 i = 0; i < 5000; i += 7)
        payload.SetByte(i, UInt8(i));
    payload.SetCompression(XMemoryHandle::kDeflate);
    XMemoryHandle plain;
    {
        XHandleStream stream(plain);
        stream.WriteObject(payload);
        stream.WriteObject(nullptr);
        stream.WriteObject(XMemoryHandle(3));
    }
    // The handle compressed, the compressed handle written as an object, and all the way back.
    XMemoryHandle packed;
    {
        XLock lock(plain, kLockRead);
        packed = XZCompressor(false, -1).CompressToMemory(plain.GetData(), UInt32(plain.GetDataSize()));
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
    std::unique_ptr<XMemoryHandle> first(inner.ReadObjectAs<XMemoryHandle>());
    std::unique_ptr<XMemoryHandle> second(inner.ReadObjectAs<XMemoryHandle>());
    std::unique_ptr<XMemoryHandle> third(inner.ReadObjectAs<XMemoryHandle>());
    ASSERT_TRUE(first && third);
    EXPECT_TRUE(*first == payload);
    EXPECT_EQ(first->GetCompression(), XMemoryHandle::kDeflate);
    EXPECT_FALSE(second);
    EXPECT_EQ(third->GetDataSize(), 3u);
    EXPECT_EQ(inner.GetBytesLeft(), 0u);
}
