#include "XVolumeResampleTool.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <immintrin.h>
#include <limits>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "XARGB32Volume.h"
#include "XAssert.h"
#include "XBGRA32Volume.h"
#include "XBSplineFilter.h"
#include "XBellFilter.h"
#include "XException.h"
#include "XGrey8Volume.h"
#include "XImagingErrors.h"
#include "XIntelCPUInfo.h"
#include "XLanczos3Filter.h"
#include "XLock.h"
#include "XProgress.h"
#include "XSimpleFilter.h"
#include "XThread.h"
#include "XTriangleFilter.h"
#include "XTruncateToSInt32.h"
#include "XVolumeRefusal.h"
#include "XWidestKernel.h"

namespace
{
using XContribution = XVolumeResampleTool::XContribution;
using XContributions = XVolumeResampleTool::XContributions;
using XSamples = std::vector<XContribution>;

// The widest half-width accepted of a filter: more would only make tables of absurd size.
constexpr double kMaxFilterSize = 256.0;

// j folded into 0..aSize - 1: -j below 0, 2 aSize - j - 1 from aSize on, again while outside.
SInt64 Mirror(SInt64 j, SInt64 aSize)
{
    while (j < 0 || j >= aSize)
        j = j < 0 ? -j : 2 * aSize - j - 1;
    return j;
}

XContribution MakeContribution(SInt64 anOffset, double aValue)
{
    XAssertText(anOffset >= std::numeric_limits<SInt32>::min() && anOffset <= std::numeric_limits<SInt32>::max(),
                "offset within 32 bits");
    return XContribution{static_cast<SInt32>(anOffset), XTruncateToSInt32(std::floor(aValue * 65535.0))};
}

UInt32 ExtentOf(const X3DRect & aRect, UInt32 anAxis)
{
    return anAxis == 0 ? aRect.GetWidth() : anAxis == 1 ? aRect.GetHeight() : aRect.GetDepth();
}

// Bytes weighed together: a block of a row in the Y and Z passes, a column of a strip of rows in
// the X pass. Their 32 sums of 32 bits fill eight SSE or four AVX2 registers.
constexpr UInt32 kLaneBytes = 32;

// The vector operations of the weighing, on four lanes (SSE4.1, which every processor of the
// build's baseline has) or on eight (AVX2, chosen at run time). Sums go by reference, so that
// no function passes a vector by value.
struct XSSELanes
{
    using XSums = __m128i;
    static constexpr UInt32 kCount = 4;
    // outSums = aWeight * the four bytes, widened; Add adds that to ioSums.
    static void Weigh(const UInt8 * aBytes, UInt32 aWeight, XSums & outSums)
    {
        UInt32 bytes;
        std::memcpy(&bytes, aBytes, sizeof(bytes));
        outSums = _mm_mullo_epi32(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(static_cast<int>(bytes))),
                                  _mm_set1_epi32(static_cast<int>(aWeight)));
    }
    static void Add(const UInt8 * aBytes, UInt32 aWeight, XSums & ioSums)
    {
        XSums sums;
        Weigh(aBytes, aWeight, sums);
        ioSums = _mm_add_epi32(ioSums, sums);
    }
    // The low bytes of sums >> 16, 32 of them from eight registers.
    static void Store(const XSums * aSums, UInt8 * aDest)
    {
        const __m128i mask = _mm_set1_epi32(0xFF);
        for (int half = 0; half < 2; ++half)
        {
            __m128i words[2];
            for (int i = 0; i < 2; ++i)
            {
                const XSums * sums = aSums + 4 * half + 2 * i;
                words[i] = _mm_packus_epi32(_mm_and_si128(_mm_srli_epi32(sums[0], 16), mask),
                                            _mm_and_si128(_mm_srli_epi32(sums[1], 16), mask));
            }
            _mm_storeu_si128(reinterpret_cast<__m128i *>(aDest + 16 * half), _mm_packus_epi16(words[0], words[1]));
        }
    }
};

