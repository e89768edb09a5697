#pragma once
// A memory handle whose block is a stretch of a file, mapped into memory.
//
// The pages are mapped private and read-only, so the file never changes through the handle:
// the operating system reads the bytes in as they are touched. A lock in mode 1 or 3 first
// copies the bytes into heap memory (mode 1) or takes a fresh block (mode 3), exactly as for a
// shared block, and the handle is an ordinary heap handle from then on. Copies share the mapping;
// it goes when the last of them lets go of it.
//
// The mapping starts at the page that holds anOffset; GetData points at anOffset itself, so its
// alignment is the offset's (64-byte aligned only when the offset is). GetPaddedSize reaches to
// the end of the last mapped page; GetAddressSpaceMetric is the whole mapping.
//
// The file must keep at least its present size while mapped: pages cut off by another process
// would fault. The handle streams like any memory handle (class word 33, its bytes).

#include "XFile.h"
#include "XFileSpec.h"
#include "XMemoryHandle.h"

class XMappedFileMemoryHandle : public XMemoryHandle
{
public:
    // Flags.
    static constexpr UInt32 kMapPopulate = 1;   // read all pages in at once
    static constexpr UInt32 kMapSequential = 2; // expect reading from front to back
    static constexpr UInt32 kMapRandom = 4;     // expect reading in no order

    // Maps aSize bytes at anOffset of the file. aMode is how the file is opened (kReadOnly or
    // kReadWrite; kCreate would empty it and is refused). XException kErrBadArgument for a
    // negative offset, a refused mode or unknown flags; kErrFileIO when the file cannot be opened
    // or mapped, or the stretch reaches past its end.
    XMappedFileMemoryHandle(const XFileSpec & aFileSpec, SInt64 anOffset, UInt64 aSize,
                            XFileMode aMode = kReadOnly, UInt32 aFlags = 0);
    XMappedFileMemoryHandle(const XMappedFileMemoryHandle & anOther);
    XMappedFileMemoryHandle & operator=(const XMappedFileMemoryHandle & anOther);
    ~XMappedFileMemoryHandle() override;

    const XFileSpec & GetFileSpec() const { return itsFileSpec; }
    SInt64 GetFileOffset() const { return itsFileOffset; }
    // True while the block is still the file mapping (before the first write lock).
    bool IsMapped() const;

    XMappedFileMemoryHandle * Clone() const override;

private:
    XFileSpec itsFileSpec;
    SInt64 itsFileOffset;
};
