// Streams: numbers in both byte orders, blocks, strings, the info header, positions, damaged
// input, and the buffered file stream against a model.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "XFile.h"
#include "XFileStream.h"
#include "XTestMemoryStream.h"

namespace
{
std::vector<UInt8> Bytes(std::initializer_list<int> aList)
{
    std::vector<UInt8> out;
    for (int value : aList)
        out.push_back(static_cast<UInt8>(value));
    return out;
}

void WriteEveryNumber(XStream & aStream)
{
    aStream.Write8(0xA1);
    aStream.Write16(0x0102);
    aStream.Write32(0x01020304);
    aStream.Write64S(-2);
    aStream.WriteFloat32S(1.0f);
    aStream.WriteFloat64S(-0.5);
}

void CheckEveryNumber(XStream & aStream)
{
    EXPECT_EQ(aStream.Read8(), 0xA1);
    EXPECT_EQ(aStream.Read16(), 0x0102);
    EXPECT_EQ(aStream.Read32(), 0x01020304u);
    EXPECT_EQ(aStream.Read64S(), -2);
    EXPECT_EQ(aStream.ReadFloat32S(), 1.0f);
    EXPECT_EQ(aStream.ReadFloat64S(), -0.5);
}

class FileStreamTest : public ::testing::Test
{
protected:
    void TearDown() override { itsSpec.Delete(); }
    XFileSpec itsSpec = XFileSpec::MakeTemporary("brindle-stream");
};
} // namespace

TEST(StreamTest, NumbersHaveTheBytesOfEachOrder)
{
    XTestMemoryStream big(kBigEndian);
    WriteEveryNumber(big);
    EXPECT_EQ(big.GetBytes(),
              Bytes({0xA1, 0x01, 0x02, 0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                     0xFF, 0xFE, 0x3F, 0x80, 0x00, 0x00, 0xBF, 0xE0, 0, 0, 0, 0, 0, 0}));

    XTestMemoryStream little(kLittleEndian);
    WriteEveryNumber(little);
    EXPECT_EQ(little.GetBytes(),
              Bytes({0xA1, 0x02, 0x01, 0x04, 0x03, 0x02, 0x01, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                     0xFF, 0xFF, 0x00, 0x00, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0xE0, 0xBF}));
}

TEST(StreamTest, NumbersRoundTripInBothOrders)
{
    for (XByteOrder order : {kBigEndian, kLittleEndian})
    {
        XTestMemoryStream stream(order, 16);
        WriteEveryNumber(stream);
        stream.WriteFloat64S(std::numeric_limits<double>::infinity());
        stream.SeekTo(0);
        CheckEveryNumber(stream);
        EXPECT_TRUE(std::isinf(stream.ReadFloat64S()));
        EXPECT_EQ(stream.GetBytesLeft(), 0u);
    }
}

TEST(StreamTest, BlocksOfUnitsTurnOverOnlyAcrossOrders)
{
    const UInt16 shorts[3] = {0x0102, 0x0304, 0x0506};
    const UInt32 longs[2] = {0x01020304, 0x05060708};
    XTestMemoryStream big(kBigEndian);
    big.WriteBuffer16(shorts, 3);
    big.WriteBuffer32(longs, 2);
    big.WriteBuffer8("ab", 2);
    EXPECT_EQ(big.GetBytes(), Bytes({1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 7, 8, 'a', 'b'}));

    big.SeekTo(0);
    UInt16 shortsBack[3];
    UInt32 longsBack[2];
    big.ReadBuffer16(shortsBack, 3);
    big.ReadBuffer32(longsBack, 2);
    EXPECT_EQ(shortsBack[2], 0x0506);
    EXPECT_EQ(longsBack[1], 0x05060708u);

    XTestMemoryStream little(kLittleEndian);
    little.WriteBuffer16(shorts, 1);
    EXPECT_EQ(little.GetBytes(), Bytes({2, 1}));
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

TEST(StreamTest, FileSpecIsStorable)
{
    XFileSpec spec(XString("/data/stacks/cell 1.brs"));
    EXPECT_EQ(spec.GetName(), "cell 1.brs");
    EXPECT_EQ(spec.GetFolder(), "/data/stacks");
    XTestMemoryStream stream(kLittleEndian);
    spec.WriteStream2(stream, 0);
    EXPECT_EQ(stream.GetBytes().size(), spec.GetStreamUsage());
    stream.SeekTo(0);
    XFileSpec back(stream);
    EXPECT_EQ(back, spec);
}

TEST(StreamTest, ColoursAndStringsHaveFixedForms)
{
    XTestMemoryStream stream(kLittleEndian);
    stream.WriteARGB32(0x80FF4020);
    stream.WriteString(XString("h\xC3\xA9"));
    EXPECT_EQ(stream.GetBytes(), Bytes({0x80, 0xFF, 0x40, 0x20, 3, 0, 0, 0, 'h', 0xC3, 0xA9}));
    stream.SeekTo(0);
    EXPECT_EQ(stream.ReadARGB32(), 0x80FF4020u);
    EXPECT_EQ(stream.ReadString(), XString("h\xC3\xA9"));
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

    std::vector<UInt8> wrongMagic = bytes;
    wrongMagic[0] = 'X';
    XTestMemoryStream damaged(wrongMagic, kLittleEndian);
    try
    {
        damaged.ReadStreamInfo();
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), UInt32(kErrDamagedStream));
    }

    std::vector<UInt8> newer = bytes;
    newer[11] = 3;
    XTestMemoryStream tooNew(newer, kLittleEndian);
    try
    {
        tooNew.ReadStreamInfo();
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), 1015u);
    }
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