struct XAVX2Lanes
{
    using XSums = __m256i;
    static constexpr UInt32 kCount = 8;
    [[gnu::target("avx2")]] static void Weigh(const UInt8 * aBytes, UInt32 aWeight, XSums & outSums)
    {
        outSums = _mm256_mullo_epi32(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(aBytes))),
                                     _mm256_set1_epi32(static_cast<int>(aWeight)));
    }
    [[gnu::target("avx2")]] static void Add(const UInt8 * aBytes, UInt32 aWeight, XSums & ioSums)
    {
        XSums sums;
        Weigh(aBytes, aWeight, sums);
        ioSums = _mm256_add_epi32(ioSums, sums);
    }
    // The packs work within each 128-bit half; the last step puts the groups of four in order.
    [[gnu::target("avx2")]] static void Store(const XSums * aSums, UInt8 * aDest)
    {
        const __m256i mask = _mm256_set1_epi32(0xFF);
        __m256i low[4];
        for (int i = 0; i < 4; ++i)
            low[i] = _mm256_and_si256(_mm256_srli_epi32(aSums[i], 16), mask);
        const __m256i bytes =
            _mm256_packus_epi16(_mm256_packus_epi32(low[0], low[1]), _mm256_packus_epi32(low[2], low[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(aDest),
                            _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
    }
};

// aDest[l] = the low byte of (sum of weight * aBase[offset * anElementBytes + l]) >> 16 over the
// taps (at least one), for l below kLaneBytes. The sums wrap in 32 bits; their low byte is that
// of the signed sums. They stay in registers from the first tap to the last.
template <class Lanes>
inline void WeighLanes(const UInt8 * aBase, SInt64 anElementBytes, const XContribution * aTap,
                       const XContribution * anEnd, UInt8 * aDest)
{
    constexpr UInt32 kRegisters = kLaneBytes / Lanes::kCount;
    typename Lanes::XSums sums[kRegisters];
    const UInt8 * source = aBase + aTap->itsOffset * anElementBytes;
    for (UInt32 r = 0; r < kRegisters; ++r)
        Lanes::Weigh(source + r * Lanes::kCount, static_cast<UInt32>(aTap->itsWeight), sums[r]);
    while (++aTap != anEnd)
    {
        source = aBase + aTap->itsOffset * anElementBytes;
        for (UInt32 r = 0; r < kRegisters; ++r)
            Lanes::Add(source + r * Lanes::kCount, static_cast<UInt32>(aTap->itsWeight), sums[r]);
    }
    Lanes::Store(sums, aDest);
}

// The same for aLanes lanes, any number of taps, one lane at a time: the ends of rows.
inline void WeighFewLanes(const UInt8 * aBase, SInt64 anElementBytes, const XContribution * aTap,
                          const XContribution * anEnd, UInt8 * aDest, UInt32 aLanes)
{
    for (UInt32 l = 0; l < aLanes; ++l)
    {
        UInt32 sum = 0;
        for (const XContribution * tap = aTap; tap != anEnd; ++tap)
            sum += static_cast<UInt32>(tap->itsWeight) * aBase[tap->itsOffset * anElementBytes + l];
        aDest[l] = static_cast<UInt8>(sum >> 16);
    }
}

// One destination row of the Y and Z passes: each byte from the same byte of the rows that the
// taps name, their offsets being in voxels of VoxelBytes bytes.
template <UInt32 VoxelBytes, class Lanes>
inline void WeighRow(const UInt8 * aBase, const XSamples & aTaps, UInt8 * aDest, UInt32 aWidth)
{
    const UInt64 bytes = UInt64(aWidth) * VoxelBytes;
    const XContribution * const first = aTaps.data();
    const XContribution * const end = first + aTaps.size();
    UInt64 b = 0;
    if (first != end)
        for (; b + kLaneBytes <= bytes; b += kLaneBytes)
            WeighLanes<Lanes>(aBase + b, VoxelBytes, first, end, aDest + b);
    WeighFewLanes(aBase + b, VoxelBytes, first, end, aDest + b, static_cast<UInt32>(bytes - b));
}

// Voxel (r, c) of a tile of 16 bytes by 16 / VoxelBytes rows at aSource goes to voxel (c, r) at
// aDest: rounds of interleaving row i with row i + n/2 transpose an n by n tile.
template <UInt32 VoxelBytes>
inline void TransposeTile(const UInt8 * aSource, SInt64 aSourceStride, UInt8 * aDest, SInt64 aDestStride)
{
    constexpr int kSize = 16 / VoxelBytes;
    __m128i rows[kSize];
    for (int i = 0; i < kSize; ++i)
        rows[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(aSource + i * aSourceStride));
    for (int round = 1; round < kSize; round *= 2)
    {
        __m128i mixed[kSize];
        for (int i = 0; i < kSize / 2; ++i)
        {
            if constexpr (VoxelBytes == 1)
            {
                mixed[2 * i] = _mm_unpacklo_epi8(rows[i], rows[i + kSize / 2]);
                mixed[2 * i + 1] = _mm_unpackhi_epi8(rows[i], rows[i + kSize / 2]);
            }
            else
            {
                mixed[2 * i] = _mm_unpacklo_epi32(rows[i], rows[i + kSize / 2]);
                mixed[2 * i + 1] = _mm_unpackhi_epi32(rows[i], rows[i + kSize / 2]);
            }
        }
        std::copy(mixed, mixed + kSize, rows);
    }
    for (int i = 0; i < kSize; ++i)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(aDest + i * aDestStride), rows[i]);
}

// Voxel (r, c) of aRows by aColumns voxels at aSource goes to voxel (c, r) at aDest; strides
// in bytes. Whole tiles go through TransposeTile, the edges voxel by voxel.
template <UInt32 VoxelBytes>
void Transpose(const UInt8 * aSource, SInt64 aSourceStride, UInt8 * aDest, SInt64 aDestStride, UInt32 aRows,
               UInt32 aColumns)
{
    constexpr UInt32 kSize = 16 / VoxelBytes;
    const auto move = [&](UInt32 r, UInt32 c) {
        std::memcpy(aDest + c * aDestStride + r * VoxelBytes, aSource + r * aSourceStride + c * VoxelBytes,
                    VoxelBytes);
    };
    UInt32 r = 0;
    for (; r + kSize <= aRows; r += kSize)
    {
        UInt32 c = 0;
        for (; c + kSize <= aColumns; c += kSize)
            TransposeTile<VoxelBytes>(aSource + r * aSourceStride + c * VoxelBytes, aSourceStride,
                                      aDest + c * aDestStride + r * VoxelBytes, aDestStride);
        for (UInt32 i = r; i < r + kSize; ++i)
            for (UInt32 j = c; j < aColumns; ++j)
                move(i, j);
    }
    for (; r < aRows; ++r)
        for (UInt32 c = 0; c < aColumns; ++c)
            move(r, c);
}

// Where a pass reads and writes: the first voxel of each box, strides in bytes, the extents of
// the destination box (and the source's width, for the X pass), and the weights of the axis.
struct XPassFrame
{
    const UInt8 * itsSource;
    UInt8 * itsDest;
    SInt64 itsSourceRow;
    SInt64 itsSourcePlane;
    SInt64 itsDestRow;
    SInt64 itsDestPlane;
    UInt32 itsSourceWidth;
    UInt32 itsWidth;
    UInt32 itsHeight;
    UInt32 itsDepth;
    const XSamples * itsTable;
};

// Destination plane k of the Z pass, from the source planes of table[k], row by row.
template <UInt32 VoxelBytes, class Lanes>
void ZPassPlane(const XPassFrame & aFrame, UInt32 k, UInt8 *)
{
    for (UInt32 y = 0; y < aFrame.itsHeight; ++y)
    {
        UInt8 * dest = aFrame.itsDest + k * aFrame.itsDestPlane + y * aFrame.itsDestRow;
        WeighRow<VoxelBytes, Lanes>(aFrame.itsSource + y * aFrame.itsSourceRow, aFrame.itsTable[k], dest,
                                    aFrame.itsWidth);
        // Four-channel voxels: the low byte of the word is not weighed but set to 255.
        if constexpr (VoxelBytes == 4)
            for (UInt32 x = 0; x < aFrame.itsWidth; ++x)
                dest[4 * x] = 255;
    }
}

// Destination plane k of the Y pass: row j from the source rows of table[j].
template <UInt32 VoxelBytes, class Lanes>
void YPassPlane(const XPassFrame & aFrame, UInt32 k, UInt8 *)
{
    for (UInt32 j = 0; j < aFrame.itsHeight; ++j)
        WeighRow<VoxelBytes, Lanes>(aFrame.itsSource + k * aFrame.itsSourcePlane, aFrame.itsTable[j],
                                    aFrame.itsDest + k * aFrame.itsDestPlane + j * aFrame.itsDestRow, aFrame.itsWidth);
}

// Destination plane k of the X pass. A strip of rows is turned into columns of kLaneBytes bytes
// (one voxel of each row of the strip), so that a destination column weighs whole source
// columns as the other passes weigh rows; the destination columns are turned back into rows.
// aColumns holds the source's columns and then the destination's.
template <UInt32 VoxelBytes, class Lanes>
void XPassPlane(const XPassFrame & aFrame, UInt32 k, UInt8 * aColumns)
{
    constexpr UInt32 kStripRows = kLaneBytes / VoxelBytes;
    UInt8 * const sourceColumns = aColumns;
    UInt8 * const destColumns = aColumns + UInt64(aFrame.itsSourceWidth) * kLaneBytes;
    for (UInt32 y0 = 0; y0 < aFrame.itsHeight; y0 += kStripRows)
    {
        const UInt32 rows = std::min(kStripRows, aFrame.itsHeight - y0);
        Transpose<VoxelBytes>(aFrame.itsSource + k * aFrame.itsSourcePlane + y0 * aFrame.itsSourceRow,
                              aFrame.itsSourceRow, sourceColumns, kLaneBytes, rows, aFrame.itsSourceWidth);
        for (UInt32 i = 0; i < aFrame.itsWidth; ++i)
        {
            const XSamples & taps = aFrame.itsTable[i];
            UInt8 * const column = destColumns + UInt64(i) * kLaneBytes;
            if (taps.empty())
                std::memset(column, 0, kLaneBytes);
            else
                WeighLanes<Lanes>(sourceColumns, kLaneBytes, taps.data(), taps.data() + taps.size(), column);
        }
        Transpose<VoxelBytes>(destColumns, kLaneBytes,
                              aFrame.itsDest + k * aFrame.itsDestPlane + y0 * aFrame.itsDestRow, aFrame.itsDestRow,
                              aFrame.itsWidth, rows);
    }
}

// Runs AVX2Plane(aFrame, k, aColumns) for each destination plane k where the processor has
// AVX2, else BaselinePlane, each compiled whole for its instruction set; under a progress of one
// step a plane, and a pending cancel stops between planes.
template <void (*BaselinePlane)(const XPassFrame &, UInt32, UInt8 *),
          void (*AVX2Plane)(const XPassFrame &, UInt32, UInt8 *)>
void RunPlanes(const XPassFrame & aFrame, UInt8 * aColumns)
{
    const bool avx2 = XIntelCPUInfo::HasFeature(kCPUFeatureAVX2);
    XProgress progress(aFrame.itsDepth, XProgress::kProgressWithEstimate, 2000, false);
    for (UInt32 k = 0; k < aFrame.itsDepth; ++k)
    {
        XThread::TestCancelCurrentThread();
        auto wide = [&] { AVX2Plane(aFrame, k, aColumns); };
        auto baseline = [&] { BaselinePlane(aFrame, k, aColumns); };
        if (avx2)
            XRunAVX2Kernel(wide);
        else
            XRunBaselineKernel(baseline);
        progress.Increment();
    }
}

// One pass along anAxis over every destination plane.
template <UInt32 VoxelBytes>
void RunPass(UInt32 anAxis, const XPassFrame & aFrame)
{
    if (anAxis == 0)
    {
        // The source's columns and the destination's, kLaneBytes bytes each.
        std::vector<UInt8> columns((UInt64(aFrame.itsSourceWidth) + aFrame.itsWidth) * kLaneBytes);
        RunPlanes<XPassPlane<VoxelBytes, XSSELanes>, XPassPlane<VoxelBytes, XAVX2Lanes>>(aFrame, columns.data());
    }
    else if (anAxis == 1)
        RunPlanes<YPassPlane<VoxelBytes, XSSELanes>, YPassPlane<VoxelBytes, XAVX2Lanes>>(aFrame, nullptr);
    else
        RunPlanes<ZPassPlane<VoxelBytes, XSSELanes>, ZPassPlane<VoxelBytes, XAVX2Lanes>>(aFrame, nullptr);
}

void CheckOneAxis(UInt32 anAxis, const X3DRect & aSourceRect, const X3DRect & aDestRect)
{
    static const char * const kTexts[3][3] = {
        {"destRect.GetWidth() != srcRect.GetWidth()", "destRect.GetHeight() == srcRect.GetHeight()",
         "destRect.GetDepth() == srcRect.GetDepth()"},
        {"destRect.GetWidth() == srcRect.GetWidth()", "destRect.GetHeight() != srcRect.GetHeight()",
         "destRect.GetDepth() == srcRect.GetDepth()"},
        {"destRect.GetWidth() == srcRect.GetWidth()", "destRect.GetHeight() == srcRect.GetHeight()",
         "destRect.GetDepth() != srcRect.GetDepth()"}};
    for (UInt32 a = 0; a < 3; ++a)
        XAssertText((ExtentOf(aDestRect, a) != ExtentOf(aSourceRect, a)) == (a == anAxis), kTexts[anAxis][a]);
}

// The volumes as a pair of class V, or nulls.
template <class V>
std::pair<const V *, V *> PairOf(const XVolume & aSource, XVolume & aDest)
{
    return {dynamic_cast<const V *>(&aSource), dynamic_cast<V *>(&aDest)};
}
} // namespace

