// Volumes on streams: the chain of sections of each class, byte for byte; round trips of every
// class in both byte orders; legacy forms built by hand (the old volume word without a
// position, legacy images with their rectangle, the inverted padded mask, level words that the
// stream may or may not hold, RGB48 from three planes); the JPEG-compressed forms' frame; and
// damaged streams, which must raise XException and leak nothing.

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XRect.h"
#include "XStreamBytes.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"
#include "XVolumeTestSupport.h"

namespace
{
template <class T>
std::unique_ptr<T> ReadBack(std::vector<UInt8> aBytes, XByteOrder anOrder = kLittleEndian)
{
    XTestMemoryStream stream(std::move(aBytes), anOrder);
    return std::unique_ptr<T>(stream.ReadObjectAs<T>());
}

// The XVolume section of a 2 by 1 by 1 volume at (1, 2, 3) with calibrations 1, 2, 0.5, and
// the packed level up to its handle.
XStreamBytes & Head(XStreamBytes & aBytes, UInt32 anObjectWord)
{
    return aBytes.Words({anObjectWord, 520, 2, 1, 1, 1, 2, 3}).Doubles({1.0, 2.0, 0.5}).Words({114, 65638, 2, 0});
}

template <class V>
V Sample(const std::vector<typename V::XVoxel> & aVoxels)
{
    V volume = XMakeVolume<V>(X3DRect(1, 2, 3, 3, 3, 4), aVoxels);
    volume.SetYCalibration(2.0);
    volume.SetZCalibration(0.5);
    return volume;
}

UInt32 ErrorReading(std::vector<UInt8> aBytes)
{
    return ErrorOf([&] { ReadBack<XStorable>(std::move(aBytes)); });
}

// The rectangle object written after a volume in the tests of old forms, and its bytes: it reads
// back only when the volume took exactly its own bytes.
const XRect kFollower(10, 20, 13, 21);
const std::vector<UInt32> kFollowerWords = {34, 34, 10, 20, 21, 13};

template <class V>
std::unique_ptr<V> ReadWithFollower(XStreamBytes & aBytes, XByteOrder anOrder)
{
    aBytes.Words(kFollowerWords);
    XTestMemoryStream stream(aBytes.Get(), anOrder);
    std::unique_ptr<V> volume(stream.ReadObjectAs<V>());
    std::unique_ptr<XRect> follower(stream.ReadObjectAs<XRect>());
    EXPECT_TRUE(follower && *follower == kFollower);
    EXPECT_EQ(stream.GetBytesLeft(), 0u);
    return volume;
}

std::vector<UInt8> Samples(UInt16 aFirst, UInt16 aSecond, XByteOrder anOrder)
{
    XTestMemoryStream samples(anOrder);
    samples.Write16(aFirst);
    samples.Write16(aSecond);
    return samples.GetBytes();
}

// A float as the bytes of memory: legacy voxels are stored as they lie in memory.
std::vector<UInt8> FloatBytes(float aValue)
{
    std::vector<UInt8> bytes(sizeof aValue);
    std::memcpy(bytes.data(), &aValue, sizeof aValue);
    return bytes;
}

// The JPEG-compressed form after its class word: 7 by 2 by aDepth at (1, 2, 3), calibrations 1,
// 2 and 0.5, row voxels 7, and unless the volume is empty a body of 5 bytes with its length;
// then the rectangle object.
XStreamBytes & LossyBody(XStreamBytes & aBytes, UInt32 aDepth)
{
    aBytes.Words({7, 2, aDepth, 1, 2, 3}).Doubles({1.0, 2.0, 0.5}).Words({7});
    if (aDepth != 0)
        aBytes.Words({5}).Byte(0xFF).Byte(0xD8).Byte(0xFF).Byte(0xE0).Byte(0);
    return aBytes.Words(kFollowerWords);
}

// Reads legacy JPEG colour images as a reader of deferred voxels does: through the stream
// constructor, told to step over the JPEG body.
class XSkipJPEGStream : public XTestMemoryStream
{
public:
    using XTestMemoryStream::XTestMemoryStream;

protected:
    XStorable * ReadObject(XStorable::XOptions anOptions) override
    {
        const SInt64 start = GetPosition();
        const XVersion word = ReadVersion();
        if (word.GetClass() != XARGB32Volume::kLegacyLossyClassID)
        {
            SeekTo(start);
            return XTestMemoryStream::ReadObject(anOptions);
        }
        PushObjectRead(word, true);
        try
        {
            XStorable * volume = new XARGB32Volume(*this, true);
            PopObjectRead();
            return volume;
        }
        catch (...)
        {
            PopObjectRead();
            throw;
        }
    }
};
} // namespace

