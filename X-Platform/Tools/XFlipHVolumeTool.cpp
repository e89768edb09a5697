#include "XFlipHVolumeTool.h"

#include "XBasePackedVolume.h"
#include "XLock.h"
#include "XVoxelBytes.h"

namespace
{
template <UInt32 N>
void FlipRows(const UInt8 * aSource, UInt8 * aDest, UInt64 aSourceRow, UInt64 aDestRow, UInt64 aSourcePlane,
              UInt64 aDestPlane, UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
{
    using Voxel = XVoxelBytes<N>;
    for (UInt32 z = 0; z < aDepth; ++z, aSource += aSourcePlane, aDest += aDestPlane)
        for (UInt32 y = 0; y < aHeight; ++y)
        {
            const Voxel * in = reinterpret_cast<const Voxel *>(aSource + y * aSourceRow);
            Voxel * out = reinterpret_cast<Voxel *>(aDest + y * aDestRow);
            for (UInt32 x = 0; x < aWidth; ++x)
                out[aWidth - 1 - x] = in[x];
        }
}
} // namespace

void XFlipHVolumeTool::Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    CheckFlip(aSource, aDest);
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    XDispatchVoxelBytes(UInt32(aSource.GetVoxelBytes()), [&](auto aSize) {
        FlipRows<decltype(aSize)::value>(static_cast<const UInt8 *>(aSource.GetBasePtr()),
                                         static_cast<UInt8 *>(aDest.GetBasePtr()), aSource.GetRowBytes(),
                                         aDest.GetRowBytes(), aSource.GetPlaneBytes(), aDest.GetPlaneBytes(),
                                         aSource.GetWidth(), aSource.GetHeight(), aSource.GetDepth());
    });
}
