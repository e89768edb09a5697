#pragma once
// The voxels of one type T in one block: unsigned char, unsigned short, 32-bit unsigned, float,
// XARGB32Colour, XBGRA32Colour or XRGB48Colour. Every volume class of the library is an
// instance of this template; the typed access, fills, plane operations, conversions and the
// voxel section of the stream are written here once.
//
// The voxel (x, y, z) lies at (z - front) * layer + (y - top) * rowVoxels + (x - left) from the
// base, in units of T, where layer = rowVoxels * height.
//
// Deliberate behaviour kept from the design of these operations:
// - Fill with a region walks rows by the width and planes by width * height, not by the row
//   voxels (the same unless a stream brought pad voxels).
// - ColourKeyFill with a region walks the coordinates of the region's box but starts its voxel
//   pointer at the volume's first voxel; the two agree only when the box starts at the
//   volume's corner.
// - GetBrightestZPoint compares the largest of red, green and blue for ARGB32 and RGB48 voxels,
//   but each of blue, green and red on its own for BGRA32 voxels.
//
// Stream level (class 102, version 1): the class word, the row voxels, the data format (0), and
// the storage as one memory-handle object in the stream's byte order.

#include <memory>

#include "XBasePackedVolume.h"
#include "XImageRenderer.h"
#include "XVoxelTraits.h"

class X3DRegion;
class XMaskVolume;
class XGrey8Volume;
class XGrey16Volume;
class XARGB32Volume;
class XBGRA32Volume;
class XRGB48Volume;
class XFPVolume;

template <typename T>
class XPackedVolume : public XBasePackedVolume
{
public:
    using XVoxel = T;
    static constexpr UInt32 kClassID = 102;

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XBasePackedVolume::GetClassVersion(); }

    UInt64 GetVolumeSize() const final { return GetLayerSize() * GetDepth(); }
    UInt64 GetLayerSize() const final { return UInt64(itsRowVoxels) * GetHeight(); }
    UInt64 GetRowVoxels() const final { return itsRowVoxels; }
    UInt64 GetRowBytes() const final { return UInt64(itsRowVoxels) * sizeof(T); }
    UInt64 GetPadVoxels() const final { return itsRowVoxels - GetWidth(); }
    UInt64 GetVoxelBytes() const final { return sizeof(T); }
    UInt64 GetPlaneVoxels() const final { return GetLayerSize(); }
    UInt64 GetPlaneBytes() const final { return GetRowBytes() * GetHeight(); }
    UInt64 GetVolumeVoxels() const final { return GetPlaneVoxels() * GetDepth(); }
    UInt64 GetVolumeBytes() const final { return GetPlaneBytes() * GetDepth(); }
    XByteSwapMode GetStorageByteSwapMode() const override { return XVoxelTraits<T>::kSwapMode; }
    void Reshape(const X3DRect & aBounds, bool aZeroed = true) override;

    virtual const T & GetEmptyVoxel() const { return itsEmptyVoxel; }
    virtual void SetEmptyVoxel(const T & aVoxel) { itsEmptyVoxel = aVoxel; }

    // Typed access; valid only under a lock. GetVoxelPtr, GetVoxel and SetVoxel check nothing.
    T * GetBaseVoxelPtr() { return reinterpret_cast<T *>(Base()); }
    const T * GetBaseVoxelPtr() const { return reinterpret_cast<const T *>(Base()); }
    T * GetLayer(SInt32 anIndex) { return GetBaseVoxelPtr() + GetLayerSize() * UInt64(SInt64(anIndex)); }
    const T * GetLayer(SInt32 anIndex) const { return GetBaseVoxelPtr() + GetLayerSize() * UInt64(SInt64(anIndex)); }
    T * GetPlane(SInt32 aZ) { return GetLayer(aZ - GetBounds().GetFront()); }
    const T * GetPlane(SInt32 aZ) const { return GetLayer(aZ - GetBounds().GetFront()); }
    T * GetVoxelPtr(SInt32 aX, SInt32 aY, SInt32 aZ) { return GetBaseVoxelPtr() + VoxelIndex(aX, aY, aZ); }
    const T * GetVoxelPtr(SInt32 aX, SInt32 aY, SInt32 aZ) const { return GetBaseVoxelPtr() + VoxelIndex(aX, aY, aZ); }
    const T & GetVoxel(SInt32 aX, SInt32 aY, SInt32 aZ) const { return *GetVoxelPtr(aX, aY, aZ); }
    void SetVoxel(SInt32 aX, SInt32 aY, SInt32 aZ, const T & aVoxel) { *GetVoxelPtr(aX, aY, aZ) = aVoxel; }

    // Without a region every voxel, pads included, becomes aValue. With a region and
    // anOtherValue every voxel of the volume becomes aValue inside the region and anOtherValue
    // outside; with a region alone only the voxels inside it change.
    void Fill(const T & aValue, const X3DRegion * aRegion = nullptr, const T * anOtherValue = nullptr);
    // Voxels equal to aKey become aNewValue, others anOtherValue when it is given; with a region
    // only the voxels that it contains are looked at (see the note above on the walk).
    void ColourKeyFill(const T & aNewValue, const T & aKey, const X3DRegion * aRegion = nullptr,
                       const T * anOtherValue = nullptr);
    SInt32 GetBrightestZPoint(SInt32 aX, SInt32 aY) const override;
    void Clear() override;
    void CopyOut(XVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                 const X3DRegion * aRegion) const override;
    // Takes over the row voxels, the handle and the data fetcher of a volume of this class and
    // size: no voxel is copied.
    void CopyFrom(const XVolume & aSource) override;
    UInt64 GetMemoryUsage() const override { return GetDataSize(); }
    UInt64 GetStreamUsage() const override { return GetDataSize(); }
    UInt64 GetAddressSpaceMetric() const override { return Storage().GetAddressSpaceMetric(); }
    // Equal bounds and equal voxels; a volume of another class is converted into this class
    // first and then compared.
    bool operator==(const XVolume & aVolume) const override;

    XVolume * YZPlaneToVolume(SInt32 aPlane, bool aScaled) const override;
    XVolume * XZPlaneToVolume(SInt32 aPlane, bool aScaled) const override;
    XVolume * XYPlaneToVolume(SInt32 aPlane, bool aScaled) const override;
    void VolumeToYZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) override;
    void VolumeToXZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) override;
    void VolumeToXYPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) override;

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    // Allocated: row voxels = width, the handle sized to the voxels and 16 bytes more, zero.
    XPackedVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XPackedVolume(const X3DRect & aBounds);
    // Shares the voxels until one side writes.
    XPackedVolume(const XPackedVolume & aVolume);
    // The levels below, then this level's (or the legacy image's flag and handle).
    explicit XPackedVolume(XStream & aStream);

    // The converting copies, one for each destination class; see CopyOut.
    virtual void CopyOutMask(XMaskVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                             const X3DRegion * aRegion) const;
    virtual void CopyOutGrey8(XGrey8Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                              const X3DRegion * aRegion) const;
    virtual void CopyOutGrey16(XGrey16Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                               const X3DRegion * aRegion) const;
    virtual void CopyOutARGB32(XARGB32Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                               const X3DRegion * aRegion) const;
    virtual void CopyOutBGRA32(XBGRA32Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                               const X3DRegion * aRegion) const;
    virtual void CopyOutRGB48(XRGB48Volume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                              const X3DRegion * aRegion) const;
    virtual void CopyOutFP(XFPVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                           const X3DRegion * aRegion) const;
    // Any other destination: a volume of this very class is copied voxel for voxel; anything
    // else is a broken precondition.
    virtual void CopyOutDefault(XVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                                const X3DRegion * aRegion) const;
    // Row voxels = width; the handle sized to the voxels and 16 bytes more.
    virtual void Allocate();

    // A new volume of class V over aRect with aVolume's calibrations and a clone of its renderer.
    template <class V>
    static V * NewCloneWithoutCopy(const V & aVolume, const X3DRect & aRect);

    void ReadStream2_XPackedVolume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XPackedVolume(XStream & aStream, XOptions anOptions) const;
    // A legacy image's voxels: a flag byte, and a memory-handle object when it is not zero.
    void ReadPackedImageStream(XStream & aStream);
    // The JPEG-compressed form after its class word: the frame, the row voxels and, unless the
    // volume is empty, the length of the JPEG body and the body, decoded when aDecode is true
    // and stepped over otherwise.
    void ReadLossyStream(XStream & aStream, bool aDecode);
    // Refuses a JPEG body too short for the volume that it claims to hold.
    void CheckLossyLength(UInt64 aLength) const;
    // More voxels than this a byte no JPEG body can describe.
    static constexpr UInt64 kLossyVoxelsPerByte = 2048;
    void SetRowVoxels(UInt32 aRowVoxels) { itsRowVoxels = aRowVoxels; }

