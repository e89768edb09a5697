#include "X3DRegion.h"

#include <memory>

#include "XException.h"
#include "XGrey8Volume.h"
#include "XLock.h"
#include "XMaskVolume.h"
#include "XStream.h"
#include "XVolumeScanner.h"

void X3DRegion::XCropHelper::SetupForScan(XVolume & aVolume)
{
    const X3DRect & bounds = aVolume.GetBounds();
    itsMinX = bounds.GetRight();
    itsMaxX = bounds.GetLeft();
    itsMinY = bounds.GetBottom();
    itsMaxY = bounds.GetTop();
    itsMinZ = bounds.GetBack();
    itsMaxZ = bounds.GetFront();
    itsCount = 0;
    itsEmpty = true;
}

X3DRect X3DRegion::XCropHelper::GetLimit() const
{
    if (itsEmpty)
        return X3DRect();
    return X3DRect(itsMinX, itsMinY, itsMinZ, itsMaxX, itsMaxY, itsMaxZ);
}

X3DRegion::X3DRegion() = default;

X3DRegion::X3DRegion(const X3DRect & aBox) : itsBounds(aBox)
{
}

X3DRegion::X3DRegion(const X3DRegion & aRegion)
    : XStorable(aRegion), XLockable(), itsBounds(aRegion.itsBounds),
      itsMask(aRegion.itsMask != nullptr ? static_cast<XMaskVolume *>(aRegion.itsMask->Clone()) : nullptr)
{
}

X3DRegion::X3DRegion(const XMaskVolume & aMask)
    : itsBounds(aMask.GetBounds()), itsMask(static_cast<XMaskVolume *>(aMask.Clone()))
{
    CropToFitVolume();
}

X3DRegion::X3DRegion(const XMaskVolume & aMask, const X3DRect & aBox) : itsBounds(aBox)
{
    itsBounds &= aMask.GetBounds();
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(itsBounds));
    mask->CopyIn(aMask, itsBounds, itsBounds, nullptr);
    itsMask = mask.release();
    CropToFitVolume();
}

X3DRegion::X3DRegion(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

X3DRegion::~X3DRegion()
{
    delete itsMask;
}

X3DRegion & X3DRegion::operator=(const X3DRegion & aRegion)
{
    if (this == &aRegion)
        return *this;
    std::unique_ptr<XMaskVolume> mask(
        aRegion.itsMask != nullptr ? static_cast<XMaskVolume *>(aRegion.itsMask->Clone()) : nullptr);
    itsBounds = aRegion.itsBounds;
    SetMask(mask.release());
    return *this;
}

X3DRegion & X3DRegion::operator=(const X3DRect & aBox)
{
    itsBounds = aBox;
    SetMask(nullptr);
    return *this;
}

X3DRegion & X3DRegion::operator=(const XMaskVolume & aMask)
{
    std::unique_ptr<XMaskVolume> mask(static_cast<XMaskVolume *>(aMask.Clone()));
    itsBounds = aMask.GetBounds();
    SetMask(mask.release());
    CropToFitVolume();
    return *this;
}

void X3DRegion::SetMask(XMaskVolume * aMask)
{
    if (aMask != itsMask)
        delete itsMask;
    itsMask = aMask;
}

UInt64 X3DRegion::GetStreamUsage() const
{
    return (itsMask != nullptr ? itsMask->GetStreamUsage() : 0) + itsBounds.GetStreamUsage() + 1;
}

XMaskVolume X3DRegion::GetMaskVolume() const
{
    if (itsMask != nullptr)
        return *itsMask;
    XMaskVolume mask(itsBounds);
    mask.Fill(255);
    return mask;
}

void X3DRegion::UnlockCrop()
{
    XAssert(itsCropLockCount > 0);
    if (--itsCropLockCount == 0)
        CropToFitVolume();
}

void X3DRegion::FetchData() const
{
    XLockable::FetchData();
    if (itsMask != nullptr)
        itsMask->FetchData();
}

void X3DRegion::LockSelf(XLockMode aMode) const
{
    if (itsMask == nullptr)
        return;
    LockFor(*itsMask, aMode);
    itsLockedBase = static_cast<const UInt8 *>(itsMask->GetBasePtr());
    itsLockedRowBytes = itsMask->GetRowBytes();
    itsLockedPlaneBytes = itsMask->GetPlaneBytes();
}

void X3DRegion::UnlockSelf(XLockMode aMode) const
{
    itsLockedBase = nullptr;
    itsLockedRowBytes = 0;
    itsLockedPlaneBytes = 0;
    if (itsMask != nullptr)
        UnlockFor(*itsMask, aMode);
}

void X3DRegion::CropToFitVolume()
{
    if (itsMask == nullptr || itsCropLockCount > 0)
        return;
    XCropHelper helper;
    XScanVolume(*itsMask, helper, nullptr, kLockReadWrite);
    const X3DRect limit = helper.GetLimit();
    if (helper.IsRect())
    {
        itsBounds = limit;
        SetMask(nullptr);
    }
    else if (limit != itsBounds)
    {
        std::unique_ptr<XVolume> mask(itsMask->Clone(limit));
        itsBounds = limit;
        SetMask(static_cast<XMaskVolume *>(mask.release()));
    }
}

void X3DRegion::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_X3DRegion(aStream, anOptions);
}

void X3DRegion::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_X3DRegion(aStream, anOptions);
}

void X3DRegion::ReadStream2_X3DRegion(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void X3DRegion::WriteStream2_X3DRegion(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void X3DRegion::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    std::unique_ptr<X3DRect> bounds(aStream.ReadObjectAs<X3DRect>(anOptions));
    if (!bounds)
        throw XException(kErrWrongClass, "region without its bounds");
    itsBounds = *bounds;
    if (aStream.Read8() == 0)
        return;
    if (aVersion.GetVersion() >= 1)
    {
        itsMask = aStream.ReadObjectAs<XMaskVolume>(anOptions);
    }
    else
    {
        std::unique_ptr<XGrey8Volume> grey(aStream.ReadObjectAs<XGrey8Volume>(anOptions));
        if (grey)
        {
            std::unique_ptr<XMaskVolume> mask(new XMaskVolume(grey->GetBounds()));
            grey->CopyOut(*mask, grey->GetBounds(), grey->GetBounds(), nullptr);
            itsMask = mask.release();
        }
    }
    if (itsMask != nullptr && itsMask->GetBounds() != itsBounds)
    {
        SetMask(nullptr);
        throw XException(kErrDamagedStream, "region whose mask does not cover its bounds");
    }
}

void X3DRegion::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.WriteObject(itsBounds, kNormal);
    aStream.Write8(itsMask != nullptr ? 1 : 0);
    if (itsMask != nullptr)
        aStream.WriteObject(*itsMask, kNormal);
}
