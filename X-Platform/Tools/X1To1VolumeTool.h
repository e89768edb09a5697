#pragma once
// Base of the tools that make one volume of the source's type from one volume.
//
// ApplyTool(src) makes the destination with MakeDestVolume (by default a volume of the same
// class and bounds) and runs ApplyToolSelf; the caller owns the result. ApplyToolInPlace runs
// the tool with the volume as both source and destination, or, for a tool that cannot work in
// place, on a clone whose voxels the volume then takes over without copying.
//
// ApplyToolSelf dispatches on the source's class, in this order: mask, Grey8, Grey16, ARGB32,
// BGRA32, RGB48, float. A tool overrides the typed operations of the types it handles; the
// others refuse with XException 2500. A mask reaches ApplyToolGrey8 unless ApplyToolMask is
// overridden. A tool whose work does not depend on the voxel type overrides ApplyToolSelf.

#include "XTypes.h"

class XVolume;
class XMaskVolume;
class XGrey8Volume;
class XGrey16Volume;
class XARGB32Volume;
class XBGRA32Volume;
class XRGB48Volume;
class XFPVolume;

class X1To1VolumeTool
{
public:
    X1To1VolumeTool() = default;
    X1To1VolumeTool(const X1To1VolumeTool &) = default;
    X1To1VolumeTool & operator=(const X1To1VolumeTool &) = default;
    virtual ~X1To1VolumeTool();

    // A new volume that holds the result; the caller owns it.
    virtual XVolume * ApplyTool(const XVolume & aSource);
    // The volume becomes the result. When an exception passes, a tool that cannot work in place
    // leaves the volume as it was.
    virtual void ApplyToolInPlace(XVolume & aVolume);

protected:
    // False for tools that read voxels after overwriting them.
    virtual bool CanApplyInPlace() const { return true; }
    virtual XVolume * MakeDestVolume(const XVolume & aSource);
    virtual void ApplyToolSelf(const XVolume & aSource, XVolume & aDest);
    virtual void ApplyToolMask(const XMaskVolume & aSource, XMaskVolume & aDest);
    virtual void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest);
    virtual void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest);
    virtual void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest);
    virtual void ApplyToolBGRA32(const XBGRA32Volume & aSource, XBGRA32Volume & aDest);
    virtual void ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest);
    virtual void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest);
};