XVolumeResampleTool::XVolumeResampleTool() = default;

XVolumeResampleTool::~XVolumeResampleTool() = default;

void XVolumeResampleTool::SetFilter(XFilterMode aMode, XResampleFilter * aFilter)
{
    XAssertText(aMode != kFilterCustom || aFilter != nullptr, "aFilter");
    itsFilter.reset();
    ForgetAxisTables();
    itsMode = aMode >= kFilterAutomatic && aMode <= kFilterCustom ? aMode : kFilterAutomatic;
    switch (itsMode)
    {
    case kFilterSimple: itsFilter = std::make_unique<XSimpleFilter>(); break;
    case kFilterTriangle: itsFilter = std::make_unique<XTriangleFilter>(); break;
    case kFilterBell: itsFilter = std::make_unique<XBellFilter>(); break;
    case kFilterBSpline: itsFilter = std::make_unique<XBSplineFilter>(); break;
    case kFilterLanczos3: itsFilter = std::make_unique<XLanczos3Filter>(); break;
    case kFilterCustom: itsFilter.reset(aFilter); break;
    case kFilterAutomatic: break;
    }
}

void XVolumeResampleTool::ApplyTool(const XVolume & aSource, XVolume & aDest, const X3DRect & aSourceRect,
                                    const X3DRect & aDestRect)
{
    if (aSourceRect.IsEmpty() || aDestRect.IsEmpty())
        return;
    if (aSourceRect.IsSameSizeAs(aDestRect))
    {
        aSource.CopyOut(aDest, aSourceRect, aDestRect, nullptr);
        return;
    }
    try
    {
        if (const auto argb = PairOf<XARGB32Volume>(aSource, aDest); argb.first && argb.second)
            ApplyToolColour(*argb.first, *argb.second, aSourceRect, aDestRect);
        else if (const auto bgra = PairOf<XBGRA32Volume>(aSource, aDest); bgra.first && bgra.second)
            ApplyToolColour(*bgra.first, *bgra.second, aSourceRect, aDestRect);
        else if (const auto grey = PairOf<XGrey8Volume>(aSource, aDest); grey.first && grey.second)
            ApplyToolGrey8(*grey.first, *grey.second, aSourceRect, aDestRect);
        else if (typeid(aSource) == typeid(aDest))
            XRefuseVolume(aSource);
        else
            throw XException(kErrVolumeTypeRefused, "resampling needs two volumes of one kind, not " +
                                                        aSource.GetDescription().GetStdString() + " into " +
                                                        aDest.GetDescription().GetStdString());
    }
    catch (...)
    {
        ForgetAxisTables();
        throw;
    }
}

