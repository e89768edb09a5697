#include "XMemoryHandle.h"

#include <sys/mman.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include "XAssert.h"
#include "XClassRegistry.h"
#include "XException.h"
#include "XLock.h"
#include "XMemoryManager.h"
#include "XStream.h"

namespace
{
// Deflate never expands data more than 1032 times; a header that claims more is damaged.
constexpr UInt64 kMaxDeflateRatio = 1032;
constexpr UInt64 kMaxDeflateSlack = 64;
constexpr UInt64 kInflateInputChunk = 0x10000;
constexpr UInt64 kInflateFirstBlock = 0x10000;
constexpr UInt64 kDeflateInputChunk = 1ull << 30; // zlib counts in 32 bits
constexpr UInt64 kDeflateOutputChunk = 0x40000;
// Shrinking below a quarter of a block of this size or more gives the memory back.
constexpr UInt64 kShrinkBlockSize = 1ull << 20;

[[noreturn]] void ThrowDamaged(const std::string & aDetail)
{
    throw XException(kErrDamagedStream, "memory handle: " + aDetail);
}

UInt64 MaxInflatedSize(UInt64 aStoredCount)
{
    if (aStoredCount > (~0ull - kMaxDeflateSlack) / kMaxDeflateRatio)
        return ~0ull;
    return aStoredCount * kMaxDeflateRatio + kMaxDeflateSlack;
}

// Reads and checks the header fields behind the level word.
void ReadHeader(XStream & aStream, SInt64 & outSize, XMemoryHandle::XCompressionType & outType,
                SInt64 & outStored)
{
    SInt64 size = aStream.Read64S();
    UInt32 type = aStream.Read32();
    SInt64 stored = aStream.Read64S();
    if (size < 0)
        ThrowDamaged("negative data size");
    if (type != XMemoryHandle::kNone && type != XMemoryHandle::kDeflate)
        ThrowDamaged("unknown compression " + std::to_string(type));
    if (stored < 0)
        ThrowDamaged("negative stored byte count");
    if (UInt64(stored) > aStream.GetBytesLeft())
        ThrowDamaged(std::to_string(stored) + " stored bytes, " +
                     std::to_string(aStream.GetBytesLeft()) + " left in the stream");
    if (type == XMemoryHandle::kNone && stored != size)
        ThrowDamaged("raw data of " + std::to_string(size) + " bytes stored in " +
                     std::to_string(stored));
    if (type == XMemoryHandle::kDeflate && UInt64(size) > MaxInflatedSize(UInt64(stored)))
        ThrowDamaged(std::to_string(stored) + " deflated bytes cannot hold " +
                     std::to_string(size));
    outSize = size;
    outType = XMemoryHandle::XCompressionType(type);
    outStored = stored;
}

// Ends a zlib stream however the scope is left.
struct XInflateScope
{
    z_stream * itsStream;
    ~XInflateScope() { inflateEnd(itsStream); }
};
struct XDeflateScope
{
    z_stream * itsStream;
    ~XDeflateScope() { deflateEnd(itsStream); }
};

XStorable * CreateFromStream(XStream & aStream, const XVersion &, XStorable::XOptions anOptions)
{
    return new XMemoryHandle(aStream, (anOptions & XStorable::kSkipData) != 0);
}
} // namespace

// ---- blocks ----

XMemoryHandle::XBlock * XMemoryHandle::NewHeapBlock(UInt64 aSize, bool aZeroed)
{
    XMemoryManager & manager = XMemoryManager::GetManager();
    XMemoryManager::XAllocation allocation = manager.Allocate(aSize, aZeroed);
    auto * block = new (std::nothrow) XBlock;
    if (block == nullptr)
    {
        manager.Free(allocation);
        throw XException(kErrOutOfMemory, "memory handle block record");
    }
    block->itsKind = XBlock::kHeap;
    block->itsMapped = allocation.itsMapped;
    block->itsData = allocation.itsData;
    block->itsCapacity = allocation.itsCapacity;
    return block;
}