TEST(StreamTest, DamagedLengthsFailWithoutAllocating)
{
    // A string that claims 4 GiB - 1 bytes in a stream of 8.
    XTestMemoryStream stream(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b', 'c', 'd'}), kLittleEndian);
    try
    {
        stream.ReadString();
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), UInt32(kErrDamagedStream));
    }

    XTestMemoryStream shortStream(Bytes({1, 2, 3}), kLittleEndian);
    try
    {
        shortStream.Read32();
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), UInt32(kErrEndOfStream));
    }
}

TEST_F(FileStreamTest, RoundTripsInBothOrdersThroughAFile)
{
    for (XByteOrder order : {kBigEndian, kLittleEndian})
    {
        {
            XFileStream writer(itsSpec, kCreate, 32, order);
            writer.WriteStreamInfo();
            WriteEveryNumber(writer);
            writer.WriteString(XString("volume"));
        }
        XFileStream reader(itsSpec, kReadOnly);
        reader.ReadStreamInfo();
        EXPECT_EQ(reader.GetByteOrder(), order);
        CheckEveryNumber(reader);
        EXPECT_EQ(reader.ReadString(), XString("volume"));
        EXPECT_EQ(reader.GetBytesLeft(), 0u);
    }
}

TEST_F(FileStreamTest, MissingFileRaisesAFileError)
{
    XFileSpec missing(XString("/nonexistent-folder/none"));
    try
    {
        XFileStream stream(missing, kReadOnly);
        FAIL();
    }
    catch (const XException & anError)
    {
        EXPECT_EQ(anError.GetErrorNumber(), UInt32(kErrFileIO));
    }
}

// Random writes, reads and seeks of every size, on a stream with a small buffer, agree with a
// plain byte vector: this walks every path between the window and the file.
TEST_F(FileStreamTest, BufferedStreamAgreesWithAModel)
{
    std::mt19937 random(12345);
    std::vector<UInt8> model;
    XFileStream stream(itsSpec, kCreate, 64);
    SInt64 position = 0;
    for (int step = 0; step < 3000; ++step)
    {
        UInt32 kind = random() % 4;
        UInt64 size = random() % 4 == 0 ? random() % 300 : random() % 9;
        if (kind == 0 || model.empty())
        {
            std::vector<UInt8> data(size);
            for (UInt8 & byte : data)
                byte = static_cast<UInt8>(random());
            stream.WriteBuffer8(data.data(), size);
            if (UInt64(position) + size > model.size())
                model.resize(std::size_t(position) + size);
            std::copy(data.begin(), data.end(), model.begin() + position);
            position += SInt64(size);
        }
        else if (kind == 1)
        {
            std::vector<UInt8> data(size);
            if (UInt64(position) + size <= model.size())
            {
                stream.ReadBuffer8(data.data(), size);
                ASSERT_TRUE(std::equal(data.begin(), data.end(), model.begin() + position))
                    << "step " << step;
                position += SInt64(size);
            }
            else
            {
                EXPECT_THROW(stream.ReadBuffer8(data.data(), size), XException);
                position = stream.GetPosition();
            }
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
TEST_F(FileStreamTest, LargeSkewedReadsReturnTheFileBytes)
{
    constexpr UInt64 kSize = (64ull << 20) + 3 * 4096 + 123; // more than one mapping window
    std::vector<UInt8> bytes(kSize);
    for (UInt64 i = 0; i < kSize; ++i)
        bytes[i] = static_cast<UInt8>((i * 2654435761ull) >> 13);
    XFile file(itsSpec, kCreate);
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
