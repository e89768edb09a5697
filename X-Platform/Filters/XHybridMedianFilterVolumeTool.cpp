#include "XHybridMedianFilterVolumeTool.h"

#include <algorithm>
#include <vector>

#include "XARGB32Volume.h"
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
#include "XWidestKernel.h"

namespace
{
// One call's hybrid median of one channel of type C.
template <typename C>
class XHybridMedianWorker
{
public:
    explicit XHybridMedianWorker(UInt32 aSize) : itsHalf(aSize >> 1), itsRows(-1, 3, -1, 3) {}

    void SetChannelOffset(UInt32 anOffset) { itsChannelOffset = anOffset; }

    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsSource = XSourceChannel<C>(aSource, itsChannelOffset);
        itsDest = XDestChannel<C>(aDest, itsChannelOffset);
        itsRows.Prepare(itsSource);
        // The largest set: three lines, or four diagonals and the voxel.
        const UInt64 most = std::max<UInt64>(3 * (2 * UInt64(itsHalf) + 1), 8 * UInt64(itsHalf) + 1);
        itsValues.resize(std::max<std::size_t>(itsValues.size(), most));
        itsResults.resize(std::max<std::size_t>(itsResults.size(), aSource.GetWidth()));
    }

    // The plain rule: each set gathered and selected by quickselect, then the median of the
    // first seven of the eight.
    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        C medians[8];
        for (UInt32 set = 0; set < 8; ++set)
            medians[set] = XSelectLowerMedian(itsValues.data(), Gather(set, aX, aY, aZ));
        itsDest.Set(aX, aY, aZ, XSelectLowerMedian(medians, 7));
    }

    // Size 3: the voxels whose whole cube lies inside the source by sorting networks, a vector
    // of voxels at a time; the others by the plain rule.
    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        const X3DRect & bounds = itsSource.GetBounds();
        const SInt64 end = SInt64(aX) + aCount;
        const SInt64 first = std::clamp<SInt64>(SInt64(bounds.GetLeft()) + 1, aX, end);
        const SInt64 last = std::clamp<SInt64>(SInt64(bounds.GetRight()) - 1, first, end);
        SInt64 done = first;
        if (itsHalf == 1)
        {
            const std::vector<XRow> & rows = itsRows.Collect(aY, aZ);
            if (rows.size() == 9)
                XRunWidestVectorKernel(
                    [&](auto aBytes) { done = SelectVectors<XSimdVector<C, aBytes>>(rows, aX, first, last); });
        }
        itsDest.PutRow(SInt32(first), UInt32(done - first), aY, aZ, itsResults.data() + (first - aX));
        for (SInt64 x = aX; x < first; ++x)
            ScanVoxel(SInt32(x), aY, aZ);
        for (SInt64 x = done; x < end; ++x)
            ScanVoxel(SInt32(x), aY, aZ);
    }

