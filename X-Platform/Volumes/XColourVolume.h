#pragma once
// What the three colour volumes share over their voxel type T: the channels a user can pick
// (red, green, blue; alpha is never one), the alpha fill of the 32-bit types, and trilinear
// sampling per channel. It adds no stream level.

#include <type_traits>

#include "X3DRegion.h"
#include "XAssert.h"
#include "XLock.h"
#include "XMathVector.h"
#include "XPackedVolume.h"
#include "XTrilinearSampler.h"

template <typename T>
class XColourVolume : public XPackedVolume<T>
{
public:
    // Three on every colour type, also where the voxel holds an alpha byte.
    UInt32 GetChannelCount() const override { return 3; }
    // "Red", "Green" and "Blue" for 1, 2 and 3; any other channel is a broken precondition.
    XString GetChannelName(UInt32 aChannel) const override;

    // The alpha byte of every voxel becomes aValue; with a region, the voxels of the volume
    // inside the region's box take aValue where the region holds them and anOtherValue where it
    // does not, and the rest stay.
    void FillAlphaChannel(UInt8 aValue, const X3DRegion * aRegion, UInt8 anOtherValue)
        requires(sizeof(T) == 4);
    // Red, green and blue, each sampled trilinearly; the caller holds a lock.
    XMathVectorF3 GetInterpolatedVoxel(float aX, float aY, float aZ) const
        requires(!std::is_same_v<T, XBGRA32Colour>);

protected:
    XColourVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XPackedVolume<T>(aWidth, aHeight, aDepth) {}
    explicit XColourVolume(const X3DRect & aBounds) : XPackedVolume<T>(aBounds) {}
    XColourVolume(const XColourVolume &) = default;
    explicit XColourVolume(XStream & aStream) : XPackedVolume<T>(aStream) {}
};

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
    if (box.IsEmpty())
        return;
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
