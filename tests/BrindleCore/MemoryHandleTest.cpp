// Memory handles: value semantics and copy-on-write under each lock mode, sizes, contents,
// swap on lock, allocation limits, the stream form (raw and deflated, damaged and absurd
// headers, skipped data), the header probe, and the heap image.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "XByteSwap.h"

#include "XClassRegistry.h"
#include "XException.h"
#include "XFileStream.h"
#include "XLock.h"
#include "XMemoryHandle.h"
#include "XMemoryManager.h"
#include "XTestMemoryStream.h"
#include "XTestSupport.h"

namespace
{
// A handle holding aSize bytes of a pattern that depends on aSeed.
XMemoryHandle Pattern(UInt64 aSize, UInt8 aSeed = 1)
{
    XMemoryHandle handle(aSize);
    XLock lock(handle, kLockWrite);
    auto * bytes = static_cast<UInt8 *>(handle.GetData());
    for (UInt64 i = 0; i < aSize; ++i)
        bytes[i] = UInt8(i * 7 + aSeed);
    return handle;
}

const UInt8 * BytesOf(const XMemoryHandle & aHandle)
{
    return static_cast<const UInt8 *>(aHandle.GetData());
}

// The bytes of one handle written as an object.
std::vector<UInt8> Written(const XMemoryHandle & aHandle,
                           XByteOrder anOrder = GetByteOrderFromPlatform())
{
    XTestMemoryStream stream(anOrder);
    stream.WriteObject(aHandle);
    return stream.GetBytes();
}

XMemoryHandle ReadBack(std::vector<UInt8> aBytes, XStorable::XOptions anOptions = 0,
                       XByteOrder anOrder = GetByteOrderFromPlatform())
{
    XMemoryHandle::RegisterClass();
    XTestMemoryStream stream(std::move(aBytes), anOrder);
    std::unique_ptr<XMemoryHandle> handle(stream.ReadObjectAs<XMemoryHandle>(anOptions));
    if (!handle)
        throw std::runtime_error("null object");
    return *handle;
}

// Puts a 64-bit little-endian number at anOffset (streams in tests use the platform's order,
// which is little-endian on this port's targets).
void Poke64(std::vector<UInt8> & aBytes, std::size_t anOffset, UInt64 aValue)
{
    std::memcpy(aBytes.data() + anOffset, &aValue, 8);
}
void Poke32(std::vector<UInt8> & aBytes, std::size_t anOffset, UInt32 aValue)
{
    std::memcpy(aBytes.data() + anOffset, &aValue, 4);
}

// Offsets in a handle written as an object: object word, level word, size, compression,
// stored count, data.
constexpr std::size_t kSizeAt = 8;
constexpr std::size_t kTypeAt = 16;
constexpr std::size_t kStoredAt = 20;
constexpr std::size_t kDataAt = 28;
} // namespace

TEST(MemoryHandleTest, NewHandlesAreZeroAlignedAndPadded)
{
    for (UInt64 size : {UInt64(1), UInt64(63), UInt64(64), UInt64(1000), UInt64(5) << 20})
    {
        XMemoryHandle handle(size);
        EXPECT_EQ(handle.GetDataSize(), size);
        EXPECT_GE(handle.GetPaddedSize(), size);
        EXPECT_EQ(handle.GetPaddedSize() % 64, 0u);
        EXPECT_GE(handle.GetAddressSpaceMetric(), size);
        XLock lock(handle, kLockRead);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handle.GetData()) % 64, 0u);
        const UInt8 * bytes = BytesOf(handle);
        EXPECT_TRUE(std::all_of(bytes, bytes + size, [](UInt8 aByte) { return aByte == 0; }));
    }
    XMemoryHandle empty;
    EXPECT_EQ(empty.GetDataSize(), 0u);
    EXPECT_EQ(empty.GetPaddedSize(), 0u);
    EXPECT_EQ(empty.GetData(), nullptr);
    XLock lock(empty, kLockReadWrite); // locking nothing is fine
}

