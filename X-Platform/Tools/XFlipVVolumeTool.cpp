#include "XFlipVVolumeTool.h"

#include <cstring>

#include "XBasePackedVolume.h"
#include "XLock.h"

void XFlipVVolumeTool::Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    CheckFlip(aSource, aDest);
    const UInt64 rowBytes = aSource.GetWidth() * aSource.GetVoxelBytes();
    const UInt64 sourceRow = aSource.GetRowBytes(), destRow = aDest.GetRowBytes();
    const UInt64 sourcePlane = aSource.GetPlaneBytes(), destPlane = aDest.GetPlaneBytes();
    const UInt32 height = aSource.GetHeight(), depth = aSource.GetDepth();
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    const UInt8 * sourceBase = static_cast<const UInt8 *>(aSource.GetBasePtr());
    UInt8 * destBase = static_cast<UInt8 *>(aDest.GetBasePtr());
    for (UInt32 z = 0; z < depth; ++z, sourceBase += sourcePlane, destBase += destPlane)
        for (UInt32 y = 0; y < height; ++y)
            std::memcpy(destBase + (height - 1 - y) * destRow, sourceBase + y * sourceRow, rowBytes);
}
