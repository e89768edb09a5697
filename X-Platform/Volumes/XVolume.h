#pragma once
// The abstract root of all voxel data: a box of voxels in 3-D integer coordinates, the size of
// one voxel along each axis (calibrations, only their ratios matter here) and the renderer that
// tells how the voxels look. It owns no voxels; XBasePackedVolume and its descendants do.
//
// Coordinates are absolute: a volume cut from a larger one keeps its origin. Rectangles passed
// to the copying operations are in the coordinates of their own volume; the plane numbers of
// the plane operations count from 0 at the first plane, whatever the origin.
//
// Copying between any two voxel types is a double dispatch: dest.CopyIn(src, ...) becomes
// src.CopyOut(dest, ...), and the source, which knows its voxel layout, asks the destination
// what it is and converts (see XPackedVolume::CopyOut).
//
// Stream section (class 520, version 0): the class word, width, height, depth, left, top, front
// as 32-bit numbers, then the x, y and z calibration as 64-bit floats. The old class word 101
// carries no position; legacy images (class words below 47) carry an XRect instead.

#include "X3DRect.h"
#include "XLockable.h"
#include "XPtrVector.h"
#include "XStorable.h"
#include "XString.h"

class X3DRegion;
class XImageRenderer;
class XRect;

// The orientation of a plane: XY, XZ (x across, z down) or YZ (z across, y down).
enum XPlaneMode : UInt32
{
    kXYPlane = 0,
    kXZPlane = 1,
    kYZPlane = 2
};

// How Resize treats the voxels: scaled into the new box, or unscaled, centred in it or kept at
// their coordinates.
enum XScaleType : UInt32
{
    kScaleToFit = 0,
    kCentreUnscaled = 1,
    kKeepCoordinates = 2
};

class XVolume : public XStorable, public XLockable
{
public:
    static constexpr UInt32 kClassID = 520;
    // Class words with a meaning of their own in volume streams.
    static constexpr UInt32 kOldVolumeClassID = 101;
    static constexpr UInt32 kLegacyImageClassID = 47;
    // The class words of the JPEG-compressed forms of XARGB32Volume and XGrey8Volume, whose
    // streams carry no level words.
    static constexpr UInt32 kLossyARGB32ClassID = 12100;
    static constexpr UInt32 kLossyGrey8ClassID = 12101;

    ~XVolume() override;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    // Clone(GetBounds()); the concrete classes share the voxels by copy-on-write instead.
    XVolume * Clone() const override;
    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

    // The channels that a user can pick: one for grey types, named "1".
    virtual UInt32 GetChannelCount() const { return 1; }
    virtual XString GetChannelName(UInt32 aChannel) const;
    virtual void SetXCalibration(double aValue) { itsXCalibration = aValue; }
    virtual void SetYCalibration(double aValue) { itsYCalibration = aValue; }
    virtual void SetZCalibration(double aValue) { itsZCalibration = aValue; }
    // The text shown for this kind of volume.
    virtual XString GetDescription() const = 0;
    virtual UInt64 GetMemoryUsage() const = 0;
    virtual UInt64 GetAddressSpaceMetric() const = 0;
    // The z of the brightest voxel in the column at (x, y); the first of equals wins.
    virtual SInt32 GetBrightestZPoint(SInt32 x, SInt32 y) const = 0;

