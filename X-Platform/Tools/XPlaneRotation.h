#pragma once
// The walk shared by the rotations: plane by plane, each voxel (x, y) of the source plane goes
// to aMap(x, y) of the destination plane, where aMap gives a destination (x, y). The source is
// locked for reading and the destination for writing; voxels move as N plain bytes. The walk
// goes in tiles so that rotations by 90 degrees, which write down columns, stay in the cache.

#include <algorithm>

#include "XBasePackedVolume.h"
#include "XLock.h"
#include "XVoxelBytes.h"

template <typename Map>
void XRotatePlanes(const XBasePackedVolume & aSource, XBasePackedVolume & aDest, Map aMap)
{
    XLock sourceLock(aSource, kLockRead);
    XLock destLock(aDest, kLockWrite);
    XDispatchVoxelBytes(UInt32(aSource.GetVoxelBytes()), [&](auto aSize) {
        using Voxel = XVoxelBytes<decltype(aSize)::value>;
        constexpr UInt32 kTile = 64;
        const UInt64 sourceRow = aSource.GetRowVoxels(), destRow = aDest.GetRowVoxels();
        const UInt32 width = aSource.GetWidth(), height = aSource.GetHeight(), depth = aSource.GetDepth();
        for (UInt32 z = 0; z < depth; ++z)
        {
            const Voxel * in = reinterpret_cast<const Voxel *>(aSource.GetLayerPtr(SInt32(z)));
            Voxel * out = reinterpret_cast<Voxel *>(aDest.GetLayerPtr(SInt32(z)));
            for (UInt32 y0 = 0; y0 < height; y0 += kTile)
                for (UInt32 x0 = 0; x0 < width; x0 += kTile)
                {
                    const UInt32 y1 = std::min(y0 + kTile, height), x1 = std::min(x0 + kTile, width);
                    for (UInt32 y = y0; y < y1; ++y)
                        for (UInt32 x = x0; x < x1; ++x)
                        {
                            const auto [dx, dy] = aMap(x, y, width, height);
                            out[UInt64(dy) * destRow + dx] = in[UInt64(y) * sourceRow + x];
                        }
                }
        }
    });
}
