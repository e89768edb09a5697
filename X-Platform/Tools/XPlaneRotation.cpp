#include "XPlaneRotation.h"

#include <algorithm>
#include <cstring>

#if defined(__SSSE3__)
#include <tmmintrin.h>
#endif

#include "XBasePackedVolume.h"
#include "XLock.h"
#include "XVoxelBytes.h"

namespace
{
template <UInt32 N>
void ReverseRowScalar(const UInt8 * aSource, UInt8 * aDest, UInt32 aWidth)
{
    using Voxel = XVoxelBytes<N>;
    const Voxel * in = reinterpret_cast<const Voxel *>(aSource);
    Voxel * out = reinterpret_cast<Voxel *>(aDest);
    for (UInt32 x = 0; x < aWidth; ++x)
        out[aWidth - 1 - x] = in[x];
}

#if defined(__SSSE3__)
// The byte shuffle that reverses the order of 16 / N voxels of N bytes in a register.
template <UInt32 N>
__m128i ReversalMask()
{
    alignas(16) UInt8 mask[16];
    for (UInt32 i = 0; i < 16; ++i)
        mask[i] = UInt8((15 - i) / N * N + i % N);
    return _mm_load_si128(reinterpret_cast<const __m128i *>(mask));
}

template <UInt32 N>
void ReverseRowVector(const UInt8 * aSource, UInt8 * aDest, UInt32 aWidth)
{
    constexpr UInt32 kLanes = 16 / N;
    const __m128i mask = ReversalMask<N>();
    UInt32 x = 0;
    for (; x + kLanes <= aWidth; x += kLanes)
    {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(aSource + x * N));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(aDest + (aWidth - x - kLanes) * N), _mm_shuffle_epi8(v, mask));
    }
    ReverseRowScalar<N>(aSource + x * N, aDest, aWidth - x);
}

// Turns a square block of kLanes rows of kLanes voxels (16 bytes a row): aOut row j receives
// column j of the block, reversed when aReverse.
template <UInt32 N>
void TurnBlock(const UInt8 * anIn, UInt64 anInStep, UInt8 * anOut, UInt64 anOutStep, bool aReverse,
               const __m128i & aReversal)
{
    constexpr UInt32 kLanes = 16 / N;
    __m128i r[16];
    for (UInt32 i = 0; i < kLanes; ++i)
        r[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(anIn + i * anInStep));
    // Interleave pairs of rows at growing widths until every register holds one column.
    UInt32 width = N;
    for (UInt32 span = 1; span < kLanes; span *= 2, width *= 2)
    {
        __m128i t[16];
        for (UInt32 i = 0; i < kLanes; i += 2 * span)
            for (UInt32 k = 0; k < span; ++k)
            {
                const __m128i a = r[i + k], b = r[i + k + span];
                switch (width)
                {
                case 1: t[i + 2 * k] = _mm_unpacklo_epi8(a, b), t[i + 2 * k + 1] = _mm_unpackhi_epi8(a, b); break;
                case 2: t[i + 2 * k] = _mm_unpacklo_epi16(a, b), t[i + 2 * k + 1] = _mm_unpackhi_epi16(a, b); break;
                case 4: t[i + 2 * k] = _mm_unpacklo_epi32(a, b), t[i + 2 * k + 1] = _mm_unpackhi_epi32(a, b); break;
                default: t[i + 2 * k] = _mm_unpacklo_epi64(a, b), t[i + 2 * k + 1] = _mm_unpackhi_epi64(a, b); break;
                }
            }
        std::memcpy(r, t, sizeof(__m128i) * kLanes);
    }
    for (UInt32 j = 0; j < kLanes; ++j)
    {
        const __m128i column = aReverse ? _mm_shuffle_epi8(r[j], aReversal) : r[j];
        _mm_storeu_si128(reinterpret_cast<__m128i *>(anOut + j * anOutStep), column);
    }
}
#endif

template <UInt32 N>
void ReverseRowOf(const UInt8 * aSource, UInt8 * aDest, UInt32 aWidth)
{
#if defined(__SSSE3__)
    if constexpr (16 % N == 0)
    {
        ReverseRowVector<N>(aSource, aDest, aWidth);
        return;
    }
#endif
    ReverseRowScalar<N>(aSource, aDest, aWidth);
}

