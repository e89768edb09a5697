#pragma once
// Filtered resampling: a box of one volume is resampled into a box of another volume of the
// same kind, one axis at a time, with a filter of the XResampleFilter family.
//
// Geometry of one axis, from srcSize samples to dstSize: scale = dstSize / (srcSize - 1), in
// both directions (the denominator is srcSize - 1, not srcSize). Shrinking (scale below 1), the
// filter is widened by 1 / scale, destination sample i is centred at i / scale + width / 2, and
// source samples outside the box are dropped. Enlarging, sample i is centred at i / scale and
// source samples outside the box are mirrored back into it (-j for j below 0,
// 2 srcSize - j - 1 above; mirrored again while still outside, which only boxes narrower than
// the filter need). A source extent of 1 makes the scale infinite, which IEEE arithmetic
// carries through.
//
// Weights are fixed point, 65535 being 1: floor(w * 65535), then each floor(weight / sum of the
// filter values). Passes add weight * voxel in 32-bit integers and keep the low byte of
// sum >> 16, with no rounding and no clamp: a flat 255 comes out at most 254, and negative
// Lanczos lobes may wrap. Both are required behaviour.
//
// Voxel types: Grey8 (and masks), and ARGB32 and BGRA32, which share one set of passes over
// their four bytes. The X and Y passes weigh all four bytes alike; the Z pass weighs the upper
// three bytes of the 32-bit word and writes 255 into its low byte, the first byte in memory:
// alpha of an ARGB32 voxel, but blue of a BGRA32 one. That asymmetry is deliberate. Other
// volumes are refused with XException 2500, unless the boxes are of one size: then the voxels
// are copied (XVolume::CopyOut) and no filter is applied.
//
// Order of the passes: of the axes whose extents differ, the one with the smallest source extent
// goes first (X before Y before Z at a tie), into a temporary volume of the source's kind that
// differs from the source box on that axis alone; then the next. One temporary lives at a time
// besides the one being read. The weights of each axis are kept and used again while the next
// image has the same extents and strides, so a series of images of one size computes them once.
//
// The tool's filter: modes 1 to 5 name a filter of the family, mode 6 is the caller's own
// (adopted), and mode 0 chooses per axis at each calculation: XSimpleFilter when shrinking,
// XBellFilter when enlarging. One tool serves one thread at a time.

#include <memory>
#include <vector>

#include "X3DRect.h"
#include "XTypes.h"

class XResampleFilter;
class XVolume;
class XGrey8Volume;

enum XFilterMode : SInt32
{
    kFilterAutomatic = 0,
    kFilterSimple = 1,
    kFilterTriangle = 2,
    kFilterBell = 3,
    kFilterBSpline = 4,
    kFilterLanczos3 = 5,
    kFilterCustom = 6
};

class XVolumeResampleTool
{
public:
    // One source sample of one destination sample: its offset in storage elements from the
    // corner of the source box, the axis stride folded in, and its weight, 65535 being 1.
    struct XContribution
    {
        SInt32 itsOffset;
        SInt32 itsWeight;
    };
    // The source samples of each destination position along one axis.
    using XContributions = std::vector<std::vector<XContribution>>;

    // Mode 0, no filter yet.
    XVolumeResampleTool();
    XVolumeResampleTool(const XVolumeResampleTool &) = delete;
    XVolumeResampleTool & operator=(const XVolumeResampleTool &) = delete;
    virtual ~XVolumeResampleTool();

    // Drops the filter held, stores the mode (any value outside 0..6 as 0) and makes the filter
    // of modes 1 to 5. In mode 6 the tool takes aFilter and deletes it later; a null aFilter
    // there is a broken precondition. Other modes leave aFilter to the caller.
    virtual void SetFilter(XFilterMode aMode, XResampleFilter * aFilter = nullptr);
    // Fills aDestRect of aDest from aSourceRect of aSource (both boxes in their volume's
    // coordinates, inside it). Nothing happens when either box is empty.
    virtual void ApplyTool(const XVolume & aSource, XVolume & aDest, const X3DRect & aSourceRect,
                           const X3DRect & aDestRect);