double XVolumeResampleTool::GetFilterSize() const
{
    XAssertText(itsFilter != nullptr, "itsFilter");
    return itsFilter->GetFilterSize();
}

double XVolumeResampleTool::CalcFilterValue(double x) const
{
    XAssertText(itsFilter != nullptr, "itsFilter");
    return itsFilter->CalcFilterValue(x);
}

void XVolumeResampleTool::CalculateFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 anOffset,
                                                       SInt64 aStride, XContributions & outContributions)
{
    XAssertText(aSrcSize > 0 && aDstSize >= 0, "srcSize > 0 && dstSize >= 0");
    outContributions.clear();
    outContributions.reserve(static_cast<UInt32>(aDstSize));
    const double scale = double(aDstSize) / double(aSrcSize - 1);
    if (itsMode == kFilterAutomatic)
    {
        itsFilter.reset();
        if (scale < 1.0)
            itsFilter = std::make_unique<XSimpleFilter>();
        else
            itsFilter = std::make_unique<XBellFilter>();
    }
    const double size = GetFilterSize();
    XAssertText(size >= 0.0 && size <= kMaxFilterSize, "filter size within 0..256");
    for (SInt32 i = 0; i < aDstSize; ++i)
    {
        XSamples & samples = outContributions.emplace_back();
        const double sum = scale < 1.0 ? AddShrinkingSamples(i, scale, aSrcSize, anOffset, aStride, samples)
                                       : AddEnlargingSamples(i, scale, aSrcSize, anOffset, aStride, samples);
        const double factor = 1.0 / sum;
        for (XContribution & sample : samples)
            sample.itsWeight = XTruncateToSInt32(std::floor(double(sample.itsWeight) * factor));
    }
}

