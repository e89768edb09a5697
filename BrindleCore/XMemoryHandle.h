#pragma once
// A block of bytes that behaves as a value, with locking, lazy fetching and a stream form.
//
// Value semantics: copying a handle (constructor or operator=) shares its block, which costs a
// reference count. After that a write through one copy never shows in the other: a handle whose
// block is shared (or is a read-only mapping of a file) gets a block of its own when it is
// locked in mode 1 or 3, with the contents copied in mode 1 and not copied in mode 3. Mode 2
// keeps sharing. A handle that is locked for writing right now is never shared: a copy made
// meanwhile (by the writing thread, or under that thread's lock) gets its own copy of the bytes.
//
// Pointers: GetData is valid only while a lock is held on the handle (or on the volume that
// owns it and passes its lock on): fetching, swapping, unsharing and Purge replace the block
// between locks. Blocks are aligned to 64 bytes (blocks over a mapped file: see
// XMappedFileMemoryHandle).
//
// Sizes: GetDataSize is the byte count asked for. GetPaddedSize is the byte count of the block
// really held (at least the data size when the block is in memory, 0 without a block); the
// bytes between the two may be read but their values are undefined. A new handle and the bytes
// that Resize adds are zero. Sizes above XMemoryManager::kMaxBlockSize, and blocks that cannot be
// had, raise XException kErrOutOfMemory.
//
// Threads: the contents are guarded by XLock. The handle object itself (its size, its block,
// its swap and compression settings) is changed by assignment, Resize, Reserve, Empty,
// SetSwapOnLock, SetCompression and ReadStream2; like any value, it must not be changed while
// another thread uses the same handle object or while pointers from GetData are in use. Copying
// a handle reads its block reference: do it under a lock on the handle (or its owner), or on the
// thread that holds the write lock.
//
// Operations that take their own lock: CopyDataTo, GetByte, operator== (read); CopyDataFrom,
// SetByte (read and write; write alone when the whole block is overwritten); Clear (write);
// CloneMemory, WriteStream2 (read).
//
// Lazy data: a handle read with the skip option keeps its size but holds no block; a fetcher
// (XDataFetcher, see XLockable) attached later brings the bytes at the first lock. Purge lets go
// of bytes that the fetcher can bring back. A lock in mode 1 or 3 detaches the fetcher: the
// bytes then differ from what it would bring, so they are no longer purgeable.
//
// Stream form (class word 33, version 0), written by WriteStream2 after the object's class word:
//   Write32   the class word 33 (the handle's level of the chain)
//   Write64S  data size in bytes
//   Write32   compression (XCompressionType): 0 none, 1 deflate
//   Write64S  stored byte count: the bytes that follow
//   bytes     none: the data size in bytes, raw; deflate: one zlib stream (RFC 1950) that
//             inflates to exactly the data size
// The bytes are written as they are in memory, whatever the stream's byte order: a handle holds
// bytes, and the owner of typed data swaps through SetSwapOnLock. Readers refuse (XException
// kErrDamagedStream) a negative size, an unknown compression, a stored count beyond the stream's
// end or different from the size for raw data, a deflate size that its stored count cannot
// produce, and inflated data that is damaged or of another size; they never allocate a claimed
// size that the stream cannot hold, and a deflated block grows only as inflating fills it.

#include <atomic>

#include "XByteSwap.h"
#include "XLockable.h"
#include "XStorable.h"
#include "XTypes.h"
#include "XVersion.h"

class XStream;
class XMemoryManager;
class XHandleStream;

class XMemoryHandle : public XStorable, public XLockable
{
public:
    enum XCompressionType : UInt32
    {
        kNone = 0,
        kDeflate = 1
    };

    static constexpr UInt32 kClassID = 33;
    // The bytes of the header that WriteStream2 writes in front of the data.
    static constexpr UInt64 kStreamHeaderSize = 24;

    // What a new block holds: zeros, or whatever the memory held before (for a writer that is
    // about to overwrite every byte).
    enum XContents : UInt32
    {
        kZeroed = 0,
        kUndefined = 1
    };

