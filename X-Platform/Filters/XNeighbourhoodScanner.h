#pragma once
// The voxel walk that the neighbourhood filters share (convolution, median, hybrid median,
// dilate and erode). A filter supplies a worker, which computes destination voxels from the
// source's neighbourhood:
//     aWorker.Begin(source, dest)         under the locks, before the walk
//     aWorker.ScanRow(x, count, y, z)     count voxels of row (y, z) from x
//     aWorker.ScanVoxel(x, y, z)          one voxel, by the plain rule of the filter
// ScanRow must give exactly what ScanVoxel gives for each of its voxels; it is where a worker
// puts its faster methods.
//
// Scan locks the source for reading and the destination for reading and writing (then the
// region, for reading), for the whole walk. The work box is the intersection of the bounds of
// both volumes and of the region's. Voxels go in order of z, then y, then x; a masked region
// visits only voxels whose mask byte is not 0, each through ScanVoxel. Progress goes by rows
// (rows * planes steps), reported at most every 300 ms; a pending cancel of the calling thread
// stops the walk between planes.
//
// With the fast paths turned off (SetFastPathsEnabled(false), for the whole process) every
// voxel goes through ScanVoxel: tests and benchmarks compare both ways with it.

#include <initializer_list>
#include <optional>
#include <type_traits>

#include "X3DRegion.h"
#include "XARGB32Colour.h"
#include "XAssert.h"
#include "XBasePackedVolume.h"
#include "XLock.h"
#include "XProgress.h"
#include "XRGB48Colour.h"
#include "XThread.h"
#include "XTimer.h"

class XNeighbourhoodScanner
{
public:
    XNeighbourhoodScanner() = delete;

    static void SetFastPathsEnabled(bool anEnabled);
    static bool AreFastPathsEnabled();

    // One walk over the work box. TVolType is the voxel type of both volumes.
    template <typename TVolType, class Worker>
    static void Scan(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, Worker & aWorker,
                     const X3DRegion * aRegion = nullptr);

    // One walk for each channel offset, with aWorker.SetChannelOffset before each; more than one
    // run under an XProgress of one step a pass.
    template <typename TVolType, class Worker>
    static void ScanChannels(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, Worker & aWorker,
                             std::initializer_list<UInt32> aChannelOffsets);

    // The passes of the filters that take colour channel by channel, with a Worker<C> made from
    // anArguments for the channel type C: grey and float volumes in one pass; ARGB32 at its red,
    // green and blue bytes (offsets 1, 2, 3), alpha left as the destination holds it; RGB48 at
    // its three 16-bit words (offsets 0, 2, 4).
    template <template <typename> class Worker, class Volume, typename... Arguments>
    static void ScanColourChannels(const Volume & aSource, Volume & aDest, const Arguments &... anArguments);

private:
    static constexpr SInt64 kReportPeriodMs = 300;
};

template <typename TVolType, class Worker>
void XNeighbourhoodScanner::Scan(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, Worker & aWorker,
                                 const X3DRegion * aRegion)
{
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockReadWrite);
    std::optional<XLock> regionLock;
    XAssertText(aSource.GetVoxelBytes() == sizeof(TVolType) && aDest.GetVoxelBytes() == sizeof(TVolType),
                "volumeA.GetVoxelBytes() == sizeof(TVolType)");
    X3DRect box = aSource.GetBounds();
    box.Sect(aDest.GetBounds());
    if (aRegion != nullptr)
    {
        box.Sect(aRegion->GetBounds());
        regionLock.emplace(*aRegion, kLockRead);
    }
    if (box.IsEmpty())
        return;
    aWorker.Begin(aSource, aDest);
    const UInt8 * mask = aRegion != nullptr ? aRegion->GetLockedBase() : nullptr;
    const bool fast = AreFastPathsEnabled();

    XProgress progress(UInt64(box.GetHeight()) * box.GetDepth(), XProgress::kProgressWithEstimate, 2000, false);
    XTimer timer(kReportPeriodMs);
    timer.Start();
    UInt64 rowsDone = 0;
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
    {
        XThread::TestCancelCurrentThread();
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            if (mask != nullptr)
            {
                const UInt8 * maskRow = aRegion->GetLockedVoxel(box.GetLeft(), y, z);
                for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x)
                    if (maskRow[x - box.GetLeft()] != 0)
                        aWorker.ScanVoxel(x, y, z);
            }
            else if (fast)
                aWorker.ScanRow(box.GetLeft(), box.GetWidth(), y, z);
            else
                for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x)
                    aWorker.ScanVoxel(x, y, z);
            ++rowsDone;
            if (timer.CheckPeriod())
                progress.SetProgress(rowsDone);
        }
    }
    progress.SetProgress(rowsDone);
}

template <typename TVolType, class Worker>
void XNeighbourhoodScanner::ScanChannels(const XBasePackedVolume & aSource, XBasePackedVolume & aDest,
                                         Worker & aWorker, std::initializer_list<UInt32> aChannelOffsets)
{
    std::optional<XProgress> passes;
    if (aChannelOffsets.size() > 1)
        passes.emplace(aChannelOffsets.size(), XProgress::kProgressWithEstimate, 2000, false);
    for (UInt32 offset : aChannelOffsets)
    {
        aWorker.SetChannelOffset(offset);
        Scan<TVolType>(aSource, aDest, aWorker);
        if (passes)
            passes->Increment();
    }
}

template <template <typename> class Worker, class Volume, typename... Arguments>
void XNeighbourhoodScanner::ScanColourChannels(const Volume & aSource, Volume & aDest, const Arguments &... anArguments)
{
    using T = typename Volume::XVoxel;
    if constexpr (std::is_same_v<T, XARGB32Colour>)
    {
        Worker<UInt8> worker(anArguments...);
        ScanChannels<T>(aSource, aDest, worker, {1, 2, 3});
    }
    else if constexpr (std::is_same_v<T, XRGB48Colour>)
    {
        Worker<UInt16> worker(anArguments...);
        ScanChannels<T>(aSource, aDest, worker, {0, 2, 4});
    }
    else
    {
        Worker<T> worker(anArguments...);
        ScanChannels<T>(aSource, aDest, worker, {0});
    }
}
