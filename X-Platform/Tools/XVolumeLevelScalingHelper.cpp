#include "XVolumeLevelScalingHelper.h"

#include <algorithm>
#include <cmath>

#include "XAssert.h"
#include "XTruncateToSInt32.h"
#include "XVolume.h"

XVolumeLevelScalingHelper::XVolumeLevelScalingHelper() = default;

XVolumeLevelScalingHelper::XVolumeLevelScalingHelper(const XMathRectS3 & aBounds, const XMathVectorF3 & aScaling)
    : itsBounds(aBounds), itsScaling(aScaling)
{
    const float finest = std::min({std::fabs(aScaling[0]), std::fabs(aScaling[1]), std::fabs(aScaling[2])});
    for (int a = 0; a < 3; ++a)
        itsScaling[a] = aScaling[a] / finest;
    UpdateMaxAnisotropy();
}

void XVolumeLevelScalingHelper::UpdateMaxAnisotropy()
{
    for (int a = 0; a < 3; ++a)
        itsMaxAnisotropy[a] = XTruncateToSInt32(std::floor(std::log2(double(itsScaling[a])) + 0.5));
    XAssertText(itsMaxAnisotropy.GetLTBitVector() == 0, "itsMaxAnisotropy.GetLTBitVector() == 0");
    XAssertText(itsMaxAnisotropy.GetElementMin() == 0, "itsMaxAnisotropy.GetElementMin() == 0");
}

XMathRectS3 XVolumeLevelScalingHelper::MakeMathRect(const X3DRect & aRect)
{
    return XMathRectS3(XMathVectorS3(aRect.GetLeft(), aRect.GetTop(), aRect.GetFront()),
                       XMathVectorS3(SInt32(aRect.GetWidth()), SInt32(aRect.GetHeight()), SInt32(aRect.GetDepth())));
}

void XVolumeLevelScalingHelper::MakeFromTemplateVolume(const XVolume & aVolume)
{
    *this = XVolumeLevelScalingHelper(MakeMathRect(aVolume.GetBounds()),
                                      XMathVectorF3(float(aVolume.GetXScale(kXYPlane)), float(aVolume.GetYScale(kXYPlane)),
                                                    float(aVolume.GetZScale(kXYPlane))));
    const double voxels = double(aVolume.GetBounds().GetVolume());
    if (voxels > kLevelVoxels)
        itsSubdivisionLevel = XTruncateToSInt32(std::floor(std::log(kLevelVoxels / voxels) / std::log(8.0)));
}

XMathVectorS3 XVolumeLevelScalingHelper::GetAnisotropyOfLevel(SInt32 aLevel) const
{
    XMathVectorS3 anisotropy;
    for (int a = 0; a < 3; ++a)
        anisotropy[a] = SInt32(std::min(-SInt64(aLevel), SInt64(itsMaxAnisotropy[a])));
    return anisotropy;
}

XMathVectorS3 XVolumeLevelScalingHelper::GetAxisLevelsOfLevel(SInt32 aLevel) const
{
    XMathVectorS3 levels = GetAnisotropyOfLevel(aLevel);
    for (int a = 0; a < 3; ++a)
        levels[a] = SInt32(SInt64(aLevel) + levels[a]);
    return levels;
}

UInt32 XVolumeLevelScalingHelper::GetChildSubSampleAxesOfLevel(SInt32 aLevel) const
{
    const XMathVectorS3 anisotropy = GetAnisotropyOfLevel(aLevel);
    UInt32 axes = 0;
    for (int a = 0; a < 3; ++a)
        if (anisotropy[a] == itsMaxAnisotropy[a])
            axes |= 1u << a;
    return axes;
}

XMathVectorF3 XVolumeLevelScalingHelper::GetScalingOfLevel(SInt32 aLevel) const
{
    const XMathVectorS3 anisotropy = GetAnisotropyOfLevel(aLevel);
    XMathVectorF3 scaling;
    for (int a = 0; a < 3; ++a)
        scaling[a] = std::ldexp(itsScaling[a], -anisotropy[a]);
    return scaling;
}

XMathRectS3 XVolumeLevelScalingHelper::GetBoundsOfLevel(SInt32 aLevel) const
{
    const XMathVectorS3 levels = GetAxisLevelsOfLevel(aLevel);
    XMathVectorS3 origin;
    XMathVectorS3 size;
    for (int a = 0; a < 3; ++a)
    {
        SInt64 first = itsBounds.GetOrigin()[a];
        SInt64 last = first + itsBounds.GetSize()[a] - 1;
        if (levels[a] >= 0)
        {
            // Whole blocks of 2^level voxels: the last corner takes the block's last voxel.
            const SInt64 block = SInt64(1) << std::min(levels[a], 31);
            first *= block;
            last = last * block + (block - 1);
        }
        else
        {
            const int shift = int(std::min(-SInt64(levels[a]), SInt64(63)));
            first >>= shift;
            last >>= shift;
        }
        origin[a] = SInt32(first);
        size[a] = SInt32(std::max(last - first + 1, SInt64(0)));
    }
    return XMathRectS3(origin, size);
}