TEST(MemoryHandleTest, CopyOnWriteUnderEachMode)
{
    XMemoryHandle original = Pattern(256);
    const void * block = nullptr;
    {
        XLock lock(original, kLockRead);
        block = original.GetData();
    }

    // Mode 2 keeps sharing.
    XMemoryHandle reader(original);
    EXPECT_TRUE(reader.IsShared());
    {
        XLock lock(reader, kLockRead);
        EXPECT_EQ(reader.GetData(), block);
    }
    EXPECT_TRUE(original.IsShared());

    // Mode 1 gets a block of its own with the contents.
    XMemoryHandle editor(original);
    {
        XLock lock(editor, kLockReadWrite);
        EXPECT_NE(editor.GetData(), block);
        EXPECT_EQ(std::memcmp(editor.GetData(), block, 256), 0);
        static_cast<UInt8 *>(editor.GetData())[10] = 0xFF;
    }
    EXPECT_FALSE(editor.IsShared());
    EXPECT_EQ(editor.GetByte(10), 0xFF);
    EXPECT_EQ(original.GetByte(10), UInt8(10 * 7 + 1));

    // Mode 3 gets a block of its own without them.
    XMemoryHandle writer(original);
    {
        XLock lock(writer, kLockWrite);
        EXPECT_NE(writer.GetData(), block);
        std::memset(writer.GetData(), 0xAB, 256);
    }
    EXPECT_EQ(writer.GetByte(0), 0xAB);
    EXPECT_EQ(original.GetByte(0), 1);
    EXPECT_EQ(reader.GetByte(0), 1);

    // The original, shared with reader only now, unshares in its turn.
    original.SetByte(0, 77);
    EXPECT_EQ(reader.GetByte(0), 1);
    EXPECT_FALSE(reader.IsShared());

    // A sole owner writes in place.
    {
        XLock lock(editor, kLockRead);
        block = editor.GetData();
    }
    XLock lock(editor, kLockReadWrite);
    EXPECT_EQ(editor.GetData(), block);
}

TEST(MemoryHandleTest, CopiesMadeDuringAWriteAreIndependent)
{
    XMemoryHandle original = Pattern(64);
    XMemoryHandle assigned(8);
    {
        XLock lock(original, kLockReadWrite);
        static_cast<UInt8 *>(original.GetData())[0] = 1;
        XMemoryHandle copy(original);
        assigned = original;
        EXPECT_FALSE(copy.IsShared());
        EXPECT_FALSE(assigned.IsShared());
        static_cast<UInt8 *>(original.GetData())[0] = 2;
        EXPECT_EQ(copy.GetByte(0), 1);
        EXPECT_EQ(copy.GetByte(63), UInt8(63 * 7 + 1));
    }
    EXPECT_EQ(assigned.GetByte(0), 1);
    EXPECT_EQ(original.GetByte(0), 2);

    // The same when the writer is another thread, copied while it holds the lock.
    std::mutex mutex;
    std::condition_variable condition;
    int step = 0;
    auto waitFor = [&](int aStep) {
        std::unique_lock<std::mutex> guard(mutex);
        return condition.wait_for(guard, std::chrono::seconds(20), [&] { return step >= aStep; });
    };
    auto advance = [&](int aStep) {
        std::lock_guard<std::mutex> guard(mutex);
        step = aStep;
        condition.notify_all();
    };
    std::thread writer([&] {
        XLock lock(original, kLockReadWrite);
        static_cast<UInt8 *>(original.GetData())[0] = 3;
        advance(1);
        waitFor(2);
        static_cast<UInt8 *>(original.GetData())[0] = 4;
    });
    ASSERT_TRUE(waitFor(1));
    XMemoryHandle snapshot(original);
    advance(2);
    writer.join();
    EXPECT_EQ(snapshot.GetByte(0), 3);
    EXPECT_EQ(original.GetByte(0), 4);

    // Assigning into a handle that is being written does not share either.
    XMemoryHandle source = Pattern(16, 50);
    XMemoryHandle target(16);
    {
        XLock lock(target, kLockReadWrite);
        target = source;
        EXPECT_FALSE(source.IsShared());
        static_cast<UInt8 *>(target.GetData())[0] = 0;
    }
    EXPECT_EQ(source.GetByte(0), 50);
    EXPECT_EQ(target.GetByte(0), 0);
    EXPECT_EQ(target.GetByte(1), 57);
}

TEST(MemoryHandleTest, MoveLeavesTheSourceEmpty)
{
    XMemoryHandle source = Pattern(32);
    XMemoryHandle moved(std::move(source));
    EXPECT_EQ(source.GetDataSize(), 0u); // NOLINT: checking the moved-from state
    EXPECT_FALSE(source.HasBlock());
    EXPECT_EQ(moved.GetByte(31), UInt8(31 * 7 + 1));
    XMemoryHandle target(4);
    target = std::move(moved);
    EXPECT_EQ(target.GetDataSize(), 32u);
    EXPECT_EQ(moved.GetDataSize(), 0u); // NOLINT
}

