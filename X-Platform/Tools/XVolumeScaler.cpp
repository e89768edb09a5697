#include "XVolumeScaler.h"

XVolumeScaler::XVolumeScaler(const X3DRect & aSource, const X3DRect & aDest, UInt64 aXStride,
                             UInt64 aYStride, UInt64 aZStride)
    : itsSource(aSource), itsDest(aDest), itsXStride(aXStride), itsYStride(aYStride), itsZStride(aZStride),
      itsXTable(new UInt64[aDest.GetWidth()]), itsYTable(new UInt64[aDest.GetHeight()]),
      itsZTable(new UInt64[aDest.GetDepth()])
{
    FillArray(itsXTable.get(), aSource.GetWidth(), aDest.GetWidth(), aXStride);
    FillArray(itsYTable.get(), aSource.GetHeight(), aDest.GetHeight(), aYStride);
    FillArray(itsZTable.get(), aSource.GetDepth(), aDest.GetDepth(), aZStride);
}

void XVolumeScaler::FillArray(UInt64 * aTable, UInt32 aSrcExtent, UInt32 aDestExtent, UInt64 aStride)
{
    for (UInt64 i = 0; i < aDestExtent; ++i)
        aTable[i] = ((i * aSrcExtent) / aDestExtent) * aStride;
}