TEST(VolumeStream, EachClassWritesItsChainOfSections)
{
    XStreamBytes grey8;
    Head(grey8, 65641).Handle({7, 8}, true).Words({103, 65640, 65641});
    EXPECT_EQ(XStoredBytes(Sample<XGrey8Volume>({7, 8})), grey8.Get());

    XStreamBytes mask;
    Head(mask, 115).Handle({0, 255}, true).Words({103, 65640, 65641, 115});
    EXPECT_EQ(XStoredBytes(Sample<XMaskVolume>({0, 255})), mask.Get());

    XStreamBytes grey16;
    Head(grey16, 106).Handle({1, 2, 3, 4}, true).Words({103, 65640, 106});
    EXPECT_EQ(XStoredBytes(Sample<XGrey16Volume>({0x0201, 0x0403})), grey16.Get());

    XStreamBytes grey32;
    Head(grey32, 111).Handle({1, 0, 0, 0, 2, 0, 0, 0}, true).Words({103, 65640});
    EXPECT_EQ(XStoredBytes(Sample<XGrey32Volume>({1, 2})), grey32.Get());

    XStreamBytes real;
    Head(real, 65643).Handle({0, 0, 0x80, 0x3F, 0, 0, 0, 0xC0}, true).Words({103, 65643});
    EXPECT_EQ(XStoredBytes(Sample<XFPVolume>({1.0f, -2.0f})), real.Get());

    XStreamBytes argb;
    Head(argb, 65644).Handle({1, 2, 3, 4, 5, 6, 7, 8}, true).Words({65644});
    EXPECT_EQ(XStoredBytes(Sample<XARGB32Volume>({XARGB32Colour(1, 2, 3, 4), XARGB32Colour(5, 6, 7, 8)})), argb.Get());

    XStreamBytes bgra;
    Head(bgra, 113).Handle({4, 3, 2, 1, 8, 7, 6, 5}, true);
    EXPECT_EQ(XStoredBytes(Sample<XBGRA32Volume>({XBGRA32Colour(1, 2, 3, 4), XBGRA32Colour(5, 6, 7, 8)})), bgra.Get());

    XStreamBytes rgb48;
    Head(rgb48, 112).Handle({1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0}, true).Words({112});
    EXPECT_EQ(XStoredBytes(Sample<XRGB48Volume>({XRGB48Colour(1, 2, 3), XRGB48Colour(4, 5, 6)})), rgb48.Get());
}

TEST(VolumeStream, MultiByteVoxelsAreStoredInTheStreamsOrder)
{
    XStreamBytes grey16(kBigEndian);
    Head(grey16, 106).Handle({1, 2, 3, 4}, true).Words({103, 65640, 106});
    const auto volume = Sample<XGrey16Volume>({0x0102, 0x0304});
    EXPECT_EQ(XStoredBytes(volume, kBigEndian), grey16.Get());
    EXPECT_TRUE(*ReadBack<XGrey16Volume>(grey16.Get(), kBigEndian) == volume);
    // Byte voxels, colour bytes included, are never turned.
    XStreamBytes argb(kBigEndian);
    Head(argb, 65644).Handle({1, 2, 3, 4, 5, 6, 7, 8}, true).Words({65644});
    EXPECT_EQ(XStoredBytes(Sample<XARGB32Volume>({XARGB32Colour(1, 2, 3, 4), XARGB32Colour(5, 6, 7, 8)}), kBigEndian),
              argb.Get());
}

