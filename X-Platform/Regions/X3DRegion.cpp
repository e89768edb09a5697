#include "X3DRegion.h"

#include <memory>

#include "XBooleanVolumeTool.h"
#include "XException.h"
#include "XPaintVolumeTool.h"
#include "XGrey8Volume.h"
#include "XLock.h"
#include "XMaskBits.h"
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

void X3DRegion::XPixelCountHelper::ScanRow(const UInt8 * aRow, XVolume & aVolume, SInt32 aX, UInt32 aCount,
                                           SInt32 aY, SInt32 aZ, const UInt8 * aMask)
{
    UInt32 i = 0;
    if constexpr (XMaskBits::kUsable)
        for (; i + 8 <= aCount; i += 8)
            itsCount += XMaskBits::Count(XMaskBits::Of(aRow + i) & (aMask != nullptr ? XMaskBits::Of(aMask + i) : ~0ull));
    for (; i < aCount; ++i)
        if (aMask == nullptr || aMask[i] > 127)
            ScanPixel(aRow + i, aVolume, aX + SInt32(i), aY, aZ);
}

void X3DRegion::XCropHelper::ScanRow(const UInt8 * aRow, XVolume & aVolume, SInt32 aX, UInt32 aCount, SInt32 aY,
                                     SInt32 aZ, const UInt8 * aMask)
{
    UInt32 i = 0;
    if constexpr (XMaskBits::kUsable)
    {
        SInt64 first = -1, last = -1;
        UInt32 count = 0;
        for (; i + 8 <= aCount; i += 8)
        {
            // Mostly clear masks go by 32 bytes at a time.
            if (aMask == nullptr && (i & 31) == 0 && i + 32 <= aCount &&
                (XMaskBits::Of(aRow + i) | XMaskBits::Of(aRow + i + 8) | XMaskBits::Of(aRow + i + 16) |
                 XMaskBits::Of(aRow + i + 24)) == 0)
            {
                i += 24;
                continue;
            }
            const UInt64 bits = XMaskBits::Of(aRow + i) & (aMask != nullptr ? XMaskBits::Of(aMask + i) : ~0ull);
            if (bits == 0)
                continue;
            count += XMaskBits::Count(bits);
            if (first < 0)
                first = i + XMaskBits::First(bits);
            last = i + XMaskBits::Last(bits);
        }
        if (count != 0)
        {
            // The set voxels of the run widen the limits as one by one they would.
            ScanPixel(aRow + first, aVolume, aX + SInt32(first), aY, aZ);
            ScanPixel(aRow + last, aVolume, aX + SInt32(last), aY, aZ);
            itsCount += count - (first == last ? 1 : 2);
        }
    }
    for (; i < aCount; ++i)
        if (aMask == nullptr || aMask[i] > 127)
            ScanPixel(aRow + i, aVolume, aX + SInt32(i), aY, aZ);
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
    itsLockedOrigin = itsMask->GetBounds().GetOrigin();
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
        return;
    }
    // The mask is compared rather than the bounds: after Xor under a crop lock the mask can be
    // larger than the bounds, and the crop brings the two together again.
    if (limit != itsMask->GetBounds())
    {
        std::unique_ptr<XVolume> mask(itsMask->Clone(limit));
        SetMask(static_cast<XMaskVolume *>(mask.release()));
    }
    itsBounds = limit;
}

// ---------------------------------------------------------------------------------------------
// Queries

template <typename Test>
bool X3DRegion::AnyVoxel(const X3DRegion & anOther, const X3DRect & aBox, Test aTest) const
{
    XLock lock(*this, kLockRead);
    XLock otherLock(anOther, kLockRead);
    for (SInt32 z = aBox.GetFront(); z < aBox.GetBack(); ++z)
        for (SInt32 y = aBox.GetTop(); y < aBox.GetBottom(); ++y)
            for (SInt32 x = aBox.GetLeft(); x < aBox.GetRight(); ++x)
                if (aTest(Contains(x, y, z), anOther.Contains(x, y, z)))
                    return true;
    return false;
}

bool X3DRegion::Contains(const X3DRegion & aRegion) const
{
    if (!itsBounds.Contains(aRegion.GetBounds()))
        return false;
    if (IsSimple())
        return true;
    // Not contained where a voxel of the other is missing here.
    return !AnyVoxel(aRegion, aRegion.GetBounds(), [](bool inThis, bool inOther) { return !inThis && inOther; });
}

