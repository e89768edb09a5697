#include "XVolumeExtensionTool.h"

#include <algorithm>
#include <memory>

#include "XAssert.h"
#include "XFPVolume.h"
#include "XLock.h"

XFPVolume * XVolumeExtensionTool::CreateXYZExtendedVolume(const XVolume & aVolume, const X3DRect & aExtendedBounds)
{
    const X3DRect & originalBounds = aVolume.GetBounds();
    XAssertText(aExtendedBounds.Contains(originalBounds), "inExtendedBounds.Contains( originalBounds )");
    auto result = std::make_unique<XFPVolume>(aExtendedBounds);
    result->CopyScalingFrom(aVolume);
    aVolume.CopyOut(*result, originalBounds, originalBounds, nullptr);

    const SInt32 left = SInt32(SInt64(originalBounds.GetLeft()) - aExtendedBounds.GetLeft());
    const SInt32 right = SInt32(SInt64(aExtendedBounds.GetRight()) - originalBounds.GetRight());
    const SInt32 top = SInt32(SInt64(originalBounds.GetTop()) - aExtendedBounds.GetTop());
    const SInt32 bottom = SInt32(SInt64(aExtendedBounds.GetBottom()) - originalBounds.GetBottom());
    const SInt32 front = SInt32(SInt64(originalBounds.GetFront()) - aExtendedBounds.GetFront());
    const SInt32 back = SInt32(SInt64(aExtendedBounds.GetBack()) - originalBounds.GetBack());
    XAssert(left >= 0);
    XAssert(right >= 0);
    XAssert(top >= 0);
    XAssert(bottom >= 0);
    XAssert(front >= 0);
    XAssert(back >= 0);
    if (originalBounds.IsEmpty())
        return result.release();

    XLock lock(*result, kLockReadWrite);
    ExtendX(*result, originalBounds, left, right);
    ExtendY(*result, originalBounds, top, bottom);
    ExtendZ(*result, front, back);
    return result.release();
}

XFPVolume * XVolumeExtensionTool::CreateXYZTrimmedVolume(const XFPVolume & aFourierVolume, const X3DRect & aBounds)
{
    auto result = std::make_unique<XFPVolume>(aBounds);
    result->CopyScalingFrom(aFourierVolume);
    aFourierVolume.CopyOut(*result, aBounds, aBounds, nullptr);
    return result.release();
}

void XVolumeExtensionTool::ExtendX(XFPVolume & aVolume, const X3DRect & aSourceBounds, SInt32 aLow, SInt32 aHigh)
{
    const X3DRect & bounds = aVolume.GetBounds();
    for (SInt32 z = aSourceBounds.GetFront(); z < aSourceBounds.GetBack(); ++z)
        for (SInt32 y = aSourceBounds.GetTop(); y < aSourceBounds.GetBottom(); ++y)
            ExtendLine(aVolume.GetVoxelPtr(bounds.GetLeft(), y, z), 1, SInt32(bounds.GetWidth()), aLow, aHigh);
}

void XVolumeExtensionTool::ExtendY(XFPVolume & aVolume, const X3DRect & aSourceBounds, SInt32 aLow, SInt32 aHigh)
{
    const X3DRect & bounds = aVolume.GetBounds();
    const SInt64 row = SInt64(aVolume.GetRowVoxels());
    for (SInt32 z = aSourceBounds.GetFront(); z < aSourceBounds.GetBack(); ++z)
        for (SInt32 x = bounds.GetLeft(); x < bounds.GetRight(); ++x)
            ExtendLine(aVolume.GetVoxelPtr(x, bounds.GetTop(), z), row, SInt32(bounds.GetHeight()), aLow, aHigh);
}

void XVolumeExtensionTool::ExtendZ(XFPVolume & aVolume, SInt32 aLow, SInt32 aHigh)
{
    const X3DRect & bounds = aVolume.GetBounds();
    const SInt64 plane = SInt64(aVolume.GetPlaneVoxels());
    for (SInt32 y = bounds.GetTop(); y < bounds.GetBottom(); ++y)
        for (SInt32 x = bounds.GetLeft(); x < bounds.GetRight(); ++x)
            ExtendLine(aVolume.GetVoxelPtr(x, y, bounds.GetFront()), plane, SInt32(bounds.GetDepth()), aLow, aHigh);
}

void XVolumeExtensionTool::ExtendLine(float * aFirst, SInt64 aStep, SInt32 aLength, SInt32 aLow, SInt32 aHigh)
{
    const SInt32 m = std::max(aLow, aHigh);
    if (m == 0)
        return;
    const float step = 1.0f / float(2 * SInt64(m));
    const float low = aFirst[m * aStep];
    const float high = aFirst[(aLength - m - 1) * aStep];
    for (SInt32 k = 0; k < aLow; ++k)
        aFirst[k * aStep] = (high - low) * (float(m - k) * step) + low;
    for (SInt32 k = 0; k < aHigh; ++k)
        aFirst[(aLength - 1 - k) * aStep] = (high - low) * (float(SInt64(m) + k) * step) + high;
}
