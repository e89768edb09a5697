#include "XRGB48ImageRenderer.h"

#include "XStream.h"

XRGB48ImageRenderer::XRGB48ImageRenderer(XStream & aStream) : XColourImageRenderer<XRGB48Colour>(aStream)
{
}

void XRGB48ImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XRGB48ImageRenderer(aStream, anOptions);
}

void XRGB48ImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XRGB48ImageRenderer(aStream, anOptions);
}

void XRGB48ImageRenderer::ReadStream2_XRGB48ImageRenderer(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XImageRenderer(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XRGB48ImageRenderer::WriteStream2_XRGB48ImageRenderer(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XImageRenderer(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