TEST(VolumeStream, EveryClassRoundTripsInBothOrders)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        auto check = [order](const XVolume & aVolume) {
            std::unique_ptr<XVolume> back(ReadBack<XVolume>(XStoredBytes(aVolume, order), order));
            ASSERT_TRUE(back);
            EXPECT_EQ(typeid(*back), typeid(aVolume));
            EXPECT_TRUE(*back == aVolume);
            EXPECT_EQ(back->GetYCalibration(), 2.0);
            EXPECT_EQ(back->GetZCalibration(), 0.5);
            EXPECT_EQ(back->HasPlaneRenderer(), aVolume.HasPlaneRenderer());
        };
        check(Sample<XGrey8Volume>({7, 8}));
        check(Sample<XMaskVolume>({0, 255}));
        check(Sample<XGrey16Volume>({0x0102, 65535}));
        check(Sample<XFPVolume>({-1.5f, 1e30f}));
        check(Sample<XARGB32Volume>({XARGB32Colour(1, 2, 3, 4), XARGB32Colour::kOrange}));
        check(Sample<XBGRA32Volume>({XBGRA32Colour(1, 2, 3, 4), XBGRA32Colour(9)}));
        check(Sample<XRGB48Volume>({XRGB48Colour(1, 2, 3), XRGB48Colour(65535, 256, 1)}));
        // The 32-bit grey volume has no registered word; its stream constructor reads it.
        const auto grey32 = Sample<XGrey32Volume>({0x01020304, 5});
        XTestMemoryStream stream(order);
        grey32.WriteStream2(stream, XStorable::kNormal);
        stream.SeekTo(0);
        XGrey32Volume back(stream);
        EXPECT_TRUE(back == grey32);
        // An empty volume.
        XGrey8Volume empty(X3DRect(4, 4, 4, 4, 4, 4));
        empty.SetYCalibration(2.0);
        empty.SetZCalibration(0.5);
        check(empty);
    }
}

TEST(VolumeStream, OldVolumeWordCarriesNoPosition)
{
    XStreamBytes bytes;
    bytes.Words({65641, 101, 2, 1, 1}).Doubles({1.0, 1.0, 1.0}).Words({114, 65638, 2, 0}).Handle({5, 6}, true);
    bytes.Words({103, 65640, 65641});
    const auto volume = ReadBack<XGrey8Volume>(bytes.Get());
    EXPECT_EQ(volume->GetBounds(), X3DRect(2, 1, 1));
    EXPECT_EQ(XGetVoxels(*volume), (std::vector<UInt8>{5, 6}));
}

TEST(VolumeStream, LegacyImagesWithTheirRectangle)
{
    // A legacy 8-bit image: bare rectangle (left, top, bottom, right), a flag, the voxels, and an
    // empty table object.
    XStreamBytes bare;
    bare.Words({4, 10, 20, 21, 13}).Byte(1).Handle({1, 2, 3}).Words({0});
    const auto grey = ReadBack<XGrey8Volume>(bare.Get());
    EXPECT_EQ(typeid(*grey), typeid(XGrey8Volume));
    EXPECT_TRUE(XVersion(4).IsA(XVersion(XVolume::kLegacyImageClassID)));
    EXPECT_EQ(grey->GetBounds(), X3DRect(10, 20, 0, 13, 21, 1));
    EXPECT_EQ(XGetVoxels(*grey), (std::vector<UInt8>{1, 2, 3}));
    // The same with the rectangle stored as an object.
    XStreamBytes object;
    object.Words({4, 34, 34, 10, 20, 21, 13}).Byte(1).Handle({1, 2, 3}).Words({0});
    EXPECT_TRUE(*ReadBack<XGrey8Volume>(object.Get()) == *grey);
}

TEST(VolumeStream, LegacyMaskWasStoredInvertedWithPaddedRows)
{
    // 3 by 2: rows padded to 4 bytes, every byte inverted.
    XStreamBytes bytes;
    bytes.Words({5, 0, 0, 2, 3}).Byte(1).Handle({0xFF, 0x00, 0x7F, 0xAA, 0x00, 0xFF, 0x80, 0xAA});
    const auto mask = ReadBack<XMaskVolume>(bytes.Get());
    EXPECT_EQ(mask->GetBounds(), X3DRect(3, 2, 1));
    EXPECT_EQ(XGetVoxels(*mask), (std::vector<UInt8>{0x00, 0xFF, 0x80, 0xFF, 0x00, 0x7F}));
    EXPECT_EQ(mask->GetRowVoxels(), 3u);
}