private:
    UInt64 VoxelIndex(SInt32 aX, SInt32 aY, SInt32 aZ) const
    {
        const X3DRect & bounds = GetBounds();
        return UInt64(SInt64(aZ - bounds.GetFront())) * GetLayerSize() +
               UInt64(SInt64(aY - bounds.GetTop())) * itsRowVoxels + UInt64(SInt64(aX - bounds.GetLeft()));
    }
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XDataStreamFormat aFormat) const;
    // Refuses a stream whose row voxels or handle do not fit the bounds.
    void CheckStreamGeometry() const;
    // The converting copy into a volume of voxel type D.
    template <typename D>
    void CopyOutTo(XPackedVolume<D> & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                   const X3DRegion * aRegion) const;
    void FillWithRegion(const T & aValue, const X3DRegion & aRegion, const T * anOtherValue);
    // The plane volume of the box, copied row by row (XY, XZ) or voxel by voxel (YZ).
    XPackedVolume * MakePlaneVolume(XPlaneMode aMode, SInt32 aPlane) const;
    // A plane volume scaled to square pixels, or the plane itself when no scaling is needed.
    XVolume * ScalePlaneVolume(XPlaneMode aMode, XVolume * aPlane) const;
    void VolumeToPlane(XPlaneMode aMode, const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane);

    UInt32 itsRowVoxels = 0;
    T itsEmptyVoxel{};
};

template <typename T>
template <class V>
V * XPackedVolume<T>::NewCloneWithoutCopy(const V & aVolume, const X3DRect & aRect)
{
    std::unique_ptr<V> volume(new V(aRect));
    volume->AttachPlaneRenderer(aVolume.HasPlaneRenderer() ? aVolume.GetPlaneRenderer().Clone() : nullptr);
    volume->CopyScalingFrom(aVolume);
    return volume.release();
}

extern template class XPackedVolume<UInt8>;
extern template class XPackedVolume<UInt16>;
extern template class XPackedVolume<UInt32>;
extern template class XPackedVolume<float>;
extern template class XPackedVolume<XARGB32Colour>;
extern template class XPackedVolume<XBGRA32Colour>;
extern template class XPackedVolume<XRGB48Colour>;
