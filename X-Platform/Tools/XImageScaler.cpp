#include "XImageScaler.h"

#include "XVolumeScaler.h"

XImageScaler::XImageScaler(const XRect & aSource, const XRect & aDest, UInt64 aXStride, UInt64 aYStride)
    : itsSource(aSource), itsDest(aDest), itsXStride(aXStride), itsYStride(aYStride),
      itsXTable(new UInt64[aDest.GetWidth()]), itsYTable(new UInt64[aDest.GetHeight()])
{
    XVolumeScaler::FillArray(itsXTable.get(), aSource.GetWidth(), aDest.GetWidth(), aXStride);
    XVolumeScaler::FillArray(itsYTable.get(), aSource.GetHeight(), aDest.GetHeight(), aYStride);
}
