#include "XGrey8ImageRenderer.h"

#include "XIntToColourLUT.h"
#include "XLUTPixShader.h"
#include "XLock.h"
#include "XStream.h"

XGrey8ImageRenderer::XGrey8ImageRenderer(XStream & aStream) : XGreyImageRenderer<UInt8>(aStream)
{
}

XGrey8ImageRenderer::XGrey8ImageRenderer(const XIntToColourLUT & aTable) : XGrey8ImageRenderer()
{
    XGrey8ImageRenderer::ApplyLUT(aTable);
}

XIntToColourLUT XGrey8ImageRenderer::GetLUT() const
{
    const XLUTPixShader<UInt8> shader(*this);
    XIntToColourLUT table(256);
    XLock lock(table, kLockWrite);
    for (UInt32 i = 0; i < 256; ++i)
        table.IndexToValue(i) = shader.GetColour(UInt8(i));
    return table;
}

void XGrey8ImageRenderer::ApplyLUT(const XIntToColourLUT & aTable)
{
    ApplyBrightEnd(aTable, true);
}

void XGrey8ImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey8ImageRenderer(aStream, anOptions);
}

void XGrey8ImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey8ImageRenderer(aStream, anOptions);
}

void XGrey8ImageRenderer::ReadStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGreyImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XGrey8ImageRenderer::WriteStream2_XGrey8ImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGreyImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}

XGrey8ImageRenderer::XGrey8ImageRenderer() = default;
