#include "XColourVolume.h"

#include <type_traits>

#include "X3DRegion.h"
#include "XAssert.h"
#include "XLock.h"
#include "XTrilinearSampler.h"

template <typename T>
XString XColourVolume<T>::GetChannelName(UInt32 aChannel) const
{
    switch (aChannel)
    {
    case 1: return XString("Red");
    case 2: return XString("Green");
    case 3: return XString("Blue");
    default: XAssertText(false, "false"); return XString();
    }
}

template <typename T>
void XColourVolume<T>::FillAlphaChannel(UInt8 aValue, const X3DRegion * aRegion, UInt8 anOtherValue)
    requires(sizeof(T) == 4)
{
    XLock lock(*this, kLockReadWrite);
    T * const base = this->GetBaseVoxelPtr();
    if (aRegion == nullptr)
    {
        const UInt64 count = this->GetVolumeVoxels();
        for (UInt64 i = 0; i < count; ++i)
            base[i].SetAlpha(aValue);
        return;
    }
    XLock regionLock(*aRegion, kLockRead);
    X3DRect box = this->GetBounds();
    box.Sect(aRegion->GetBounds());
    for (SInt32 z = box.GetFront(); z < box.GetBack(); ++z)
        for (SInt32 y = box.GetTop(); y < box.GetBottom(); ++y)
        {
            T * row = this->GetVoxelPtr(box.GetLeft(), y, z);
            for (SInt32 x = box.GetLeft(); x < box.GetRight(); ++x)
                row[x - box.GetLeft()].SetAlpha(aRegion->Contains(x, y, z) ? aValue : anOtherValue);
        }
}

template <typename T>
XMathVectorF3 XColourVolume<T>::GetInterpolatedVoxel(float aX, float aY, float aZ) const
    requires(!std::is_same_v<T, XBGRA32Colour>)
{
    return XSampleTrilinear(*this, aX, aY, aZ, [](const T & aVoxel) {
        return XMathVectorF3(float(aVoxel.GetRed()), float(aVoxel.GetGreen()), float(aVoxel.GetBlue()));
    });
}

template class XColourVolume<XARGB32Colour>;
template class XColourVolume<XBGRA32Colour>;
template class XColourVolume<XRGB48Colour>;