TEST(VolumeStream, LegacyLevelWordIsReadWhenTheStreamHoldsOne)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        for (bool withWord : {false, true})
        {
            auto word = [&](UInt32 aWord) { return withWord ? std::vector<UInt32>{aWord} : std::vector<UInt32>{}; };
            // 8-bit: rectangle 3 by 1, the voxels, the level word 104 version 1, a null table.
            XStreamBytes grey(order);
            grey.Words({4, 10, 20, 21, 13}).Byte(1).Handle({1, 2, 3}).Words(word(65640)).Words({0});
            EXPECT_EQ(XGetVoxels(*ReadWithFollower<XGrey8Volume>(grey, order)), (std::vector<UInt8>{1, 2, 3}));
            // Floating point: the level word 107 version 1, a null table.
            XStreamBytes real(order);
            real.Words({2, 0, 0, 1, 1}).Byte(1).Handle(FloatBytes(-2.5f)).Words(word(65643)).Words({0});
            EXPECT_EQ(XGetVoxels(*ReadWithFollower<XFPVolume>(real, order)), std::vector<float>{-2.5f});
            // 48-bit: rectangle 2 by 1, no voxels, the level word 112, a null handle, then red,
            // green and blue as planes of samples in the stream's order.
            XStreamBytes rgb48(order);
            rgb48.Words({6, 0, 0, 1, 2}).Byte(0).Words(word(112)).Words({0});
            rgb48.Handle(Samples(1, 2, order)).Handle(Samples(300, 400, order));
            rgb48.Handle(Samples(65535, 0, order));
            EXPECT_EQ(XGetVoxels(*ReadWithFollower<XRGB48Volume>(rgb48, order)),
                      (std::vector<XRGB48Colour>{XRGB48Colour(1, 300, 65535), XRGB48Colour(2, 400, 0)}));
            // The legacy JPEG colour image of no width carries no body, with or without its word.
            XStreamBytes empty(order);
            empty.Words({514, 0, 0, 1, 0}).Byte(0).Words(word(66050));
            EXPECT_EQ(ReadWithFollower<XARGB32Volume>(empty, order)->GetBounds(), X3DRect(0, 0, 0, 0, 1, 1));
        }
        // A plain colour image carries the word 108 after its voxels. Without it the word stands
        // for 514, the JPEG form, which cannot hold plain voxels.
        XStreamBytes colour(order);
        colour.Words({1, 0, 0, 1, 1}).Byte(1).Handle({9, 8, 7, 6});
        EXPECT_EQ(ErrorOf([&] { ReadBack<XARGB32Volume>(colour.Get(), order); }), UInt32(kErrDamagedStream));
        colour.Words({108});
        EXPECT_EQ(XGetVoxels(*ReadWithFollower<XARGB32Volume>(colour, order)),
                  std::vector<XARGB32Colour>{XARGB32Colour(9, 8, 7, 6)});
        // From version 2 the JPEG form has a length word before its body, so that a reader told
        // to skip the voxels finds the end.
        XStreamBytes lossy(order);
        lossy.Words({514, 0, 0, 1, 2}).Byte(0).Words({XVersion(514, 2).GetWord(), 3}).Byte(0xFF).Byte(0xD8).Byte(0xFF);
        lossy.Words(kFollowerWords);
        XSkipJPEGStream stream(lossy.Get(), order);
        std::unique_ptr<XARGB32Volume> skipped(stream.ReadObjectAs<XARGB32Volume>());
        EXPECT_EQ(XGetVoxels(*skipped), std::vector<XARGB32Colour>(2, XARGB32Colour(0, 0, 0, 0)));
        std::unique_ptr<XRect> follower(stream.ReadObjectAs<XRect>());
        EXPECT_TRUE(follower && *follower == kFollower);
    }
}

