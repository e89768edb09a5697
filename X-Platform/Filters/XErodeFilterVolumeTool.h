#pragma once
// Grey-scale erosion: each voxel becomes the darkest of itself and its neighbours at the points
// of a structuring element, repeated for a number of iterations. The voxel itself always takes
// part; an empty element becomes the six face neighbours (see XDilateFilterVolumeTool).
//
// A point outside the volume is skipped, or, with the edge rule, makes the voxel 0 (opaque
// black for colours) at once: the structure is then eaten in from the volume's faces as if the
// outside were black, and with the six face neighbours a volume of one plane turns black in one
// iteration.
//
// Grey8 (masks too), Grey16, float and ARGB32 volumes. Colour voxels are compared by their level
// (the largest of red, green and blue) and moved whole; of neighbours of equal level the earlier
// in the element wins. Floats compare as floats. Other types raise XException 2500. Zero
// iterations leave the destination as it was: ApplyTool then returns a volume of zeros. The tool
// does not work in place: ApplyToolInPlace erodes into a clone.

#include "X1To1VolumeTool.h"
#include "X3DPoint.h"
#include "XVector.h"

class XErodeFilterVolumeTool : public X1To1VolumeTool
{
public:
    XErodeFilterVolumeTool(UInt32 anIterations, const XVector<X3DPoint> & anElement, bool anEdgeRule);
    XErodeFilterVolumeTool(const XErodeFilterVolumeTool &) = default;
    XErodeFilterVolumeTool & operator=(const XErodeFilterVolumeTool &) = default;
    ~XErodeFilterVolumeTool() override;

    UInt32 GetIterations() const { return itsIterations; }
    const XVector<X3DPoint> & GetStructuringElement() const { return itsElement; }
    bool GetEdgeRule() const { return itsEdgeRule; }

protected:
    bool CanApplyInPlace() const override { return false; }
    void ApplyToolGrey8(const XGrey8Volume & aSource, XGrey8Volume & aDest) override;
    void ApplyToolGrey16(const XGrey16Volume & aSource, XGrey16Volume & aDest) override;
    void ApplyToolARGB32(const XARGB32Volume & aSource, XARGB32Volume & aDest) override;
    void ApplyToolFP(const XFPVolume & aSource, XFPVolume & aDest) override;

private:
    UInt32 itsIterations;
    XVector<X3DPoint> itsElement;
    bool itsEdgeRule;
};