// One plane of a quarter turn. aIn, anOut: the plane's first voxel; steps in bytes.
template <UInt32 N>
void TurnPlaneQuarter(const UInt8 * anIn, UInt64 anInRow, UInt8 * anOut, UInt64 anOutRow, UInt32 aWidth,
                      UInt32 aHeight, bool aClockwise)
{
    using Voxel = XVoxelBytes<N>;
    // The destination voxel of source voxel (x, y).
    auto destination = [&](UInt32 x, UInt32 y) {
        return anOut + (aClockwise ? UInt64(x) * anOutRow + UInt64(aHeight - 1 - y) * N
                                   : UInt64(aWidth - 1 - x) * anOutRow + UInt64(y) * N);
    };
    auto turnScalar = [&](UInt32 x0, UInt32 x1, UInt32 y0, UInt32 y1) {
        for (UInt32 y = y0; y < y1; ++y)
            for (UInt32 x = x0; x < x1; ++x)
                *reinterpret_cast<Voxel *>(destination(x, y)) = *reinterpret_cast<const Voxel *>(anIn + y * anInRow + x * N);
    };
    UInt32 blockedWidth = 0, blockedHeight = 0;
#if defined(__SSSE3__)
    if constexpr (16 % N == 0)
    {
        constexpr UInt32 kLanes = 16 / N;
        const __m128i reversal = ReversalMask<N>();
        blockedWidth = aWidth / kLanes * kLanes;
        blockedHeight = aHeight / kLanes * kLanes;
        // Clockwise, row x of the destination takes column x of the block reversed, starting at
        // column height - 1 - (y0 + kLanes - 1); counter-clockwise, row width - 1 - x takes it
        // as it is, from column y0, so the rows of the block go to the destination upward.
        for (UInt32 y0 = 0; y0 < blockedHeight; y0 += kLanes)
            for (UInt32 x0 = 0; x0 < blockedWidth; x0 += kLanes)
            {
                const UInt8 * in = anIn + y0 * anInRow + x0 * N;
                if (aClockwise)
                    TurnBlock<N>(in, anInRow, destination(x0, y0 + kLanes - 1), anOutRow, true, reversal);
                else
                    TurnBlock<N>(in, anInRow, destination(x0, y0), -SInt64(anOutRow), false, reversal);
            }
    }
#endif
    turnScalar(blockedWidth, aWidth, 0, aHeight);
    turnScalar(0, blockedWidth, blockedHeight, aHeight);
}
} // namespace

void XReverseRow(const UInt8 * aSource, UInt8 * aDest, UInt32 aWidth, UInt32 aVoxelBytes)
{
    XDispatchVoxelBytes(aVoxelBytes, [&](auto aSize) { ReverseRowOf<decltype(aSize)::value>(aSource, aDest, aWidth); });
}

void XReversePlaneRows(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, bool anUpsideDown)
{
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    const UInt32 width = aSource.GetWidth(), height = aSource.GetHeight(), depth = aSource.GetDepth();
    const UInt32 voxelBytes = UInt32(aSource.GetVoxelBytes());
    for (UInt32 z = 0; z < depth; ++z)
    {
        const UInt8 * in = aSource.GetLayerPtr(SInt32(z));
        UInt8 * out = aDest.GetLayerPtr(SInt32(z));
        for (UInt32 y = 0; y < height; ++y)
            XReverseRow(in + y * aSource.GetRowBytes(), out + (anUpsideDown ? height - 1 - y : y) * aDest.GetRowBytes(),
                        width, voxelBytes);
    }
}

void XTurnPlanesQuarter(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, bool aClockwise)
{
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    const UInt32 width = aSource.GetWidth(), height = aSource.GetHeight(), depth = aSource.GetDepth();
    XDispatchVoxelBytes(UInt32(aSource.GetVoxelBytes()), [&](auto aSize) {
        for (UInt32 z = 0; z < depth; ++z)
            TurnPlaneQuarter<decltype(aSize)::value>(aSource.GetLayerPtr(SInt32(z)), aSource.GetRowBytes(),
                                                     aDest.GetLayerPtr(SInt32(z)), aDest.GetRowBytes(), width,
                                                     height, aClockwise);
    });
}
