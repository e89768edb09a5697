#include "XQuarterTurnVolumeTool.h"

#include "X3DRect.h"
#include "XAssert.h"
#include "XBasePackedVolume.h"
#include "XPlaneRotation.h"

XVolume * XQuarterTurnVolumeTool::MakeDestVolume(const XVolume & aSource)
{
    X3DRect rect;
    rect.SetWidth(aSource.GetHeight());
    rect.SetHeight(aSource.GetWidth());
    rect.SetDepth(aSource.GetDepth());
    rect.CentreOn(aSource.GetBounds());
    return aSource.CloneWithoutCopy(rect);
}

void XQuarterTurnVolumeTool::Rotate(const XBasePackedVolume & aSource, XBasePackedVolume & aDest)
{
    XAssertText(aSource.GetBounds().GetWidth() == aDest.GetBounds().GetHeight(),
                "inSrc.GetBounds().GetWidth() == inDest.GetBounds().GetHeight()");
    XAssertText(aSource.GetBounds().GetHeight() == aDest.GetBounds().GetWidth(),
                "inSrc.GetBounds().GetHeight() == inDest.GetBounds().GetWidth()");
    XTurnPlanesQuarter(aSource, aDest, itsClockwise);
}
