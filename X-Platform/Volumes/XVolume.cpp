#include "XVolume.h"

#include <algorithm>
#include <memory>
#include <string>

#include "XAssert.h"
#include "XClassRegistry.h"
#include "XException.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XRect.h"
#include "XResourceTracker.h"
#include "XStream.h"

XVolume::XVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : itsBounds(aWidth, aHeight, aDepth)
{
    XResourceTracker::GetTracker();
}

XVolume::XVolume(const X3DRect & aBounds) : itsBounds(aBounds)
{
    XResourceTracker::GetTracker();
}

XVolume::XVolume(const XVolume & aVolume)
    : XStorable(aVolume), XLockable(aVolume), itsBounds(aVolume.itsBounds),
      itsXCalibration(aVolume.itsXCalibration), itsYCalibration(aVolume.itsYCalibration),
      itsZCalibration(aVolume.itsZCalibration),
      itsPlaneRenderer(aVolume.itsPlaneRenderer != nullptr ? aVolume.itsPlaneRenderer->Clone() : nullptr),
      itsHadLegacyLUT(aVolume.itsHadLegacyLUT)
{
    XResourceTracker::GetTracker();
}

XVolume::XVolume(XStream & aStream)
{
    XResourceTracker::GetTracker();
    if (IsReadingLossyForm(aStream))
        return;
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

XVolume::~XVolume()
{
    delete itsPlaneRenderer;
    XResourceTracker::GetTracker();
}

XVolume & XVolume::operator=(const XVolume & aVolume)
{
    if (this == &aVolume)
        return *this;
    XLockable::operator=(aVolume);
    itsBounds = aVolume.itsBounds;
    itsXCalibration = aVolume.itsXCalibration;
    itsYCalibration = aVolume.itsYCalibration;
    itsZCalibration = aVolume.itsZCalibration;
    std::unique_ptr<XImageRenderer> renderer(
        aVolume.itsPlaneRenderer != nullptr ? aVolume.itsPlaneRenderer->Clone() : nullptr);
    delete itsPlaneRenderer;
    itsPlaneRenderer = renderer.release();
    itsHadLegacyLUT = aVolume.itsHadLegacyLUT;
    return *this;
}

XVolume * XVolume::Clone() const
{
    return Clone(GetBounds());
}

XString XVolume::GetChannelName(UInt32 aChannel) const
{
    XAssertText(aChannel == 1, "channel == 1");
    return XString("1");
}

double XVolume::GetXScale(XPlaneMode aMode) const
{
    switch (aMode)
    {
    case kXYPlane:
    case kXZPlane: return 1.0;
    case kYZPlane: return itsXCalibration / itsZCalibration;
    default: return 0.0;
    }
}

double XVolume::GetYScale(XPlaneMode aMode) const
{
    switch (aMode)
    {
    case kXYPlane:
    case kXZPlane: return itsYCalibration / itsXCalibration;
    case kYZPlane: return itsYCalibration / itsZCalibration;
    default: return 0.0;
    }
}

double XVolume::GetZScale(XPlaneMode aMode) const
{
    switch (aMode)
    {
    case kXYPlane:
    case kXZPlane: return itsZCalibration / itsXCalibration;
    case kYZPlane: return 1.0;
    default: return 0.0;
    }
}

XImageRenderer & XVolume::GetPlaneRenderer() const
{
    XAssert(itsPlaneRenderer);
    return *itsPlaneRenderer;
}

void XVolume::AttachPlaneRenderer(XImageRenderer * aRenderer)
{
    if (aRenderer != itsPlaneRenderer)
        delete itsPlaneRenderer;
    itsPlaneRenderer = aRenderer;
    itsHadLegacyLUT = false;
}

void XVolume::SetPlaneRenderer(const XImageRenderer & aRenderer)
{
    if (&aRenderer == itsPlaneRenderer)
        return;
    AttachPlaneRenderer(aRenderer.Clone());
}

void XVolume::CopyScalingFrom(const XVolume & aSource)
{
    SetXCalibration(aSource.GetXCalibration());
    SetYCalibration(aSource.GetYCalibration());
    SetZCalibration(aSource.GetZCalibration());
}

void XVolume::CopyIn(const XVolume & aSource, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                     const X3DRegion * aRegion)
{
    aSource.CopyOut(*this, aSrcRect, aDestRect, aRegion);
}

XPtrVector<XVolume> XVolume::PlanesToVolumeList(XVolume * (XVolume::*aPlaneToVolume)(SInt32, bool) const,
                                                bool aScaled) const
{
    XPtrVector<XVolume> planes;
    const SInt32 depth = SInt32(GetDepth());
    for (SInt32 i = 0; i < depth; ++i)
        planes.push_back((this->*aPlaneToVolume)(i, aScaled));
    return planes;
}

XPtrVector<XVolume> XVolume::XYPlanesToVolumeList(bool aScaled) const
{
    return PlanesToVolumeList(&XVolume::XYPlaneToVolume, aScaled);
}

XPtrVector<XVolume> XVolume::XZPlanesToVolumeList(bool aScaled) const
{
    return PlanesToVolumeList(&XVolume::XZPlaneToVolume, aScaled);
}

XPtrVector<XVolume> XVolume::YZPlanesToVolumeList(bool aScaled) const
{
    return PlanesToVolumeList(&XVolume::YZPlaneToVolume, aScaled);
}

XVolume * XVolume::Clone(const X3DRect & aRect) const
{
    std::unique_ptr<XVolume> result(CloneWithoutCopy(aRect));
    X3DRect overlap = aRect;
    overlap &= GetBounds();
    if (overlap != aRect)
        result->Clear();
    if (itsPlaneRenderer != nullptr)
        result->AttachPlaneRenderer(itsPlaneRenderer->Clone());
    result->CopyIn(*this, overlap, overlap, nullptr);
    return result.release();
}

XVolume * XVolume::Resize(const X3DRect & aRect, XScaleType aType) const
{
    XAssertText(aType <= kKeepCoordinates, "false");
    const X3DRect & bounds = GetBounds();
    if (aType != kKeepCoordinates && aRect.IsSameSizeAs(bounds))
    {
        XVolume * result = Clone();
        result->OffsetBounds(aRect.GetLeft() - bounds.GetLeft(), aRect.GetTop() - bounds.GetTop(),
                             aRect.GetFront() - bounds.GetFront());
        return result;
    }
    std::unique_ptr<XVolume> result(CloneWithoutCopy(aRect));
    switch (aType)
    {
    case kScaleToFit:
        CopyOut(*result, bounds, aRect, nullptr);
        break;
    case kCentreUnscaled:
    {
        result->Clear();
        X3DRect destination = bounds;
        destination.CentreOn(aRect);
        destination.Sect(aRect);
        X3DRect source = destination;
        source.CentreOn(bounds);
        CopyOut(*result, source, destination, nullptr);
        break;
    }
    default:
    {
        result->Clear();
        X3DRect common = bounds;
        common &= aRect;
        // Rectangles that do not meet leave the new volume cleared.
        if (!common.IsEmpty())
            CopyOut(*result, common, common, nullptr);
        break;
    }
    }
    return result.release();
}

bool XVolume::IsReadingLegacyImage(const XStream & aStream)
{
    const XVersion word = aStream.GetLastClassCreated();
    return !word.IsNull() && word.IsA(XVersion(kLegacyImageClassID));
}

bool XVolume::IsReadingLossyForm(const XStream & aStream)
{
    const UInt32 word = aStream.GetLastClassCreated().GetClass();
    return word == kLossyARGB32ClassID || word == kLossyGrey8ClassID;
}

void XVolume::ReadLossyFrame(XStream & aStream)
{
    const UInt32 width = aStream.Read32();
    const UInt32 height = aStream.Read32();
    const UInt32 depth = aStream.Read32();
    itsBounds.SetWidth(width);
    itsBounds.SetHeight(height);
    itsBounds.SetDepth(depth);
    const SInt32 left = SInt32(aStream.Read32());
    const SInt32 top = SInt32(aStream.Read32());
    const SInt32 front = SInt32(aStream.Read32());
    itsBounds.SetPosition(left, top, front);
    SetXCalibration(aStream.ReadFloat64S());
    SetYCalibration(aStream.ReadFloat64S());
    SetZCalibration(aStream.ReadFloat64S());
    CheckStreamBounds(width, height, depth);
}

void XVolume::WriteLossyFrame(XStream & aStream) const
{
    WriteStreamSelf(aStream, kNormal);
}

void XVolume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XVolume(aStream, anOptions);
}

