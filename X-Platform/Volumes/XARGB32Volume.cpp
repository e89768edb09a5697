#include "XARGB32Volume.h"

#include <typeinfo>

#include "XARGB32ImageRenderer.h"
#include "XException.h"
#include "XRect.h"
#include "XStream.h"

XARGB32Volume::XARGB32Volume() : XColourVolume<XARGB32Colour>(X3DRect())
{
    AttachPlaneRenderer(new XARGB32ImageRenderer());
}

XARGB32Volume::XARGB32Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XColourVolume<XARGB32Colour>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XARGB32ImageRenderer());
}

XARGB32Volume::XARGB32Volume(const X3DRect & aBounds) : XColourVolume<XARGB32Colour>(aBounds)
{
    AttachPlaneRenderer(new XARGB32ImageRenderer());
}

XARGB32Volume::XARGB32Volume(XStream & aStream, bool aSkipVoxels) : XColourVolume<XARGB32Colour>(aStream)
{
    if (IsReadingLossyForm(aStream))
        ReadLossyStream(aStream, !aSkipVoxels);
    else if (IsReadingLegacyImage(aStream))
        ReadARGB32ImageStream(aStream, !aSkipVoxels);
    else
        ReadLevelVersion(aStream, GetClassVersion());
    AttachPlaneRenderer(new XARGB32ImageRenderer());
}

void XARGB32Volume::ReadARGB32ImageStream(XStream & aStream, bool aDecode)
{
    // A plain legacy image carries the word 108 here. The JPEG form carries a word of class 514
    // or none, which stands for 514 version 1; so does a plain image without its word, whose
    // voxels are then refused below.
    const XVersion word = ReadClassVersion(aStream, XVersion(kLegacyLossyClassID, 1));
    if (word.GetClass() != kLegacyLossyClassID)
        return;
    if (GetDataSize() != 0)
        throw XException(kErrDamagedStream, "legacy JPEG colour image that also holds plain voxels");
    if (GetBounds().GetXYBounds().IsEmpty())
    {
        Allocate();
        return;
    }
    SInt64 end = -1;
    UInt64 length = aStream.GetBytesLeft();
    if (word.GetVersion() >= 2)
    {
        length = aStream.Read32();
        if (length > aStream.GetBytesLeft())
            throw XException(kErrDamagedStream, "JPEG body longer than the stream");
        end = aStream.GetPosition() + SInt64(length);
    }
    CheckLossyLength(length);
    Allocate();
    if (aDecode || end < 0)
        throw XException(kErrUnknownClass, "this version cannot decode JPEG-compressed volume voxels");
    aStream.SeekTo(end);
}

bool XARGB32Volume::PreReadStream(XStream & aStream, const XVersion & aVersion, XOptions anOptions)
{
    if (aVersion.GetClass() != kLossyARGB32ClassID || aStream.GetLastClassCreated().GetVersion() < 2)
        return true;
    ReadLossyStream(aStream, anOptions != kSkipData);
    return false;
}

bool XARGB32Volume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XARGB32ImageRenderer);
}

void XARGB32Volume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XARGB32Volume(aStream, anOptions);
}

void XARGB32Volume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XARGB32Volume(aStream, anOptions);
}

void XARGB32Volume::ReadStream2_XARGB32Volume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XPackedVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XARGB32Volume::WriteStream2_XARGB32Volume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XPackedVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