    XFilterMode GetFilterMode() const { return itsMode; }

protected:
    // Those of the filter held; without one, a broken precondition.
    double GetFilterSize() const;
    double CalcFilterValue(double x) const;
    // The weights of one axis (see above), offsets being j * aStride + anOffset.
    void CalculateFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 anOffset, SInt64 aStride,
                                      XContributions & outContributions);
    void CalculateXFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, XContributions & outContributions);
    void CalculateYFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 aRowStride,
                                       XContributions & outContributions);
    void CalculateZFilterContributions(SInt32 aSrcSize, SInt32 aDstSize, SInt64 aPlaneStride,
                                       XContributions & outContributions);

    // All the passes from one box to the other, and the single passes, which change one axis
    // and assert that the boxes differ there alone.
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest, const X3DRect & aSourceRect,
                        const X3DRect & aDestRect);
    void Grey8XResample(const XGrey8Volume & aSource, XGrey8Volume & aDest, const X3DRect & aSourceRect,
                        const X3DRect & aDestRect);
    void Grey8YResample(const XGrey8Volume & aSource, XGrey8Volume & aDest, const X3DRect & aSourceRect,
                        const X3DRect & aDestRect);
    void Grey8ZResample(const XGrey8Volume & aSource, XGrey8Volume & aDest, const X3DRect & aSourceRect,
                        const X3DRect & aDestRect);
    // The same for four-channel colour: V is XARGB32Volume or XBGRA32Volume.
    template <class V>
    void ApplyToolColour(const V & aSource, V & aDest, const X3DRect & aSourceRect, const X3DRect & aDestRect);
    template <class V>
    void ColourXResample(const V & aSource, V & aDest, const X3DRect & aSourceRect, const X3DRect & aDestRect);
    template <class V>
    void ColourYResample(const V & aSource, V & aDest, const X3DRect & aSourceRect, const X3DRect & aDestRect);
    template <class V>
    void ColourZResample(const V & aSource, V & aDest, const X3DRect & aSourceRect, const X3DRect & aDestRect);

private:
    enum XAxis : UInt32
    {
        kXAxis = 0,
        kYAxis = 1,
        kZAxis = 2
    };
    // The weights of one axis, kept for the next image of the same extents and strides.
    struct XAxisTable
    {
        bool itsValid = false;
        SInt32 itsSrcSize = 0;
        SInt32 itsDstSize = 0;
        SInt64 itsStride = 0;
        XContributions itsContributions;
    };

    // Every pass from aSourceRect to aDestRect, the smallest source extent first.
    template <class V>
    void Resample(const V & aSource, V & aDest, const X3DRect & aSourceRect, const X3DRect & aDestRect);
    // One pass along anAxis.
    template <class V>
    void ResampleAxis(XAxis anAxis, const V & aSource, V & aDest, const X3DRect & aSourceRect,
                      const X3DRect & aDestRect);
    // The weights of anAxis for these extents and this stride, computed when they are not kept.
    const XContributions & GetAxisTable(XAxis anAxis, SInt32 aSrcSize, SInt32 aDstSize, SInt64 aStride);
    void ForgetAxisTables();
    // The samples of destination position i with their filter values (not yet fixed point),
    // appended to outSamples; returns the sum of the values.
    double AddShrinkingSamples(SInt32 i, double aScale, SInt32 aSrcSize, SInt64 anOffset, SInt64 aStride,
                               std::vector<XContribution> & outSamples) const;
    double AddEnlargingSamples(SInt32 i, double aScale, SInt32 aSrcSize, SInt64 anOffset, SInt64 aStride,
                               std::vector<XContribution> & outSamples) const;

    XFilterMode itsMode = kFilterAutomatic;
    std::unique_ptr<XResampleFilter> itsFilter;
    XAxisTable itsAxisTables[3];
};