TEST(MemoryHandleTest, ResizeReserveEmpty)
{
    XMemoryHandle handle = Pattern(100);
    const UInt64 padded = handle.GetPaddedSize();
    ASSERT_GE(padded, 128u);
    const void * block = nullptr;
    {
        XLock lock(handle, kLockRead);
        block = handle.GetData();
    }
    handle.Resize(40);
    EXPECT_EQ(handle.GetDataSize(), 40u);
    // Growing within the padded size keeps the block; the new bytes are zero.
    handle.Resize(padded);
    {
        XLock lock(handle, kLockRead);
        EXPECT_EQ(handle.GetData(), block);
        EXPECT_EQ(BytesOf(handle)[39], UInt8(39 * 7 + 1));
        for (UInt64 i = 40; i < padded; ++i)
            ASSERT_EQ(BytesOf(handle)[i], 0) << i;
    }
    // Growing beyond it moves the bytes.
    handle.Resize(10000);
    EXPECT_EQ(handle.GetByte(0), 1);
    EXPECT_EQ(handle.GetByte(39), UInt8(39 * 7 + 1));
    EXPECT_EQ(handle.GetByte(9999), 0);

    // A shared handle that grows leaves its partner alone.
    XMemoryHandle partner(handle);
    handle.Resize(20000);
    EXPECT_EQ(partner.GetDataSize(), 10000u);
    EXPECT_FALSE(partner.IsShared());

    handle.Reserve(1 << 20);
    EXPECT_GE(handle.GetPaddedSize(), UInt64(1) << 20);
    EXPECT_EQ(handle.GetDataSize(), 20000u);
    EXPECT_EQ(handle.GetByte(39), UInt8(39 * 7 + 1));

    // Large blocks grow by moving pages and keep their bytes.
    XMemoryHandle large = Pattern(5 << 20, 3);
    large.Resize(13 << 20);
    EXPECT_EQ(large.GetByte((5 << 20) - 1), UInt8(((5 << 20) - 1) * 7 + 3));
    EXPECT_EQ(large.GetByte(5 << 20), 0);
    EXPECT_EQ(large.GetByte((13 << 20) - 1), 0);
    large.Resize(100); // far below a quarter: a small block replaces the large one
    EXPECT_LT(large.GetPaddedSize(), UInt64(1) << 20);
    EXPECT_EQ(large.GetByte(99), UInt8(99 * 7 + 3));

    handle.Empty();
    EXPECT_EQ(handle.GetDataSize(), 0u);
    EXPECT_FALSE(handle.HasBlock());
    handle.Resize(3);
    EXPECT_EQ(handle.GetByte(2), 0);
}

