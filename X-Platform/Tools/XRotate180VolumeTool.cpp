#include "XRotate180VolumeTool.h"

#include "X3DRect.h"
#include "XAssert.h"
#include "XBasePackedVolume.h"
#include "XPlaneRotation.h"

XVolume * XRotate180VolumeTool::MakeDestVolume(const XVolume & aSource)
{
    return aSource.CloneWithoutCopy(aSource.GetBounds());
}

void XRotate180VolumeTool::Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    XAssertText(aSource.GetBounds().IsSameSizeAs(aDest.GetBounds()),
                "inSrc.GetBounds().IsSameSizeAs( inDest.GetBounds() )");
    XReversePlaneRows(aSource, aDest, true);
}
