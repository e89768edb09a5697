#include "XMaskRowWriter.h"

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "XIntelCPUInfo.h"

XMaskRowWriter::XMaskRowWriter(UInt32 aRowBytes, UInt64 aMaskBytes)
{
    if (aMaskBytes >= kStreamBytes && XIntelCPUInfo::HasFeature(kCPUFeatureAVX))
        itsRow.resize(aRowBytes);
}

XMaskRowWriter::~XMaskRowWriter()
{
    if (IsStreaming())
        _mm_sfence();
}

[[gnu::target("avx")]] void XMaskRowWriter::Stream(UInt8 * aDest, const UInt8 * aSource, UInt64 aCount)
{
    // Ordinary stores up to the first 32-byte boundary and after the last one.
    const UInt64 misalignment = reinterpret_cast<std::uintptr_t>(aDest) % 32;
    const UInt64 head = misalignment == 0 ? 0 : std::min<UInt64>(aCount, 32 - misalignment);
    const UInt64 end = head + (aCount - head) / 32 * 32;
    if (head > 0)
        std::memcpy(aDest, aSource, head);
    for (UInt64 i = head; i < end; i += 32)
        _mm256_stream_si256(reinterpret_cast<__m256i *>(aDest + i),
                            _mm256_loadu_si256(reinterpret_cast<const __m256i *>(aSource + i)));
    if (end < aCount)
        std::memcpy(aDest + end, aSource + end, aCount - end);
}
