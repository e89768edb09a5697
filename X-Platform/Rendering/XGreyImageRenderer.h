#pragma once
// The renderer of a single-channel voxel type T (unsigned char, unsigned short, float): the
// transfer function followed by a ramp from the black colour to the white colour, or by the
// rainbow table.
//
// Stream level (class 12003, version 0): the class word, then the black and the white colour,
// each as the four bytes alpha, red, green, blue.

#include "XBaseGreyImageRenderer.h"

template <typename T>
class XGreyImageRenderer : public XBaseGreyImageRenderer
{
public:
    static constexpr UInt32 kClassID = 12003;

    XGreyImageRenderer() = default;
    XGreyImageRenderer(const XGreyImageRenderer &) = default;
    XGreyImageRenderer & operator=(const XGreyImageRenderer &) = default;
    // The older stream form: the base's, then the two colours as plain 32-bit numbers in the
    // stream's byte order.
    explicit XGreyImageRenderer(XStream & aStream);

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XBaseGreyImageRenderer::GetClassVersion(); }

    // The largest value of T (for float the largest finite float).
    double GetMaxInputValue() const override;
    // A ramp (type 0): the transfer function in single precision, then each channel
    // c0 + (c1 - c0) * luminance / 255 from the balanced bytes of the two colours, alpha 255.
    // A rainbow (type 1): the table entry of (v - black) * 255 / (white - black), rounded;
    // gain, offset, gamma and balances play no part. Another type leaves the colour alone.
    void GetColour(const void * aVoxel, XARGB32Colour & outColour) const override;
    // trunc(GetMaxInputValue()) entries, the last input value left out: entry i is GetColour
    // of i. The true depth is the smallest d from 1 on with 2^d at or above the white point,
    // the last true value 2^d - 1. XException kErrBadArgument above 2^24 entries.
    XIntToColourLUT GetLUT() const override;
    // The index truncated to T, then GetColour. An integer T refuses an index beyond its range
    // (or NaN) as an internal error.
    virtual void GetColourByIndex(double anIndex, XARGB32Colour & outColour) const;

protected:
    void ReadStream2_XGreyImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XGreyImageRenderer(XStream & aStream, XOptions anOptions) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;
    void GetRampColour(T aVoxel, XARGB32Colour & outColour) const;
    void GetRainbowColour(T aVoxel, XARGB32Colour & outColour) const;
};

extern template class XGreyImageRenderer<UInt8>;
extern template class XGreyImageRenderer<UInt16>;
extern template class XGreyImageRenderer<float>;
