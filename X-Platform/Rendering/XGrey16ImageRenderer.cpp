#include "XGrey16ImageRenderer.h"

#include "XStream.h"

XGrey16ImageRenderer::XGrey16ImageRenderer(XStream & aStream) : XGreyImageRenderer<UInt16>(aStream)
{
}

XGrey16ImageRenderer::XGrey16ImageRenderer(const XIntToColourLUT & aTable) : XGrey16ImageRenderer()
{
    XGrey16ImageRenderer::ApplyLUT(aTable);
}

void XGrey16ImageRenderer::ApplyLUT(const XIntToColourLUT & aTable)
{
    ApplyBrightEnd(aTable, false);
}

void XGrey16ImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey16ImageRenderer(aStream, anOptions);
}

void XGrey16ImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey16ImageRenderer(aStream, anOptions);
}

void XGrey16ImageRenderer::ReadStream2_XGrey16ImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGreyImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XGrey16ImageRenderer::WriteStream2_XGrey16ImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGreyImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}

XGrey16ImageRenderer::XGrey16ImageRenderer()
{
    SetWhite(65535.0);
}
