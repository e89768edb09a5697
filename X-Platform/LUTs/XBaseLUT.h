#pragma once
// The storage of a look-up table: its entries in an owned XMemoryHandle, locked like a volume.
// A table of n entries keeps n - 1 as its last entry index, so an empty table holds 0xFFFFFFFF
// there and GetSize answers 0.
//
// The entries may be touched only under an XLock on the table: LockSelf passes the lock on to
// the handle and notes where the entries lie, and that address stays good until the unlock.

#include <atomic>

#include "XLockable.h"
#include "XStorable.h"
#include "XTypes.h"

class XMemoryHandle;

class XBaseLUT : public XLockable
{
public:
    ~XBaseLUT() override;

    // Entry count, in 32 bits: 0 for an empty table.
    UInt32 GetSize() const { return itsLastEntry + 1; }
    UInt32 GetLastEntry() const { return itsLastEntry; }
    bool IsEmpty() const { return itsLastEntry == kNoEntry; }
    // Bytes of the entries' handle.
    virtual UInt64 GetDataSize() const;

protected:
    static constexpr UInt32 kNoEntry = 0xFFFFFFFFu;

    // aSize entries of anEntryBytes bytes, zero.
    XBaseLUT(UInt32 aSize, UInt32 anEntryBytes);
    // Shares the other's entries (copy on write), under a read lock on it.
    XBaseLUT(const XBaseLUT & anOther);
    // The other's handle and fetcher; the size follows the handle.
    XBaseLUT & operator=(const XBaseLUT & anOther);

    void LockSelf(XLockMode aMode) const override;
    void UnlockSelf(XLockMode aMode) const override;

    // The entries; good only under a lock.
    void * GetDataPointer() const { return itsDataPointer.load(std::memory_order_relaxed); }
    const XMemoryHandle & GetHandle() const { return *itsData; }
    // Takes over aHandle as the entries of a table of aSize entries.
    void ReplaceData(XMemoryHandle * aHandle, UInt32 aSize);
    // Reads the entries' handle object of a stream form that counts aCount entries of
    // anEntryBytes each: XException kErrDamagedStream when the handle holds another number of
    // bytes. A null object counts as no bytes. The caller owns the handle.
    static XMemoryHandle * ReadEntries(XStream & aStream, UInt32 aCount, UInt32 anEntryBytes,
                                       XStorable::XOptions anOptions);

private:
    XMemoryHandle * itsData;
    UInt32 itsLastEntry;
    // Written by every LockSelf: readers that lock at once all store the same address.
    mutable std::atomic<void *> itsDataPointer{nullptr};
};
