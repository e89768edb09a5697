#pragma once
// Copies a rectangle of one packed volume into a rectangle of another, converting each voxel
// with a Converter from XVoxelConverters.h.
//
// Two ways:
// - Rows: with no region (or a plain box that holds the whole destination rectangle), two
//   volumes of the same class, rectangles of the same size inside their volumes, and equal input
//   ranges of the two renderers, each row is one block copy.
// - Scaled: otherwise each destination voxel takes the source voxel found by nearest-lower
//   lookup (XVolumeScaler), so rectangles of different sizes scale without interpolation. Only
//   voxels inside the destination volume and inside the region are written; a masked region
//   takes a voxel where its mask byte is above 127.
// The source is locked for reading, the destination for reading and writing, then the region.

#include <cstring>
#include <optional>
#include <typeinfo>

#include "X3DRegion.h"
#include "XAssert.h"
#include "XImageRenderer.h"
#include "XLock.h"
#include "XPackedVolume.h"
#include "XVolumeScaler.h"

template <typename S, typename D, class Converter>
class XFastVolumeCopier
{
public:
    static void Copy(const XPackedVolume<S> & aSource, XPackedVolume<D> & aDest, const X3DRect & aSrcRect,
                     const X3DRect & aDestRect, const X3DRegion * aRegion, Converter & aConverter)
    {
        XAssertText(aSource.GetBounds().Contains(aSrcRect), "srcVolume.GetBounds().Contains( srcRect )");
        if (aDestRect.IsEmpty())
            return;
        if constexpr (std::is_same_v<S, D>)
            if (CanCopyRows(aSource, aDest, aSrcRect, aDestRect, aRegion))
            {
                CopyRows(aSource, aDest, aSrcRect, aDestRect);
                return;
            }
        CopyScaled(aSource, aDest, aSrcRect, aDestRect, aRegion, aConverter);
    }

private:
    static bool SameInputRange(const XVolume & aSource, const XVolume & aDest)
    {
        if (!aSource.HasPlaneRenderer() || !aDest.HasPlaneRenderer())
            return aSource.HasPlaneRenderer() == aDest.HasPlaneRenderer();
        const XImageRenderer & source = aSource.GetPlaneRenderer();
        const XImageRenderer & dest = aDest.GetPlaneRenderer();
        return source.GetMaxInputValue() == dest.GetMaxInputValue() &&
               source.GetMinInputValue() == dest.GetMinInputValue();
    }

    static bool CanCopyRows(const XPackedVolume<S> & aSource, const XPackedVolume<D> & aDest,
                            const X3DRect & aSrcRect, const X3DRect & aDestRect, const X3DRegion * aRegion)
    {
        return (aRegion == nullptr || (aRegion->IsSimple() && aRegion->GetBounds().Contains(aDestRect))) &&
               typeid(aSource) == typeid(aDest) && aSrcRect.IsSameSizeAs(aDestRect) &&
               aSource.GetBounds().Contains(aSrcRect) && aDest.GetBounds().Contains(aDestRect) &&
               SameInputRange(aSource, aDest);
    }

    static void CopyRows(const XPackedVolume<S> & aSource, XPackedVolume<D> & aDest, const X3DRect & aSrcRect,
                         const X3DRect & aDestRect)
    {
        XLock sourceLock(aSource, kLockRead);
        XLock destLock(aDest, kLockReadWrite);
        XAssertText(typeid(aSource) == typeid(aDest), "typeid(srcVolume) == typeid(destVolume)");
        XAssertText(aSrcRect.IsSameSizeAs(aDestRect), "srcRect.IsSameSizeAs( destRect )");
        XAssertText(aSource.GetBounds().Contains(aSrcRect), "srcVolume.GetBounds().Contains( srcRect )");
        XAssertText(aDest.GetBounds().Contains(aDestRect), "destVolume.GetBounds().Contains( destRect )");
        const UInt64 rowBytes = UInt64(aDestRect.GetWidth()) * sizeof(S);
        // Whole volumes with the same row layout are one block.
        if (aSrcRect == aSource.GetBounds() && aDestRect == aDest.GetBounds() &&
            aSource.GetRowVoxels() == aDest.GetRowVoxels())
        {
            std::memcpy(aDest.GetBaseVoxelPtr(), aSource.GetBaseVoxelPtr(), aSource.GetVolumeBytes());
            return;
        }
        const SInt32 depth = SInt32(aDestRect.GetDepth()), height = SInt32(aDestRect.GetHeight());
        for (SInt32 k = 0; k < depth; ++k)
            for (SInt32 j = 0; j < height; ++j)
                std::memcpy(aDest.GetVoxelPtr(aDestRect.GetLeft(), aDestRect.GetTop() + j, aDestRect.GetFront() + k),
                            aSource.GetVoxelPtr(aSrcRect.GetLeft(), aSrcRect.GetTop() + j, aSrcRect.GetFront() + k),
                            rowBytes);
    }

