#pragma once
// The renderer of BGRA32 volumes: input 0 to 255 per channel.
//
// Stream form (class 12008, version 0): the level of XImageRenderer, then the class word.

#include "XColourImageRenderer.h"
#include "XBGRA32Colour.h"

class XBGRA32ImageRenderer : public XColourImageRenderer<XBGRA32Colour>
{
public:
    static constexpr UInt32 kClassID = 12008;

    XBGRA32ImageRenderer() = default;
    XBGRA32ImageRenderer(const XBGRA32ImageRenderer &) = default;
    XBGRA32ImageRenderer & operator=(const XBGRA32ImageRenderer &) = default;
    // The older stream form: the base's class word and numbers; nothing further.
    explicit XBGRA32ImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XImageRenderer::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XBGRA32ImageRenderer * Clone() const override { return new XBGRA32ImageRenderer(*this); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XBGRA32ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XBGRA32ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
