#pragma once
// What `brindle info` tells about a volume: class, voxel type, size, bounds and origin,
// calibrations, renderer settings, and the minimum, maximum and mean of the voxels. Grey
// volumes are measured by the library (FindMinMax, FindSum); colour volumes channel by channel
// here, since the library measures scalar voxels only. The mean is the sum over the count in
// double precision, not the library's FindMean, which truncates to the voxel type.

#include <string>
#include <vector>

class XVolume;

class XVolumeReport
{
public:
    // Minimum, maximum and mean of each channel (one for grey, red, green and blue for colour).
    struct XChannelStatistics
    {
        std::string itsName;
        double itsMinimum;
        double itsMaximum;
        double itsMean;
    };

    // Empty for an empty volume.
    static std::vector<XChannelStatistics> Measure(const XVolume & aVolume);
    // Lines of "name  value", each ending with a line break.
    static std::string Describe(const XVolume & aVolume);
    // The shortest text that reads back as aValue.
    static std::string Number(double aValue);
    // A value for people: six significant digits.
    static std::string Rounded(double aValue);
};
