#include "XMaskImageRenderer.h"

#include <cmath>

#include "XIntToColourLUT.h"
#include "XLock.h"
#include "XStream.h"

XMaskImageRenderer::XMaskImageRenderer(XStream & aStream) : XGrey8ImageRenderer(aStream)
{
}

bool XMaskImageRenderer::HasProperty(UInt32 aProperty) const
{
    if (aProperty == kBlackProperty || aProperty == kWhiteProperty || aProperty == kGammaProperty)
        return false;
    return XGrey8ImageRenderer::HasProperty(aProperty);
}

UInt8 XMaskImageRenderer::GetLuminance(double aValue) const
{
    const XARGB32Colour colour = aValue > 127.0 ? GetWhiteColour() : GetBlackColour();
    return MaskLevel(UInt8((SInt32(colour.GetRed()) + colour.GetGreen() + colour.GetBlue()) / 3));
}

UInt8 XMaskImageRenderer::MaskLevel(UInt8 aByte) const
{
    const double u = ClampUnit(double(aByte) / 255.0 * GetGain() + GetOffset());
    return UInt8(std::pow(u, GetGamma()) * 255.0);
}

XIntToColourLUT XMaskImageRenderer::GetLUT() const
{
    auto shaded = [this](const XARGB32Colour & aColour) {
        return XARGB32Colour(255, MaskLevel(aColour.GetRed()), MaskLevel(aColour.GetGreen()),
                             MaskLevel(aColour.GetBlue()));
    };
    const XARGB32Colour clear = shaded(GetBlackColour()), set = shaded(GetWhiteColour());
    XIntToColourLUT table(256);
    XLock lock(table, kLockWrite);
    for (UInt32 i = 0; i < 256; ++i)
        table.IndexToValue(i) = i < 128 ? clear : set;
    return table;
}

void XMaskImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XMaskImageRenderer(aStream, anOptions);
}

void XMaskImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XMaskImageRenderer(aStream, anOptions);
}

void XMaskImageRenderer::ReadStream2_XMaskImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey8ImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XMaskImageRenderer::WriteStream2_XMaskImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey8ImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
