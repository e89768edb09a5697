#pragma once
// The colour volume of ARGB32 voxels (alpha, red, green, blue in memory), the colour type of the
// stream format.
//
// Stream form: the voxel level of XPackedVolume, then the class word 65644 (108, version 1).
// The JPEG-compressed form has the class word 12100 and no level words.

#include "XColourVolume.h"

class XARGB32Volume : public XColourVolume<XARGB32Colour>
{
public:
    static constexpr UInt32 kClassID = 108;
    // The class word of the legacy JPEG-compressed colour image.
    static constexpr UInt32 kLegacyLossyClassID = 514;
    static constexpr UInt8 kComponentMin = 0;
    static constexpr UInt8 kComponentMax = 255;
    static constexpr UInt32 kComponentCount = 4;

    // An empty volume.
    XARGB32Volume();
    XARGB32Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XARGB32Volume(const X3DRect & aBounds);
    XARGB32Volume(const XARGB32Volume & aVolume) = default;
    // With aSkipVoxels the voxels of a JPEG-compressed form are stepped over, not decoded.
    explicit XARGB32Volume(XStream & aStream, bool aSkipVoxels = false);

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XPackedVolume<XARGB32Colour>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XARGB32Volume * Clone() const override { return new XARGB32Volume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("Millions of Colors Image"); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;
    // Reads a JPEG-compressed form (class 12100) when the word of the object being read has a
    // version of 2 or more; forms of versions 0 and 1 answer true and go on to ReadStream2. With
    // kSkipData the JPEG body is stepped over and the voxels are left zero. False when the form
    // was read.
    bool PreReadStream(XStream & aStream, const XVersion & aVersion, XOptions anOptions) override;

protected:
    void ReadStream2_XARGB32Volume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XARGB32Volume(XStream & aStream, XOptions anOptions) const;
    // A legacy image: plain voxels were read with the packed level and are followed by the word
    // 108. The legacy JPEG form has no voxels there but a word of class 514, or no word for 514
    // version 1, and then a JPEG body, with a length word from version 2.
    void ReadARGB32ImageStream(XStream & aStream, bool aDecode);
};
