#include "XFPImageRenderer.h"

#include "XException.h"
#include "XFloatToColourLUT.h"
#include "XImagingErrors.h"
#include "XLock.h"
#include "XStream.h"

XFPImageRenderer::XFPImageRenderer(XStream & aStream) : XGreyImageRenderer<float>(aStream)
{
}

XFPImageRenderer::XFPImageRenderer(const XFloatToColourLUT & aTable) : XFPImageRenderer()
{
    XFPImageRenderer::ApplyLUT(aTable);
}

void XFPImageRenderer::ApplyLUT(const XIntToColourLUT & aTable)
{
    const auto * table = dynamic_cast<const XFloatToColourLUT *>(&aTable);
    if (table == nullptr)
        throw XException(kErrNoLUT, "a floating-point renderer takes its settings from a table of real values only");
    if (table->IsEmpty())
        throw XException(kErrBadArgument, "an empty look-up table gives a renderer no colours");
    XLock lock(*table, kLockRead);
    XARGB32Colour white;
    table->ValueToColour(table->GetMax(), white);
    SetBlack(table->GetMin());
    SetWhite(table->GetMax());
    SetBlackColour(XARGB32Colour(0));
    SetWhiteColour(white);
    SetRendererType(kRampRenderer);
}

void XFPImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XFPImageRenderer(aStream, anOptions);
}

void XFPImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XFPImageRenderer(aStream, anOptions);
}

void XFPImageRenderer::ReadStream2_XFPImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGreyImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XFPImageRenderer::WriteStream2_XFPImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGreyImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}

XFPImageRenderer::XFPImageRenderer()
{
    SetBlack(0.0);
    SetWhite(1.0);
}

bool XFPImageRenderer::IsNormal() const
{
    return IsNormalExceptForWhitePoint() && GetWhite() == 255.0 && GetMaxInputValue() == 255.0;
}

bool XFPImageRenderer::IsNormalExceptForWhitePoint() const
{
    return IsNormalTest(false) && GetMinInputValue() == 0.0 && HasNormalColours();
}

void XFPImageRenderer::CopyProperties(const XImageRenderer & aSource)
{
    const double black = aSource.GetBlack();
    const double white = aSource.GetWhite();
    XGreyImageRenderer<float>::CopyProperties(aSource);
    SetBlack(black);
    SetWhite(white);
}
