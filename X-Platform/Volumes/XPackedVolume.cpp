#include "XPackedVolume.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <typeinfo>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XException.h"
#include "XFPVolume.h"
#include "XFastVolumeCopier.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XLock.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XRect.h"
#include "XStream.h"
#include "XVoxelConverters.h"

namespace
{
// a * b * c * d without overflow, or XException when the product does not fit 64 bits.
UInt64 CheckedProduct(UInt64 a, UInt64 b, UInt64 c, UInt64 d)
{
    UInt64 ab = 0, abc = 0, abcd = 0;
    if (__builtin_mul_overflow(a, b, &ab) || __builtin_mul_overflow(ab, c, &abc) ||
        __builtin_mul_overflow(abc, d, &abcd) || abcd > ~UInt64(0) - XBasePackedVolume::kTailBytes)
        throw XException(kErrBadArgument, "a volume of " + std::to_string(a) + " x " + std::to_string(b) +
                                              " x " + std::to_string(c) + " voxels cannot be held");
    return abcd;
}
} // namespace

template <typename T>
XPackedVolume<T>::XPackedVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XBasePackedVolume(aWidth, aHeight, aDepth)
{
    XPackedVolume::Allocate();
}

template <typename T>
XPackedVolume<T>::XPackedVolume(const X3DRect & aBounds) : XBasePackedVolume(aBounds)
{
    XPackedVolume::Allocate();
}

template <typename T>
XPackedVolume<T>::XPackedVolume(const XPackedVolume & aVolume)
    : XBasePackedVolume(aVolume), itsRowVoxels(aVolume.itsRowVoxels), itsEmptyVoxel(aVolume.itsEmptyVoxel)
{
}

template <typename T>
XPackedVolume<T>::XPackedVolume(XStream & aStream) : XBasePackedVolume(aStream)
{
    if (IsReadingLossyForm(aStream))
        return;
    if (IsReadingLegacyImage(aStream))
    {
        ReadPackedImageStream(aStream);
        return;
    }
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

template <typename T>
void XPackedVolume<T>::Allocate()
{
    itsRowVoxels = GetWidth();
    const UInt64 bytes = CheckedProduct(GetWidth(), GetHeight(), GetDepth(), sizeof(T));
    Storage().Resize(bytes + kTailBytes);
}

template <typename T>
void XPackedVolume<T>::Reshape(const X3DRect & aBounds, bool aZeroed)
{
    XAssertText(!IsLocked(), "!IsLocked()");
    SetBounds(aBounds);
    Storage() = XMemoryHandle();
    if (aZeroed)
    {
        Allocate();
        return;
    }
    itsRowVoxels = GetWidth();
    const UInt64 bytes = CheckedProduct(GetWidth(), GetHeight(), GetDepth(), sizeof(T));
    Storage() = XMemoryHandle(bytes + kTailBytes, XMemoryHandle::kUndefined);
    // The bytes behind the voxels are written to streams: they stay zero.
    XLock lock(Storage(), kLockReadWrite);
    std::memset(Base() + bytes, 0, kTailBytes);
}

// ---------------------------------------------------------------------------------------------
// Fills

template <typename T>
void XPackedVolume<T>::Fill(const T & aValue, const X3DRegion * aRegion, const T * anOtherValue)
{
    XLock lock(*this, kLockReadWrite);
    if (aRegion == nullptr)
    {
        std::fill_n(GetBaseVoxelPtr(), GetVolumeVoxels(), aValue);
        return;
    }
    FillWithRegion(aValue, *aRegion, anOtherValue);
}

template <typename T>
void XPackedVolume<T>::FillWithRegion(const T & aValue, const X3DRegion & aRegion, const T * anOtherValue)
{
    XLock regionLock(aRegion, kLockRead);
    const X3DRect & bounds = GetBounds();
    const X3DRect & regionBounds = aRegion.GetBounds();
    const UInt64 width = GetWidth();
    const UInt64 plane = width * GetHeight();
    const bool masked = aRegion.IsComplex();
    // With an other value the whole volume is visited; without, only the part in the region's box.
    X3DRect box = bounds;
    if (anOtherValue == nullptr)
        box.Sect(regionBounds);
    if (box.IsEmpty())
        return;
    T * const base = GetBaseVoxelPtr();
    const SInt32 left = bounds.GetLeft();
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            // Rows step by the width here, planes by width * height; row[i] is the voxel at left + i.
            T * row = base + UInt64(z - bounds.GetFront()) * plane + UInt64(y - bounds.GetTop()) * width;
            const bool rowInBox = z >= regionBounds.GetFront() && z < regionBounds.GetBack() &&
                                  y >= regionBounds.GetTop() && y < regionBounds.GetBottom();
            const SInt32 x0 = rowInBox ? std::clamp(regionBounds.GetLeft(), box.GetLeft(), box.GetRight()) : box.GetRight();
            const SInt32 x1 = rowInBox ? std::clamp(regionBounds.GetRight(), x0, box.GetRight()) : box.GetRight();
            if (anOtherValue != nullptr)
            {
                std::fill(row + (box.GetLeft() - left), row + (x0 - left), *anOtherValue);
                std::fill(row + (x1 - left), row + (box.GetRight() - left), *anOtherValue);
            }
            if (!masked)
            {
                std::fill(row + (x0 - left), row + (x1 - left), aValue);
                continue;
            }
            if (x0 == x1)
                continue;
            const UInt8 * maskRow = aRegion.GetLockedVoxel(x0, y, z);
            for (SInt32 x = x0; x < x1; ++x)
                if (maskRow[x - x0] > 127)
                    row[x - left] = aValue;
                else if (anOtherValue != nullptr)
                    row[x - left] = *anOtherValue;
        }
}

