#pragma once
// The renderer of RGB48 volumes: input 0 to 65535 per channel, white point 65535.
//
// Stream form (class 12009, version 0): the level of XImageRenderer, then the class word.

#include "XColourImageRenderer.h"
#include "XRGB48Colour.h"

class XRGB48ImageRenderer : public XColourImageRenderer<XRGB48Colour>
{
public:
    static constexpr UInt32 kClassID = 12009;

    XRGB48ImageRenderer() = default;
    XRGB48ImageRenderer(const XRGB48ImageRenderer &) = default;
    XRGB48ImageRenderer & operator=(const XRGB48ImageRenderer &) = default;
    // The older stream form: the base's class word and numbers; nothing further.
    explicit XRGB48ImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XImageRenderer::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XRGB48ImageRenderer * Clone() const override { return new XRGB48ImageRenderer(*this); }

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XRGB48ImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XRGB48ImageRenderer(XStream & aStream, XOptions anOptions) const;
};
