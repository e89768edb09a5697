#include "XFPVolume.h"

#include <memory>
#include <typeinfo>

#include "XFPImageRenderer.h"
#include "XFloatToColourLUT.h"
#include "XStream.h"

XFPVolume::XFPVolume() : XNumberVolume<float>(X3DRect())
{
    AttachPlaneRenderer(new XFPImageRenderer());
}

XFPVolume::XFPVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XNumberVolume<float>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XFPImageRenderer());
}

XFPVolume::XFPVolume(const X3DRect & aBounds) : XNumberVolume<float>(aBounds)
{
    AttachPlaneRenderer(new XFPImageRenderer());
}

XFPVolume::XFPVolume(XStream & aStream) : XNumberVolume<float>(aStream)
{
    std::unique_ptr<XFloatToColourLUT> table;
    if (IsReadingLegacyImage(aStream))
        table.reset(ReadFPImageStream(aStream));
    else
        ReadLevelVersion(aStream, GetClassVersion());
    AttachPlaneRenderer(table ? new XFPImageRenderer(*table) : new XFPImageRenderer());
    SetHadLegacyLUT(table != nullptr);
}

XFloatToColourLUT * XFPVolume::ReadFPImageStream(XStream & aStream)
{
    ReadClassVersion(aStream, GetClassVersion());
    return aStream.ReadObjectAs<XFloatToColourLUT>(kNormal);
}

bool XFPVolume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XFPImageRenderer);
}

void XFPVolume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XFPVolume(aStream, anOptions);
}

void XFPVolume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XFPVolume(aStream, anOptions);
}

void XFPVolume::ReadStream2_XFPVolume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XNumberVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XFPVolume::WriteStream2_XFPVolume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XNumberVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
