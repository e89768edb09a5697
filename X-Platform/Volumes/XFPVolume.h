#pragma once
// The floating-point volume. Its default renderer maps 0..1; conversions into integer types
// scale the renderer's input range onto the destination's black and white points, and
// conversions into colour wrap round in 8 or 16 bits without clamping.
//
// Stream form: the levels of XNumberVolume, then the class word 65643 (107, version 1). A
// legacy image carries a table of real values, which gives the renderer its range and colours.

#include "XNumberVolume.h"

class XFloatToColourLUT;

class XFPVolume : public XNumberVolume<float>
{
public:
    static constexpr UInt32 kClassID = 107;
    static constexpr float kComponentMin = -3.40282347e38f;
    static constexpr float kComponentMax = 3.40282347e38f;
    static constexpr UInt32 kComponentCount = 1;

    // An empty volume.
    XFPVolume();
    XFPVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth);
    explicit XFPVolume(const X3DRect & aBounds);
    XFPVolume(const XFPVolume & aVolume) = default;
    explicit XFPVolume(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XNumberVolume<float>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XFPVolume * Clone() const override { return new XFPVolume(*this); }
    using XVolume::Clone;
    XVolume * CloneWithoutCopy(const X3DRect & aRect) const override { return NewCloneWithoutCopy(*this, aRect); }
    using XVolume::CloneWithoutCopy;
    bool IsPlaneRendererSupported(const XImageRenderer & aRenderer) const override;
    XString GetDescription() const override { return XString("Floating-point Image"); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XFPVolume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XFPVolume(XStream & aStream, XOptions anOptions) const;
    // A legacy image's table of real values to colours, or null; the caller owns it.
    XFloatToColourLUT * ReadFPImageStream(XStream & aStream);
};