TEST(MemoryHandleTest, ContentOperations)
{
    XMemoryHandle handle(16);
    handle.Clear(0x5A);
    EXPECT_EQ(handle.GetByte(15), 0x5A);
    const UInt8 source[4] = {1, 2, 3, 4};
    handle.CopyDataFrom(source, 12, 4);
    UInt8 out[6] = {};
    handle.CopyDataTo(out, 10, 6);
    const UInt8 expected[6] = {0x5A, 0x5A, 1, 2, 3, 4};
    EXPECT_EQ(std::memcmp(out, expected, 6), 0);
    handle.SetByte(0, 9);
    EXPECT_EQ(handle.GetByte(0), 9);

    EXPECT_EQ(ErrorOf([&] { handle.CopyDataTo(out, 12, 5); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { handle.CopyDataFrom(source, ~0ull, 2); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { handle.GetByte(16); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { handle.SetByte(16, 0); }), kErrBadArgument);

    XMemoryHandle clone = handle.CloneMemory();
    EXPECT_FALSE(clone.IsShared());
    EXPECT_TRUE(clone == handle);
    clone.SetByte(1, 0);
    EXPECT_TRUE(clone != handle);
    XMemoryHandle shorter(15);
    EXPECT_FALSE(shorter == handle);
    EXPECT_TRUE(XMemoryHandle() == XMemoryHandle());
}

TEST(MemoryHandleTest, SwapOnLockTurnsTheBytesOnce)
{
    XMemoryHandle handle(8);
    const UInt8 bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    handle.CopyDataFrom(bytes, 0, 8);
    XMemoryHandle partner(handle);

    handle.SetSwapOnLock(kSwap16);
    EXPECT_EQ(handle.GetSwapOnLock(), kSwap16);
    {
        XLock lock(handle, kLockRead); // any mode turns them
        const UInt8 swapped[8] = {2, 1, 4, 3, 6, 5, 8, 7};
        EXPECT_EQ(std::memcmp(handle.GetData(), swapped, 8), 0);
    }
    EXPECT_EQ(handle.GetSwapOnLock(), kSwapNone);
    EXPECT_EQ(handle.GetByte(0), 2); // not turned again
    EXPECT_EQ(partner.GetByte(0), 1); // the shared block was not touched

    partner.SetSwapOnLock(kSwap32);
    XMemoryHandle carried(partner); // a copy takes the pending swap along
    EXPECT_EQ(carried.GetSwapOnLock(), kSwap32);
    const UInt8 swapped32[8] = {4, 3, 2, 1, 8, 7, 6, 5};
    UInt8 out[8];
    partner.CopyDataTo(out, 0, 8);
    EXPECT_EQ(std::memcmp(out, swapped32, 8), 0);
    carried.CopyDataTo(out, 0, 8);
    EXPECT_EQ(std::memcmp(out, swapped32, 8), 0);

    // Readers on several threads at the first lock: the bytes turn exactly once.
    XMemoryHandle shared = Pattern(4096);
    XMemoryHandle expect = shared.CloneMemory();
    {
        XLock lock(expect, kLockReadWrite);
        SwapBuffer16(expect.GetData(), 2048);
    }
    shared.SetSwapOnLock(kSwap16);
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            XLock lock(shared, kLockRead);
            XLock other(expect, kLockRead);
            wrong += std::memcmp(shared.GetData(), expect.GetData(), 4096) != 0;
        });
    for (std::thread & thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

TEST(MemoryHandleTest, AbsurdSizesFailWithoutAllocating)
{
    EXPECT_EQ(ErrorOf([] { XMemoryHandle handle(UInt64(1) << 60); }), kErrOutOfMemory);
    XMemoryHandle handle(8);
    EXPECT_EQ(ErrorOf([&] { handle.Resize(UInt64(1) << 62); }), kErrOutOfMemory);
    EXPECT_EQ(ErrorOf([&] { handle.Reserve(~0ull); }), kErrOutOfMemory);
    EXPECT_EQ(handle.GetDataSize(), 8u);
    EXPECT_EQ(ErrorOf([] { XMemoryManager::GetManager().Allocate(UInt64(1) << 50, false); }),
              kErrOutOfMemory);
}

TEST(MemoryHandleTest, StreamRoundTripInBothCompressionsAndOrders)
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle::RegisterClass(); // a second call changes nothing
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(33)), XString("Memory Handle"));
    EXPECT_TRUE(XVersion(33).IsA(XVersion(48)));

    XMemoryHandle original = Pattern(100000);
    for (XByteOrder order : {kLittleEndian, kBigEndian})
    {
        for (XMemoryHandle::XCompressionType type : {XMemoryHandle::kNone, XMemoryHandle::kDeflate})
        {
            original.SetCompression(type);
            std::vector<UInt8> bytes = Written(original, order);
            if (type == XMemoryHandle::kNone)
            {
                EXPECT_EQ(bytes.size(), 4 + original.GetStreamUsage());
                // The data goes out as it is in memory, whatever the stream's order.
                EXPECT_EQ(bytes[kDataAt + 5], UInt8(5 * 7 + 1));
                EXPECT_EQ(bytes[kDataAt + 99999], UInt8(99999 * 7 + 1));
            }
            else
                EXPECT_LT(bytes.size(), 2000u); // the pattern repeats every 256 bytes
            XMemoryHandle back = ReadBack(bytes, 0, order);
            EXPECT_TRUE(back == original);
            EXPECT_EQ(back.GetCompression(), type);
        }
    }
    // Empty handles, both ways.
    for (XMemoryHandle::XCompressionType type : {XMemoryHandle::kNone, XMemoryHandle::kDeflate})
    {
        XMemoryHandle empty;
        empty.SetCompression(type);
        XMemoryHandle back = ReadBack(Written(empty));
        EXPECT_EQ(back.GetDataSize(), 0u);
    }
    // A big-endian header reads back in a big-endian stream.
    XTestMemoryStream big(kBigEndian);
    big.WriteObject(XMemoryHandle(3));
    const std::vector<UInt8> & bytes = big.GetBytes();
    EXPECT_EQ(bytes[3], 33); // class word, most significant byte first
    EXPECT_EQ(bytes[kSizeAt + 7], 3);
    EXPECT_EQ(ErrorOf([] { XMemoryHandle().SetCompression(XMemoryHandle::XCompressionType(2)); }),
              kErrBadArgument);
}