    XMemoryHandle();
    // A zero-filled block of aSize bytes.
    explicit XMemoryHandle(UInt64 aSize);
    XMemoryHandle(UInt64 aSize, XContents aContents);
    // Reads the stream form (after the object's class word); with aSkipData the data is stepped
    // over and the handle keeps its size without a block.
    explicit XMemoryHandle(XStream & aStream, bool aSkipData = false);
    XMemoryHandle(const XMemoryHandle & anOther);
    // Takes the block; anOther is left empty.
    XMemoryHandle(XMemoryHandle && anOther) noexcept;
    XMemoryHandle & operator=(const XMemoryHandle & anOther);
    // Takes the block, except into a handle locked for writing, which copies (and may throw).
    XMemoryHandle & operator=(XMemoryHandle && anOther);
    ~XMemoryHandle() override;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    // Enters class 33 ("Memory Handle", super 48) with its stream, read and default creators
    // into XClassRegistry. Called once at start-up; later calls do nothing.
    static void RegisterClass();

    // The bytes; valid only under a lock. Null when the handle holds no block.
    void * GetData() { return DataOf(Block()); }
    const void * GetData() const { return DataOf(Block()); }
    UInt64 GetDataSize() const { return itsSize; }
    UInt64 GetPaddedSize() const;
    // The address space that the block takes (a mapping counts whole pages).
    UInt64 GetAddressSpaceMetric() const;
    // True when the block is shared with another handle (for tests and diagnostics).
    bool IsShared() const;
    // True when the handle holds a block (false before a lazy fetch and after Purge).
    bool HasBlock() const { return Block() != nullptr; }

    // A new handle with a copy of the bytes of its own.
    XMemoryHandle CloneMemory() const;
    // Copy aCount bytes at anOffset out of or into the handle. XException kErrBadArgument when
    // the range leaves the data.
    void CopyDataTo(void * aDest, UInt64 anOffset, UInt64 aCount) const;
    void CopyDataFrom(const void * aSource, UInt64 anOffset, UInt64 aCount);
    void Clear(UInt8 aValue = 0);

    // Changes the data size, keeping the bytes up to the smaller size; bytes added are zero.
    // Growing within the padded size keeps the block (unless it is shared or a file mapping).
    // Shrinking keeps the block, except to 0 (the block is dropped) or below a quarter of a
    // block of 1 MiB or more (a smaller block replaces it).
    void Resize(UInt64 aSize);
    // Makes the padded size at least aCapacity, keeping the bytes; the data size stays.
    void Reserve(UInt64 aCapacity);
    // Drops the block and the fetcher; the size becomes 0.
    void Empty();
    // Lets go of the block when a fetcher can bring it back: only with a fetcher attached, the
    // data fetched, no lock held and no fetch through that fetcher running. The next lock
    // fetches again. True when the block was dropped. Safe against locks on other threads.
    bool Purge();

    // The bytes are turned over once, as aMode says, at the next lock in any mode; the mode then
    // returns to kSwapNone. A copy takes the pending mode with it.
    void SetSwapOnLock(XByteSwapMode aMode)
    {
        itsSwapOnLock.store(aMode, std::memory_order_release);
    }
    XByteSwapMode GetSwapOnLock() const
    {
        return XByteSwapMode(itsSwapOnLock.load(std::memory_order_acquire));
    }

    // One byte, under a lock of its own. XException kErrBadArgument outside the data.
    UInt8 GetByte(UInt64 anIndex) const;
    void SetByte(UInt64 anIndex, UInt8 aValue);

    // Equal sizes and equal bytes.
    bool operator==(const XMemoryHandle & anOther) const;
    bool operator!=(const XMemoryHandle & anOther) const { return !(*this == anOther); }

    // How WriteStream2 stores the bytes; aLevel is zlib's (-1 default, 0 to 9). A handle read
    // from a stream takes the compression that it was stored with.
    void SetCompression(XCompressionType aType, SInt32 aLevel = -1);
    XCompressionType GetCompression() const { return itsCompression; }
    SInt32 GetCompressionLevel() const { return itsCompressionLevel; }

