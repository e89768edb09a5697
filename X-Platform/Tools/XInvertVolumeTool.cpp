#include "XInvertVolumeTool.h"

#include <cmath>

#include "XARGB32Volume.h"
#include "XCheckedArithmetic.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XRGB48Volume.h"
#include "XVolumeScanner.h"

template <typename T>
void XInvertVolumeTool::XInvertHelper<T>::ScanPixel(T * aVoxel, XVolume &, SInt32, SInt32, SInt32)
{
    if constexpr (std::is_same_v<T, XARGB32Colour>)
        aVoxel->SetRGB(UInt8(itsMaximum - aVoxel->GetRed()), UInt8(itsMaximum - aVoxel->GetGreen()),
                       UInt8(itsMaximum - aVoxel->GetBlue()));
    else if constexpr (std::is_same_v<T, XRGB48Colour>)
        aVoxel->SetRGB(UInt16(itsMaximum - aVoxel->GetRed()), UInt16(itsMaximum - aVoxel->GetGreen()),
                       UInt16(itsMaximum - aVoxel->GetBlue()));
    else
        *aVoxel = T(itsMaximum - *aVoxel);
}

template <typename Volume>
void XInvertVolumeTool::Invert(const Volume & aSource, Volume & aDest, double aTypeMaximum)
{
    if (&aSource != &aDest)
        aDest.CopyIn(aSource, aDest.GetBounds(), aDest.GetBounds(), nullptr);
    if (std::isnan(itsMaxVoxelValue))
        itsMaxVoxelValue = aTypeMaximum;
    const UInt32 maximum = UInt32(XCheckedTruncate<SInt64>(itsMaxVoxelValue));
    XInvertHelper<typename Volume::XVoxel> helper(maximum);
    XScanVolume(aDest, helper, nullptr, kLockReadWrite);
}

void XInvertVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    Invert(aSource, aDest, 255.0);
}

void XInvertVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    Invert(aSource, aDest, 65535.0);
}

void XInvertVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    Invert(aSource, aDest, 255.0);
}

void XInvertVolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest)
{
    Invert(aSource, aDest, 65535.0);
}