private:
    using XRow = typename XNeighbourRows<C>::XRow;

    // The values of one set around (x, y, z) that lie inside the source, into itsValues;
    // returns their count.
    UInt32 Gather(UInt32 aSet, SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        C * values = itsValues.data();
        UInt32 count = 0;
        const SInt64 h = itsHalf;
        const auto add = [&](SInt64 aDX, SInt64 aDY, SInt64 aDZ) {
            const SInt64 x = aX + aDX;
            const SInt64 y = aY + aDY;
            const SInt64 z = aZ + aDZ;
            const X3DRect & bounds = itsSource.GetBounds();
            if (x >= bounds.GetLeft() && x < bounds.GetRight() && y >= bounds.GetTop() && y < bounds.GetBottom() &&
                z >= bounds.GetFront() && z < bounds.GetBack())
                values[count++] = itsSource.Get(SInt32(x), SInt32(y), SInt32(z));
        };
        // Sets 0 to 3: the lines along these axes (bit 0 x, bit 1 y, bit 2 z).
        static constexpr UInt32 kLineAxes[4] = {3, 5, 6, 7};
        if (aSet < 4)
        {
            for (UInt32 axis = 0; axis < 3; ++axis)
                if ((kLineAxes[aSet] >> axis) & 1)
                    for (SInt64 d = -h; d <= h; ++d)
                        add(axis == 0 ? d : 0, axis == 1 ? d : 0, axis == 2 ? d : 0);
            return count;
        }
        add(0, 0, 0);
        for (SInt64 d = -h; d <= h; ++d)
        {
            if (d == 0)
                continue;
            switch (aSet)
            {
            case 4:
                add(d, d, 0);
                add(d, -d, 0);
                break;
            case 5:
                add(d, 0, d);
                add(d, 0, -d);
                break;
            case 6:
                add(0, d, d);
                add(0, d, -d);
                break;
            default:
                add(d, d, d);
                add(d, d, -d);
                add(d, -d, d);
                add(d, -d, -d);
                break;
            }
        }
        return count;
    }

    // The hybrid medians of the voxels aFirst .. aLast - 1, whose cubes lie inside the source,
    // into the results, a vector at a time, the last vector ending at aLast. Returns where the
    // vectors ended: aLast unless the voxels are fewer than a vector holds.
    template <class Values>
    SInt64 SelectVectors(const std::vector<XRow> & aRows, SInt32 aX, SInt64 aFirst, SInt64 aLast)
    {
        constexpr SInt64 kLanes = Values::kLanes;
        using Vector = typename Values::Type;
        const SInt64 left = itsSource.GetBounds().GetLeft();
        const auto select = [&](SInt64 anX) {
            // The cube, c[dx + 1][dy + 1][dz + 1].
            Vector c[3][3][3];
            for (UInt32 dz = 0; dz < 3; ++dz)
                for (UInt32 dy = 0; dy < 3; ++dy)
                    for (UInt32 dx = 0; dx < 3; ++dx)
                        Values::Load(c[dx][dy][dz], aRows[dy + 3 * dz].itsValues + (anX - left) + dx - 1);
            const Vector & m = c[1][1][1];
            Vector xy[6] = {c[0][1][1], m, c[2][1][1], c[1][0][1], m, c[1][2][1]};
            Vector xz[6] = {c[0][1][1], m, c[2][1][1], c[1][1][0], m, c[1][1][2]};
            Vector yz[6] = {c[1][0][1], m, c[1][2][1], c[1][1][0], m, c[1][1][2]};
            Vector xyz[9] = {c[0][1][1], m, c[2][1][1], c[1][0][1], m, c[1][2][1], c[1][1][0], m, c[1][1][2]};
            Vector dxy[5] = {m, c[0][0][1], c[2][2][1], c[0][2][1], c[2][0][1]};
            Vector dxz[5] = {m, c[0][1][0], c[2][1][2], c[0][1][2], c[2][1][0]};
            Vector dyz[5] = {m, c[1][0][0], c[1][2][2], c[1][0][2], c[1][2][0]};
            // The eighth set, the body diagonals, would not change the result: it is left out
            // here, where nothing else depends on it.
            Vector medians[7] = {XSelectionNetwork<6, 2>::Select(xy),  XSelectionNetwork<6, 2>::Select(xz),
                                 XSelectionNetwork<6, 2>::Select(yz),  XSelectionNetwork<9, 4>::Select(xyz),
                                 XSelectionNetwork<5, 2>::Select(dxy), XSelectionNetwork<5, 2>::Select(dxz),
                                 XSelectionNetwork<5, 2>::Select(dyz)};
            Values::Store(itsResults.data() + (anX - aX), XSelectionNetwork<7, 3>::Select(medians));
        };
        SInt64 x = aFirst;
        for (; x + kLanes <= aLast; x += kLanes)
            select(x);
        if (x < aLast && aLast - aFirst >= kLanes)
        {
            select(aLast - kLanes);
            x = aLast;
        }
        return x;
    }

    UInt32 itsHalf;
    UInt32 itsChannelOffset = 0;
    XSourceChannel<C> itsSource;
    XDestChannel<C> itsDest;
    XNeighbourRows<C> itsRows;
    std::vector<C> itsValues;
    std::vector<C> itsResults;
};
} // namespace

XHybridMedianFilterVolumeTool::XHybridMedianFilterVolumeTool(UInt32 aSize) : itsSize(aSize | 1) {}

XHybridMedianFilterVolumeTool::~XHybridMedianFilterVolumeTool() = default;

void XHybridMedianFilterVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XHybridMedianWorker>(aSource, aDest, itsSize);
}

void XHybridMedianFilterVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XHybridMedianWorker>(aSource, aDest, itsSize);
}

void XHybridMedianFilterVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XHybridMedianWorker>(aSource, aDest, itsSize);
}

void XHybridMedianFilterVolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XHybridMedianWorker>(aSource, aDest, itsSize);
}

void XHybridMedianFilterVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    XNeighbourhoodScanner::ScanColourChannels<XHybridMedianWorker>(aSource, aDest, itsSize);
}
