#pragma once
// Base of the tools that make a list of volumes from one volume. The dispatch is that of
// X1To1VolumeTool without BGRA32: a BGRA32 volume is refused with XException 2500, as is any
// type that the tool does not override.

#include "XPtrVector.h"
#include "XTypes.h"

class XVolume;
class XMaskVolume;
class XGrey8Volume;
class XGrey16Volume;
class XARGB32Volume;
class XRGB48Volume;
class XFPVolume;

class X1ToManyVolumeTool
{
public:
    X1ToManyVolumeTool() = default;
    X1ToManyVolumeTool(const X1ToManyVolumeTool &) = default;
    X1ToManyVolumeTool & operator=(const X1ToManyVolumeTool &) = default;
    virtual ~X1ToManyVolumeTool();

    // The list owns the volumes it holds.
    virtual XPtrVector<XVolume> ApplyTool(const XVolume & aSource);

protected:
    virtual XPtrVector<XVolume> ApplyToolMask(const XMaskVolume & aSource);
    virtual XPtrVector<XVolume> ApplyToolGrey8(const XGrey8Volume & aSource);
    virtual XPtrVector<XVolume> ApplyToolGrey16(const XGrey16Volume & aSource);
    virtual XPtrVector<XVolume> ApplyToolARGB32(const XARGB32Volume & aSource);
    virtual XPtrVector<XVolume> ApplyToolRGB48(const XRGB48Volume & aSource);
    virtual XPtrVector<XVolume> ApplyToolFP(const XFPVolume & aSource);
};