    // One plane as a new volume of depth 1 that keeps the coordinates of the plane (plane counts
    // from 0). With aScaled the plane is resampled to square pixels and has origin 0.
    virtual XVolume * YZPlaneToVolume(SInt32 aPlane, bool aScaled) const = 0;
    virtual XVolume * XZPlaneToVolume(SInt32 aPlane, bool aScaled) const = 0;
    virtual XVolume * XYPlaneToVolume(SInt32 aPlane, bool aScaled) const = 0;
    // Writes plane aSrcPlane (counted from the source's front) of a volume of any type into
    // plane aDestPlane of this one, converting as CopyIn does.
    virtual void VolumeToYZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) = 0;
    virtual void VolumeToXZPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) = 0;
    virtual void VolumeToXYPlane(const XVolume & aSource, SInt32 aSrcPlane, SInt32 aDestPlane) = 0;
    // Every plane of an orientation. All three run over the depth, not over height or width:
    // callers of the XZ and YZ forms pass a volume whose depth is the count they want.
    virtual XPtrVector<XVolume> XYPlanesToVolumeList(bool aScaled) const;
    virtual XPtrVector<XVolume> XZPlanesToVolumeList(bool aScaled) const;
    virtual XPtrVector<XVolume> YZPlanesToVolumeList(bool aScaled) const;

    // Copies aSrcRect of aSource into aDestRect of this volume, converting the voxel type and
    // scaling by nearest-lower lookup when the rectangles differ in size; with a region only
    // the voxels that it contains are written.
    virtual void CopyIn(const XVolume & aSource, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                        const X3DRegion * aRegion);
    virtual void CopyOut(XVolume & aDest, const X3DRect & aSrcRect, const X3DRect & aDestRect,
                         const X3DRegion * aRegion) const = 0;
    // Takes over the voxels of a volume of the same kind and size without copying them.
    virtual void CopyFrom(const XVolume & aSource) = 0;
    virtual void CopyScalingFrom(const XVolume & aSource);

    // A new volume of this type over aRect: the overlap with this volume copied, the rest zero.
    virtual XVolume * Clone(const X3DRect & aRect) const;
    // A new volume of this type over aRect with this one's calibrations and a clone of its
    // renderer; the voxels are zero.
    virtual XVolume * CloneWithoutCopy(const X3DRect & aRect) const = 0;
    virtual XVolume * CloneWithoutCopy() const { return CloneWithoutCopy(GetBounds()); }
    // Every voxel to zero bytes.
    virtual void Clear() = 0;
    // Moves the bounds; the voxels stay as they are.
    virtual void OffsetBounds(SInt32 aDX, SInt32 aDY, SInt32 aDZ) { itsBounds.Offset(aDX, aDY, aDZ); }
    // True only for a renderer of exactly this volume's default renderer class.
    virtual bool IsPlaneRendererSupported(const XImageRenderer &) const { return false; }
    virtual bool operator==(const XVolume & aVolume) const = 0;
    bool operator!=(const XVolume & aVolume) const { return !(*this == aVolume); }

    const X3DRect & GetBounds() const { return itsBounds; }
    UInt32 GetWidth() const { return itsBounds.GetWidth(); }
    UInt32 GetHeight() const { return itsBounds.GetHeight(); }
    UInt32 GetDepth() const { return itsBounds.GetDepth(); }
    double GetXCalibration() const { return itsXCalibration; }
    double GetYCalibration() const { return itsYCalibration; }
    double GetZCalibration() const { return itsZCalibration; }
    // The factors that show a plane of that orientation with square pixels: relative to x for
    // XY and XZ, relative to z for YZ; 0 for any other mode.
    double GetXScale(XPlaneMode aMode) const;
    double GetYScale(XPlaneMode aMode) const;
    double GetZScale(XPlaneMode aMode) const;
    bool IsXYPlane() const { return GetDepth() == 1; }
    bool IsXZPlane() const { return GetHeight() == 1; }
    bool IsYZPlane() const { return GetWidth() == 1; }

    // The renderer; a volume made by its concrete class always has one.
    XImageRenderer & GetPlaneRenderer() const;
    bool HasPlaneRenderer() const { return itsPlaneRenderer != nullptr; }
    // Takes ownership; the previous renderer is deleted and the legacy flag cleared.
    void AttachPlaneRenderer(XImageRenderer * aRenderer);
    // Attaches a clone, unless aRenderer is this volume's own renderer.
    void SetPlaneRenderer(const XImageRenderer & aRenderer);
    // True when the renderer was built from a look-up table that an old stream carried.
    bool HadLegacyLUT() const { return itsHadLegacyLUT; }

    // A new volume over aRect: the voxels scaled into it (kScaleToFit), or unscaled, centred
    // (kCentreUnscaled) or at their own coordinates (kKeepCoordinates), the rest zero.
    XVolume * Resize(const X3DRect & aRect, XScaleType aType) const;

protected:
    XVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XVolume(const X3DRect & aBounds);
    // Bounds, calibrations, the legacy flag and a clone of the other's renderer.
    XVolume(const XVolume & aVolume);
    // Reads the class word and the section of this level.
    explicit XVolume(XStream & aStream);
    // Bounds, calibrations, the legacy flag and a clone of the other's renderer: two volumes
    // never share a renderer.
    XVolume & operator=(const XVolume & aVolume);

    void ReadStream2_XVolume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XVolume(XStream & aStream, XOptions anOptions) const;
    // A legacy image's bounds: an XRect, as an object or as bare fields, at depth 1.
    void ReadImageStream(XStream & aStream);
    void SetBounds(const X3DRect & aBounds) { itsBounds = aBounds; }
    void SetHadLegacyLUT(bool aFlag) { itsHadLegacyLUT = aFlag; }
    // True when the object being read from aStream is a legacy image.
    static bool IsReadingLegacyImage(const XStream & aStream);
    // True when the object being read from aStream is in a JPEG-compressed form.
    static bool IsReadingLossyForm(const XStream & aStream);
    // Refuses extents read from a stream that no stored volume can have: an extent beyond the
    // coordinates, more than 2^40 voxels even counting a zero extent as 1, or a box that
    // wrapped round.
    void CheckStreamBounds(UInt64 aWidth, UInt64 aHeight, UInt64 aDepth) const;
    static constexpr UInt64 kMaxExtent = 0x7FFFFFFF;
    static constexpr UInt64 kMaxStreamVoxels = UInt64(1) << 40;
    // The frame of a JPEG-compressed form: extents, position and calibrations.
    void ReadLossyFrame(XStream & aStream);
    void WriteLossyFrame(XStream & aStream) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    // The plane volumes of one orientation, for i from 0 to depth - 1.
    XPtrVector<XVolume> PlanesToVolumeList(XVolume * (XVolume::*aPlaneToVolume)(SInt32, bool) const,
                                           bool aScaled) const;

    X3DRect itsBounds;
    double itsXCalibration = 1.0;
    double itsYCalibration = 1.0;
    double itsZCalibration = 1.0;
    XImageRenderer * itsPlaneRenderer = nullptr;
    bool itsHadLegacyLUT = false;
};
