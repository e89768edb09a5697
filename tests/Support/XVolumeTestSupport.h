#pragma once
// Helpers of the imaging tests: the class registration that every program needs once, and
// volumes made from and read back into plain vectors of voxels.

#include <vector>

#include "XLock.h"
#include "XPackedVolume.h"
#include "XRegisterImagingClasses.h"

inline const bool kImagingClassesRegistered = [] {
    XRegisterImagingClasses();
    return true;
}();

// Sets the visible voxels of aVolume, x fastest, from aVoxels.
template <typename T>
void XSetVoxels(XPackedVolume<T> & aVolume, const std::vector<T> & aVoxels)
{
    XLock lock(aVolume, kLockReadWrite);
    const X3DRect & b = aVolume.GetBounds();
    std::size_t i = 0;
    for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
            for (SInt32 x = b.GetLeft(); x < b.GetRight(); ++x)
                aVolume.SetVoxel(x, y, z, aVoxels.at(i++));
}

// The visible voxels of aVolume, x fastest.
template <typename T>
std::vector<T> XGetVoxels(const XPackedVolume<T> & aVolume)
{
    XLock lock(aVolume, kLockRead);
    const X3DRect & b = aVolume.GetBounds();
    std::vector<T> voxels;
    for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
            for (SInt32 x = b.GetLeft(); x < b.GetRight(); ++x)
                voxels.push_back(aVolume.GetVoxel(x, y, z));
    return voxels;
}

// A volume of class V over aBounds holding aVoxels.
template <class V>
V XMakeVolume(const X3DRect & aBounds, const std::vector<typename V::XVoxel> & aVoxels)
{
    V volume(aBounds);
    XSetVoxels(volume, aVoxels);
    return volume;
}
