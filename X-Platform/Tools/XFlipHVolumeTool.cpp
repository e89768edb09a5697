#include "XFlipHVolumeTool.h"

#include "XBasePackedVolume.h"
#include "XLock.h"
#include "XPlaneRotation.h"

void XFlipHVolumeTool::Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    CheckFlip(aSource, aDest);
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    const UInt32 width = aSource.GetWidth(), height = aSource.GetHeight(), depth = aSource.GetDepth();
    const UInt32 voxelBytes = UInt32(aSource.GetVoxelBytes());
    for (UInt32 z = 0; z < depth; ++z)
    {
        const UInt8 * in = aSource.GetLayerPtr(SInt32(z));
        UInt8 * out = aDest.GetLayerPtr(SInt32(z));
        for (UInt32 y = 0; y < height; ++y)
            XReverseRow(in + y * aSource.GetRowBytes(), out + y * aDest.GetRowBytes(), width, voxelBytes);
    }
}
