#pragma once
// A mask: 8-bit voxels that are 0 or 255 by convention, where a byte of 128 or more counts as
// set. It is a Grey8 volume to every conversion and tool, with a renderer of its own.
//
// Stream form: the levels of XGrey8Volume, then the class word 115. The legacy mask image
// (class word 5) stored the mask inverted, with rows padded to a multiple of 4 bytes. A table
// carried by an older level gives the mask renderer the colour of its bright end.

#include "XGrey8Volume.h"

class XMaskVolume : public XGrey8Volume
{
public:
    static constexpr UInt32 kClassID = 115;

    // An empty mask.
    XMaskVolume();
    XMaskVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XMaskVolume(const X3DRect & aBounds);
    XMaskVolume(const XMaskVolume & aVolume) = default;
    explicit XMaskVolume(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGrey8Volume::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XMaskVolume * Clone() const override { return new XMaskVolume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("1-bit Mask Image"); }

    // Every voxel, pads included: 255 above aLevel, else 0.
    void Threshold(UInt8 aLevel);

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XMaskVolume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XMaskVolume(XStream & aStream, XOptions anOptions) const;
    // The legacy image's voxels, read as they were stored: inverted, rows padded to 4 bytes.
    void ReadMaskImageStream();
};
