#pragma once
// The renderer of ARGB32 volumes: input 0 to 255 per channel.
//
// Stream form (class 12007, version 0): the level of XImageRenderer, then the class word.

#include "XColourImageRenderer.h"
#include "XARGB32Colour.h"

class XARGB32ImageRenderer : public XColourImageRenderer<XARGB32Colour>
{
public:
    static constexpr UInt32 kClassID = 12007;

    XARGB32ImageRenderer() = default;
    XARGB32ImageRenderer(const XARGB32ImageRenderer &) = default;
    XARGB32ImageRenderer & operator=(const XARGB32ImageRenderer &) = default;
    // The older stream form: the base's class word and numbers; nothing further.
    explicit XARGB32ImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XImageRenderer::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XARGB32ImageRenderer * Clone() const override { return new XARGB32ImageRenderer(*this); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XARGB32ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XARGB32ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
