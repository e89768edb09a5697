// Memory handles: value semantics and copy-on-write under each lock mode, sizes, contents,
// swap on lock, allocation limits, the stream form (raw and deflated, damaged and absurd
// headers, skipped data), the header probe, the heap image, handles over mapped files, and
// deflate to and from handles.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "XByteSwap.h"
#include "XClassRegistry.h"
#include "XFile.h"
#include "XFoundationTestSupport.h"
#include "XLock.h"
#include "XMappedFileMemoryHandle.h"
#include "XMemoryHandle.h"
#include "XMemoryManager.h"
#include "XTestMemoryStream.h"
#include "XZCompressor.h"
#include "XZDecompressor.h"

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

const void * BlockOf(const XMemoryHandle & aHandle)
{
    XLock lock(aHandle, kLockRead);
    return aHandle.GetData();
}

UInt8 * WritableBytes(XMemoryHandle & aHandle)
{
    return static_cast<UInt8 *>(aHandle.GetData());
}

// The bytes of one handle written as an object.
std::vector<UInt8> Written(const XMemoryHandle & aHandle, XByteOrder anOrder = GetByteOrderFromPlatform())
{
    XTestMemoryStream stream(anOrder);
    stream.WriteObject(aHandle);
    return stream.GetBytes();
}

XMemoryHandle ReadBack(std::vector<UInt8> aBytes, XByteOrder anOrder = GetByteOrderFromPlatform())
{
    XMemoryHandle::RegisterClass();
    XTestMemoryStream stream(std::move(aBytes), anOrder);
    std::unique_ptr<XMemoryHandle> handle(stream.ReadObjectAs<XMemoryHandle>());
    if (!handle)
        throw std::runtime_error("null object");
    return *handle;
}

// A copy of aBytes with aWidth bytes of aValue, in the platform's (little-endian) order, at anOffset.
std::vector<UInt8> Poked(std::vector<UInt8> aBytes, std::size_t anOffset, UInt64 aValue, std::size_t aWidth = 8)
{
    std::memcpy(aBytes.data() + anOffset, &aValue, aWidth);
    return aBytes;
}

// Offsets in a handle written as an object: object word, level word, size, compression,
// stored count, data.
constexpr std::size_t kSizeAt = 8;
constexpr std::size_t kTypeAt = 16;
constexpr std::size_t kStoredAt = 20;
constexpr std::size_t kDataAt = 28;

// A file of kFileSize known bytes for the mapped handles.
constexpr UInt64 kFileSize = 3 * 4096 + 500;
UInt8 FileByte(UInt64 anOffset)
{
    return UInt8(anOffset * 13 + anOffset / 256);
}
XFileSpec MakeFile(const XTemporaryFolder & aFolder)
{
    std::vector<UInt8> bytes(kFileSize);
    for (UInt64 i = 0; i < kFileSize; ++i)
        bytes[i] = FileByte(i);
    XFile(aFolder.Spec("mapped"), kCreate).WriteAt(0, bytes.data(), bytes.size());
    return aFolder.Spec("mapped");
}

std::vector<UInt8> Sample(std::size_t aSize, bool aRandom)
{
    std::vector<UInt8> bytes(aSize);
    std::mt19937 random(42);
    for (std::size_t i = 0; i < aSize; ++i)
        bytes[i] = aRandom ? UInt8(random()) : UInt8((i / 100) % 7);
    return bytes;
}
} // namespace

