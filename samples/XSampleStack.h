#pragma once
// The built-in sample stack: a synthetic 3-D fluorescence stack made in code, the same on every
// machine for the same seed. 256 x 256 x 32 voxels of 16 bits, voxel size 0.2 x 0.2 x 0.5
// (micrometres), holding
//   - an uneven background: 180 + 140 x / 255 + 90 sin(pi y / 255) + 3 z, brighter to the right
//     and in the middle rows, rising slowly with z;
//   - five cells at fixed places: ellipsoids of a uniform level above the background with a soft
//     edge (the level falls to half at the ellipsoid's surface);
//   - a few hundred blurred spots at places drawn from the seed: Gaussians of sigma 1.3 voxels
//     across and 1.0 plane in depth, cut off beyond 4 sigma;
//   - noise: each voxel gets a normal draw of standard deviation sqrt(64 + value), read noise
//     and shot noise, then is rounded and clamped to 0..65535.
// Without the noise, each voxel is exactly GetExpectedValue, so tests and benchmarks can compare
// what they find with the known cells and spots. The volume's renderer shows the whole range:
// black at the minimum voxel, white at the maximum.

#include <memory>
#include <vector>

#include "XSampleRandom.h"
#include "XTypes.h"

class XGrey16Volume;

class XSampleStack
{
public:
    static constexpr UInt32 kWidth = 256;
    static constexpr UInt32 kHeight = 256;
    static constexpr UInt32 kDepth = 32;
    static constexpr double kXCalibration = 0.2;
    static constexpr double kYCalibration = 0.2;
    static constexpr double kZCalibration = 0.5;
    static constexpr UInt64 kSeed = 0x42524E44; // "BRND"
    static constexpr UInt32 kSpotCount = 320;
    static constexpr double kSpotSigmaXY = 1.3;
    static constexpr double kSpotSigmaZ = 1.0;
    // Spots reach this many sigmas from their centre and no further.
    static constexpr double kSpotReach = 4.0;
    // The standard deviation of the noise at value 0.
    static constexpr double kReadNoise = 8.0;

    // A spot: its centre in voxel coordinates and its peak height above what lies beneath it.
    struct XSpot
    {
        double itsX;
        double itsY;
        double itsZ;
        double itsPeak;
    };
    // A cell: its centre in voxel coordinates, its radii in voxels across and in planes, and its
    // level above the background.
    struct XCell
    {
        double itsX;
        double itsY;
        double itsZ;
        double itsRadiusXY;
        double itsRadiusZ;
        double itsLevel;
    };

    // The spots are drawn from aSeed at once; the noise when the volume is made.
    explicit XSampleStack(UInt64 aSeed = kSeed);

    UInt64 GetSeed() const { return itsSeed; }
    const std::vector<XSpot> & GetSpots() const { return itsSpots; }
    // The five cells, the same for every seed.
    static const std::vector<XCell> & GetCells();

    static double GetBackground(SInt32 aX, SInt32 aY, SInt32 aZ);
    // A cell's part of one voxel.
    static double GetCellValue(const XCell & aCell, SInt32 aX, SInt32 aY, SInt32 aZ);
    // A spot's part of one voxel; 0 beyond its reach.
    static double GetSpotValue(const XSpot & aSpot, SInt32 aX, SInt32 aY, SInt32 aZ);
    // The voxel without noise: the background, then the cells, then the spots, added in order.
    double GetExpectedValue(SInt32 aX, SInt32 aY, SInt32 aZ) const;

    // The stack with its noise; reports progress plane by plane.
    std::unique_ptr<XGrey16Volume> MakeVolume() const;

private:
    UInt64 itsSeed;
    std::vector<XSpot> itsSpots;
    // The sequence as the spots left it: the noise is drawn from here.
    XSampleRandom itsNoiseRandom;
};
