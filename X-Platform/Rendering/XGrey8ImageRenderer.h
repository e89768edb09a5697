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

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGreyImageRenderer<UInt8>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XGrey8ImageRenderer * Clone() const override { return new XGrey8ImageRenderer(*this); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