TEST(MemoryHandleTest, CopyOnWriteUnderEachMode)
{
    XMemoryHandle original = Pattern(256);
    const void * block = BlockOf(original);

    // Mode 2 keeps sharing.
    XMemoryHandle reader(original);
    EXPECT_TRUE(reader.IsShared());
    EXPECT_EQ(BlockOf(reader), block);
    EXPECT_TRUE(original.IsShared());

    // Mode 1 gets a block of its own with the contents.
    XMemoryHandle editor(original);
    {
        XLock lock(editor, kLockReadWrite);
        EXPECT_NE(editor.GetData(), block);
        EXPECT_EQ(std::memcmp(editor.GetData(), block, 256), 0);
        WritableBytes(editor)[10] = 0xFF;
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

    // The original, shared with reader only now, unshares in its turn.
    original.SetByte(0, 77);
    EXPECT_EQ(reader.GetByte(0), 1);
    EXPECT_FALSE(reader.IsShared());

    // A sole owner writes in place.
    block = BlockOf(editor);
    XLock lock(editor, kLockReadWrite);
    EXPECT_EQ(editor.GetData(), block);
}

TEST(MemoryHandleTest, CopiesMadeDuringAWriteAreIndependent)
{
    XMemoryHandle original = Pattern(64);
    XMemoryHandle assigned(8);
    {
        XLock lock(original, kLockReadWrite);
        WritableBytes(original)[0] = 1;
        XMemoryHandle copy(original);
        assigned = original;
        EXPECT_FALSE(copy.IsShared());
        EXPECT_FALSE(assigned.IsShared());
        WritableBytes(original)[0] = 2;
        EXPECT_EQ(copy.GetByte(0), 1);
        EXPECT_EQ(copy.GetByte(63), UInt8(63 * 7 + 1));
    }
    EXPECT_EQ(assigned.GetByte(0), 1);
    EXPECT_EQ(original.GetByte(0), 2);

    // The same when the writer is another thread, copied while it holds the lock.
    XTestGate written;
    XTestGate copied;
    std::thread writer([&] {
        XLock lock(original, kLockReadWrite);
        WritableBytes(original)[0] = 3;
        written.Arrive();
        copied.WaitFor(1);
        WritableBytes(original)[0] = 4;
    });
    ASSERT_TRUE(written.WaitFor(1));
    XMemoryHandle snapshot(original);
    copied.Arrive();
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
        WritableBytes(target)[0] = 0;
    }
    EXPECT_EQ(source.GetByte(0), 50);
    EXPECT_EQ(target.GetByte(0), 0);
    EXPECT_EQ(target.GetByte(1), 57);
}

TEST(MemoryHandleTest, MoveResizeReserveEmpty)
{
    XMemoryHandle source = Pattern(100);
    XMemoryHandle handle(std::move(source));
    EXPECT_EQ(source.GetDataSize(), 0u); // NOLINT: checking the moved-from state
    EXPECT_FALSE(source.HasBlock());
    const UInt64 padded = handle.GetPaddedSize();
    ASSERT_GE(padded, 128u);
    const void * block = BlockOf(handle);
    handle.Resize(40);
    // Growing within the padded size keeps the block; the new bytes are zero.
    handle.Resize(padded);
    {
        XLock lock(handle, kLockRead);
        EXPECT_EQ(handle.GetData(), block);
        const auto * bytes = static_cast<const UInt8 *>(handle.GetData());
        EXPECT_EQ(bytes[39], UInt8(39 * 7 + 1));
        EXPECT_TRUE(std::all_of(bytes + 40, bytes + padded, [](UInt8 aByte) { return aByte == 0; }));
    }
    // Growing beyond it moves the bytes.
    handle.Resize(10000);
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
    // A move by assignment.
    XMemoryHandle target(4);
    target = std::move(large);
    EXPECT_EQ(target.GetDataSize(), 100u);
    EXPECT_EQ(large.GetDataSize(), 0u); // NOLINT

    handle.Empty();
    EXPECT_EQ(handle.GetDataSize(), 0u);
    EXPECT_FALSE(handle.HasBlock());
    handle.Resize(3);
    EXPECT_EQ(handle.GetByte(2), 0);
}