void XMemoryHandle::ReleaseBlock(XBlock * aBlock)
{
    if (aBlock == nullptr || aBlock->itsRefs.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    if (aBlock->itsKind == XBlock::kHeap)
    {
        XMemoryManager::XAllocation allocation;
        allocation.itsData = aBlock->itsData;
        allocation.itsCapacity = aBlock->itsCapacity;
        allocation.itsMapped = aBlock->itsMapped;
        XMemoryManager::GetManager().Free(allocation);
    }
    else
        ::munmap(aBlock->itsMapBase, aBlock->itsMapLength);
    delete aBlock;
}

UInt64 XMemoryHandle::ReallocateBlock(XBlock * aBlock, UInt64 aKeep, UInt64 aCapacity)
{
    XMemoryManager::XAllocation old;
    old.itsData = aBlock->itsData;
    old.itsCapacity = aBlock->itsCapacity;
    old.itsMapped = aBlock->itsMapped;
    XMemoryManager::XAllocation grown = XMemoryManager::GetManager().Reallocate(old, aKeep, aCapacity);
    aBlock->itsData = grown.itsData;
    aBlock->itsCapacity = grown.itsCapacity;
    aBlock->itsMapped = grown.itsMapped;
    return grown.itsZeroFrom;
}

bool XMemoryHandle::NeedsOwnCopy(const XBlock * aBlock)
{
    return aBlock->itsRefs.load(std::memory_order_acquire) > 1 ||
           aBlock->itsKind == XBlock::kFileMap;
}

void XMemoryHandle::ReplaceBlock(XBlock * aBlock, UInt64 aSize)
{
    XBlock * old = itsBlock.exchange(aBlock, std::memory_order_acq_rel);
    itsSize = aSize;
    ReleaseBlock(old);
}

XMemoryHandle::XBlock * XMemoryHandle::ShareBlock() const
{
    XBlock * block = Block();
    if (block == nullptr)
        return nullptr;
    if ((itsUse.load(std::memory_order_acquire) & kUseWriteMask) == 0)
    {
        block->itsRefs.fetch_add(1, std::memory_order_relaxed);
        return block;
    }
    // Being written right now: the copy gets the bytes as they are.
    if (itsSize == 0)
        return nullptr;
    XBlock * copy = NewHeapBlock(itsSize, false);
    std::memcpy(copy->itsData, block->itsData, itsSize);
    return copy;
}

// ---- construction ----

XMemoryHandle::XMemoryHandle() = default;

XMemoryHandle::XMemoryHandle(UInt64 aSize) : XMemoryHandle(aSize, kZeroed)
{
}

XMemoryHandle::XMemoryHandle(UInt64 aSize, XContents aContents)
{
    if (aSize > XMemoryManager::kMaxBlockSize)
        throw XException(kErrOutOfMemory, "a memory handle of " + std::to_string(aSize) + " bytes");
    if (aSize > 0)
        ReplaceBlock(NewHeapBlock(aSize, aContents == kZeroed), aSize);
}

XMemoryHandle::XMemoryHandle(XStream & aStream, bool aSkipData) : XMemoryHandle()
{
    ReadStream2_XMemoryHandle(aStream, aSkipData ? kSkipData : kNormal);
}

XMemoryHandle::XMemoryHandle(const XMemoryHandle & anOther)
    : XStorable(anOther), XLockable(anOther), itsSize(anOther.itsSize),
      itsSwapOnLock(anOther.itsSwapOnLock.load(std::memory_order_acquire)),
      itsCompression(anOther.itsCompression), itsCompressionLevel(anOther.itsCompressionLevel)
{
    itsBlock.store(anOther.ShareBlock(), std::memory_order_release);
}

XMemoryHandle::XMemoryHandle(XMemoryHandle && anOther) noexcept
    : XStorable(anOther), XLockable(anOther), itsSize(anOther.itsSize),
      itsSwapOnLock(anOther.itsSwapOnLock.load(std::memory_order_acquire)),
      itsCompression(anOther.itsCompression), itsCompressionLevel(anOther.itsCompressionLevel)
{
    itsBlock.store(anOther.itsBlock.exchange(nullptr, std::memory_order_acq_rel),
                   std::memory_order_release);
    anOther.itsSize = 0;
    anOther.itsSwapOnLock.store(kSwapNone, std::memory_order_release);
    anOther.XLockable::SetDataFetcher(nullptr);
}

XMemoryHandle & XMemoryHandle::operator=(const XMemoryHandle & anOther)
{
    if (this == &anOther)
        return *this;
    XBlock * block = anOther.ShareBlock();
    if (block != nullptr && (itsUse.load(std::memory_order_acquire) & kUseWriteMask) != 0 &&
        NeedsOwnCopy(block))
    {
        // This handle is locked for writing: it must not share what it is about to write to.
        XBlock * copy = nullptr;
        try
        {
            copy = NewHeapBlock(anOther.itsSize, false);
        }
        catch (...)
        {
            ReleaseBlock(block);
            throw;
        }
        std::memcpy(copy->itsData, block->itsData, anOther.itsSize);
        ReleaseBlock(block);
        block = copy;
    }
    ReplaceBlock(block, anOther.itsSize);
    itsSwapOnLock.store(anOther.itsSwapOnLock.load(std::memory_order_acquire),
                        std::memory_order_release);
    itsCompression = anOther.itsCompression;
    itsCompressionLevel = anOther.itsCompressionLevel;
    XStorable::operator=(anOther);
    XLockable::operator=(anOther);
    return *this;
}

XMemoryHandle & XMemoryHandle::operator=(XMemoryHandle && anOther)
{
    if (this == &anOther)
        return *this;
    if ((itsUse.load(std::memory_order_acquire) & kUseWriteMask) != 0)
        return *this = static_cast<const XMemoryHandle &>(anOther); // must not share: copy
    ReplaceBlock(anOther.itsBlock.exchange(nullptr, std::memory_order_acq_rel), anOther.itsSize);
    anOther.itsSize = 0;
    itsSwapOnLock.store(anOther.itsSwapOnLock.exchange(kSwapNone, std::memory_order_acq_rel),
                        std::memory_order_release);
    itsCompression = anOther.itsCompression;
    itsCompressionLevel = anOther.itsCompressionLevel;
    XLockable::operator=(anOther);
    anOther.XLockable::SetDataFetcher(nullptr);
    return *this;
}

XMemoryHandle::~XMemoryHandle()
{
    ReleaseBlock(itsBlock.load(std::memory_order_acquire));
}

void XMemoryHandle::RegisterClass()
{
    static std::once_flag sOnce;
    std::call_once(sOnce, [] {
        XClassRegistry::RegisterClassA(GetClassVersion(), GetSuperClassVersion(), &CreateFromStream,
                                       &XClassRegistry::ReadCreator<XMemoryHandle>,
                                       &XClassRegistry::DefaultCreator<XMemoryHandle>,
                                       "Memory Handle");
    });
}

XMemoryHandle * XMemoryHandle::Clone() const
{
    return new XMemoryHandle(*this);
}

// ---- sizes ----

UInt64 XMemoryHandle::GetPaddedSize() const
{
    XBlock * block = Block();
    return block != nullptr ? block->itsCapacity : 0;
}

UInt64 XMemoryHandle::GetAddressSpaceMetric() const
{
    XBlock * block = Block();
    if (block == nullptr)
        return 0;
    return block->itsKind == XBlock::kFileMap ? block->itsMapLength : block->itsCapacity;
}

bool XMemoryHandle::IsShared() const
{
    XBlock * block = Block();
    return block != nullptr && block->itsRefs.load(std::memory_order_acquire) > 1;
}

void XMemoryHandle::Resize(UInt64 aSize)
{
    if (aSize > XMemoryManager::kMaxBlockSize)
        throw XException(kErrOutOfMemory, "a memory handle of " + std::to_string(aSize) + " bytes");
    FetchData();
    XBlock * block = Block();
    if (aSize == 0)
    {
        ReplaceBlock(nullptr, 0);
        return;
    }
    if (block == nullptr)
    {
        // Nothing in memory (bytes that never came read as zero).
        ReplaceBlock(NewHeapBlock(aSize, true), aSize);
        return;
    }
    if (aSize <= itsSize)
    {
        if (block->itsCapacity >= kShrinkBlockSize && aSize < block->itsCapacity / 4)
        {
            XBlock * smaller = NewHeapBlock(aSize, false);
            std::memcpy(smaller->itsData, block->itsData, aSize);
            ReplaceBlock(smaller, aSize);
        }
        else
            itsSize = aSize;
        return;
    }
    GrowForWrite(aSize, aSize);
}

void XMemoryHandle::Reserve(UInt64 aCapacity)
{
    if (aCapacity > XMemoryManager::kMaxBlockSize)
        throw XException(kErrOutOfMemory, "a memory handle of " + std::to_string(aCapacity) +
                                              " bytes");
    FetchData();
    XBlock * block = Block();
    if (aCapacity == 0 || (block != nullptr && block->itsCapacity >= aCapacity))
        return;
    aCapacity = std::max(aCapacity, itsSize);
    if (block == nullptr)
    {
        ReplaceBlock(NewHeapBlock(aCapacity, true), itsSize);
        return;
    }
    bool sole = !NeedsOwnCopy(block);
    if (sole)
    {
        ReallocateBlock(block, itsSize, aCapacity);
        return;
    }
    XBlock * copy = NewHeapBlock(aCapacity, false);
    std::memcpy(copy->itsData, block->itsData, itsSize);
    ReplaceBlock(copy, itsSize);
}

void XMemoryHandle::GrowForWrite(UInt64 aSize, UInt64 aFilledFrom)
{
    XAssert(aSize >= itsSize && aFilledFrom <= aSize);
    if (aSize > XMemoryManager::kMaxBlockSize)
        throw XException(kErrOutOfMemory, "a memory handle of " + std::to_string(aSize) + " bytes");
    FetchData();
    UInt64 oldSize = itsSize;
    XBlock * block = Block();
    UInt64 zeroFrom = 0; // bytes from here on are known to be zero already
    if (block == nullptr)
    {
        block = NewHeapBlock(aSize, false);
        ReplaceBlock(block, oldSize);
        oldSize = 0; // bytes that never came read as zero
        zeroFrom = block->itsCapacity;
    }
    else if (block->itsCapacity < aSize || NeedsOwnCopy(block))
    {
        UInt64 capacity = std::max(aSize, block->itsCapacity);
        if (block->itsKind == XBlock::kHeap && block->itsRefs.load(std::memory_order_acquire) == 1)
        {
            zeroFrom = ReallocateBlock(block, oldSize, capacity);
        }
        else
        {
            XBlock * copy = NewHeapBlock(capacity, false);
            std::memcpy(copy->itsData, block->itsData, oldSize);
            ReplaceBlock(copy, oldSize);
            block = copy;
            zeroFrom = block->itsCapacity;
        }
    }
    else
        zeroFrom = block->itsCapacity;
    UInt64 zeroEnd = std::min(aFilledFrom, std::max(zeroFrom, oldSize));
    if (zeroEnd > oldSize)
        std::memset(block->itsData + oldSize, 0, zeroEnd - oldSize);
    itsSize = aSize;
}

void XMemoryHandle::Empty()
{
    ReplaceBlock(nullptr, 0);
    itsSwapOnLock.store(kSwapNone, std::memory_order_release);
    XLockable::SetDataFetcher(nullptr);
}

bool XMemoryHandle::Purge()
{
    if (!HasDataFetcher() || IsFetchingOnCurrentThread())
        return false;
    UInt64 expected = 0;
    if (!itsUse.compare_exchange_strong(expected, kUsePurging, std::memory_order_acq_rel))
        return false; // locked
    // No lock can begin now; a fetch through the fetcher may still run, and then nothing happens.
    bool dropped = DropFetchedData([](const XLockable & aSelf) {
        const auto & self = static_cast<const XMemoryHandle &>(aSelf);
        ReleaseBlock(self.itsBlock.exchange(nullptr, std::memory_order_acq_rel));
    });
    itsUse.fetch_sub(kUsePurging, std::memory_order_release);
    return dropped;
}

// ---- locking ----

void XMemoryHandle::LockSelf(XLockMode aMode) const
{
    XAssertText(aMode == kLockReadWrite || aMode == kLockRead || aMode == kLockWrite,
                "lock mode 1, 2 or 3");
    bool write = aMode != kLockRead;
    UInt64 use = write ? 1 + kUseWriteUnit : 1;
    UInt64 old = itsUse.fetch_add(use, std::memory_order_acq_rel);
    if (old & kUsePurging) [[unlikely]]
    {
        while (itsUse.load(std::memory_order_acquire) & kUsePurging)
            std::this_thread::yield();
    }
    try
    {
        if (!IsDataFetched())
            FetchData();
        XBlock * block = Block();
        if (itsSwapOnLock.load(std::memory_order_acquire) != kSwapNone ||
            (block == nullptr && itsSize > 0) ||
            (write && (HasDataFetcher() || (block != nullptr && NeedsOwnCopy(block)))))
            PrepareBlock(aMode);
    }
    catch (...)
    {
        itsUse.fetch_sub(use, std::memory_order_acq_rel);
        throw;
    }
}

void XMemoryHandle::UnlockSelf(XLockMode aMode) const
{
    UInt64 use = aMode != kLockRead ? 1 + kUseWriteUnit : 1;
    UInt64 old = itsUse.fetch_sub(use, std::memory_order_acq_rel);
    XAssertText((old & ~kUsePurging) >= use, "unlock of a memory handle that is not locked");
}

void XMemoryHandle::PrepareBlock(XLockMode aMode) const
{
    bool write = aMode != kLockRead;
    auto * self = const_cast<XMemoryHandle *>(this);
    // Written bytes can no longer be brought back by the fetcher.
    if (write && HasDataFetcher())
        self->XLockable::SetDataFetcher(nullptr);
    {
        // Readers may arrive here together; one of them does the work.
        std::lock_guard<std::mutex> guard(GetGuardMutex());
        XBlock * block = Block();
        auto swap = XByteSwapMode(itsSwapOnLock.load(std::memory_order_acquire));
        if (block == nullptr && itsSize > 0)
        {
            // Bytes that were stepped over and that no fetcher brings: they read as zero.
            itsBlock.store(NewHeapBlock(itsSize, true), std::memory_order_release);
            itsSwapOnLock.store(kSwapNone, std::memory_order_release);
        }
        else if (swap != kSwapNone)
        {
            if (block != nullptr && aMode != kLockWrite)
            {
                if (NeedsOwnCopy(block))
                {
                    // Turn the bytes over on their way into a block of this handle's own.
                    XBlock * copy = NewHeapBlock(itsSize, false);
                    SwapBufferBytes(copy->itsData, block->itsData, itsSize, swap);
                    itsBlock.store(copy, std::memory_order_release);
                    ReleaseBlock(block);
                }
                else
                    SwapBufferBytes(block->itsData, block->itsData, itsSize, swap);
            }
            itsSwapOnLock.store(kSwapNone, std::memory_order_release);
        }
    }
    if (!write)
        return;
    // A write lock is exclusive: no other user of this handle object is here.
    XBlock * block = Block();
    if (block != nullptr && NeedsOwnCopy(block))
    {
        XBlock * copy = NewHeapBlock(itsSize, false);
        if (aMode == kLockReadWrite)
            std::memcpy(copy->itsData, block->itsData, itsSize);
        itsBlock.store(copy, std::memory_order_release);
        ReleaseBlock(block);
    }
}

// ---- contents ----

void XMemoryHandle::RangeCheck(UInt64 anOffset, UInt64 aCount, const char * anOperation) const
{
    // The size may come with the data.
    if (!IsDataFetched())
        FetchData();
    if (anOffset > itsSize || aCount > itsSize - anOffset)
        throw XException(kErrBadArgument, std::string(anOperation) + ": bytes " +
                                              std::to_string(anOffset) + " + " +
                                              std::to_string(aCount) + " of a handle of " +
                                              std::to_string(itsSize));
}

XMemoryHandle XMemoryHandle::CloneMemory() const
{
    XLock lock(*this, kLockRead);
    XMemoryHandle copy;
    if (itsSize > 0)
    {
        XBlock * block = NewHeapBlock(itsSize, false);
        std::memcpy(block->itsData, Block()->itsData, itsSize);
        copy.ReplaceBlock(block, itsSize);
    }
    copy.itsCompression = itsCompression;
    copy.itsCompressionLevel = itsCompressionLevel;
    return copy;
}

void XMemoryHandle::CopyDataTo(void * aDest, UInt64 anOffset, UInt64 aCount) const
{
    RangeCheck(anOffset, aCount, "CopyDataTo");
    if (aCount == 0)
        return;
    XLock lock(*this, kLockRead);
    std::memcpy(aDest, Block()->itsData + anOffset, aCount);
}

void XMemoryHandle::CopyDataFrom(const void * aSource, UInt64 anOffset, UInt64 aCount)
{
    RangeCheck(anOffset, aCount, "CopyDataFrom");
    if (aCount == 0)
        return;
    XLock lock(*this, aCount == itsSize ? kLockWrite : kLockReadWrite);
    std::memcpy(Block()->itsData + anOffset, aSource, aCount);
}

void XMemoryHandle::Clear(UInt8 aValue)
{
    if (!IsDataFetched())
        FetchData();
    if (itsSize == 0)
        return;
    XLock lock(*this, kLockWrite);
    std::memset(Block()->itsData, aValue, itsSize);
}

UInt8 XMemoryHandle::GetByte(UInt64 anIndex) const
{
    RangeCheck(anIndex, 1, "GetByte");
    XLock lock(*this, kLockRead);
    return Block()->itsData[anIndex];
}

void XMemoryHandle::SetByte(UInt64 anIndex, UInt8 aValue)
{
    RangeCheck(anIndex, 1, "SetByte");
    XLock lock(*this, kLockReadWrite);
    Block()->itsData[anIndex] = aValue;
}

bool XMemoryHandle::operator==(const XMemoryHandle & anOther) const
{
    if (this == &anOther)
        return true;
    FetchData();
    anOther.FetchData();
    if (itsSize != anOther.itsSize)
        return false;
    if (itsSize == 0)
        return true;
    XLock lock(*this, kLockRead);
    XLock otherLock(anOther, kLockRead);
    const UInt8 * mine = Block()->itsData;
    const UInt8 * theirs = anOther.Block()->itsData;
    return mine == theirs || std::memcmp(mine, theirs, itsSize) == 0;
}

void XMemoryHandle::SetCompression(XCompressionType aType, SInt32 aLevel)
{
    if (aType != kNone && aType != kDeflate)
        throw XException(kErrBadArgument, "unknown compression " + std::to_string(aType));
    if (aLevel < -1 || aLevel > 9)
        throw XException(kErrBadArgument, "compression level " + std::to_string(aLevel));
    itsCompression = aType;
    itsCompressionLevel = aLevel;
}

// ---- stream form ----

UInt64 XMemoryHandle::GetStreamUsage() const
{
    if (itsCompression == kNone)
        return kStreamHeaderSize + itsSize;
    return kStreamHeaderSize + compressBound(uLong(itsSize));
}

void XMemoryHandle::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XMemoryHandle(aStream, anOptions);
}

