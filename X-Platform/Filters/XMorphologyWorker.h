#pragma once
// The voxel rule of grey-scale dilation (kDilate true) and erosion, and their iterations, for
// voxels of type T (UInt8, UInt16, float or XARGB32Colour).
//
// One voxel: v starts as the voxel itself; for each point of the structuring element in order,
// a neighbour (voxel + point) inside the source replaces v when it is brighter (dilate) or darker
// (erode): integers and floats by their value (floats by float comparison, so a NaN neither
// replaces nor is replaced), colours by their level, the largest of red, green and blue, whole
// voxels being moved. Ties keep the earlier voxel. A point outside the source is skipped, except
// under the edge rule of erosion, where it makes the result 0 (opaque black for colours) at once.
//
// A whole row goes point by point instead of voxel by voxel: each point of the element updates
// every voxel of the row that it reaches inside the source. Each voxel so sees the same
// neighbours in the same order as by the voxel rule, and the inner loop runs along x, where the
// compiler vectorises it. Under the edge rule a voxel becomes black when any point lies outside,
// which is what stopping at the first such point gives.

#include <algorithm>
#include <memory>
#include <type_traits>
#include <vector>

#include "X3DPoint.h"
#include "XARGB32Colour.h"
#include "XChannelGrid.h"
#include "XNeighbourhoodScanner.h"
#include "XProgress.h"
#include "XVector.h"
#include "XWidestKernel.h"

template <typename T, bool kDilate>
class XMorphologyWorker
{
public:
    XMorphologyWorker(const XVector<X3DPoint> & anElement, bool anEdgeRule)
        : itsElement(anElement), itsEdgeRule(anEdgeRule)
    {
    }

    // Copies the source into a working volume, and for each iteration scans the working volume
    // into the destination and takes the destination's voxels back into the working volume. No
    // iteration leaves the destination as it was.
    template <class Volume>
    static void Run(const Volume & aSource, Volume & aDest, UInt32 anIterations, const XVector<X3DPoint> & anElement,
                    bool anEdgeRule)
    {
        std::unique_ptr<Volume> working(static_cast<Volume *>(aSource.Clone()));
        XProgress progress(anIterations, XProgress::kProgressWithEstimate, 2000, false);
        XMorphologyWorker worker(anElement, anEdgeRule);
        for (UInt32 i = 0; i < anIterations; ++i)
        {
            XNeighbourhoodScanner::Scan<T>(*working, aDest, worker);
            working->CopyFrom(aDest);
            progress.Increment();
        }
    }

    void Begin(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
    {
        itsSource = XSourceChannel<T>(aSource, 0);
        itsDest = XDestChannel<T>(aDest, 0);
    }

    void ScanVoxel(SInt32 aX, SInt32 aY, SInt32 aZ)
    {
        T value = itsSource.Get(aX, aY, aZ);
        for (const X3DPoint & point : itsElement)
        {
            const SInt64 x = SInt64(aX) + point.x;
            const SInt64 y = SInt64(aY) + point.y;
            const SInt64 z = SInt64(aZ) + point.z;
            if (Inside(x, y, z))
            {
                const T neighbour = itsSource.Get(SInt32(x), SInt32(y), SInt32(z));
                if (Replaces(neighbour, value))
                    value = neighbour;
            }
            else if (itsEdgeRule)
            {
                value = Black();
                break;
            }
        }
        itsDest.Set(aX, aY, aZ, value);
    }

    void ScanRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ)
    {
        const X3DRect & bounds = itsSource.GetBounds();
        const SInt64 left = bounds.GetLeft();
        const SInt64 end = SInt64(aX) + aCount;
        T * out = reinterpret_cast<T *>(itsDest.At(aX, aY, aZ));
        std::copy_n(reinterpret_cast<const T *>(itsSource.At(aX, aY, aZ)), aCount, out);
        // Under the edge rule, the voxels before blackUntil and from blackFrom on lie next to a
        // point outside.
        SInt64 blackUntil = aX;
        SInt64 blackFrom = end;
        XRunWidestKernel([&] {
            for (const X3DPoint & point : itsElement)
            {
                const SInt64 y = SInt64(aY) + point.y;
                const SInt64 z = SInt64(aZ) + point.z;
                const SInt64 first = std::clamp<SInt64>(left - point.x, aX, end);
                const SInt64 last = std::clamp<SInt64>(SInt64(bounds.GetRight()) - point.x, first, end);
                if (y < bounds.GetTop() || y >= bounds.GetBottom() || z < bounds.GetFront() || z >= bounds.GetBack())
                {
                    blackFrom = aX;
                    continue;
                }
                blackUntil = std::max(blackUntil, first);
                blackFrom = std::min(blackFrom, last);
                const T * row = reinterpret_cast<const T *>(itsSource.RowStart(SInt32(y), SInt32(z)));
                const T * in = row + (first + point.x - left);
                T * to = out + (first - aX);
                for (SInt64 m = 0; m < last - first; ++m)
                    to[m] = Replaces(in[m], to[m]) ? in[m] : to[m];
            }
        });
        if (itsEdgeRule)
        {
            std::fill(out, out + (blackUntil - aX), Black());
            std::fill(out + (std::max(blackFrom, blackUntil) - aX), out + aCount, Black());
        }
    }

private:
    bool Inside(SInt64 aX, SInt64 aY, SInt64 aZ) const
    {
        const X3DRect & bounds = itsSource.GetBounds();
        return aX >= bounds.GetLeft() && aX < bounds.GetRight() && aY >= bounds.GetTop() && aY < bounds.GetBottom() &&
               aZ >= bounds.GetFront() && aZ < bounds.GetBack();
    }

    // True when aNeighbour takes the place of aValue: strictly brighter, or strictly darker.
    static bool Replaces(const T & aNeighbour, const T & aValue)
    {
        if constexpr (std::is_same_v<T, XARGB32Colour>)
            return kDilate ? aNeighbour.GetIntensity() > aValue.GetIntensity()
                           : aNeighbour.GetIntensity() < aValue.GetIntensity();
        else
            return kDilate ? aNeighbour > aValue : aNeighbour < aValue;
    }

    static T Black()
    {
        if constexpr (std::is_same_v<T, XARGB32Colour>)
            return XARGB32Colour::kBlack;
        else
            return T(0);
    }

    const XVector<X3DPoint> & itsElement;
    bool itsEdgeRule;
    XSourceChannel<T> itsSource;
    XDestChannel<T> itsDest;
};
