#pragma once
// Nearest-lower index tables from a destination box onto a source box, per axis:
// table[i] = ((i * srcExtent) / destExtent) * stride, in integers, for i from 0 to
// destExtent - 1. A larger destination repeats source samples, a smaller one skips them; there
// is no rounding and no interpolation. The strides are those of the caller's choice (bytes or
// elements), so GetSrcX(i) + GetSrcY(j) + GetSrcZ(k) is the offset of the source sample of the
// destination voxel (i, j, k) counted from the source box's corner.

#include <memory>

#include "X3DRect.h"
#include "XTypes.h"

class XVolumeScaler
{
public:
    XVolumeScaler(const X3DRect & aSource, const X3DRect & aDest, UInt64 aXStride, UInt64 aYStride,
                  UInt64 aZStride);

    UInt64 GetSrcX(UInt32 anIndex) const { return itsXTable[anIndex]; }
    UInt64 GetSrcY(UInt32 anIndex) const { return itsYTable[anIndex]; }
    UInt64 GetSrcZ(UInt32 anIndex) const { return itsZTable[anIndex]; }
    UInt64 GetXStride() const { return itsXStride; }
    UInt64 GetYStride() const { return itsYStride; }
    UInt64 GetZStride() const { return itsZStride; }
    const X3DRect & GetSource() const { return itsSource; }
    const X3DRect & GetDest() const { return itsDest; }

    // The table of one axis: aTable[i] = ((i * aSrcExtent) / aDestExtent) * aStride.
    static void FillArray(UInt64 * aTable, UInt32 aSrcExtent, UInt32 aDestExtent, UInt64 aStride);

private:
    X3DRect itsSource;
    X3DRect itsDest;
    UInt64 itsXStride;
    UInt64 itsYStride;
    UInt64 itsZStride;
    std::unique_ptr<UInt64[]> itsXTable;
    std::unique_ptr<UInt64[]> itsYTable;
    std::unique_ptr<UInt64[]> itsZTable;
};