TEST(MemoryHandleTest, LargeHandleThroughAFile)
{
    XMemoryHandle::RegisterClass();
    XFileSpec spec = XFileSpec::MakeTemporary("memory-handle");
    XMemoryHandle original = Pattern(6 << 20, 9);
    {
        XFileStream stream(spec, kCreate);
        stream.WriteObject(original);
        stream.Flush();
    }
    EXPECT_EQ(spec.GetFileSize(), 4 + original.GetStreamUsage());
    {
        XFileStream stream(spec, kReadOnly);
        std::unique_ptr<XMemoryHandle> back(stream.ReadObjectAs<XMemoryHandle>());
        ASSERT_TRUE(back);
        EXPECT_TRUE(*back == original);
    }
    spec.Delete();
}

TEST(MemoryHandleTest, SkippedDataKeepsTheSizeAndComesLater)
{
    XMemoryHandle original = Pattern(500);
    for (XMemoryHandle::XCompressionType type : {XMemoryHandle::kNone, XMemoryHandle::kDeflate})
    {
        original.SetCompression(type);
        XTestMemoryStream stream;
        stream.WriteObject(original);
        stream.Write32(0xC0FFEE); // what follows the handle
        XMemoryHandle::RegisterClass();
        stream.SeekTo(0);
        std::unique_ptr<XMemoryHandle> skipped(
            stream.ReadObjectAs<XMemoryHandle>(XStorable::kSkipData));
        EXPECT_EQ(stream.Read32(), 0xC0FFEEu);
        EXPECT_EQ(skipped->GetDataSize(), 500u);
        EXPECT_FALSE(skipped->HasBlock());

        // The stream constructor's flag does the same.
        stream.SeekTo(4);
        XMemoryHandle direct(stream, true);
        EXPECT_EQ(direct.GetDataSize(), 500u);
        EXPECT_EQ(stream.Read32(), 0xC0FFEEu);

        // Without a fetcher, bytes that never came read as zero.
        EXPECT_EQ(direct.GetByte(499), 0);
    }
}

TEST(MemoryHandleTest, DamagedStreamsRaise)
{
    XMemoryHandle original = Pattern(300);
    const std::vector<UInt8> raw = Written(original);
    original.SetCompression(XMemoryHandle::kDeflate);
    const std::vector<UInt8> deflated = Written(original);

    auto fails = [](std::vector<UInt8> aBytes) {
        return ErrorOf([&] { ReadBack(std::move(aBytes)); });
    };
    // Truncated anywhere.
    for (std::size_t cut : {std::size_t(6), kSizeAt + 3, kDataAt, kDataAt + 150, raw.size() - 1})
        EXPECT_NE(fails(std::vector<UInt8>(raw.begin(), raw.begin() + std::ptrdiff_t(cut))), 0u)
            << cut;
    for (std::size_t cut : {kDataAt + 1, deflated.size() - 1})
        EXPECT_EQ(
            fails(std::vector<UInt8>(deflated.begin(), deflated.begin() + std::ptrdiff_t(cut))),
            kErrDamagedStream)
            << cut;

    std::vector<UInt8> bytes = raw;
    Poke64(bytes, kSizeAt, UInt64(1) << 60);
    Poke64(bytes, kStoredAt, UInt64(1) << 60);
    EXPECT_EQ(fails(bytes), kErrDamagedStream); // fast: no such allocation is tried

    bytes = deflated;
    Poke64(bytes, kSizeAt, UInt64(1) << 60);
    EXPECT_EQ(fails(bytes), kErrDamagedStream);

    bytes = deflated;
    Poke64(bytes, kSizeAt, 301); // the data inflates to 300
    EXPECT_EQ(fails(bytes), kErrDamagedStream);
    Poke64(bytes, kSizeAt, 299);
    EXPECT_EQ(fails(bytes), kErrDamagedStream);

    bytes = deflated;
    bytes[kDataAt + 4] ^= 0x55;
    bytes[kDataAt + 5] ^= 0xAA;
    EXPECT_EQ(fails(bytes), kErrDamagedStream);

    bytes = raw;
    Poke32(bytes, kTypeAt, 7);
    EXPECT_EQ(fails(bytes), kErrDamagedStream);
    bytes = raw;
    Poke64(bytes, kSizeAt, ~0ull); // negative
    EXPECT_EQ(fails(bytes), kErrDamagedStream);
    bytes = raw;
    Poke64(bytes, kStoredAt, 299); // raw data must be stored as it is
    EXPECT_EQ(fails(bytes), kErrDamagedStream);

    bytes = deflated; // bytes after the end of the zlib stream, inside the stored count
    bytes.insert(bytes.end(), {1, 2, 3});
    Poke64(bytes, kStoredAt, deflated.size() - kDataAt + 3);
    EXPECT_EQ(fails(bytes), kErrDamagedStream);

    bytes = raw;
    Poke32(bytes, 4, 34); // another class's word at the handle's level
    EXPECT_EQ(fails(bytes), kErrWrongClass);
    bytes = raw;
    Poke32(bytes, 4, XVersion(33, 1).GetWord());
    EXPECT_EQ(fails(bytes), kErrStreamTooNew);
}