bool X3DRegion::DoesTouch(const X3DRegion & aRegion) const
{
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
        return false;
    if (IsSimple() && aRegion.IsSimple())
        return true;
    return AnyVoxel(aRegion, box, [](bool inThis, bool inOther) { return inThis && inOther; });
}

UInt32 X3DRegion::GetVolume() const
{
    if (IsSimple())
        return itsBounds.GetWidth() * itsBounds.GetHeight() * itsBounds.GetDepth();
    XPixelCountHelper helper;
    XScanVolume(*itsMask, helper, nullptr, kLockReadWrite);
    return helper.GetPixelCount();
}

bool X3DRegion::IsVolumeGreaterThanOrEqualTo(UInt32 aCount) const
{
    if (IsSimple())
        return itsBounds.GetVolume() > aCount;
    if (itsBounds.GetVolume() < aCount)
        return false;
    XLock lock(*itsMask, kLockRead);
    UInt64 count = 0;
    for (SInt32 z = itsBounds.GetFront(); z < itsBounds.GetBack(); ++z)
        for (SInt32 y = itsBounds.GetTop(); y < itsBounds.GetBottom(); ++y)
        {
            const UInt8 * row = itsMask->GetVoxelPtr(itsBounds.GetLeft(), y, z);
            for (UInt32 x = 0; x < itsBounds.GetWidth(); ++x)
                if (row[x] > 127 && ++count >= aCount)
                    return true;
        }
    return false;
}

bool X3DRegion::IsEqual(const X3DRegion & aRegion) const
{
    if (IsSimple() != aRegion.IsSimple() || itsBounds != aRegion.GetBounds())
        return false;
    return IsSimple() || itsMask->operator==(*aRegion.itsMask);
}

bool X3DRegion::FastButInaccurateIsEqualTo(const X3DRegion & aRegion) const
{
    if (IsComplex() && aRegion.IsComplex())
        return false;
    return IsEqual(aRegion);
}

void X3DRegion::CalculateCentroid(X3DPointF & outCentre) const
{
    X3DPointF scaled;
    CalculateCentroid(X3DPointF(1.0f, 1.0f, 1.0f), outCentre, scaled);
}

void X3DRegion::CalculateCentroid(const X3DPointF & aScale, X3DPointF & outVoxelCentre,
                                  X3DPointF & outScaledCentre) const
{
    if (IsSimple())
    {
        const X3DRect & b = itsBounds;
        outVoxelCentre = X3DPointF(float((double(b.GetLeft()) + b.GetRight() - 1) * 0.5),
                                   float((double(b.GetTop()) + b.GetBottom() - 1) * 0.5),
                                   float((double(b.GetFront()) + b.GetBack() - 1) * 0.5));
        outScaledCentre = X3DPointF(outVoxelCentre.x * aScale.x, outVoxelCentre.y * aScale.y, outVoxelCentre.z * aScale.z);
        return;
    }
    SInt64 sumX = 0, sumY = 0, sumZ = 0, voxelCount = 0;
    double scaledX = 0.0, scaledY = 0.0, scaledZ = 0.0;
    {
        XLock lock(*itsMask, kLockRead);
        for (SInt32 z = itsBounds.GetFront(); z < itsBounds.GetBack(); ++z)
            for (SInt32 y = itsBounds.GetTop(); y < itsBounds.GetBottom(); ++y)
            {
                const UInt8 * row = itsMask->GetVoxelPtr(itsBounds.GetLeft(), y, z);
                for (SInt32 x = itsBounds.GetLeft(); x < itsBounds.GetRight(); ++x)
                    if (row[x - itsBounds.GetLeft()] != 0)
                    {
                        sumX += x, sumY += y, sumZ += z, ++voxelCount;
                        scaledX += double(x) * aScale.x;
                        scaledY += double(y) * aScale.y;
                        scaledZ += double(z) * aScale.z;
                    }
            }
    }
    XAssertText(voxelCount > 0, "voxelCount > 0");
    const double count = double(voxelCount);
    outVoxelCentre = X3DPointF(float(double(sumX) / count), float(double(sumY) / count), float(double(sumZ) / count));
    outScaledCentre = X3DPointF(float(scaledX / count), float(scaledY / count), float(scaledZ / count));
}

// ---------------------------------------------------------------------------------------------
// Set operations

std::unique_ptr<XMaskVolume> X3DRegion::MakeMask() const
{
    if (itsMask != nullptr)
        return std::unique_ptr<XMaskVolume>(itsMask->Clone());
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(itsBounds));
    mask->Fill(255);
    return mask;
}