template <typename T>
void XPackedVolume<T>::ColourKeyFill(const T & aNewValue, const T & aKey, const X3DRegion * aRegion,
                                     const T * anOtherValue)
{
    XLock lock(*this, kLockReadWrite);
    T * const base = GetBaseVoxelPtr();
    auto apply = [&](T & aVoxel) {
        if (aVoxel == aKey)
            aVoxel = aNewValue;
        else if (anOtherValue != nullptr)
            aVoxel = *anOtherValue;
    };
    if (aRegion == nullptr)
    {
        const UInt64 count = GetVolumeVoxels();
        for (UInt64 i = 0; i < count; ++i)
            apply(base[i]);
        return;
    }
    XLock regionLock(*aRegion, kLockRead);
    X3DRect box = GetBounds();
    box.Sect(aRegion->GetBounds());
    if (box.IsEmpty())
        return;
    // The walk goes over the coordinates of the box while the voxel pointer starts at the
    // volume's first voxel, rows stepped by the width: the two meet only when the box starts at
    // the volume's corner. Kept as it is.
    const UInt64 width = GetWidth();
    const UInt64 plane = width * GetHeight();
    for (SInt32 k = 0; k < SInt32(box.GetDepth()); ++k)
        for (SInt32 j = 0; j < SInt32(box.GetHeight()); ++j)
        {
            T * row = base + UInt64(k) * plane + UInt64(j) * width;
            const SInt32 y = box.GetTop() + j, z = box.GetFront() + k;
            for (SInt32 i = 0; i < SInt32(box.GetWidth()); ++i)
                if (aRegion->Contains(box.GetLeft() + i, y, z))
                    apply(row[i]);
        }
}

template <typename T>
SInt32 XPackedVolume<T>::GetBrightestZPoint(SInt32 aX, SInt32 aY) const
{
    const X3DRect & bounds = GetBounds();
    if (bounds.GetDepth() == 0)
        return bounds.GetFront();
    XAssertText(bounds.Contains(aX, aY, bounds.GetFront()), "GetBounds().Contains( x, y, front )");
    XLock lock(*this, kLockRead);
    T best = XVoxelTraits<T>::Darkest();
    SInt32 bestZ = bounds.GetFront();
    const T * voxel = GetVoxelPtr(aX, aY, bounds.GetFront());
    const UInt64 layer = GetLayerSize();
    for (SInt32 z = bounds.GetFront(); z < bounds.GetBack(); ++z, voxel += layer)
        if (XVoxelTraits<T>::IsBrighter(*voxel, best))
        {
            best = *voxel;
            bestZ = z;
        }
    return bestZ;
}

