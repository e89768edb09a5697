#include "XBaseGreyImageRenderer.h"

#include <algorithm>

#include "XCheckedArithmetic.h"
#include "XException.h"
#include "XIntToColourLUT.h"
#include "XLock.h"
#include "XStream.h"

const XVector<XARGB32Colour> XBaseGreyImageRenderer::kRainbowLUT =
    XBaseGreyImageRenderer::BuildRainbowLUT();

XBaseGreyImageRenderer::XBaseGreyImageRenderer(XStream & aStream)
    : XImageRenderer(aStream), itsWhiteColour(XARGB32Colour::kBlack)
{
}

XVector<XARGB32Colour> XBaseGreyImageRenderer::BuildRainbowLUT()
{
    XVector<XARGB32Colour> table(256, XARGB32Colour::kBlack);
    for (UInt32 i = 1; i < 256; ++i)
    {
        const float wavelength = float(double(i) / 255.0 * 230.0 + 420.0);
        table[i].SetWavelength(wavelength);
    }
    return table;
}

bool XBaseGreyImageRenderer::HasProperty(UInt32 aProperty) const
{
    return XImageRenderer::HasProperty(aProperty) ||
           (aProperty >= kBlackColourRedProperty && aProperty <= kWhiteColourBlueProperty);
}

UInt8 XBaseGreyImageRenderer::GetColourProperty(UInt32 aProperty) const
{
    const XARGB32Colour & colour = aProperty < kWhiteColourRedProperty ? itsBlackColour : itsWhiteColour;
    switch ((aProperty - kBlackColourRedProperty) % 3)
    {
    case 0: return colour.GetRed();
    case 1: return colour.GetGreen();
    default: return colour.GetBlue();
    }
}

void XBaseGreyImageRenderer::SetProperty(UInt32 aProperty, double aValue)
{
    if (aProperty < kBlackColourRedProperty || aProperty > kWhiteColourBlueProperty)
    {
        XImageRenderer::SetProperty(aProperty, aValue);
        return;
    }
    XARGB32Colour colour = aProperty < kWhiteColourRedProperty ? itsBlackColour : itsWhiteColour;
    const UInt8 byte = UInt8(XCheckedTruncate<SInt32>(aValue));
    switch ((aProperty - kBlackColourRedProperty) % 3)
    {
    case 0: colour.SetRed(byte); break;
    case 1: colour.SetGreen(byte); break;
    default: colour.SetBlue(byte); break;
    }
    if (aProperty < kWhiteColourRedProperty)
        SetBlackColour(colour);
    else
        SetWhiteColour(colour);
}

double XBaseGreyImageRenderer::GetProperty(UInt32 aProperty) const
{
    if (aProperty < kBlackColourRedProperty || aProperty > kWhiteColourBlueProperty)
        return XImageRenderer::GetProperty(aProperty);
    return double(GetColourProperty(aProperty));
}

void XBaseGreyImageRenderer::CopyProperties(const XImageRenderer & aSource)
{
    XImageRenderer::CopyProperties(aSource);
    for (UInt32 property = kBlackColourRedProperty; property <= kWhiteColourBlueProperty; ++property)
        if (aSource.HasProperty(property))
            SetProperty(property, aSource.GetProperty(property));
}

bool XBaseGreyImageRenderer::HasNormalColours() const
{
    return itsBlackColour.GetRed() == 0 && itsBlackColour.GetGreen() == 0 &&
           itsBlackColour.GetBlue() == 0 && itsWhiteColour.GetRed() == 255 &&
           itsWhiteColour.GetGreen() == 255 && itsWhiteColour.GetBlue() == 255;
}

bool XBaseGreyImageRenderer::IsNormal() const
{
    return XImageRenderer::IsNormal() && HasNormalColours();
}

bool XBaseGreyImageRenderer::IsNormalExceptForWhitePoint() const
{
    return XImageRenderer::IsNormalExceptForWhitePoint() && HasNormalColours();
}

void XBaseGreyImageRenderer::Normalise()
{
    XImageRenderer::Normalise();
    SetBlackColour(XARGB32Colour::kBlack);
    SetWhiteColour(XARGB32Colour::kWhite);
}

void XBaseGreyImageRenderer::ReadStream2_XBaseGreyImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XImageRenderer(aStream, anOptions);
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XBaseGreyImageRenderer::WriteStream2_XBaseGreyImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XBaseGreyImageRenderer::ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions)
{
    if (aVersion.GetVersion() >= 2)
        itsRendererType = XRendererType(aStream.Read32());
}

void XBaseGreyImageRenderer::WriteStreamSelf(XStream & aStream, XOptions) const
{
    aStream.Write32(itsRendererType);
}

void XBaseGreyImageRenderer::ApplyBrightEnd(const XIntToColourLUT & aTable, bool aFallingTest)
{
    if (aTable.IsEmpty())
        throw XException(kErrBadArgument, "an empty look-up table gives a renderer no colours");
    XLock lock(aTable, kLockRead);
    const UInt32 last = aTable.GetLastEntry();
    XARGB32Colour white = aTable.IndexToValue(std::min(aTable.GetLastTrueValue(), last));
    const XARGB32Colour & first = aTable.IndexToValue(0);
    if (aFallingTest && first.GetIntensity() > aTable.IndexToValue(std::min(255u, last)).GetIntensity())
        white = first;
    SetBlackColour(XARGB32Colour::kBlack);
    SetWhiteColour(white);
    SetBlack(0.0);
    SetWhite(double(aTable.GetLastTrueValue()));
    SetRendererType(kRampRenderer);
}
