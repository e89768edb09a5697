#include "XMemoryManager.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "XAssert.h"
#include "XException.h"
#include "XLock.h"
#include "XMemoryHandle.h"

namespace
{
constexpr UInt64 RoundUp(UInt64 aValue, UInt64 aStep)
{
    return (aValue + aStep - 1) / aStep * aStep;
}

[[noreturn]] void ThrowOutOfMemory(UInt64 aSize)
{
    throw XException(kErrOutOfMemory, "a block of " + std::to_string(aSize) + " bytes");
}
} // namespace

XMemoryManager & XMemoryManager::GetManager()
{
    // Never destroyed: handles in static objects may give their blocks back at exit.
    static XMemoryManager * sManager = new XMemoryManager();
    return *sManager;
}

XMemoryManager::XMemoryManager()
{
    // An eighth of the machine's memory, at most 1 GiB.
    SInt64 pages = ::sysconf(_SC_PHYS_PAGES);
    SInt64 pageSize = ::sysconf(_SC_PAGESIZE);
    UInt64 physical = pages > 0 && pageSize > 0 ? UInt64(pages) * UInt64(pageSize) : 0;
    itsCacheLimit = std::min<UInt64>(1ull << 30, physical / 8);
}

XMemoryManager::~XMemoryManager()
{
    TrimCache();
}

UInt64 XMemoryManager::GetCacheLimit() const
{
    std::lock_guard<std::mutex> guard(itsCacheMutex);
    return itsCacheLimit;
}

void XMemoryManager::SetCacheLimit(UInt64 aBytes)
{
    {
        std::lock_guard<std::mutex> guard(itsCacheMutex);
        itsCacheLimit = aBytes;
    }
    if (GetCachedBytes() > aBytes)
        TrimCache();
}

UInt64 XMemoryManager::GetCachedBytes() const
{
    std::lock_guard<std::mutex> guard(itsCacheMutex);
    return itsCachedBytes;
}

void XMemoryManager::TrimCache()
{
    std::vector<XAllocation> blocks;
    {
        std::lock_guard<std::mutex> guard(itsCacheMutex);
        blocks.swap(itsCache);
        itsCachedBytes = 0;
    }
    for (const XAllocation & block : blocks)
        Unmap(block);
}

void XMemoryManager::Unmap(const XAllocation & aBlock)
{
    ::munmap(aBlock.itsData, aBlock.itsCapacity);
}

bool XMemoryManager::TakeFromCache(UInt64 aCapacity, XAllocation & outBlock)
{
    std::lock_guard<std::mutex> guard(itsCacheMutex);
    std::size_t best = itsCache.size();
    for (std::size_t i = 0; i < itsCache.size(); ++i)
    {
        UInt64 capacity = itsCache[i].itsCapacity;
        if (capacity >= aCapacity && capacity - aCapacity <= aCapacity / 4 &&
            (best == itsCache.size() || capacity < itsCache[best].itsCapacity))
            best = i;
    }
    if (best == itsCache.size())
        return false;
    outBlock = itsCache[best];
    itsCache.erase(itsCache.begin() + std::ptrdiff_t(best));
    itsCachedBytes -= outBlock.itsCapacity;
    return true;
}

XMemoryManager::XAllocation XMemoryManager::MapFresh(UInt64 aCapacity)
{
    // Map one alignment step more and cut the ends off, so that the block starts on a huge page.
    UInt64 length = aCapacity + kMapAlignment;
    void * mapped = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                           -1, 0);
    if (mapped == MAP_FAILED)
    {
        TrimCache();
        mapped = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1,
                        0);
        if (mapped == MAP_FAILED)
            ThrowOutOfMemory(aCapacity);
    }
    auto * start = static_cast<UInt8 *>(mapped);
    UInt64 address = reinterpret_cast<std::uintptr_t>(start);
    UInt64 head = RoundUp(address, kMapAlignment) - address;
    if (head > 0)
        ::munmap(start, head);
    UInt64 tail = length - head - aCapacity;
    if (tail > 0)
        ::munmap(start + head + aCapacity, tail);
    XAllocation block;
    block.itsData = start + head;
    block.itsCapacity = aCapacity;
    block.itsMapped = true;
    ::madvise(block.itsData, aCapacity, MADV_HUGEPAGE); // a hint; failure is harmless
    return block;
}