    static void CopyScaled(const XPackedVolume<S> & aSource, XPackedVolume<D> & aDest, const X3DRect & aSrcRect,
                           const X3DRect & aDestRect, const X3DRegion * aRegion, Converter & aConverter)
    {
        XLock sourceLock(aSource, kLockRead);
        XLock destLock(aDest, kLockReadWrite);
        XAssertText(aSource.GetBounds().Contains(aSrcRect), "srcVolume.GetBounds().Contains( srcRect )");
        // The voxels that may be written: the destination's, cut by the region's box; a masked
        // region is further tested voxel by voxel.
        X3DRect work = aDest.GetBounds();
        std::optional<XLock> regionLock;
        const UInt8 * mask = nullptr;
        if (aRegion != nullptr)
        {
            work.Sect(aRegion->GetBounds());
            regionLock.emplace(*aRegion, kLockRead);
            mask = aRegion->GetLockedBase();
        }
        const bool testEachRow = mask != nullptr || !work.Contains(aDestRect);
        const XVolumeScaler scaler(aSrcRect, aDestRect, 1, aSource.GetRowVoxels(), aSource.GetPlaneVoxels());
        const bool sameWidth = aSrcRect.GetWidth() == aDestRect.GetWidth();
        const S * const origin = aSource.GetVoxelPtr(aSrcRect.GetLeft(), aSrcRect.GetTop(), aSrcRect.GetFront());
        aConverter.Setup(aSource, aDest);

        SInt32 x0 = aDestRect.GetLeft(), x1 = aDestRect.GetRight();
        if (testEachRow)
        {
            x0 = std::max(x0, work.GetLeft());
            x1 = std::min(x1, work.GetRight());
        }
        const UInt32 depth = aDestRect.GetDepth(), height = aDestRect.GetHeight();
        for (UInt32 k = 0; k < depth; ++k)
        {
            const SInt32 z = aDestRect.GetFront() + SInt32(k);
            if (testEachRow && (z < work.GetFront() || z >= work.GetBack()))
                continue;
            for (UInt32 j = 0; j < height; ++j)
            {
                const SInt32 y = aDestRect.GetTop() + SInt32(j);
                if (x0 >= x1 || (testEachRow && (y < work.GetTop() || y >= work.GetBottom())))
                    continue;
                const S * source = origin + scaler.GetSrcZ(k) + scaler.GetSrcY(j);
                D * dest = aDest.GetVoxelPtr(x0, y, z);
                const UInt32 skip = UInt32(x0 - aDestRect.GetLeft());
                const UInt32 count = UInt32(x1 - x0);
                if (mask != nullptr)
                    CopyMaskedRow(source, dest, skip, count, aRegion->GetLockedVoxel(x0, y, z), scaler, aConverter);
                else if (sameWidth)
                    CopyRow(source + skip, dest, count, aConverter);
                else
                    CopyScaledRow(source, dest, skip, count, scaler, aConverter);
            }
        }
    }

    static void CopyRow(const S * aSource, D * aDest, UInt32 aCount, const Converter & aConverter)
    {
        for (UInt32 i = 0; i < aCount; ++i)
            aDest[i] = aConverter.Convert(aSource[i]);
    }

    static void CopyScaledRow(const S * aSource, D * aDest, UInt32 aSkip, UInt32 aCount,
                              const XVolumeScaler & aScaler, const Converter & aConverter)
    {
        for (UInt32 i = 0; i < aCount; ++i)
            aDest[i] = aConverter.Convert(aSource[aScaler.GetSrcX(aSkip + i)]);
    }

    // aMask points at the mask byte of the first voxel written.
    static void CopyMaskedRow(const S * aSource, D * aDest, UInt32 aSkip, UInt32 aCount, const UInt8 * aMask,
                              const XVolumeScaler & aScaler, const Converter & aConverter)
    {
        for (UInt32 i = 0; i < aCount; ++i)
            if (aMask[i] > 127)
                aDest[i] = aConverter.Convert(aSource[aScaler.GetSrcX(aSkip + i)]);
    }
};
