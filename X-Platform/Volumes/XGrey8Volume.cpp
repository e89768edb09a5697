#include "XGrey8Volume.h"

#include <typeinfo>

#include "XGrey8ImageRenderer.h"
#include "XStream.h"

XGrey8Volume::XGrey8Volume() : XIntegerVolume<UInt8>(X3DRect())
{
    AttachPlaneRenderer(new XGrey8ImageRenderer());
}

XGrey8Volume::XGrey8Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XIntegerVolume<UInt8>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XGrey8ImageRenderer());
}

XGrey8Volume::XGrey8Volume(const X3DRect & aBounds) : XIntegerVolume<UInt8>(aBounds)
{
    AttachPlaneRenderer(new XGrey8ImageRenderer());
}

XGrey8Volume::XGrey8Volume(XStream & aStream, bool aSkipVoxels) : XGrey8Volume(aStream, aSkipVoxels, true)
{
}

XGrey8Volume::XGrey8Volume(XStream & aStream, bool aSkipVoxels, bool aMakeRenderer) : XIntegerVolume<UInt8>(aStream)
{
    if (IsReadingLossyForm(aStream))
        ReadLossyStream(aStream, !aSkipVoxels);
    else if (!IsReadingLegacyImage(aStream))
        ReadLevelVersion(aStream, GetClassVersion());
    if (!aMakeRenderer)
        return;
    AttachPlaneRenderer(new XGrey8ImageRenderer());
    ApplyLegacyLUT();
}

bool XGrey8Volume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XGrey8ImageRenderer);
}

bool XGrey8Volume::PreReadStream(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    if (aVersion.GetClass() != kLossyARGB32ClassID)
        return true;
    ReadLossyStream(aStream, anOptions != kSkipData);
    return false;
}

void XGrey8Volume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey8Volume(aStream, anOptions);
    ApplyLegacyLUT();
}

void XGrey8Volume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey8Volume(aStream, anOptions);
}

void XGrey8Volume::ReadStream2_XGrey8Volume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XIntegerVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XGrey8Volume::WriteStream2_XGrey8Volume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XIntegerVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