XMemoryManager::XAllocation XMemoryManager::Allocate(UInt64 aSize, bool aZeroed)
{
    XAssert(aSize > 0);
    if (aSize > kMaxBlockSize)
        ThrowOutOfMemory(aSize);
    XAllocation block;
    if (aSize < kMapThreshold)
    {
        block.itsCapacity = RoundUp(aSize, kHeapAlignment);
        block.itsData = static_cast<UInt8 *>(::operator new(
            block.itsCapacity, std::align_val_t(kHeapAlignment), std::nothrow));
        if (block.itsData == nullptr)
            ThrowOutOfMemory(aSize);
        block.itsZeroFrom = block.itsCapacity;
        if (aZeroed)
            std::memset(block.itsData, 0, aSize);
    }
    else
    {
        UInt64 capacity = RoundUp(aSize, kMapAlignment);
        if (TakeFromCache(capacity, block))
        {
            block.itsZeroFrom = block.itsCapacity;
            if (aZeroed)
                std::memset(block.itsData, 0, aSize);
        }
        else
        {
            block = MapFresh(capacity); // zero-filled by the system
            block.itsZeroFrom = 0;
        }
    }
    itsBytesInUse.fetch_add(block.itsCapacity, std::memory_order_relaxed);
    return block;
}

XMemoryManager::XAllocation XMemoryManager::Reallocate(const XAllocation & anOld, UInt64 aKeep,
                                                       UInt64 aNewSize)
{
    XAssert(aKeep <= anOld.itsCapacity && aKeep <= aNewSize);
    if (aNewSize > kMaxBlockSize)
        ThrowOutOfMemory(aNewSize);
    if (anOld.itsMapped && aNewSize >= kMapThreshold)
    {
        // Moves the pages instead of copying bytes; new pages come zero-filled.
        UInt64 capacity = RoundUp(aNewSize, kMapAlignment);
        void * moved = ::mremap(anOld.itsData, anOld.itsCapacity, capacity, MREMAP_MAYMOVE);
        if (moved == MAP_FAILED)
            ThrowOutOfMemory(aNewSize);
        XAllocation block;
        block.itsData = static_cast<UInt8 *>(moved);
        block.itsCapacity = capacity;
        block.itsMapped = true;
        block.itsZeroFrom = std::min(capacity, std::max(anOld.itsCapacity, aKeep));
        if (capacity >= anOld.itsCapacity)
            itsBytesInUse.fetch_add(capacity - anOld.itsCapacity, std::memory_order_relaxed);
        else
            itsBytesInUse.fetch_sub(anOld.itsCapacity - capacity, std::memory_order_relaxed);
        return block;
    }
    XAllocation block = Allocate(aNewSize, false);
    if (aKeep > 0)
        std::memcpy(block.itsData, anOld.itsData, aKeep);
    block.itsZeroFrom = std::max(block.itsZeroFrom, aKeep);
    Free(anOld);
    return block;
}

void XMemoryManager::Free(const XAllocation & aBlock)
{
    if (aBlock.itsData == nullptr)
        return;
    itsBytesInUse.fetch_sub(aBlock.itsCapacity, std::memory_order_relaxed);
    if (!aBlock.itsMapped)
    {
        ::operator delete(aBlock.itsData, std::align_val_t(kHeapAlignment));
        return;
    }
    std::vector<XAllocation> evicted;
    {
        std::lock_guard<std::mutex> guard(itsCacheMutex);
        if (aBlock.itsCapacity <= itsCacheLimit)
        {
            itsCache.push_back(aBlock);
            itsCachedBytes += aBlock.itsCapacity;
            while (itsCachedBytes > itsCacheLimit)
            {
                evicted.push_back(itsCache.front());
                itsCachedBytes -= itsCache.front().itsCapacity;
                itsCache.erase(itsCache.begin());
            }
        }
        else
            evicted.push_back(aBlock);
    }
    for (const XAllocation & block : evicted)
        Unmap(block);
}

void XMemoryManager::MakeHeapImage(XMemoryHandle & aHandle, UInt64 aSize)
{
    if (aSize == 0)
    {
        aHandle.ReplaceBlock(nullptr, 0);
        return;
    }
    XMemoryHandle::XBlock * block = XMemoryHandle::NewHeapBlock(aSize, false);
    try
    {
        XLock lock(aHandle, kLockRead);
        UInt64 count = std::min(aSize, aHandle.GetDataSize());
        if (count > 0)
            std::memcpy(block->itsData, aHandle.GetData(), count);
        if (count < aSize)
            std::memset(block->itsData + count, 0, aSize - count);
    }
    catch (...)
    {
        XMemoryHandle::ReleaseBlock(block);
        throw;
    }
    aHandle.ReplaceBlock(block, aSize);
}
