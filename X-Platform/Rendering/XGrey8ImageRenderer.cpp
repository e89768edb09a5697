#include "XGrey8ImageRenderer.h"

#include "XStream.h"

XGrey8ImageRenderer::XGrey8ImageRenderer(XStream & aStream) : XGreyImageRenderer<UInt8>(aStream)
{
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
