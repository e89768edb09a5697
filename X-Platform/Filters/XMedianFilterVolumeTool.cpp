#include "XMedianFilterVolumeTool.h"

#include <algorithm>
#include <limits>
#include <memory>
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
#include "XQuickSelect.h"
#include "XRGB48Volume.h"
#include "XSelectionNetwork.h"
#include "XSimdVector.h"
#include "XSlidingHistogram.h"
#include "XWidestKernel.h"

namespace
{
// One call's median of one channel of type C.
template <typename C>
class XMedianWorker
{
    static constexpr bool kHistogram = !std::is_same_v<C, float>;
    // Made for integer channels only.
    using XHistogram = XSlidingHistogram<std::conditional_t<kHistogram, C, UInt8>>;

public:
    explicit XMedianWorker(UInt32 aSize)
        : itsSize(aSize), itsLow(-SInt64(aSize >> 1)), itsRows(itsLow, aSize, itsLow, aSize)
    {
        XAssertText(aSize != 0, "size > 0");
    }

    void SetChannelOffset(UInt32 anOffset) { itsChannelOffset = anOffset; }

    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsSource = XSourceChannel<C>(aSource, itsChannelOffset);
        itsDest = XDestChannel<C>(aDest, itsChannelOffset);
        itsRows.Prepare(itsSource);
        // The most voxels that a cube can hold inside the source.
        const UInt64 most = UInt64(std::min(itsSize, aSource.GetWidth())) * std::min(itsSize, aSource.GetHeight()) *
                            std::min(itsSize, aSource.GetDepth());
        itsValues.resize(std::max<std::size_t>(itsValues.size(), most));
        // Room for a whole vector past the row's end.
        itsResults.resize(std::max<std::size_t>(itsResults.size(), aSource.GetWidth() + 64));
        if constexpr (kHistogram)
            if (itsSize != 3 && itsHistogram == nullptr)
                itsHistogram = std::make_unique<XHistogram>();
    }

    // The plain rule: the values inside the source, z, then y, then x, and quickselect.
    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        const X3DRect & bounds = itsSource.GetBounds();
        const SInt64 x0 = std::max<SInt64>(aX + itsLow, bounds.GetLeft());
        const SInt64 x1 = std::min<SInt64>(aX + itsLow + itsSize, bounds.GetRight());
        const SInt64 y0 = std::max<SInt64>(aY + itsLow, bounds.GetTop());
        const SInt64 y1 = std::min<SInt64>(aY + itsLow + itsSize, bounds.GetBottom());
        const SInt64 z0 = std::max<SInt64>(aZ + itsLow, bounds.GetFront());
        const SInt64 z1 = std::min<SInt64>(aZ + itsLow + itsSize, bounds.GetBack());
        C * values = itsValues.data();
        UInt32 count = 0;
        for (SInt64 z = z0; z < z1; ++z)
            for (SInt64 y = y0; y < y1; ++y)
                for (SInt64 x = x0; x < x1; ++x)
                    values[count++] = itsSource.Get(SInt32(x), SInt32(y), SInt32(z));
        itsDest.Set(aX, aY, aZ, XSelectLowerMedian(values, count));
    }

    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        if (itsSize == 3)
            NetworkRow(aX, aCount, aY, aZ);
        else if constexpr (kHistogram)
            HistogramRow(aX, aCount, aY, aZ);
        else
            for (UInt32 m = 0; m < aCount; ++m)
                ScanVoxel(aX + SInt32(m), aY, aZ);
    }

