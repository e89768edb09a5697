#include "XVolumeScanningTool.h"

#include "XARGB32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeRefusal.h"

XVolumeScanningTool::~XVolumeScanningTool() = default;

void XVolumeScanningTool::ApplyTool(XVolume & aVolume, const X3DRegion * aRegion)
{
    if (aVolume.IsA(XVersion(XMaskVolume::kClassID)))
        ApplyToolMask(dynamic_cast<XMaskVolume &>(aVolume), aRegion);
    else if (aVolume.IsA(XVersion(XGrey8Volume::kClassID)))
        ApplyToolGrey8(dynamic_cast<XGrey8Volume &>(aVolume), aRegion);
    else if (aVolume.IsA(XVersion(XGrey16Volume::kClassID)))
        ApplyToolGrey16(dynamic_cast<XGrey16Volume &>(aVolume), aRegion);
    else if (aVolume.IsA(XVersion(XARGB32Volume::kClassID)))
        ApplyToolARGB32(dynamic_cast<XARGB32Volume &>(aVolume), aRegion);
    else if (aVolume.IsA(XVersion(XRGB48Volume::kClassID)))
        ApplyToolRGB48(dynamic_cast<XRGB48Volume &>(aVolume), aRegion);
    else if (aVolume.IsA(XVersion(XFPVolume::kClassID)))
        ApplyToolFP(dynamic_cast<XFPVolume &>(aVolume), aRegion);
    else
        XRefuseVolume(aVolume);
}

void XVolumeScanningTool::ApplyToolMask(XMaskVolume & aVolume, const X3DRegion * aRegion)
{
    ApplyToolGrey8(aVolume, aRegion);
}

void XVolumeScanningTool::ApplyToolGrey8(XGrey8Volume & aVolume, const X3DRegion *)
{
    XRefuseVolume(aVolume);
}

void XVolumeScanningTool::ApplyToolGrey16(XGrey16Volume & aVolume, const X3DRegion *)
{
    XRefuseVolume(aVolume);
}

void XVolumeScanningTool::ApplyToolARGB32(XARGB32Volume & aVolume, const X3DRegion *)
{
    XRefuseVolume(aVolume);
}

void XVolumeScanningTool::ApplyToolRGB48(XRGB48Volume & aVolume, const X3DRegion *)
{
    XRefuseVolume(aVolume);
}

void XVolumeScanningTool::ApplyToolFP(XFPVolume & aVolume, const X3DRegion *)
{
    XRefuseVolume(aVolume);
}