double XVolumeResampleTool::AddShrinkingSamples(SInt32 i, double aScale, SInt32 aSrcSize, SInt64 anOffset,
                                                SInt64 aStride, XSamples & outSamples) const
{
    const double width = GetFilterSize() / aScale;
    const double fscale = 1.0 / aScale;
    const double centre = double(i) / aScale + width * 0.5;
    const SInt64 left = static_cast<SInt64>(std::ceil(centre - width));
    const SInt64 right = static_cast<SInt64>(std::floor(centre + width));
    double sum = 0.0;
    for (SInt64 j = left; j <= right; ++j)
    {
        const double w = CalcFilterValue((centre - double(j)) / fscale) / fscale;
        if (w != 0.0 && j >= 0 && j < aSrcSize)
        {
            sum += w;
            outSamples.push_back(MakeContribution(j * aStride + anOffset, w));
        }
    }
    return sum;
}

double XVolumeResampleTool::AddEnlargingSamples(SInt32 i, double aScale, SInt32 aSrcSize, SInt64 anOffset,
                                                SInt64 aStride, XSamples & outSamples) const
{
    const double size = GetFilterSize();
    const double centre = double(i) / aScale;
    const SInt64 left = static_cast<SInt64>(std::ceil(centre - size));
    const SInt64 right = static_cast<SInt64>(std::floor(centre + size));
    double sum = 0.0;
    for (SInt64 j = left; j <= right; ++j)
    {
        const double w = CalcFilterValue(centre - double(j));
        if (w != 0.0)
        {
            sum += w;
            outSamples.push_back(MakeContribution(Mirror(j, aSrcSize) * aStride + anOffset, w));
        }
    }
    return sum;
}

