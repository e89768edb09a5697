#pragma once
// The renderer of 8-bit grey volumes: input 0 to 255, white point 255.
//
// Stream form: the levels of XGreyImageRenderer, then the class word 12005.

#include "XGreyImageRenderer.h"

class XGrey8ImageRenderer : public XGreyImageRenderer<UInt8>
{
public:
    static constexpr UInt32 kClassID = 12005;

    XGrey8ImageRenderer();
    XGrey8ImageRenderer(const XGrey8ImageRenderer &) = default;
    XGrey8ImageRenderer & operator=(const XGrey8ImageRenderer &) = default;
    // The older stream form of the base classes; nothing further.
    explicit XGrey8ImageRenderer(XStream & aStream);
    // Settings from a palette, as ApplyLUT.
    explicit XGrey8ImageRenderer(const XIntToColourLUT & aTable);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGreyImageRenderer<UInt8>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey8ImageRenderer * Clone() const override { return new XGrey8ImageRenderer(*this); }

    // 256 entries through the ramp shader of this renderer's settings (whatever its type);
    // true depth 8.
    XIntToColourLUT GetLUT() const override;
    // The bright end of the palette (see ApplyBrightEnd); a table whose entry 0 is brighter
    // than its entry 255 gives its entry 0 as the white colour. Deliberately a ramp and not a
    // palette: this renderer draws ramps.
    void ApplyLUT(const XIntToColourLUT & aTable) override;

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
