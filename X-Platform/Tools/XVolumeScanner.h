#pragma once
// Walks the voxels of a packed volume and hands each to a helper, z outermost, then y, then x:
//     aHelper.SetupForScan(volume)
//     aHelper.ScanPixel(voxel pointer, volume, x, y, z)   for each voxel walked
//     aHelper.FinishedScanning(volume)
// A helper that can take a row at once offers
//     aHelper.ScanRow(first voxel, volume, x, count, y, z, mask row or null)
// and gets each row of the walk that way instead: the count voxels from x, of which only those
// whose mask byte is above 127 belong to the walk when a mask row is given. It must do exactly
// what ScanPixel would do on those voxels, in that order.
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

// A helper that takes whole rows.
template <class Helper, typename T>
concept XRowScanner = requires(Helper & aHelper, T * aRow, XVolume & aVolume, const UInt8 * aMask) {
    aHelper.ScanRow(aRow, aVolume, SInt32(), UInt32(), SInt32(), SInt32(), aMask);
};

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
            if constexpr (XRowScanner<Helper, T>)
                aHelper.ScanRow(voxel, aVolume, box.GetLeft(), box.GetWidth(), y, z, maskByte);
            else
                for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x, ++voxel)
                    if (maskByte == nullptr || maskByte[x - box.GetLeft()] > 127)
                        aHelper.ScanPixel(voxel, aVolume, x, y, z);
        }
        progress.Increment();
    }
    aHelper.FinishedScanning(aVolume);
}
