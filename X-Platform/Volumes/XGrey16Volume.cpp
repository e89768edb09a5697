#include "XGrey16Volume.h"

#include <typeinfo>

#include "XGrey16ImageRenderer.h"
#include "XStream.h"

XGrey16Volume::XGrey16Volume() : XIntegerVolume<UInt16>(X3DRect())
{
    AttachPlaneRenderer(new XGrey16ImageRenderer());
}

XGrey16Volume::XGrey16Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XIntegerVolume<UInt16>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XGrey16ImageRenderer());
}

XGrey16Volume::XGrey16Volume(const X3DRect & aBounds) : XIntegerVolume<UInt16>(aBounds)
{
    AttachPlaneRenderer(new XGrey16ImageRenderer());
}

XGrey16Volume::XGrey16Volume(XStream & aStream) : XIntegerVolume<UInt16>(aStream)
{
    if (!IsReadingLegacyImage(aStream))
        ReadLevelVersion(aStream, GetClassVersion());
    SwapOnLockFor(aStream);
    AttachPlaneRenderer(new XGrey16ImageRenderer());
    ApplyLegacyLUT();
}

void XGrey16Volume::SwapOnLockFor(const XStream & aStream)
{
    if (aStream.GetByteOrder() != GetByteOrderFromPlatform())
        Storage().SetSwapOnLock(kSwap16);
}

bool XGrey16Volume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XGrey16ImageRenderer);
}

void XGrey16Volume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey16Volume(aStream, anOptions);
    ApplyLegacyLUT();
}

void XGrey16Volume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey16Volume(aStream, anOptions);
}

void XGrey16Volume::ReadStream2_XGrey16Volume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XIntegerVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
    SwapOnLockFor(aStream);
}

void XGrey16Volume::WriteStream2_XGrey16Volume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XIntegerVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