X3DRegion & X3DRegion::Union(const X3DRegion & aRegion)
{
    // The box of both, empty ones included: an empty region at the origin pulls it there until
    // the crop.
    X3DRect box = itsBounds;
    box |= aRegion.GetBounds();
    XPaintVolumeTool paint;
    if (IsComplex() && itsMask->GetBounds() == box)
    {
        paint.FillRegion(*itsMask, aRegion, XARGB32Colour::FromARGB(0xFFFFFFFF));
        CropToFitVolume();
        return *this;
    }
    // A new mask comes cleared.
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(box));
    paint.FillRegion(*mask, *this, XARGB32Colour::FromARGB(0xFFFFFFFF));
    paint.FillRegion(*mask, aRegion, XARGB32Colour::FromARGB(0xFFFFFFFF));
    SetMask(mask.release());
    itsBounds = box;
    CropToFitVolume();
    return *this;
}

X3DRegion & X3DRegion::Sect(const X3DRegion & aRegion)
{
    if (&aRegion == this || (aRegion.IsSimple() && aRegion.GetBounds().Contains(itsBounds)))
        return *this;
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
    {
        // The collapsed box stays; nothing is cropped.
        itsBounds = box;
        SetMask(nullptr);
        return *this;
    }
    XBooleanVolumeTool boolean;
    if (IsComplex() && itsMask->GetBounds() == box)
    {
        itsBounds = box;
        if (aRegion.IsComplex())
            boolean.AndVolumes(*itsMask, *aRegion.GetMask(), *itsMask);
        CropToFitVolume();
        return *this;
    }
    if (IsSimple() && aRegion.IsSimple())
    {
        itsBounds = box;
        CropToFitVolume();
        return *this;
    }
    std::unique_ptr<XMaskVolume> mask(new XMaskVolume(box));
    if (IsComplex())
        mask->CopyIn(*itsMask, box, box, nullptr);
    else
        mask->Fill(255);
    if (aRegion.IsComplex())
        boolean.AndVolumes(*mask, *aRegion.GetMask(), *mask);
    SetMask(mask.release());
    itsBounds = box;
    CropToFitVolume();
    return *this;
}

X3DRegion & X3DRegion::Difference(const X3DRegion & aRegion)
{
    X3DRect box = itsBounds;
    box.Sect(aRegion.GetBounds());
    if (box.IsEmpty())
        return *this;
    if (IsSimple())
        SetMask(MakeMask().release());
    XPaintVolumeTool().FillRegion(*itsMask, aRegion, XARGB32Colour::FromARGB(0xFF000000));
    CropToFitVolume();
    return *this;
}

X3DRegion & X3DRegion::Xor(const X3DRegion & aRegion)
{
    if (aRegion.IsEmpty())
        return *this;
    if (IsEmpty())
        return *this = aRegion;
    if (IsSimple() && aRegion.IsSimple() && IsEqual(aRegion))
        return *this = X3DRegion();
    X3DRect box = itsBounds;
    box |= aRegion.GetBounds();
    // The result starts as the union, this region winning where both are.
    std::unique_ptr<XMaskVolume> result(new XMaskVolume(box));
    std::unique_ptr<XMaskVolume> other = aRegion.MakeMask();
    std::unique_ptr<XMaskVolume> own = MakeMask();
    result->CopyIn(*other, other->GetBounds(), other->GetBounds(), nullptr);
    result->CopyIn(*own, own->GetBounds(), own->GetBounds(), nullptr);
    // Where both are, the exclusive or of the two masks.
    XBooleanVolumeTool().XorVolumes(*own, *other, *own);
    X3DRect common = itsBounds;
    common.Sect(aRegion.GetBounds());
    if (!common.IsEmpty())
        result->CopyIn(*own, common, common, nullptr);
    // The bounds come from the crop: under a crop lock they stay as they were.
    SetMask(result.release());
    CropToFitVolume();
    return *this;
}

X3DRegion operator+(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) += b;
}

X3DRegion operator|(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) |= b;
}

X3DRegion operator&(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) &= b;
}

X3DRegion operator-(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) -= b;
}

X3DRegion operator^(const X3DRegion & a, const X3DRegion & b)
{
    return X3DRegion(a) ^= b;
}

bool operator==(const X3DRegion & a, const X3DRegion & b)
{
    return a.IsEqual(b);
}

bool operator!=(const X3DRegion & a, const X3DRegion & b)
{
    return !a.IsEqual(b);
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
