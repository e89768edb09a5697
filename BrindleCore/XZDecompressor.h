#pragma once
// Inflates what XZCompressor made (see there for the form).
//
// A damaged input (a short or wrong header, a size that the data cannot produce, data that does
// not inflate to exactly that size, bytes after its end) raises XException kErrCompression; the
// result is allocated only after the size was found possible for the data's length.

#include "XMemoryHandle.h"
#include "XTypes.h"

class XZDecompressor
{
public:
    XZDecompressor();

    XMemoryHandle DecompressFromMemory(const XMemoryHandle & aCompressed) const;
    XMemoryHandle DecompressFromMemory(const void * aData, UInt64 aByteCount) const;
};
