#include "XARGB32ImageRenderer.h"

#include "XStream.h"

XARGB32ImageRenderer::XARGB32ImageRenderer(XStream & aStream) : XColourImageRenderer<XARGB32Colour>(aStream)
{
}

void XARGB32ImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XARGB32ImageRenderer(aStream, anOptions);
}

void XARGB32ImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XARGB32ImageRenderer(aStream, anOptions);
}

void XARGB32ImageRenderer::ReadStream2_XARGB32ImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XARGB32ImageRenderer::WriteStream2_XARGB32ImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