template <typename T>
void XPackedVolume<T>::Clear()
{
    XLock lock(*this, kLockWrite);
    std::memset(Base(), 0, Storage().GetDataSize());
}

// ---------------------------------------------------------------------------------------------
// Copies between types

template <typename T>
void XPackedVolume<T>::CopyOut(XVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                               const X3DRegion * aRegion) const
{
    // A mask is also a Grey8, so the mask test comes first.
    if (aDest.IsA(XVersion(XMaskVolume::kClassID)))
        CopyOutMask(dynamic_cast<XMaskVolume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XGrey8Volume::kClassID)))
        CopyOutGrey8(dynamic_cast<XGrey8Volume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XGrey16Volume::kClassID)))
        CopyOutGrey16(dynamic_cast<XGrey16Volume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XARGB32Volume::kClassID)))
        CopyOutARGB32(dynamic_cast<XARGB32Volume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XBGRA32Volume::kClassID)))
        CopyOutBGRA32(dynamic_cast<XBGRA32Volume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XRGB48Volume::kClassID)))
        CopyOutRGB48(dynamic_cast<XRGB48Volume &>(aDest), aSrcRect, aDestRect, aRegion);
    else if (aDest.IsA(XVersion(XFPVolume::kClassID)))
        CopyOutFP(dynamic_cast<XFPVolume &>(aDest), aSrcRect, aDestRect, aRegion);
    else
        CopyOutDefault(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
template <typename D>
void XPackedVolume<T>::CopyOutTo(XPackedVolume<D> & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                 const X3DRegion * aRegion) const
{
    using Converter = typename XConverterFor<T, D>::type;
    if constexpr (std::is_void_v<Converter>)
        XAssertText(false, "false");
    else
    {
        Converter converter;
        XFastVolumeCopier<T, D, Converter>::Copy(*this, aDest, aSrcRect, aDestRect, aRegion, converter);
    }
}

template <typename T>
void XPackedVolume<T>::CopyOutMask(XMaskVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                   const X3DRegion * aRegion) const
{
    CopyOutTo<UInt8>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutGrey8(XGrey8Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                    const X3DRegion * aRegion) const
{
    CopyOutTo<UInt8>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutGrey16(XGrey16Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                     const X3DRegion * aRegion) const
{
    CopyOutTo<UInt16>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutARGB32(XARGB32Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                     const X3DRegion * aRegion) const
{
    CopyOutTo<XARGB32Colour>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutBGRA32(XBGRA32Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                     const X3DRegion * aRegion) const
{
    CopyOutTo<XBGRA32Colour>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutRGB48(XRGB48Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                    const X3DRegion * aRegion) const
{
    CopyOutTo<XRGB48Colour>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutFP(XFPVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                 const X3DRegion * aRegion) const
{
    CopyOutTo<float>(aDest, aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyOutDefault(XVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                      const X3DRegion * aRegion) const
{
    XAssertText(typeid(aDest) == typeid(*this), "false");
    CopyOutTo<T>(static_cast<XPackedVolume &>(aDest), aSrcRect, aDestRect, aRegion);
}

template <typename T>
void XPackedVolume<T>::CopyFrom(const XVolume & aSource)
{
    XAssertText(aSource.GetBounds().IsSameSizeAs(GetBounds()), "src.GetBounds().IsSameSizeAs( GetBounds() )");
    XAssertText(aSource.GetVersion().IsA(GetVersion()), "src.GetVersion().IsA( GetVersion() )");
    const XPackedVolume * source = dynamic_cast<const XPackedVolume *>(&aSource);
    XAssertText(source != nullptr, "src.GetVersion().IsA( GetVersion() )");
    XMemoryHandle storage;
    {
        XLock lock(*source, kLockRead);
        storage = source->GetStorage();
    }
    itsRowVoxels = source->itsRowVoxels;
    Storage() = storage;
    SetDataFetcher(source->GetDataFetcher());
}

template <typename T>
bool XPackedVolume<T>::operator==(const XVolume & aVolume) const
{
    if (GetBounds() != aVolume.GetBounds())
        return false;
    if (typeid(*this) != typeid(aVolume))
    {
        std::unique_ptr<XVolume> converted(CloneWithoutCopy(aVolume.GetBounds()));
        aVolume.CopyOut(*converted, aVolume.GetBounds(), aVolume.GetBounds(), nullptr);
        return operator==(*converted);
    }
    const XPackedVolume & other = static_cast<const XPackedVolume &>(aVolume);
    XLock lock(*this, kLockRead);
    XLock otherLock(other, kLockRead);
    if (GetBounds().IsEmpty())
        return true;
    auto equal = [](const T * a, const T * b, UInt64 aCount) {
        if constexpr (XVoxelTraits<T>::kBytewiseEqual)
            return std::memcmp(a, b, aCount * sizeof(T)) == 0;
        else
            return std::equal(a, a + aCount, b);
    };
    if (itsRowVoxels == other.itsRowVoxels)
        return equal(GetBaseVoxelPtr(), other.GetBaseVoxelPtr(), GetVolumeVoxels());
    const X3DRect & bounds = GetBounds();
    for (SInt32 z = bounds.GetFront(); z < bounds.GetBack(); ++z)
        for (SInt32 y = bounds.GetTop(); y < bounds.GetBottom(); ++y)
            if (!equal(GetVoxelPtr(bounds.GetLeft(), y, z), other.GetVoxelPtr(bounds.GetLeft(), y, z), GetWidth()))
                return false;
    return true;
}

// ---------------------------------------------------------------------------------------------
// Planes

template <typename T>
XPackedVolume<T> * XPackedVolume<T>::MakePlaneVolume(XPlaneMode aMode, SInt32 aPlane) const
{
    const X3DRect & b = GetBounds();
    X3DRect box;
    switch (aMode)
    {
    case kXYPlane:
        box = X3DRect(b.GetLeft(), b.GetTop(), b.GetFront() + aPlane, b.GetRight(), b.GetBottom(), b.GetFront() + aPlane + 1);
        break;
    case kXZPlane:
        box = X3DRect(b.GetLeft(), b.GetFront(), b.GetTop() + aPlane, b.GetRight(), b.GetBack(), b.GetTop() + aPlane + 1);
        break;
    default:
        box = X3DRect(b.GetFront(), b.GetTop(), b.GetLeft() + aPlane, b.GetBack(), b.GetBottom(), b.GetLeft() + aPlane + 1);
        break;
    }
    std::unique_ptr<XVolume> volume(CloneWithoutCopy(box));
    XPackedVolume * plane = dynamic_cast<XPackedVolume *>(volume.get());
    XAssert(plane);
    XLock lock(*plane, kLockWrite);
    T * out = plane->GetBaseVoxelPtr();
    const UInt64 outRow = plane->GetRowVoxels();
    const UInt64 rowBytes = UInt64(GetWidth()) * sizeof(T);
    switch (aMode)
    {
    case kXYPlane:
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y, out += outRow)
            std::memcpy(out, GetVoxelPtr(b.GetLeft(), y, b.GetFront() + aPlane), rowBytes);
        break;
    case kXZPlane:
        for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z, out += outRow)
            std::memcpy(out, GetVoxelPtr(b.GetLeft(), b.GetTop() + aPlane, z), rowBytes);
        break;
    default:
        // The plane's x is z and its y is y.
        for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
            for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
                out[UInt64(y - b.GetTop()) * outRow + UInt64(z - b.GetFront())] = GetVoxel(b.GetLeft() + aPlane, y, z);
        break;
    }
    volume.release();
    return plane;
}

template <typename T>
XVolume * XPackedVolume<T>::ScalePlaneVolume(XPlaneMode aMode, XVolume * aPlane) const
{
    std::unique_ptr<XVolume> plane(aPlane);
    const double xScale = GetXScale(kXYPlane), yScale = GetYScale(kXYPlane), zScale = GetZScale(kXYPlane);
    double across = 0.0, down = 0.0;
    switch (aMode)
    {
    case kXYPlane:
        if (xScale == 1.0 && yScale == 1.0)
            return plane.release();
        across = xScale * GetWidth(), down = yScale * GetHeight();
        break;
    case kXZPlane:
        if (xScale == 1.0 && zScale == 1.0)
            return plane.release();
        across = xScale * GetWidth(), down = zScale * GetDepth();
        break;
    default:
        if (yScale == 1.0 && zScale == 1.0)
            return plane.release();
        across = zScale * GetDepth(), down = yScale * GetHeight();
        break;
    }
    if (!(across >= 0.0 && across < 2147483648.0 && down >= 0.0 && down < 2147483648.0))
        throw XException(kErrBadArgument, "the calibrations give a plane of " + std::to_string(across) + " x " +
                                              std::to_string(down) + " pixels");
    const X3DRect box(XRect(0, 0, SInt32(across), SInt32(down)), 0, 1);
    std::unique_ptr<XVolume> scaled(plane->CloneWithoutCopy(box));
    scaled->CopyIn(*plane, plane->GetBounds(), scaled->GetBounds(), nullptr);
    return scaled.release();
}

template <typename T>
XVolume * XPackedVolume<T>::XYPlaneToVolume(SInt32 aPlane, bool aScaled) const
{
    XAssertText(aPlane < SInt32(GetDepth()), "plane < SInt32(GetDepth())");
    XAssertText(aPlane >= 0, "plane >= 0");
    XLock lock(*this, kLockRead);
    if (GetDepth() == 1 && !aScaled)
        return Clone();
    XVolume * plane = MakePlaneVolume(kXYPlane, aPlane);
    return aScaled ? ScalePlaneVolume(kXYPlane, plane) : plane;
}

template <typename T>
XVolume * XPackedVolume<T>::XZPlaneToVolume(SInt32 aPlane, bool aScaled) const
{
    XAssertText(aPlane < SInt32(GetHeight()), "plane < SInt32(GetHeight())");
    XAssertText(aPlane >= 0, "plane >= 0");
    XLock lock(*this, kLockRead);
    XVolume * plane = MakePlaneVolume(kXZPlane, aPlane);
    if (aScaled)
        return ScalePlaneVolume(kXZPlane, plane);
    plane->SetYCalibration(GetZCalibration());
    plane->SetZCalibration(GetYCalibration());
    return plane;
}

template <typename T>
XVolume * XPackedVolume<T>::YZPlaneToVolume(SInt32 aPlane, bool aScaled) const
{
    XAssertText(aPlane < SInt32(GetWidth()), "plane < SInt32(GetWidth())");
    XAssertText(aPlane >= 0, "plane >= 0");
    XLock lock(*this, kLockRead);
    XVolume * plane = MakePlaneVolume(kYZPlane, aPlane);
    if (aScaled)
        return ScalePlaneVolume(kYZPlane, plane);
    plane->SetXCalibration(GetZCalibration());
    plane->SetZCalibration(GetXCalibration());
    return plane;
}

template <typename T>
void XPackedVolume<T>::VolumeToPlane(XPlaneMode aMode, const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane)
{
    const X3DRect & b = GetBounds();
    XLock lock(*this, kLockReadWrite);
    const XRect planeBounds = aMode == kXYPlane ? b.GetXYBounds() : (aMode == kXZPlane ? b.GetXZBounds() : b.GetYZBounds());
    std::unique_ptr<XVolume> volume(CloneWithoutCopy(X3DRect(planeBounds, 0, 1)));
    XPackedVolume * temp = dynamic_cast<XPackedVolume *>(volume.get());
    XAssert(temp);
    const X3DRect & s = aSource.GetBounds();
    const X3DRect sourceRect(s.GetXYBounds(), s.GetFront() + aSrcPlane, s.GetFront() + aSrcPlane + 1);
    temp->CopyIn(aSource, sourceRect, temp->GetBounds(), nullptr);

    XLock tempLock(*temp, kLockRead);
    const T * in = temp->GetBaseVoxelPtr();
    const UInt64 inRow = temp->GetRowVoxels();
    const UInt64 rowBytes = UInt64(GetWidth()) * sizeof(T);
    switch (aMode)
    {
    case kXYPlane:
        for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y, in += inRow)
            std::memcpy(GetVoxelPtr(b.GetLeft(), y, b.GetFront() + aDestPlane), in, rowBytes);
        break;
    case kXZPlane:
        for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z, in += inRow)
            std::memcpy(GetVoxelPtr(b.GetLeft(), b.GetTop() + aDestPlane, z), in, rowBytes);
        break;
    default:
        for (SInt32 z = b.GetFront(); z < b.GetBack(); ++z)
            for (SInt32 y = b.GetTop(); y < b.GetBottom(); ++y)
                SetVoxel(b.GetLeft() + aDestPlane, y, z, in[UInt64(y - b.GetTop()) * inRow + UInt64(z - b.GetFront())]);
        break;
    }
}

template <typename T>
void XPackedVolume<T>::VolumeToXYPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane)
{
    XAssertText(aDestPlane < SInt32(GetDepth()), "destXYPlane < SInt32(GetDepth())");
    XAssertText(aDestPlane >= 0, "destXYPlane >= 0");
    XAssertText(aSource.GetWidth() == GetWidth(), "srcVolume.GetWidth() == GetWidth()");
    XAssertText(aSource.GetHeight() == GetHeight(), "srcVolume.GetHeight() == GetHeight()");
    VolumeToPlane(kXYPlane, aSource, aSrcPlane, aDestPlane);
}

template <typename T>
void XPackedVolume<T>::VolumeToXZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane)
{
    XAssertText(aDestPlane < SInt32(GetHeight()), "destXZPlane < SInt32(GetHeight())");
    XAssertText(aDestPlane >= 0, "destXZPlane >= 0");
    XAssertText(aSource.GetWidth() == GetWidth(), "srcVolume.GetWidth() == GetWidth()");
    XAssertText(aSource.GetHeight() == GetDepth(), "srcVolume.GetHeight() == GetDepth()");
    VolumeToPlane(kXZPlane, aSource, aSrcPlane, aDestPlane);
}

template <typename T>
void XPackedVolume<T>::VolumeToYZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane)
{
    XAssertText(aDestPlane < SInt32(GetWidth()), "destYZPlane < SInt32(GetWidth())");
    XAssertText(aDestPlane >= 0, "destYZPlane >= 0");
    XAssertText(aSource.GetWidth() == GetDepth(), "srcVolume.GetWidth() == GetDepth()");
    XAssertText(aSource.GetHeight() == GetHeight(), "srcVolume.GetHeight() == GetHeight()");
    VolumeToPlane(kYZPlane, aSource, aSrcPlane, aDestPlane);
}

// ---------------------------------------------------------------------------------------------
// Streams

template <typename T>
void XPackedVolume<T>::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XPackedVolume(aStream, anOptions);
}

template <typename T>
void XPackedVolume<T>::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XPackedVolume(aStream, anOptions);
}