void XVolumeResampleTool::CalculateXFilterContributions(SInt32 aSrcSize, SInt32 aDstSize,
                                                        XContributions & outContributions)
{
    CalculateFilterContributions(aSrcSize, aDstSize, 0, 1, outContributions);
}

void XVolumeResampleTool::CalculateYFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 aRowStride,
                                                        XContributions & outContributions)
{
    CalculateFilterContributions(aSrcSize, aDstSize, 0, aRowStride, outContributions);
}

void XVolumeResampleTool::CalculateZFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 aPlaneStride,
                                                        XContributions & outContributions)
{
    CalculateFilterContributions(aSrcSize, aDstSize, 0, aPlaneStride, outContributions);
}

const XContributions & XVolumeResampleTool::GetAxisTable(XAxis anAxis, SInt32 aSrcSize, SInt32 aDstSize,
                                                         SInt64 aStride)
{
    XAxisTable & table = itsAxisTables[anAxis];
    if (table.itsValid && table.itsSrcSize == aSrcSize && table.itsDstSize == aDstSize && table.itsStride == aStride)
        return table.itsContributions;
    if (SInt64(aSrcSize - 1) * aStride > std::numeric_limits<SInt32>::max())
        throw XException(kErrBadArgument, "resampling: the source box spans more than 2^31 voxels of storage on the " +
                                              std::string(1, char('x' + anAxis)) + " axis");
    table.itsValid = false;
    switch (anAxis)
    {
    case kXAxis: CalculateXFilterContributions(aSrcSize, aDstSize, table.itsContributions); break;
    case kYAxis: CalculateYFilterContributions(aSrcSize, aDstSize, aStride, table.itsContributions); break;
    case kZAxis: CalculateZFilterContributions(aSrcSize, aDstSize, aStride, table.itsContributions); break;
    }
    table = XAxisTable{true, aSrcSize, aDstSize, aStride, std::move(table.itsContributions)};
    return table.itsContributions;
}

