#include "XMaskVolume.h"

#include <string>
#include <typeinfo>

#include "XException.h"
#include "XLock.h"
#include "XMaskImageRenderer.h"
#include "XStream.h"

XMaskVolume::XMaskVolume()
{
    AttachPlaneRenderer(new XMaskImageRenderer());
}

XMaskVolume::XMaskVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XGrey8Volume(aWidth, aHeight, aDepth)
{
    AttachPlaneRenderer(new XMaskImageRenderer());
}

XMaskVolume::XMaskVolume(const X3DRect & aBounds) : XGrey8Volume(aBounds)
{
    AttachPlaneRenderer(new XMaskImageRenderer());
}

XMaskVolume::XMaskVolume(XStream & aStream) : XGrey8Volume(aStream, false, false)
{
    if (IsReadingLegacyImage(aStream))
        ReadMaskImageStream();
    else
        ReadLevelVersion(aStream, GetClassVersion());
    AttachPlaneRenderer(new XMaskImageRenderer());
    ApplyLegacyLUT();
}

bool XMaskVolume::IsPlaneRendererSupported(const XImageRenderer & aRenderer) const
{
    return typeid(aRenderer) == typeid(XMaskImageRenderer);
}

void XMaskVolume::Threshold(UInt8 aLevel)
{
    XLock lock(*this, kLockReadWrite);
    UInt8 * voxel = GetBaseVoxelPtr();
    const UInt64 count = GetVolumeVoxels();
    for (UInt64 i = 0; i < count; ++i)
        voxel[i] = voxel[i] > aLevel ? 255 : 0;
}

void XMaskVolume::ReadMaskImageStream()
{
    const UInt64 width = GetWidth();
    const UInt64 stride = (width + 3) & ~UInt64(3);
    const XMemoryHandle stored = Storage();
    if (stored.GetDataSize() < stride * GetHeight())
        throw XException(kErrDamagedStream, "legacy mask of " + std::to_string(stored.GetDataSize()) +
                                                " bytes for " + std::to_string(GetHeight()) + " rows of " +
                                                std::to_string(stride));
    XMemoryHandle inverted(GetVolumeBytes() + kTailBytes);
    if (GetBounds().IsEmpty())
    {
        Storage() = inverted;
        return;
    }
    {
        XLock storedLock(stored, kLockRead);
        XLock invertedLock(inverted, kLockWrite);
        const UInt8 * in = static_cast<const UInt8 *>(stored.GetData());
        UInt8 * out = static_cast<UInt8 *>(inverted.GetData());
        // Legacy images have depth 1: the rows of the first layer are all there is.
        const UInt64 height = GetHeight(), rowBytes = GetRowBytes();
        for (UInt64 y = 0; y < height; ++y, in += stride, out += rowBytes)
            for (UInt64 x = 0; x < width; ++x)
                out[x] = UInt8(~in[x]);
    }
    Storage() = inverted;
}

void XMaskVolume::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XMaskVolume(aStream, anOptions);
    ApplyLegacyLUT();
}

void XMaskVolume::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XMaskVolume(aStream, anOptions);
}

void XMaskVolume::ReadStream2_XMaskVolume(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XGrey8Volume(aStream, anOptions);
    ReadLevelVersion(aStream, GetClassVersion());
}

void XMaskVolume::WriteStream2_XMaskVolume(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XGrey8Volume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}
