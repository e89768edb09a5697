#pragma once
// A voxel seen as N plain bytes, for the tools that move voxels without looking at them, and
// the choice of N for a volume's voxel size (1, 2, 4 or 6 bytes).

#include <type_traits>

#include "XAssert.h"
#include "XTypes.h"

template <UInt32 N>
struct XVoxelBytes
{
    UInt8 itsBytes[N];
};

// Calls aWork with std::integral_constant<UInt32, N> for the voxel size N.
template <typename Work>
void XDispatchVoxelBytes(UInt32 aVoxelBytes, Work aWork)
{
    switch (aVoxelBytes)
    {
    case 1: aWork(std::integral_constant<UInt32, 1>()); break;
    case 2: aWork(std::integral_constant<UInt32, 2>()); break;
    case 4: aWork(std::integral_constant<UInt32, 4>()); break;
    case 6: aWork(std::integral_constant<UInt32, 6>()); break;
    default: XAssertText(false, "voxel of 1, 2, 4 or 6 bytes"); break;
    }
}
