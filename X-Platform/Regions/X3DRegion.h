#pragma once
// An arbitrary set of voxels: a box, or a box with a mask volume of exactly that box holding
// one byte a voxel. A mask voxel is set when its byte is above 127 (writers use 255 and 0).
//
// After any operation that ends in a crop (and while no crop lock is held) the region is in
// canonical form: its box is the tight box of its set voxels, a region that fills its box has
// no mask, and a region without a set voxel has no mask and all-zero bounds.
//
// Locking: a lock on a complex region locks its mask and caches the mask's first voxel and
// strides, so that Contains is a box test and one byte load. Contains on a complex region is
// valid only under a lock. Code that tests many voxels holds a read lock and reads the mask
// through GetLockedVoxel.
//
// Stream form (class 109, version 1): the class word, the bounds as an X3DRect object, a flag
// byte (0 simple, 1 complex) and, for a complex region, the mask as an XMaskVolume object.
// Version 0 stored the mask as an XGrey8Volume.

#include <memory>

#include "X3DPoint.h"
#include "X3DPointF.h"
#include "X3DRect.h"
#include "XLockable.h"
#include "XStorable.h"

class XMaskVolume;
class XVolume;

class X3DRegion : public XStorable, public XLockable
{
public:
    static constexpr UInt32 kClassID = 109;

    // Counts the set voxels of a mask, under XScanVolume.
    class XPixelCountHelper
    {
    public:
        void SetupForScan(XVolume &) { itsCount = 0; }
        void ScanPixel(const UInt8 * aVoxel, XVolume &, SInt32, SInt32, SInt32)
        {
            if (*aVoxel > 127)
                ++itsCount;
        }
        void ScanRow(const UInt8 * aRow, XVolume &, SInt32, UInt32 aCount, SInt32, SInt32, const UInt8 * aMask);
        void FinishedScanning(XVolume &) {}
        UInt32 GetPixelCount() const { return itsCount; }

    private:
        UInt32 itsCount = 0;
    };

    // Finds the tight box and the count of the set voxels of a mask, under XScanVolume.
    class XCropHelper
    {
    public:
        // Each minimum at the far edge of the volume, each maximum at its near edge.
        void SetupForScan(XVolume & aVolume);
        void ScanPixel(const UInt8 * aVoxel, XVolume &, SInt32 aX, SInt32 aY, SInt32 aZ)
        {
            if (*aVoxel <= 127)
                return;
            itsMinX = aX < itsMinX ? aX : itsMinX;
            itsMaxX = aX + 1 > itsMaxX ? aX + 1 : itsMaxX;
            itsMinY = aY < itsMinY ? aY : itsMinY;
            itsMaxY = aY + 1 > itsMaxY ? aY + 1 : itsMaxY;
            itsMinZ = aZ < itsMinZ ? aZ : itsMinZ;
            itsMaxZ = aZ + 1 > itsMaxZ ? aZ + 1 : itsMaxZ;
            ++itsCount;
            itsEmpty = false;
        }
        void ScanRow(const UInt8 * aRow, XVolume & aVolume, SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ,
                     const UInt8 * aMask);
        void FinishedScanning(XVolume &) {}
        // The box of the set voxels, all zero when there is none.
        X3DRect GetLimit() const;
        // True when the set voxels fill their box.
        bool IsRect() const { return GetLimit().GetVolume() == UInt64(itsCount); }
        bool IsEmpty() const { return itsEmpty; }
        UInt32 GetCount() const { return itsCount; }

    private:
        SInt32 itsMinY = 0, itsMinX = 0, itsMaxX = 0, itsMaxY = 0, itsMinZ = 0, itsMaxZ = 0;
        UInt32 itsCount = 0;
        bool itsEmpty = true;
    };

