#include "XZDecompressor.h"

#include <zlib.h>

#include <algorithm>
#include <string>

#include "XException.h"
#include "XLock.h"
#include "XZCompressor.h"

namespace
{
// Deflate never expands data more than 1032 times.
constexpr UInt64 kMaxDeflateRatio = 1032;
constexpr UInt64 kMaxDeflateSlack = 64;

[[noreturn]] void ThrowDamaged(const std::string & aDetail)
{
    throw XException(kErrCompression, "compressed data: " + aDetail);
}

// Inflates aPacked bytes into exactly aSize bytes at anOutput.
void Inflate(z_stream & aStream, const UInt8 * aInput, UInt64 aPacked, UInt8 * anOutput,
             UInt64 aSize)
{
    UInt8 probe = 0;
    const UInt8 * next = aInput;
    UInt64 left = aPacked;
    UInt64 produced = 0;
    for (;;)
    {
        if (aStream.avail_in == 0 && left > 0)
        {
            UInt64 take = std::min<UInt64>(left, 1u << 30);
            aStream.next_in = const_cast<Bytef *>(next);
            aStream.avail_in = uInt(take);
            next += take;
            left -= take;
        }
        bool full = produced == aSize;
        aStream.next_out = full ? &probe : anOutput + produced;
        aStream.avail_out = full ? 1u : uInt(aSize - produced); // aSize fits 32 bits
        uInt room = aStream.avail_out;
        int status = inflate(&aStream, Z_NO_FLUSH);
        UInt64 made = room - aStream.avail_out;
        if (full && made > 0)
            ThrowDamaged("inflates beyond " + std::to_string(aSize) + " bytes");
        produced += full ? 0 : made;
        if (status == Z_STREAM_END)
            break;
        if (status == Z_BUF_ERROR)
        {
            if (aStream.avail_in == 0 && left == 0)
                ThrowDamaged("ends early");
            continue;
        }
        if (status != Z_OK)
            ThrowDamaged(aStream.msg != nullptr ? aStream.msg : "inflate failed");
    }
    if (produced != aSize)
        ThrowDamaged("inflates to " + std::to_string(produced) + " bytes, not " +
                     std::to_string(aSize));
    if (aStream.avail_in != 0 || left != 0)
        ThrowDamaged("bytes after the end of the deflate data");
}
} // namespace

XZDecompressor::XZDecompressor() = default;

XMemoryHandle XZDecompressor::DecompressFromMemory(const XMemoryHandle & aCompressed) const
{
    XLock lock(aCompressed, kLockRead);
    return DecompressFromMemory(aCompressed.GetData(), aCompressed.GetDataSize());
}

XMemoryHandle XZDecompressor::DecompressFromMemory(const void * aData, UInt64 aByteCount) const
{
    if (aByteCount < XZCompressor::kHeaderSize)
        ThrowDamaged(std::to_string(aByteCount) + " bytes, shorter than the header");
    const auto * in = static_cast<const UInt8 *>(aData);
    UInt64 size = UInt64(in[0]) | UInt64(in[1]) << 8 | UInt64(in[2]) << 16 | UInt64(in[3]) << 24;
    UInt8 form = in[4];
    if ((form != XZCompressor::kFormZlib && form != XZCompressor::kFormRaw) || in[5] != 'B' ||
        in[6] != 'Z' || in[7] != 'C')
        ThrowDamaged("unknown header");
    UInt64 packed = aByteCount - XZCompressor::kHeaderSize;
    if (size > packed * kMaxDeflateRatio + kMaxDeflateSlack)
        ThrowDamaged(std::to_string(packed) + " bytes cannot inflate to " + std::to_string(size));

    z_stream zs{};
    int windowBits = form == XZCompressor::kFormRaw ? -MAX_WBITS : MAX_WBITS;
    if (inflateInit2(&zs, windowBits) != Z_OK)
        throw XException(kErrCompression, "inflateInit2 failed");
    struct XEnd
    {
        z_stream * itsStream;
        ~XEnd() { inflateEnd(itsStream); }
    } end{&zs};

    XMemoryHandle result(size);
    {
        XLock resultLock(result, kLockWrite);
        Inflate(zs, in + XZCompressor::kHeaderSize, packed, static_cast<UInt8 *>(result.GetData()),
                size);
    }
    return result;
}

