#pragma once
// The renderer of 16-bit grey volumes: input 0 to 65535, white point 65535.
//
// Stream form: the levels of XGreyImageRenderer, then the class word 12006.

#include "XGreyImageRenderer.h"

class XGrey16ImageRenderer : public XGreyImageRenderer<UInt16>
{
public:
    static constexpr UInt32 kClassID = 12006;

    XGrey16ImageRenderer();
    XGrey16ImageRenderer(const XGrey16ImageRenderer &) = default;
    XGrey16ImageRenderer & operator=(const XGrey16ImageRenderer &) = default;
    // The older stream form of the base classes; nothing further.
    explicit XGrey16ImageRenderer(XStream & aStream);
    // Settings from a palette, as ApplyLUT.
    explicit XGrey16ImageRenderer(const XIntToColourLUT & aTable);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGreyImageRenderer<UInt16>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey16ImageRenderer * Clone() const override { return new XGrey16ImageRenderer(*this); }

    // The bright end of the palette (see ApplyBrightEnd), with no test for a falling table.
    void ApplyLUT(const XIntToColourLUT & aTable) override;

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XGrey16ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGrey16ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