TEST(MemoryHandleTest, NewHandlesContentOperationsAndAbsurdSizes)
{
    // New blocks are zero, aligned and padded to 64 bytes.
    for (UInt64 size : {UInt64(1), UInt64(63), UInt64(64), UInt64(1000), UInt64(5) << 20})
    {
        XMemoryHandle block(size);
        EXPECT_EQ(block.GetPaddedSize() % 64, 0u);
        EXPECT_GE(block.GetPaddedSize(), size);
        EXPECT_GE(block.GetAddressSpaceMetric(), size);
        XLock lock(block, kLockRead);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.GetData()) % 64, 0u);
        const auto * bytes = static_cast<const UInt8 *>(block.GetData());
        EXPECT_TRUE(std::all_of(bytes, bytes + size, [](UInt8 aByte) { return aByte == 0; }));
    }
    {
        XMemoryHandle empty;
        XLock lock(empty, kLockReadWrite); // locking nothing is fine
        EXPECT_EQ(empty.GetData(), nullptr);
    }

    XMemoryHandle handle(16);
    handle.Clear(0x5A);
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
    EXPECT_FALSE(XMemoryHandle(15) == handle);
    EXPECT_TRUE(XMemoryHandle() == XMemoryHandle());

    // Sizes no machine holds fail at once, without trying the allocation.
    EXPECT_EQ(ErrorOf([] { XMemoryHandle huge(UInt64(1) << 60); }), kErrOutOfMemory);
    EXPECT_EQ(ErrorOf([&] { handle.Resize(UInt64(1) << 62); }), kErrOutOfMemory);
    EXPECT_EQ(ErrorOf([&] { handle.Reserve(~0ull); }), kErrOutOfMemory);
    EXPECT_EQ(handle.GetDataSize(), 16u);
    EXPECT_EQ(ErrorOf([] { XMemoryManager::GetManager().Allocate(UInt64(1) << 50, false); }), kErrOutOfMemory);
}

TEST(MemoryHandleTest, SwapOnLockTurnsTheBytesOnce)
{
    XMemoryHandle handle(8);
    const UInt8 bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    handle.CopyDataFrom(bytes, 0, 8);
    XMemoryHandle partner(handle);

    handle.SetSwapOnLock(kSwap16);
    {
        XLock lock(handle, kLockRead); // any mode turns them
        const UInt8 swapped[8] = {2, 1, 4, 3, 6, 5, 8, 7};
        EXPECT_EQ(std::memcmp(handle.GetData(), swapped, 8), 0);
    }
    EXPECT_EQ(handle.GetSwapOnLock(), kSwapNone);
    EXPECT_EQ(handle.GetByte(0), 2);  // not turned again
    EXPECT_EQ(partner.GetByte(0), 1); // the shared block was not touched

    partner.SetSwapOnLock(kSwap32);
    XMemoryHandle carried(partner); // a copy takes the pending swap along
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
    std::atomic<int> wrong{0};
    RunOnThreads(4, [&](int) {
        XLock lock(shared, kLockRead);
        XLock other(expect, kLockRead);
        wrong += std::memcmp(shared.GetData(), expect.GetData(), 4096) != 0;
    });
    EXPECT_EQ(wrong.load(), 0);
}

TEST(MemoryHandleTest, StreamRoundTripInBothCompressionsAndOrders)
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle::RegisterClass(); // a second call changes nothing
    EXPECT_EQ(XClassRegistry::GetDescription(XVersion(33)), XString("Memory Handle"));
    EXPECT_TRUE(XVersion(33).IsA(XVersion(48)));

    XMemoryHandle original = Pattern(100000);
    for (XByteOrder order : {kLittleEndian, kBigEndian})
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
            {
                EXPECT_LT(bytes.size(), 2000u); // the pattern repeats every 256 bytes
            }
            XMemoryHandle back = ReadBack(bytes, order);
            EXPECT_TRUE(back == original);
            EXPECT_EQ(back.GetCompression(), type);
            // Empty handles, both ways.
            XMemoryHandle empty;
            empty.SetCompression(type);
            EXPECT_EQ(ReadBack(Written(empty, order), order).GetDataSize(), 0u);
        }
    // A big-endian header: class word and size most significant byte first.
    std::vector<UInt8> big = Written(XMemoryHandle(3), kBigEndian);
    EXPECT_EQ(big[3], 33);
    EXPECT_EQ(big[kSizeAt + 7], 3);
    EXPECT_EQ(ErrorOf([] { XMemoryHandle().SetCompression(XMemoryHandle::XCompressionType(2)); }), kErrBadArgument);
}