void XVolumeResampleTool::ForgetAxisTables()
{
    for (XAxisTable & table : itsAxisTables)
        table = XAxisTable();
}

void XVolumeResampleTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest,
                                         const X3DRect & aSourceRect, const X3DRect & aDestRect)
{
    Resample(aSource, aDest, aSourceRect, aDestRect);
}

void XVolumeResampleTool::Grey8XResample(const XGrey8Volume & aSource, XGrey8Volume & aDest,
                                         const X3DRect & aSourceRect, const X3DRect & aDestRect)
{
    ResampleAxis(kXAxis, aSource, aDest, aSourceRect, aDestRect);
}

void XVolumeResampleTool::Grey8YResample(const XGrey8Volume & aSource, XGrey8Volume & aDest,
                                         const X3DRect & aSourceRect, const X3DRect & aDestRect)
{
    ResampleAxis(kYAxis, aSource, aDest, aSourceRect, aDestRect);
}

void XVolumeResampleTool::Grey8ZResample(const XGrey8Volume & aSource, XGrey8Volume & aDest,
                                         const X3DRect & aSourceRect, const X3DRect & aDestRect)
{
    ResampleAxis(kZAxis, aSource, aDest, aSourceRect, aDestRect);
}

template <class V>
void XVolumeResampleTool::ApplyToolColour(const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                          const X3DRect & aDestRect)
{
    Resample(aSource, aDest, aSourceRect, aDestRect);
}

template <class V>
void XVolumeResampleTool::ColourXResample(const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                          const X3DRect & aDestRect)
{
    ResampleAxis(kXAxis, aSource, aDest, aSourceRect, aDestRect);
}

template <class V>
void XVolumeResampleTool::ColourYResample(const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                          const X3DRect & aDestRect)
{
    ResampleAxis(kYAxis, aSource, aDest, aSourceRect, aDestRect);
}

template <class V>
void XVolumeResampleTool::ColourZResample(const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                          const X3DRect & aDestRect)
{
    ResampleAxis(kZAxis, aSource, aDest, aSourceRect, aDestRect);
}

