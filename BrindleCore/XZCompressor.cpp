#include "XZCompressor.h"

#include <zlib.h>

#include <string>

#include "XException.h"
#include "XLock.h"

XZCompressor::XZCompressor(bool aRawDeflate, SInt32 aLevel)
    : itsRawDeflate(aRawDeflate), itsLevel(aLevel)
{
    if (aLevel < -1 || aLevel > 9)
        throw XException(kErrBadArgument, "compression level " + std::to_string(aLevel));
}

XMemoryHandle XZCompressor::CompressToMemory(const void * aData, UInt32 aSize) const
{
    z_stream zs{};
    int windowBits = itsRawDeflate ? -MAX_WBITS : MAX_WBITS;
    if (deflateInit2(&zs, itsLevel, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw XException(kErrCompression, "deflateInit2 failed");
    struct XEnd
    {
        z_stream * itsStream;
        ~XEnd() { deflateEnd(itsStream); }
    } end{&zs};

    UInt64 bound = deflateBound(&zs, uLong(aSize));
    XMemoryHandle result(kHeaderSize + bound);
    {
        XLock lock(result, kLockWrite);
        auto * out = static_cast<UInt8 *>(result.GetData());
        out[0] = UInt8(aSize);
        out[1] = UInt8(aSize >> 8);
        out[2] = UInt8(aSize >> 16);
        out[3] = UInt8(aSize >> 24);
        out[4] = itsRawDeflate ? kFormRaw : kFormZlib;
        out[5] = 'B';
        out[6] = 'Z';
        out[7] = 'C';
        zs.next_in = static_cast<Bytef *>(const_cast<void *>(aData));
        zs.avail_in = aSize;
        zs.next_out = out + kHeaderSize;
        zs.avail_out = uInt(bound);
        // deflateBound leaves room for the whole stream, so one call finishes it.
        if (deflate(&zs, Z_FINISH) != Z_STREAM_END)
            throw XException(kErrCompression, "deflate did not finish");
    }
    result.Resize(kHeaderSize + zs.total_out);
    return result;
}
