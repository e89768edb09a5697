#include "XMaskImageRenderer.h"

#include <cmath>

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
    const SInt32 mean = (SInt32(colour.GetRed()) + colour.GetGreen() + colour.GetBlue()) / 3;
    const double u = ClampUnit(double(mean) / 255.0 * GetGain() + GetOffset());
    return UInt8(std::pow(u, GetGamma()) * 255.0);
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
