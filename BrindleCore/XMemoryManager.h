#pragma once
// The process-wide allocator of memory-handle blocks.
//
// Blocks are aligned to 64 bytes. Small blocks come from the heap (aligned operator new). Blocks
// of kMapThreshold bytes and more are anonymous mappings, rounded to 2 MiB, aligned to 2 MiB and
// marked for transparent huge pages: the system hands them out zero-filled, so a zeroed large
// block costs no extra pass, and growing one moves pages instead of bytes (mremap).
//
// Freed large blocks are kept in a small cache, up to GetCacheLimit bytes, and handed out again
// to requests of nearly their size. Fresh pages cost a page fault each on first touch, which
// makes a copy into fresh memory several times slower than into memory already in use; reuse
// keeps repeated work on big images (copy-on-write of a volume, reading one from a file) at
// the speed of the copy itself. TrimCache gives the cached memory back to the system.
//
// MakeHeapImage turns any handle (for example one over a mapped file) into a private copy in
// heap memory.

#include <atomic>
#include <mutex>
#include <vector>

#include "XTypes.h"

class XMemoryHandle;

class XMemoryManager
{
public:
    static constexpr UInt64 kMapThreshold = 4ull << 20;
    static constexpr UInt64 kMapAlignment = 2ull << 20;
    static constexpr UInt64 kHeapAlignment = 64;
    // Requests above this are refused at once (XException kErrOutOfMemory): no machine that this
    // runs on has that much memory, and the rounding arithmetic stays far from overflow.
    static constexpr UInt64 kMaxBlockSize = 1ull << 46;

    static XMemoryManager & GetManager();

    XMemoryManager(const XMemoryManager &) = delete;
    XMemoryManager & operator=(const XMemoryManager &) = delete;

    // Replaces aHandle's block by a copy in heap memory of aSize bytes: the first
    // min(aSize, data size) bytes are the handle's (fetched and turned over as a read lock
    // would), the rest are zero. The handle's data size becomes aSize. Like Resize, this changes
    // the handle itself: no other thread may use the same handle object meanwhile.
    void MakeHeapImage(XMemoryHandle & aHandle, UInt64 aSize);

    // The cache of freed large blocks.
    UInt64 GetCacheLimit() const;
    void SetCacheLimit(UInt64 aBytes);
    UInt64 GetCachedBytes() const;
    void TrimCache();
    // Bytes of blocks handed out and not yet given back (heap and anonymous mappings).
    UInt64 GetBytesInUse() const { return itsBytesInUse.load(std::memory_order_relaxed); }

    // Raw blocks, for memory handles.
    struct XAllocation
    {
        UInt8 * itsData = nullptr;
        UInt64 itsCapacity = 0; // bytes that may be addressed from itsData
        bool itsMapped = false; // an anonymous mapping rather than heap memory
        UInt64 itsZeroFrom = 0; // after Allocate or Reallocate: bytes from here on are zero
    };
    // A block of at least aSize bytes (aSize > 0); its first aSize bytes are zero when aZeroed.
    // XException kErrOutOfMemory when it cannot be had.
    XAllocation Allocate(UInt64 aSize, bool aZeroed);
    // A block of at least aNewSize bytes holding the first aKeep bytes of anOld, which it
    // replaces (anOld is given back, also when this throws it is left as it was).
    XAllocation Reallocate(const XAllocation & anOld, UInt64 aKeep, UInt64 aNewSize);
    void Free(const XAllocation & aBlock);

private:
    XMemoryManager();
    ~XMemoryManager();

    XAllocation MapFresh(UInt64 aCapacity);
    bool TakeFromCache(UInt64 aCapacity, XAllocation & outBlock);
    static void Unmap(const XAllocation & aBlock);

    mutable std::mutex itsCacheMutex;
    std::vector<XAllocation> itsCache; // oldest first
    UInt64 itsCachedBytes = 0;
    UInt64 itsCacheLimit;
    std::atomic<UInt64> itsBytesInUse{0};
};
