#include "XBGRA32ImageRenderer.h"

#include "XStream.h"

XBGRA32ImageRenderer::XBGRA32ImageRenderer(XStream & aStream) : XColourImageRenderer<XBGRA32Colour>(aStream)
{
}

void XBGRA32ImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XBGRA32ImageRenderer(aStream, anOptions);
}

void XBGRA32ImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XBGRA32ImageRenderer(aStream, anOptions);
}

void XBGRA32ImageRenderer::ReadStream2_XBGRA32ImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XBGRA32ImageRenderer::WriteStream2_XBGRA32ImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