private:
    using XRow = typename XNeighbourRows<C>::XRow;

    // Size 3: sorting networks over vectors of voxels; the rows inside the source (1 to 9 of
    // them) choose the network. A voxel at either end of a row lacks one column of values. It
    // takes the same network with that column filled by pads: the lowest value of the type in
    // the first (L + 1) / 2 of the L rows and the highest in the others. Pads below and above
    // every value move the lower median of the 2L real values to the network's place, since the
    // values are 3L in all. A row of one voxel (which lacks both columns) goes by the plain rule.
    void NetworkRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        if (itsSource.GetBounds().GetWidth() < 2)
        {
            for (UInt32 m = 0; m < aCount; ++m)
                ScanVoxel(aX + SInt32(m), aY, aZ);
            return;
        }
        const std::vector<XRow> & rows = itsRows.Collect(aY, aZ);
        XRunWidestVectorKernel([&](auto aBytes) {
            switch (rows.size())
            {
            case 9: SelectVectors<27, aBytes>(rows, aX, aCount); break;
            case 6: SelectVectors<18, aBytes>(rows, aX, aCount); break;
            case 4: SelectVectors<12, aBytes>(rows, aX, aCount); break;
            case 3: SelectVectors<9, aBytes>(rows, aX, aCount); break;
            case 2: SelectVectors<6, aBytes>(rows, aX, aCount); break;
            default: SelectVectors<3, aBytes>(rows, aX, aCount); break;
            }
        });
        itsDest.PutRow(aX, aCount, aY, aZ, itsResults.data());
    }

    // The medians of the N values around the voxels of the row (N / 3 rows, three columns) into
    // the results, a vector of voxels at a time; the last vector ends at the row's end.
    template <UInt32 N, UInt32 kBytes>
    void SelectVectors(const std::vector<XRow> & aRows, SInt32 aX, UInt32 aCount)
    {
        using Values = XSimdVector<C, kBytes>;
        constexpr SInt64 kLanes = Values::kLanes;
        constexpr UInt32 kRows = N / 3;
        const SInt64 left = itsSource.GetBounds().GetLeft();
        const SInt64 right = itsSource.GetBounds().GetRight();
        const SInt64 end = SInt64(aX) + aCount;
        for (SInt64 x = aX; x < end; x += kLanes)
        {
            const SInt64 start = x + kLanes <= end ? x : std::max<SInt64>(aX, end - kLanes);
            typename Values::Type values[N];
            if (start - 1 >= left && start + kLanes < right)
            {
                for (UInt32 l = 0; l < kRows; ++l)
                    for (UInt32 dx = 0; dx < 3; ++dx)
                        Values::Load(values[3 * l + dx], aRows[l].itsValues + (start - left) + dx - 1);
            }
            else
            {
                // The values of x = start - 1 .. start + kLanes, pads where they lie outside.
                C strip[kRows][kLanes + 2];
                for (UInt32 l = 0; l < kRows; ++l)
                {
                    const C pad = l < (kRows + 1) / 2 ? Lowest() : Highest();
                    for (SInt64 j = 0; j < kLanes + 2; ++j)
                    {
                        const SInt64 column = start - 1 + j;
                        strip[l][j] = column >= left && column < right ? aRows[l].itsValues[column - left] : pad;
                    }
                    for (UInt32 dx = 0; dx < 3; ++dx)
                        Values::Load(values[3 * l + dx], strip[l] + dx);
                }
            }
            Values::Store(itsResults.data() + (start - aX), XSelectionNetwork<N, (N - 1) / 2>::Select(values));
        }
    }

    // Pads below and above every value: for floats the infinities.
    static constexpr C Lowest()
    {
        return std::numeric_limits<C>::has_infinity ? -std::numeric_limits<C>::infinity() : C(0);
    }
    static constexpr C Highest()
    {
        return std::numeric_limits<C>::has_infinity ? std::numeric_limits<C>::infinity()
                                                    : std::numeric_limits<C>::max();
    }

    // Other sizes of integer channels: a histogram of the window slides along the row, a column
    // of the rows inside the source coming in and going out at each step.
    void HistogramRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        const std::vector<XRow> & rows = itsRows.Collect(aY, aZ);
        XHistogram & histogram = *itsHistogram;
        const SInt64 left = itsSource.GetBounds().GetLeft();
        const SInt64 right = itsSource.GetBounds().GetRight();
        const auto add = [&](SInt64 aColumn) {
            for (const XRow & row : rows)
                histogram.Add(row.itsValues[aColumn - left]);
        };
        const auto remove = [&](SInt64 aColumn) {
            for (const XRow & row : rows)
                histogram.Remove(row.itsValues[aColumn - left]);
        };
        // The window's columns inside the source: from, to (not included).
        SInt64 from = std::max<SInt64>(left, aX + itsLow);
        SInt64 to = std::min<SInt64>(right, aX + itsLow + itsSize);
        for (SInt64 column = from; column < to; ++column)
            add(column);
        C * results = itsResults.data();
        for (UInt32 m = 0; m < aCount; ++m)
        {
            const UInt64 count = UInt64(rows.size()) * UInt64(to - from);
            results[m] = histogram.Select(UInt32((count - 1) >> 1));
            const SInt64 next = SInt64(aX) + m + 1;
            for (; from < std::max<SInt64>(left, next + itsLow); ++from)
                remove(from);
            for (; to < std::min<SInt64>(right, next + itsLow + itsSize); ++to)
                add(to);
        }
        for (; from < to; ++from)
            remove(from);
        itsDest.PutRow(aX, aCount, aY, aZ, results);
    }

    UInt32 itsSize;
    SInt64 itsLow;
    UInt32 itsChannelOffset = 0;
    XSourceChannel<C> itsSource;
    XDestChannel<C> itsDest;
    XNeighbourRows<C> itsRows;
    std::vector<C> itsValues;
    std::vector<C> itsResults;
    std::unique_ptr<XHistogram> itsHistogram;
};
} // namespace

XMedianFilterVolumeTool::XMedianFilterVolumeTool(UInt32 aSize) : itsSize(aSize) {}

XMedianFilterVolumeTool::~XMedianFilterVolumeTool() = default;

void XMedianFilterVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XMedianWorker>(aSource, aDest, itsSize);
}

void XMedianFilterVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XMedianWorker>(aSource, aDest, itsSize);
}

void XMedianFilterVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XMedianWorker>(aSource, aDest, itsSize);
}

void XMedianFilterVolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XMedianWorker>(aSource, aDest, itsSize);
}

void XMedianFilterVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XMedianWorker>(aSource, aDest, itsSize);
}
