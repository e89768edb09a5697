#pragma once
// What the renderers of single-channel volumes share: the colours of luminance 0 and 255 and
// the renderer type, a ramp between those colours or a rainbow (kRainbowLUT, 420 to 650 nm).
//
// Stream level (class 12002, version 2): the class word, then the renderer type as 32 bits.
// Version 0 and 1 carry no type; the renderer keeps the one it has.

#include "XARGB32Colour.h"
#include "XImageRenderer.h"
#include "XVector.h"

class XBaseGreyImageRenderer : public XImageRenderer
{
public:
    static constexpr UInt32 kClassID = 12002;
    // Entry 0 opaque black, entry i the colour of the wavelength i / 255 * 230 + 420 nm.
    static const XVector<XARGB32Colour> kRainbowLUT;

    XBaseGreyImageRenderer() = default;
    XBaseGreyImageRenderer(const XBaseGreyImageRenderer &) = default;
    XBaseGreyImageRenderer & operator=(const XBaseGreyImageRenderer &) = default;
    // The older stream form: nothing beyond the base; type 0 and both colours opaque black
    // until a subclass reads the colours.
    explicit XBaseGreyImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 2); }
    static XVersion GetSuperClassVersion() { return XImageRenderer::GetClassVersion(); }

    void SetBlackColour(const XARGB32Colour & aColour) override { itsBlackColour = aColour; }
    void SetWhiteColour(const XARGB32Colour & aColour) override { itsWhiteColour = aColour; }
    void SetRendererType(XRendererType aType) override { itsRendererType = aType; }
    XARGB32Colour GetBlackColour() const override { return itsBlackColour; }
    XARGB32Colour GetWhiteColour() const override { return itsWhiteColour; }
    XRendererType GetRendererType() const override { return itsRendererType; }

    // Adds properties 10 to 15, the colour bytes; set from the truncated value, whose low byte
    // counts. A value that is NaN or beyond 32 bits is an internal error.
    bool HasProperty(UInt32 aProperty) const override;
    void SetProperty(UInt32 aProperty, double aValue) override;
    double GetProperty(UInt32 aProperty) const override;
    // Also copies properties 10 to 15 that the source has; never the renderer type.
    void CopyProperties(const XImageRenderer & aSource) override;
    // Also asks for a black black colour and a white white colour (red, green, blue only).
    bool IsNormal() const override;
    bool IsNormalExceptForWhitePoint() const override;
    // Also resets the two colours to opaque black and white; the renderer type stays.
    void Normalise() override;

protected:
    void ReadStream2_XBaseGreyImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XBaseGreyImageRenderer(XStream & aStream, XOptions anOptions) const;
    // A palette reduced to its bright end: black colour opaque black, white colour the entry at
    // the last true value (the last entry, for a smaller table), black point 0, white point the
    // last true value, a ramp. With aFallingTest a table whose entry 0 is brighter (largest of
    // red, green, blue) than its entry 255 takes entry 0 as its white colour instead.
    // XException kErrBadArgument for an empty table.
    void ApplyBrightEnd(const XIntToColourLUT & aTable, bool aFallingTest);
    // True when the colours are those of a normal renderer.
    bool HasNormalColours() const;
    static XVector<XARGB32Colour> BuildRainbowLUT();

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    // The byte of a colour that property 10 to 15 names.
    UInt8 GetColourProperty(UInt32 aProperty) const;

    XARGB32Colour itsBlackColour = XARGB32Colour::kBlack;
    XARGB32Colour itsWhiteColour = XARGB32Colour::kWhite;
    XRendererType itsRendererType = kRampRenderer;
};