template <typename T>
void XPackedVolume<T>::ReadStream2_XPackedVolume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XBasePackedVolume(aStream, anOptions);
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

template <typename T>
void XPackedVolume<T>::WriteStream2_XPackedVolume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XBasePackedVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, kHandleFollows);
}

template <typename T>
void XPackedVolume<T>::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    itsRowVoxels = aStream.Read32();
    // Whatever the object held before reading gives way to what the stream holds.
    Storage() = XMemoryHandle();
    if (aVersion.GetVersion() != 0 && aStream.Read32() != kHandleFollows)
    {
        CheckStreamGeometry();
        return;
    }
    std::unique_ptr<XMemoryHandle> handle(aStream.ReadObjectAs<XMemoryHandle>(anOptions));
    if (handle)
    {
        Storage() = *handle;
        const XByteSwapMode swap = GetStorageByteSwapMode();
        if (swap != kSwapNone && aStream.GetByteOrder() != GetByteOrderFromPlatform())
            Storage().SetSwapOnLock(swap);
    }
    CheckStreamGeometry();
}

template <typename T>
void XPackedVolume<T>::CheckStreamGeometry() const
{
    if (itsRowVoxels < GetWidth())
        throw XException(kErrDamagedStream, "volume rows of " + std::to_string(itsRowVoxels) +
                                                " voxels where the width is " + std::to_string(GetWidth()));
    const UInt64 needed = CheckedProduct(itsRowVoxels, GetHeight(), GetDepth(), sizeof(T));
    const UInt64 held = Storage().GetDataSize();
    if (held != 0 && held < needed)
        throw XException(kErrDamagedStream, "volume voxels of " + std::to_string(held) + " bytes where " +
                                                std::to_string(needed) + " are needed");
}

