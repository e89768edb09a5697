#include "XRGB48Volume.h"

#include <memory>
#include <string>
#include <typeinfo>

#include "XByteSwap.h"
#include "XException.h"
#include "XLock.h"
#include "XRGB48ImageRenderer.h"
#include "XStream.h"

XRGB48Volume::XRGB48Volume() : XColourVolume<XRGB48Colour>(X3DRect())
{
    AttachPlaneRenderer(new XRGB48ImageRenderer());
}

XRGB48Volume::XRGB48Volume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth)
    : XColourVolume<XRGB48Colour>(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XRGB48ImageRenderer());
}

XRGB48Volume::XRGB48Volume(const X3DRect & aBounds) : XColourVolume<XRGB48Colour>(aBounds)
{
    AttachPlaneRenderer(new XRGB48ImageRenderer());
}

XRGB48Volume::XRGB48Volume(XStream & aStream) : XColourVolume<XRGB48Colour>(aStream)
{
    if (IsReadingLegacyImage(aStream))
        ReadRGB48ImageStream(aStream);
    else
        ReadLevelVersion(aStream, GetClassVersion());
    AttachPlaneRenderer(new XRGB48ImageRenderer());
}

void XRGB48Volume::ReadRGB48ImageStream(XStream & aStream)
{
    // The word 112, taken when the stream holds it here.
    ReadClassVersion(aStream, GetClassVersion());
    std::unique_ptr<XMemoryHandle> unused(aStream.ReadObjectAs<XMemoryHandle>(kNormal));
    // The three planes that follow hold two bytes a voxel each: the stream must have them.
    const UInt64 planeBytes = UInt64(GetWidth()) * GetHeight() * GetDepth() * 2;
    if (planeBytes > aStream.GetBytesLeft() / 3)
        throw XException(kErrDamagedStream, "legacy 48-bit image of " + std::to_string(planeBytes) +
                                                " bytes a plane in a stream with fewer left");
    Storage().Resize(GetVolumeBytes());
    const bool swap = aStream.GetByteOrder() != GetByteOrderFromPlatform();
    for (UInt32 channel = 0; channel < 3; ++channel)
    {
        std::unique_ptr<XMemoryHandle> plane(aStream.ReadObjectAs<XMemoryHandle>(kNormal));
        if (!plane)
            throw XException(kErrDamagedStream, "legacy 48-bit image without its colour planes");
        SpreadChannel(*plane, channel, swap);
    }
}

void XRGB48Volume::SpreadChannel(const XMemoryHandle & aPlane, UInt32 aChannel, bool aSwap)
{
    const UInt64 count = UInt64(GetWidth()) * GetHeight() * GetDepth();
    if (aPlane.GetDataSize() < count * 2)
        throw XException(kErrDamagedStream, "legacy 48-bit image plane of " + std::to_string(aPlane.GetDataSize()) +
                                                " bytes for " + std::to_string(count) + " samples");
    XLock planeLock(aPlane, kLockRead);
    XLock lock(*this, kLockReadWrite);
    const UInt8 * in = static_cast<const UInt8 *>(aPlane.GetData());
    XRGB48Colour * voxel = GetBaseVoxelPtr();
    for (UInt64 i = 0; i < count; ++i, in += 2)
    {
        UInt16 sample = UInt16(in[0] | (in[1] << 8));
        if (GetByteOrderFromPlatform() == kBigEndian)
            sample = XByteSwapValue(sample);
        if (aSwap)
            sample = XByteSwapValue(sample);
        if (aChannel == 0)
            voxel[i].SetRed(sample);
        else if (aChannel == 1)
            voxel[i].SetGreen(sample);
        else
            voxel[i].SetBlue(sample);
    }
}

bool XRGB48Volume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XRGB48ImageRenderer);
}

void XRGB48Volume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XRGB48Volume(aStream, anOptions);
}

void XRGB48Volume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XRGB48Volume(aStream, anOptions);
}

void XRGB48Volume::ReadStream2_XRGB48Volume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XPackedVolume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XRGB48Volume::WriteStream2_XRGB48Volume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XPackedVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
