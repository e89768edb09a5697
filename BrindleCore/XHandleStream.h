#pragma once
// A stream whose medium is a memory handle.
//
// The stream's extent is the handle's data size; writing past the end grows the handle, whose
// block is reserved ahead in steps of at least aGrowBy bytes and at least doubling, so that a
// stream written a little at a time costs amortised constant time per byte. A large block
// written at once (XStream hands such blocks to the medium directly) reserves exactly its end.
// Bytes between the old end and a write that starts beyond it read as zero.
//
// Locking: each access to the medium takes its own XLock on the handle (mode 2 to read, 1 to
// write), so other threads may lock the handle between accesses; the stream itself serves one
// thread. Because the stream keeps a window of the handle in its buffer, the handle's contents
// and size belong to the stream while it lives: call Flush before reading the handle elsewhere,
// and do not change the handle through other means meanwhile.
//
// The byte order is the platform's unless set with SetByteOrder. The destructor flushes; a
// failure there is lost, so call Flush to see it.

#include "XMemoryHandle.h"
#include "XStream.h"

class XHandleStream : public XStream
{
public:
    static constexpr UInt64 kDefaultGrowBy = 0x10000;

    explicit XHandleStream(XMemoryHandle & aHandle, UInt64 aGrowBy = kDefaultGrowBy);
    ~XHandleStream() override;

    XMemoryHandle & GetHandle() const { return itsHandle; }

protected:
    SInt64 GetExtentSelf() const override;
    void SetExtentSelf(SInt64 anExtent) override;
    void SetPhysicalSizeSelf(SInt64 aSize) override;
    UInt64 ReadMediumSelf(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) override;
    void WriteMediumSelf(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount) override;

private:
    XMemoryHandle & itsHandle;
    UInt64 itsGrowBy;
};
