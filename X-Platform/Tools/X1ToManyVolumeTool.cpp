#include "X1ToManyVolumeTool.h"

#include "X1To1VolumeTool.h"
#include "XARGB32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeRefusal.h"

X1ToManyVolumeTool::~X1ToManyVolumeTool() = default;

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyTool(const XVolume & aSource)
{
    XPtrVector<XVolume> result;
    if (aSource.IsA(XVersion(XMaskVolume::kClassID)))
        result = ApplyToolMask(dynamic_cast<const XMaskVolume &>(aSource));
    else if (aSource.IsA(XVersion(XGrey8Volume::kClassID)))
        result = ApplyToolGrey8(dynamic_cast<const XGrey8Volume &>(aSource));
    else if (aSource.IsA(XVersion(XGrey16Volume::kClassID)))
        result = ApplyToolGrey16(dynamic_cast<const XGrey16Volume &>(aSource));
    else if (aSource.IsA(XVersion(XARGB32Volume::kClassID)))
        result = ApplyToolARGB32(dynamic_cast<const XARGB32Volume &>(aSource));
    else if (aSource.IsA(XVersion(XRGB48Volume::kClassID)))
        result = ApplyToolRGB48(dynamic_cast<const XRGB48Volume &>(aSource));
    else if (aSource.IsA(XVersion(XFPVolume::kClassID)))
        result = ApplyToolFP(dynamic_cast<const XFPVolume &>(aSource));
    else
        XRefuseVolume(aSource);
    return result;
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolMask(const XMaskVolume & aSource)
{
    return ApplyToolGrey8(aSource);
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource)
{
    XRefuseVolume(aSource);
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource)
{
    XRefuseVolume(aSource);
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource)
{
    XRefuseVolume(aSource);
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource)
{
    XRefuseVolume(aSource);
}

XPtrVector<XVolume> X1ToManyVolumeTool::ApplyToolFP(const XFPVolume & aSource)
{
    XRefuseVolume(aSource);
}
