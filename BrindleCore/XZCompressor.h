#pragma once
// Deflate (zlib) compression into a memory handle.
//
// The compressed handle holds an 8-byte header and then the deflate data:
//   bytes 0-3  the uncompressed size, unsigned 32 bits, little-endian
//   byte  4    the form: 1 a zlib stream (RFC 1950), 2 raw deflate (RFC 1951)
//   bytes 5-7  'B' 'Z' 'C'
// so that XZDecompressor knows both the form and the size of its result before it inflates.
// The header is the same whatever the platform's byte order.

#include "XMemoryHandle.h"
#include "XTypes.h"

class XZCompressor
{
public:
    static constexpr UInt64 kHeaderSize = 8;
    static constexpr UInt8 kFormZlib = 1;
    static constexpr UInt8 kFormRaw = 2;

    // aRawDeflate false writes a zlib stream (with its checksum), true raw deflate. aLevel is
    // zlib's: -1 the default, 0 none to 9 best; XException kErrBadArgument otherwise.
    explicit XZCompressor(bool aRawDeflate = false, SInt32 aLevel = -1);

    bool IsRawDeflate() const { return itsRawDeflate; }
    SInt32 GetLevel() const { return itsLevel; }

    // Compresses aSize bytes into a new handle of exactly the compressed size.
    XMemoryHandle CompressToMemory(const void * aData, UInt32 aSize) const;

private:
    bool itsRawDeflate;
    SInt32 itsLevel;
};
