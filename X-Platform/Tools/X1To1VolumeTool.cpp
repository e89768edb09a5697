#include "X1To1VolumeTool.h"

#include <memory>
#include <typeinfo>

#include "XARGB32Volume.h"
#include "XAssert.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeRefusal.h"

X1To1VolumeTool::~X1To1VolumeTool() = default;

XVolume * X1To1VolumeTool::ApplyTool(const XVolume & aSource)
{
    // The destination is released when the tool fails.
    std::unique_ptr<XVolume> destVolume(MakeDestVolume(aSource));
    XAssertText(destVolume != nullptr, "destVolume");
    ApplyToolSelf(aSource, *destVolume);
    return destVolume.release();
}

void X1To1VolumeTool::ApplyToolInPlace(XVolume & aVolume)
{
    if (CanApplyInPlace())
    {
        ApplyToolSelf(aVolume, aVolume);
        return;
    }
    std::unique_ptr<XVolume> clone(aVolume.Clone());
    ApplyToolSelf(aVolume, *clone);
    aVolume.CopyFrom(*clone);
}

XVolume * X1To1VolumeTool::MakeDestVolume(const XVolume & aSource)
{
    return aSource.CloneWithoutCopy();
}

void X1To1VolumeTool::ApplyToolSelf(const XVolume & aSource, XVolume & aDest)
{
    XAssertText(typeid(aSource) == typeid(aDest), "typeid(src) == typeid(dest)");
    if (aSource.IsA(XVersion(XMaskVolume::kClassID)))
        ApplyToolMask(dynamic_cast<const XMaskVolume &>(aSource), dynamic_cast<XMaskVolume &>(aDest));
    else if (aSource.IsA(XVersion(XGrey8Volume::kClassID)))
        ApplyToolGrey8(dynamic_cast<const XGrey8Volume &>(aSource), dynamic_cast<XGrey8Volume &>(aDest));
    else if (aSource.IsA(XVersion(XGrey16Volume::kClassID)))
        ApplyToolGrey16(dynamic_cast<const XGrey16Volume &>(aSource), dynamic_cast<XGrey16Volume &>(aDest));
    else if (aSource.IsA(XVersion(XARGB32Volume::kClassID)))
        ApplyToolARGB32(dynamic_cast<const XARGB32Volume &>(aSource), dynamic_cast<XARGB32Volume &>(aDest));
    else if (aSource.IsA(XVersion(XBGRA32Volume::kClassID)))
        ApplyToolBGRA32(dynamic_cast<const XBGRA32Volume &>(aSource), dynamic_cast<XBGRA32Volume &>(aDest));
    else if (aSource.IsA(XVersion(XRGB48Volume::kClassID)))
        ApplyToolRGB48(dynamic_cast<const XRGB48Volume &>(aSource), dynamic_cast<XRGB48Volume &>(aDest));
    else if (aSource.IsA(XVersion(XFPVolume::kClassID)))
        ApplyToolFP(dynamic_cast<const XFPVolume &>(aSource), dynamic_cast<XFPVolume &>(aDest));
    else
        XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolMask(const XMaskVolume & aSource, XMaskVolume & aDest)
{
    ApplyToolGrey8(aSource, aDest);
}

void X1To1VolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume &)
{
    XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume &)
{
    XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume &)
{
    XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolBGRA32(const XBGRA32Volume & aSource, XBGRA32Volume &)
{
    XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume &)
{
    XRefuseVolume(aSource);
}

void X1To1VolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume &)
{
    XRefuseVolume(aSource);
}
