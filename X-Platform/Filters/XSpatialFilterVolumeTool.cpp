#include "XSpatialFilterVolumeTool.h"

#include <algorithm>
#include <cmath>
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
#include "XTruncateToSInt32.h"
#include "XWidestKernel.h"

namespace
{
// The result of a voxel in channel type C: trunc(sum + bias) in its low bits, or for floats
// sum + bias.
template <typename C>
inline C XFilterResult(float aSum, float aBias)
{
    if constexpr (std::is_same_v<C, float>)
        return aSum + aBias;
    else
        return C(UInt32(XTruncateToSInt32(aSum + aBias)));
}

// One call's convolution of one channel of type C.
template <typename C>
class XSpatialFilterWorker
{
    // The voxels of a row go four vectors at a time where they can; the widest vectors hold 8
    // floats.
    static constexpr UInt32 kVectors = 4;
    static constexpr UInt32 kMostLanes = 8;

public:
    XSpatialFilterWorker(const float * aWeights, UInt32 aWidth, UInt32 aHeight, UInt32 aDepth, float aBias)
        : itsWidth(aWidth), itsHeight(aHeight), itsDepth(aDepth), itsWeights(aWeights), itsBias(aBias),
          itsRows(-SInt64(aHeight >> 1), aHeight, -SInt64(aDepth >> 1), aDepth)
    {
        const UInt64 count = UInt64(aWidth) * aHeight * aDepth;
        itsFiniteWeights = std::all_of(aWeights, aWeights + count, [](float w) { return std::isfinite(w); });
    }

    void SetChannelOffset(UInt32 anOffset) { itsChannelOffset = anOffset; }

    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsSource = XSourceChannel<C>(aSource, itsChannelOffset);
        itsDest = XDestChannel<C>(aDest, itsChannelOffset);
        // Room for a vector past the row's end.
        const std::size_t room = aSource.GetWidth() + kMostLanes;
        itsSums.resize(std::max(itsSums.size(), room));
        itsResults.resize(std::max(itsResults.size(), room));
        itsRows.Prepare(itsSource);
        const UInt64 rows = UInt64(std::min(itsHeight, aSource.GetHeight())) * std::min(itsDepth, aSource.GetDepth());
        itsStarts.resize(std::max<std::size_t>(itsStarts.size(), rows));
        itsStrips.resize(std::max<std::size_t>(itsStrips.size(), rows * StripLength()));
    }

    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        itsDest.Set(aX, aY, aZ, XFilterResult<C>(PlainSum(aX, aY, aZ), itsBias));
    }

    // The sums of a row by vectors of voxels, four or one at a time, kept in registers over the
    // whole kernel; the last vector ends at the row's end. A vector whose kernel reaches outside
    // the source reads strips of the rows that hold +0 there: with finite weights, adding a
    // product of +0 leaves a sum as skipping the entry does (a sum that starts at +0 never
    // becomes -0). With weights that are not finite, such voxels go by the plain rule.
    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        const std::vector<XRow> & rows = itsRows.Collect(aY, aZ);
        const SInt64 end = SInt64(aX) + aCount;
        XRunWidestVectorKernel([&](auto aBytes) {
            using Floats = XSimdVector<float, aBytes>;
            constexpr SInt64 kLanes = Floats::kLanes;
            SInt64 x = aX;
            while (x < end)
            {
                if (x + kVectors * kLanes <= end && IsInside(x, kVectors * kLanes))
                {
                    PointAtRows(rows, x);
                    SumVectors<Floats, kVectors>(rows, x - aX);
                    x += kVectors * kLanes;
                    continue;
                }
                const SInt64 start = x + kLanes <= end ? x : std::max<SInt64>(aX, end - kLanes);
                x = start + kLanes;
                if (IsInside(start, kLanes))
                    PointAtRows(rows, start);
                else if (itsFiniteWeights)
                    FillStrips(rows, start, kLanes);
                else
                {
                    for (SInt64 m = start; m < std::min(start + kLanes, end); ++m)
                        itsSums[m - aX] = PlainSum(SInt32(m), aY, aZ);
                    continue;
                }
                SumVectors<Floats, 1>(rows, start - aX);
            }
            C * results = itsResults.data();
            const float * sums = itsSums.data();
            for (UInt32 m = 0; m < aCount; ++m)
                results[m] = XFilterResult<C>(sums[m], itsBias);
        });
        itsDest.PutRow(aX, aCount, aY, aZ, itsResults.data());
    }

