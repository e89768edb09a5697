#include "XErodeFilterVolumeTool.h"

#include "XARGB32Volume.h"
#include "XDilateFilterVolumeTool.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey8Volume.h"
#include "XMorphologyWorker.h"

XErodeFilterVolumeTool::XErodeFilterVolumeTool(UInt32 anIterations, const XVector<X3DPoint> & anElement,
                                               bool anEdgeRule)
    : itsIterations(anIterations),
      itsElement(anElement.empty() ? XDilateFilterVolumeTool::GetFaceNeighbours() : anElement),
      itsEdgeRule(anEdgeRule)
{
}

XErodeFilterVolumeTool::~XErodeFilterVolumeTool() = default;

void XErodeFilterVolumeTool::ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest)
{
    XMorphologyWorker<UInt8, false>::Run(aSource, aDest, itsIterations, itsElement, itsEdgeRule);
}

void XErodeFilterVolumeTool::ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest)
{
    XMorphologyWorker<UInt16, false>::Run(aSource, aDest, itsIterations, itsElement, itsEdgeRule);
}

void XErodeFilterVolumeTool::ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest)
{
    XMorphologyWorker<XARGB32Colour, false>::Run(aSource, aDest, itsIterations, itsElement, itsEdgeRule);
}

void XErodeFilterVolumeTool::ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest)
{
    XMorphologyWorker<float, false>::Run(aSource, aDest, itsIterations, itsElement, itsEdgeRule);
}