    // Reads a handle's header without its data and leaves the stream at the data. With
    // aVersionRead false the stream is at the object's class word (as WriteObject wrote it);
    // with true that word was read already and the stream is at the handle's own level word.
    // Gives the data size, the compression, the stream offset of the data and (second form) the
    // stored byte count. XException kErrWrongClass or kErrDamagedStream as for reading.
    static void GetHandleInfoFromStream(XStream & aStream, SInt64 & outSize,
                                        XCompressionType & outCompression, SInt64 & outDataOffset,
                                        bool aVersionRead);
    static void GetHandleInfoFromStream(XStream & aStream, SInt64 & outSize,
                                        XCompressionType & outCompression, SInt64 & outDataOffset,
                                        SInt64 & outStoredCount, bool aVersionRead);

    // XStorable
    XVersion GetVersion() const override { return GetClassVersion(); }
    XMemoryHandle * Clone() const override;
    // Exact for raw data; for deflate, zlib's bound on the compressed size.
    UInt64 GetStreamUsage() const override;
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    friend class XMemoryManager;
    friend class XHandleStream;

    // A reference-counted block. Heap blocks belong to XMemoryManager; file blocks are private,
    // read-only mappings that are never written (a write lock copies them first).
    struct XBlock
    {
        enum XKind : UInt32
        {
            kHeap = 0,
            kFileMap = 1
        };
        std::atomic<UInt32> itsRefs{1};
        XKind itsKind = kHeap;
        bool itsMapped = false; // heap blocks: an anonymous mapping of the manager
        UInt8 * itsData = nullptr;
        UInt64 itsCapacity = 0;
        void * itsMapBase = nullptr; // file blocks: the whole mapping
        UInt64 itsMapLength = 0;
    };

    void LockSelf(XLockMode aMode) const override;
    void UnlockSelf(XLockMode aMode) const override;

    void ReadStream2_XMemoryHandle(XStream & aStream, XOptions anOptions);
    void WriteStream2_XMemoryHandle(XStream & aStream, XOptions anOptions) const;

    static XBlock * NewHeapBlock(UInt64 aSize, bool aZeroed);
    // True when a writer must copy aBlock first: it is shared, or a file mapping.
    static bool NeedsOwnCopy(const XBlock * aBlock);
    static void ReleaseBlock(XBlock * aBlock);
    // Grows or shrinks the allocation of a block this handle alone holds, keeping its first
    // aKeep bytes; returns the offset from which the new allocation is known to be zero.
    static UInt64 ReallocateBlock(XBlock * aBlock, UInt64 aKeep, UInt64 aCapacity);
    // Puts aBlock (whose reference this handle takes over; may be null) in place of the
    // handle's block and sets the data size.
    void ReplaceBlock(XBlock * aBlock, UInt64 aSize);

    XBlock * Block() const { return itsBlock.load(std::memory_order_acquire); }
    static UInt8 * DataOf(XBlock * aBlock) { return aBlock != nullptr ? aBlock->itsData : nullptr; }

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    void ReadDeflated(XStream & aStream, UInt64 aSize, UInt64 aStoredCount);
    void WriteDeflated(XStream & aStream) const;

    // The block for a copy: shared, or a private copy while this handle is locked for writing.
    XBlock * ShareBlock() const;
    // Lock-time work: the pending swap, a block for data that never came, unsharing for writes.
    void PrepareBlock(XLockMode aMode) const;
    // Makes the size aSize for a writer that fills [aFilledFrom, aSize) at once: only the bytes
    // between the old size and aFilledFrom are zeroed. The block becomes this handle's own.
    void GrowForWrite(UInt64 aSize, UInt64 aFilledFrom);
    void RangeCheck(UInt64 anOffset, UInt64 aCount, const char * anOperation) const;

    // itsUse: bits 0-31 count LockSelf calls in force, bits 32-62 those of modes 1 and 3,
    // bit 63 is set while Purge drops the block.
    static constexpr UInt64 kUseWriteUnit = 1ull << 32;
    static constexpr UInt64 kUseWriteMask = 0x7FFFFFFFull << 32;
    static constexpr UInt64 kUsePurging = 1ull << 63;

    mutable std::atomic<XBlock *> itsBlock{nullptr};
    UInt64 itsSize = 0;
    mutable std::atomic<UInt64> itsUse{0};
    mutable std::atomic<UInt32> itsSwapOnLock{kSwapNone};
    XCompressionType itsCompression = kNone;
    SInt32 itsCompressionLevel = -1;
};
