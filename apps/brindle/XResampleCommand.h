#pragma once
// What 'brindle resample' needs beyond reading and writing: the new grid from --size WxHxD or
// --scale S[,SY,SZ], the filter from --filter, and the resampling through XVolumeResampleTool.
//
// --scale multiplies each extent and rounds, floor(extent * s + 0.5), keeping at least 1. The
// result is of the input's class and keeps its origin; the voxel size on each axis becomes the
// input's times old extent / new extent, so that the stack spans the same length. Without
// --filter the tool's automatic mode chooses per axis: a smooth step to shrink, a bell to
// enlarge. Grids beyond 2^32 voxels, counting the steps on the way, are refused.

#include <memory>
#include <vector>

#include "X3DRect.h"
#include "XCommandLine.h"
#include "XVolumeResampleTool.h"

class XVolume;

class XResampleCommand
{
public:
    // The most voxels of a result, and of the larger of each axis's old and new extents.
    static constexpr double kMaxVoxels = 4294967296.0;

    // The command's options: size, scale, filter, then those of writing.
    static const std::vector<XCommandLine::XOptionSpec> & GetOptions();
    // The filter named by --filter; XCommandError of usage for any other name.
    static XFilterMode GetFilterMode(const XCommandLine & aLine);
    // The new grid for a volume of aBounds; XCommandError of usage for bad or missing options.
    static X3DRect GetTargetBounds(const XCommandLine & aLine, const X3DRect & aBounds);
    // A new volume of aVolume's class over aBounds, resampled from the whole of aVolume, with
    // calibrations for its grid. XCommandError for a type that the tool does not take.
    static std::unique_ptr<XVolume> Resample(const XVolume & aVolume, const X3DRect & aBounds, XFilterMode aMode);
};