void XMemoryHandle::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XMemoryHandle(aStream, anOptions);
}

void XMemoryHandle::ReadStream2_XMemoryHandle(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XMemoryHandle::WriteStream2_XMemoryHandle(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XMemoryHandle::GetHandleInfoFromStream(XStream & aStream, SInt64 & outSize,
                                            XCompressionType & outCompression,
                                            SInt64 & outDataOffset, bool aVersionRead)
{
    SInt64 stored = 0;
    GetHandleInfoFromStream(aStream, outSize, outCompression, outDataOffset, stored, aVersionRead);
}

void XMemoryHandle::GetHandleInfoFromStream(XStream & aStream, SInt64 & outSize,
                                            XCompressionType & outCompression,
                                            SInt64 & outDataOffset, SInt64 & outStoredCount,
                                            bool aVersionRead)
{
    if (!aVersionRead)
    {
        XVersion objectWord = aStream.ReadVersion();
        if (objectWord.GetClass() != kClassID)
            throw XException(kErrWrongClass, "class " + std::to_string(objectWord.GetClass()) +
                                                 " where a memory handle was expected");
    }
    XVersion level = aStream.ReadVersion();
    if (level.GetClass() != kClassID)
        throw XException(kErrWrongClass, "class " + std::to_string(level.GetClass()) +
                                             " where a memory handle was expected");
    CheckClassVersion(level, GetClassVersion());
    ReadHeader(aStream, outSize, outCompression, outStoredCount);
    outDataOffset = aStream.GetPosition();
}

void XMemoryHandle::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions anOptions)
{
    SInt64 size = 0;
    SInt64 stored = 0;
    XCompressionType type = kNone;
    ReadHeader(aStream, size, type, stored);
    ReplaceBlock(nullptr, 0);
    itsSwapOnLock.store(kSwapNone, std::memory_order_release);
    XLockable::SetDataFetcher(nullptr);
    itsCompression = type;
    if (anOptions & kSkipData)
    {
        aStream.Seek(stored);
        itsSize = UInt64(size); // the bytes come later, through a fetcher
        return;
    }
    if (type == kDeflate)
    {
        ReadDeflated(aStream, UInt64(size), UInt64(stored));
        return;
    }
    if (size == 0)
        return;
    XBlock * block = NewHeapBlock(UInt64(size), false);
    try
    {
        aStream.ReadBuffer8(block->itsData, UInt64(size));
    }
    catch (...)
    {
        ReleaseBlock(block);
        throw;
    }
    ReplaceBlock(block, UInt64(size));
}

void XMemoryHandle::ReadDeflated(XStream & aStream, UInt64 aSize, UInt64 aStoredCount)
{
    z_stream zs{};
    if (inflateInit(&zs) != Z_OK)
        throw XException(kErrCompression, "inflateInit failed");
    XInflateScope scope{&zs};
    std::unique_ptr<UInt8[]> input(new (std::nothrow) UInt8[kInflateInputChunk]);
    if (!input)
        throw XException(kErrOutOfMemory, "inflate buffer");

    // The block grows as inflating fills it, so that a damaged header costs no more memory than
    // the data that really comes out.
    XMemoryManager & manager = XMemoryManager::GetManager();
    XMemoryManager::XAllocation block;
    struct XFreeOnExit
    {
        XMemoryManager & itsManager;
        XMemoryManager::XAllocation & itsBlock;
        ~XFreeOnExit() { itsManager.Free(itsBlock); }
    } freeOnExit{manager, block};
    if (aSize > 0)
        block = manager.Allocate(
            std::min(aSize, std::max(kInflateFirstBlock, std::min(aStoredCount, aSize / 4) * 4)),
            false);

    UInt64 remaining = aStoredCount; // compressed bytes not yet read from the stream
    UInt64 produced = 0;
    for (;;)
    {
        if (zs.avail_in == 0 && remaining > 0)
        {
            UInt64 take = std::min(remaining, kInflateInputChunk);
            aStream.ReadBuffer8(input.get(), take);
            remaining -= take;
            zs.next_in = input.get();
            zs.avail_in = uInt(take);
        }
        UInt8 probe = 0;
        UInt64 room = 0;
        if (produced < aSize && produced == block.itsCapacity)
        {
            UInt64 grown = std::min(aSize, std::max(block.itsCapacity * 2, kInflateFirstBlock));
            block = manager.Reallocate(block, produced, grown);
        }
        if (produced < aSize)
        {
            room = std::min<UInt64>(std::min(aSize, block.itsCapacity) - produced, 1u << 30);
            zs.next_out = block.itsData + produced;
        }
        else
        {
            // All the bytes are here: the stream must end without giving more.
            room = 1;
            zs.next_out = &probe;
        }
        zs.avail_out = uInt(room);
        int result = inflate(&zs, Z_NO_FLUSH);
        UInt64 made = room - zs.avail_out;
        if (produced >= aSize && made > 0)
            ThrowDamaged("deflated data inflates beyond " + std::to_string(aSize) + " bytes");
        produced += produced < aSize ? made : 0;
        if (result == Z_STREAM_END)
            break;
        if (result == Z_BUF_ERROR)
        {
            if (zs.avail_in == 0 && remaining == 0)
                ThrowDamaged("deflated data ends early");
            continue;
        }
        if (result != Z_OK)
            ThrowDamaged(std::string("deflated data is damaged (") +
                         (zs.msg != nullptr ? zs.msg : "zlib error") + ")");
    }
    if (produced != aSize)
        ThrowDamaged("deflated data inflates to " + std::to_string(produced) + " bytes, not " +
                     std::to_string(aSize));
    if (zs.avail_in != 0 || remaining != 0)
        ThrowDamaged("bytes after the end of the deflated data");
    if (aSize == 0)
        return;
    auto * record = new (std::nothrow) XBlock;
    if (record == nullptr)
        throw XException(kErrOutOfMemory, "memory handle block record");
    record->itsKind = XBlock::kHeap;
    record->itsMapped = block.itsMapped;
    record->itsData = block.itsData;
    record->itsCapacity = block.itsCapacity;
    block = XMemoryManager::XAllocation();
    ReplaceBlock(record, aSize);
}

void XMemoryHandle::WriteStreamSelf(XStream & aStream, XOptions) const
{
    XLock lock(*this, kLockRead);
    aStream.Write64S(SInt64(itsSize));
    aStream.Write32(itsCompression);
    if (itsCompression == kDeflate)
    {
        WriteDeflated(aStream);
        return;
    }
    aStream.Write64S(SInt64(itsSize));
    if (itsSize > 0)
        aStream.WriteBuffer8(Block()->itsData, itsSize);
}

void XMemoryHandle::WriteDeflated(XStream & aStream) const
{
    SInt64 countPosition = aStream.GetPosition();
    aStream.Write64S(0); // the stored count, patched below
    z_stream zs{};
    if (deflateInit(&zs, itsCompressionLevel) != Z_OK)
        throw XException(kErrCompression, "deflateInit failed");
    XDeflateScope scope{&zs};
    std::unique_ptr<UInt8[]> output(new (std::nothrow) UInt8[kDeflateOutputChunk]);
    if (!output)
        throw XException(kErrOutOfMemory, "deflate buffer");
    const UInt8 * input = itsSize > 0 ? Block()->itsData : nullptr;
    UInt64 left = itsSize;
    UInt64 stored = 0;
    int flush = Z_NO_FLUSH;
    do
    {
        UInt64 take = std::min(left, kDeflateInputChunk);
        zs.next_in = const_cast<UInt8 *>(input);
        zs.avail_in = uInt(take);
        input += take;
        left -= take;
        flush = left == 0 ? Z_FINISH : Z_NO_FLUSH;
        do
        {
            zs.next_out = output.get();
            zs.avail_out = uInt(kDeflateOutputChunk);
            if (deflate(&zs, flush) == Z_STREAM_ERROR)
                throw XException(kErrCompression, "deflate failed");
            UInt64 made = kDeflateOutputChunk - zs.avail_out;
            aStream.WriteBuffer8(output.get(), made);
            stored += made;
        } while (zs.avail_out == 0);
    } while (flush != Z_FINISH);
    SInt64 end = aStream.GetPosition();
    aStream.SeekTo(countPosition);
    aStream.Write64S(SInt64(stored));
    aStream.SeekTo(end);
}