private:
    using XRow = typename XNeighbourRows<C>::XRow;

    // The plain rule: every kernel entry in storage order, with the bounds test.
    float PlainSum(SInt32 aX, SInt32 aY, SInt32 aZ) const
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
        return sum;
    }

    // True when the kernel of the voxels aX .. aX + aCount - 1 lies inside the source along x.
    bool IsInside(SInt64 aX, SInt64 aCount) const
    {
        const SInt64 low = itsWidth >> 1;
        return aX - low >= itsSource.GetBounds().GetLeft() &&
               aX + aCount + itsWidth - 1 - low <= itsSource.GetBounds().GetRight();
    }

    // The values that the kernel rows read for the voxels from aX on: the source's rows.
    void PointAtRows(const std::vector<XRow> & aRows, SInt64 aX)
    {
        const SInt64 from = aX - (itsWidth >> 1) - itsSource.GetBounds().GetLeft();
        for (std::size_t r = 0; r < aRows.size(); ++r)
            itsStarts[r] = aRows[r].itsValues + from;
    }

    // The same for aCount voxels from aX on as strips, with 0 outside the source.
    UInt64 StripLength() const { return kMostLanes + itsWidth; }
    void FillStrips(const std::vector<XRow> & aRows, SInt64 aX, SInt64 aCount)
    {
        const SInt64 from = aX - (itsWidth >> 1);
        const SInt64 length = aCount + itsWidth - 1;
        const SInt64 first = std::clamp<SInt64>(itsSource.GetBounds().GetLeft() - from, 0, length);
        const SInt64 last = std::clamp<SInt64>(itsSource.GetBounds().GetRight() - from, first, length);
        for (std::size_t r = 0; r < aRows.size(); ++r)
        {
            C * strip = itsStrips.data() + r * StripLength();
            std::fill(strip, strip + first, C(0));
            std::copy(aRows[r].itsValues + (from + first - itsSource.GetBounds().GetLeft()),
                      aRows[r].itsValues + (from + last - itsSource.GetBounds().GetLeft()), strip + first);
            std::fill(strip + last, strip + length, C(0));
            itsStarts[r] = strip;
        }
    }

    // The sums of kVectorCount vectors of voxels into itsSums from anOffset on: for each kernel
    // row, the values from itsStarts, for each entry in order its products added to the sums.
    template <class Floats, UInt32 kVectorCount>
    void SumVectors(const std::vector<XRow> & aRows, SInt64 anOffset)
    {
        using Values = XSimdVector<C, Floats::kLanes * sizeof(C)>;
        typename Floats::Type sum[kVectorCount] = {};
        for (std::size_t r = 0; r < aRows.size(); ++r)
        {
            const C * in = itsStarts[r];
            const float * weights = itsWeights + UInt64(aRows[r].itsIndex) * itsWidth;
            for (UInt32 i = 0; i < itsWidth; ++i)
            {
                const typename Floats::Type weight = typename Floats::Type{} + weights[i];
                for (UInt32 b = 0; b < kVectorCount; ++b)
                {
                    typename Values::Type values;
                    Values::Load(values, in + i + b * Floats::kLanes);
                    sum[b] += __builtin_convertvector(values, typename Floats::Type) * weight;
                }
            }
        }
        for (UInt32 b = 0; b < kVectorCount; ++b)
            Floats::Store(itsSums.data() + anOffset + b * Floats::kLanes, sum[b]);
    }

    UInt32 itsWidth;
    UInt32 itsHeight;
    UInt32 itsDepth;
    const float * itsWeights;
    float itsBias;
    bool itsFiniteWeights;
    UInt32 itsChannelOffset = 0;
    XSourceChannel<C> itsSource;
    XDestChannel<C> itsDest;
    std::vector<float> itsSums;
    std::vector<C> itsResults;
    XNeighbourRows<C> itsRows;
    // Where each row's values for the present block begin: in the source or in a strip.
    std::vector<const C *> itsStarts;
    std::vector<C> itsStrips;
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
