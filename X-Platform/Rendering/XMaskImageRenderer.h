#pragma once
// The renderer of mask volumes: a voxel of 128 or more shows the white colour, any other the
// black colour. Black point, white point and gamma are not offered as properties.
//
// Stream form: the levels of XGrey8ImageRenderer, then the class word 12004.

#include "XGrey8ImageRenderer.h"

class XMaskImageRenderer : public XGrey8ImageRenderer
{
public:
    static constexpr UInt32 kClassID = 12004;

    XMaskImageRenderer() = default;
    XMaskImageRenderer(const XMaskImageRenderer &) = default;
    XMaskImageRenderer & operator=(const XMaskImageRenderer &) = default;
    // The older stream form of the base classes; nothing further.
    explicit XMaskImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGrey8ImageRenderer::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XMaskImageRenderer * Clone() const override { return new XMaskImageRenderer(*this); }

    // False for black, white and gamma (1, 2 and 5).
    bool HasProperty(UInt32 aProperty) const override;
    // The mean of the red, green and blue of the white colour above 127, else of the black
    // colour, through gain, offset and gamma.
    UInt8 GetLuminance(double aValue) const override;
    // 256 entries: 0 to 127 the black colour, 128 to 255 the white colour, each channel through
    // gain, offset and gamma (as MaskLevel), opaque.
    XIntToColourLUT GetLUT() const override;

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    // trunc(pow(clamp(aByte / 255 * gain + offset, 0, 1), gamma) * 255).
    UInt8 MaskLevel(UInt8 aByte) const;
    void ReadStream2_XMaskImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XMaskImageRenderer(XStream & aStream, XOptions anOptions) const;
};
