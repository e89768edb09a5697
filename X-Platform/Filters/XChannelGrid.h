#pragma once
// One channel of the voxels of a locked packed volume, seen as values of type C. The channel of
// voxel (x, y, z) lies at base + (z - front) * plane step + (y - top) * row step +
// (x - left) * voxel step + channel offset, all in bytes. A grey or float volume is its own only
// channel (offset 0, voxel step sizeof(C)); a channel of a colour volume is one of its bytes or
// 16-bit words. Byte is const UInt8 for a source and UInt8 for a destination.
//
// The pointers are those of the volume's present lock: make the grid after locking.

#include <cstring>

#include "X3DRect.h"
#include "XBasePackedVolume.h"
#include "XTypes.h"

template <typename C, typename Byte>
class XChannelGrid
{
public:
    XChannelGrid() = default;
    template <class Volume>
    XChannelGrid(Volume & aVolume, UInt32 aChannelOffset)
        : itsBounds(aVolume.GetBounds()), itsBase(static_cast<Byte *>(aVolume.GetBasePtr()) + aChannelOffset),
          itsPlaneStep(aVolume.GetPlaneBytes()), itsRowStep(aVolume.GetRowBytes()),
          itsVoxelStep(aVolume.GetVoxelBytes())
    {
    }

    const X3DRect & GetBounds() const { return itsBounds; }
    UInt64 GetVoxelStep() const { return itsVoxelStep; }
    // True when the values of a row lie next to each other, as an array of C.
    bool IsContiguous() const { return itsVoxelStep == sizeof(C); }
    bool Contains(SInt32 aX, SInt32 aY, SInt32 aZ) const { return itsBounds.Contains(aX, aY, aZ); }

    // The channel of voxel (left, y, z).
    Byte * RowStart(SInt32 aY, SInt32 aZ) const
    {
        return itsBase + UInt64(SInt64(aZ - itsBounds.GetFront())) * itsPlaneStep +
               UInt64(SInt64(aY - itsBounds.GetTop())) * itsRowStep;
    }
    Byte * At(SInt32 aX, SInt32 aY, SInt32 aZ) const
    {
        return RowStart(aY, aZ) + UInt64(SInt64(aX - itsBounds.GetLeft())) * itsVoxelStep;
    }
    C Get(SInt32 aX, SInt32 aY, SInt32 aZ) const
    {
        C value;
        std::memcpy(&value, At(aX, aY, aZ), sizeof(C));
        return value;
    }
    void Set(SInt32 aX, SInt32 aY, SInt32 aZ, const C & aValue) const
    {
        std::memcpy(At(aX, aY, aZ), &aValue, sizeof(C));
    }

    // The values of row (y, z) from x = left as an array: the row itself when the channel is
    // contiguous, otherwise copied into aScratch, which holds the width.
    const C * Row(SInt32 aY, SInt32 aZ, C * aScratch) const
    {
        const Byte * row = RowStart(aY, aZ);
        if (IsContiguous())
            return reinterpret_cast<const C *>(row);
        const UInt32 width = itsBounds.GetWidth();
        for (UInt32 i = 0; i < width; ++i)
            std::memcpy(aScratch + i, row + i * itsVoxelStep, sizeof(C));
        return aScratch;
    }
    // Writes aCount values into row (y, z) from x on.
    void PutRow(SInt32 aX, UInt32 aCount, SInt32 aY, SInt32 aZ, const C * aValues) const
    {
        Byte * out = At(aX, aY, aZ);
        if (IsContiguous())
        {
            std::memcpy(out, aValues, aCount * sizeof(C));
            return;
        }
        for (UInt32 i = 0; i < aCount; ++i)
            std::memcpy(out + i * itsVoxelStep, aValues + i, sizeof(C));
    }

private:
    X3DRect itsBounds;
    Byte * itsBase = nullptr;
    UInt64 itsPlaneStep = 0;
    UInt64 itsRowStep = 0;
    UInt64 itsVoxelStep = 0;
};

template <typename C>
using XSourceChannel = XChannelGrid<C, const UInt8>;
template <typename C>
using XDestChannel = XChannelGrid<C, UInt8>;