    // The empty region, all-zero bounds.
    X3DRegion();
    // The box.
    explicit X3DRegion(const X3DRect & aBox);
    // A deep copy; crop locks and lock state are not copied.
    X3DRegion(const X3DRegion & aRegion);
    // The set voxels of the mask volume, cropped.
    explicit X3DRegion(const XMaskVolume & aMask);
    // The set voxels of the mask volume inside the box, cropped.
    X3DRegion(const XMaskVolume & aMask, const X3DRect & aBox);
    explicit X3DRegion(XStream & aStream);
    ~X3DRegion() override;

    X3DRegion & operator=(const X3DRegion & aRegion);
    X3DRegion & operator=(const X3DRect & aBox);
    X3DRegion & operator=(const XMaskVolume & aMask);

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    X3DRegion * Clone() const override { return new X3DRegion(*this); }
    // The mask's usage (0 when simple), the bounds' and one byte for the flag.
    UInt64 GetStreamUsage() const override;
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

    const X3DRect & GetBounds() const { return itsBounds; }
    bool IsSimple() const { return itsMask == nullptr; }
    bool IsComplex() const { return itsMask != nullptr; }
    // The mask of a complex region, null for a simple one.
    const XMaskVolume * GetMask() const { return itsMask; }
    // True when any extent of the box is zero.
    bool IsEmpty() const { return itsBounds.IsEmpty(); }
    // A box test, then for a complex region the mask byte; the region must be locked.
    bool Contains(SInt32 aX, SInt32 aY, SInt32 aZ) const
    {
        if (!itsBounds.Contains(aX, aY, aZ))
            return false;
        return itsLockedBase == nullptr || *GetLockedVoxel(aX, aY, aZ) > 127;
    }
    bool Contains(const X3DPoint & aPoint) const { return Contains(aPoint.x, aPoint.y, aPoint.z); }
    // Every voxel of the other region is in this one; an empty other whose box lies inside
    // counts as contained.
    bool Contains(const X3DRegion & aRegion) const;
    // The two regions share a voxel.
    bool DoesTouch(const X3DRegion & aRegion) const;
    // The number of voxels (a box: the product of its extents, in 32 bits).
    UInt32 GetVolume() const;
    // Stops counting as soon as it can answer. For a plain box the volume must be strictly
    // greater than aCount, unlike the name; a masked region needs aCount set voxels, and at least
    // one even for 0.
    bool IsVolumeGreaterThanOrEqualTo(UInt32 aCount) const;
    bool operator<(const X3DRegion & aRegion) const { return GetVolume() < aRegion.GetVolume(); }
    // The same voxels: equal boxes, and for two masked regions equal masks. A plain box never
    // equals a masked region (which in canonical form does not fill its box).
    virtual bool IsEqual(const X3DRegion & aRegion) const;
    // IsEqual, except that two masked regions answer false without looking.
    bool FastButInaccurateIsEqualTo(const X3DRegion & aRegion) const;
    // The mean voxel position. A masked region counts every mask byte that is not zero (not only
    // those above 127); one without any is a broken precondition.
    void CalculateCentroid(X3DPointF & outCentre) const;
    // The same, and the mean of the positions scaled per axis by aScale.
    void CalculateCentroid(const X3DPointF & aScale, X3DPointF & outVoxelCentre, X3DPointF & outScaledCentre) const;

