#pragma once
// The colour volume of BGRA32 voxels (blue, green, red, alpha in memory), the order of display
// bitmaps.
//
// Stream form: the voxel level of XPackedVolume; the class writes no word of its own.

#include "XColourVolume.h"

class XBGRA32Volume : public XColourVolume<XBGRA32Colour>
{
public:
    static constexpr UInt32 kClassID = 113;
    static constexpr UInt8 kComponentMin = 0;
    static constexpr UInt8 kComponentMax = 255;
    static constexpr UInt32 kComponentCount = 4;

    // An empty volume.
    XBGRA32Volume();
    XBGRA32Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XBGRA32Volume(const X3DRect & aBounds);
    XBGRA32Volume(const XBGRA32Volume & aVolume) = default;
    explicit XBGRA32Volume(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XPackedVolume<XBGRA32Colour>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XBGRA32Volume * Clone() const override { return new XBGRA32Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("Millions of Colors Image"); }
};