TEST(MemoryHandleTest, SkippedDataKeepsTheSizeAndComesLater)
{
    XMemoryHandle::RegisterClass();
    XMemoryHandle original = Pattern(500);
    for (XMemoryHandle::XCompressionType type : {XMemoryHandle::kNone, XMemoryHandle::kDeflate})
    {
        original.SetCompression(type);
        XTestMemoryStream stream;
        stream.WriteObject(original);
        stream.Write32(0xC0FFEE); // what follows the handle
        stream.SeekTo(0);
        std::unique_ptr<XMemoryHandle> skipped(stream.ReadObjectAs<XMemoryHandle>(XStorable::kSkipData));
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
    auto fails = [](std::vector<UInt8> aBytes) { return ErrorOf([&] { ReadBack(std::move(aBytes)); }); };
    auto cut = [](const std::vector<UInt8> & aBytes, std::size_t aSize) {
        return std::vector<UInt8>(aBytes.begin(), aBytes.begin() + std::ptrdiff_t(aSize));
    };
    // Truncated anywhere.
    for (std::size_t size : {std::size_t(6), kSizeAt + 3, kDataAt, kDataAt + 150, raw.size() - 1})
        EXPECT_NE(fails(cut(raw, size)), 0u) << size;
    for (std::size_t size : {kDataAt + 1, deflated.size() - 1})
        EXPECT_EQ(fails(cut(deflated, size)), kErrDamagedStream) << size;

    // Absurd sizes fail fast: no such allocation is tried.
    EXPECT_EQ(fails(Poked(Poked(raw, kSizeAt, 1ull << 60), kStoredAt, 1ull << 60)), kErrDamagedStream);
    EXPECT_EQ(fails(Poked(deflated, kSizeAt, 1ull << 60)), kErrDamagedStream);
    EXPECT_EQ(fails(Poked(raw, kSizeAt, ~0ull)), kErrDamagedStream); // negative
    // The data inflates to 300, no more and no less.
    EXPECT_EQ(fails(Poked(deflated, kSizeAt, 301)), kErrDamagedStream);
    EXPECT_EQ(fails(Poked(deflated, kSizeAt, 299)), kErrDamagedStream);
    EXPECT_EQ(fails(Poked(raw, kTypeAt, 7, 4)), kErrDamagedStream);
    EXPECT_EQ(fails(Poked(raw, kStoredAt, 299)), kErrDamagedStream); // raw data is stored as it is
    EXPECT_EQ(fails(Poked(raw, 4, 34, 4)), kErrWrongClass); // another class's word at the handle's level
    EXPECT_EQ(fails(Poked(raw, 4, XVersion(33, 1).GetWord(), 4)), kErrStreamTooNew);

    std::vector<UInt8> bytes = deflated;
    bytes[kDataAt + 4] ^= 0x55;
    bytes[kDataAt + 5] ^= 0xAA;
    EXPECT_EQ(fails(bytes), kErrDamagedStream);
    bytes = deflated; // bytes after the end of the zlib stream, inside the stored count
    bytes.insert(bytes.end(), {1, 2, 3});
    EXPECT_EQ(fails(Poked(bytes, kStoredAt, deflated.size() - kDataAt + 3)), kErrDamagedStream);
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
    EXPECT_EQ(ErrorOf([&] { XMemoryHandle::GetHandleInfoFromStream(stream, size, type, offset, false); }),
              kErrWrongClass);
}

TEST(MemoryHandleTest, HeapImageAndReuseOfFreedLargeBlocks)
{
    XMemoryHandle original = Pattern(100);
    XMemoryHandle partner(original);
    XMemoryManager & manager = XMemoryManager::GetManager();
    manager.MakeHeapImage(original, 150);
    EXPECT_EQ(original.GetDataSize(), 150u);
    EXPECT_FALSE(original.IsShared());
    EXPECT_EQ(original.GetByte(99), UInt8(99 * 7 + 1));
    EXPECT_EQ(original.GetByte(149), 0);
    manager.MakeHeapImage(partner, 10);
    EXPECT_EQ(partner.GetDataSize(), 10u);
    EXPECT_EQ(partner.GetByte(9), UInt8(9 * 7 + 1));

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

TEST(MappedHandleTest, ReadsTheFileAtAnyOffset)
{
    XTemporaryFolder folder;
    const XFileSpec file = MakeFile(folder);
    for (SInt64 offset : {SInt64(0), SInt64(13), SInt64(4096), SInt64(4096 + 4000)})
    {
        UInt64 size = kFileSize - UInt64(offset);
        XMappedFileMemoryHandle handle(file, offset, size);
        EXPECT_TRUE(handle.IsMapped());
        EXPECT_EQ(handle.GetDataSize(), size);
        EXPECT_GE(handle.GetAddressSpaceMetric(), handle.GetPaddedSize());
        EXPECT_GE(handle.GetPaddedSize(), size);
        XLock lock(handle, kLockRead);
        const auto * bytes = static_cast<const UInt8 *>(handle.GetData());
        for (UInt64 i = 0; i < size; ++i)
            ASSERT_EQ(bytes[i], FileByte(UInt64(offset) + i)) << offset << " " << i;
    }
    XMappedFileMemoryHandle part(file, 100, 10, kReadOnly, XMappedFileMemoryHandle::kMapPopulate);
    EXPECT_EQ(part.GetByte(9), FileByte(109));
    EXPECT_EQ(XMappedFileMemoryHandle(file, SInt64(kFileSize), 0).GetDataSize(), 0u);

    // Refused ranges and modes.
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file, 0, kFileSize + 1); }), kErrFileIO);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file, SInt64(kFileSize) + 1, 0); }), kErrFileIO);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file, -1, 1); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file, 0, 1, kCreate); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file, 0, 1, kReadOnly, 64); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([] { XMappedFileMemoryHandle(XFileSpec("/nonexistent/file"), 0, 1); }), kErrFileIO);
    EXPECT_EQ(file.GetFileSize(), kFileSize); // kCreate did not empty it
}