template <typename T>
void XPackedVolume<T>::WriteStreamSelf(XStream & aStream, XDataStreamFormat aFormat) const
{
    aStream.Write32(itsRowVoxels);
    aStream.Write32(aFormat);
    if (aFormat != kHandleFollows)
        return;
    XLock lock(*this, kLockRead);
    const XByteSwapMode swap = GetStorageByteSwapMode();
    if (swap == kSwapNone || aStream.GetByteOrder() == GetByteOrderFromPlatform())
    {
        aStream.WriteObject(Storage(), kNormal);
        return;
    }
    // The stream holds its own byte order: the voxels go out turned over.
    XMemoryHandle swapped(GetDataSize());
    {
        XLock swappedLock(swapped, kLockWrite);
        SwapBufferBytes(swapped.GetData(), Base(), GetVolumeBytes(), swap);
    }
    aStream.WriteObject(swapped, kNormal);
}

template <typename T>
void XPackedVolume<T>::ReadPackedImageStream(XStream & aStream)
{
    itsRowVoxels = GetWidth();
    if (aStream.Read8() != 0)
    {
        std::unique_ptr<XMemoryHandle> handle(aStream.ReadObjectAs<XMemoryHandle>(kNormal));
        if (handle)
            Storage() = *handle;
    }
    CheckStreamGeometry();
}

