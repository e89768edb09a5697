#include "XSampleStack.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "XGrey16Volume.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XProgress.h"
#include "XSampleRandom.h"

namespace
{
// A cell reaches this many radii from its centre; its soft edge has fallen below 0.1 % there.
constexpr double kCellReach = 1.6;
// The steepness of a cell's edge: the level over 1 + exp((d - 1) * kCellEdge) at relative
// distance d from the centre.
constexpr double kCellEdge = 12.0;
// Spots are drawn this far inside the stack, so that their reach stays in it.
constexpr double kSpotMarginXY = 6.0;
constexpr double kSpotMarginZ = 3.0;
constexpr double kSpotPeakLow = 300.0;
constexpr double kSpotPeakHigh = 1500.0;

// The first and last index of a centre +- a reach, clipped to 0..anExtent - 1.
void ReachRange(double aCentre, double aReach, UInt32 anExtent, SInt32 & outFirst, SInt32 & outLast)
{
    outFirst = SInt32(std::max(0.0, std::floor(aCentre - aReach)));
    outLast = SInt32(std::min(double(anExtent - 1), std::ceil(aCentre + aReach)));
}
} // namespace

XSampleStack::XSampleStack(UInt64 aSeed) : itsSeed(aSeed), itsNoiseRandom(aSeed)
{
    XSampleRandom & random = itsNoiseRandom;
    itsSpots.reserve(kSpotCount);
    for (UInt32 i = 0; i < kSpotCount; ++i)
    {
        XSpot spot;
        spot.itsX = random.NextUniform(kSpotMarginXY, kWidth - kSpotMarginXY);
        spot.itsY = random.NextUniform(kSpotMarginXY, kHeight - kSpotMarginXY);
        spot.itsZ = random.NextUniform(kSpotMarginZ, kDepth - kSpotMarginZ);
        spot.itsPeak = random.NextUniform(kSpotPeakLow, kSpotPeakHigh);
        itsSpots.push_back(spot);
    }
}

const std::vector<XSampleStack::XCell> & XSampleStack::GetCells()
{
    static const std::vector<XCell> cells = {{64.0, 72.0, 15.0, 24.0, 6.0, 1200.0},
                                             {184.0, 64.0, 17.0, 20.0, 5.0, 1500.0},
                                             {128.0, 168.0, 13.0, 28.0, 7.0, 900.0},
                                             {204.0, 196.0, 19.0, 18.0, 5.0, 1800.0},
                                             {56.0, 200.0, 21.0, 22.0, 6.0, 1400.0}};
    return cells;
}

double XSampleStack::GetBackground(SInt32 aX, SInt32 aY, SInt32 aZ)
{
    return 180.0 + 140.0 * aX / 255.0 + 90.0 * std::sin(std::numbers::pi * aY / 255.0) + 3.0 * aZ;
}

double XSampleStack::GetCellValue(const XCell & aCell, SInt32 aX, SInt32 aY, SInt32 aZ)
{
    const double dx = (aX - aCell.itsX) / aCell.itsRadiusXY;
    const double dy = (aY - aCell.itsY) / aCell.itsRadiusXY;
    const double dz = (aZ - aCell.itsZ) / aCell.itsRadiusZ;
    const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
    if (distance > kCellReach)
        return 0.0;
    return aCell.itsLevel / (1.0 + std::exp((distance - 1.0) * kCellEdge));
}

double XSampleStack::GetSpotValue(const XSpot & aSpot, SInt32 aX, SInt32 aY, SInt32 aZ)
{
    const double dx = aX - aSpot.itsX;
    const double dy = aY - aSpot.itsY;
    const double dz = aZ - aSpot.itsZ;
    const double reachXY = kSpotReach * kSpotSigmaXY;
    if (std::fabs(dx) > reachXY || std::fabs(dy) > reachXY || std::fabs(dz) > kSpotReach * kSpotSigmaZ)
        return 0.0;
    return aSpot.itsPeak * std::exp(-(dx * dx + dy * dy) / (2.0 * kSpotSigmaXY * kSpotSigmaXY) -
                                    dz * dz / (2.0 * kSpotSigmaZ * kSpotSigmaZ));
}

