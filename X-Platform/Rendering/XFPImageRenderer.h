#pragma once
// The renderer of floating-point volumes. Its input range is its own black and white points
// (0 and 1 by default), so a float image is normal only at the range 0 to 255.
//
// Stream form: the levels of XGreyImageRenderer, then the class word 12010.

#include "XGreyImageRenderer.h"

class XFloatToColourLUT;

class XFPImageRenderer : public XGreyImageRenderer<float>
{
public:
    static constexpr UInt32 kClassID = 12010;

    XFPImageRenderer();
    XFPImageRenderer(const XFPImageRenderer &) = default;
    XFPImageRenderer & operator=(const XFPImageRenderer &) = default;
    // The older stream form of the base classes; nothing further.
    explicit XFPImageRenderer(XStream & aStream);
    // Settings from a table of real values, as ApplyLUT.
    explicit XFPImageRenderer(const XFloatToColourLUT & aTable);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XGreyImageRenderer<float>::GetClassVersion(); }
    XVersion GetVersion() const override { return GetClassVersion(); }
    XFPImageRenderer * Clone() const override { return new XFPImageRenderer(*this); }

    double GetMinInputValue() const override { return GetBlack(); }
    double GetMaxInputValue() const override { return GetWhite(); }
    // Black 0, white 255, both as input range too, nothing else adjusted.
    bool IsNormal() const override;
    // The same without the two tests against 255.
    bool IsNormalExceptForWhitePoint() const override;
    // Ends with the source's black and white points, unscaled: they are this renderer's input
    // range, so rescaling them against it would mean nothing.
    void CopyProperties(const XImageRenderer & aSource) override;

    // The table must be an XFloatToColourLUT (else XException kErrNoLUT) and not empty (else
    // kErrBadArgument): black and white become its minimum and maximum, the black colour
    // opaque black and the white colour that of the maximum, a ramp.
    void ApplyLUT(const XIntToColourLUT & aTable) override;

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XFPImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XFPImageRenderer(XStream & aStream, XOptions anOptions) const;
};