TEST(MemoryHandleTest, HeaderInfoFromTheStream)
{
    XMemoryHandle original = Pattern(1000);
    original.SetCompression(XMemoryHandle::kDeflate);
    XTestMemoryStream stream;
    stream.Write32(0xABCDEF); // something before the object
    stream.WriteObject(original);
    const SInt64 end = stream.GetPosition();

    SInt64 size = 0;
    SInt64 offset = 0;
    SInt64 stored = 0;
    XMemoryHandle::XCompressionType type = XMemoryHandle::kNone;
    stream.SeekTo(4);
    XMemoryHandle::GetHandleInfoFromStream(stream, size, type, offset, stored, false);
    EXPECT_EQ(size, 1000);
    EXPECT_EQ(type, XMemoryHandle::kDeflate);
    EXPECT_EQ(offset, 4 + SInt64(kDataAt));
    EXPECT_EQ(stream.GetPosition(), offset);
    EXPECT_EQ(offset + stored, end);

    stream.SeekTo(4);
    EXPECT_EQ(stream.ReadVersion().GetClass(), 33u);
    XMemoryHandle::GetHandleInfoFromStream(stream, size, type, offset, true);
    EXPECT_EQ(offset, 4 + SInt64(kDataAt));

    stream.SeekTo(0);
    EXPECT_EQ(ErrorOf([&] {
                  XMemoryHandle::GetHandleInfoFromStream(stream, size, type, offset, false);
              }),
              kErrWrongClass);
}

TEST(MemoryHandleTest, HeapImageOfAHandle)
{
    XMemoryHandle original = Pattern(100);
    XMemoryHandle partner(original);
    XMemoryManager::GetManager().MakeHeapImage(original, 150);
    EXPECT_EQ(original.GetDataSize(), 150u);
    EXPECT_FALSE(original.IsShared());
    EXPECT_EQ(original.GetByte(99), UInt8(99 * 7 + 1));
    EXPECT_EQ(original.GetByte(149), 0);
    XMemoryManager::GetManager().MakeHeapImage(partner, 10);
    EXPECT_EQ(partner.GetDataSize(), 10u);
    EXPECT_EQ(partner.GetByte(9), UInt8(9 * 7 + 1));
}

TEST(MemoryHandleTest, FreedLargeBlocksAreReused)
{
    XMemoryManager & manager = XMemoryManager::GetManager();
    manager.TrimCache();
    const UInt64 inUse = manager.GetBytesInUse();
    {
        XMemoryHandle big(8 << 20);
        EXPECT_GE(manager.GetBytesInUse(), inUse + (8 << 20));
    }
    EXPECT_EQ(manager.GetBytesInUse(), inUse);
    EXPECT_GE(manager.GetCachedBytes(), UInt64(8) << 20);
    {
        XMemoryHandle again(8 << 20); // from the cache: still zero-filled
        EXPECT_EQ(again.GetByte(12345), 0);
        EXPECT_EQ(manager.GetCachedBytes(), 0u);
    }
    manager.TrimCache();
    EXPECT_EQ(manager.GetCachedBytes(), 0u);
}
