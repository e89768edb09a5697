#pragma once
// Walks the voxels of a packed volume and hands each to a helper, z outermost, then y, then x:
//     aHelper.SetupForScan(volume)
//     aHelper.ScanPixel(voxel pointer, volume, x, y, z)   for each voxel walked
//     aHelper.FinishedScanning(volume)
// With a region only the voxels of the region's box inside the volume are walked, and of a
// masked region only those that it holds (mask byte above 127, the region's own rule). The volume is locked in aMode for the
// whole walk (the region for reading), under an XProgress of one step a plane; a pending cancel
// of the calling thread stops the walk between planes.

#include <algorithm>
#include <optional>

#include "X3DRegion.h"
#include "XLock.h"
#include "XPackedVolume.h"
#include "XProgress.h"
#include "XThread.h"

template <typename T, class Helper>
void XScanVolume(XPackedVolume<T> & aVolume, Helper & aHelper, const X3DRegion * aRegion, XLockMode aMode)
{
    XLock lock(aVolume, aMode);
    X3DRect box = aVolume.GetBounds();
    std::optional<XLock> regionLock;
    const UInt8 * mask = nullptr;
    if (aRegion != nullptr)
    {
        box.Sect(aRegion->GetBounds());
        regionLock.emplace(*aRegion, kLockRead);
        mask = aRegion->GetLockedBase();
    }
    aHelper.SetupForScan(aVolume);
    if (box.IsEmpty())
    {
        aHelper.FinishedScanning(aVolume);
        return;
    }
    XProgress progress(box.GetDepth(), XProgress::kProgressWithEstimate, 2000, false);
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
    {
        XThread::TestCancelCurrentThread();
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            T * voxel = aVolume.GetVoxelPtr(box.GetLeft(), y, z);
            const UInt8 * maskByte = mask != nullptr ? aRegion->GetLockedVoxel(box.GetLeft(), y, z) : nullptr;
            for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x, ++voxel)
                if (maskByte == nullptr || maskByte[x - box.GetLeft()] > 127)
                    aHelper.ScanPixel(voxel, aVolume, x, y, z);
        }
        progress.Increment();
    }
    aHelper.FinishedScanning(aVolume);
}
