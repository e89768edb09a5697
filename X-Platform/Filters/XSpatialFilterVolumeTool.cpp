#include "XSpatialFilterVolumeTool.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <vector>

#include "XARGB32Volume.h"
#include "XAssert.h"
#include "XChannelGrid.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XNeighbourRows.h"
#include "XNeighbourhoodScanner.h"
#include "XSimdVector.h"
#include "XWidestKernel.h"

namespace
{
// trunc(aValue) as the processor converts: beyond 32 bits, and for NaN, 0x80000000.
inline SInt32 XTruncate(float aValue)
{
    return aValue >= -2147483648.0f && aValue < 2147483648.0f ? SInt32(aValue) : std::numeric_limits<SInt32>::min();
}

// The result of a voxel in channel type C: trunc(sum + bias) in its low bits, or for floats
// sum + bias.
template <typename C>
inline C XFilterResult(float aSum, float aBias)
{
    if constexpr (std::is_same_v<C, float>)
        return aSum + aBias;
    else
        return C(UInt32(XTruncate(aSum + aBias)));
}

// One call's convolution of one channel of type C.
template <typename C>
class XSpatialFilterWorker
{
public:
    XSpatialFilterWorker(const float * aWeights, UInt32 aWidth, UInt32 aHeight, UInt32 aDepth, float aBias)
        : itsWidth(aWidth), itsHeight(aHeight), itsDepth(aDepth), itsWeights(aWeights), itsBias(aBias),
          itsRows(-SInt64(aHeight >> 1), aHeight, -SInt64(aDepth >> 1), aDepth)
    {
    }

    void SetChannelOffset(UInt32 anOffset) { itsChannelOffset = anOffset; }

    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsSource = XSourceChannel<C>(aSource, itsChannelOffset);
        itsDest = XDestChannel<C>(aDest, itsChannelOffset);
        const UInt32 width = aSource.GetWidth();
        itsSums.resize(std::max<std::size_t>(itsSums.size(), width));
        itsResults.resize(std::max<std::size_t>(itsResults.size(), width));
        itsRows.Prepare(itsSource);
    }

    // The plain rule: every kernel entry in storage order, with the bounds test.
    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        const X3DRect & bounds = itsSource.GetBounds();
        const float * weight = itsWeights;
        float sum = 0.0f;
        for (UInt32 k = 0; k < itsDepth; ++k)
            for (UInt32 j = 0; j < itsHeight; ++j)
                for (UInt32 i = 0; i < itsWidth; ++i, ++weight)
                {
                    const SInt64 x = SInt64(aX) + i - (itsWidth >> 1);
                    const SInt64 y = SInt64(aY) + j - (itsHeight >> 1);
                    const SInt64 z = SInt64(aZ) + k - (itsDepth >> 1);
                    if (x >= bounds.GetLeft() && x < bounds.GetRight() && y >= bounds.GetTop() &&
                        y < bounds.GetBottom() && z >= bounds.GetFront() && z < bounds.GetBack())
                        sum += float(itsSource.Get(SInt32(x), SInt32(y), SInt32(z))) * *weight;
                }
        itsDest.Set(aX, aY, aZ, XFilterResult<C>(sum, itsBias));
    }

    // The whole row at once: the voxels whose kernel lies inside the source along x in blocks,
    // their sums in registers, and the others (the ends, and what the blocks leave over) kernel
    // entry by entry along the row. Either way each voxel's sum adds the same products in the
    // same order as ScanVoxel.
    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        const SInt64 left = itsSource.GetBounds().GetLeft();
        const SInt64 right = itsSource.GetBounds().GetRight();
        const SInt64 end = SInt64(aX) + aCount;
        const SInt64 first = std::clamp<SInt64>(left + (itsWidth >> 1), aX, end);
        const SInt64 last = std::clamp<SInt64>(right - (itsWidth - 1 - (itsWidth >> 1)), first, end);
        const std::vector<XRow> & rows = itsRows.Collect(aY, aZ);
        const SInt64 blocked = SumBlocks(rows, aX, first, last);
        float * sums = itsSums.data();
        std::fill(sums, sums + (first - aX), 0.0f);
        std::fill(sums + (blocked - aX), sums + aCount, 0.0f);
        for (const XRow & row : rows)
        {
            AddRow(row, aX, aX, first);
            AddRow(row, aX, blocked, end);
        }
        C * results = itsResults.data();
        const float bias = itsBias;
        XRunWidestKernel([&] {
            for (UInt32 m = 0; m < aCount; ++m)
                results[m] = XFilterResult<C>(sums[m], bias);
        });
        itsDest.PutRow(aX, aCount, aY, aZ, results);
    }

