#include "XRotate180VolumeTool.h"

#include <utility>

#include "X3DRect.h"
#include "XAssert.h"
#include "XPlaneRotation.h"

XVolume * XRotate180VolumeTool::MakeDestVolume(const XVolume & aSource)
{
    return aSource.CloneWithoutCopy(aSource.GetBounds());
}

void XRotate180VolumeTool::Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    XAssertText(aSource.GetBounds().IsSameSizeAs(aDest.GetBounds()),
                "inSrc.GetBounds().IsSameSizeAs( inDest.GetBounds() )");
    XRotatePlanes(aSource, aDest, [](UInt32 aX, UInt32 aY, UInt32 aWidth, UInt32 aHeight) {
        return std::pair<UInt32, UInt32>(aWidth - 1 - aX, aHeight - 1 - aY);
    });
}