TEST(VolumeStream, LossyFormsArePreReadAsDesigned)
{
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        // The colour form of version 2 is read by the object reader: frame, zero voxels (the JPEG
        // body of 5 bytes stepped over), and the rectangle that follows.
        XStreamBytes colour(order);
        LossyBody(colour.Words({XVersion(12100, 2).GetWord()}), 1);
        XTestMemoryStream stream(colour.Get(), order);
        std::unique_ptr<XARGB32Volume> volume(stream.ReadObjectAs<XARGB32Volume>(XStorable::kSkipData));
        EXPECT_EQ(volume->GetBounds(), X3DRect(1, 2, 3, 8, 4, 4));
        EXPECT_EQ(volume->GetYCalibration(), 2.0);
        EXPECT_EQ(volume->GetZCalibration(), 0.5);
        EXPECT_EQ(XGetVoxels(*volume), std::vector<XARGB32Colour>(14, XARGB32Colour(0, 0, 0, 0)));
        std::unique_ptr<XRect> follower(stream.ReadObjectAs<XRect>());
        EXPECT_TRUE(follower && *follower == kFollower);

        // An empty volume ends after its row voxels, and nothing is decoded in a normal read.
        XStreamBytes empty(order);
        LossyBody(empty.Words({XVersion(12100, 2).GetWord()}), 0);
        XTestMemoryStream emptyStream(empty.Get(), order);
        EXPECT_EQ(std::unique_ptr<XARGB32Volume>(emptyStream.ReadObjectAs<XARGB32Volume>())->GetBounds(),
                  X3DRect(1, 2, 3, 8, 4, 3));
        EXPECT_TRUE(std::unique_ptr<XRect>(emptyStream.ReadObjectAs<XRect>()) != nullptr);

        // Kept as designed: the colour form of version 1 and the grey form 12101 go on to the
        // ordinary chain, which finds the width 7 where the volume's word should be.
        XStreamBytes oldColour(order);
        LossyBody(oldColour.Words({XVersion(12100, 1).GetWord()}), 1);
        EXPECT_EQ(ErrorOf([&] { ReadBack<XStorable>(oldColour.Get(), order); }), 1005u);
        XStreamBytes grey(order);
        LossyBody(grey.Words({XVersion(12101, 1).GetWord()}), 1);
        EXPECT_EQ(ErrorOf([&] { ReadBack<XStorable>(grey.Get(), order); }), 1005u);

        // Called directly: the grey volume takes the colour word 12100 and not its own; the
        // colour volume looks at the word of the object being read, and there is none.
        XStreamBytes body(order);
        LossyBody(body, 1);
        XTestMemoryStream direct(body.Get(), order);
        XGrey8Volume ownWord;
        EXPECT_TRUE(ownWord.PreReadStream(direct, XVersion(12101, 1), XStorable::kSkipData));
        XARGB32Volume noObject;
        EXPECT_TRUE(noObject.PreReadStream(direct, XVersion(12100, 2), XStorable::kSkipData));
        EXPECT_EQ(direct.GetPosition(), 0);
        XGrey8Volume colourWord;
        EXPECT_FALSE(colourWord.PreReadStream(direct, XVersion(12100, 1), XStorable::kSkipData));
        EXPECT_EQ(colourWord.GetBounds(), X3DRect(1, 2, 3, 8, 4, 4));
        EXPECT_EQ(XGetVoxels(colourWord), std::vector<UInt8>(14, 0));
        follower.reset(direct.ReadObjectAs<XRect>());
        EXPECT_TRUE(follower && *follower == kFollower);

        // A body longer than the stream.
        XStreamBytes cut(order);
        cut.Words({7, 2, 1, 1, 2, 3}).Doubles({1.0, 2.0, 0.5}).Words({7, 1000});
        XTestMemoryStream cutStream(cut.Get(), order);
        EXPECT_EQ(ErrorOf([&] { XGrey8Volume().PreReadStream(cutStream, XVersion(12100, 1), XStorable::kSkipData); }),
                  UInt32(kErrDamagedStream));
    }
}

TEST(VolumeStream, FormatWordOtherThanZeroLeavesTheVolumeWithoutVoxels)
{
    XStreamBytes bytes;
    bytes.Words({65641, 520, 2, 1, 1, 0, 0, 0}).Doubles({1.0, 1.0, 1.0}).Words({114, 65638, 2, 1, 103, 65640, 65641});
    const auto volume = ReadBack<XGrey8Volume>(bytes.Get());
    EXPECT_EQ(volume->GetDataSize(), 0u);
    // Voxels that are not there cannot be locked.
    EXPECT_EQ(ErrorOf([&] { XLock lock(*volume, kLockRead); }), UInt32(kErrDamagedStream));
}

