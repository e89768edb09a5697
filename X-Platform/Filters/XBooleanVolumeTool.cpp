#include "XBooleanVolumeTool.h"

#include <memory>
#include <typeinfo>

#include "XARGB32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XLock.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeRefusal.h"

namespace
{
const XPackedVolume<UInt8> & MaskOf(const XVolume & aMask)
{
    const XPackedVolume<UInt8> * mask = dynamic_cast<const XPackedVolume<UInt8> *>(&aMask);
    if (mask == nullptr)
        XRefuseVolume(aMask);
    return *mask;
}

void CopyInto(const XVolume & aSource, XVolume & aDest)
{
    if (&aSource != &aDest)
        aDest.CopyIn(aSource, aSource.GetBounds(), aDest.GetBounds(), nullptr);
}

// Every voxel of the volume (which lies inside the mask) whose mask byte is clear becomes aZero.
template <typename T>
void AndVoxels(const XPackedVolume<UInt8> & aMask, XPackedVolume<T> & aVolume, const T & aZero)
{
    XLock maskLock(aMask, kLockRead);
    XLock lock(aVolume, kLockReadWrite);
    const X3DRect box = aVolume.GetBounds();
    if (box.IsEmpty())
        return;
    const UInt32 width = box.GetWidth();
    const T zero = aZero;
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            const UInt8 * mask = aMask.GetVoxelPtr(box.GetLeft(), y, z);
            T * voxel = aVolume.GetVoxelPtr(box.GetLeft(), y, z);
            for (UInt32 x = 0; x < width; ++x)
                voxel[x] = mask[x] < 128 ? zero : voxel[x];
        }
}
} // namespace

XBooleanVolumeTool::~XBooleanVolumeTool() = default;

void XBooleanVolumeTool::AndVolumes(const XVolume & aSource, const XVolume & aMask, XVolume & aDest)
{
    CopyInto(aSource, aDest);
    AndVolumesSelf(aMask, aDest);
}

void XBooleanVolumeTool::XorVolumes(const XVolume & aSource, const XVolume & aMask, XVolume & aDest)
{
    CopyInto(aSource, aDest);
    XorVolumesSelf(aMask, aDest);
}

void XBooleanVolumeTool::AndVolumesSelf(const XVolume & aMask, XVolume & aVolume)
{
    const XPackedVolume<UInt8> & mask = MaskOf(aMask);
    const std::type_info & type = typeid(aVolume);
    const bool handled = type == typeid(XMaskVolume) || type == typeid(XGrey8Volume) ||
                         type == typeid(XGrey16Volume) || type == typeid(XFPVolume) ||
                         type == typeid(XARGB32Volume) || type == typeid(XRGB48Volume);
    if (!handled)
        XRefuseVolume(aVolume);
    // The volume keeps only the part that the mask covers.
    X3DRect box = aVolume.GetBounds();
    box.Sect(mask.GetBounds());
    if (box != aVolume.GetBounds())
    {
        std::unique_ptr<XVolume> whole(aVolume.Clone());
        dynamic_cast<XBasePackedVolume &>(aVolume).Reshape(box);
        if (!box.IsEmpty())
            aVolume.CopyIn(*whole, box, box, nullptr);
    }
    if (type == typeid(XMaskVolume) || type == typeid(XGrey8Volume))
        AndVoxels<UInt8>(mask, static_cast<XGrey8Volume &>(aVolume), 0);
    else if (type == typeid(XGrey16Volume))
        AndVoxels<UInt16>(mask, static_cast<XGrey16Volume &>(aVolume), 0);
    else if (type == typeid(XFPVolume))
        AndVoxels<float>(mask, static_cast<XFPVolume &>(aVolume), 0.0f);
    else if (type == typeid(XARGB32Volume))
        AndVoxels<XARGB32Colour>(mask, static_cast<XARGB32Volume &>(aVolume), XARGB32Colour::kBlack);
    else
        AndVoxels<XRGB48Colour>(mask, static_cast<XRGB48Volume &>(aVolume), XRGB48Colour());
}

void XBooleanVolumeTool::XorVolumesSelf(const XVolume & aMask, XVolume & aVolume)
{
    const XPackedVolume<UInt8> & mask = MaskOf(aMask);
    if (typeid(aVolume) != typeid(XMaskVolume) && typeid(aVolume) != typeid(XGrey8Volume))
        XRefuseVolume(aVolume);
    XGrey8Volume & volume = static_cast<XGrey8Volume &>(aVolume);
    XLock maskLock(mask, kLockRead);
    XLock lock(volume, kLockReadWrite);
    X3DRect box = volume.GetBounds();
    box.Sect(mask.GetBounds());
    if (box.IsEmpty())
        return;
    const UInt32 width = box.GetWidth();
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            const UInt8 * m = mask.GetVoxelPtr(box.GetLeft(), y, z);
            UInt8 * a = volume.GetVoxelPtr(box.GetLeft(), y, z);
            for (UInt32 x = 0; x < width; ++x)
                a[x] = m[x] >= 128 ? (a[x] >= 128 ? UInt8(0) : m[x]) : a[x];
        }
}
