#pragma once
// The 2-D twin of XVolumeScaler: nearest-lower index tables from a destination rectangle onto a
// source rectangle, table[i] = ((i * srcExtent) / destExtent) * stride in integers, for i from
// 0 to destExtent - 1. GetSrcX(i) + GetSrcY(j) is the offset of the source sample of the
// destination pixel (i, j) counted from the source rectangle's corner.

#include <memory>

#include "XRect.h"
#include "XTypes.h"

class XImageScaler
{
public:
    XImageScaler(const XRect & aSource, const XRect & aDest, UInt64 aXStride, UInt64 aYStride);

    UInt64 GetSrcX(UInt32 anIndex) const { return itsXTable[anIndex]; }
    UInt64 GetSrcY(UInt32 anIndex) const { return itsYTable[anIndex]; }
    UInt64 GetXStride() const { return itsXStride; }
    UInt64 GetYStride() const { return itsYStride; }
    const XRect & GetSource() const { return itsSource; }
    const XRect & GetDest() const { return itsDest; }

private:
    XRect itsSource;
    XRect itsDest;
    UInt64 itsXStride;
    UInt64 itsYStride;
    std::unique_ptr<UInt64[]> itsXTable;
    std::unique_ptr<UInt64[]> itsYTable;
};
