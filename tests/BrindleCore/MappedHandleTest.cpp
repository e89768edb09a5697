// Handles over mapped files: the file's bytes at any offset, copy-on-write that leaves the file
// alone, shared mappings, the heap image, and refused ranges.

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "XException.h"
#include "XFile.h"
#include "XLock.h"
#include "XMappedFileMemoryHandle.h"
#include "XMemoryManager.h"
#include "XTestSupport.h"

namespace
{
constexpr UInt64 kFileSize = 3 * 4096 + 500;

UInt8 FileByte(UInt64 anOffset)
{
    return UInt8(anOffset * 13 + anOffset / 256);
}

// A temporary file of kFileSize known bytes, removed at the end of the test.
class XTempFile
{
public:
    XTempFile() : itsSpec(XFileSpec::MakeTemporary("mapped-handle"))
    {
        std::vector<UInt8> bytes(kFileSize);
        for (UInt64 i = 0; i < kFileSize; ++i)
            bytes[i] = FileByte(i);
        XFile file(itsSpec, kCreate);
        file.WriteAt(0, bytes.data(), bytes.size());
    }
    XTempFile(const XTempFile &) = delete;
    XTempFile & operator=(const XTempFile &) = delete;
    ~XTempFile() { itsSpec.Delete(); }

    const XFileSpec & Spec() const { return itsSpec; }
    std::vector<UInt8> Read() const
    {
        XFile file(itsSpec, kReadOnly);
        std::vector<UInt8> bytes(file.GetSize());
        file.ReadAt(0, bytes.data(), bytes.size());
        return bytes;
    }

private:
    XFileSpec itsSpec;
};

} // namespace

TEST(MappedHandleTest, ReadsTheFileAtAnyOffset)
{
    XTempFile file;
    for (SInt64 offset : {SInt64(0), SInt64(13), SInt64(4096), SInt64(4096 + 4000)})
    {
        UInt64 size = kFileSize - UInt64(offset);
        XMappedFileMemoryHandle handle(file.Spec(), offset, size);
        EXPECT_TRUE(handle.IsMapped());
        EXPECT_EQ(handle.GetDataSize(), size);
        EXPECT_GE(handle.GetPaddedSize(), size);
        EXPECT_GE(handle.GetAddressSpaceMetric(), handle.GetPaddedSize());
        EXPECT_EQ(handle.GetFileOffset(), offset);
        XLock lock(handle, kLockRead);
        const auto * bytes = static_cast<const UInt8 *>(handle.GetData());
        for (UInt64 i = 0; i < size; ++i)
            ASSERT_EQ(bytes[i], FileByte(UInt64(offset) + i)) << offset << " " << i;
    }
    XMappedFileMemoryHandle part(file.Spec(), 100, 10, kReadOnly,
                                 XMappedFileMemoryHandle::kMapPopulate);
    EXPECT_EQ(part.GetByte(9), FileByte(109));
    XMappedFileMemoryHandle nothing(file.Spec(), SInt64(kFileSize), 0);
    EXPECT_EQ(nothing.GetDataSize(), 0u);
}

TEST(MappedHandleTest, WritesCopyAndLeaveTheFileAlone)
{
    XTempFile file;
    XMappedFileMemoryHandle handle(file.Spec(), 7, 9000);
    XMappedFileMemoryHandle copy(handle);
    XMemoryHandle plain(handle); // a plain handle can share the mapping as well
    EXPECT_TRUE(copy.IsMapped());
    {
        XLock lock(handle, kLockReadWrite);
        EXPECT_FALSE(handle.IsMapped());
        auto * bytes = static_cast<UInt8 *>(handle.GetData());
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
    std::vector<UInt8> after = file.Read();
    ASSERT_EQ(after.size(), kFileSize);
    for (UInt64 i = 0; i < kFileSize; ++i)
        ASSERT_EQ(after[i], FileByte(i)) << i;
    EXPECT_EQ(copy.GetByte(0), 0xAA);
    EXPECT_EQ(copy.GetByte(1), FileByte(8));
}

TEST(MappedHandleTest, HeapImageAndSwapOfAMapping)
{
    XTempFile file;
    XMappedFileMemoryHandle handle(file.Spec(), 1, 100);
    XMemoryManager::GetManager().MakeHeapImage(handle, 120);
    EXPECT_FALSE(handle.IsMapped());
    EXPECT_EQ(handle.GetDataSize(), 120u);
    EXPECT_EQ(handle.GetByte(99), FileByte(100));
    EXPECT_EQ(handle.GetByte(119), 0);

    // Turning the bytes over copies them out of the read-only mapping.
    XMappedFileMemoryHandle swapped(file.Spec(), 0, 4);
    swapped.SetSwapOnLock(kSwap32);
    EXPECT_EQ(swapped.GetByte(0), FileByte(3));
    EXPECT_EQ(swapped.GetByte(3), FileByte(0));
    EXPECT_FALSE(swapped.IsMapped());
}

TEST(MappedHandleTest, RefusedRanges)
{
    XTempFile file;
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file.Spec(), 0, kFileSize + 1); }),
              kErrFileIO);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file.Spec(), SInt64(kFileSize) + 1, 0); }),
              kErrFileIO);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file.Spec(), -1, 1); }), kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file.Spec(), 0, 1, kCreate); }),
              kErrBadArgument);
    EXPECT_EQ(ErrorOf([&] { XMappedFileMemoryHandle(file.Spec(), 0, 1, kReadOnly, 64); }),
              kErrBadArgument);
    EXPECT_EQ(ErrorOf([] { XMappedFileMemoryHandle(XFileSpec("/nonexistent/file"), 0, 1); }),
              kErrFileIO);
    EXPECT_EQ(file.Read().size(), kFileSize); // kCreate did not empty it
}
