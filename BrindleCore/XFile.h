#pragma once
// An open file, read and written at explicit offsets. Closed by the destructor.

#include "XFileSpec.h"
#include "XTypes.h"

enum XFileMode : UInt32
{
    kReadOnly = 0,   // an existing file, read only
    kReadWrite = 1,  // an existing file, or a new one, read and written; contents kept
    kCreate = 2      // a new or emptied file, read and written
};

class XFile
{
public:
    // Opens the file; XException 1004 with the system's reason if it cannot.
    XFile(const XFileSpec & aSpec, XFileMode aMode);
    XFile(const XFile &) = delete;
    XFile & operator=(const XFile &) = delete;
    ~XFile();

    const XFileSpec & GetFileSpec() const { return itsSpec; }
    XFileMode GetMode() const { return itsMode; }
    int GetDescriptor() const { return itsDescriptor; }

    // Reads up to aByteCount bytes at anOffset; returns how many there were before the end.
    UInt64 ReadAt(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) const;
    // Writes all bytes at anOffset; XException 1004 on failure.
    void WriteAt(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount);
    UInt64 GetSize() const;
    void SetSize(UInt64 aSize);
    // Makes the written data durable.
    void Sync();

private:
    // Large reads whose buffer and file offset sit differently within a cache line go through a
    // mapping of the file: the kernel's copy into user memory is about a third slower then, a
    // user-space copy from the mapped pages is not. Returns the bytes copied, which may be
    // fewer than asked (none when mapping is not possible); the caller reads the rest.
    UInt64 ReadThroughMapping(SInt64 anOffset, UInt8 * aBuffer, UInt64 aByteCount) const;

    XFileSpec itsSpec;
    XFileMode itsMode;
    int itsDescriptor = -1;
};