template <class V>
void XVolumeResampleTool::Resample(const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                   const X3DRect & aDestRect)
{
    XAssertText(aSource.GetBounds().Contains(aSourceRect), "srcVolume.GetBounds().Contains( srcRect )");
    XAssertText(aDest.GetBounds().Contains(aDestRect), "destVolume.GetBounds().Contains( destRect )");
    // Each pass turns one differing axis into the destination's extent, into a temporary volume
    // until the last; the temporary read by a pass is released after it.
    std::unique_ptr<V> held;
    const V * source = &aSource;
    X3DRect sourceRect = aSourceRect;
    for (;;)
    {
        UInt32 differing = 0;
        UInt32 first = 3;
        for (UInt32 a = 0; a < 3; ++a)
            if (ExtentOf(sourceRect, a) != ExtentOf(aDestRect, a))
            {
                ++differing;
                if (first == 3 || ExtentOf(sourceRect, a) < ExtentOf(sourceRect, first))
                    first = a;
            }
        const XAxis axis = static_cast<XAxis>(first);
        if (differing == 1)
        {
            ResampleAxis(axis, *source, aDest, sourceRect, aDestRect);
            return;
        }
        X3DRect nextRect = sourceRect;
        if (axis == kXAxis)
            nextRect.SetWidth(aDestRect.GetWidth());
        else if (axis == kYAxis)
            nextRect.SetHeight(aDestRect.GetHeight());
        else
            nextRect.SetDepth(aDestRect.GetDepth());
        auto next = std::make_unique<V>();
        next->Reshape(nextRect, false);
        ResampleAxis(axis, *source, *next, sourceRect, nextRect);
        held = std::move(next);
        source = held.get();
        sourceRect = nextRect;
    }
}

template <class V>
void XVolumeResampleTool::ResampleAxis(XAxis anAxis, const V & aSource, V & aDest, const X3DRect & aSourceRect,
                                       const X3DRect & aDestRect)
{
    CheckOneAxis(anAxis, aSourceRect, aDestRect);
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, aDestRect == aDest.GetBounds() ? kLockWrite : kLockReadWrite);
    const SInt64 strides[3] = {1, SInt64(aSource.GetRowVoxels()), SInt64(aSource.GetPlaneVoxels())};
    const XContributions & table = GetAxisTable(anAxis, SInt32(ExtentOf(aSourceRect, anAxis)),
                                                SInt32(ExtentOf(aDestRect, anAxis)), strides[anAxis]);
    const XPassFrame frame{
        reinterpret_cast<const UInt8 *>(
            aSource.GetVoxelPtr(aSourceRect.GetLeft(), aSourceRect.GetTop(), aSourceRect.GetFront())),
        reinterpret_cast<UInt8 *>(aDest.GetVoxelPtr(aDestRect.GetLeft(), aDestRect.GetTop(), aDestRect.GetFront())),
        SInt64(aSource.GetRowBytes()),
        SInt64(aSource.GetPlaneBytes()),
        SInt64(aDest.GetRowBytes()),
        SInt64(aDest.GetPlaneBytes()),
        aSourceRect.GetWidth(),
        aDestRect.GetWidth(),
        aDestRect.GetHeight(),
        aDestRect.GetDepth(),
        table.data()};
    RunPass<sizeof(typename V::XVoxel)>(anAxis, frame);
}

template void XVolumeResampleTool::ApplyToolColour(const XARGB32Volume &, XARGB32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ApplyToolColour(const XBGRA32Volume &, XBGRA32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourXResample(const XARGB32Volume &, XARGB32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourXResample(const XBGRA32Volume &, XBGRA32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourYResample(const XARGB32Volume &, XARGB32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourYResample(const XBGRA32Volume &, XBGRA32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourZResample(const XARGB32Volume &, XARGB32Volume &, const X3DRect &,
                                                   const X3DRect &);
template void XVolumeResampleTool::ColourZResample(const XBGRA32Volume &, XBGRA32Volume &, const X3DRect &,
                                                   const X3DRect &);