private:
    using XRow = typename XNeighbourRows<C>::XRow;

    // The sums of the voxels aFirst .. anEnd - 1, whose kernel lies inside the source along x,
    // by vectors: four at a time, then one at a time, and a last one that ends at anEnd (sums
    // of some voxels made twice, the same each time). Returns where the vectors ended: anEnd
    // unless the voxels are fewer than one vector holds.
    SInt64 SumBlocks(const std::vector<XRow> & aRows, SInt32 aX, SInt64 aFirst, SInt64 anEnd)
    {
        SInt64 x = aFirst;
        XRunWidestVectorKernel([&](auto aBytes) {
            using Floats = XSimdVector<float, aBytes>;
            constexpr SInt64 kLanes = Floats::kLanes;
            for (; x + 4 * kLanes <= anEnd; x += 4 * kLanes)
                SumVectors<Floats, 4>(aRows, aX, x);
            for (; x + kLanes <= anEnd; x += kLanes)
                SumVectors<Floats, 1>(aRows, aX, x);
            if (x < anEnd && anEnd - aFirst >= kLanes)
            {
                SumVectors<Floats, 1>(aRows, aX, anEnd - kLanes);
                x = anEnd;
            }
        });
        return x;
    }

    // The sums of kVectors vectors of voxels from x on, kept in registers over the whole kernel.
    template <class Floats, UInt32 kVectors>
    void SumVectors(const std::vector<XRow> & aRows, SInt32 aX, SInt64 anX)
    {
        using Values = XSimdVector<C, Floats::kLanes * sizeof(C)>;
        typename Floats::Type sum[kVectors] = {};
        const SInt64 start = SInt64(itsSource.GetBounds().GetLeft()) + (itsWidth >> 1);
        for (const XRow & row : aRows)
        {
            const C * in = row.itsValues + (anX - start);
            const float * weights = itsWeights + UInt64(row.itsIndex) * itsWidth;
            for (UInt32 i = 0; i < itsWidth; ++i)
            {
                const typename Floats::Type weight = typename Floats::Type{} + weights[i];
                for (UInt32 b = 0; b < kVectors; ++b)
                {
                    typename Values::Type values;
                    Values::Load(values, in + i + b * Floats::kLanes);
                    sum[b] += __builtin_convertvector(values, typename Floats::Type) * weight;
                }
            }
        }
        for (UInt32 b = 0; b < kVectors; ++b)
            Floats::Store(itsSums.data() + (anX - aX) + b * Floats::kLanes, sum[b]);
    }

    // Adds the products of one kernel row to the sums of the voxels aFirst .. anEnd - 1 of the
    // row that begins at aX, entry by entry: for each its reach inside the source along x.
    void AddRow(const XRow & aRow, SInt32 aX, SInt64 aFirst, SInt64 anEnd)
    {
        if (aFirst >= anEnd)
            return;
        const SInt64 left = itsSource.GetBounds().GetLeft();
        const SInt64 right = itsSource.GetBounds().GetRight();
        float * sums = itsSums.data() + (aFirst - aX);
        XRunWidestKernel([&] {
            for (UInt32 i = 0; i < itsWidth; ++i)
            {
                const SInt64 dx = SInt64(i) - (itsWidth >> 1);
                const SInt64 first = std::max<SInt64>(aFirst, left - dx);
                const SInt64 end = std::min<SInt64>(anEnd, right - dx);
                const float weight = itsWeights[UInt64(aRow.itsIndex) * itsWidth + i];
                const C * in = aRow.itsValues + (first + dx - left);
                float * out = sums + (first - aFirst);
                for (SInt64 m = 0; m < end - first; ++m)
                    out[m] += float(in[m]) * weight;
            }
        });
    }

    UInt32 itsWidth;
    UInt32 itsHeight;
    UInt32 itsDepth;
    const float * itsWeights;
    float itsBias;
    UInt32 itsChannelOffset = 0;
    XSourceChannel<C> itsSource;
    XDestChannel<C> itsDest;
    std::vector<float> itsSums;
    std::vector<C> itsResults;
    XNeighbourRows<C> itsRows;
};
} // namespace

XSpatialFilterVolumeTool::XSpatialFilterVolumeTool(const float * aWeightArray, UInt32 aWidth, UInt32 aHeight,
                                                   UInt32 aDepth, float aBias)
    : itsWidth(aWidth), itsHeight(aHeight), itsDepth(aDepth), itsBias(aBias)
{
    XAssertText(aWeightArray != nullptr, "weightArray");
    const UInt64 count = UInt64(aWidth) * aHeight * aDepth;
    itsWeights.reset(new float[count]);
    float sum = 0.0f;
    for (UInt64 i = 0; i < count; ++i)
    {
        itsWeights[i] = aWeightArray[i];
        sum += aWeightArray[i];
    }
    if (sum != 0.0f)
        for (UInt64 i = 0; i < count; ++i)
            itsWeights[i] /= sum;
}

XSpatialFilterVolumeTool::~XSpatialFilterVolumeTool() = default;

template <typename TVolType, typename C, class Volume>
void XSpatialFilterVolumeTool::Filter(const Volume & aSource, Volume & aDest,
                                      std::initializer_list<UInt32> aChannelOffsets) const
{
    XSpatialFilterWorker<C> worker(itsWeights.get(), itsWidth, itsHeight, itsDepth, itsBias);
    XNeighbourhoodScanner::ScanChannels<TVolType>(aSource, aDest, worker, aChannelOffsets);
}

void XSpatialFilterVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    Filter<UInt8, UInt8>(aSource, aDest, {0});
}

void XSpatialFilterVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    Filter<UInt16, UInt16>(aSource, aDest, {0});
}

void XSpatialFilterVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    // Alpha, red and green: the blue byte is left as the destination holds it.
    Filter<XARGB32Colour, UInt8>(aSource, aDest, {0, 1, 2});
}

void XSpatialFilterVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    Filter<float, float>(aSource, aDest, {0});
}