void XVolume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XVolume(aStream, anOptions);
}

void XVolume::ReadStream2_XVolume(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XVolume::WriteStream2_XVolume(XStream & aStream, XOptions anOptions) const
{
    XLock lock(*this, kLockRead);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XVolume::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions)
{
    if (aVersion.IsA(XVersion(kLegacyImageClassID)))
    {
        ReadImageStream(aStream);
        return;
    }
    const UInt32 width = aStream.Read32();
    const UInt32 height = aStream.Read32();
    const UInt32 depth = aStream.Read32();
    itsBounds.SetWidth(width);
    itsBounds.SetHeight(height);
    itsBounds.SetDepth(depth);
    if (aVersion.GetClass() == kClassID)
    {
        const SInt32 left = SInt32(aStream.Read32());
        const SInt32 top = SInt32(aStream.Read32());
        const SInt32 front = SInt32(aStream.Read32());
        itsBounds.SetPosition(left, top, front);
    }
    itsXCalibration = aStream.ReadFloat64S();
    itsYCalibration = aStream.ReadFloat64S();
    itsZCalibration = aStream.ReadFloat64S();
    CheckStreamBounds(width, height, depth);
}

void XVolume::CheckStreamBounds(UInt64 aWidth, UInt64 aHeight, UInt64 aDepth) const
{
    // Even an empty volume is walked row by row and plane by plane: extents that no stored volume
    // can have (or that do not fit the coordinates) mark a damaged stream.
    const UInt64 span = std::max<UInt64>(aWidth, 1) * std::max<UInt64>(aHeight, 1) * std::max<UInt64>(aDepth, 1);
    if (aWidth > kMaxExtent || aHeight > kMaxExtent || aDepth > kMaxExtent || span > kMaxStreamVoxels ||
        GetWidth() != aWidth || GetHeight() != aHeight || GetDepth() != aDepth ||
        itsBounds.GetRight() < itsBounds.GetLeft() || itsBounds.GetBottom() < itsBounds.GetTop() ||
        itsBounds.GetBack() < itsBounds.GetFront())
        throw XException(kErrDamagedStream, "volume of " + std::to_string(aWidth) + " x " + std::to_string(aHeight) +
                                                " x " + std::to_string(aDepth) + " voxels at (" +
                                                std::to_string(itsBounds.GetLeft()) + ", " +
                                                std::to_string(itsBounds.GetTop()) + ", " +
                                                std::to_string(itsBounds.GetFront()) + ")");
}

void XVolume::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.Write32(GetWidth());
    aStream.Write32(GetHeight());
    aStream.Write32(GetDepth());
    aStream.Write32(UInt32(itsBounds.GetLeft()));
    aStream.Write32(UInt32(itsBounds.GetTop()));
    aStream.Write32(UInt32(itsBounds.GetFront()));
    aStream.WriteFloat64S(itsXCalibration);
    aStream.WriteFloat64S(itsYCalibration);
    aStream.WriteFloat64S(itsZCalibration);
}

void XVolume::ReadImageStream(XStream & aStream)
{
    const SInt64 position = aStream.GetPosition();
    const XVersion word = aStream.ReadVersion();
    aStream.SeekTo(position);
    XRect rect;
    if (word.GetClass() == XRect::kClassID)
    {
        std::unique_ptr<XRect> object(aStream.ReadObjectAs<XRect>());
        if (!object)
            throw XException(kErrWrongClass, "legacy image without its rectangle");
        rect = *object;
    }
    else
        rect = XRect(aStream);
    itsBounds = X3DRect(rect, 0, 1);
    CheckStreamBounds(rect.GetWidth(), rect.GetHeight(), 1);
}
