#pragma once
// Helpers of the filter tests: random volumes of every voxel type, and one filter run three
// ways (fast paths with AVX2 where the processor has it, fast paths on the baseline processor,
// and the plain rule for every voxel) so that the results can be compared bit for bit.

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

#include "X1To1VolumeTool.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XIntelCPUInfo.h"
#include "XNeighbourhoodScanner.h"
#include "XVolumeTestSupport.h"

// The one-channel volume classes of the filters, for typed tests.
using XFilterGreyTypes = ::testing::Types<XGrey8Volume, XGrey16Volume, XFPVolume>;

// A volume of class V over aBounds with random voxels: whole channels for integer and colour
// types, for floats values in -1000..1000 with a few repeats so that ties occur.
template <class V>
V XRandomVolume(const X3DRect & aBounds, UInt32 aSeed, UInt32 aLevels = 0)
{
    using T = typename V::XVoxel;
    std::mt19937 random(aSeed);
    const auto level = [&](UInt32 aMaximum) {
        const UInt32 top = aLevels != 0 && aLevels < aMaximum ? aLevels : aMaximum;
        return UInt32(random() % (UInt64(top) + 1));
    };
    std::vector<T> voxels(aBounds.GetVolume());
    for (T & voxel : voxels)
    {
        if constexpr (std::is_same_v<T, float>)
            voxel = float(SInt32(level(2000)) - 1000) / 8.0f;
        else if constexpr (std::is_same_v<T, XARGB32Colour>)
            voxel = XARGB32Colour(UInt8(level(255)), UInt8(level(255)), UInt8(level(255)), UInt8(level(255)));
        else if constexpr (std::is_same_v<T, XRGB48Colour>)
            voxel = XRGB48Colour(UInt16(level(65535)), UInt16(level(65535)), UInt16(level(65535)));
        else
            voxel = T(level(std::numeric_limits<T>::max()));
    }
    return XMakeVolume<V>(aBounds, voxels);
}

// The voxels of aTool's result on aSource.
template <class V>
std::vector<typename V::XVoxel> XFiltered(X1To1VolumeTool & aTool, const V & aSource)
{
    const std::unique_ptr<XVolume> result(aTool.ApplyTool(aSource));
    return XGetVoxels(dynamic_cast<const V &>(*result));
}

// The voxels of a volume as bytes, for comparisons bit for bit (floats too).
template <class V>
std::vector<UInt8> XVoxelBytes(const V & aVolume)
{
    const auto voxels = XGetVoxels(aVolume);
    std::vector<UInt8> bytes(voxels.size() * sizeof(voxels[0]));
    std::memcpy(bytes.data(), voxels.data(), bytes.size());
    return bytes;
}

// Restores the fast paths and the processor's features when it goes.
class XFilterPathGuard
{
public:
    XFilterPathGuard() = default;
    XFilterPathGuard(const XFilterPathGuard &) = delete;
    XFilterPathGuard & operator=(const XFilterPathGuard &) = delete;
    ~XFilterPathGuard()
    {
        XNeighbourhoodScanner::SetFastPathsEnabled(true);
        XIntelCPUInfo::ResetFeatures();
    }
};

// The results of aTool on aSource: with the fast paths and AVX2, with the fast paths on the
// baseline processor, and by the plain rule.
template <class V>
std::vector<std::unique_ptr<V>> XRunEveryPath(X1To1VolumeTool & aTool, const V & aSource)
{
    const XFilterPathGuard guard;
    std::vector<std::unique_ptr<V>> results;
    const auto run = [&] { results.emplace_back(dynamic_cast<V *>(aTool.ApplyTool(aSource))); };
    run();
    XIntelCPUInfo::SetFeatureEnabled(kCPUFeatureAVX2, false);
    run();
    XIntelCPUInfo::ResetFeatures();
    XNeighbourhoodScanner::SetFastPathsEnabled(false);
    run();
    return results;
}

// True when the three results of XRunEveryPath agree bit for bit.
template <class V>
::testing::AssertionResult XEveryPathAgrees(X1To1VolumeTool & aTool, const V & aSource)
{
    const auto results = XRunEveryPath(aTool, aSource);
    const std::vector<UInt8> plain = XVoxelBytes(*results[2]);
    if (XVoxelBytes(*results[0]) != plain)
        return ::testing::AssertionFailure() << "the fast paths (widest) differ from the plain rule";
    if (XVoxelBytes(*results[1]) != plain)
        return ::testing::AssertionFailure() << "the fast paths (baseline) differ from the plain rule";
    return ::testing::AssertionSuccess();
}
