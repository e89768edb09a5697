#include "XRotateVolumeTool.h"

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XRGB48Volume.h"

void XRotateVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    Rotate(aSource, aDest);
}

void XRotateVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    Rotate(aSource, aDest);
}

void XRotateVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    Rotate(aSource, aDest);
}

void XRotateVolumeTool::ApplyToolBGRA32(const XBGRA32Volume & aSource, XBGRA32Volume & aDest)
{
    Rotate(aSource, aDest);
}

void XRotateVolumeTool::ApplyToolRGB48(const XRGB48Volume & aSource, XRGB48Volume & aDest)
{
    Rotate(aSource, aDest);
}

void XRotateVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    Rotate(aSource, aDest);
}