template <typename T>
void XPackedVolume<T>::ReadLossyStream(XStream & aStream, bool aDecode)
{
    ReadLossyFrame(aStream);
    itsRowVoxels = aStream.Read32();
    if (GetBounds().IsEmpty())
        return;
    const UInt32 length = aStream.Read32();
    if (length > aStream.GetBytesLeft())
        throw XException(kErrDamagedStream, "JPEG body of " + std::to_string(length) +
                                                " bytes in a stream with fewer left");
    const SInt64 end = aStream.GetPosition() + SInt64(length);
    CheckLossyLength(length);
    Allocate();
    if (aDecode)
        throw XException(kErrUnknownClass, "this version cannot decode JPEG-compressed volume voxels");
    aStream.SeekTo(end);
}

template <typename T>
void XPackedVolume<T>::CheckLossyLength(UInt64 aLength) const
{
    // A JPEG body spends at least a few bits on each block of 8 by 8 voxels: a volume far larger
    // than its body could hold is a damaged stream, not a reason to allocate.
    const UInt64 voxels = CheckedProduct(GetWidth(), GetHeight(), GetDepth(), 1);
    if (voxels / kLossyVoxelsPerByte > aLength + 1024)
        throw XException(kErrDamagedStream, "JPEG body of " + std::to_string(aLength) + " bytes for " +
                                                std::to_string(voxels) + " voxels");
}

template class XPackedVolume<UInt8>;
template class XPackedVolume<UInt16>;
template class XPackedVolume<UInt32>;
template class XPackedVolume<float>;
template class XPackedVolume<XARGB32Colour>;
template class XPackedVolume<XBGRA32Colour>;
template class XPackedVolume<XRGB48Colour>;