TEST(VolumeStream, DamagedStreamsRaiseExceptions)
{
    XStreamBytes good;
    Head(good, 65641).Handle({7, 8}, true).Words({103, 65640, 65641});
    const std::vector<UInt8> bytes = good.Get();
    ASSERT_EQ(ErrorReading(bytes), 0u);
    // Cut anywhere.
    for (std::size_t size : {std::size_t(3), std::size_t(20), std::size_t(60), std::size_t(90), bytes.size() - 1})
        EXPECT_NE(ErrorReading(std::vector<UInt8>(bytes.begin(), bytes.begin() + SInt64(size))), 0u) << size;
    auto patched = [&](std::size_t aWord, UInt32 aValue) {
        std::vector<UInt8> copy = bytes;
        std::memcpy(copy.data() + 4 * aWord, &aValue, 4);
        return copy;
    };
    // The packed level's word of another class, then of a newer version.
    EXPECT_EQ(ErrorReading(patched(14, 34)), 1005u);
    EXPECT_EQ(ErrorReading(patched(15, 131174)), 1015u);
    EXPECT_EQ(ErrorReading(patched(1, 65536 + 520)), 1015u);
    // An absurd extent, an empty volume of absurd rows, a box that wraps round, and rows shorter
    // than the width.
    EXPECT_EQ(ErrorReading(patched(2, 0x7FFFFFFF)), UInt32(kErrDamagedStream));
    std::vector<UInt8> manyRows = patched(2, 0);
    std::memcpy(manyRows.data() + 12, "\xff\xff\xff\x7f\xff\xff\xff\x7f", 8);
    EXPECT_EQ(ErrorReading(manyRows), UInt32(kErrDamagedStream));
    EXPECT_EQ(ErrorReading(patched(5, 0x7FFFFFFF)), UInt32(kErrDamagedStream));
    EXPECT_EQ(ErrorReading(patched(16, 1)), UInt32(kErrDamagedStream));
    // A handle that claims more bytes than the stream holds.
    EXPECT_NE(ErrorReading(patched(20, 1000000)), 0u);
    // The memory handle replaced by a rectangle object.
    XStreamBytes wrongObject;
    Head(wrongObject, 65641).Words({34, 34, 0, 0, 1, 1, 103, 65640, 65641});
    EXPECT_EQ(ErrorReading(wrongObject.Get()), 1005u);
}

TEST(VolumeStream, RowsWithPadVoxelsAreWalkedAsTheirOperationsSay)
{
    // A 2 by 2 grey volume whose rows hold 3 voxels: voxels 1 2 [9] / 3 4 [9].
    XStreamBytes bytes;
    bytes.Words({65641, 520, 2, 2, 1, 0, 0, 0}).Doubles({1.0, 1.0, 1.0}).Words({114, 65638, 3, 0});
    bytes.Handle({1, 2, 9, 3, 4, 9}, true).Words({103, 65640, 65641});
    auto volume = ReadBack<XGrey8Volume>(bytes.Get());
    EXPECT_EQ(volume->GetRowVoxels(), 3u);
    EXPECT_EQ(volume->GetPadVoxels(), 1u);
    EXPECT_EQ(volume->GetVolumeVoxels(), 6u);
    EXPECT_EQ(XGetVoxels(*volume), (std::vector<UInt8>{1, 2, 3, 4}));
    // Statistics skip the pads.
    EXPECT_EQ(volume->FindMax(), 4);
    EXPECT_EQ(volume->FindSum(), 10.0);
    // The whole-volume operators and the plain fill run over the pads too.
    *volume += 1;
    XLock lock(*volume, kLockRead);
    const UInt8 * base = volume->GetBaseVoxelPtr();
    EXPECT_EQ(std::vector<UInt8>(base, base + 6), (std::vector<UInt8>{2, 3, 10, 4, 5, 10}));
}
