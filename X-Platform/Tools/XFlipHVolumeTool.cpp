#include "XFlipHVolumeTool.h"

#include "XBasePackedVolume.h"
#include "XPlaneRotation.h"

void XFlipHVolumeTool::Flip(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    CheckFlip(aSource, aDest);
    XReversePlaneRows(aSource, aDest, false);
}