TEST(MappedHandleTest, WritesCopyAndLeaveTheFileAlone)
{
    XTemporaryFolder folder;
    const XFileSpec file = MakeFile(folder);
    XMappedFileMemoryHandle handle(file, 7, 9000);
    XMappedFileMemoryHandle copy(handle);
    XMemoryHandle plain(handle); // a plain handle can share the mapping as well
    EXPECT_TRUE(copy.IsMapped());
    {
        XLock lock(handle, kLockReadWrite);
        EXPECT_FALSE(handle.IsMapped());
        auto * bytes = WritableBytes(handle);
        EXPECT_EQ(bytes[0], FileByte(7));
        EXPECT_EQ(bytes[8999], FileByte(9006));
        std::memset(bytes, 0, 9000);
    }
    EXPECT_EQ(handle.GetByte(100), 0);
    EXPECT_EQ(copy.GetByte(100), FileByte(107));
    EXPECT_EQ(plain.GetByte(100), FileByte(107));
    // Even a sole handle over a mapping copies before a write.
    copy.SetByte(0, 0xAA);
    plain.Clear(0xBB);
    EXPECT_EQ(copy.GetByte(0), 0xAA);
    EXPECT_EQ(copy.GetByte(1), FileByte(8));

    // The heap image, and bytes turned over on a lock, are copied out of the read-only mapping.
    XMappedFileMemoryHandle imaged(file, 1, 100);
    XMemoryManager::GetManager().MakeHeapImage(imaged, 120);
    EXPECT_FALSE(imaged.IsMapped());
    EXPECT_EQ(imaged.GetByte(99), FileByte(100));
    EXPECT_EQ(imaged.GetByte(119), 0);
    XMappedFileMemoryHandle swapped(file, 0, 4);
    swapped.SetSwapOnLock(kSwap32);
    EXPECT_EQ(swapped.GetByte(0), FileByte(3));
    EXPECT_EQ(swapped.GetByte(3), FileByte(0));
    EXPECT_FALSE(swapped.IsMapped());

    std::vector<UInt8> after(kFileSize);
    EXPECT_EQ(XFile(file, kReadOnly).ReadAt(0, after.data(), kFileSize), kFileSize);
    for (UInt64 i = 0; i < kFileSize; ++i)
        ASSERT_EQ(after[i], FileByte(i)) << i;
}

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