double XSampleStack::GetExpectedValue(SInt32 aX, SInt32 aY, SInt32 aZ) const
{
    double value = GetBackground(aX, aY, aZ);
    for (const XCell & cell : GetCells())
        value += GetCellValue(cell, aX, aY, aZ);
    for (const XSpot & spot : itsSpots)
        value += GetSpotValue(spot, aX, aY, aZ);
    return value;
}

// Plane by plane: the noise-free plane is built as GetExpectedValue builds a voxel (each cell
// and spot adds over its reach only, in the same order), then the noise is drawn row by row.
std::unique_ptr<XGrey16Volume> XSampleStack::MakeVolume() const
{
    auto volume = std::make_unique<XGrey16Volume>(kWidth, kHeight, kDepth);
    volume->SetXCalibration(kXCalibration);
    volume->SetYCalibration(kYCalibration);
    volume->SetZCalibration(kZCalibration);

    // The noise draws follow the spot draws of the constructor, from the same sequence.
    XSampleRandom random = itsNoiseRandom;

    XProgress progress(kDepth, XProgress::kProgressWithEstimate, XProgress::kDefaultDelayMs, false);
    progress.SetMessage("Making the sample stack");
    std::vector<double> plane(UInt64(kWidth) * kHeight);
    UInt16 lowest = 65535;
    UInt16 highest = 0;
    {
        XLock lock(*volume, kLockWrite);
        for (SInt32 z = 0; z < SInt32(kDepth); ++z)
        {
            for (SInt32 y = 0; y < SInt32(kHeight); ++y)
                for (SInt32 x = 0; x < SInt32(kWidth); ++x)
                    plane[UInt64(y) * kWidth + UInt64(x)] = GetBackground(x, y, z);

            auto addOverReach = [&](double aX, double aY, double aReachXY, auto aValueAt) {
                SInt32 left, right, top, bottom;
                ReachRange(aX, aReachXY, kWidth, left, right);
                ReachRange(aY, aReachXY, kHeight, top, bottom);
                for (SInt32 y = top; y <= bottom; ++y)
                    for (SInt32 x = left; x <= right; ++x)
                        plane[UInt64(y) * kWidth + UInt64(x)] += aValueAt(x, y);
            };
            for (const XCell & cell : GetCells())
            {
                if (std::fabs(z - cell.itsZ) <= kCellReach * cell.itsRadiusZ)
                    addOverReach(cell.itsX, cell.itsY, kCellReach * cell.itsRadiusXY,
                                 [&](SInt32 x, SInt32 y) { return GetCellValue(cell, x, y, z); });
            }
            for (const XSpot & spot : itsSpots)
            {
                if (std::fabs(z - spot.itsZ) <= kSpotReach * kSpotSigmaZ)
                    addOverReach(spot.itsX, spot.itsY, kSpotReach * kSpotSigmaXY,
                                 [&](SInt32 x, SInt32 y) { return GetSpotValue(spot, x, y, z); });
            }

            UInt16 * voxels = volume->GetPlane(z);
            for (SInt32 y = 0; y < SInt32(kHeight); ++y)
            {
                UInt16 * row = voxels + UInt64(y) * volume->GetRowVoxels();
                for (SInt32 x = 0; x < SInt32(kWidth); ++x)
                {
                    const double clean = plane[UInt64(y) * kWidth + UInt64(x)];
                    const double sigma = std::sqrt(kReadNoise * kReadNoise + std::max(clean, 0.0));
                    const double noisy = std::floor(clean + sigma * random.NextNormal() + 0.5);
                    const UInt16 voxel = UInt16(std::clamp(noisy, 0.0, 65535.0));
                    row[x] = voxel;
                    lowest = std::min(lowest, voxel);
                    highest = std::max(highest, voxel);
                }
            }
            progress.Increment();
        }
    }
    volume->GetPlaneRenderer().SetBlack(lowest);
    volume->GetPlaneRenderer().SetWhite(highest);
    return volume;
}
