#include "XDilateFilterVolumeTool.h"

#include "XARGB32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XMorphologyWorker.h"

XDilateFilterVolumeTool::XDilateFilterVolumeTool(UInt32 anIterations, const XVector<X3DPoint> & anElement)
    : itsIterations(anIterations), itsElement(anElement.empty() ? GetFaceNeighbours() : anElement)
{
}

XDilateFilterVolumeTool::~XDilateFilterVolumeTool() = default;

XVector<X3DPoint> XDilateFilterVolumeTool::GetFaceNeighbours()
{
    return XVector<X3DPoint>{X3DPoint(-1, 0, 0), X3DPoint(1, 0, 0),  X3DPoint(0, -1, 0),
                             X3DPoint(0, 1, 0),  X3DPoint(0, 0, -1), X3DPoint(0, 0, 1)};
}

void XDilateFilterVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    XMorphologyWorker<UInt8, true>::Run(aSource, aDest, itsIterations, itsElement, false);
}

void XDilateFilterVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    XMorphologyWorker<UInt16, true>::Run(aSource, aDest, itsIterations, itsElement, false);
}

void XDilateFilterVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    XMorphologyWorker<XARGB32Colour, true>::Run(aSource, aDest, itsIterations, itsElement, false);
}

void XDilateFilterVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    XMorphologyWorker<float, true>::Run(aSource, aDest, itsIterations, itsElement, false);
}
