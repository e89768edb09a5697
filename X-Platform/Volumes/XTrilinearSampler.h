#pragma once
// Trilinear sampling of a packed volume at a real position, in float, with a reading of each
// voxel given by the caller (the voxel itself, or the channels of a colour). x0 = floor(x) and
// the upper neighbour min(x0 + 1, right - 1), the same on y and z; positions below the bounds
// are not clamped. No lock is taken: the caller holds one.

#include <algorithm>
#include <cmath>

#include "XPackedVolume.h"

template <typename T, typename ReadVoxel>
auto XSampleTrilinear(const XPackedVolume<T> & aVolume, float aX, float aY, float aZ, ReadVoxel aRead)
{
    const X3DRect & b = aVolume.GetBounds();
    const SInt32 x0 = SInt32(std::floor(aX)), y0 = SInt32(std::floor(aY)), z0 = SInt32(std::floor(aZ));
    const SInt32 x1 = std::min(x0 + 1, b.GetRight() - 1);
    const SInt32 y1 = std::min(y0 + 1, b.GetBottom() - 1);
    const SInt32 z1 = std::min(z0 + 1, b.GetBack() - 1);
    const float fx = aX - float(x0), fy = aY - float(y0), fz = aZ - float(z0);
    auto along = [&](SInt32 y, SInt32 z) {
        return aRead(aVolume.GetVoxel(x0, y, z)) * (1.0f - fx) + aRead(aVolume.GetVoxel(x1, y, z)) * fx;
    };
    const auto c0 = along(y0, z0) * (1.0f - fy) + along(y1, z0) * fy;
    const auto c1 = along(y0, z1) * (1.0f - fy) + along(y1, z1) * fy;
    return c0 * (1.0f - fz) + c1 * fz;
}
