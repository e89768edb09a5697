#pragma once
// The bookkeeping of a reduced-resolution pyramid of a volume. Level 0 is full resolution;
// each level below halves the axes, but an axis whose voxels are coarser than the finest axis
// (anisotropy) is not halved until the others have caught up with it.
//
// The scaling is the voxel size along each axis over that of the finest axis, so the finest
// has 1. The maximum anisotropy of an axis is floor(log2(scaling) + 0.5): how many halvings of
// the other axes it takes to catch up with it. At level l (0 or below):
//   anisotropy[a]   = min(-l, maxAnisotropy[a])      halvings that axis a is spared
//   axis level[a]   = l + anisotropy[a]               halvings that axis a undergoes, negated
//   scaling[a]      = scaling[a] / 2^anisotropy[a]
//   bounds          first and last voxel shifted right (arithmetically) by -axis level
// MakeFromTemplateVolume chooses the coarsest level for a volume: the one that brings it to
// about 2^20 voxels, floor(ln(2^20 / n) / ln 8) for n voxels above 2^20, else 0.

#include "X3DRect.h"
#include "XMathRect.h"
#include "XMathVector.h"
#include "XTypes.h"

class XVolume;

class XVolumeLevelScalingHelper
{
public:
    // Zero bounds, scaling 1 on each axis, level 0.
    XVolumeLevelScalingHelper();
    // aScaling is divided by its smallest absolute component. A component of zero, below
    // zero or not a number is a broken precondition (reported by the anisotropy's assertions).
    XVolumeLevelScalingHelper(const XMathRectS3 & aBounds, const XMathVectorF3 & aScaling);

    // Bounds, scaling (the XY plane's scales of the volume) and the level of aVolume.
    void MakeFromTemplateVolume(const XVolume & aVolume);

    SInt32 GetSubdivisionLevel() const { return itsSubdivisionLevel; }
    const XMathVectorF3 & GetScaling() const { return itsScaling; }
    const XMathRectS3 & GetBounds() const { return itsBounds; }
    const XMathVectorS3 & GetMaxAnisotropy() const { return itsMaxAnisotropy; }

    XMathVectorS3 GetAnisotropyOfLevel(SInt32 aLevel) const;
    XMathVectorS3 GetAxisLevelsOfLevel(SInt32 aLevel) const;
    // Bit a (x 1, y 2, z 4) set where the axis has reached its maximum anisotropy at aLevel.
    UInt32 GetChildSubSampleAxesOfLevel(SInt32 aLevel) const;
    XMathVectorF3 GetScalingOfLevel(SInt32 aLevel) const;
    // The voxels of the bounds at aLevel; an extent never goes below 0.
    XMathRectS3 GetBoundsOfLevel(SInt32 aLevel) const;

    // The bounds of a volume as origin and size.
    static XMathRectS3 MakeMathRect(const X3DRect & aRect);

    // More voxels than this call for a level below 0.
    static constexpr double kLevelVoxels = 1048576.0;

private:
    void UpdateMaxAnisotropy();

    XMathRectS3 itsBounds;
    XMathVectorF3 itsScaling{1.0f, 1.0f, 1.0f};
    XMathVectorS3 itsMaxAnisotropy;
    SInt32 itsSubdivisionLevel = 0;
};