    // Set operations, in place; each ends in canonical form unless a crop lock is held.
    X3DRegion & Union(const X3DRegion & aRegion);
    // Two regions whose boxes do not meet leave an empty region whose box lies collapsed on the
    // near edge of the other's box.
    X3DRegion & Sect(const X3DRegion & aRegion);
    X3DRegion & Difference(const X3DRegion & aRegion);
    X3DRegion & Xor(const X3DRegion & aRegion);
    X3DRegion & operator+=(const X3DRegion & aRegion) { return Union(aRegion); }
    X3DRegion & operator|=(const X3DRegion & aRegion) { return Union(aRegion); }
    X3DRegion & operator&=(const X3DRegion & aRegion) { return Sect(aRegion); }
    X3DRegion & operator-=(const X3DRegion & aRegion) { return Difference(aRegion); }
    X3DRegion & operator^=(const X3DRegion & aRegion) { return Xor(aRegion); }
    // The mask byte of a voxel inside the box, while the region is locked; null for a simple
    // region (and for any region that is not locked).
    const UInt8 * GetLockedBase() const { return itsLockedBase; }
    const UInt8 * GetLockedVoxel(SInt32 aX, SInt32 aY, SInt32 aZ) const
    {
        return itsLockedBase + UInt64(SInt64(aZ - itsLockedOrigin.z)) * itsLockedPlaneBytes +
               UInt64(SInt64(aY - itsLockedOrigin.y)) * itsLockedRowBytes + UInt64(SInt64(aX - itsLockedOrigin.x));
    }
    UInt64 GetLockedRowBytes() const { return itsLockedRowBytes; }
    UInt64 GetLockedPlaneBytes() const { return itsLockedPlaneBytes; }
    // The mask as a volume: a copy of the mask, or a mask of the box filled with 255.
    XMaskVolume GetMaskVolume() const;

    // While a crop lock is held, operations leave the region as they made it; the last
    // UnlockCrop crops.
    void LockCrop() { ++itsCropLockCount; }
    void UnlockCrop();
    UInt32 GetCropLockCount() const { return itsCropLockCount; }

    void FetchData() const override;

protected:
    void LockSelf(XLockMode aMode) const override;
    void UnlockSelf(XLockMode aMode) const override;
    // Tightens the bounds to the set voxels and drops a mask that is no longer needed; nothing
    // for a simple region or under a crop lock.
    void CropToFitVolume();

    void ReadStream2_X3DRegion(XStream & aStream, XOptions anOptions);
    void WriteStream2_X3DRegion(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    // Replaces the mask (null for none); the old one is deleted.
    void SetMask(XMaskVolume * aMask);
    // This region's mask, or for a plain box a new mask of the box filled with 255.
    std::unique_ptr<XMaskVolume> MakeMask() const;
    // The rest of the crop, from the box of the set voxels found by a scan of the mask and
    // whether they fill it.
    void ApplyCrop(const X3DRect & aLimit, bool aFills);
    // Replaces the mask by a new one over aBox, every byte written row by row by aRule(out, y, z)
    // (true when it wrote a set byte), with this region and anOther locked for reading, and
    // crops it to the box of the set voxels found as the rows are written: the result and form
    // of painting or masking into a mask and then cropping. The rows run on the widest vector
    // unit of the processor.
    template <typename RowRule>
    void CombineInto(const X3DRegion & anOther, const X3DRect & aBox, RowRule aRule);
    // Walks aBox (inside both regions' boxes) under read locks and returns true at the first
    // voxel for which aTest(set in this, set in the other) holds.
    template <typename Test>
    bool AnyVoxel(const X3DRegion & anOther, const X3DRect & aBox, Test aTest) const;

    X3DRect itsBounds;
    XMaskVolume * itsMask = nullptr;
    UInt32 itsCropLockCount = 0;
    mutable const UInt8 * itsLockedBase = nullptr;
    // The mask's first voxel, which in canonical form is the bounds' corner.
    mutable X3DPoint itsLockedOrigin;
    mutable UInt64 itsLockedRowBytes = 0;
    mutable UInt64 itsLockedPlaneBytes = 0;
};

X3DRegion operator+(const X3DRegion & a, const X3DRegion & b);
X3DRegion operator|(const X3DRegion & a, const X3DRegion & b);
X3DRegion operator&(const X3DRegion & a, const X3DRegion & b);
X3DRegion operator-(const X3DRegion & a, const X3DRegion & b);
X3DRegion operator^(const X3DRegion & a, const X3DRegion & b);
bool operator==(const X3DRegion & a, const X3DRegion & b);
bool operator!=(const X3DRegion & a, const X3DRegion & b);
